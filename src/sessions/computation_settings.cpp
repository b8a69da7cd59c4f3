#include "sessions/computation_settings.h"

#include <algorithm>

#include "console/console.h"
#include "constants/catalogue.h"
#include "constants/size_rules.h"
#include "errors/exception.h"
#include "errors/file_exception.h"
#include "platform/os/file.h"
#include "platform/os/threads.h"
#include "platform/parallel/menus.h"
#include "platform/parallel/registry.h"
#include "radix/digit_counts.h"
#include "swap/sequential_file.h"

namespace kelvara {

std::optional<ComputationMode> mode_of_key(std::string_view key) {
    if (key == "ram") return ComputationMode::ram_only;
    if (key == "swap") return ComputationMode::swap;
    return std::nullopt;
}

ComputationSettings::ComputationSettings()
    : constant_(make_constant(constant_id("pi"))),
      allocator_(qmp::make_default_allocator()),
      framework_(qmp::make_default_parallelizer()),
      tasks_(std::max<std::uint64_t>(qmp::os::active_processors(), 1)) {
    ComputationSettings::refresh();
}

void ComputationSettings::set_constant(std::unique_ptr<Constant> constant) {
    constant_ = std::move(constant);
    refresh();
}

void ComputationSettings::set_algorithm(std::string_view keyword) {
    constant_->set_algorithm_keyword(keyword);
    refresh();
}

void ComputationSettings::set_decimal_digits(std::uint64_t digits) {
    check_digits(digits, constant_->max_digits());
    decimal_digits_ = digits;
    refresh();
}

void ComputationSettings::set_hexadecimal_digits(std::uint64_t digits) {
    if (digits != 0) check_digits(digits, constant_->max_digits());
    hexadecimal_digits_ = digits;
    hexadecimal_chosen_ = true;
    refresh();
}

void ComputationSettings::adjust_digits(std::uint64_t decimal, bool hexadecimal) {
    namespace console = qmp::console;
    if (decimal < smallest_digits) {
        console::print_label_line("Warning", "Precision below minimum. Adjusting to minimum.", 'Y');
        decimal = smallest_digits;
    }
    if (decimal > constant_->max_digits()) {
        console::print_label_line("Warning", "Precision above maximum: Clipping to maximum.", 'Y');
        decimal = constant_->max_digits();
    }
    decimal_digits_ = decimal;
    hexadecimal_chosen_ = !hexadecimal;
    hexadecimal_digits_ = 0;
    refresh();
}

void ComputationSettings::ask_algorithm() {
    constant_->ask_algorithm();
    refresh();
}

void ComputationSettings::edit_parallelization() {
    qmp::edit_parallelization(tasks_, framework_);
    refresh();
}

void ComputationSettings::set_digits_per_file(std::uint64_t digits) {
    if (digits != 0) {
        check_compression();
        if (digits < least_compressed_digits) {
            throw qmp::InvalidParametersException("", "Too few digits for file.");
        }
    }
    digits_per_file_ = digits;
}

bool ComputationSettings::too_small_to_compress() const {
    return decimal_digits_ < least_compressed_digits ||
           (hexadecimal_digits_ > 0 && hexadecimal_digits_ < least_compressed_digits);
}

void ComputationSettings::check_compression() const {
    if (too_small_to_compress()) {
        throw qmp::InvalidParametersException("", "Too few digits to compress.");
    }
}

void ComputationSettings::set_allocator(std::string_view type_name) {
    allocator_ = qmp::make_allocator(type_name);
}

void ComputationSettings::set_framework(std::string_view type_name) {
    framework_ = qmp::make_parallelizer(type_name);
}

void ComputationSettings::set_task_decomposition(std::uint64_t tasks) {
    tasks_ = qmp::checked_task_decomposition(tasks);
}

void ComputationSettings::copy_shared_choices(const ComputationSettings& other) {
    constant_ = other.constant_->clone();
    set_allocator(other.allocator_->get_type_name());
    allocator_->read_config(other.allocator_->write_config());
    set_framework(other.framework_->get_type_name());
    framework_->read_config(other.framework_->write_config());
    default_folder_ = other.default_folder_;
    output_path = other.output_path;
    tasks_ = other.tasks_;
    decimal_digits_ = other.decimal_digits_;
    hexadecimal_digits_ = other.hexadecimal_digits_;
    hexadecimal_chosen_ = other.hexadecimal_chosen_;
    digits_per_file_ = other.digits_per_file_;
    refresh();
}

void ComputationSettings::refresh() {
    const std::uint64_t equivalent = qmp::dec_to_hex(decimal_digits_);
    if (!hexadecimal_chosen_) hexadecimal_digits_ = equivalent;
    precision_ = (std::max(equivalent, hexadecimal_digits_) >> 4) + 2;
    constant_->set_size(precision_);
}

void ComputationSettings::check() const {
    // The digits may have become fewer after compression was chosen.
    if (digits_per_file_ != 0) check_compression();
    constexpr std::uint32_t path_not_found = 2;
    constexpr std::uint32_t access_denied = 5;
    const std::string folder = qmp::FileIO::with_trailing_slash(output_folder());
    if (!qmp::os::directory_exists(folder)) {
        throw qmp::FileIO::FileException("", "The folder for the digit files does not exist.", folder,
                                         path_not_found);
    }
    if (!qmp::FileIO::path_check(folder)) {
        throw qmp::FileIO::FileException("", "The folder for the digit files cannot be written.", folder,
                                         access_denied);
    }
}

}  // namespace kelvara
