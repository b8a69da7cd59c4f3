// Operands that are transformed in two parts, the second one together with the product.
#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "multiply/multiply.h"
#include "platform/parallel/push_pool_parallelizer.h"
#include "support/algorithm_products.h"
#include "support/levels.h"
#include "support/random_words.h"
#include "support/twiddled_context.h"

namespace {

using kelvara_test::GuardedWords;
using kelvara_test::Random;
using kelvara_test::TwiddledContext;
using qmp::MultiplyContext;
using qmp::OperandState;
using qmp::ParallelContext;
using qmp::Word;
using Words = std::vector<Word>;

constexpr bool begin = true, whole = false;

class BegunOperands : public kelvara_test::LevelTest {
  protected:
    struct Operand {
        GuardedWords buffer;
        OperandState state = OperandState::whole;

        Operand(const qmp::TransformParameters& parameters, const MultiplyContext& context,
                const Words& words, bool only_begin)
            : buffer(parameters.operand_words) {
            if (only_begin) {
                state = parameters.begin_forward(context, buffer.data(), words.data(), words.size());
            } else {
                parameters.forward(context, buffer.data(), words.data(), words.size());
            }
        }
    };

    void SetUp() override {
        LevelTest::SetUp();
        pool_.threads = 3;
    }

    void check_products(std::uint64_t n);
    void check_squares(std::uint64_t n);

    // The basecase and both kinds of floating-point transforms, with one row to a leaf or a group; with more.
    static constexpr std::uint64_t lengths[] = {40, 3000, 10400};
    static constexpr std::uint64_t large_lengths[] = {30000, 120000};
    qmp::PushPoolParallelizer pool_;
};

// Every pair of states gives the same words, and leaves the kept operand whole: it serves again.
void BegunOperands::check_products(std::uint64_t n) {
    Random random(41);
    TwiddledContext own(n, qmp::iPsize(n, 3));
    qmp::TransformParametersBox box;
    const qmp::TransformParameters& parameters = qmp::construct_transform(box, n);
    const Words a = kelvara_test::make_words(random, n / 2), b = kelvara_test::make_words(random, n / 3);
    const Words c = kelvara_test::make_words(random, n / 2 - 1);
    const Words ab = kelvara_test::oracle_product(a, b), cb = kelvara_test::oracle_product(c, b);
    for (const std::uint64_t tasks : {1, 3}) {
        const MultiplyContext context = own.context(ParallelContext{tasks, &pool_});
        for (const bool begun_a : {whole, begin}) {
            for (const bool begun_b : {whole, begin}) {
                SCOPED_TRACE(testing::Message()
                             << n << " words, " << tasks << " tasks, states " << begun_a << begun_b);
                Operand x(parameters, context, a, begun_a), kept(parameters, context, b, begun_b);
                GuardedWords product(ab.size());
                parameters.finish_multiply(context, x.buffer.data(), x.state, kept.buffer.data(), kept.state,
                                           product.data(), 0, ab.size());
                ASSERT_EQ(product.value(), ab);
                Operand y(parameters, context, c, begun_a);
                GuardedWords again(cb.size());
                parameters.finish_multiply(context, y.buffer.data(), y.state, kept.buffer.data(),
                                           OperandState::whole, again.data(), 0, cb.size());
                ASSERT_EQ(again.value(), cb);
                EXPECT_TRUE(x.buffer.guards_intact() && kept.buffer.guards_intact() &&
                            product.guards_intact() && own.guards_intact());
            }
        }
    }
}

void BegunOperands::check_squares(std::uint64_t n) {
    Random random(42);
    TwiddledContext own(n, qmp::iPsize(n, 3));
    qmp::TransformParametersBox box;
    const qmp::TransformParameters& parameters = qmp::construct_transform(box, n);
    const Words a = kelvara_test::make_words(random, n / 2), b = kelvara_test::make_words(random, n / 3);
    const Words aa = kelvara_test::oracle_product(a, a), ab = kelvara_test::oracle_product(a, b);
    for (const bool begun : {whole, begin}) {
        SCOPED_TRACE(testing::Message() << n << " words, begun " << begun);
        const MultiplyContext context = own.context(ParallelContext{3, &pool_});
        Operand kept(parameters, context, a, begun);
        GuardedWords space(parameters.operand_words), square(aa.size()), product(ab.size());
        parameters.finish_square(context, space.data(), kept.buffer.data(), kept.state, square.data(), 0,
                                 aa.size());
        ASSERT_EQ(square.value(), aa);
        Operand other(parameters, context, b, begun);
        parameters.finish_multiply(context, other.buffer.data(), other.state, kept.buffer.data(),
                                   OperandState::whole, product.data(), 0, ab.size());
        ASSERT_EQ(product.value(), ab);
        EXPECT_TRUE(space.guards_intact() && kept.buffer.guards_intact());
    }
}

TEST_P(BegunOperands, GiveTheSameProductsAsWholeOnes) {
    for (const std::uint64_t n : lengths) check_products(n);
}

TEST_P(BegunOperands, GiveTheSameProductsAsWholeOnesWhenLarge) {
    for (const std::uint64_t n : large_lengths) check_products(n);
}

TEST_P(BegunOperands, AreSquaredAndKept) {
    for (const std::uint64_t n : lengths) check_squares(n);
}

TEST_P(BegunOperands, AreSquaredAndKeptWhenLarge) {
    for (const std::uint64_t n : large_lengths) check_squares(n);
}

INSTANTIATE_EVERY_LEVEL(BegunOperands);

}  // namespace
