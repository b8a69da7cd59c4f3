#include "digitfiles/qcd_reader.h"

#include <algorithm>

#include "console/console.h"
#include "console/format.h"
#include "errors/file_exception.h"
#include "platform/os/file.h"
#include "radix/digit_codecs.h"
#include "swap/sequential_file.h"

namespace qmp {
namespace {

constexpr std::string_view extension = ".qcd";

bool exists(const std::string& path) {
    std::uint64_t bytes;
    return os::file_size(path, bytes) == os::no_error;
}

}  // namespace

QCDReader::QCDReader(const std::string& path, bool raw, std::uint64_t buffer_size) : opened_path_(path) {
    split_path(path);
    current_ = std::make_unique<QCDFileReader>(path);
    opened_number_ = current_->file_number();
    first_ = {current_->version(),         current_->radix(),        current_->digits_per_file(),
              current_->digits_per_word(), current_->first_digits(), current_->total_digits()};
    set_raw(raw);
    words_ = CheckedWords(nullptr, std::max(buffer_size, least_buffer_bytes) / sizeof(Word));
}

// The folder, the common prefix and the width of the number in the name.
void QCDReader::split_path(const std::string& path) {
    const auto refuse = [&path](const char* message) {
        throw FileIO::FileException("QCDReader::QCDReader()", message, path);
    };
    if (path.size() < extension.size()) refuse("File name is too short.");
    if (!path.ends_with(extension)) refuse("Invalid Extension");
    const std::size_t name = path.find_last_of("/\\:") + 1;
    search_paths_ = {name == 0 ? std::string("./") : path.substr(0, name)};
    prefix_ = path.substr(name, path.size() - name - extension.size());
    const std::size_t number = prefix_.find_last_not_of("0123456789") + 1;
    number_width_ = prefix_.size() - number;
    prefix_.resize(number);
}

void QCDReader::set_raw(bool raw) {
    if (first_.radix == 10) {
        unpack_ = raw ? unpack_d19 : unpack_d19_text;
    } else {
        unpack_ = raw ? unpack_h16 : unpack_h16_text;
    }
    empty_buffer();
}

std::uint64_t QCDReader::number_of_files() const {
    const std::uint64_t total = first_.total_digits;
    return total / first_.digits_per_file + (total % first_.digits_per_file != 0);
}

void QCDReader::add_search_path(const std::string& folder) {
    search_paths_.push_back(folder.empty() ? std::string("./") : FileIO::with_trailing_slash(folder));
}

std::string QCDReader::find_file(std::uint64_t k) const {
    if (k == opened_number_) return opened_path_;
    for (const std::string& folder : search_paths_) {
        std::string number = std::to_string(k);
        do {
            std::string path = folder + prefix_;
            path.append(number).append(extension);
            if (exists(path)) return path;
            number.insert(0, 1, '0');
        } while (number.size() <= number_width_);
    }
    throw FileIO::FileException("QCDReader::set_current_file()", "Unable to open file #" + std::to_string(k),
                                search_paths_.front() + prefix_ + std::to_string(k) + ".qcd");
}

void QCDReader::set_current_file(std::uint64_t k) {
    if (k != current_->file_number()) load_new_file(find_file(k), k);
}

void QCDReader::load_new_file(const std::string& path, std::uint64_t k) {
    auto file = std::make_unique<QCDFileReader>(path);
    const auto require = [&path](bool same, const char* message) {
        if (!same) throw Ordalis::InconsistentMetaData("QCDReader::load_new_file", message, path);
    };
    require(file->version() == first_.version, "File version does not match.");
    require(file->radix() == first_.radix, "Radix does not match.");
    require(file->digits_per_file() == first_.digits_per_file, "Digits per file does not match.");
    require(file->digits_per_word() == first_.digits_per_word, "Digits per word does not match.");
    require(file->first_digits() == first_.first_digits, "First digits do not match.");
    const std::uint64_t total = file->total_digits();
    require(total == 0 || first_.total_digits == 0 || total == first_.total_digits,
            "Total digit does not match.");
    require(file->file_number() == k, "File number does not match.");
    if (first_.total_digits == 0) first_.total_digits = total;
    current_ = std::move(file);
}

void QCDReader::read(std::uint64_t position, char* output, std::uint64_t count) {
    do {
        const auto check = [&] {
            const std::uint64_t total = first_.total_digits;
            if (total != 0 && (count > total || position > total - count)) {
                throw FileIO::FileException("QCDReader::read()", "Out of range.", current_->path());
            }
        };
        check();
        if (count == 0) return;
        set_current_file(position / first_.digits_per_file);
        check();  // the file may know the total
        const std::uint64_t part = std::min(count, current_->end() - position);
        current_->read_chars(position, output, part, words_.data(), words_.words(), unpack_);
        position += part;
        output += part;
        count -= part;
    } while (count > 0);
}

bool QCDReader::check_range(std::uint64_t start, std::uint64_t end) {
    if (start >= end) throw StringException("QCDReader::check_range()", "Invalid Parameters");
    const std::uint64_t last = (end - 1) / first_.digits_per_file;
    for (std::uint64_t k = start / first_.digits_per_file; k <= last; ++k) {
        try {
            set_current_file(k);
        } catch (const Exception&) {
            return false;
        }
    }
    return true;
}

std::string QCDReader::get_first_digits(std::uint64_t) {
    return first_.first_digits;
}

void QCDReader::reload() {
    allocate_buffer();
    const auto check = [&] {
        const std::uint64_t total = first_.total_digits;
        if (total == 0 || position_ < total) return;
        throw FileIO::FileException("QCDReader::reload()", "No more digits left: " + std::to_string(total),
                                    current_->path());
    };
    check();
    set_current_file(position_ / first_.digits_per_file);
    check();  // the file may know the total
    const std::uint64_t count = std::min(buffer_size_, current_->end() - position_);
    empty_buffer();  // should the read fail
    read(position_, buffer_.get() + (buffer_size_ - count), count);
    buffer_offset_ = buffer_size_ - count;
}

void QCDReader::print_info() const {
    const auto text = [](std::uint64_t column, const char* label, const std::string& value) {
        console::print_column_line(column, label, value);
    };
    const auto line = [&text](const char* label, std::uint64_t value) {
        text(20, label, console::format_int(value));
    };
    text(20, "Name:", prefix_);
    line("max_id_length:", number_width_);
    console::println("Search Paths:");
    for (const std::string& folder : search_paths_) console::println("    " + folder);
    line("Radix:", first_.radix);
    line("digits_per_word:", first_.digits_per_word);
    text(20, "first_digits:", first_.first_digits);
    line("total_digits:", first_.total_digits);
    line("digits_per_file:", first_.digits_per_file);
    const std::uint64_t per_file = first_.digits_per_file;
    const std::uint64_t per_word = first_.digits_per_word;
    line("blocks_per_file:", per_file / per_word + (per_file % per_word != 0));
    line("bin_buffer_L:", words_.words());
    line("buffer_L:", buffer_size_);
    text(24, "Iterator File Offset:", console::format_int(position_));
    text(24, "Iterator Buffer Offset:", console::format_int(buffer_offset_));
}

}  // namespace qmp
