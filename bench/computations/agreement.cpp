#include "agreement.h"

#include <algorithm>
#include <cstdio>

#include "console/format.h"

namespace bench {
namespace {

constexpr std::size_t shown_digits = 20;

bool same_digits(const Measured& a, const Measured& b) {
    return a.computation.constant == b.computation.constant && a.computation.digits == b.computation.digits;
}

// The digest of the first of the other one's digits; empty when it was not taken.
std::string prefix_digest(const Measured& longer, const Measured& shorter) {
    if (longer.computation.constant != shorter.computation.constant) return "";
    for (const Prefix& prefix : longer.result.prefixes) {
        if (prefix.digits == shorter.computation.digits) return prefix.digest;
    }
    return "";
}

// Compares one measurement with all others; counts those that gave the same digits, itself included.
struct Comparison {
    std::size_t equal = 0;
    std::size_t equal_beginnings = 0;
    std::vector<const Measured*> different;

    Comparison(const std::vector<Measured>& all, const Measured& one) {
        for (const Measured& other : all) {
            if (same_digits(one, other)) {
                const bool same =
                    other.result.digest == one.result.digest && other.result.hash == one.result.hash;
                count(same, equal, other);
            } else if (const std::string digest = prefix_digest(other, one); !digest.empty()) {
                count(digest == one.result.digest, equal_beginnings, other);
            }
        }
    }
    void count(bool same, std::size_t& counter, const Measured& other) {
        if (same) {
            ++counter;
        } else {
            different.push_back(&other);
        }
    }
};

}  // namespace

bool print_agreement(const std::vector<Measured>& all) {
    std::printf(
        "\nDigit files. Same: computations that gave this file; beginnings: longer files that begin with "
        "it.\n\n"
        "| constant | digits | same | beginnings | SHA-256 | Floor(x 10^d) mod (2^61 - 1) | last digits |\n"
        "|---|---|---|---|---|---|---|\n");
    bool agree = true;
    for (auto one = all.begin(); one != all.end(); ++one) {
        const bool first =
            std::none_of(all.begin(), one, [&](const Measured& m) { return same_digits(m, *one); });
        if (!first) continue;
        const Comparison comparison(all, *one);
        const std::string& last = one->result.last_digits;
        std::printf("| %s | %s | %zu | %zu | %s | %s | %s |\n", one->computation.constant.c_str(),
                    qmp::console::format_separated(one->computation.digits).c_str(), comparison.equal,
                    comparison.equal_beginnings, one->result.digest.c_str(),
                    qmp::console::format_separated(one->result.hash).c_str(),
                    last.substr(last.size() - std::min(last.size(), shown_digits)).c_str());
        for (const Measured* other : comparison.different) {
            agree = false;
            std::printf("\nDIFFERENT: %s and %s\n\n", one->title().c_str(), other->title().c_str());
        }
    }
    return agree;
}

}  // namespace bench
