#include "constants/log_verification.h"

#include <algorithm>
#include <array>

#include "constants/log_tables.h"

namespace kelvara {

namespace {

// Primes and signed exponents, sorted by prime.
class PrimeExponents {
  public:
    // False when there is no room, or an exponent does not fit.
    bool add(std::uint64_t prime, std::int64_t exponent) {
        Entry* const end = entries_.data() + count_;
        Entry* const place = std::lower_bound(entries_.data(), end, prime,
                                              [](const Entry& e, std::uint64_t p) { return e.prime < p; });
        if (place != end && place->prime == prime) {
            return !__builtin_add_overflow(place->exponent, exponent, &place->exponent);
        }
        if (count_ == capacity) return false;
        std::move_backward(place, end, end + 1);
        *place = {prime, exponent};
        count_++;
        return true;
    }

    // Adds the factors of n, each `multiple` times.
    bool add_factors(std::uint64_t n, std::int64_t multiple) {
        for (const std::uint64_t prime : log_primes) {
            if (!add_prime(n, prime, multiple)) return false;
        }
        // A remainder below 2^33 is left with no divisor from here to its square root soon.
        for (std::uint64_t d = log_primes.back() + 2; d * d <= n; d += 2) {
            if (!add_prime(n, d, multiple)) return false;
        }
        return n == 1 || add(n, multiple);
    }

    // Whether the product is the square of n.
    bool is_square_of(std::uint64_t n) const {
        for (const Entry& entry : std::span(entries_).first(count_)) {
            if (entry.exponent < 0 || entry.exponent % 2 != 0) return false;
            for (std::int64_t i = 0; i < entry.exponent / 2; i++) {
                if (n % entry.prime != 0) return false;
                n /= entry.prime;
            }
        }
        return n == 1;
    }

  private:
    static constexpr std::size_t capacity = 32;

    struct Entry {
        std::uint64_t prime;
        std::int64_t exponent;
    };

    bool add_prime(std::uint64_t& n, std::uint64_t prime, std::int64_t multiple) {
        std::int64_t times = 0;
        for (; n % prime == 0; n /= prime) times++;
        std::int64_t exponent = 0;
        if (times == 0) return true;
        return !__builtin_mul_overflow(times, multiple, &exponent) && add(prime, exponent);
    }

    std::array<Entry, capacity> entries_;
    std::size_t count_ = 0;
};

}  // namespace

bool verify_log_formula(const LogFormula& formula, std::uint64_t n) {
    PrimeExponents product;
    for (const auto& [x, c] : formula.terms()) {
        if (x < 2 || x >= log_argument_limit || c == INT64_MIN) return false;
        if (!product.add_factors(x + 1, c) || !product.add_factors(x - 1, -c)) return false;
    }
    return n != 0 && product.is_square_of(n);
}

}  // namespace kelvara
