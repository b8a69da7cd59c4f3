// What a minidump holds, read by the layout that debuggers read.
#include <cstring>
#include <optional>

#include "shell/crash_fixture.h"

namespace kelvara {
namespace {

enum StreamType : std::uint32_t { thread_list = 3, module_list = 4, exception_record = 6, comment = 10 };

class Minidump {
  public:
    explicit Minidump(std::string bytes) : bytes_(std::move(bytes)) {}

    bool has_signature() const { return bytes_.size() >= 32 && bytes_.compare(0, 4, "MDMP") == 0; }

    // Where a stream of the directory begins; nothing when there is none.
    std::optional<std::size_t> stream(StreamType type) const {
        const auto streams = read<std::uint32_t>(8), directory = read<std::uint32_t>(12);
        for (std::uint32_t i = 0; i < streams; ++i) {
            const std::size_t entry = directory + 12 * i;
            if (read<std::uint32_t>(entry) == type) return read<std::uint32_t>(entry + 8);
        }
        return std::nullopt;
    }

    template <typename Number>
    Number read(std::size_t position) const {
        Number value{};
        if (position + sizeof value <= bytes_.size())
            std::memcpy(&value, bytes_.data() + position, sizeof value);
        return value;
    }
    std::string text(std::size_t position) const { return bytes_.c_str() + position; }

  private:
    std::string bytes_;
};

class MinidumpTest : public kelvara_test::CrashFixture {
  protected:
    Minidump minidump_of(const std::string& action, std::int64_t exit_code) const {
        for (const auto& file : dump_files()) std::filesystem::remove(file);
        EXPECT_EQ(crash(action).exit_code, exit_code) << action;
        Minidump result(dump());
        EXPECT_TRUE(result.has_signature()) << action;
        return result;
    }

    // The dump names this exception, at an address of the program's own code.
    void expect_exception(const std::string& action, std::uint32_t code) const {
        const Minidump minidump = minidump_of(action, code);
        const auto exception = minidump.stream(exception_record), modules = minidump.stream(module_list);
        ASSERT_TRUE(exception && modules) << action;
        EXPECT_NE(minidump.read<std::uint32_t>(*exception), 0u) << action;  // the thread
        EXPECT_EQ(minidump.read<std::uint32_t>(*exception + 8), code) << action;
        const auto address = minidump.read<std::uint64_t>(*exception + 24);
        const auto base = minidump.read<std::uint64_t>(*modules + 4);
        const auto size = minidump.read<std::uint32_t>(*modules + 12);
        EXPECT_GE(address, base) << action;
        EXPECT_LT(address, base + size) << action;
        EXPECT_TRUE(minidump.stream(thread_list)) << action;
    }
};

TEST_F(MinidumpTest, NamesTheException) {
    expect_exception("fault:read", 0xc0000005);
    expect_exception("fault:divide", 0xc0000094);
    expect_exception("fault:instruction", 0xc000001d);
    expect_exception("fault:overflow", 0xc00000fd);
    expect_exception("worker-fault:divide", 0xc0000094);
    expect_exception("fault:assertion", 0xc0000005);
}

TEST_F(MinidumpTest, HasNoExceptionWhenTheProgramAborts) {
    const Minidump minidump = minidump_of("fault:abort", 3);
    EXPECT_FALSE(minidump.stream(exception_record));
    EXPECT_TRUE(minidump.stream(thread_list));
}

TEST_F(MinidumpTest, NamesTheProgram) {
    const Minidump minidump = minidump_of("fault:read", 0xc0000005);
    const auto comments = minidump.stream(comment);
    ASSERT_TRUE(comments);
    EXPECT_TRUE(minidump.text(*comments).starts_with("Program: Kelvara ")) << minidump.text(*comments);
    EXPECT_NE(minidump.text(*comments).find("\nIntegrity: Intact\n"), std::string::npos);
}

}  // namespace
}  // namespace kelvara
