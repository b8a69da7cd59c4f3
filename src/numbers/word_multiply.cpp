#include "numbers/word_multiply.h"

#include <algorithm>

#include "multiply/basecase/word_kernels.h"

namespace qmp {
namespace {

// Adds each block's carry word to the block above. What leaves that block's top joins its own carry
// word, which cannot overflow: block * w + carry fits in one word more than the block.
Word join_blocks(const BlockCut& cut, Word* destination, std::uint64_t n, Word* carries) {
    for (std::uint64_t i = 1; i < cut.count; ++i) {
        Word* block = destination + cut.begin(i);
        const std::uint64_t length = cut.end(i, n) - cut.begin(i);
        block[0] += carries[i - 1];
        carries[i] += add_carry(block + 1, length - 1, block[0] < carries[i - 1]);
    }
    return carries[cut.count - 1];
}

}  // namespace

Word multiply_by_word(ParallelContext parallel, Word* destination, const Word* a, std::uint64_t n, Word w) {
    const std::uint64_t tasks = std::min(parallel.tds, word_multiply_most_tasks);
    const BlockCut cut = BlockCut::of(n, tasks, word_multiply_block);
    if (cut.count <= 1) return mul_word(destination, a, n, w);

    Word carries[word_multiply_most_tasks];
    parallel.run(0, cut.count, [&](std::uint64_t i) {
        const std::uint64_t begin = cut.begin(i);
        carries[i] = mul_word(destination + begin, a + begin, cut.end(i, n) - begin, w);
    });
    return join_blocks(cut, destination, n, carries);
}

}  // namespace qmp
