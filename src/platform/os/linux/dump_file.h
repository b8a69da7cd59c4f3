// A text file written while the process is crashing.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace qmp::os {

// Goes through a buffer of its own and system calls alone, so that it works in a signal handler, whatever
// the state of the heap and of the C library. After the first failure nothing more is written.
class DumpFile {
  public:
    // Creates the file, or empties it.
    explicit DumpFile(const char* path);
    DumpFile(const DumpFile&) = delete;
    DumpFile& operator=(const DumpFile&) = delete;

    bool is_open() const { return descriptor_ >= 0; }
    // The errno of the first failure, or 0.
    int error() const { return error_; }

    void text(std::string_view bytes);
    void decimal(std::int64_t value);
    // 0x and at least `digits` digits.
    void hexadecimal(std::uint64_t value, int digits = 16);
    // A byte as two digits, nothing before them.
    void byte(std::uint8_t value);
    // The content of another file; nothing when it cannot be read.
    void copy_of(const char* path);

    // Hands everything so far to the system.
    void flush();
    void close();

  private:
    int descriptor_;
    int error_;
    std::size_t used_ = 0;
    char buffer_[4096];
};

}  // namespace qmp::os
