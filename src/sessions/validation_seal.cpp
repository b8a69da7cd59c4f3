#include "sessions/validation_seal.h"

#include "platform/sha2.h"
#include "platform/startup_state.h"
#include "sessions/validation_key.h"

namespace kelvara {
namespace {

using qmp::bytes_of;

// What a key is for, so that no key serves two purposes.
std::string_view purpose(ValidationFormat format, int checksum) {
    if (format == ValidationFormat::version_1_2) {
        return checksum == 0 ? "Kelvara validation file 1.2, checksum 0"
                             : "Kelvara validation file 1.2, checksum 1";
    }
    return checksum == 0 ? "Kelvara validation file 1.3, checksum 0"
                         : "Kelvara validation file 1.3, checksum 1";
}

template <typename Hash>
std::string checksum(std::span<const std::uint8_t> key, std::string_view content) {
    qmp::KeyedDigest<Hash> digest(key);
    digest.append(bytes_of(content));
    return qmp::to_hexadecimal(digest.finish());
}

}  // namespace

ValidationSealer::ValidationSealer(std::span<const std::uint8_t> secret, std::string_view program_digest)
    : secret_(secret.begin(), secret.end()), program_digest_(program_digest) {}

ValidationSealer ValidationSealer::of_this_program() {
    return ValidationSealer(validation_key(), startup_state().program_digest);
}

ValidationSeal ValidationSealer::seal(ValidationFormat format, std::string_view content) const {
    const auto key = [&](int number) {
        qmp::KeyedDigest<qmp::Sha512> derivation(bytes_of(secret_));
        derivation.append(bytes_of(purpose(format, number)));
        if (format == ValidationFormat::version_1_3) {
            derivation.append(bytes_of(", executable "));
            derivation.append(bytes_of(program_digest_));
        }
        return derivation.finish();
    };
    return {checksum<qmp::Sha256>(key(0), content), checksum<qmp::Sha512>(key(1), content)};
}

}  // namespace kelvara
