#include "constants/bbp/menu.h"
#include "shell/entry_points.h"

namespace kelvara {

void run_bbp_extractor() {
    bbp::show_menu(bbp::default_settings());
}

}  // namespace kelvara
