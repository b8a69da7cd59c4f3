// Files and folders by UTF-8 paths. Nothing here throws or prints: every failure is an error code.
#pragma once

#include <cstdint>
#include <string>

#include "platform/os/error_codes.h"

namespace qmp::os {

// The systems' calls take 32-bit counts; longer transfers are made of several calls.
constexpr std::uint64_t largest_transfer = std::uint64_t{1} << 30;

// What a transfer really moved. A read that is short without an error met the end of the file; a write
// that is short always has an error (disk_full on a full disk).
struct Transfer {
    std::uint64_t bytes = 0;
    ErrorCode error = no_error;
};

// When what is written has reached the disk: as soon as a write returns, or once close() has returned without
// an error. With after_close a write only hands its block over, the system carries it to the disk in the
// meantime, and an error on that way may show in close() alone. A system may do more than it is asked for.
enum class Durable { after_write, after_close };

// An open file with one position. Closed by its destructor. Not for use by two threads at a time.
class File {
  public:
    File() = default;
    ~File() { close(); }
    File(File&& other) noexcept : handle_(other.handle_), durable_(other.durable_) {
        other.handle_ = closed;
    }
    File& operator=(File&& other) noexcept {
        if (this != &other) {
            close();
            handle_ = other.handle_;
            durable_ = other.durable_;
            other.handle_ = closed;
        }
        return *this;
    }

    // Creates the file, or empties an existing one, for reading and writing; writes go through to the
    // disk. Nobody else may have it open (sharing_violation). A file that was open is closed first.
    ErrorCode create(const std::string& path, Durable durable = Durable::after_write);
    // Opens an existing file for reading; others may read it as well, but not write.
    ErrorCode open(const std::string& path);
    ErrorCode close();
    bool is_open() const { return handle_ != closed; }

    Transfer read(void* buffer, std::uint64_t bytes);
    Transfer write(const void* buffer, std::uint64_t bytes);
    // From the start of the file; beyond its end is allowed.
    ErrorCode seek(std::uint64_t offset);
    ErrorCode size(std::uint64_t& bytes) const;

  private:
    // A file descriptor, or the bits of a handle.
    static constexpr std::intptr_t closed = -1;
    std::intptr_t handle_ = closed;
    Durable durable_ = Durable::after_write;
};

// The size of a file by its path, without opening it.
ErrorCode file_size(const std::string& path, std::uint64_t& bytes);
ErrorCode remove_file(const std::string& path);
// An existing target file is replaced where the system does that in one step; elsewhere it is left alone
// and the code is file_exists or already_exists.
ErrorCode rename_file(const std::string& from, const std::string& to);
bool directory_exists(const std::string& path);
// Makes one folder in a folder that exists. One that is there already is no error; anything else of that name
// is (file_exists or already_exists).
ErrorCode create_directory(const std::string& path);

}  // namespace qmp::os
