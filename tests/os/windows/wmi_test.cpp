// The steps of a question to the management service, with a service that fails where a test wants it to,
// and with the system's own.
#include "platform/os/windows/wmi.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/os/windows/hardware_facts.h"

namespace qmp::os {
namespace {

// Answers every query with two rows that have all properties. Step 1 to 4 fails when it is the failing one.
class FakeService final : public WmiService {
  public:
    explicit FakeService(int failing_step = 0) : failing_step_(failing_step) {}
    FakeService(int failing_step, std::vector<WmiRow> rows)
        : rows_(std::move(rows)), failing_step_(failing_step) {}

    bool initialize_com() override { return step(1, "initialize"); }
    bool create_locator() override { return step(2, "locator"); }
    bool connect(std::string_view name_space) override {
        return step(3, "connect " + std::string(name_space));
    }
    std::optional<std::vector<WmiRow>> query(std::string_view language, std::string_view query,
                                             std::span<const std::string_view> properties) override {
        if (!step(4, std::string(language) + ": " + std::string(query))) return std::nullopt;
        std::vector<WmiRow> rows;
        for (const WmiRow& row : rows_) {
            WmiRow& asked = rows.emplace_back();
            for (const std::string_view property : properties) {
                const auto value = row.find(property);
                asked[std::string(property)] = value == row.end() ? "" : value->second;
            }
        }
        return rows;
    }

    std::string steps;

  private:
    bool step(int number, const std::string& text) {
        steps += text + ";";
        return number != failing_step_;
    }
    std::vector<WmiRow> rows_ = {{{"Manufacturer", "Maker"},
                                  {"Product", "Board"},
                                  {"Version", "1.0"},
                                  {"SerialNumber", "SN-1234"},
                                  {"PartNumber", "Part"},
                                  {"Capacity", "17179869184"}},
                                 {{"Manufacturer", "Other"}, {"Capacity", "8589934592"}}};
    int failing_step_;
};

std::string failure_of(int step, std::string& steps) {
    FakeService service(step);
    const std::string_view properties[] = {"Manufacturer"};
    try {
        query_wmi("Win32_BaseBoard", properties, service);
    } catch (const Environment::WMI_Exception& exception) {
        steps = service.steps;
        return exception.what();
    }
    return "no exception";
}

TEST(Wmi, EveryStepHasItsFailure) {
    std::string steps;
    EXPECT_EQ(failure_of(1, steps), "Failed to initialize COM library.");
    EXPECT_EQ(steps, "initialize;");
    EXPECT_EQ(failure_of(2, steps), "Failed to obtain initial locator to WMI.");
    EXPECT_EQ(steps, "initialize;locator;");
    EXPECT_EQ(failure_of(3, steps), "Could not connect.");
    EXPECT_EQ(steps, "initialize;locator;connect ROOT\\CIMV2;");
    EXPECT_EQ(failure_of(4, steps), "Query for object failed.");
    EXPECT_EQ(steps, "initialize;locator;connect ROOT\\CIMV2;WQL: SELECT * FROM Win32_BaseBoard;");
    EXPECT_EQ(failure_of(0, steps), "no exception");
}

TEST(Wmi, FailuresLeaveTheMotherboardEmpty) {
    for (int step = 1; step <= 4; ++step) {
        FakeService service(step);
        const Motherboard board = motherboard_of(service, SerialNumber::read);
        EXPECT_EQ(board.manufacturer + board.model + board.version + board.serial_number, "") << step;
    }
}

TEST(Wmi, FailuresLeaveNoMemoryModules) {
    for (int step = 1; step <= 4; ++step) {
        FakeService service(step);
        EXPECT_TRUE(memory_modules_of(service).empty()) << step;
    }
}

TEST(Wmi, TheMotherboardIsTheFirstRow) {
    FakeService service;
    const Motherboard board = motherboard_of(service, SerialNumber::read);
    EXPECT_EQ(board.manufacturer, "Maker");
    EXPECT_EQ(board.model, "Board");
    EXPECT_EQ(board.version, "1.0");
    EXPECT_EQ(board.serial_number, "SN-1234");
    EXPECT_TRUE(service.steps.ends_with("WQL: SELECT * FROM Win32_BaseBoard;")) << service.steps;
}

TEST(Wmi, WithoutRowsTheMotherboardIsEmpty) {
    FakeService service(0, {});
    EXPECT_EQ(motherboard_of(service, SerialNumber::read).manufacturer, "");
}

TEST(Wmi, TheSerialNumberIsNotReadUnlessAskedFor) {
    FakeService service;
    const Motherboard board = motherboard_of(service, SerialNumber::leave_out);
    EXPECT_EQ(board.manufacturer, "Maker");
    EXPECT_EQ(board.serial_number, "");
}

TEST(Wmi, EveryRowIsAMemoryModule) {
    FakeService service;
    const std::vector<MemoryModule> modules = memory_modules_of(service);
    ASSERT_EQ(modules.size(), 2u);
    EXPECT_EQ(modules[0].manufacturer, "Maker");
    EXPECT_EQ(modules[0].part_number, "Part");
    EXPECT_EQ(modules[0].capacity, "17179869184");
    EXPECT_EQ(modules[1].manufacturer, "Other");
    EXPECT_EQ(modules[1].part_number, "");
    EXPECT_EQ(modules[1].capacity, "8589934592");
    EXPECT_TRUE(service.steps.ends_with("WQL: SELECT * FROM Win32_PhysicalMemory;")) << service.steps;
}

TEST(Wmi, TheSystemsServiceAnswers) {
    const std::string_view properties[] = {"Manufacturer", "Capacity", "NoSuchProperty"};
    const std::vector<WmiRow> rows = query_wmi("Win32_PhysicalMemory", properties, *make_wmi_service());
    ASSERT_FALSE(rows.empty());
    for (const WmiRow& row : rows) {
        EXPECT_EQ(row.size(), 3u);
        // A number of 64 bits, which the service passes as a text.
        const std::string& capacity = row.find("Capacity")->second;
        EXPECT_FALSE(capacity.empty());
        EXPECT_EQ(capacity.find_first_not_of("0123456789"), std::string::npos) << capacity;
        EXPECT_EQ(row.find("NoSuchProperty")->second, "");
    }
}

TEST(Wmi, TheSystemsServiceRefusesAMalformedQuery) {
    const std::string_view properties[] = {"Manufacturer"};
    try {
        query_wmi("Win32_BaseBoard WHERE", properties, *make_wmi_service());
        ADD_FAILURE() << "a condition without a condition was accepted";
    } catch (const Environment::WMI_Exception& exception) {
        EXPECT_STREQ(exception.what(), "Query for object failed.");
    }
}

TEST(Wmi, TheSystemsServiceRefusesAnUnknownNamespace) {
    const auto service = make_wmi_service();
    ASSERT_TRUE(service->initialize_com());
    ASSERT_TRUE(service->create_locator());
    EXPECT_FALSE(service->connect("ROOT\\KELVARA_NOWHERE"));
}

// Each query balances what it takes: the hundredth works like the first.
TEST(Wmi, ManyQueriesInARow) {
    const std::string_view properties[] = {"Product"};
    const std::vector<WmiRow> first = query_wmi("Win32_BaseBoard", properties, *make_wmi_service());
    for (int i = 0; i < 100; ++i) {
        EXPECT_EQ(query_wmi("Win32_BaseBoard", properties, *make_wmi_service()), first);
    }
}

}  // namespace
}  // namespace qmp::os
