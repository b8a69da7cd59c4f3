#include "multiply/crt_mulp.h"

#include <cstring>
#include <type_traits>
#include <utility>

#include "console/console.h"
#include "errors/check.h"
#include "errors/fatal.h"
#include "multiply/residue_words.h"

namespace qmp {
namespace {

constexpr const char* function = "CRT_mulp()";

std::uint64_t rounded(std::uint64_t words) {
    return (words + 7) / 8 * 8;
}

// An operand as bytes, and whether they are aligned words that a transform can read in place.
struct Operand {
    const void* data;
    std::uint64_t bytes;
    bool words;

    std::uint64_t length() const { return (bytes + 7) / 8; }
};

class CrtProduct {
  public:
    CrtProduct(const MultiplyContext& context, const NegacyclicParameters& params, const Operand& a,
               const Operand& b)
        : params_(params),
          inner_(context.after(crt_mulp_scratch_words(params) - params.scratch_words, function)),
          n_(params.convolution_words()),
          a_(a),
          b_(b),
          is_square_(a.data == b.data && a.bytes == b.bytes),
          x_(context.scratch),
          y_(x_ + rounded(n_)),
          transformed_a_(y_ + rounded(n_)),
          transformed_b_(transformed_a_ + params.operand_words) {}

    void run(void* destination, std::uint64_t first, std::uint64_t end) {
        form_cyclic();
        const bool degenerate = form_negacyclic();
        recombine(inner_.parallel(), destination, first, end, x_, y_, degenerate, n_);
    }

  private:
    // x = a * b modulo R^n - 1. y's place serves for what stands between an operand and its transform.
    void form_cyclic() {
        const Word* a = in_place(a_);
        if (!a) {
            fold_cyclic(inner_.parallel(), y_, a_.data, a_.bytes, n_);
            a = y_;
        }
        if (is_square_) {
            params_.forward_for_square(inner_, transformed_a_, a, length_in_place(a_));
            params_.inverse_square(inner_, transformed_a_, x_, 0, n_);
            return;
        }
        params_.forward(inner_, transformed_a_, a, length_in_place(a_));
        params_.forward(inner_, transformed_b_, shorter_operand(), b_.length());
        params_.inverse_multiply(inner_, transformed_a_, transformed_b_, x_, 0, n_);
    }

    // y = a * b modulo R^n + 1. True when it is R^n.
    bool form_negacyclic() {
        const Word* a = in_place(a_);
        if (!a) {
            const bool minus_one = fold_negacyclic(inner_.parallel(), y_, a_.data, a_.bytes, n_);
            if (minus_one) return negate_negacyclic(y_, b_.data, b_.bytes, n_);
            a = y_;
        }
        params_.forward_negacyclic(inner_, transformed_a_, a, length_in_place(a_));
        const Word* other = transformed_a_;
        if (!is_square_) {
            params_.forward_negacyclic(inner_, transformed_b_, shorter_operand(), b_.length());
            other = transformed_b_;
        }
        return params_.inverse_multiply_negacyclic(inner_, transformed_a_, other, y_);
    }

    // The operand's words where they are, or null when it is longer than the convolution or no array of
    // words.
    const Word* in_place(const Operand& operand) const {
        return operand.words && operand.length() <= n_ ? static_cast<const Word*>(operand.data) : nullptr;
    }
    std::uint64_t length_in_place(const Operand& operand) const {
        return operand.length() <= n_ ? operand.length() : n_;
    }
    // b's words, copied to y's place when b is no array of words. b is never longer than the convolution.
    const Word* shorter_operand() {
        if (const Word* words = in_place(b_)) return words;
        y_[b_.length() - 1] = 0;
        std::memcpy(y_, b_.data, b_.bytes);
        return y_;
    }

    const NegacyclicParameters& params_;
    const MultiplyContext inner_;
    const std::uint64_t n_;
    const Operand a_;
    const Operand b_;
    const bool is_square_;
    Word* const x_;
    Word* const y_;
    Word* const transformed_a_;
    Word* const transformed_b_;
};

template <typename W>
Operand operand_of(const W* words, std::uint64_t length) {
    return {words, length * sizeof(W), std::is_same_v<W, Word>};
}

}  // namespace

std::uint64_t crt_mulp_scratch_words(const NegacyclicParameters& params) {
    return 2 * (rounded(params.convolution_words()) + params.operand_words) + params.scratch_words;
}

template <typename W>
void CRT_mulp(const MultiplyContext& context, const NegacyclicParameters& params, W* destination,
              std::uint64_t first, std::uint64_t end, const W* a, std::uint64_t la, const W* b,
              std::uint64_t lb) {
    // The transforms work on 64-bit words, whatever the operands' words.
    if (params.convolution_bits % 64 != 0) {
        console::fatal_error("CRT_mulp(): Convolution length is not divisible by the word-size.");
    }
    if (2 * (params.convolution_bits / (8 * sizeof(W))) < la + lb) {
        console::fatal_error("CRT_mulp(): Convolution length is not long enough.");
    }
    if (la == 0 || lb == 0 || first > end || end > la + lb) invalid_function_parameters(function);
    require_capacity(function, context.scratch_words, crt_mulp_scratch_words(params));
    if (la < lb) {
        std::swap(a, b);
        std::swap(la, lb);
    }
    CrtProduct(context, params, operand_of(a, la), operand_of(b, lb))
        .run(destination, sizeof(W) * first, sizeof(W) * end);
}

template void CRT_mulp<std::uint64_t>(const MultiplyContext&, const NegacyclicParameters&, std::uint64_t*,
                                      std::uint64_t, std::uint64_t, const std::uint64_t*, std::uint64_t,
                                      const std::uint64_t*, std::uint64_t);
template void CRT_mulp<std::uint32_t>(const MultiplyContext&, const NegacyclicParameters&, std::uint32_t*,
                                      std::uint64_t, std::uint64_t, const std::uint32_t*, std::uint64_t,
                                      const std::uint32_t*, std::uint64_t);

}  // namespace qmp
