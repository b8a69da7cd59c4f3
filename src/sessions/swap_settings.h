// The settings of a Swap Mode computation, whose large numbers live in swap files, with memory as their
// cache.
//
// This build holds, edits and saves them; it cannot run them yet.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "sessions/computation_settings.h"
#include "sessions/memory_checks.h"
#include "swap/bytes_per_seek.h"
#include "swap/raid_settings.h"

namespace kelvara {

class SwapSettings final : public ComputationSettings {
  public:
    // With the memory that is available, on the default path, by default Bytes/Seek.
    explicit SwapSettings(const PhysicalMemory& memory = physical_memory());

    // What stands in place of the figures that only the computation itself could tell.
    static constexpr const char* unavailable = "not available in this build yet";

    ComputationMode mode() const override { return ComputationMode::swap; }
    const char* mode_key() const override { return "swap"; }
    const char* mode_name() const override { return "Swap Mode"; }

    // Bytes that the computation may use; at most 0x6ffffffffffffff9.
    std::uint64_t memory_cap() const { return memory_cap_; }
    void set_memory_cap(std::uint64_t bytes);

    // Bytes; 0 sets the default, which follows the swap configuration.
    std::uint64_t bytes_per_seek() const { return bytes_per_seek_.bytes(); }
    void set_bytes_per_seek(std::uint64_t bytes);

    // Without groups it is not set, and the default path is used.
    const qmp::RaidSettings& raid() const { return raid_; }
    void set_raid(qmp::RaidSettings raid);
    // A few words for it.
    std::string raid_description() const;

    std::string print_settings() const override;
    void load_settings(qmp::TextCursor& cursor) override;
    qmp::notation::Object write_config() const override;
    void read_config(const qmp::notation::Object& object) override;

    std::string obstacle() const override;
    // Ends the program without the privilege that swap files need; InvalidParametersException with it.
    void run() const override;
    std::optional<std::uint64_t> print_menu_options() const override;
    void handle_menu_option(std::int64_t option) override;

  protected:
    void refresh() override;

  private:
    std::uint64_t memory_cap_;
    qmp::RaidSettings raid_;
    qmp::BytesPerSeek bytes_per_seek_;
};

}  // namespace kelvara
