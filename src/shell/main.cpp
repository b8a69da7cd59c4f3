#include "shell/dispatcher.h"
#include "shell/program.h"

int main() {
    return kelvara::run_program(kelvara::dispatch);
}
