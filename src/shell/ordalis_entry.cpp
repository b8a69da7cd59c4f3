#include "digitfiles/ordalis/viewer.h"
#include "shell/entry_points.h"

namespace kelvara {

void run_ordalis() {
    Ordalis::run_viewer();
}

}  // namespace kelvara
