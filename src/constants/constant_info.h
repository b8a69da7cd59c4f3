// What the catalogue knows of a constant before there is an object of it: ids, keys, names, algorithms.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

#include "console/console.h"

namespace kelvara {

class Constant;

// How hard a constant is to compute, as the colour that its name is printed in.
constexpr qmp::console::Colour fast_constant = 'P';
constexpr qmp::console::Colour moderate_constant = 'G';
constexpr qmp::console::Colour slow_constant = 'B';

struct AlgorithmInfo {
    const char* keyword;  // in configuration files and on the command line
    const char* short_name;
    const char* long_name;
    const char* menu_label;           // null: not offered by the menu
    const char* menu_line = nullptr;  // a second line below the label
    // The two first algorithms may also be named by their index; the others by keyword only.
    static constexpr std::uint32_t named_by_digit = 2;
};

struct ConstantInfo {
    std::uint32_t id;
    std::span<const std::string_view> keys;  // read from configurations; the last one is written
    const char* short_name;                  // without the argument of those that have one
    const char* full_name;
    qmp::console::Colour colour;
    std::span<const AlgorithmInfo> algorithms;
    std::span<const char* const> menu_note;  // lines below the algorithm menu
    std::unique_ptr<Constant> (*make)();

    std::string_view written_key() const { return keys.back(); }
};

}  // namespace kelvara
