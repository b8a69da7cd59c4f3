#include "multiply/ntt64/roots.h"

#include <algorithm>

#include "multiply/ntt64/field.h"

namespace qmp::ntt64 {
namespace {

// Factors of a tree whose transforms have up to 2^log items, cyclic or below node 1.
std::uint64_t tree_length(std::uint32_t log, bool negacyclic) {
    return std::uint64_t{1} << (negacyclic ? log : log - 1);
}

// Of the tree that columns and rows share, and of those that rows alone have.
std::uint64_t shared_length(const Matrix& matrix) {
    return std::max(tree_length(matrix.log_rows, matrix.negacyclic != 0),
                    tree_length(matrix.log_columns, false));
}
std::uint64_t row_length(const Matrix& matrix) {
    return tree_length(matrix.log_columns, false);
}

class RootMaker {
  public:
    RootMaker(const Matrix& matrix, const Prime& prime, Direction direction, Roots& roots)
        : matrix_(matrix),
          field_(prime.value),
          log_order_(matrix.log_rows + matrix.log_columns + matrix.negacyclic),
          roots_(roots) {
        const std::uint64_t p = prime.value;
        const std::uint64_t steps = (p - 1) / (std::uint64_t{matrix.multiplier} << log_order_);
        const std::uint64_t exponent = direction == Direction::forward ? steps : p - 1 - steps;
        roots.prime = p;
        roots.inverse = field_.inverse_modulo_word();
        roots.one = field_.one();
        roots.turns[0] = field_.power(field_.element(prime.primitive_root), exponent);
        for (std::uint32_t i = 1; i < most_turns; ++i) {
            roots.turns[i] = field_.mul(roots.turns[i - 1], roots.turns[i - 1]);
        }
    }

    void form(std::uint64_t* memory) {
        std::uint64_t power = field_.one();
        for (Twiddle& limb : roots_.limbs) {
            limb = field_.twiddle(power);
            power = field_.mul(power, field_.element(field_.one()));
        }
        form_trees(reinterpret_cast<Twiddle*>(memory));
        if (matrix_.multiplier > 1) form_multiplier_factors();
    }

  private:
    // Factor j is the root of order 2^log_order_ to half the bit-reversed fraction of j: entries 2^a to
    // 2^(a + 1) - 1 are those before them times a root of order 2^(a + 2).
    void form_trees(Twiddle* tree) {
        const std::uint64_t length = shared_length(matrix_);
        roots_.trees[0] = tree;
        tree[0] = field_.twiddle(field_.one());
        for (std::uint32_t a = 0; std::uint64_t{1} << a < length; ++a) {
            const std::uint64_t step = field_.power(roots_.turns[log_order_ - a - 2], matrix_.multiplier);
            const std::uint64_t count = std::uint64_t{1} << a;
            turn_factors(tree + count, tree, count, step);
        }
        tree += length;
        for (std::uint32_t u = 1; u < matrix_.multiplier; ++u, tree += row_length(matrix_)) {
            roots_.trees[u] = tree;
            turn_factors(tree, roots_.trees[0], row_length(matrix_), field_.power(odd_root(), u));
        }
    }
    void turn_factors(Twiddle* target, const Twiddle* source, std::uint64_t count, std::uint64_t turn) {
        const std::uint64_t square = field_.element(turn);
        for (std::uint64_t j = 0; j < count; ++j) {
            target[j] = field_.twiddle(field_.mul(source[j].value, square));
        }
    }
    // The root of the multiplier's order.
    std::uint64_t odd_root() const { return roots_.turns[log_order_]; }

    void form_multiplier_factors() {
        const std::uint32_t m = matrix_.multiplier;
        const std::uint64_t half = field_.element((field_.prime() + 1) / 2);
        for (std::uint32_t t = 1; t <= m / 2; ++t) {
            for (std::uint32_t i = 1; i <= m / 2; ++i) {
                const std::uint64_t up = field_.mul(half, field_.power(odd_root(), t * i));
                const std::uint64_t down = field_.mul(half, field_.power(odd_root(), (m - 1) * t * i));
                roots_.cosines[t - 1][i - 1] = field_.twiddle(field_.add(up, down));
                roots_.sines[t - 1][i - 1] = field_.twiddle(field_.add(up, field_.negative(down)));
            }
        }
    }

    const Matrix& matrix_;
    const Field field_;
    const std::uint32_t log_order_;  // of the power of two in the root's order
    Roots& roots_;
};

}  // namespace

std::uint64_t root_words(const Matrix& matrix) {
    const std::uint64_t twiddles = shared_length(matrix) + (matrix.multiplier - 1) * row_length(matrix);
    return 2 * twiddles;
}

Roots form_roots(const Matrix& matrix, const Prime& prime, Direction direction, std::uint64_t* memory) {
    Roots roots{};
    RootMaker(matrix, prime, direction, roots).form(memory);
    return roots;
}

}  // namespace qmp::ntt64
