#include "platform/os/console_device.h"
#include "shell/dispatcher.h"
#include "shell/program.h"

int main() {
    qmp::os::restore_console_when_interrupted();
    return kelvara::run_program(kelvara::dispatch);
}
