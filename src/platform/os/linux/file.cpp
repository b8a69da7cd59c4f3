#include "platform/os/file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <limits>

#include "platform/os/linux/errno_codes.h"
#include "platform/os/linux/transfer.h"
#include "platform/os/linux/write_behind.h"

namespace qmp::os {
namespace {

int descriptor_of(std::intptr_t handle) {
    return static_cast<int>(handle);
}

int open_retrying(const std::string& path, int flags) {
    int descriptor;
    do {
        descriptor = open(path.c_str(), flags | O_CLOEXEC, 0666);
    } while (descriptor < 0 && errno == EINTR);
    return descriptor;
}

// Claims the file among the program's own processes, as an exclusive open does elsewhere. A file system
// without locks is used without.
bool claimed(int descriptor, int operation) {
    return flock(descriptor, operation | LOCK_NB) == 0 || errno != EWOULDBLOCK;
}

mode_t kind_of(int descriptor) {
    struct stat status;
    return fstat(descriptor, &status) == 0 ? status.st_mode & S_IFMT : 0;
}

// Opens, and claims; closes again and reports the error where that fails.
ErrorCode open_claimed(const std::string& path, int flags, int operation, std::intptr_t& handle) {
    const int descriptor = open_retrying(path, flags);
    if (descriptor < 0) return code_of_errno(errno);
    ErrorCode error = no_error;
    // Only a file in the narrow sense can be emptied; a device is written as it is.
    const mode_t kind = kind_of(descriptor);
    if (kind == S_IFDIR) {
        error = access_denied;
    } else if (!claimed(descriptor, operation)) {
        error = sharing_violation;
    } else if ((flags & O_CREAT) != 0 && kind == S_IFREG && ftruncate(descriptor, 0) != 0) {
        error = code_of_errno(errno, write_fault);
    }
    if (error != no_error) {
        ::close(descriptor);
        return error;
    }
    handle = descriptor;
    return no_error;
}

}  // namespace

ErrorCode File::create(const std::string& path, Durable durable) {
    close();
    durable_ = durable;
    const int through = durable == Durable::after_write ? O_DSYNC : 0;
    // Emptied only after the claim: another process's open file must not lose its content.
    return open_claimed(path, O_RDWR | O_CREAT | through, LOCK_EX, handle_);
}

ErrorCode File::open(const std::string& path) {
    close();
    durable_ = Durable::after_write;
    return open_claimed(path, O_RDONLY, LOCK_SH, handle_);
}

ErrorCode File::close() {
    if (!is_open()) return no_error;
    const int descriptor = descriptor_of(handle_);
    handle_ = closed;
    const ErrorCode error = durable_ == Durable::after_close ? settle(descriptor) : no_error;
    // The descriptor is gone even when the call was interrupted.
    const bool closed_well = ::close(descriptor) == 0 || errno == EINTR;
    if (error != no_error) return error;
    return closed_well ? no_error : code_of_errno(errno, write_fault);
}

Transfer File::read(void* buffer, std::uint64_t bytes) {
    return transfer(bytes, read_fault, [&](std::uint64_t done, std::uint64_t count) {
        return ::read(descriptor_of(handle_), static_cast<char*>(buffer) + done, count);
    });
}

Transfer File::write(const void* buffer, std::uint64_t bytes) {
    return (durable_ == Durable::after_close ? write_behind : write_all)(descriptor_of(handle_), buffer,
                                                                         bytes);
}

ErrorCode File::seek(std::uint64_t offset) {
    if (offset > static_cast<std::uint64_t>(std::numeric_limits<off_t>::max())) return invalid_parameter;
    return lseek(descriptor_of(handle_), static_cast<off_t>(offset), SEEK_SET) >= 0 ? no_error
                                                                                    : code_of_errno(errno);
}

ErrorCode File::size(std::uint64_t& bytes) const {
    struct stat status;
    if (fstat(descriptor_of(handle_), &status) != 0) return code_of_errno(errno, read_fault);
    bytes = static_cast<std::uint64_t>(status.st_size);
    return no_error;
}

ErrorCode file_size(const std::string& path, std::uint64_t& bytes) {
    struct stat status;
    if (stat(path.c_str(), &status) != 0) return code_of_errno(errno, read_fault);
    bytes = static_cast<std::uint64_t>(status.st_size);
    return no_error;
}

ErrorCode remove_file(const std::string& path) {
    return unlink(path.c_str()) == 0 ? no_error : code_of_errno(errno, write_fault);
}

ErrorCode rename_file(const std::string& from, const std::string& to) {
    return std::rename(from.c_str(), to.c_str()) == 0 ? no_error : code_of_errno(errno, write_fault);
}

bool directory_exists(const std::string& path) {
    struct stat status;
    return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

ErrorCode create_directory(const std::string& path) {
    if (mkdir(path.c_str(), 0777) == 0) return no_error;
    const int error = errno;
    return directory_exists(path) ? no_error : code_of_errno(error, write_fault);
}

}  // namespace qmp::os
