#include "platform/processor_system.h"

namespace qmp {

ProcessorSystem& processor_system() {
    static ProcessorSystem system;
    return system;
}

}  // namespace qmp
