#include "codec_table.h"

#include <cstdio>
#include <cstring>
#include <vector>

#include "multiply/instruction_levels.h"
#include "radix/digit_codecs.h"
#include "radix/digit_counting.h"
#include "support/timing.h"
#include "support/workspace.h"

namespace bench {
namespace {

using qmp::Word;

// Words, their digits as values and as characters, and room for what the codecs make of them. All of it has
// been written, so that no page is new to a measurement.
struct Material {
    Material(std::uint64_t n, std::uint32_t digit_radix)
        : radix(digit_radix), words(random_words(n, n)), made(n) {
        const std::uint64_t width = radix == 10 ? 19 : 16;
        if (radix == 10) {
            for (Word& w : words) w %= qmp::decimal_word_base;
        }
        values.resize(n * width);
        text.assign(n * width, '?');
        (radix == 10 ? qmp::unpack_d19 : qmp::unpack_h16)(values.data(), words.data(), n);
    }
    std::uint32_t radix;
    std::vector<Word> words;
    std::vector<Word> made;
    std::vector<char> values;
    std::vector<char> text;
};

struct Codec {
    const char* name;
    Run run;
};

std::vector<Codec> codecs_of(Material& m) {
    const bool decimal = m.radix == 10;
    const std::uint64_t n = m.words.size();
    const std::uint64_t digits = m.values.size();
    return {
        {decimal ? "pack_d19" : "pack_h16",
         [&m, n, decimal] { (decimal ? qmp::pack_d19 : qmp::pack_h16)(m.made.data(), m.values.data(), n); }},
        {decimal ? "unpack_d19" : "unpack_h16",
         [&m, n, decimal] {
             (decimal ? qmp::unpack_d19 : qmp::unpack_h16)(m.text.data(), m.words.data(), n);
         }},
        {decimal ? "unpack_d19_text" : "unpack_h16_text",
         [&m, n, decimal] {
             (decimal ? qmp::unpack_d19_text : qmp::unpack_h16_text)(m.text.data(), m.words.data(), n);
         }},
        {decimal ? "raw_to_dec" : "raw_to_hex",
         [&m, digits, decimal] {
             (decimal ? qmp::raw_to_dec : qmp::raw_to_hex)(m.text.data(), m.values.data(), digits);
         }},
        {decimal ? "count_digits 10" : "count_digits 16",
         [&m, digits] {
             qmp::radix::DigitCounts counts{};
             qmp::radix::count_digits(counts, m.values.data(), digits, m.radix);
         }},
    };
}

void print_table(const Options& options, Material& m) {
    const double bytes = static_cast<double>(m.values.size());
    std::printf("\n%zu words, %zu digits of radix %u; GB of digits in a second\n", m.words.size(),
                m.values.size(), m.radix);
    std::printf("%-10s %-18s %10s %10s %8s\n", "level", "codec", "GB/s", "memcpy", "ratio");
    const Run copy = [&m] { std::memcpy(m.text.data(), m.values.data(), m.values.size()); };
    for (const std::string& level : options.levels) {
        qmp::force_level(level);
        for (const Codec& codec : codecs_of(m)) {
            const Pair seconds = measure(codec.run, copy, options.budget);
            std::printf("%-10s %-18s %10.2f %10.2f %8.2f\n", level.c_str(), codec.name,
                        bytes / seconds.ours / 1e9, bytes / seconds.rival / 1e9,
                        seconds.rival / seconds.ours);
        }
    }
    qmp::force_level("");
}

}  // namespace

void print_codecs(const Options& options) {
    for (const std::uint64_t n : options.words) {
        for (const std::uint32_t radix : {10u, 16u}) {
            Material material(n, radix);
            print_table(options, material);
        }
    }
}

}  // namespace bench
