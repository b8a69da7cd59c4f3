// The exception classes by name, and the way back from a serialised record to an object.
//
// Every class registers itself before main; afterwards the registry is only read.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "errors/exception.h"
#include "errors/record.h"

namespace qmp {

// Rebuilds an exception from the fields behind the name of its record.
using ExceptionFactory = std::unique_ptr<Exception> (*)(RecordReader& fields);

// A name registered twice prints "Duplicate Exception Type" and ends the program with exit code 1.
void register_exception_type(std::string name, ExceptionFactory factory);

// Registers a class when its translation unit is initialised.
struct ExceptionRegistration {
    ExceptionRegistration(const char* name, ExceptionFactory factory) {
        register_exception_type(name, factory);
    }
};

// The registered names in ascending order.
std::vector<std::string> registered_exception_names();

// An object of the class that the record begins with. A record of an unknown class is an
// InvalidParametersException, a damaged one a ParseException.
std::unique_ptr<Exception> rebuild_exception(std::string_view record);

}  // namespace qmp
