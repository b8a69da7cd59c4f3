#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "digitfiles/files.h"
#include "digitfiles/ordalis/copy_digits.h"
#include "digitfiles/text_reader.h"
#include "support/pseudo_terminal.h"

namespace Ordalis {
namespace {

using kelvara_test::PseudoTerminal;
using kelvara_test::shown_lines;
using kelvara_test::TemporaryFile;

class LostDigits final : public qmp::DigitSink {
  public:
    void write(char*, std::uint64_t) override {}
};

TEST(CopyDigitsOnATerminal, RewritesItsLine) {
    const TemporaryFile file("digits.txt", "3.14159265358979");
    PseudoTerminal terminal([&] {
        qmp::TextReader reader(file.path());
        LostDigits sink;
        copy_digits(reader, 0, 10, sink, 4);
        return 0;
    });
    EXPECT_EQ(terminal.wait_for_end(), 0);
    for (const char* digits : {"4", "8", "10"}) {
        EXPECT_NE(terminal.output().find("Streaming:  " + std::string(digits) + "  digits written"),
                  std::string::npos)
            << digits;
    }
    EXPECT_EQ(shown_lines(terminal.output()).front(), "Streaming:  10  digits written");
}

}  // namespace
}  // namespace Ordalis
