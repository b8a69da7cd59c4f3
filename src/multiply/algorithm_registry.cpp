// Which algorithms there are. A new one is one more line here, and one in the lists of the tables.
#include <array>
#include <map>
#include <string>

#include "multiply/algorithm_table.h"
#include "multiply/basecase/basecase_algorithm.h"
#include "multiply/fft/fft_algorithm.h"
#include "multiply/hybrid_ntt/hybrid_algorithm.h"
#include "multiply/ntt32/ntt32_algorithm.h"
#include "multiply/ntt64/ntt64_algorithm.h"
#include "multiply/vst/vst_algorithm.h"

namespace qmp {
namespace {

// In the order of WordKind: basic 32, basic 64, swap 32, swap 64.
using Kinds = std::array<const Algorithm*, 4>;
using Registry = std::map<std::string, Kinds>;

const Registry& registry() {
    static const Registry algorithms = {
        {"BKT", {&basecase::algorithm32(), &basecase::algorithm64(), nullptr, nullptr}},
        {"C17", {nullptr, nullptr, nullptr, nullptr}},
        {"FFT", {&fft::algorithm32(), &fft::algorithm64(), nullptr, nullptr}},
        {"HNT", {&hybrid_ntt::algorithm32(), &hybrid_ntt::algorithm64(), nullptr, nullptr}},
        {"N32", {&ntt32::algorithm32(), &ntt32::algorithm64(), nullptr, nullptr}},
        {"N64", {&ntt64::algorithm32(), &ntt64::algorithm64(), nullptr, nullptr}},
        {"VST", {&vst::algorithm32(), &vst::algorithm64(), nullptr, nullptr}},
    };
    return algorithms;
}

}  // namespace

const Algorithm* find_algorithm(const char* key, WordKind kind, bool* known) {
    const auto found = registry().find(key);
    const bool exists = found != registry().end();
    if (known) *known = exists;
    return exists ? found->second[static_cast<std::size_t>(kind)] : nullptr;
}

}  // namespace qmp
