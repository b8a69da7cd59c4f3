#include "digitfiles/open_digit_file.h"

#include "digitfiles/qcd_reader.h"
#include "digitfiles/text_reader.h"
#include "errors/file_exception.h"

namespace qmp {

std::unique_ptr<DigitReader> OpenDigitFile(const std::string& path, bool raw, std::uint64_t buffer_size) {
    const auto fail = [&](const std::string& message) {
        throw FileIO::FileException("OpenDigitFile()", message, path);
    };
    const std::size_t point = path.rfind('.');
    if (point == std::string::npos) fail("No Extension found.");
    const std::string extension = path.substr(point);
    if (extension == ".qcd") return std::make_unique<QCDReader>(path, raw, buffer_size);
    if (extension != ".txt") fail("Unrecognized Extension: " + extension);
    return std::make_unique<TextReader>(path, raw);
}

}  // namespace qmp
