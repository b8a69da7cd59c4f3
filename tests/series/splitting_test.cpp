// Whole ranges: against term-by-term recurrences, in exactly the planned buffers, with every task count.
#include <gtest/gtest.h>

#include "constants/pi_formulas.h"
#include "errors/exception.h"
#include "series/exact_sum.h"
#include "series/series_e_taylor.h"
#include "series/test_series.h"
#ifdef KELVARA_HAVE_GMP
#include <gmp.h>
#endif

namespace qmp {
namespace {

using kelvara_test::block_sum;
using kelvara_test::ExactValue;

// An integer that grows as it is computed with.
class Number {
  public:
    explicit Number(Word w = 0) : words_{w} {}
    void mul(BasicIntView b) {
        std::vector<Word> product(words_.size() + b.L);
        BasicInt result(product.data(), product.size());
        result.set_mulB({words_.data(), words_.size(), 0}, b);
        product.resize(result.L);
        words_ = product;
        trim();
    }
    void mul(const Number& b) { mul(BasicIntView{b.words_.data(), b.words_.size(), 0}); }
    void add(const Number& b, bool subtract) {
        words_.resize(std::max(words_.size(), b.words_.size()) + 1);
        Word carry = 0;
        for (std::size_t i = 0; i < words_.size(); i++) {
            const Word w = i < b.words_.size() ? b.words_[i] : 0;
            const DoubleWord sum = subtract ? static_cast<DoubleWord>(words_[i]) - w - carry
                                            : static_cast<DoubleWord>(words_[i]) + w + carry;
            words_[i] = low_word(sum);
            carry = high_word(sum) & 1;
        }
        trim();
    }
    // Times 2^k, of which the words below position 0 are told by `exp`.
    ExactValue shifted(std::uint64_t right_bits) const {
        const auto words = static_cast<std::int64_t>((right_bits + 63) / 64);
        Number copy = *this;
        copy.mul(Number(Word{1} << (static_cast<std::uint64_t>(words) * 64 - right_bits)));
        return {copy.words_, -words};
    }
    const std::vector<Word>& words() const { return words_; }

