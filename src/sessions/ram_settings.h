// The settings of a Ram Only computation.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "sessions/computation_settings.h"

namespace kelvara {

class RamSettings final : public ComputationSettings {
  public:
    RamSettings() = default;

    ComputationMode mode() const override { return ComputationMode::ram_only; }
    const char* mode_key() const override { return "ram"; }
    const char* mode_name() const override { return "Ram Only"; }

    // The computation that these settings describe. InvalidParametersException for a parameter that does not
    // go with the size.
    std::unique_ptr<RamComputation> make_computation() const {
        return constant().make_ram_computation(task_decomposition());
    }

    // Shown when the digits have passed the spot check; empty for nothing.
    std::string success_text;

    std::string obstacle() const override;
    void run() const override;
    std::optional<std::uint64_t> print_menu_options() const override;
    void handle_menu_option(std::int64_t option) override;
};

}  // namespace kelvara
