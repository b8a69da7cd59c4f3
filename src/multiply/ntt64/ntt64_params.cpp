#include "multiply/ntt64/ntt64_params.h"

#include "multiply/ntt64/size_tables.h"

namespace qmp::ntt64 {

constinit const LimitTables limit_tables{"ntt64_params()", 64, specialised_rows, standard_rows};

SizeParams ntt64_params(std::uint64_t bits) {
    return limit_tables.find(bits);
}

}  // namespace qmp::ntt64
