#include "digitfiles/digit_reader.h"

#include <gtest/gtest.h>

#include <string>

#include "digitfiles/files.h"
#include "digitfiles/text_reader.h"

namespace qmp {
namespace {

using kelvara_test::expect_string_exception;
using kelvara_test::TemporaryFile;

constexpr std::uint64_t buffer_size = DigitReader::iterator_buffer_digits;

// Digits that are a function of their position, as many as wanted, without a file.
class SyntheticReader final : public DigitReader {
  public:
    explicit SyntheticReader(std::uint64_t digits) : digits_(digits) {}
    const char* get_extension() const override { return "test"; }
    void read(std::uint64_t position, char* output, std::uint64_t count) override {
        if (fail) throw StringException("SyntheticReader::read()", "failed");
        last_position = position;
        last_count = count;
        for (std::uint64_t i = 0; i < count; ++i) output[i] = digit(position + i);
    }
    void print_info() const override {}
    std::uint32_t get_radix() const override { return 10; }
    std::uint64_t get_digits() const override { return digits_; }
    void set_raw(bool) override { empty_buffer(); }
    bool check_range(std::uint64_t, std::uint64_t) override { return true; }
    std::string get_first_digits(std::uint64_t) override { return "0."; }

    static char digit(std::uint64_t position) { return static_cast<char>('0' + position * 7 / 3 % 10); }
    bool fail = false;
    std::uint64_t last_position = 0;
    std::uint64_t last_count = 0;

  private:
    std::uint64_t digits_;
};

TEST(DigitReader, ShortFilesStandAtTheBuffersEnd) {
    std::string digits;
    for (std::uint64_t i = 0; i < 100; ++i) digits += SyntheticReader::digit(i);
    const TemporaryFile file("digits.txt", "3." + digits);
    TextReader reader(file.path());
    EXPECT_EQ(reader.buffer(), nullptr);
    reader.set_pos(40);
    reader.reload();
    EXPECT_EQ(reader.buffer_size(), buffer_size);
    EXPECT_EQ(reader.buffer_offset(), buffer_size - 60);
    EXPECT_EQ(reader.position(), 40u);
    EXPECT_EQ(std::string(reader.buffer() + reader.buffer_offset(), 60), digits.substr(40));
    for (std::uint64_t i = 40; i < 100; ++i) EXPECT_EQ(reader.next(), digits[i]);
    EXPECT_EQ(reader.position(), 100u);
    EXPECT_EQ(reader.buffer_offset(), buffer_size);
    expect_string_exception([&] { reader.next(); }, "DigitReader::reload()", "No more digits left: 100");
}

TEST(DigitReader, FullAndPartialBuffers) {
    SyntheticReader reader(2 * buffer_size + 10);
    reader.set_pos(buffer_size - 2);
    EXPECT_EQ(reader.next(), SyntheticReader::digit(buffer_size - 2));
    EXPECT_EQ(reader.last_count, buffer_size);
    EXPECT_EQ(reader.buffer_offset(), 1u);
    reader.set_pos(2 * buffer_size - 2);
    EXPECT_EQ(reader.next(), SyntheticReader::digit(2 * buffer_size - 2));
    EXPECT_EQ(reader.last_count, 12u);
    EXPECT_EQ(reader.buffer_offset(), buffer_size - 11);
    // Exactly one buffer left.
    reader.set_pos(buffer_size + 10);
    reader.reload();
    EXPECT_EQ(reader.last_count, buffer_size);
    EXPECT_EQ(reader.buffer_offset(), 0u);
}

TEST(DigitReader, IteratesThroughSeveralLoads) {
    SyntheticReader reader(buffer_size + 5);
    std::uint64_t wrong = 0;
    for (std::uint64_t i = 0; i < buffer_size + 5; ++i) wrong += reader.next() != SyntheticReader::digit(i);
    EXPECT_EQ(wrong, 0u);
    EXPECT_EQ(reader.last_position, buffer_size);
    EXPECT_EQ(reader.last_count, 5u);
}

TEST(DigitReader, PositionsUpToTheEnd) {
    SyntheticReader reader(100);
    reader.set_pos(100);
    EXPECT_EQ(reader.position(), 100u);
    expect_string_exception([&] { reader.set_pos(101); }, "DigitReader::set_pos()", "Out of range.");
    expect_string_exception([&] { reader.reload(); }, "DigitReader::reload()", "No more digits left: 100");
    reader.set_pos(99);
    EXPECT_EQ(reader.next(), SyntheticReader::digit(99));
}

TEST(DigitReader, UnknownSizesNeedAReaderOfTheirOwn) {
    SyntheticReader reader(0);
    reader.set_pos(1000);  // anywhere: the end is not known
    expect_string_exception([&] { reader.reload(); }, "DigitReader::reload()",
                            "DigitReader::reload() does not support unknown sizes.\n"
                            "You must override this function when total_digits could be 0.");
}

TEST(DigitReader, ANewModeEmptiesTheBuffer) {
    const TemporaryFile file("digits.txt", "3.14159");
    TextReader reader(file.path());
    EXPECT_EQ(reader.next(), '1');
    EXPECT_EQ(reader.next(), '4');
    reader.set_raw(true);
    EXPECT_EQ(reader.buffer_offset(), reader.buffer_size());
    EXPECT_EQ(reader.next(), 1);
    EXPECT_EQ(reader.next(), 5);
    EXPECT_EQ(reader.position(), 4u);
}

// What a failed load left in the buffer is not delivered.
TEST(DigitReader, AFailedLoadLeavesTheBufferEmpty) {
    SyntheticReader reader(10);
    EXPECT_EQ(reader.next(), SyntheticReader::digit(0));
    reader.fail = true;
    reader.set_pos(3);
    EXPECT_THROW(reader.next(), StringException);
    reader.fail = false;
    EXPECT_EQ(reader.next(), SyntheticReader::digit(3));
}

}  // namespace
}  // namespace qmp
