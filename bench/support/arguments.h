// Pieces of the benchmarks' command lines. std::invalid_argument with a message for the user.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace bench {

// "--name=value" in its parts; the value is empty when there is none.
struct Argument {
    std::string_view name;
    std::string_view value;

    explicit Argument(std::string_view text);
};

// The items of "a,b,c".
std::vector<std::string> items(std::string_view list);
// Numbers from 1 to 1e12, also written as "25e6".
std::vector<std::uint64_t> numbers(std::string_view list);
// The wanted ones, in the order of the known ones. `what` names their kind.
std::vector<std::string> chosen(const std::vector<std::string>& wanted, const std::vector<std::string>& known,
                                const char* what);
// Names of the instruction-set levels that this machine runs, best first.
std::vector<std::string> supported_levels();

}  // namespace bench
