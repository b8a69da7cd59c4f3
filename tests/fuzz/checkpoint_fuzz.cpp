// Any bytes as a checkpoint file and as the text of its sections: what is refused is refused with one of
// three messages, and what was written is read back as it was.
#include <cstdint>
#include <string>

#include "errors/exception.h"
#include "fuzz/fuzz_failure.h"
#include "platform/sha2.h"
#include "sessions/checkpoint_file.h"

namespace {

using kelvara::Checkpoint;
using kelvara_test::fuzz_failure;

constexpr const char* version = "0.7.3 Build 9474 (Linux/11-BD1 ~ Vessa)";

const kelvara::CheckpointSealer& sealer() {
    static const kelvara::CheckpointSealer sealer(qmp::bytes_of("the secret of tests"));
    return sealer;
}

void try_file(const std::string& file) {
    try {
        const Checkpoint checkpoint = kelvara::parse_checkpoint(file, version, sealer());
        if (kelvara::checkpoint_text(checkpoint, sealer()) != file)
            fuzz_failure("a file that would be another");
    } catch (const qmp::StringException& exception) {
        if (exception.message() != "Header not found." &&
            exception.message() != "Cannot resume computation. The version does not match." &&
            exception.message() != "Checksum Mismatch. Checkpoint file is corrupted.") {
            fuzz_failure("an unknown message");
        }
    }
}

void try_section(const std::string& text) {
    Checkpoint checkpoint;
    checkpoint.program_version = version;
    checkpoint.sequence_number = static_cast<std::int64_t>(text.size());
    checkpoint.sections[kelvara::checkpoint_settings_section] = text;
    checkpoint.sections[kelvara::checkpoint_event_log_section] = text;
    const std::string file = kelvara::checkpoint_text(checkpoint, sealer());
    if (text.find("////") != std::string::npos) {
        // It may hold what begins a section. The file is refused then or means something else, and that is
        // all.
        try_file(file);
        return;
    }
    const Checkpoint again = kelvara::parse_checkpoint(file, version, sealer());
    if (again.sections != checkpoint.sections || again.sequence_number != checkpoint.sequence_number)
        fuzz_failure("a checkpoint that differs when it is read again");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string bytes(data, data + size);
    try_file(bytes);
    try_section(bytes);
    return 0;
}
