// What a table of figures has to say about where it comes from.
#pragma once

namespace bench {

// Date, processor and compiler.
void print_processor();
// And GMP.
void print_machine();

}  // namespace bench
