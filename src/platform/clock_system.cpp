#include "platform/clock_system.h"

namespace qmp {

ClockSystem& clock_system() {
    static ClockSystem system;
    return system;
}

}  // namespace qmp
