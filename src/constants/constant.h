// A constant as the user configures it: its argument, its algorithm, its size, and from these the
// computation.
//
// One class per id of the catalogue. What only differs by name stands in the ConstantInfo of the class;
// what differs in kind (arguments, menus that depend on the size, computations) is virtual. Objects are
// small values on the main thread: menus and configuration readers change them, clone() copies them.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "constants/constant_info.h"
#include "constants/ram_computation.h"
#include "constants/size_rules.h"

namespace kelvara {

class Constant {
  public:
    virtual ~Constant() = default;

    const ConstantInfo& info() const { return info_; }
    std::uint32_t id() const { return info_.id; }
    std::string_view key() const { return info_.written_key(); }
    qmp::console::Colour colour() const { return info_.colour; }
    virtual std::uint64_t max_digits() const { return largest_digits; }
    virtual std::string short_name() const { return info_.short_name; }
    virtual std::string full_name() const { return info_.full_name; }
    virtual std::unique_ptr<Constant> clone() const = 0;

    // The argument, of the constants that have one.
    virtual std::optional<std::uint64_t> argument() const { return std::nullopt; }
    // Validates and stores; InvalidParametersException when the value is refused. Nothing without argument.
    virtual void set_argument(std::uint64_t) {}
    // Asks for it on the console until it is acceptable.
    virtual void ask_argument() {}

    std::uint32_t algorithm() const { return algorithm_; }
    // Null when the index is out of range.
    const AlgorithmInfo* algorithm_info() const;
    // The long name of the algorithm chosen; empty when the index is out of range.
    virtual std::string algorithm_name() const;
    // Stored as it is, for readers that do not validate.
    void set_algorithm(std::uint32_t index) { algorithm_ = index; }
    // By keyword; "0", and "1" where there is a second algorithm, also count. InvalidParametersException
    // ("Invalid Algorithm: " and the keyword) for anything else.
    void set_algorithm_keyword(std::string_view keyword);
    // The algorithm menu of the console.
    void ask_algorithm();

    // Argument (if any) and algorithm keyword, one labelled line each.
    void print_settings() const;

    // The working precision p in words.
    std::uint64_t size() const { return precision_; }
    virtual void set_size(std::uint64_t precision) { precision_ = precision; }

    // The computation in memory for the size set last; null when the algorithm index is out of range. Its
    // memory estimate is ready.
    std::unique_ptr<RamComputation> make_ram_computation(std::uint64_t tasks) const;

  protected:
    explicit Constant(const ConstantInfo& info) : info_(info) {}
    Constant(const Constant&) = default;

    // Label of an algorithm in the menu; null when the menu does not offer it.
    virtual std::string menu_label(std::uint32_t index) const;
    // The lines of an algorithm in the menu.
    virtual void print_menu_entry(std::uint32_t index) const;
    // Called with a valid algorithm index.
    virtual std::unique_ptr<RamComputation> make_computation(std::uint64_t tasks) const = 0;

  private:
    const ConstantInfo& info_;
    std::uint64_t precision_ = 100;
    std::uint32_t algorithm_ = 0;
};

}  // namespace kelvara
