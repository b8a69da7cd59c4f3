// What a dump tells a developer.
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <ctime>
#include <sstream>

#include "shell/crash_fixture.h"

namespace kelvara {
namespace {

using kelvara_test::ChildEnd;
using kelvara_test::run_child;

class CrashDumpTest : public kelvara_test::CrashFixture {
  protected:
    // The dump of a driver that ends by this signal.
    std::string dump_of(const std::string& action, int signal) const {
        for (const auto& file : dump_files()) std::filesystem::remove(file);
        EXPECT_EQ(crash(action).exit_code, -signal) << action;
        return dump();
    }

    static std::string section(const std::string& dump, const std::string& title) {
        const std::size_t start = dump.find("\n" + title);
        if (start == std::string::npos) return {};
        const std::size_t lines = dump.find('\n', start + 1) + 1;
        return dump.substr(lines, dump.find("\n\n", lines - 1) + 1 - lines);
    }

    // What the addresses of the driver in the call stack stand for: functions and lines, one line each.
    std::string read_call_stack(const std::string& dump) const {
        std::istringstream lines(section(dump, "Call stack"));
        std::vector<std::string> command = {"/usr/bin/addr2line", "-Cfpe", KELVARA_SHELL_DRIVER};
        for (std::string line; std::getline(lines, line);) {
            const std::size_t start = line.find("shell_driver+");
            if (start == std::string::npos) continue;
            const std::size_t offset = start + std::string("shell_driver+").size();
            command.push_back(line.substr(offset, line.find(' ', offset) - offset));
        }
        return run_child(command).output;
    }
};

TEST_F(CrashDumpTest, TellsTheCause) {
    const std::string write = dump_of("fault:write", SIGSEGV);
    EXPECT_NE(write.find("\nSignal: SIGSEGV (11)\nCode: 1\nAddress: 0x0000000000000010\n"),
              std::string::npos);
    EXPECT_NE(dump_of("fault:divide", SIGFPE).find("\nSignal: SIGFPE (8)\n"), std::string::npos);
    EXPECT_NE(dump_of("fault:instruction", SIGILL).find("\nSignal: SIGILL (4)\n"), std::string::npos);
    EXPECT_NE(dump_of("fault:abort", SIGABRT).find("\nSignal: SIGABRT (6)\n"), std::string::npos);
    EXPECT_NE(dump_of("thread-fault:exception", SIGABRT).find("\nSignal: SIGABRT (6)\n"), std::string::npos);
    EXPECT_NE(dump_of("fault:overflow", SIGSEGV).find("\nSignal: SIGSEGV (11)\n"), std::string::npos);
    EXPECT_NE(dump_of("raise:" + std::to_string(SIGBUS), SIGBUS).find("\nSignal: SIGBUS (7)\n"),
              std::string::npos);
    EXPECT_NE(dump_of("raise:" + std::to_string(SIGSYS), SIGSYS).find("\nSignal: SIGSYS (31)\n"),
              std::string::npos);
    EXPECT_NE(dump_of("fault:assertion", SIGSEGV).find("\nAddress: 0x0000000000000000\n"), std::string::npos);
}

TEST_F(CrashDumpTest, HasEverySection) {
    const std::string dump = dump_of("worker-fault:divide", SIGFPE);
    EXPECT_TRUE(dump.starts_with("Program: Kelvara ")) << dump.substr(0, 200);
    EXPECT_NE(dump.find("\nRegisters:\n  rip 0x"), std::string::npos);
    EXPECT_NE(section(dump, "Modules").find("/shell_driver  build-id "), std::string::npos);
    EXPECT_NE(section(dump, "Modules").find("libc.so.6"), std::string::npos);
    EXPECT_NE(section(dump, "Memory map").find("[stack]"), std::string::npos);
    EXPECT_NE(section(dump, "Status").find("Threads:"), std::string::npos);
    const std::string threads = section(dump, "Threads");
    EXPECT_NE(threads.find("  shell_driver\n"), std::string::npos) << threads;
    EXPECT_EQ(threads.find("  Number: 1\n"), std::string::npos) << threads;
    EXPECT_NE(threads.find("  Number: "), std::string::npos) << threads;
}

TEST_F(CrashDumpTest, ItsCallStackBecomesLinesOfTheSource) {
    if (access("/usr/bin/addr2line", X_OK) != 0) GTEST_SKIP() << "addr2line is not installed";
    const std::string divide = read_call_stack(dump_of("worker-fault:divide", SIGFPE));
    EXPECT_TRUE(divide.find("divide_by_zero() at ") < divide.find("FaultyAction::run(unsigned long) at "))
        << divide;
    EXPECT_NE(divide.find("/tests/shell/driver/faults.cpp:"), std::string::npos) << divide;
    EXPECT_NE(divide.find("/src/platform/parallel/"), std::string::npos) << divide;

    const std::string overflow = read_call_stack(dump_of("fault:overflow", SIGSEGV));
    EXPECT_TRUE(overflow.starts_with("kelvara_test::(anonymous namespace)::use_stack(int) at ")) << overflow;

    const std::string freed = read_call_stack(dump_of("fault:free-twice", SIGABRT));
    EXPECT_TRUE(freed.starts_with("kelvara_test::(anonymous namespace)::free_twice() at ")) << freed;
    EXPECT_NE(freed.find("kelvara::run_program("), std::string::npos) << freed;

    // Nothing is at the address that was called; the caller is.
    const std::string called = dump_of("fault:call", SIGSEGV);
    EXPECT_TRUE(
        section(called, "Call stack").starts_with("  #0  ?  0x0000000000000000\n  #1  shell_driver+0x"))
        << section(called, "Call stack");
    const std::string caller = read_call_stack(called);
    EXPECT_NE(caller.find("/tests/shell/driver/"), std::string::npos) << caller;
}

TEST_F(CrashDumpTest, IsFinishedAlsoWhenTheStackIsDamaged) {
    const std::string dump = dump_of("fault:lost-stack", SIGILL);
    EXPECT_TRUE(section(dump, "Call stack").starts_with("  #0  shell_driver+0x")) << dump;
    EXPECT_NE(section(dump, "Memory map").find("[stack]"), std::string::npos);
}

// A thread that crashes inside the heap holds the heap's lock.
TEST_F(CrashDumpTest, NeedsNoHeap) {
    dump_of("fault:free-twice", SIGABRT);
    dump_of("thread-fault:free-twice", SIGABRT);
}

TEST_F(CrashDumpTest, ShowsTheStackButNotTheEnvironment) {
    const std::string secret = "a secret of the environment, some words long";
    ASSERT_EQ(setenv("KELVARA_TEST_SECRET", secret.c_str(), 1), 0);
    const std::string dump = dump_of("fault:write", SIGSEGV);
    unsetenv("KELVARA_TEST_SECRET");
    EXPECT_EQ(dump.find(secret), std::string::npos);
    std::istringstream lines(section(dump, "Stack memory"));
    std::string memory;
    int rows = 0;
    for (std::string line; std::getline(lines, line); ++rows) {
        std::istringstream words(line.substr(line.find(':') + 1));
        for (std::string word; words >> word;) {
            std::uint64_t value = std::stoull(word, nullptr, 16);
            for (int i = 0; i < 8; ++i, value >>= 8) memory += static_cast<char>(value);
        }
    }
    EXPECT_GT(rows, 10);
    EXPECT_EQ(memory.find(secret), std::string::npos);
}

class FailingDumpTest : public CrashDumpTest {
  protected:
    // Makes links of the names that a dump has within the next seconds.
    void link_dumps_to(const std::string& target) const {
        const std::time_t now = std::time(nullptr);
        for (int second = 0; second < 30; ++second) {
            const std::time_t moment = now + second;
            std::tm fields{};
            localtime_r(&moment, &fields);
            char name[64];
            std::strftime(name, sizeof name, "Kelvara-%Y%m%d-%H%M%S.dmp", &fields);
            std::filesystem::create_symlink(target, folder_.native(name));
        }
    }
};

TEST_F(FailingDumpTest, AFullDisk) {
    link_dumps_to("/dev/full");
    const ChildEnd end = crash("fault:write");
    EXPECT_TRUE(
        end.output.ends_with("Creating mini-dump file...  \n"
                             "Unable to create minidump: No space left on device\n\n"))
        << end.output;
    EXPECT_EQ(end.exit_code, -SIGSEGV);
}

TEST_F(FailingDumpTest, AReadOnlyFolder) {
    if (geteuid() == 0) {
        // Rights do not stop root: a folder of the kernel's does.
        kelvara_test::ChildSettings settings;
        settings.folder = "/proc";
        const ChildEnd end = run_child({KELVARA_SHELL_DRIVER, "skip-warnings", "fault:write"}, settings);
        EXPECT_TRUE(
            end.output.ends_with("Creating mini-dump file...  \n"
                                 "Unable to create dump file: No such file or directory\n"))
            << end.output;
        EXPECT_EQ(end.exit_code, -SIGSEGV);
        return;
    }
    std::filesystem::permissions(folder_.native(""),
                                 std::filesystem::perms::owner_read | std::filesystem::perms::owner_exec);
    const ChildEnd end = crash("fault:write");
    std::filesystem::permissions(folder_.native(""), std::filesystem::perms::owner_all);
    EXPECT_TRUE(
        end.output.ends_with("Creating mini-dump file...  \n"
                             "Unable to create dump file: Permission denied\n"))
        << end.output;
    EXPECT_EQ(end.exit_code, -SIGSEGV);
}

}  // namespace
}  // namespace kelvara
