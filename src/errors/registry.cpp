#include "errors/registry.h"

#include <map>

#include "console/console.h"

namespace qmp {
namespace {

// Function-local, because registrations of other translation units run in no defined order.
std::map<std::string, ExceptionFactory, std::less<>>& factories() {
    static std::map<std::string, ExceptionFactory, std::less<>> map;
    return map;
}

}  // namespace

void register_exception_type(std::string name, ExceptionFactory factory) {
    if (!factories().emplace(std::move(name), factory).second) {
        console::print_warning("Duplicate Exception Type");
        console::terminate(1);
    }
}

std::vector<std::string> registered_exception_names() {
    std::vector<std::string> names;
    for (const auto& entry : factories()) names.push_back(entry.first);
    return names;
}

std::unique_ptr<Exception> rebuild_exception(std::string_view record) {
    RecordReader reader(record);
    const std::string name = reader.text();
    const auto found = factories().find(name);
    if (found == factories().end()) {
        throw InvalidParametersException("rebuild_exception()", "Invalid Exception Type: " + name);
    }
    std::unique_ptr<Exception> exception = found->second(reader);
    reader.finish();
    return exception;
}

}  // namespace qmp
