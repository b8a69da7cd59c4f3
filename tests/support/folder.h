// A folder of a test's own.
#pragma once

#include <filesystem>
#include <string>

namespace kelvara_test {

// Empty at first; removed with everything in it.
class TemporaryFolder {
  public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    // UTF-8, without a slash at its end.
    std::string path() const;
    std::string path(const std::string& name) const { return path() + "/" + name; }
    std::filesystem::path native(const std::filesystem::path& name) const { return folder_ / name; }

  private:
    std::filesystem::path folder_;
};

}  // namespace kelvara_test
