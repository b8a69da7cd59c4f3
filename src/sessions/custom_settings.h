// The settings of a custom computation: an object for each mode, one of which is current.
#pragma once

#include <array>
#include <memory>

#include "sessions/computation_settings.h"
#include "sessions/swap_settings.h"

namespace kelvara {

class CustomSettings {
  public:
    // Ram Only, with the defaults of RamSettings and the program's folder as the default folder.
    CustomSettings();

    ComputationMode mode() const { return mode_; }
    ComputationSettings& current() { return *by_mode_[index(mode_)]; }
    const ComputationSettings& current() const { return *by_mode_[index(mode_)]; }
    // The current ones when they are of Swap Mode, else null.
    SwapSettings* swap();

    // Makes the settings of the other mode current. Every mode keeps its choices; one that is chosen for the
    // first time begins with those that it shares with the mode left.
    void set_mode(ComputationMode mode);

    // The object "CustomCompute" of a configuration file: the key "Mode", and those of the mode's settings.
    // Throws for the first key that is missing, of another type or refused ("Invalid Mode: MODE"); sizes
    // outside the limits are brought into them with a warning, and so are digits per file too few for
    // compression.
    static CustomSettings read(const qmp::notation::Object& object);

  private:
    static std::uint32_t index(ComputationMode mode) { return static_cast<std::uint32_t>(mode); }
    explicit CustomSettings(ComputationMode mode);

    std::array<std::unique_ptr<ComputationSettings>, mode_count> by_mode_;  // null until chosen
    ComputationMode mode_;
};

}  // namespace kelvara
