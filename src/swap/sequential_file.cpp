#include "swap/sequential_file.h"

#include <utility>

#include "console/console.h"
#include "errors/file_exception.h"
#include "errors/os_errors.h"
#include "platform/os/console_device.h"
#include "platform/os/file.h"

namespace qmp::FileIO {

struct SequentialFile::Handle {
    os::File file;
};

namespace {

// Runs `attempt` until it succeeds. A failure throws, or is printed and waits for a key when the caller
// wants to try again and there is somebody to press one.
template <typename Attempt>
void open_with_retries(const char* function, const char* message, const std::string& path, bool retry,
                       Attempt attempt) {
    for (;;) {
        const os::ErrorCode error = attempt();
        if (error == os::no_error) return;
        if (!retry || !os::input_is_console()) throw FileException(function, message, path, error);
        console::print_warning(message);
        console::println(path);
        print_os_error(error);
        console::newline();
        console::println("Re-attempting...");
        console::pause('w');
    }
}

}  // namespace

SequentialFile::SequentialFile() : handle_(std::make_unique<Handle>()) {}
SequentialFile::~SequentialFile() = default;

// A moved-from file is closed and may be opened again.
SequentialFile::SequentialFile(SequentialFile&& other) noexcept
    : path_(std::move(other.path_)),
      handle_(std::exchange(other.handle_, nullptr)),
      last_error_(std::exchange(other.last_error_, 0)) {}

SequentialFile& SequentialFile::operator=(SequentialFile&& other) noexcept {
    if (this == &other) return *this;
    path_ = std::move(other.path_);
    handle_ = std::exchange(other.handle_, nullptr);
    last_error_ = std::exchange(other.last_error_, 0);
    return *this;
}

void SequentialFile::create(const std::string& path, bool retry, bool streaming) {
    close();
    if (!handle_) handle_ = std::make_unique<Handle>();
    path_ = path;
    const os::Durable durable = streaming ? os::Durable::after_close : os::Durable::after_write;
    open_with_retries("SequentialFile::create()", "Unable to create file.", path, retry,
                      [&] { return handle_->file.create(path, durable); });
}

void SequentialFile::create(const std::string& path, bool retry) {
    create(path, retry, false);
}

void SequentialFile::create_for_streaming(const std::string& path, bool retry) {
    create(path, retry, true);
}

void SequentialFile::open(const std::string& path, bool retry) {
    close();
    if (!handle_) handle_ = std::make_unique<Handle>();
    path_ = path;
    open_with_retries("SequentialFile::open()", "Unable to open file.", path, retry,
                      [&] { return handle_->file.open(path); });
}

void SequentialFile::close() {
    last_error_ = handle_ ? handle_->file.close() : os::no_error;
}

bool SequentialFile::is_open() const {
    return handle_ && handle_->file.is_open();
}

std::uint64_t SequentialFile::read(void* buffer, std::uint64_t bytes) {
    const os::Transfer done = is_open() ? handle_->file.read(buffer, bytes) : os::Transfer{0, os::invalid_handle};
    last_error_ = done.error;
    return done.bytes;
}

std::uint64_t SequentialFile::write(const void* buffer, std::uint64_t bytes) {
    const os::Transfer done = is_open() ? handle_->file.write(buffer, bytes) : os::Transfer{0, os::invalid_handle};
    last_error_ = done.error;
    return done.bytes;
}

void SequentialFile::seek(std::uint64_t offset) {
    last_error_ = is_open() ? handle_->file.seek(offset) : os::invalid_handle;
    if (last_error_ != os::no_error) {
        throw FileException("SequentialFile::seek()", "Unable to move file pointer.", path_, last_error_);
    }
}

std::uint64_t SequentialFile::size() const {
    std::uint64_t bytes = 0;
    const os::ErrorCode error = is_open() ? handle_->file.size(bytes) : os::invalid_handle;
    if (error != os::no_error) {
        throw FileException("SequentialFile::size()", "Unable to read file size.", path_, error);
    }
    return bytes;
}

}  // namespace qmp::FileIO
