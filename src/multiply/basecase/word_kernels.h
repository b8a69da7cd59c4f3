// Additions, subtractions and one-word products of word arrays, sequential: what all arithmetic above is
// made of. Little-endian arrays; W is std::uint64_t or std::uint32_t.
//
// A length of 0 is allowed everywhere: the carry passes through. A destination may be the same array as
// an operand, but may not overlap one at another offset.
#pragma once

#include <cstdint>
#include <type_traits>

namespace qmp {

// destination = a + b (a - b) over n words. Returns the carry (borrow) out of the top.
template <typename W>
bool add_words(W* destination, const W* a, const W* b, std::uint64_t n);
template <typename W>
bool sub_words(W* destination, const W* a, const W* b, std::uint64_t n);

// The same with a carry (borrow) into the lowest word, for sums formed block by block.
template <typename W>
bool add_words(W* destination, const W* a, const W* b, std::uint64_t n, bool carry);
template <typename W>
bool sub_words(W* destination, const W* a, const W* b, std::uint64_t n, bool borrow);

// Adds a carry to (takes a borrow from) n words in place, stopping at the first word that absorbs it.
// Returns what is left of it beyond the top.
template <typename W>
bool add_carry(W* words, std::uint64_t n, bool carry);
template <typename W>
bool sub_borrow(W* words, std::uint64_t n, bool borrow);

// Adds a carry of any small size and either sign. Returns the carry out of the top: 0 as soon as a word
// absorbs it, otherwise -1, 0 or +1.
template <typename W>
int add_signed_carry(W* words, std::uint64_t n, int carry);

// destination = a * w over n words. Returns the word above the top. With a carry word: a * w + carry.
template <typename W>
W mul_word(W* destination, const W* a, std::uint64_t n, std::type_identity_t<W> w,
           std::type_identity_t<W> carry = 0);
// destination += a * w over n words. Returns the word above the top.
template <typename W>
W mul_add_word(W* destination, const W* a, std::uint64_t n, std::type_identity_t<W> w);

#define QMP_WORD_KERNELS(PREFIX, W)                                                 \
    PREFIX template bool add_words<W>(W*, const W*, const W*, std::uint64_t);       \
    PREFIX template bool sub_words<W>(W*, const W*, const W*, std::uint64_t);       \
    PREFIX template bool add_words<W>(W*, const W*, const W*, std::uint64_t, bool); \
    PREFIX template bool sub_words<W>(W*, const W*, const W*, std::uint64_t, bool); \
    PREFIX template bool add_carry<W>(W*, std::uint64_t, bool);                     \
    PREFIX template bool sub_borrow<W>(W*, std::uint64_t, bool);                    \
    PREFIX template int add_signed_carry<W>(W*, std::uint64_t, int);                \
    PREFIX template W mul_word<W>(W*, const W*, std::uint64_t, W, W);               \
    PREFIX template W mul_add_word<W>(W*, const W*, std::uint64_t, W)

QMP_WORD_KERNELS(extern, std::uint64_t);
QMP_WORD_KERNELS(extern, std::uint32_t);

}  // namespace qmp
