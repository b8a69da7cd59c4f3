#include "sessions/custom_settings.h"

#include <string>

#include "errors/exception.h"
#include "platform/startup_state.h"
#include "sessions/ram_settings.h"

namespace kelvara {
namespace {

std::unique_ptr<ComputationSettings> make_settings(ComputationMode mode) {
    if (mode == ComputationMode::swap) return std::make_unique<SwapSettings>();
    return std::make_unique<RamSettings>();
}

}  // namespace

CustomSettings::CustomSettings() : CustomSettings(ComputationMode::ram_only) {}

CustomSettings::CustomSettings(ComputationMode mode) : mode_(mode) {
    by_mode_[index(mode)] = make_settings(mode);
    current().set_default_folder(program_directory());
}

SwapSettings* CustomSettings::swap() {
    return mode_ == ComputationMode::swap ? static_cast<SwapSettings*>(&current()) : nullptr;
}

void CustomSettings::set_mode(ComputationMode mode) {
    std::unique_ptr<ComputationSettings>& settings = by_mode_[index(mode)];
    if (!settings) {
        settings = make_settings(mode);
        settings->copy_shared_choices(current());
    }
    mode_ = mode;
}

CustomSettings CustomSettings::read(const qmp::notation::Object& object) {
    const std::string key = object.get_string("Mode", "Custom Compute");
    const auto mode = mode_of_key(key);
    if (!mode) throw qmp::InvalidParametersException("", "Invalid Mode: " + key);
    CustomSettings settings(*mode);
    settings.current().read_config(object);
    return settings;
}

}  // namespace kelvara
