#include "support/standard_streams.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

namespace kelvara_test {
namespace {

int make_temporary_file(std::string& path) {
    path = "/tmp/kelvara-test-XXXXXX";
    const int file = mkstemp(path.data());
    if (file < 0) std::abort();
    return file;
}

}  // namespace

CapturedOutput::CapturedOutput() {
    std::fflush(stdout);
    const int file = make_temporary_file(path_);
    saved_ = dup(STDOUT_FILENO);
    dup2(file, STDOUT_FILENO);
    file_ = file;
}

CapturedOutput::~CapturedOutput() {
    restore();
    unlink(path_.c_str());
}

void CapturedOutput::restore() {
    if (saved_ < 0) return;
    std::fflush(stdout);
    dup2(static_cast<int>(saved_), STDOUT_FILENO);
    close(static_cast<int>(saved_));
    saved_ = -1;
}

std::string CapturedOutput::finish() {
    restore();
    std::string text;
    const int file = static_cast<int>(file_);
    lseek(file, 0, SEEK_SET);
    char bytes[4096];
    ssize_t count;
    while ((count = read(file, bytes, sizeof bytes)) > 0) text.append(bytes, static_cast<std::size_t>(count));
    close(file);
    return text;
}

FedInput::FedInput(std::string_view content) {
    const int file = make_temporary_file(path_);
    if (write(file, content.data(), content.size()) != static_cast<ssize_t>(content.size())) std::abort();
    lseek(file, 0, SEEK_SET);
    saved_ = dup(STDIN_FILENO);
    dup2(file, STDIN_FILENO);
    close(file);
}

FedInput::~FedInput() {
    dup2(static_cast<int>(saved_), STDIN_FILENO);
    close(static_cast<int>(saved_));
    unlink(path_.c_str());
}

}  // namespace kelvara_test
