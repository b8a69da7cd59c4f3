// What a table of figures has to say about where it comes from.
#pragma once

namespace bench {

// Date, processor, compiler and GMP.
void print_machine();

}  // namespace bench
