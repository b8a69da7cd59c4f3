#include "sessions/validation_key.h"

namespace kelvara {

ValidationKey validation_key() {
    ValidationKey key{};
    for (const auto& share : validation_key_shares) {
        for (std::size_t i = 0; i < key.size(); ++i) key[i] ^= share[i];
    }
    return key;
}

}  // namespace kelvara
