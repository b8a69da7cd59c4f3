#include "series/bsr_verify.h"

#include <algorithm>
#include <string>
#include <vector>

#include "errors/bsr_modular_check.h"
#include "numbers/check_value.h"
#include "radix/hash.h"

namespace qmp {

std::uint64_t recheck(ParallelContext parallel, ExactFloatView x) {
    const std::uint64_t words = parallel.tds < 2 ? hash_words(0, binary_word_radix, x.T, x.L)
                                                 : hash_words(parallel, 0, binary_word_radix, x.T, x.L);
    return check_sub(x.hash, check_mul(words, check_word_weight(x.exp)));
}

void qcb_Verify_BSR(Progress* progress, std::uint64_t a, std::uint64_t b, std::span<const ExactFloat> outputs,
                    ParallelContext parallel) {
    const std::uint64_t tasks = (std::max<std::uint64_t>(parallel.tds, 1) - 1) / 2 + 1;
    std::vector<std::uint64_t> differences(outputs.size());
    const auto check = [&](std::uint64_t i) {
        differences[i] = recheck(parallel.with_tasks(tasks), outputs[i]);
    };
    if (outputs[0].L < parallel_verify_threshold) {
        for (std::size_t i = 0; i < outputs.size(); i++) check(i);
    } else {
        parallel.run(0, outputs.size(), check);
    }
    if (std::all_of(differences.begin(), differences.end(), [](std::uint64_t d) { return d == 0; })) return;

    const char* text = "Modular Redundancy Check Failed";
    if (progress) {
        progress->message(text + (": " + std::to_string(a)) + " : " + std::to_string(b), 'R');
    }
    throw kelvara::BSRModularCheckFailedException("qcb_Verify_BSR()", text, a, b, std::move(differences));
}

}  // namespace qmp
