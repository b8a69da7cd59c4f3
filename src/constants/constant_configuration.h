// A constant in a configuration file: "Constant" (its key), "Argument" (of those that have one) and
// "Algorithm" (a keyword). And the same in a settings record.
#pragma once

#include <memory>
#include <string>

#include "config/notation.h"
#include "config/text_cursor.h"
#include "constants/constant.h"

namespace kelvara {

qmp::notation::Object write_constant(const Constant& constant);

// Throws for a missing key or a wrong type, and InvalidParametersException for an unknown constant or
// algorithm and for an argument that is out of range. Arguments above the largest signed value are read as
// the unsigned number with the same bits.
std::unique_ptr<Constant> read_constant(const qmp::notation::Object& object);

// The reader throws ParseException for lines that are wrong, and what read_constant() throws for their
// values.
std::string print_constant(const Constant& constant);
std::unique_ptr<Constant> load_constant(qmp::TextCursor& cursor);

}  // namespace kelvara
