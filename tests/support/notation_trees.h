// Configuration values for tests: whether two are equal, and random ones.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "config/notation.h"
#include "support/random_words.h"

namespace kelvara_test {

// Types, values, keys and the order of members. Comments, which parsing drops, do not count.
bool same_tree(const qmp::notation::Value& a, const qmp::notation::Value& b);

// Every kind of value, with comments, every byte but NUL in strings, and keys of identifier characters,
// quotes and backslashes; at most `depth` objects and arrays inside each other.
std::unique_ptr<qmp::notation::Value> random_tree(Random& random, std::uint64_t depth);

}  // namespace kelvara_test
