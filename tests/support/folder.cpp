#include "support/folder.h"

#include <random>

namespace kelvara_test {

TemporaryFolder::TemporaryFolder()
    : folder_(std::filesystem::temp_directory_path() /
              ("kelvara_test_" + std::to_string(std::random_device()()))) {
    std::filesystem::create_directories(folder_);
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
}

std::string TemporaryFolder::path() const {
    const std::u8string text = folder_.generic_u8string();
    return {text.begin(), text.end()};
}

}  // namespace kelvara_test
