#include "platform/os/linux/dump_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace qmp::os {
namespace {

constexpr char digits_of_sixteen[] = "0123456789abcdef";

}  // namespace

DumpFile::DumpFile(const char* path)
    : descriptor_(open(path, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644)),
      error_(descriptor_ < 0 ? errno : 0) {}

void DumpFile::text(std::string_view bytes) {
    while (!bytes.empty()) {
        if (used_ == sizeof buffer_) flush();
        const std::size_t count = std::min(bytes.size(), sizeof buffer_ - used_);
        std::copy_n(bytes.begin(), count, buffer_ + used_);
        used_ += count;
        bytes.remove_prefix(count);
    }
}

void DumpFile::flush() {
    std::size_t done = 0;
    while (done < used_ && error_ == 0) {
        const ssize_t written = write(descriptor_, buffer_ + done, used_ - done);
        if (written > 0) {
            done += static_cast<std::size_t>(written);
        } else if (written == 0) {
            error_ = EIO;
        } else if (errno != EINTR) {
            error_ = errno;
        }
    }
    used_ = 0;
}

void DumpFile::close() {
    if (descriptor_ < 0) return;
    flush();
    if (::close(descriptor_) != 0 && error_ == 0) error_ = errno;
    descriptor_ = -1;
}

void DumpFile::decimal(std::int64_t value) {
    char digits[24];
    char* const end = digits + sizeof digits;
    char* start = end;
    const auto bits = static_cast<std::uint64_t>(value);
    std::uint64_t rest = value < 0 ? 0 - bits : bits;
    do {
        *--start = digits_of_sixteen[rest % 10];
    } while ((rest /= 10) != 0);
    if (value < 0) *--start = '-';
    text({start, static_cast<std::size_t>(end - start)});
}

void DumpFile::hexadecimal(std::uint64_t value, int digits) {
    char text_of_value[16];
    char* const end = text_of_value + sizeof text_of_value;
    char* start = end;
    for (; start > text_of_value && (value != 0 || end - start < digits); value >>= 4) {
        *--start = digits_of_sixteen[value & 15];
    }
    text("0x");
    text({start, static_cast<std::size_t>(end - start)});
}

void DumpFile::byte(std::uint8_t value) {
    const char two[] = {digits_of_sixteen[value >> 4], digits_of_sixteen[value & 15]};
    text({two, 2});
}

void DumpFile::copy_of(const char* path) {
    const int source = open(path, O_RDONLY | O_CLOEXEC);
    if (source < 0) return;
    char bytes[4096];
    ssize_t count;
    while ((count = read(source, bytes, sizeof bytes)) > 0 || (count < 0 && errno == EINTR)) {
        if (count > 0) text({bytes, static_cast<std::size_t>(count)});
    }
    ::close(source);
}

}  // namespace qmp::os
