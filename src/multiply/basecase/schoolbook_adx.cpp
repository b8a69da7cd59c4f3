// Schoolbook kernels for processors with mulx and two independent carry chains (adcx, adox).
//
// A product is cut into blocks of up to seven words of one operand. A block's running column stays in
// registers while the rows, the words of the other operand, go by; each row takes one product per word of
// the block, adds its low halves along one chain and its high halves along the other, and lets the lowest
// word of the column leave. The compiler makes neither chain from intrinsics, so a row is assembly.
#include "multiply/basecase/schoolbook_kernels.h"

namespace {

using Word = std::uint64_t;
using Count = std::uint64_t;

constexpr int widest = 7;

// [c] becomes the high half plus the next column word [next], [next] the following high half, and [c] gets
// its low half.
#define QMP_ROW_STEP(c, next, offset)         \
    "adcxq %[" next "], %[" c                 \
    "]\n\t"                                   \
    "mulxq " offset "(%[a]), %[low], %[" next \
    "]\n\t"                                   \
    "adoxq %[low], %[" c "]\n\t"

#define QMP_ROW_1
#define QMP_ROW_2 QMP_ROW_1 QMP_ROW_STEP("c0", "c1", "8")
#define QMP_ROW_3 QMP_ROW_2 QMP_ROW_STEP("c1", "c2", "16")
#define QMP_ROW_4 QMP_ROW_3 QMP_ROW_STEP("c2", "c3", "24")
#define QMP_ROW_5 QMP_ROW_4 QMP_ROW_STEP("c3", "c4", "32")
#define QMP_ROW_6 QMP_ROW_5 QMP_ROW_STEP("c4", "c5", "40")
#define QMP_ROW_7 QMP_ROW_6 QMP_ROW_STEP("c5", "c6", "48")

// The same where no column comes in: one chain.
#define QMP_FIRST_STEP(c, next, offset)       \
    "mulxq " offset "(%[a]), %[low], %[" next \
    "]\n\t"                                   \
    "adcq %[low], %[" c "]\n\t"

#define QMP_FIRST_1
#define QMP_FIRST_2 QMP_FIRST_1 QMP_FIRST_STEP("c0", "c1", "8")
#define QMP_FIRST_3 QMP_FIRST_2 QMP_FIRST_STEP("c1", "c2", "16")
#define QMP_FIRST_4 QMP_FIRST_3 QMP_FIRST_STEP("c2", "c3", "24")
#define QMP_FIRST_5 QMP_FIRST_4 QMP_FIRST_STEP("c3", "c4", "32")
#define QMP_FIRST_6 QMP_FIRST_5 QMP_FIRST_STEP("c4", "c5", "40")
#define QMP_FIRST_7 QMP_FIRST_6 QMP_FIRST_STEP("c5", "c6", "48")

#define QMP_COLUMNS_1(with) [c0] with(c[0])
#define QMP_COLUMNS_2(with) QMP_COLUMNS_1(with), [c1] with(c[1])
#define QMP_COLUMNS_3(with) QMP_COLUMNS_2(with), [c2] with(c[2])
#define QMP_COLUMNS_4(with) QMP_COLUMNS_3(with), [c3] with(c[3])
#define QMP_COLUMNS_5(with) QMP_COLUMNS_4(with), [c4] with(c[4])
#define QMP_COLUMNS_6(with) QMP_COLUMNS_5(with), [c5] with(c[5])
#define QMP_COLUMNS_7(with) QMP_COLUMNS_6(with), [c6] with(c[6])

template <int Width>
struct Block {
    Word words[Width];
};

// c = the column (a * x + above + c), without its lowest word, which is returned.
//
// Nothing overflows: a * x <= (2^64w - 1)(2^64 - 1), and with a full column and a full word added it is
// 2^(64w + 64) - 1 at most.
#define QMP_ROW(w, top)                                                                               \
    template <bool Accumulate>                                                                        \
    inline __attribute__((always_inline)) Word row_##w(Word* c, const Word* a, Word x, Word above) {  \
        Word low;                                                                                     \
        Word bottom = c[0];                                                                           \
        if constexpr (Accumulate) {                                                                   \
            asm("xorl %k[low], %k[low]\n\t"                                                           \
                "mulxq (%[a]), %[low], %[c0]\n\t"                                                     \
                "adcxq %[above], %[bottom]\n\t"                                                       \
                "adoxq %[low], %[bottom]\n\t" QMP_ROW_##w                                             \
                "movl $0, %k[low]\n\t"                                                                \
                "adcxq %[low], %[" top                                                                \
                "]\n\t"                                                                               \
                "adoxq %[low], %[" top "]"                                                            \
                : QMP_COLUMNS_##w("+&r"), [low] "=&r"(low), [bottom] "+&r"(bottom)                    \
                : [a] "r"(a), "d"(x), [above] "rm"(above), "m"(*reinterpret_cast<const Block<w>*>(a)) \
                : "cc");                                                                              \
        } else {                                                                                      \
            asm("xorl %k[low], %k[low]\n\t"                                                           \
                "mulxq (%[a]), %[low], %[c0]\n\t"                                                     \
                "adoxq %[low], %[bottom]\n\t" QMP_ROW_##w                                             \
                "movl $0, %k[low]\n\t"                                                                \
                "adcxq %[low], %[" top                                                                \
                "]\n\t"                                                                               \
                "adoxq %[low], %[" top "]"                                                            \
                : QMP_COLUMNS_##w("+&r"), [low] "=&r"(low), [bottom] "+&r"(bottom)                    \
                : [a] "r"(a), "d"(x), "m"(*reinterpret_cast<const Block<w>*>(a))                      \
                : "cc");                                                                              \
        }                                                                                             \
        return bottom;                                                                                \
    }

