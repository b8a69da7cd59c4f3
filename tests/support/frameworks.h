// The parallel frameworks of this build, for tests that go through all of them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/parallel/registry.h"

namespace kelvara_test {

// Type keys in menu order.
inline std::vector<std::string> framework_keys() {
    std::vector<std::string> keys;
    for (std::uint64_t i = 0; i < qmp::parallelizer_display_names().size(); ++i)
        keys.emplace_back(qmp::make_parallelizer_by_number(i)->get_type_name());
    return keys;
}

}  // namespace kelvara_test
