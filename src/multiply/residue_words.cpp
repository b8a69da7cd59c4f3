#include "multiply/residue_words.h"

#include <algorithm>
#include <cstring>

#include "multiply/basecase/word_kernels.h"

namespace qmp {
namespace {

constexpr Word all_ones = ~Word{0};
constexpr std::uint64_t words_per_task = 16384;
constexpr std::uint64_t chunk_words = 128;

// Little-endian bytes seen as words, zero beyond their end.
class ByteWords {
  public:
    ByteWords(const void* data, std::uint64_t bytes)
        : data_(static_cast<const unsigned char*>(data)), bytes_(bytes) {}

    Word operator[](std::uint64_t i) const {
        Word word = 0;
        read(&word, i, 1);
        return word;
    }
    // Words [first, first + count).
    void read(Word* words, std::uint64_t first, std::uint64_t count) const {
        const std::uint64_t from = std::min(8 * first, bytes_);
        const std::uint64_t size = std::min(8 * count, bytes_ - from);
        std::memcpy(words, data_ + from, size);
        std::memset(reinterpret_cast<unsigned char*>(words) + size, 0, 8 * count - size);
    }
    // Up to, and from, this byte.
    ByteWords below(std::uint64_t cut) const { return {data_, std::min(cut, bytes_)}; }
    ByteWords above(std::uint64_t cut) const {
        return bytes_ > cut ? ByteWords(data_ + cut, bytes_ - cut) : ByteWords(data_, 0);
    }

  private:
    const unsigned char* data_;
    std::uint64_t bytes_;
};

struct Sum {
    static bool words(Word* destination, const Word* x, const Word* y, std::uint64_t n, bool carry) {
        return add_words(destination, x, y, n, carry);
    }
    // The carry into word i of x + y + carry.
    template <typename X, typename Y>
    static bool carry_into(std::uint64_t i, const X& x, const Y& y, bool carry) {
        while (i-- > 0) {
            const Word term = x[i], sum = term + y[i];
            if (sum < term) return true;
            if (sum != all_ones) return false;
        }
        return carry;
    }
};

struct Difference {
    static bool words(Word* destination, const Word* x, const Word* y, std::uint64_t n, bool borrow) {
        return sub_words(destination, x, y, n, borrow);
    }
    // The borrow into word i of x - y - borrow.
    template <typename X, typename Y>
    static bool carry_into(std::uint64_t i, const X& x, const Y& y, bool borrow) {
        while (i-- > 0) {
            const Word from = x[i], taken = y[i];
            if (from != taken) return from < taken;
        }
        return borrow;
    }
};

bool all_words_are(const Word* words, std::uint64_t n, Word value) {
    return std::all_of(words, words + n, [=](Word w) { return w == value; });
}

// destination[0 .. n) = low + high + carry, or low - high - borrow, modulo R^n.
template <typename Operation>
void fold(ParallelContext parallel, Word* destination, const ByteWords& low, const ByteWords& high,
          std::uint64_t n, bool carry_in) {
    const BlockCut cut = BlockCut::of(n, parallel.tds, words_per_task);
    parallel.run(0, cut.count, [&](std::uint64_t task) {
        const std::uint64_t begin = cut.begin(task), end = cut.end(task, n);
        bool carry = Operation::carry_into(begin, low, high, carry_in);
        for (std::uint64_t i = begin; i < end; i += chunk_words) {
            Word x[chunk_words], y[chunk_words];
            const std::uint64_t count = std::min(end - i, chunk_words);
            low.read(x, i, count);
            high.read(y, i, count);
            carry = Operation::words(destination + i, x, y, count, carry);
        }
    });
}

// One half of the product: the words of x + y, or of x - y, shifted down by one bit.
struct Half {
    std::uint64_t begin;  // words of the half that the window touches
    std::uint64_t end;
    std::uint64_t base;  // the half's first byte in the product
    bool carry;          // into its word 0
    Word bit_above;      // comes down into the top bit of its last word
};

struct Window {
    unsigned char* destination;
    std::uint64_t first;  // bytes of the product
    std::uint64_t end;

    Half half(std::uint64_t base, std::uint64_t n, bool carry, Word bit_above) const {
        const std::uint64_t stop = base + 8 * n;
        const std::uint64_t from = std::clamp(first, base, stop), to = std::clamp(end, base, stop);
        return {(from - base) / 8, (to - base + 7) / 8, base, carry, bit_above};
    }
    // The product's bytes from `position`, as far as they are wanted.
    void store(std::uint64_t position, const Word* words, std::uint64_t count) const {
        const std::uint64_t from = std::max(first, position), to = std::min(end, position + 8 * count);
        if (from >= to) return;
        const auto* bytes = reinterpret_cast<const unsigned char*>(words);
        std::memcpy(destination + (from - first), bytes + (from - position), to - from);
    }
};

template <typename Operation>
class HalfWriter {
  public:
    // For words [begin, end) of the half, as far as the window touches them.
    HalfWriter(const Window& window, const Half& half, const Word* x, const Word* y, std::uint64_t n,
               std::uint64_t begin, std::uint64_t end)
        : window_(window),
          half_(half),
          x_(x),
          y_(y),
          n_(n),
          next_(std::max(begin, half.begin)),
          end_(std::min(end, half.end)) {
        if (next_ < end_) carry_ = Operation::carry_into(next_, x, y, half.carry);
    }

