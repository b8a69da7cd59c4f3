// The same product, to the last bit, whichever framework runs its tasks.
#include <gtest/gtest.h>

#include "multiply/multiply.h"
#include "platform/parallel/registry.h"
#include "support/random_words.h"
#include "support/twiddled_context.h"
#include "support/words_reference.h"

namespace {

using kelvara_test::GuardedWords;
using kelvara_test::make_words;
using kelvara_test::Random;
using Words = std::vector<qmp::Word>;

constexpr std::uint64_t task_counts[] = {2, 7, 33};

class Product {
  public:
    explicit Product(std::uint64_t words)
        : random_(words),
          a_(make_words(random_, words)),
          b_(make_words(random_, words - words / 5)),
          length_(a_.size() + b_.size()),
          own_(length_, qmp::iPsize(length_, task_counts[2])) {}

    Words by(qmp::ParallelContext parallel) {
        GuardedWords product(length_);
        kelvara_test::fill_garbage(product.data(), length_);
        qmp::multiply(own_.context(parallel), product.data(), a_.data(), a_.size(), b_.data(), b_.size());
        EXPECT_TRUE(product.guards_intact() && own_.guards_intact());
        return product.value();
    }

  private:
    Random random_;
    Words a_;
    Words b_;
    std::uint64_t length_;
    kelvara_test::TwiddledContext own_;
};

TEST(Product, DoesNotDependOnTheFramework) {
    for (const std::uint64_t words : {1'000, 5'000, 40'000}) {
        Product product(words);
        const Words expected = product.by(qmp::ParallelContext::sequential());
        for (const std::string& key : qmp::parallelizer_keys()) {
            const auto framework = qmp::make_parallelizer(key);
            for (const std::uint64_t tasks : task_counts) {
                EXPECT_TRUE(product.by({tasks, framework.get()}) == expected)
                    << words << " words, " << key << ", " << tasks << " tasks";
            }
        }
    }
}

}  // namespace
