#include "support/notation_trees.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace kelvara_test {
namespace {

using namespace qmp::notation;

bool same_array(const Array& a, const Array& b) {
    if (a.size() != b.size()) return false;
    for (std::uint64_t i = 0; i < a.size(); ++i) {
        if (!same_tree(a[i], b[i])) return false;
    }
    return true;
}

bool same_object(const Object& a, const Object& b) {
    return std::equal(a.members().begin(), a.members().end(), b.members().begin(), b.members().end(),
                      [](const Member& one, const Member& other) {
                          return one.key == other.key && same_tree(*one.value, *other.value);
                      });
}

std::string random_string(Random& random, std::uint64_t longest) {
    std::string text(random.between(0, longest), '\0');
    for (char& c : text) c = static_cast<char>(random.between(1, 255));
    return text;
}

// Not with two slashes, which begin a comment.
std::string random_key(Random& random) {
    constexpr std::string_view characters =
        "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789!#$%&'()*+-./=?@^_|~\"\\";
    std::string key;
    for (std::uint64_t length = random.between(0, 6); length > 0; --length) {
        const char c = characters[random.between(0, characters.size() - 1)];
        if (c != '/' || !key.ends_with('/')) key += c;
    }
    return key;
}

std::string random_comment(Random& random, bool several_lines) {
    if (random.between(0, 2) > 0) return {};
    std::string comment = "{ \"not read\" : [1a //";
    if (several_lines && random.between(0, 1) == 0) comment += "\n}\n\nlast";
    return comment;
}

}  // namespace

bool same_tree(const Value& a, const Value& b) {
    if (a.type() != b.type()) return false;
    switch (a.type()) {
        case Type::integer:
            return as_integer(a, "") == as_integer(b, "");
        case Type::string:
            return as_string(a, "") == as_string(b, "");
        case Type::array:
            return same_array(as_array(a, ""), as_array(b, ""));
        case Type::object:
            return same_object(as_object(a, ""), as_object(b, ""));
    }
    return false;
}

std::unique_ptr<Value> random_tree(Random& random, std::uint64_t depth) {
    const std::uint64_t children = random.between(0, 5);
    switch (random.between(0, depth == 0 ? 1 : 3)) {
        case 0: {
            const std::uint64_t magnitude = random.next() >> random.between(0, 63);
            const bool negative = random.between(0, 1) == 0;
            return std::make_unique<Integer>(static_cast<std::int64_t>(negative ? 0 - magnitude : magnitude));
        }
        case 1:
            return std::make_unique<String>(random_string(random, 20));
        case 2: {
            auto array = std::make_unique<Array>();
            for (std::uint64_t i = 0; i < children; ++i) array->append(random_tree(random, depth - 1));
            return array;
        }
        default: {
            auto object = std::make_unique<Object>();
            object->comment = random_comment(random, false);
            for (std::uint64_t i = 0; i < children; ++i) {
                std::string key = random_key(random);
                if (object->find(key)) continue;
                object->insert(std::move(key), random_tree(random, depth - 1), random_comment(random, true));
            }
            return object;
        }
    }
}

}  // namespace kelvara_test
