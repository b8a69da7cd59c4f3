// What a Ram Only computation is to do: the constant, its size, where its digits go, and what it runs on.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "constants/constant.h"
#include "platform/memory/basic_allocator.h"
#include "platform/parallel/basic_parallelizer.h"
#include "platform/parallel/parallel_context.h"

namespace kelvara {

class RamSettings {
  public:
    // Pi by its first algorithm to default_decimal_digits, a task for every logical core.
    RamSettings();

    static constexpr std::uint64_t default_decimal_digits = 50'000;

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
    // 0 writes plain text files.
    void set_digits_per_file(std::uint64_t digits);
    void set_allocator(std::string_view type_name);
    void set_allocator(std::unique_ptr<qmp::BasicAllocator> allocator) { allocator_ = std::move(allocator); }
    void set_framework(std::string_view type_name);
    void set_framework(std::unique_ptr<qmp::BasicParallelizer> framework) { framework_ = std::move(framework); }
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

    // The computation that these settings describe. InvalidParametersException when this build cannot compute
    // the constant.
    std::unique_ptr<RamComputation> make_computation() const { return constant_->make_ram_computation(tasks_); }

    // Shown when the digits have passed the spot check; empty for nothing.
    std::string success_text;

    // Throws when a computation could not end well: the output folder is missing or cannot be written.
    void check() const;
    // True when check() has nothing to say and this build can compute the constant.
    bool can_run() const;

  private:
    void refresh();

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
