#include "digitfiles/ordalis/copy_digits.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "digitfiles/files.h"
#include "digitfiles/text_reader.h"
#include "support/console.h"

namespace Ordalis {
namespace {

using kelvara_test::printed_by;
using kelvara_test::TemporaryFile;

class RecordingSink final : public qmp::DigitSink {
  public:
    void write(char* digits, std::uint64_t count) override { blocks.emplace_back(digits, count); }
    void finish() override { finished = true; }

    std::vector<std::string> blocks;
    bool finished = false;
};

TEST(CopyDigits, GoesInBlocks) {
    const TemporaryFile file("digits.txt", "3.14159265358979");
    qmp::TextReader reader(file.path());
    RecordingSink sink;
    EXPECT_EQ(printed_by([&] { copy_digits(reader, 2, 12, sink, 4); }), "Streaming:  10  digits written\n");
    EXPECT_EQ(sink.blocks, (std::vector<std::string>{"1592", "6535", "89"}));
    EXPECT_TRUE(sink.finished);
}

TEST(CopyDigits, OneBlockMayBeAll) {
    const TemporaryFile file("digits.txt", "3.14");
    qmp::TextReader reader(file.path());
    RecordingSink sink;
    EXPECT_EQ(printed_by([&] { copy_digits(reader, 0, 2, sink); }), "Streaming:  2  digits written\n");
    EXPECT_EQ(sink.blocks, std::vector<std::string>{"14"});
}

TEST(CopyDigits, AReaderThatFailsLeavesTheSinkUnfinished) {
    const TemporaryFile file("digits.txt", "3.14");
    qmp::TextReader reader(file.path());
    RecordingSink sink;
    printed_by([&] {
        kelvara_test::expect_string_exception([&] { copy_digits(reader, 0, 3, sink); }, "TextReader::read()",
                                              "Out of range.");
    });
    EXPECT_TRUE(sink.blocks.empty());
    EXPECT_FALSE(sink.finished);
}

}  // namespace
}  // namespace Ordalis
