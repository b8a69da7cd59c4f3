#include "quiet_output.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>

namespace bench {

QuietOutput::QuietOutput() {
    std::fflush(stdout);
    saved_ = dup(STDOUT_FILENO);
    const int nowhere = open("/dev/null", O_WRONLY);
    dup2(nowhere, STDOUT_FILENO);
    close(nowhere);
}

QuietOutput::~QuietOutput() {
    std::fflush(stdout);
    dup2(saved_, STDOUT_FILENO);
    close(saved_);
}

}  // namespace bench
