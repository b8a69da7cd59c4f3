// Configuration files: an action and its settings, kept to be run again.
//
// A comment header, then an object with the member "Action", a name, and a member of that name that holds
// the settings.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "config/notation.h"

namespace qmp {

struct Configuration {
    std::string action;
    notation::Object settings;
};

// The path with '.' and the extension, unless there is a '.' anywhere in it, in a folder's name for example.
std::string add_default_extension(std::string path, std::string_view extension);

// The file at the path, to which ".ini" is added as above. A file that cannot be read is a FileException; a
// text that is wrong, a root that is no object and a missing member are ParseExceptions. An action that is
// none of those given is an InvalidParametersException "Invalid Action: ACTION", whatever else is wrong.
Configuration load_configuration(const std::string& path, std::span<const std::string_view> actions);

// The bytes of a file, with the byte-order mark. `version` is the program's.
std::string configuration_text(std::string_view version, Configuration configuration);

}  // namespace qmp
