// A computation's settings in a configuration file: saved and loaded by the menu, run from the command line.
//
// A file that cannot be read or written, or not understood, is an exception (FileException, ParseException,
// InvalidParametersException).
#pragma once

#include <string>

#include "sessions/custom_settings.h"

namespace kelvara {

// Asks for a path and writes the file, replacing one that exists.
void save_computation(const ComputationSettings& settings);

// Asks for a path and reads the settings.
CustomSettings load_computation();

// Reads the file, to which ".ini" is added where the path has no dot, and runs what it describes.
void run_configuration(const std::string& path);

}  // namespace kelvara
