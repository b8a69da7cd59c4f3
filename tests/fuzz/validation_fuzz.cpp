// Any bytes as a validation file: it passes when it is sealed, and never otherwise. Also any bytes as a file
// of reference digits.
#include <cstdint>
#include <string>

#include "config/text_file.h"
#include "fuzz/fuzz_failure.h"
#include "platform/sha2.h"
#include "sessions/reference_digits.h"
#include "sessions/validation_file.h"
#include "sessions/validator.h"

namespace {

using kelvara::ValidationFormat;
using kelvara::ValidationOutcome;
using kelvara::ValidationResult;
using kelvara_test::fuzz_failure;

const kelvara::ValidationSealer& sealer() {
    static const kelvara::ValidationSealer sealer(qmp::bytes_of("the secret of tests"), "0123abcd");
    return sealer;
}

void check(const ValidationResult& result) {
    const bool checked = result.outcome != ValidationOutcome::newer_version &&
                         result.outcome != ValidationOutcome::unsupported_version;
    if (!checked && !result.format.empty()) fuzz_failure("a format of a file that was not checked");
    if (result.outcome != ValidationOutcome::passed && !result.computation_time.empty())
        fuzz_failure("a time of a file that did not pass");
}

// The text as the content of a file: sealed as the version that it names it is good, and one character more
// or less is not.
void try_sealed(const std::string& text) {
    for (const ValidationFormat format : {ValidationFormat::version_1_2, ValidationFormat::version_1_3}) {
        const std::string content = text + "----";
        const kelvara::ValidationSeal seal =
            sealer().seal(format, std::string(kelvara::byte_order_mark) + content);
        const std::string trailer =
            "\r\n\r\nChecksum0: " + seal.checksum0 + "\r\nChecksum1: " + seal.checksum1 + "\r\n";
        const ValidationResult result = kelvara::validate(content + trailer, sealer());
        check(result);
        const bool named = result.format == (format == ValidationFormat::version_1_2 ? "1.2" : "1.3");
        if (named && result.outcome == ValidationOutcome::invalid_hash)
            fuzz_failure("a good file that fails");
        if (!named && result.outcome == ValidationOutcome::passed)
            fuzz_failure("a file of another format passes");
        if (result.outcome != ValidationOutcome::passed) continue;
        if (kelvara::validate("x" + content + trailer, sealer()).outcome == ValidationOutcome::passed ||
            kelvara::validate(content.substr(1) + trailer, sealer()).outcome == ValidationOutcome::passed) {
            fuzz_failure("a changed file that passes");
        }
    }
}

void try_reference_digits(const std::string& text) {
    for (const auto& [position, digits] : kelvara::parse_reference_digits(text)) {
        if (position < kelvara::reference_group) fuzz_failure("a position without ten digits in front of it");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text = qmp::decode_text(std::string(data, data + size)).text;
    check(kelvara::validate(text, sealer()));
    try_sealed(text);
    // What occurs twice prints a warning each time.
    if (text.size() <= 1000) try_reference_digits(text);
    return 0;
}
