// The process's current folder, elsewhere while an object lives.
#pragma once

#include <filesystem>
#include <string>

namespace kelvara_test {

class WorkingFolder {
  public:
    explicit WorkingFolder(const std::string& path) : before_(std::filesystem::current_path()) {
        std::filesystem::current_path(std::u8string(path.begin(), path.end()));
    }
    ~WorkingFolder() { std::filesystem::current_path(before_); }
    WorkingFolder(const WorkingFolder&) = delete;
    WorkingFolder& operator=(const WorkingFolder&) = delete;

  private:
    std::filesystem::path before_;
};

}  // namespace kelvara_test
