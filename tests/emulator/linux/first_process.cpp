// The first process of the emulated system: runs /program with its own arguments, says how it ended and
// waits until the serial port has sent that. (The kernel stops when its first process ends, and what the
// port still holds would be lost.)
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <cstdio>

int main(int, char** argv) {
    char program[] = "/program";
    argv[0] = program;
    const pid_t child = fork();
    if (child == 0) {
        execv(program, argv);
        std::perror(program);
        _exit(126);
    }
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child) std::perror("first process");
    if (WIFEXITED(status)) {
        std::printf("\nThe program ended with exit code %d.\n", WEXITSTATUS(status));
    } else {
        std::printf("\nThe program ended with signal %d.\n", WTERMSIG(status));
    }
    std::fflush(stdout);
    tcdrain(STDOUT_FILENO);
    for (;;) pause();
}
