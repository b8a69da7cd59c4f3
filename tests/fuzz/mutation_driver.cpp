// Runs a fuzz target on a corpus and on mutations of it, where no fuzzer drives it.
//
//     mutation_driver CORPUS_FOLDER [COUNT [FIRST]]
//
// Every file of the corpus, then COUNT mutated inputs. Input number N depends on the seed (KELVARA_TEST_SEED)
// and N alone, and on the corpus; its number is printed every thousand inputs. An input that is run by itself
// (COUNT 1) is printed as well.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "support/random_words.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

using kelvara_test::Random;

constexpr std::size_t longest_input = 4096;

std::vector<std::string> read_corpus(const std::filesystem::path& folder) {
    std::vector<std::filesystem::path> paths;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) paths.push_back(entry.path());
    std::sort(paths.begin(), paths.end());
    std::vector<std::string> corpus;
    for (const auto& path : paths) {
        std::ifstream file(path, std::ios::binary);
        corpus.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    }
    return corpus;
}

const std::string& any_of(Random& random, const std::vector<std::string>& corpus) {
    return corpus[random.between(0, corpus.size() - 1)];
}

std::string any_piece(Random& random, const std::string& text) {
    const std::size_t start = random.between(0, text.size());
    return text.substr(start, random.between(0, std::min<std::size_t>(text.size() - start, 64)));
}

// What a parser tells apart.
std::string any_token(Random& random) {
    using namespace std::string_view_literals;
    constexpr std::string_view tokens[] = {"{"sv,
                                           "}"sv,
                                           "["sv,
                                           "]"sv,
                                           "\""sv,
                                           "\\"sv,
                                           ":"sv,
                                           "//"sv,
                                           "/"sv,
                                           "\r"sv,
                                           "\n"sv,
                                           "\t"sv,
                                           " "sv,
                                           "\0"sv,
                                           "*"sv,
                                           "-"sv,
                                           "0"sv,
                                           "12"sv,
                                           "A"sv,
                                           "A:"sv,
                                           "\\\""sv,
                                           "\\\\"sv,
                                           "\xef\xbb\xbf"sv,
                                           "\xff\xfe"sv,
                                           "[["sv,
                                           "{A:{B:"sv,
                                           "]]"sv,
                                           "}}"sv,
                                           "18446744073709551616"sv};
    return std::string(tokens[random.between(0, std::size(tokens) - 1)]);
}

void mutate_once(Random& random, std::string& input, const std::vector<std::string>& corpus) {
    const std::size_t place = random.between(0, input.size());
    const std::size_t rest = input.size() - place;
    switch (random.between(0, 6)) {
        case 0:
            if (rest > 0) input[place] = static_cast<char>(input[place] ^ (1 << random.between(0, 7)));
            break;
        case 1:
            if (rest > 0) input[place] = static_cast<char>(random.between(0, 255));
            break;
        case 2:
            input.erase(place, random.between(0, std::min<std::size_t>(rest, 16)));
            break;
        case 3:
            input.insert(place, any_token(random));
            break;
        case 4:
            input.insert(place, any_piece(random, any_of(random, corpus)));
            break;
        case 5: {
            const std::string piece = any_piece(random, input);
            for (std::uint64_t i = random.between(1, 20); i > 0; --i) input.insert(place, piece);
            break;
        }
        default:
            input.resize(place);
            break;
    }
    if (input.size() > longest_input) input.resize(longest_input);
}

std::string mutated_input(std::uint64_t number, const std::vector<std::string>& corpus) {
    Random random(number);
    std::string input = any_of(random, corpus);
    for (std::uint64_t i = random.between(1, 8); i > 0; --i) mutate_once(random, input, corpus);
    return input;
}

void run(const std::string& input) {
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(input.data()), input.size());
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fprintf(stderr, "usage: mutation_driver CORPUS_FOLDER [COUNT [FIRST]]\n");
        return 2;
    }
    const std::vector<std::string> corpus = read_corpus(argv[1]);
    if (corpus.empty()) {
        std::fprintf(stderr, "mutation_driver: no files in %s\n", argv[1]);
        return 1;
    }
    const std::uint64_t count =
        (argc > 2 ? std::strtoull(argv[2], nullptr, 10) : 10'000) * kelvara_test::multiplier();
    const std::uint64_t first = argc > 3 ? std::strtoull(argv[3], nullptr, 10) : 0;
    std::printf("Seed %llu, %zu files, inputs %llu to %llu\n",
                static_cast<unsigned long long>(kelvara_test::seed()), corpus.size(),
                static_cast<unsigned long long>(first), static_cast<unsigned long long>(first + count));
    for (const std::string& input : corpus) run(input);
    for (std::uint64_t number = first; number < first + count; ++number) {
        const std::string input = mutated_input(number, corpus);
        if (number % 1000 == 0 || count == 1) {
            std::printf("Input %llu\n", static_cast<unsigned long long>(number));
            if (count == 1) std::fwrite(input.data(), 1, input.size(), stdout);
            std::fflush(stdout);
        }
        run(input);
    }
    return 0;
}
