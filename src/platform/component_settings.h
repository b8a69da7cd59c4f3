// What settings save of themselves: those of exchangeable components (an allocator, a parallel framework), of
// the swap files, of a whole computation.
#pragma once

#include <string>

#include "config/notation.h"

namespace qmp {

class TextCursor;

class ComponentSettings {
  public:
    virtual ~ComponentSettings() = default;
    // The own settings as record lines "label<tab>value", each with CR LF; empty when there are none.
    virtual std::string print_settings() const { return {}; }
    // Reads the own fields back, in the order in which they were written.
    virtual void load_settings(TextCursor&) {}
    // The own settings as an object of a configuration file, and back. The object that is read holds the
    // keys of other readers as well. A reader throws for the first key that is missing or wrong.
    virtual notation::Object write_config() const { return {}; }
    virtual void read_config(const notation::Object&) {}
};

}  // namespace qmp
