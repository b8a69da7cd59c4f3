// Two works beside each other, where there is more than one task.
#pragma once

#include "multiply/multiply_context.h"

namespace qmp {

// Neither uses the context's scratch unless the other one does not.
template <typename A, typename B>
void run_both(const MultiplyContext& context, const A& a, const B& b) {
    if (context.tds < 2) {
        a();
        b();
    } else {
        context.run_pair(a, b);
    }
}

}  // namespace qmp