// c = the column (a * x + above), without its lowest word, which is returned.
#define QMP_FIRST_ROW(w, top)                                                                              \
    inline __attribute__((always_inline)) Word first_row_##w(Word* c, const Word* a, Word x, Word above) { \
        Word low;                                                                                          \
        Word bottom;                                                                                       \
        asm("mulxq (%[a]), %[bottom], %[c0]\n\t"                                                           \
            "addq %[above], %[bottom]\n\t" QMP_FIRST_##w "adcq $0, %[" top "]"                             \
            : QMP_COLUMNS_##w("=&r"), [low] "=&r"(low), [bottom] "=&r"(bottom)                             \
            : [a] "r"(a), "d"(x), [above] "rme"(above), "m"(*reinterpret_cast<const Block<w>*>(a))         \
            : "cc");                                                                                       \
        return bottom;                                                                                     \
    }

QMP_ROW(1, "c0")
QMP_ROW(2, "c1")
QMP_ROW(3, "c2")
QMP_ROW(4, "c3")
QMP_ROW(5, "c4")
QMP_ROW(6, "c5")
QMP_ROW(7, "c6")
QMP_FIRST_ROW(1, "c0")
QMP_FIRST_ROW(2, "c1")
QMP_FIRST_ROW(3, "c2")
QMP_FIRST_ROW(4, "c3")
QMP_FIRST_ROW(5, "c4")
QMP_FIRST_ROW(6, "c5")
QMP_FIRST_ROW(7, "c6")

template <int Width, bool Accumulate>
inline __attribute__((always_inline)) Word row(Word* c, const Word* a, Word x, Word above) {
    if constexpr (Width == 1) return row_1<Accumulate>(c, a, x, above);
    if constexpr (Width == 2) return row_2<Accumulate>(c, a, x, above);
    if constexpr (Width == 3) return row_3<Accumulate>(c, a, x, above);
    if constexpr (Width == 4) return row_4<Accumulate>(c, a, x, above);
    if constexpr (Width == 5) return row_5<Accumulate>(c, a, x, above);
    if constexpr (Width == 6) return row_6<Accumulate>(c, a, x, above);
    if constexpr (Width == 7) return row_7<Accumulate>(c, a, x, above);
}

template <int Width>
inline __attribute__((always_inline)) Word first_row(Word* c, const Word* a, Word x, Word above) {
    if constexpr (Width == 1) return first_row_1(c, a, x, above);
    if constexpr (Width == 2) return first_row_2(c, a, x, above);
    if constexpr (Width == 3) return first_row_3(c, a, x, above);
    if constexpr (Width == 4) return first_row_4(c, a, x, above);
    if constexpr (Width == 5) return first_row_5(c, a, x, above);
    if constexpr (Width == 6) return first_row_6(c, a, x, above);
    if constexpr (Width == 7) return first_row_7(c, a, x, above);
}

// Copies without a loop: a column that an index variable touches would live in memory.
template <int Width>
inline __attribute__((always_inline)) void copy(Word* destination, const Word* source) {
    *destination = *source;
    if constexpr (Width > 1) copy<Width - 1>(destination + 1, source + 1);
}

// destination[0 .. Width + rows) = a * b, plus the `rows` words that stand there with Accumulate.
template <int Width, bool Accumulate>
void block(Word* destination, const Word* a, const Word* b, Count rows) {
    Word c[Width];
    destination[0] = first_row<Width>(c, a, b[0], Accumulate ? destination[0] : 0);
#pragma GCC unroll 2
    for (Count j = 1; j < rows; ++j) {
        destination[j] = row<Width, Accumulate>(c, a, b[j], destination[j]);
    }
    copy<Width>(destination + rows, c);
}

using BlockFunction = void (*)(Word*, const Word*, const Word*, Count);

constexpr BlockFunction first_block[widest + 1] = {nullptr,         block<1, false>, block<2, false>,
                                                   block<3, false>, block<4, false>, block<5, false>,
                                                   block<6, false>, block<7, false>};
constexpr BlockFunction next_block[widest + 1] = {nullptr,        block<1, true>, block<2, true>,
                                                  block<3, true>, block<4, true>, block<5, true>,
                                                  block<6, true>, block<7, true>};

