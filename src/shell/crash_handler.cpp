#include "shell/crash_handler.h"

#include <algorithm>
#include <string_view>

#include "console/console.h"
#include "platform/build_identity.h"
#include "platform/os/process.h"

namespace kelvara {
namespace {

namespace console = qmp::console;
namespace os = qmp::os;

// Text joined in place; what does not fit is cut.
class FixedText {
  public:
    void append(std::string_view text) {
        const std::size_t count = std::min(text.size(), sizeof bytes_ - used_);
        std::copy_n(text.begin(), count, bytes_ + used_);
        used_ += count;
    }
    std::string_view view() const { return {bytes_, used_}; }

  private:
    char bytes_[1024];
    std::size_t used_ = 0;
};

// Which program a dump is of. Joined beforehand: a crash cannot allocate.
FixedText program_description;

void warn_of_failure(std::string_view what, std::uint32_t error_code) {
    char buffer[512];
    FixedText text;
    text.append(what);
    text.append(os::system_error_text(error_code, buffer));
    console::print_warning(text.view());
}

char* append_digits(char* end, int value, int digits) {
    for (int i = digits - 1; i >= 0; --i, value /= 10) end[i] = static_cast<char>('0' + value % 10);
    return end + digits;
}

}  // namespace

void make_dump_name(const os::LocalTime& time, std::span<char, dump_name_size> name) {
    constexpr std::string_view prefix = "Kelvara-", suffix = ".dmp";
    char* end = std::copy(prefix.begin(), prefix.end(), name.data());
    end = append_digits(end, time.year, 4);
    end = append_digits(end, time.month, 2);
    end = append_digits(end, time.day, 2);
    *end++ = '-';
    end = append_digits(end, time.hour, 2);
    end = append_digits(end, time.minute, 2);
    end = append_digits(end, time.second, 2);
    *std::copy(suffix.begin(), suffix.end(), end) = '\0';
}

void describe_program(std::string_view digest, std::string_view integrity) {
    FixedText text;
    const auto add_line = [&](std::string_view label, std::string_view value) {
        for (const std::string_view part : {label, std::string_view(": "), value, std::string_view("\n")})
            text.append(part);
    };
    add_line("Program", "Kelvara " + program_version());
    if (!integrity.empty()) {
        add_line("Digest", digest);
        add_line("Integrity", integrity);
    }
    program_description = text;
}

void handle_crash(const os::CrashContext* context) {
    report_crash(context, os::write_crash_dump);
}

void report_crash(const os::CrashContext* context, DumpWriter write_dump) {
    console::print_warning("\nOops... Kelvara has crashed.", true);
    console::write("Creating mini-dump file...  ");

    char name[dump_name_size];
    make_dump_name(os::local_time(), name);
    const os::DumpOutcome outcome = write_dump(name, program_description.view(), context);
    if (outcome.result == os::DumpResult::cannot_create) {
        warn_of_failure("Unable to create dump file: ", outcome.error_code);
        console::pause();
        return;
    }
    if (outcome.result == os::DumpResult::cannot_write) {
        warn_of_failure("Unable to create minidump: ", outcome.error_code);
    } else {
        console::println("Done!");
        console::newline();
        console::println("The program will now exit.");
    }
    console::println("", 'w');
    console::pause();
}

}  // namespace kelvara
