#include "multiply/vst/vst_params.h"

#include "multiply/vst/size_tables.h"

namespace qmp::vst {

constinit const LimitTables limit_tables{"vst_params()", 48, specialised_rows, standard_rows};

SizeParams vst_params(std::uint64_t bits) {
    return limit_tables.find(bits);
}

}  // namespace qmp::vst
