// What the program knows about its own start: written while it starts, read ever after.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kelvara {

struct StartupState {
    // The console window was opened for this process and vanishes with it.
    bool console_is_fresh = false;
    std::vector<std::string> arguments;
    std::string program_path;
    // With its trailing separator.
    std::string program_directory;

    // Of the executable, taken at start; empty when it could not be read.
    std::string program_digest;

    // Negative: never pause at the end; 0: only in a fresh console; positive: always.
    std::int32_t pause_mode = 0;
    // Serial numbers and the like of memory modules and boards are shown.
    bool personal_data_shown = false;
    bool skip_warnings = false;
};

StartupState& startup_state();
// The folder of the executable, with its trailing separator.
const std::string& program_directory();

// Fills what the system tells: console, arguments, path. Called once, before anything is printed. When
// the path cannot be found, prints "Failed to retrieve path." and ends the program with exit code 1.
void record_program_start();
// The same for a path that the system told, or did not tell.
void record_program_path(const std::optional<std::string>& path);

// The path up to and including its last '/' or '\'; empty when it has neither.
std::string directory_of(std::string_view path);

}  // namespace kelvara
