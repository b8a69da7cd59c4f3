#include "huge_page_gain.h"

#include <algorithm>
#include <cstdio>
#include <optional>
#include <stdexcept>

#include "multiply/multiply.h"
#include "multiply/multiply_context.h"
#include "multiply/twiddle_set.h"
#include "platform/memory/mmap_allocator.h"
#include "platform/parallel/push_pool_parallelizer.h"
#include "support/timing.h"
#include "support/workspace.h"

namespace bench {
namespace {

qmp::ParallelContext parallel_context(std::uint64_t tasks) {
    static qmp::PushPoolParallelizer pool;
    if (tasks == 1) return qmp::ParallelContext::sequential();
    pool.warm_up();
    return {tasks, &pool};
}

// Words of a heap of their own.
class HeapWords {
  public:
    HeapWords(std::uint64_t words, qmp::PageMode large) : words_(words) {
        qmp::MmapAllocator allocator;
        allocator.large_pages = large;
        allocator.locked_pages = qmp::PageMode::disabled;
        block_ = allocator.create_heap(std::max<std::uint64_t>(words, 1) * sizeof(qmp::Word), nullptr, 1);
        if (!block_->base) throw std::runtime_error("not enough memory");
    }
    qmp::Word* data() const { return static_cast<qmp::Word*>(block_->base); }
    std::uint64_t words() const { return words_; }
    const qmp::HeapBlock& block() const { return *block_; }

  private:
    std::uint64_t words_;
    std::unique_ptr<qmp::HeapBlock> block_;
};

// An n x n product, all of whose memory is of one kind.
class ProductInHeaps {
  public:
    ProductInHeaps(std::uint64_t n, std::uint64_t tasks, qmp::PageMode large)
        : parallel_(parallel_context(tasks)),
          a_(n, large),
          b_(n, large),
          product_(2 * n, large),
          twiddle_memory_(qmp::TwiddleSet::bytes_needed(2 * n) / sizeof(qmp::Word), large),
          twiddles_(twiddle_memory_.data(), qmp::TwiddleSet::bytes_needed(2 * n), 2 * n, parallel_),
          scratch_(qmp::scratch_words_for(2 * n, tasks), large),
          context_(parallel_, &twiddles_, scratch_.data(), scratch_.words()) {
        std::ranges::copy(random_words(n, n), a_.data());
        std::ranges::copy(random_words(n, n + 1), b_.data());
    }

    void run() const {
        qmp::multiply(context_, product_.data(), a_.data(), a_.words(), b_.data(), b_.words());
    }
    bool equals(const ProductInHeaps& other) const {
        return std::equal(product_.data(), product_.data() + product_.words(), other.product_.data());
    }
    // Of all its memory, the fraction on huge pages.
    double large_fraction() const {
        double large = 0, all = 0;
        for (const HeapWords* heap : {&a_, &b_, &product_, &twiddle_memory_, &scratch_}) {
            const auto bytes = static_cast<double>(heap->block().size);
            all += bytes;
            large += heap->block().large * bytes;
        }
        return large / all;
    }

  private:
    qmp::ParallelContext parallel_;
    HeapWords a_, b_, product_;
    HeapWords twiddle_memory_;
    qmp::TwiddleSet twiddles_;
    HeapWords scratch_;
    qmp::MultiplyContext context_;
};

bool print_line(std::uint64_t n, std::uint64_t tasks, double budget) {
    const ProductInHeaps small(n, tasks, qmp::PageMode::disabled);
    const ProductInHeaps large(n, tasks, qmp::PageMode::attempt);
    const Pair seconds = measure([&] { large.run(); }, [&] { small.run(); }, budget);
    std::printf("%6llu %14.6f %14.6f %10.0f%% %9.3f\n", static_cast<unsigned long long>(tasks), seconds.rival,
                seconds.ours, large.large_fraction() * 100, seconds.rival / seconds.ours);
    std::fflush(stdout);
    if (small.equals(large)) return true;
    std::printf("The products differ.\n");
    return false;
}

}  // namespace

bool print_gain(const Options& options) {
    const std::uint64_t n = options.product;
    std::printf("\nProduct of %llu x %llu words; operands, result, tables and scratch in heaps of \"mmap\"\n",
                static_cast<unsigned long long>(n), static_cast<unsigned long long>(n));
    if (2 * n > reach()) {
        std::printf("not reached\n");
        return false;
    }
    std::printf("%6s %14s %14s %11s %9s\n", "tasks", "small pages s", "large pages s", "huge", "gain");
    bool equal = true;
    for (const std::uint64_t tasks : options.tasks) equal &= print_line(n, tasks, options.budget);
    return equal;
}

}  // namespace bench
