// Pieces of the benchmarks' command lines. std::invalid_argument with a message for the user.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace bench {

// What each argument does: a flag "--name" stands alone, an option "--name=value" hands on its value.
using Flags = std::map<std::string_view, std::function<void()>>;
using ValueOptions = std::map<std::string_view, std::function<void(std::string_view)>>;
void read_arguments(int argc, char** argv, const Flags& flags, const ValueOptions& options);

// The items of "a,b,c".
std::vector<std::string> items(std::string_view list);
// Numbers from 1 to 1e12, also written as "25e6".
std::vector<std::uint64_t> numbers(std::string_view list);
std::uint64_t number(std::string_view text);
double seconds(std::string_view text);
// The wanted ones, in the order of the known ones. `what` names their kind.
std::vector<std::string> chosen(const std::vector<std::string>& wanted, const std::vector<std::string>& known,
                                const char* what);
// Names of the instruction-set levels that this machine runs, best first.
std::vector<std::string> supported_levels();

}  // namespace bench
