#include "support/reference_digits.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <vector>

namespace kelvara_test {

ReferenceDigits reference_digits(const std::string& constant, std::uint64_t digits) {
    std::ifstream file(std::string(KELVARA_TEST_DATA) + "/constants.csv");
    std::string line;
    while (std::getline(file, line)) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        std::vector<std::string> fields;
        std::istringstream columns(line);
        for (std::string field; std::getline(columns, field, ',');) fields.push_back(field);
        if (fields.size() < 9 || fields[0] != constant || fields[1] != std::to_string(digits)) continue;
        return {digits,    std::stoull(fields[2]), fields[3], fields[4],
                fields[5], std::stoull(fields[6]), fields[7], fields[8]};
    }
    ADD_FAILURE() << "No reference digits of " << constant << " to " << digits << " digits";
    return {};
}

}  // namespace kelvara_test
