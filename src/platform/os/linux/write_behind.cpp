#include "platform/os/linux/write_behind.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "platform/os/linux/errno_codes.h"
#include "platform/os/linux/transfer.h"

namespace qmp::os {
namespace {

constexpr std::uint64_t page = 4096;
// What sets out at a time, and what may be under way. Measured with 25 MB: pieces of 128 KiB to 1 MiB and
// windows of 1 to 4 MiB differ by less than the disk does from run to run.
constexpr std::uint64_t piece = std::uint64_t{1} << 18;
constexpr std::uint64_t window = std::uint64_t{1} << 21;

// Devices and file systems without a cache of their own have no such calls.
bool unsupported(int error) {
    return error == EINVAL || error == ESPIPE || error == ENOSYS || error == EROFS;
}

// Bytes [begin, end) of the file were written, after those up to `begin`. Whole pages set out, and those a
// window before them are waited for.
ErrorCode carry_on(int descriptor, std::uint64_t begin, std::uint64_t end) {
    const std::uint64_t first = begin / page * page;
    const std::uint64_t stop = end / page * page;
    const auto sync = [&](std::uint64_t from, std::uint64_t to, unsigned flags) {
        return from == to || sync_file_range(descriptor, static_cast<off_t>(from),
                                             static_cast<off_t>(to - from), flags) == 0;
    };
    if (!sync(first, stop, SYNC_FILE_RANGE_WRITE)) return no_error;
    if (stop <= window) return no_error;
    const std::uint64_t old = first > window ? first - window : 0;
    // An error on the way to the disk is reported once, and here.
    if (!sync(old, stop - window,
              SYNC_FILE_RANGE_WAIT_BEFORE | SYNC_FILE_RANGE_WRITE | SYNC_FILE_RANGE_WAIT_AFTER)) {
        return unsupported(errno) ? no_error : code_of_errno(errno, write_fault);
    }
    posix_fadvise(descriptor, static_cast<off_t>(old), static_cast<off_t>(stop - window - old),
                  POSIX_FADV_DONTNEED);
    return no_error;
}

}  // namespace

Transfer write_behind(int descriptor, const void* buffer, std::uint64_t bytes) {
    const off_t position = lseek(descriptor, 0, SEEK_CUR);
    Transfer result;
    while (result.bytes < bytes) {
        const std::uint64_t count = std::min(piece, bytes - result.bytes);
        const Transfer part = write_all(descriptor, static_cast<const char*>(buffer) + result.bytes, count);
        if (part.error == no_error && position >= 0) {
            const std::uint64_t begin = static_cast<std::uint64_t>(position) + result.bytes;
            result.error = carry_on(descriptor, begin, begin + part.bytes);
            if (result.error != no_error) break;
        }
        result.bytes += part.bytes;
        result.error = part.error;
        if (result.error != no_error) break;
    }
    return result;
}

ErrorCode settle(int descriptor) {
    int failed;
    do {
        failed = fdatasync(descriptor);
    } while (failed != 0 && errno == EINTR);
    return failed == 0 || unsupported(errno) ? no_error : code_of_errno(errno, write_fault);
}

}  // namespace qmp::os
