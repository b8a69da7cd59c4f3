#include "numbers/parallel_copy.h"

#include <cstring>

namespace qmp {

void parallel_copy(ParallelContext parallel, Word* destination, const Word* source, std::uint64_t words) {
    if (words == 0) return;
    const BlockCut cut = BlockCut::of(words, parallel.tds, parallel_copy_threshold);
    if (cut.count == 1) {
        std::memcpy(destination, source, words * sizeof(Word));
        return;
    }
    parallel.run(0, cut.count, [&](std::uint64_t i) {
        const std::uint64_t begin = cut.begin(i);
        std::memcpy(destination + begin, source + begin, (cut.end(i, words) - begin) * sizeof(Word));
    });
}

}  // namespace qmp
