#include "platform/processor_identity.h"

#include <cstring>

namespace qmp {
namespace {

constexpr bool is_digit(char c) {
    return c >= '0' && c <= '9';
}

}  // namespace

IdentityLeaves read_identity_leaves() {
    IdentityLeaves leaves;
    if (read_cpuid_leaf(0).eax >= 0x16) leaves.leaf_16 = read_cpuid_leaf(0x16);
    if (read_cpuid_leaf(extended_cpuid_base).eax >= extended_cpuid_base + 4) {
        for (std::uint32_t i = 0; i < 3; ++i) leaves.name[i] = read_cpuid_leaf(extended_cpuid_base + 2 + i);
    }
    return leaves;
}

std::string processor_name_of(const IdentityLeaves& leaves) {
    static_assert(sizeof(CpuidLeaf) == 16, "the registers lie as the text does");
    char text[sizeof leaves.name];
    std::memcpy(text, leaves.name.data(), sizeof text);
    std::string name;
    // A zero ends the name, unless it fills its 48 bytes.
    for (const char c : text) {
        if (c == '\0') break;
        if (c != ' ' || (!name.empty() && name.back() != ' ')) name += c;
    }
    if (name.ends_with(' ')) name.pop_back();
    return name;
}

std::uint64_t base_frequency_in_name(std::string_view name) {
    const std::size_t at = name.rfind('@');
    if (at == std::string_view::npos) return 0;
    std::string_view text = name.substr(at + 1);
    while (text.starts_with(' ')) text.remove_prefix(1);

    // Digits without their point, and how many stand behind it. No frequency has more than 9.
    std::uint64_t digits = 0;
    int decimals = -1;
    std::size_t used = 0;
    for (; used < text.size() && used < 10; ++used) {
        if (is_digit(text[used])) {
            digits = digits * 10 + static_cast<std::uint64_t>(text[used] - '0');
            if (decimals >= 0) ++decimals;
        } else if (text[used] == '.' && decimals < 0) {
            decimals = 0;
        } else {
            break;
        }
    }
    text.remove_prefix(used);
    while (text.starts_with(' ')) text.remove_prefix(1);

    std::uint64_t unit = 0;
    if (text.starts_with("GHz")) unit = 1'000'000'000;
    if (text.starts_with("MHz")) unit = 1'000'000;
    std::uint64_t hertz = digits * unit;
    for (; decimals > 0; --decimals) hertz /= 10;
    return hertz;
}

std::uint64_t base_frequency_of(const IdentityLeaves& leaves) {
    const std::uint64_t megahertz = leaves.leaf_16.eax & 0xffff;
    return megahertz > 0 ? megahertz * 1'000'000 : base_frequency_in_name(processor_name_of(leaves));
}

}  // namespace qmp
