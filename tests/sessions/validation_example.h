// A record with every field filled, and the seal of tests.
#pragma once

#include <string>

#include "platform/sha2.h"
#include "sessions/validation_file.h"

namespace kelvara_test {

inline kelvara::ValidationSealer test_sealer(std::string_view program_digest = "0123abcd") {
    return kelvara::ValidationSealer(qmp::bytes_of("the secret of tests"), program_digest);
}

inline kelvara::ValidationRecord example_record() {
    kelvara::ValidationRecord record;
    record.name = "Pi";
    record.program = "0.7.3 Build 9474";
    record.tuning = "11-BD1 ~ Vessa";
    record.user = "Somebody";
    record.system =
        "Operating System:      Linux 6.1\r\n"
        "Processor(s):\r\n"
        "    Name:              A Processor\r\n"
        "\r\n";
    record.constant = "Pi";
    record.algorithm = "Chudnovsky Formula";
    record.decimal_digits = 1234;
    record.hexadecimal_digits = 1025;
    record.threading = "Push Pool  ->  2 / ?";
    record.working_memory = 1'048'576;
    record.total_memory = 1'536 * 1024;
    record.start_date = "Thu Nov 12 21:11:02 2026";
    record.end_date = "Thu Nov 12 21:11:04 2026";
    record.computation_seconds = 1.25;
    record.wall_seconds = 2.0625;
    record.utilization = {true, 187.654, 3.2, 2};
    record.last_digits = std::string(50, '1') + std::string(50, '2');
    for (std::size_t digit = 0; digit < 16; ++digit) {
        record.decimal_counts[digit] = digit < 10 ? 100 + digit : 0;
        record.hexadecimal_counts[digit] = 200 + digit;
    }
    record.hash = 1234567890123456789;
    record.spot_check = {kelvara::SpotCheckResult::Kind::passed, 1000};
    record.timer_check = kelvara::TimerVerdict::passed;
    record.clocks = {"TSC", 10'000'000, 3'700'000'000, 12'345'678};
    record.event_log =
        "Thu Nov 12 21:11:02 2026\t0.001\tBegin Computation\r\n"
        "Thu Nov 12 21:11:04 2026\t2.000\tEnd Computation\r\n";
    return record;
}

inline std::string sealed_file(const kelvara::ValidationRecord& record,
                               const kelvara::ValidationSealer& sealer = test_sealer()) {
    const std::string content = kelvara::validation_content(record);
    return content +
           kelvara::validation_trailer(sealer.seal(kelvara::ValidationFormat::version_1_3, content));
}

}  // namespace kelvara_test
