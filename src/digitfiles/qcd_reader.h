// Reads compressed digit files: any range of a result, whichever of its files it lies in.
//
// The name of the file that is opened tells those of the others: without ".qcd" and the decimal digits before
// it, it is their common prefix. File k is looked for in all search folders, with its number as it is and
// with leading zeros up to the width of the opened file's.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "digitfiles/digit_reader.h"
#include "digitfiles/qcd_file_reader.h"
#include "platform/memory/checked_array.h"

namespace qmp {

class QCDReader final : public DigitReader {
  public:
    static constexpr std::uint64_t least_buffer_bytes = 4096;

    // FileException ("QCDReader::QCDReader()", and those of QCDFileReader). The buffer, in bytes, is for
    // packed words; a smaller one than the least is raised to it.
    explicit QCDReader(const std::string& path, bool raw = false, std::uint64_t buffer_size = 1048576);

    const char* get_extension() const override { return "qcd"; }
    // FileException: beyond a known end ("QCDReader::read()", "Out of range."), a file that is missing or not
    // of this result (Ordalis::InconsistentMetaData), a damaged one.
    void read(std::uint64_t position, char* output, std::uint64_t count) override;
    void print_info() const override;
    std::uint32_t get_radix() const override { return first_.radix; }
    // 0 until a file that knows the total has been opened.
    std::uint64_t get_digits() const override { return first_.total_digits; }
    void set_raw(bool raw) override;
    // True when every file that the digits belong into can be opened; the last one may turn out to end before
    // `end`, which get_digits() then tells. StringException ("QCDReader::check_range()") for an empty range.
    bool check_range(std::uint64_t start, std::uint64_t end) override;
    // The integer part and the point, whatever `count` is.
    std::string get_first_digits(std::uint64_t count) override;
    // Loads up to the end of the file that holds position(). FileException ("QCDReader::reload()") when that
    // is the known end.
    void reload() override;

    // Another folder that files of the result may lie in.
    void add_search_path(const std::string& folder);
    // Each with a '/' at its end; the opened file's folder comes first.
    const std::vector<std::string>& search_paths() const { return search_paths_; }
    // What the names of all files begin with: "Pi - Dec - Chudnovsky (1988) - ".
    const std::string& common_prefix() const { return prefix_; }
    std::uint64_t digits_per_file() const { return first_.digits_per_file; }
    // 0 while the total is unknown.
    std::uint64_t number_of_files() const;

    // Makes file k the current one. FileException when there is none, or it does not belong to the result.
    void set_current_file(std::uint64_t k);

  private:
    // What all files of a result have in common.
    struct MetaData {
        std::string version;
        std::uint32_t radix;
        std::uint64_t digits_per_file;
        std::uint64_t digits_per_word;
        std::string first_digits;
        std::uint64_t total_digits;
    };

    void split_path(const std::string& path);
    std::string find_file(std::uint64_t k) const;
    void load_new_file(const std::string& path, std::uint64_t k);

    std::vector<std::string> search_paths_;
    std::string opened_path_;
    std::string prefix_;
    std::uint64_t number_width_ = 0;
    MetaData first_{};
    std::uint64_t opened_number_ = 0;
    std::unique_ptr<QCDFileReader> current_;
    CheckedWords words_;
    QCDFileReader::Unpacker unpack_ = nullptr;
};

}  // namespace qmp