void multiply(Word* destination, const Word* a, Count la, const Word* b, Count lb) {
    if (la < lb) {
        const Word* words = a;
        a = b, b = words;
        const Count length = la;
        la = lb, lb = length;
    }
    if (lb <= widest) return first_block[lb](destination, b, a, la);
    // Blocks of the shorter operand, of lengths that differ by one word at most.
    Count blocks = (lb + widest - 1) / widest;
    Count width = lb / blocks;
    Count longer = lb % blocks;
    first_block[width + (longer != 0)](destination, b, a, la);
    for (Count at = width + (longer != 0); at < lb;) {
        if (longer != 0) --longer;
        const Count w = width + (longer != 0);
        next_block[w](destination + at, b + at, a, la);
        at += w;
    }
}

// The products of different words among the first Width + 1 words from a on: row 0 is a[0] by the words
// above it, and so on. Position 0 of the square is at the destination; the column of row 0, positions 1 to
// Width, comes in and everything from position 1 to 2 * Width is written.
template <int Width>
inline __attribute__((always_inline)) void triangle_rows(Word* destination, const Word* a, Word* c) {
    destination[1] = row<Width, false>(c, a + 1, a[0], 0);
    destination[2] = c[0];
    if constexpr (Width > 1) triangle_rows<Width - 1>(destination + 2, a + 1, c + 1);
}

// The same of Length words, with words 1 to Length - 1 that stand at the destination added.
template <int Length, bool Accumulate>
void triangle(Word* destination, const Word* a) {
    if constexpr (Length > 1) {
        Word c[Length - 1];
        if constexpr (Accumulate) {
            copy<Length - 1>(c, destination + 1);
            destination[1] = row<Length - 1, false>(c, a + 1, a[0], 0);
        } else {
            destination[1] = first_row<Length - 1>(c, a + 1, a[0], 0);
        }
        destination[2] = c[0];
        if constexpr (Length > 2) triangle_rows<Length - 2>(destination + 2, a + 1, c + 1);
    }
    destination[2 * Length - 1] = 0;
}

// destination = 2 * destination + the squares of a's words, of which the lowest one's place holds nothing
// yet. Both chains run through all words, so these are written out, and the assembler counts.
template <int Length>
void double_and_add_squares(Word* destination, const Word* a) {
    Word low, high, s0, s1;
    destination[0] = 0;
    asm volatile(
        "xorl %k[low], %k[low]\n\t"
        ".set qmp_word, 0\n\t"
        ".rept %c[length]\n\t"
        "movq 8*qmp_word(%[a]), %%rdx\n\t"
        "mulxq %%rdx, %[low], %[high]\n\t"
        "movq 16*qmp_word(%[destination]), %[s0]\n\t"
        "movq 16*qmp_word+8(%[destination]), %[s1]\n\t"
        "adcxq %[s0], %[s0]\n\t"
        "adoxq %[low], %[s0]\n\t"
        "adcxq %[s1], %[s1]\n\t"
        "adoxq %[high], %[s1]\n\t"
        "movq %[s0], 16*qmp_word(%[destination])\n\t"
        "movq %[s1], 16*qmp_word+8(%[destination])\n\t"
        ".set qmp_word, qmp_word+1\n\t"
        ".endr"
        : [low] "=&r"(low), [high] "=&r"(high), [s0] "=&r"(s0), [s1] "=&r"(s1)
        : [destination] "r"(destination), [a] "r"(a), [length] "i"(Length)
        : "rdx", "cc", "memory");
}

// Two triangles and, between them, the product of the operand's low and high words.
template <int Length>
void square_of(Word* destination, const Word* a) {
    if constexpr (Length <= widest) {
        triangle<Length, false>(destination, a);
    } else {
        constexpr int h = Length / 2, l = Length - h;
        triangle<l, false>(destination, a);
        block<h, true>(destination + l, a + l, a, l);
        triangle<h, true>(destination + 2 * l, a + l);
    }
    double_and_add_squares<Length>(destination, a);
}

using SquareFunction = void (*)(Word*, const Word*);

// Below three words the products are too few for their half to pay.
constexpr Count shortest_square = 3;
constexpr Count longest_square = 2 * widest;
constexpr SquareFunction squares[] = {square_of<3>,  square_of<4>,  square_of<5>,  square_of<6>,
                                      square_of<7>,  square_of<8>,  square_of<9>,  square_of<10>,
                                      square_of<11>, square_of<12>, square_of<13>, square_of<14>};
static_assert(sizeof squares / sizeof squares[0] == longest_square - shortest_square + 1);

void square(Word* destination, const Word* a, Count n) {
    if (n < shortest_square || n > longest_square) return multiply(destination, a, n, a, n);
    squares[n - shortest_square](destination, a);
}

}  // namespace

namespace qmp {

constexpr SchoolbookKernels schoolbook_adx = {multiply, square};

}  // namespace qmp
