// Which algorithm forms a product of a given length.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "multiply/algorithm.h"

namespace qmp {

struct AlgorithmThreshold {
    const char* key;
    std::uint64_t bits;
};

enum class WordKind { basic32 = 0, basic64 = 1, swap32 = 2, swap64 = 3 };

// The registry: the algorithm of a key for a word kind, or null. `known` tells whether the key exists; a
// key may be there with no algorithm for any kind.
const Algorithm* find_algorithm(const char* key, WordKind kind, bool* known = nullptr);

// The lists that the program's tables are built from.
const std::vector<AlgorithmThreshold>& basic_algorithm_list();
const std::vector<AlgorithmThreshold>& swap_algorithm_list();

class AlgorithmTable {
  public:
    struct Entry {
        std::uint64_t threshold;  // largest product length served, in words
        const Algorithm* algorithm;
    };

    // Unknown keys, and algorithms that do not support the table's word kind, are skipped with a printed
    // warning.
    AlgorithmTable(std::string name, WordKind kind, const std::vector<AlgorithmThreshold>& list);

    // Throws StringException when thresholds do not increase or exceed the algorithm's largest product.
    // A null algorithm is ignored.
    void add(std::uint64_t threshold_words, const Algorithm* algorithm);
    // The first entry whose threshold is at least n words; LimitExceededException when there is none.
    // In line: every product asks, and the shortest take a few nanoseconds.
    const Algorithm& get_algorithm(std::uint64_t n) const {
        for (const Entry& entry : entries_) {
            if (entry.threshold >= n) return *entry.algorithm;
        }
        beyond_reach(n);
    }
    // Scratch in bytes for a product of n words, whole, upper or by halved transforms, for two transformed
    // operands of a convolution of n words with the scratch of their product, and for every smaller product
    // that the same scratch may have to serve. Non-decreasing in n. LimitExceededException when no entry
    // reaches n, named "AlgorithmTableB::iPsize()" or "AlgorithmTableS::iPsize()" (swap tables).
    std::uint64_t iPsize(std::uint64_t n, std::uint64_t tasks) const;
    // Largest product of the table, in words (0 for an empty table).
    std::uint64_t largest_product() const;

    const std::string& name() const { return name_; }
    std::uint32_t word_bits() const { return word_bits_; }
    const std::vector<Entry>& entries() const { return entries_; }

  private:
    [[noreturn]] static void beyond_reach(std::uint64_t n);
    std::vector<Entry>::const_iterator find(std::uint64_t n) const;

    std::string name_;
    WordKind kind_;
    std::uint32_t word_bits_;
    std::vector<Entry> entries_;
};

// Built before main; read-only afterwards, so lookups need no lock.
const AlgorithmTable& basic_table_32();
const AlgorithmTable& basic_table_64();
const AlgorithmTable& swap_table_32();
const AlgorithmTable& swap_table_64();

}  // namespace qmp
