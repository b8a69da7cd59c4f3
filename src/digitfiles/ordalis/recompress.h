// Writes a part of a compressed result into files of another size, which fit among those of a result of that
// size.
#pragma once

#include <cstdint>
#include <string>

#include "digitfiles/ordalis/write_compressed.h"
#include "digitfiles/qcd_reader.h"

namespace Ordalis {

// Asks for the size and the numbers of the new files, and writes them.
void run_recompress(qmp::QCDReader& reader);

// The digits [start, end) that files of so many digits would hold, the first and the last of them given by
// their numbers; only those that the reader knows of. None when end <= start.
struct FileRange {
    std::uint64_t start;
    std::uint64_t end;
};
FileRange range_of_files(const qmp::DigitReader& reader, std::uint64_t digits_per_file, std::uint64_t first,
                         std::uint64_t last);

// The name of the result whose files' names begin like this: "Pi" for "Pi - ".
std::string result_name(const std::string& common_prefix);

// InvalidParametersException when the new files would lie where the reader looks for its own: they would
// replace some of them, perhaps before these are read.
void check_destination(const qmp::QCDReader& reader, const CompressedOutput& output);

}  // namespace Ordalis