  private:
    void trim() {
        while (words_.size() > 1 && words_.back() == 0) words_.pop_back();
    }
    std::vector<Word> words_;
};

// P, Q (and R) by going through the terms one by one.
std::vector<Number> recurrence(const Series_e_Taylor& series, std::uint64_t a, std::uint64_t b) {
    Number P(0), Q(1);
    for (std::uint64_t j = a + 1; j <= b; j++) {
        P.mul(Number(j));
        P.add(Number(1), series.subtracts(a, j - 1));
        Q.mul(Number(j));
    }
    return {P, Q};
}

template <typename TermOf>
std::vector<Number> recurrence_p2b3(const BSS_P2B3_Type0& series, std::uint64_t a, std::uint64_t b,
                                    TermOf&& term) {
    Number P(0), Q(1), R(1);
    for (std::uint64_t k = a + 1; k <= b; k++) {
        auto [p, q, r] = term(k);
        p.mul(R);
        P.mul(q);
        P.add(p, series.subtracts(a, k - 1));
        Q.mul(q);
        R.mul(r);
    }
    return {P, Q, R};
}

using Term = std::tuple<Number, Number, Number>;

Number product(std::initializer_list<Word> factors) {
    Number result(1);
    for (const Word factor : factors) result.mul(Number(factor));
    return result;
}
Term chudnovsky_term(Word k) {
    const Number r = product({6 * k - 5, 2 * k - 1, 6 * k - 1});
    Number p = r;
    p.mul(Number(545140134 * k + 13591409));
    return {p, product({10939058860032000, k, k, k}), r};
}
Term ramanujan_term(Word k) {
    const Number r = product({4 * k - 3, 2 * k - 1, 4 * k - 1});
    Number p = r;
    p.mul(Number(26390 * k + 1103));
    return {p, product({3073907232, k, k, k}), r};
}

void expect_value(const ExactValue& value, const std::vector<Word>& expected, const char* what) {
    EXPECT_EQ(value.exp, 0) << what;
    EXPECT_EQ(value.words, expected) << what;
}

TEST(Splitting, OfTheExponentialSeriesEqualsTheRecurrence) {
    for (const bool negative : {false, true}) {
        const Series_e_Taylor series(negative);
        for (const std::uint64_t b :
             {3u, 5u, 8u, 9u, 15u, 16u, 17u, 31u, 33u, 100u, 101u, 102u, 500u, 1500u}) {
            const auto sum =
                block_sum(series, ParallelContext::sequential(), 1, b, psr_size(series, 1, b), 1);
            const auto expected = recurrence(series, 1, b);
            for (int i = 0; i < 2; i++) expect_value(sum[i], expected[i].words(), i ? "Q" : "P");
        }
    }
}

TEST(Splitting, OfThePiSeriesEqualsTheRecurrence) {
    for (const std::uint32_t formula : {0u, 1u}) {
        const BSS_P2B3_Type0& series = kelvara::pi_formula(formula).series;
        for (const std::uint64_t a : {0u, 1u, 1000u}) {
            for (const std::uint64_t n : {1u, 2u, 3u, 7u, 8u, 11u, 12u, 13u, 16u, 64u, 101u, 200u}) {
                const auto sum =
                    block_sum(series, ParallelContext::sequential(), a, a + n, psr_size(series, a, a + n), 1);
                const auto expected =
                    recurrence_p2b3(series, a, a + n, formula == 0 ? chudnovsky_term : ramanujan_term);
                const char* names[] = {"P", "Q", "R"};
                for (int i = 0; i < 3; i++) expect_value(sum[i], expected[i].words(), names[i]);
            }
        }
    }
}

// P/Q of the logarithms: P carries 2^-b.
TEST(Splitting, OfALogarithmEqualsTheRecurrence) {
    for (const bool alternating : {false, true}) {
        const kelvara_test::LogSeries series(alternating);
        for (const std::uint64_t n : {1u, 2u, 3u, 4u, 5u, 17u, 64u, 65u, 100u, 300u}) {
            const auto sum =
                block_sum(series, ParallelContext::sequential(), 0, n, psr_size(series, 0, n), 1);
            Number P(0), Q(1);
            for (std::uint64_t k = 1; k <= n; k++) {
                P.mul(Number(2 * k));
                P.add(Q, series.subtracts(0, k - 1));
                Q.mul(Number(k));
            }
            expect_value(sum[1], Q.words(), "Q");
            // Compare at one exponent: the engine's own exponent may reach lower than needed.
            const ExactValue expected = P.shifted(n);
            std::vector<Word> words = sum[0].words;
            ASSERT_LE(sum[0].exp, expected.exp);
            const auto extra = static_cast<std::size_t>(expected.exp - sum[0].exp);
            for (std::size_t i = 0; i < extra; i++) EXPECT_EQ(words[i], 0u);
            words.erase(words.begin(), words.begin() + static_cast<std::ptrdiff_t>(extra));
            EXPECT_EQ(words, expected.words);
        }
    }
}

// All results in exactly the planned buffers, whatever the tasks; BSR_sizes bounds even what its formula
// shares out unevenly.
template <typename Series>
void expect_same_words(const Series& series, std::initializer_list<std::uint64_t> lengths,
                       std::uint64_t start) {
    const auto all = kelvara_test::frameworks();
    for (const std::uint64_t n : lengths) {
        const std::uint64_t size = psr_size(series, start, start + n);
        const auto expected = block_sum(series, ParallelContext::sequential(), start, start + n, size, 0);
        for (const auto& framework : all) {
            for (const std::uint64_t tasks : {1u, 2u, 3u, 7u, 16u, 64u}) {
                for (const std::uint64_t depth : {0u, 1u}) {
                    EXPECT_EQ(block_sum(series, {tasks, framework.get()}, start, start + n, size, depth),
                              expected)
                        << n << " terms, " << tasks << " tasks, " << framework->get_type_name();
                }
            }
        }
    }
}

TEST(Tasks, DoNotChangeTheExponentialSums) {
    expect_same_words(Series_e_Taylor(false), {999, 1000, 1001, 2500, 8001, 30000}, 1);
    expect_same_words(Series_e_Taylor(true), {1000, 2001, 16001}, 1);
}

TEST(Tasks, DoNotChangeThePiSums) {
    expect_same_words(kelvara::pi_formula(0).series, {999, 1000, 1001, 2000, 5003}, 0);
    expect_same_words(kelvara::pi_formula(0).series, {1777, 4000}, 100001);
    expect_same_words(kelvara::pi_formula(1).series, {1000, 3001, 6000}, 0);
}

TEST(Tasks, DoNotChangeTheLogarithms) {
    expect_same_words(kelvara_test::LogSeries(false), {999, 1000, 2047, 9000}, 0);
    expect_same_words(kelvara_test::LogSeries(true), {1001, 4096}, 0);
    expect_same_words(kelvara_test::ArcCothSeries(26), {1001, 9999}, 0);
}

// Counts the actions that reach the framework.
class CountingFramework final : public BasicParallelizer {
  public:
    using BasicParallelizer::run_in_parallel;
    void run_in_parallel(BasicAction& a, BasicAction& b) override {
        pairs++;
        a.run(0);
        b.run(0);
    }
    const char* get_type_name() const override { return "counting"; }
    const char* get_display_name() const override { return "Counting"; }
    std::uint64_t pairs = 0;
};

TEST(Tasks, OneTaskNeverCreatesActions) {
    CountingFramework framework;
    const Series_e_Taylor series(false);
    block_sum(series, {1, &framework}, 1, 5000, psr_size(series, 1, 5000), 1);
    EXPECT_EQ(framework.pairs, 0u);
    // Below a thousand terms neither do more tasks; four tasks of two threads make three pairs.
    PsrPlan plan;
    kelvara_test::PlannedBuffers<Series_e_Taylor> planned(BSR_sizes(series, 200, 0, 4));
    const MultiplyContext context({4, &framework}, &kelvara_test::shared_twiddles(), planned.scratch.data(),
                                  planned.scratch.words());
    BSR_parallel(series, context, 1, planned.buffers, 1, 1000);
    EXPECT_EQ(framework.pairs, 0u);
}

TEST(Splitting, ReportsBuffersThatAreTooSmall) {
    const BSS_P2B3_Type0& series = kelvara::pi_formula(0).series;
    BsrSizes sizes = BSR_sizes(series, psr_size(series, 0, 200), 0, 1);
    sizes.words = 150;
    kelvara_test::PlannedBuffers<BSS_P2B3_Type0> planned(sizes);
    const MultiplyContext context(ParallelContext::sequential(), &kelvara_test::shared_twiddles(),
                                  planned.scratch.data(), planned.scratch.words());
    EXPECT_THROW(BSR_serial(series, context, planned.buffers, 0, 200), BufferTooSmallException);
    planned.check();
}

// The engine's label stack, as text.
class RecordingProgress final : public SilentProgress {
  public:
    void push_label(std::string_view text, console::Colour colour) override {
        stack_.emplace_back(text);
        std::string line;
        for (const std::string& part : stack_) line += part;
        lines.push_back(line + colour);
    }
    void pop_label() override { stack_.pop_back(); }
    std::vector<std::string> lines;
    std::size_t depth() const { return stack_.size(); }

