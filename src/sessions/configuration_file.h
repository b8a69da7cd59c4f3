// Configuration files: a set of choices on disk, to be loaded from a menu or run directly.
//
// UTF-8 with a byte-order mark and CR LF line ends: a comment header and one object with two members,
// "Action" (the name of an action) and, under that name, the action's settings. Files that cannot be read
// or understood are exceptions (FileException, ParseException, InvalidParametersException).
#pragma once

#include <string>
#include <string_view>

#include "config/notation.h"
#include "sessions/ram_settings.h"

namespace kelvara {

// "pi" becomes "pi.ini". A path with a dot anywhere stays as it is, also when the dot stands in a folder.
std::string add_default_extension(std::string path, std::string_view extension);

// The whole file.
std::string configuration_text(std::string_view action, qmp::notation::Object settings);

// Asks for a path and writes the file, replacing one that exists.
void save_configuration(std::string_view action, qmp::notation::Object settings);

// Asks for a path and reads the settings of a computation from the file.
RamSettings load_configuration();

// Reads the file and runs what it describes.
void run_configuration(const std::string& path);

}  // namespace kelvara
