#include "rivals.h"

#include <arb.h>
#include <flint/flint.h>
#include <mpfr.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <map>

#include "constant_name.h"
#include "unit.h"

namespace bench {
namespace {

using Bits = std::uint64_t;
using Argument = std::uint64_t;
// Computes the constant, of this argument, to so many bits.
using Compute = void (*)(Bits, Argument);
using Computes = std::map<std::string, Compute>;

template <void (*Function)(arb_t, slong)>
void arb_constant(Bits bits, Argument) {
    arb_t x;
    arb_init(x);
    Function(x, static_cast<slong>(bits));
    arb_clear(x);
}

template <void (*Function)(arb_t, ulong, slong)>
void arb_function(Bits bits, Argument n) {
    arb_t x;
    arb_init(x);
    Function(x, n, static_cast<slong>(bits));
    arb_clear(x);
}

template <int (*Function)(mpfr_ptr, mpfr_rnd_t)>
void mpfr_constant(Bits bits, Argument) {
    mpfr_t x;
    mpfr_init2(x, static_cast<mpfr_prec_t>(bits));
    Function(x, MPFR_RNDN);
    mpfr_clear(x);
}

template <int (*Function)(mpfr_ptr, unsigned long, mpfr_rnd_t)>
void mpfr_function(Bits bits, Argument n) {
    mpfr_t x;
    mpfr_init2(x, static_cast<mpfr_prec_t>(bits));
    Function(x, n, MPFR_RNDN);
    mpfr_clear(x);
}

void mpfr_zeta3(Bits bits, Argument) {
    mpfr_function<mpfr_zeta_ui>(bits, 3);
}

int mpfr_e(mpfr_ptr x, mpfr_rnd_t rounding) {
    mpfr_set_ui(x, 1, rounding);
    return mpfr_exp(x, x, rounding);
}

int mpfr_log2_or_log(mpfr_ptr x, unsigned long n, mpfr_rnd_t rounding) {
    return n == 2 ? mpfr_const_log2(x, rounding) : mpfr_log_ui(x, n, rounding);
}

void arb_log2_or_log(arb_t x, ulong n, slong bits) {
    n == 2 ? arb_const_log2(x, bits) : arb_log_ui(x, n, bits);
}

const Computes arb_computes = {
    {"sqrt", arb_function<arb_sqrt_ui>},        {"e", arb_constant<arb_const_e>},
    {"pi", arb_constant<arb_const_pi>},         {"log", arb_function<arb_log2_or_log>},
    {"zeta(3)", arb_constant<arb_const_apery>}, {"catalan", arb_constant<arb_const_catalan>},
    {"gamma", arb_constant<arb_const_euler>},
};

const Computes mpfr_computes = {
    {"sqrt", mpfr_function<mpfr_sqrt_ui>},
    {"e", mpfr_constant<mpfr_e>},
    {"pi", mpfr_constant<mpfr_const_pi>},
    {"log", mpfr_function<mpfr_log2_or_log>},
    {"zeta(3)", mpfr_zeta3},
    {"catalan", mpfr_constant<mpfr_const_catalan>},
    {"gamma", mpfr_constant<mpfr_const_euler>},
};

// Both libraries keep constants that were computed before.
void forget_constants() {
    flint_cleanup();
    mpfr_free_cache();
}

struct Library {
    const char* name;
    const Computes& computes;
};
const std::vector<Library> libraries = {{"arb", arb_computes}, {"mpfr", mpfr_computes}};

void print_line(const char* library, const std::string& constant, Compute compute, std::uint64_t digits) {
    constexpr double bits_per_digit = 3.3219280948873623;
    constexpr double guard_bits = 64;
    const auto bits = static_cast<Bits>(static_cast<double>(digits) * bits_per_digit + guard_bits);
    const Argument argument = make_constant(constant)->argument().value_or(0);
    const double unit = measure_unit();
    forget_constants();
    const auto start = std::chrono::steady_clock::now();
    compute(bits, argument);
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    std::printf("| %s | %s | %llu | %.3f | %.4f | %.3f |\n", library, constant.c_str(),
                static_cast<unsigned long long>(digits), seconds, unit, seconds / unit);
    std::fflush(stdout);
}

}  // namespace

const std::vector<std::string>& rival_libraries() {
    static const std::vector<std::string> names = [] {
        std::vector<std::string> list;
        for (const Library& library : libraries) list.push_back(library.name);
        return list;
    }();
    return names;
}

void print_rivals(const std::vector<std::string>& chosen, const std::vector<std::string>& constants,
                  const std::vector<std::uint64_t>& digits, std::uint64_t threads) {
    if (chosen.empty()) return;
    std::printf("\n| library | constant | digits | seconds | U, s | in U |\n|---|---|---|---|---|---|\n");
    flint_set_num_threads(static_cast<int>(threads));
    for (const Library& library : libraries) {
        if (std::find(chosen.begin(), chosen.end(), library.name) == chosen.end()) continue;
        for (const std::string& constant : constants) {
            const auto found = library.computes.find(std::string(make_constant(constant)->key()));
            if (found == library.computes.end()) continue;
            for (const std::uint64_t count : digits) print_line(library.name, constant, found->second, count);
        }
    }
}

}  // namespace bench
