// Any bytes as a compressed and as a text digit file: readers deliver digits that the file holds, or one of
// their exceptions.
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>

#include "digitfiles/qcd_reader.h"
#include "digitfiles/text_reader.h"
#include "errors/file_exception.h"
#include "fuzz/fuzz_failure.h"
#include "radix/digit_codecs.h"

namespace {

using kelvara_test::fuzz_failure;

// A file that goes with the process.
class File {
  public:
    explicit File(const std::string& extension) {
        const std::string name = "kelvara-fuzz-" + std::to_string(std::random_device()()) + extension;
        path_ = std::filesystem::temp_directory_path() / name;
    }
    ~File() {
        std::error_code ignored;
        std::filesystem::remove(path_, ignored);
    }
    // A new file each time: some file systems carry one that is emptied and written anew to the disk at once.
    void put(const std::string& content) const {
        std::error_code ignored;
        std::filesystem::remove(path_, ignored);
        std::ofstream(path_, std::ios::binary) << content;
    }
    std::string path() const { return path_.string(); }

  private:
    std::filesystem::path path_;
};

// The digit as it stands in the file's words, without the code under test; beyond the radix where there is
// none.
unsigned digit_in_words(const qmp::QCDFileReader& file, const std::string& content, std::uint64_t position) {
    const std::uint64_t relative = position - file.start();
    const std::uint64_t at = file.data_offset() + relative / file.digits_per_word() * 8;
    if (at > content.size() || content.size() - at < 8) fuzz_failure("a digit from behind the end");
    std::uint64_t word;
    std::memcpy(&word, content.data() + at, sizeof(word));
    for (std::uint64_t i = relative % file.digits_per_word() + 1; i < file.digits_per_word(); ++i) {
        word /= file.radix();
    }
    return static_cast<unsigned>(word % file.radix());
}

void read_words(const std::string& path, const std::string& content) {
    qmp::QCDFileReader file(path);
    if (file.radix() != 10 && file.radix() != 16) fuzz_failure("an unknown radix");
    if (file.end() <= file.start()) fuzz_failure("a file without digits");
    const std::uint64_t held = (content.size() - file.data_offset()) / 8 * file.digits_per_word();
    for (const std::uint64_t from : {std::uint64_t{0}, held / 3, held, held + 100}) {
        for (const std::uint64_t count : {std::uint64_t{1}, std::uint64_t{200}, held}) {
            std::string digits(count, '\x55');
            qmp::Word buffer[7];
            try {
                file.read_chars(file.start() + from, digits.data(), count, buffer, 7,
                                file.radix() == 10 ? qmp::unpack_d19 : qmp::unpack_h16);
            } catch (const qmp::FileIO::FileException&) {
                continue;
            }
            for (std::uint64_t i = 0; i < count; ++i) {
                if (static_cast<unsigned char>(digits[i]) !=
                    digit_in_words(file, content, file.start() + from + i)) {
                    fuzz_failure("a wrong digit");
                }
            }
        }
    }
}

void read_result(const std::string& path) {
    qmp::QCDReader reader(path, false, 0);
    const std::uint64_t total = reader.get_digits();
    reader.check_range(0, 1);
    reader.check_range(total, total + 1);
    char digits[100];
    reader.read(total > 100 ? total - 100 : 0, digits, total > 0 && total < 100 ? total : 100);
}

void read_text(const std::string& path, const std::string& content) {
    qmp::TextReader reader(path, true);
    const std::uint64_t total = reader.get_digits();
    if (reader.data_offset() + total != content.size()) fuzz_failure("a text of another length");
    std::string digits(total, '\x55');
    reader.read(0, digits.data(), total);
    for (const char digit : digits) {
        if (static_cast<std::uint32_t>(digit) >= reader.get_radix()) fuzz_failure("no digit");
    }
}

// Whatever a reader throws is one of the program's exceptions; anything else ends the process.
template <typename Reading>
void try_reading(Reading&& reading) {
    try {
        reading();
    } catch (const qmp::FileIO::FileException& exception) {
        if (exception.message().empty()) fuzz_failure("an empty message");
    } catch (const qmp::StringException& exception) {
        if (exception.message().empty()) fuzz_failure("an empty message");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const File compressed(" - 3.qcd");
    static const File text(".txt");
    const std::string content(data, data + size);
    compressed.put(content);
    try_reading([&] { read_words(compressed.path(), content); });
    try_reading([&] { read_result(compressed.path()); });
    text.put(content);
    try_reading([&] { read_text(text.path(), content); });
    return 0;
}
