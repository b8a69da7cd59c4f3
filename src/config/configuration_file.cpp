#include "config/configuration_file.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "config/notation_parser.h"
#include "errors/exception.h"

namespace qmp {
namespace {

std::string header(std::string_view version) {
    return "\xef\xbb\xbf"
           "//  Kelvara Configuration File\r\n"
           "//  Version: " +
           std::string(version) +
           "\r\n"
           "//\r\n"
           "//  Load this from Kelvara or run directly:\r\n"
           "//      Kelvara config filename.ini\r\n"
           "//\r\n"
           "//  If you're copying Windows file paths into here, be sure to replace\r\n"
           "//  all backslashes \"\\\" with forward slashes \"/\". Backslash is an\r\n"
           "//  escape character.\r\n"
           "//\r\n"
           "\r\n";
}

}  // namespace

std::string add_default_extension(std::string path, std::string_view extension) {
    if (path.find('.') != std::string::npos) return path;
    path += '.';
    return path += extension;
}

Configuration load_configuration(const std::string& path, std::span<const std::string_view> actions) {
    const std::unique_ptr<notation::Value> file = notation::parse_file(add_default_extension(path, "ini"));
    const notation::Object& root = notation::as_object(*file, "");
    const std::string& action = root.get_string("Action", "");
    if (std::find(actions.begin(), actions.end(), action) == actions.end())
        throw InvalidParametersException("", "Invalid Action: " + action);
    const std::unique_ptr<notation::Value> settings = root.get_object(action, "").clone();
    return {action, std::move(static_cast<notation::Object&>(*settings))};
}

std::string configuration_text(std::string_view version, Configuration configuration) {
    notation::Object root;
    root.insert_string("Action", configuration.action);
    root.insert(std::move(configuration.action),
                std::make_unique<notation::Object>(std::move(configuration.settings)));
    std::string text = header(version);
    root.append_text(text, 0);
    return text;
}

}  // namespace qmp
