#include "errors/std_exception.h"

#include "console/console.h"
#include "errors/record.h"
#include "errors/registry.h"

namespace qmp {

void StdException::print_body() const {
    console::println(text_);
}

std::string StdException::serialize() const {
    return RecordWriter("StdException").text(text_).take();
}

namespace {

std::unique_ptr<Exception> rebuild(RecordReader& fields) {
    return std::make_unique<StdException>(fields.text());
}

const ExceptionRegistration registration("StdException", rebuild);

}  // namespace
}  // namespace qmp
