#include "digests.h"

#include <algorithm>

#include "platform/sha2.h"
#include "swap/sequential_file.h"

namespace bench {
namespace {

constexpr std::uint64_t piece = std::uint64_t{1} << 20;

// Appends up to `bytes` bytes; false at the end of the file.
bool append(qmp::Sha256& digest, qmp::FileIO::SequentialFile& file, std::uint64_t bytes) {
    std::vector<std::uint8_t> buffer(piece);
    while (bytes > 0) {
        const std::uint64_t wanted = std::min(bytes, piece);
        const std::uint64_t got = file.read(buffer.data(), wanted);
        digest.append({buffer.data(), got});
        if (got < wanted) return false;
        bytes -= got;
    }
    return true;
}

// Of what was appended until now; more can be appended to the original.
std::string current(qmp::Sha256 digest) {
    return qmp::to_hexadecimal(digest.finish());
}

}  // namespace

std::vector<std::string> file_digests(const std::string& path, const std::vector<std::uint64_t>& ends) {
    qmp::FileIO::SequentialFile file;
    file.open(path);
    qmp::Sha256 digest;
    std::vector<std::string> result;
    std::uint64_t position = 0;
    for (const std::uint64_t end : ends) {
        append(digest, file, end - position);
        position = end;
        result.push_back(current(digest));
    }
    while (append(digest, file, piece)) {
    }
    result.push_back(current(digest));
    return result;
}

}  // namespace bench
