#include "multiply/ntt32/ntt32_params.h"

#include "multiply/ntt32/size_tables.h"

namespace qmp::ntt32 {

constinit const LimitTables limit_tables{"ntt32_params()", 32, specialised_rows, standard_rows};

SizeParams ntt32_params(std::uint64_t bits) {
    return limit_tables.find(bits);
}

}  // namespace qmp::ntt32
