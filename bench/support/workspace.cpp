#include "support/workspace.h"

#include <new>

#include "multiply/multiply.h"
#include "platform/os/memory.h"
#include "platform/parallel/push_pool_parallelizer.h"

namespace bench {
namespace {

constexpr std::align_val_t alignment{64};

qmp::ParallelContext parallel_context(std::uint64_t tasks) {
    static qmp::PushPoolParallelizer pool;
    if (tasks == 1) return qmp::ParallelContext::sequential();
    return {tasks, &pool};
}

std::uint64_t twiddle_bytes(std::uint64_t product_words) {
    return qmp::TwiddleSet::bytes_needed(product_words);
}

}  // namespace

AlignedWords::AlignedWords(std::uint64_t words)
    : data_(static_cast<qmp::Word*>(::operator new((words + 1) * sizeof(qmp::Word), alignment))) {
    // As the program's own reservations.
    qmp::os::prefer_large_pages(data_.get(), words * sizeof(qmp::Word));
}

void AlignedWords::Free::operator()(qmp::Word* words) const {
    ::operator delete(words, alignment);
}

Words random_words(std::uint64_t n, std::uint64_t seed) {
    Words words(n);
    std::uint64_t state = seed;
    for (qmp::Word& word : words) {
        state = state * 6364136223846793005 + 1442695040888963407;
        word = state ^ (state >> 29);
    }
    words.back() |= std::uint64_t{1} << 63;
    return words;
}

std::uint64_t reach() {
    return qmp::basic_table_64().largest_product();
}

Workspace::Workspace(std::uint64_t product_words, std::uint64_t tasks)
    : parallel_(parallel_context(tasks)),
      twiddle_memory_(twiddle_bytes(product_words) / sizeof(qmp::Word)),
      twiddles_(twiddle_memory_.data(), twiddle_bytes(product_words), product_words, parallel_),
      scratch_(qmp::scratch_words_for(product_words, tasks)),
      context_(parallel_, &twiddles_, scratch_.data(), qmp::scratch_words_for(product_words, tasks)) {}

}  // namespace bench
