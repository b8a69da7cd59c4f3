#include "radix/convert_basecase.h"

#include <algorithm>

#include "multiply/basecase/word_kernels.h"

namespace qmp {

Word convert_basecase(Word base, Word* destination_top, std::uint64_t m, const Word* fraction,
                      std::uint64_t fraction_words, Word* work) {
    std::uint64_t length = std::min(m + 2, fraction_words);
    std::copy_n(fraction + (fraction_words - length), length, work);
    for (std::uint64_t left = m; left > 0;) {
        *--destination_top = mul_word(work, work, length, base);
        // What is left needs one word of fraction for each of its words, and two below.
        if (length > --left + 2) {
            ++work;
            --length;
        }
    }
    return mul_word(work, work, length, base);
}

}  // namespace qmp
