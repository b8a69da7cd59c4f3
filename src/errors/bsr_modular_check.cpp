#include "errors/bsr_modular_check.h"

#include "console/console.h"
#include "errors/record.h"
#include "errors/registry.h"

namespace kelvara {

void BSRModularCheckFailedException::print_body() const {
    AlgorithmFailedException::print_body();
    using qmp::console::default_column;
    using qmp::console::print_column_line;
    print_column_line(default_column, "    a = ", std::to_string(a_));
    print_column_line(default_column, "    b = ", std::to_string(b_));
    for (std::size_t i = 0; i < hash_.size(); ++i) {
        print_column_line(default_column, "    hash[" + std::to_string(i) + "] = ", std::to_string(hash_[i]));
    }
}

std::string BSRModularCheckFailedException::serialize() const {
    qmp::RecordWriter writer("BSRModularCheckFailedException");
    writer.text(function_).text(message_).u64(a_).u64(b_).u64(hash_.size());
    for (std::uint64_t value : hash_) writer.u64(value);
    return writer.take();
}

namespace {

std::unique_ptr<qmp::Exception> rebuild(qmp::RecordReader& fields) {
    std::string function = fields.text();
    std::string message = fields.text();
    const std::uint64_t a = fields.u64();
    const std::uint64_t b = fields.u64();
    // No reserve: a damaged count must run into the end of the record, not into the memory's.
    std::vector<std::uint64_t> hash;
    for (std::uint64_t left = fields.u64(); left > 0; --left) hash.push_back(fields.u64());
    return std::make_unique<BSRModularCheckFailedException>(std::move(function), std::move(message), a, b,
                                                            std::move(hash));
}

const qmp::ExceptionRegistration registration("BSRModularCheckFailedException", rebuild);

}  // namespace
}  // namespace kelvara
