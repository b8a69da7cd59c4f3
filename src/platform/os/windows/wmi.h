// Questions to Windows Management Instrumentation.
//
// A question takes four steps; each may fail, on any machine, for reasons of the machine's own (the service
// is off, its repository is damaged). query_wmi() takes the steps through an interface.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace qmp::Environment {

// A step has failed; the message says which.
class WMI_Exception : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

}  // namespace qmp::Environment

namespace qmp::os {

// Texts by the names of properties. A property that has no value, or none that is a text, is empty.
using WmiRow = std::map<std::string, std::string, std::less<>>;

// The steps, in their order; each is taken once, and false or nothing means that it failed. The destructor
// gives back what the steps took.
class WmiService {
  public:
    virtual ~WmiService() = default;
    virtual bool initialize_com() = 0;
    virtual bool create_locator() = 0;
    virtual bool connect(std::string_view name_space) = 0;
    // Only the named properties are read of each row.
    virtual std::optional<std::vector<WmiRow>> query(std::string_view language, std::string_view query,
                                                     std::span<const std::string_view> properties) = 0;
};

// The system's own, for one query on the calling thread.
std::unique_ptr<WmiService> make_wmi_service();

// All rows of a class in ROOT\CIMV2. Throws a WMI_Exception when a step fails.
std::vector<WmiRow> query_wmi(std::string_view class_name, std::span<const std::string_view> properties,
                              WmiService& service);

}  // namespace qmp::os
