// Errors that were detected and put right without anybody noticing: what failing memory or an unstable
// processor leaves behind before it leaves worse.
//
// Whoever finds its own result wrong, does the step again and succeeds counts one for every failed attempt.
// An error that ends the computation is not counted, and neither is a retry of what the outside world
// refused (a full disk, a missing thread). Any thread may count.
#pragma once

#include <cstdint>

namespace qmp {

void count_recovered_errors(std::uint64_t errors);
// Since the process started.
std::uint64_t recovered_errors();

}  // namespace qmp