    // Goes on up to word `stop`.
    void write_to(std::uint64_t stop) {
        stop = std::min(stop, end_);
        while (next_ < stop) write(std::min(stop - next_, chunk_words));
    }

  private:
    void write(std::uint64_t count) {
        Word words[chunk_words + 1];
        carry_ = Operation::words(words, x_ + next_, y_ + next_, count, carry_);
        const std::uint64_t above = next_ + count;
        words[count] = above == n_ ? half_.bit_above : x_[above] ^ y_[above] ^ Word { carry_ };
        for (std::uint64_t i = 0; i < count; ++i) words[i] = words[i] >> 1 | words[i + 1] << 63;
        window_.store(half_.base + 8 * next_, words, count);
        next_ = above;
    }

    const Window& window_;
    const Half& half_;
    const Word* x_;
    const Word* y_;
    std::uint64_t n_;
    std::uint64_t next_;
    std::uint64_t end_;
    bool carry_ = false;
};

// 2P = S + R^n D modulo R^(2n) - 1 as two chains of words: S = x + y + carry, D = x - y - borrow, each
// modulo R^n, with y lowered by one where that settles the carry of S into D or the borrow of D into S.
struct Chains {
    bool carry;
    bool borrow;
    Word lowest_bit;  // of 2P: it goes to the top of P
};

Chains settle_carries(Word* x, Word* y, bool y_degenerate, std::uint64_t n) {
    if (x[n - 1] == all_ones && all_words_are(x, n, all_ones)) std::fill(x, x + n, 0);  // another zero
    // Without the carries 2P = (x + y) + R^n (x - y). A borrow out of the top comes off S at the bottom:
    // x + y - 1 = x + (y - 1) and x - y = x - (y - 1) - 1.
    const bool borrows = y_degenerate || Difference::carry_into(n, x, y, false);
    if (borrows) sub_borrow(y, n, true);  // R^n, held as zero words, becomes all ones
    const bool carries = Sum::carry_into(n, x, y, false);
    if (borrows) {
        // The carry out of S meets the borrow into D. Where that leaves D zero, D never needed the one it
        // took from S, which gets it back; S = 2x is even then.
        const bool returned = carries && !Difference::carry_into(n, x, y, false);
        return {false, !carries, (x[0] ^ y[0] ^ Word{returned}) & 1};
    }
    if (!carries) return {false, false, (x[0] ^ y[0]) & 1};
    // x - y + 1 = x - (y - 1) and x + y = x + (y - 1) + 1.
    sub_borrow(y, n, true);
    return {true, false, (x[0] ^ y[0] ^ 1) & 1};
}

}  // namespace

void fold_cyclic(ParallelContext parallel, Word* destination, const void* operand, std::uint64_t bytes,
                 std::uint64_t n) {
    const ByteWords words(operand, bytes), low = words.below(8 * n), high = words.above(8 * n);
    const bool end_around = Sum::carry_into(n, low, high, false);
    fold<Sum>(parallel, destination, low, high, n, end_around);
}

bool fold_negacyclic(ParallelContext parallel, Word* destination, const void* operand, std::uint64_t bytes,
                     std::uint64_t n) {
    const ByteWords words(operand, bytes), low = words.below(8 * n), high = words.above(8 * n);
    const bool end_around = Difference::carry_into(n, low, high, false);
    fold<Difference>(parallel, destination, low, high, n, false);
    // After a borrow the words are the residue less one.
    return add_carry(destination, n, end_around);
}

bool negate_negacyclic(Word* destination, const void* operand, std::uint64_t bytes, std::uint64_t n) {
    ByteWords(operand, bytes).read(destination, 0, n);
    if (all_words_are(destination, n, 0)) return false;
    // R^n + 1 - b = (R^n - 1 - b) + 2
    for (std::uint64_t i = 0; i < n; ++i) destination[i] = ~destination[i];
    const bool carry = add_carry(destination, n, true);
    return add_carry(destination, n, true) || carry;
}

void recombine(ParallelContext parallel, void* destination, std::uint64_t first, std::uint64_t end, Word* x,
               Word* y, bool y_degenerate, std::uint64_t n) {
    const Chains chains = settle_carries(x, y, y_degenerate, n);
    const Window window{static_cast<unsigned char*>(destination), first, end};
    const Half lower = window.half(0, n, chains.carry, x[0] ^ y[0] ^ Word{chains.borrow});
    const Half upper = window.half(8 * n, n, chains.borrow, chains.lowest_bit);

    // Both halves of a stretch that stays in cache, so that x and y are read from memory once.
    constexpr std::uint64_t stretch_words = 1024;
    const BlockCut cut = BlockCut::of(n, parallel.tds, words_per_task);
    parallel.run(0, cut.count, [&](std::uint64_t task) {
        const std::uint64_t block_begin = cut.begin(task), block_end = cut.end(task, n);
        HalfWriter<Sum> sum(window, lower, x, y, n, block_begin, block_end);
        HalfWriter<Difference> difference(window, upper, x, y, n, block_begin, block_end);
        for (std::uint64_t i = block_begin; i < block_end; i += stretch_words) {
            sum.write_to(i + stretch_words);
            difference.write_to(i + stretch_words);
        }
    });
}

}  // namespace qmp
