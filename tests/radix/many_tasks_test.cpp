// Conversions so long, on so many tasks, that the transforms of each half of the work run on several tasks
// themselves: each half keeps to its own scratch.
#include <gtest/gtest.h>

#include <vector>

#include "radix/output_fixture.h"
#include "radix/thread_per_task.h"
#include "support/random_words.h"

namespace qmp {
namespace {

using kelvara_test::Number;
using kelvara_test::Output;
using kelvara_test::Session;

TEST(ManyTasks, GiveTheDigitsOfOne) {
    constexpr std::uint64_t digits = 3'000'000;
    kelvara_test::Random random;
    const Number x(kelvara_test::make_words(random, digits / 19 + 10), 3);
    const auto convert = [&](ParallelContext parallel) {
        return Session::decimal(parallel, digits).write_decimal(x.view(), digits);
    };
    const Output one = convert(ParallelContext::sequential());
    kelvara_test::ThreadPerTask threads;
    for (const std::uint64_t tasks : {4u, 5u, 16u, 64u}) {
        SCOPED_TRACE(tasks);
        const Output many = convert(threads.context(tasks));
        EXPECT_TRUE(many.text == one.text);
        EXPECT_EQ(many.digits.hash, one.digits.hash);
        EXPECT_TRUE(many.messages.empty());
    }
}

}  // namespace
}  // namespace qmp
