#include "errors/recovered_errors.h"

#include <atomic>

namespace qmp {
namespace {

std::atomic<std::uint64_t> recovered{0};

}  // namespace

void count_recovered_errors(std::uint64_t errors) {
    recovered.fetch_add(errors, std::memory_order_relaxed);
}

std::uint64_t recovered_errors() {
    return recovered.load(std::memory_order_relaxed);
}

}  // namespace qmp
