// What a computation is to do, whatever its mode: the constant, its size, where its digits go, and what it
// runs on. A class for each mode adds what is the mode's own (ram_settings.h, swap_settings.h).
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "constants/constant.h"
#include "platform/component_settings.h"
#include "platform/memory/basic_allocator.h"
#include "platform/parallel/basic_parallelizer.h"
#include "platform/parallel/parallel_context.h"

namespace kelvara {

// Where the numbers of a computation live.
enum class ComputationMode : std::uint32_t { ram_only = 0, swap = 1 };
constexpr std::uint32_t mode_count = 2;

// Of a mode's key in configurations and on the command line, "ram" or "swap"; nothing for any other text.
std::optional<ComputationMode> mode_of_key(std::string_view key);

// Saved settings are configurations (computation_configuration.cpp) and records (computation_record.cpp). Of
// an object whose reader has thrown, only the destructor may be called.
class ComputationSettings : public qmp::ComponentSettings {
  public:
    static constexpr std::uint64_t default_decimal_digits = 50'000;
    // In a result, and in each of its files.
    static constexpr std::uint64_t least_compressed_digits = 1'000'000;

    virtual ComputationMode mode() const = 0;
    // Of the mode, as configurations and as screens write it.
    virtual const char* mode_key() const = 0;
    virtual const char* mode_name() const = 0;

    // Setters throw InvalidParametersException for what they refuse and change nothing then.
    void set_constant(std::unique_ptr<Constant> constant);
    void set_algorithm(std::string_view keyword);
    // 100 up to the constant's maximum. Unless a hexadecimal count was chosen, it follows this one.
    void set_decimal_digits(std::uint64_t digits);
    // The same limits; 0 turns hexadecimal output off. A count chosen here stays when the decimal count
    // changes afterwards: the order of the choices does not matter.
    void set_hexadecimal_digits(std::uint64_t digits);
    // Brings a decimal count into the constant's limits, with a warning on the console for each limit, and
    // turns hexadecimal output on (the equivalent count) or off. For sizes that a file gives.
    void adjust_digits(std::uint64_t decimal, bool hexadecimal);
    // 0 writes plain text files, unlimited_digits_per_file one compressed file of each radix, any other number
    // compressed files of so many digits.
    void set_digits_per_file(std::uint64_t digits);
    // Results below least_compressed_digits, in either radix, are written as text only.
    bool too_small_to_compress() const;
    void set_allocator(std::string_view type_name);
    void set_allocator(std::unique_ptr<qmp::BasicAllocator> allocator) { allocator_ = std::move(allocator); }
    void set_framework(std::string_view type_name);
    void set_framework(std::unique_ptr<qmp::BasicParallelizer> framework) {
        framework_ = std::move(framework);
    }
    void set_task_decomposition(std::uint64_t tasks);
    // "Select an Algorithm:".
    void ask_algorithm();
    // "Parallelization Mode:".
    void edit_parallelization();

    const Constant& constant() const { return *constant_; }
    qmp::BasicAllocator& allocator() const { return *allocator_; }
    qmp::BasicParallelizer& framework() const { return *framework_; }
    qmp::ParallelContext parallel() const { return {tasks_, framework_.get()}; }
    std::uint64_t task_decomposition() const { return tasks_; }
    std::uint64_t decimal_digits() const { return decimal_digits_; }
    std::uint64_t hexadecimal_digits() const { return hexadecimal_digits_; }
    std::uint64_t digits_per_file() const { return digits_per_file_; }
    // Words that hold all the digits asked for, in either radix, and the guard words.
    std::uint64_t precision() const { return precision_; }

    // Where the digit files go; empty for the default, the program's folder.
    std::string output_path;
    std::string output_folder() const { return output_path.empty() ? default_folder_ : output_path; }
    void set_default_folder(std::string folder) { default_folder_ = std::move(folder); }

    // All that the modes share, as it is in the other settings.
    void copy_shared_choices(const ComputationSettings& other);

    std::string print_settings() const override;
    void load_settings(qmp::TextCursor& cursor) override;
    qmp::notation::Object write_config() const override;
    void read_config(const qmp::notation::Object& object) override;

    // Throws when a computation could not end well: the output folder is missing or cannot be written.
    void check() const;
    // Why the computation cannot be started; empty when it can.
    virtual std::string obstacle() const = 0;
    bool can_run() const { return obstacle().empty(); }
    // From the first line of the header to the last of the report.
    virtual void run() const = 0;

    // The mode's own lines of the custom-compute menu, from 9 on: what it needs and how it is changed.
    // Returns the memory needed in bytes; nothing, after a line that says why, when it is not known.
    virtual std::optional<std::uint64_t> print_menu_options() const = 0;
    // Acts on one of the options 9 to 19; nothing for those that the mode does not have.
    virtual void handle_menu_option(std::int64_t option) = 0;

  protected:
    // Pi by its first algorithm to default_decimal_digits, a task for every logical core.
    ComputationSettings();
    ComputationSettings(ComputationSettings&&) = default;
    ComputationSettings& operator=(ComputationSettings&&) = default;

    // Derives what depends on other choices, after each of them.
    virtual void refresh();

  private:
    void check_compression() const;

    std::unique_ptr<Constant> constant_;
    std::unique_ptr<qmp::BasicAllocator> allocator_;
    std::unique_ptr<qmp::BasicParallelizer> framework_;
    std::string default_folder_ = ".";
    std::uint64_t tasks_ = 1;
    std::uint64_t decimal_digits_ = default_decimal_digits;
    std::uint64_t hexadecimal_digits_ = 0;
    std::uint64_t digits_per_file_ = 0;
    bool hexadecimal_chosen_ = false;
    std::uint64_t precision_ = 0;
};

}  // namespace kelvara
