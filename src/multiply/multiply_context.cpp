#include "multiply/multiply_context.h"

#include "errors/check.h"

namespace qmp {

MultiplyContext MultiplyContext::after(std::uint64_t words, const char* function) const {
    const std::uint64_t taken = (words + 7) / 8 * 8;
    require_capacity(function, scratch_words, taken);
    return {parallel(), twiddles, scratch + taken, scratch_words - taken};
}

}  // namespace qmp