  private:
    std::vector<std::string> stack_;
};

TEST(BlockLabels, FollowTheRecursion) {
    const Series_e_Taylor series(false);
    RecordingProgress progress;
    kelvara_test::PlannedBuffers<Series_e_Taylor> planned(BSR_sizes(series, psr_size(series, 1, 3001), 1, 1));
    const MultiplyContext context(ParallelContext::sequential(), &kelvara_test::shared_twiddles(),
                                  planned.scratch.data(), planned.scratch.words());
    BSR_block(series, context, &progress, planned.buffers, 1, 3001, 1);
    const std::uint64_t m = find_split(series, 1, 3001);
    const auto digits = [&](std::uint64_t a, std::uint64_t b) {
        return console::format_separated(static_cast<std::uint64_t>(std::llrint(
            (series.SizeAtIndex(static_cast<double>(b)) - series.SizeAtIndex(static_cast<double>(a))) *
                0.4342944819032518 +
            0.5)));
    };
    ASSERT_EQ(progress.lines.size(), 8u);
    EXPECT_EQ(progress.lines[0], "0G");
    EXPECT_EQ(progress.lines[1], "0 -> G");
    EXPECT_EQ(progress.lines[2], "0 -> " + digits(1, m) + "Y");
    EXPECT_EQ(progress.lines[3], "1G");
    EXPECT_EQ(progress.lines[4], "1 -> G");
    EXPECT_EQ(progress.lines[5], "1 -> " + digits(m, 3001) + "Y");
    EXPECT_EQ(progress.lines[6], "-  G");
    EXPECT_EQ(progress.lines[7].substr(0, 3), "-  ");
    EXPECT_EQ(progress.lines[7].back(), 'Y');
    EXPECT_EQ(progress.depth(), 0u);
}

TEST(ExactSum, InPlaceAtEveryOffset) {
    kelvara_test::Random random;
    for (int round = 0; round < 300; round++) {
        const auto pattern = kelvara_test::all_patterns[random.next() % 5];
        const auto a = kelvara_test::make_words(random, random.between(1, 12), pattern);
        const auto b = kelvara_test::make_words(random, random.between(1, 12), kelvara_test::Pattern::ones);
        std::vector<Word> buffer(40);
        kelvara_test::fill_garbage(buffer.data(), buffer.size());
        ExactFloat x(buffer.data(), buffer.size());
        x.T = x.base + random.between(0, 3);
        std::copy(a.begin(), a.end(), x.T);
        x.L = a.size();
        x.exp = static_cast<std::int64_t>(random.between(0, 9)) - 4;
        x.hash = check_mul(hash_words(0, 8, x.T, x.L), check_word_weight(x.exp));
        ExactFloatView y = {b.data(), b.size(), static_cast<std::int64_t>(random.between(0, 9)) - 4, 0};
        y.hash = check_mul(hash_words(0, 8, y.T, y.L), check_word_weight(y.exp));

        // The general sum into another buffer is the reference.
        std::vector<Word> other(60);
        ExactFloat expected(other.data(), other.size());
        expected.set_add(ParallelContext::sequential(), x, y);
        const std::vector<Word> before(x.T, x.T + x.L);
        const std::int64_t exp = x.exp;
        add_in_place(x, y);
        EXPECT_EQ(recheck(ParallelContext::sequential(), x), 0u);
        const auto strip = [](const ExactFloat& v) {
            const Word* start = v.T;
            std::int64_t e = v.exp;
            while (*start == 0) start++, e++;
            return std::pair(std::vector<Word>(start, static_cast<const Word*>(v.T) + v.L), e);
        };
        EXPECT_EQ(strip(x), strip(expected));
        subtract_in_place(x, y);
        EXPECT_EQ(recheck(ParallelContext::sequential(), x), 0u);
        std::vector<Word> back_words = before;
        ExactFloat back(back_words.data(), back_words.size());
        back.L = before.size();
        back.exp = exp;
        EXPECT_EQ(strip(x), strip(back));
    }
}

TEST(ExactSum, ErrorsNameTheFunction) {
    Word words[3] = {1, 1, 1};
    ExactFloat x(words, 2);
    x.L = 2;
    const Word w = 5;
    try {
        add_in_place(x, {&w, 1, 0, 5});
        FAIL();
    } catch (const BufferTooSmallException& e) {
        EXPECT_EQ(e.function(), "add_in_place()");
        EXPECT_EQ(e.required_size(), 3u);
    }
    try {
        subtract_in_place(x, {&w, 1, -1, 5});
        FAIL();
    } catch (const BufferTooSmallException& e) {
        EXPECT_EQ(e.function(), "subtract_in_place()");
        EXPECT_EQ(e.required_size(), 4u);
    }
}

#ifdef KELVARA_HAVE_GMP

struct Rational {
    mpq_t q;
    Rational() { mpq_init(q); }
    ~Rational() { mpq_clear(q); }
    Rational(const Rational&) = delete;
    Rational& operator=(const Rational&) = delete;
};

void set_words(mpz_t z, const std::vector<Word>& words) {
    mpz_import(z, words.size(), -1, sizeof(Word), 0, 0, words.data());
}

// (6k)! (A + B k) / ((3k)! k!^3 C^k), from its definition.
TEST(Splitting, OfChudnovskysSeriesEqualsItsDefinition) {
    const BSS_P2B3_Type0& series = kelvara::pi_formula(0).series;
    const std::uint64_t n = 150;
    const auto sum = block_sum(series, ParallelContext::sequential(), 0, n, psr_size(series, 0, n), 1);
    Rational total, term, factor;
    for (unsigned long k = 1; k <= n; k++) {
        mpz_t x;
        mpz_init(x);
        mpz_fac_ui(mpq_numref(term.q), 6 * k);
        mpz_fac_ui(mpq_denref(term.q), 3 * k);
        mpz_fac_ui(x, k);
        mpz_pow_ui(x, x, 3);
        mpz_mul(mpq_denref(term.q), mpq_denref(term.q), x);
        mpz_ui_pow_ui(x, 640320, 3 * k);
        mpz_mul(mpq_denref(term.q), mpq_denref(term.q), x);
        mpz_set_ui(x, 545140134);
        mpz_mul_ui(x, x, k);
        mpz_add_ui(x, x, 13591409);
        mpz_mul(mpq_numref(term.q), mpq_numref(term.q), x);
        mpq_canonicalize(term.q);
        // The engine's sum is positive: its first term, negative by itself, counts as positive.
        if (k % 2 == 1) {
            mpq_add(total.q, total.q, term.q);
        } else {
            mpq_sub(total.q, total.q, term.q);
        }
        mpz_clear(x);
    }
    set_words(mpq_numref(factor.q), sum[0].words);
    set_words(mpq_denref(factor.q), sum[1].words);
    mpq_canonicalize(factor.q);
    EXPECT_TRUE(mpq_equal(total.q, factor.q));
}

TEST(Splitting, OfTheExponentialSeriesEqualsItsDefinition) {
    for (const bool negative : {false, true}) {
        const Series_e_Taylor series(negative);
        const std::uint64_t n = 400;
        const auto sum = block_sum(series, ParallelContext::sequential(), 1, n, psr_size(series, 1, n), 1);
        Rational total, term, result;
        mpq_set_ui(term.q, 1, 1);
        for (unsigned long j = 2; j <= n; j++) {
            mpz_fac_ui(mpq_denref(term.q), j);
            if (negative && j % 2 == 1) {
                mpq_sub(total.q, total.q, term.q);
            } else {
                mpq_add(total.q, total.q, term.q);
            }
        }
        set_words(mpq_numref(result.q), sum[0].words);
        set_words(mpq_denref(result.q), sum[1].words);
        mpq_canonicalize(result.q);
        EXPECT_TRUE(mpq_equal(total.q, result.q));
    }
}

#endif

}  // namespace
}  // namespace qmp
