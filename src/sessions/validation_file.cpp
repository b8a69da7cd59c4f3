#include "sessions/validation_file.h"

#include "console/console.h"
#include "console/format.h"
#include "errors/file_exception.h"
#include "platform/local_time.h"
#include "sessions/last_digits.h"
#include "swap/sequential_file.h"

namespace kelvara {
namespace {

namespace console = qmp::console;

constexpr std::string_view line_end = "\r\n";

// Text of lines with labels padded to a width.
class Lines {
  public:
    void add(std::string_view text) { text_.append(text).append(line_end); }
    void add(std::string_view label, std::string_view value, std::size_t width = 23) {
        text_.append(label);
        text_.append(label.size() < width ? width - label.size() : 0, ' ');
        add(value);
    }
    void add_block(std::string_view lines) { text_.append(lines); }
    void add_empty() { text_.append(line_end); }
    std::string take() { return std::move(text_); }

  private:
    std::string text_;
};

void add_program(Lines& lines, const ValidationRecord& record) {
    lines.add("Benchmark Validation File - DO NOT MODIFY! If you do it will fail validation.");
    lines.add_empty();
    lines.add(validation_version_label, "1.3");
    lines.add_empty();
    lines.add("Program:", "Kelvara v" + record.program);
    lines.add("Tuning:", record.tuning);
    lines.add_empty();
    lines.add("User:", record.user);
    lines.add_empty();
}

void add_computation(Lines& lines, const ValidationRecord& record) {
    lines.add("Constant:", record.constant);
    lines.add("Algorithm:", record.algorithm);
    lines.add("Decimal Digits:", console::format_separated(record.decimal_digits));
    lines.add("Hexadecimal Digits:", record.hexadecimal_digits == 0
                                         ? "Disabled"
                                         : console::format_separated(record.hexadecimal_digits));
    lines.add("Computation Mode:", record.disk ? "Swap Mode" : "Ram Only");
    lines.add("Threading Mode:", record.threading);
    lines.add("Working Memory:", console::format_separated_bytes(record.working_memory));
    lines.add("Total Memory:", console::format_separated_bytes(record.total_memory));
    if (!record.disk) return;
    constexpr std::size_t width = 31;
    lines.add("Logical Peak Disk Usage:", console::format_separated_bytes(record.disk->logical_peak), width);
    lines.add("Logical Disk Bytes Read:", console::format_separated_bytes(record.disk->bytes_read), width);
    lines.add("Logical Disk Bytes Written:", console::format_separated_bytes(record.disk->bytes_written),
              width);
    lines.add_block(record.disk->configuration);
}

void add_times(Lines& lines, const ValidationRecord& record) {
    constexpr std::size_t width = 27;
    lines.add("Start Date:", record.start_date);
    lines.add("End Date:", record.end_date);
    lines.add(computation_time_label, console::format_fixed(record.computation_seconds, 3) + " seconds",
              width);
    lines.add(wall_time_label, console::format_fixed(record.wall_seconds, 3) + " seconds", width);
    lines.add("CPU Utilization:", utilization_text(record.utilization), width);
    lines.add("Multi-core Efficiency:", efficiency_text(record.utilization), width);
}

std::string counts_text(const std::array<std::uint64_t, 16>& counts, std::size_t radix) {
    std::string text = "{";
    for (std::size_t digit = 0; digit < radix; ++digit) {
        if (digit > 0) text += ", ";
        text += console::format_int(counts[digit]);
    }
    return text + "}";
}

void add_results(Lines& lines, const ValidationRecord& record) {
    lines.add("Last Digits:");
    for (const DigitLine& line : last_digit_lines(record.last_digits, record.decimal_digits)) {
        lines.add(line.digits + " :  " + console::format_separated(line.position));
    }
    lines.add("Dec Counts: " + counts_text(record.decimal_counts, 10));
    if (record.hexadecimal_digits > 0) lines.add("Hex Counts: " + counts_text(record.hexadecimal_counts, 16));
    lines.add("Binary Hash: Floor(bin * 10^dec) mod (2^61 - 1) = " + console::format_int(record.hash));
    lines.add_empty();
}

void add_checks(Lines& lines, const ValidationRecord& record) {
    constexpr std::size_t width = 27;
    const auto yes_or_no = [](bool yes) { return yes ? "Yes" : "No"; };
    lines.add("Spot Check:", record.spot_check.to_file_text(), width);
    lines.add("Timer Sanity Check:", to_text(record.timer_check), width);
    lines.add("Frequency Sanity Check:", "Disabled in this version of Kelvara", width);
    lines.add("Reference Clock:", record.clocks.name, width);
    lines.add("Reference Clock 0:", console::format_int(record.clocks.counter_frequency), width);
    lines.add("Reference Clock 1:", console::format_int(record.clocks.time_stamp_rate), width);
    lines.add("Reference Clock 2:", console::format_int(record.clocks.identification_rate), width);
    lines.add("Is Debugger Present:", yes_or_no(record.debugger_present), width);
    lines.add("Is Contiguous:", yes_or_no(record.contiguous), width);
    lines.add("ECC Recovered Errors:", console::format_int(record.recovered_errors), width);
    lines.add_empty();
}

void write_all(qmp::FileIO::SequentialFile& file, std::string_view text) {
    if (file.write(text.data(), text.size()) == text.size()) return;
    throw qmp::FileIO::FileException("", "The validation file cannot be written.", file.path(),
                                     file.last_error());
}

}  // namespace

std::string validation_content(const ValidationRecord& record) {
    Lines lines;
    lines.add_block(byte_order_mark);
    add_program(lines, record);
    lines.add_block(record.system);
    add_computation(lines, record);
    add_times(lines, record);
    add_results(lines, record);
    add_checks(lines, record);
    lines.add("Event Log:");
    lines.add_block(record.event_log);
    lines.add_empty();
    return lines.take().append(validation_marker);
}

std::string validation_trailer(const ValidationSeal& seal) {
    Lines lines;
    lines.add_empty();
    lines.add_empty();
    lines.add(std::string(checksum0_label) + seal.checksum0);
    lines.add(std::string(checksum1_label) + seal.checksum1);
    return lines.take();
}

void write_validation_file(const ValidationRecord& record, const ValidationSealer& sealer) {
    const std::string content = validation_content(record);
    const std::string trailer = validation_trailer(sealer.seal(ValidationFormat::version_1_3, content));
    const std::string name = record.name + " - " + file_name_time() + ".txt";
    try {
        qmp::FileIO::SequentialFile file;
        file.create(name);
        write_all(file, content);
        write_all(file, trailer);
    } catch (const qmp::FileIO::FileException& exception) {
        qmp::print_file_warning("Unable to write validation file: " + name, exception);
        return;
    }
    console::println("Validation File: " + name, 'P');
    console::reset_color();
}

}  // namespace kelvara
