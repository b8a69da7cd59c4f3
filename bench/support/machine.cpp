#include "support/machine.h"

#include <cpuid.h>
#include <gmp.h>

#include <cstdio>
#include <cstring>
#include <ctime>
#include <string>
#include <thread>

namespace bench {
namespace {

std::string processor_name() {
    unsigned int registers[12] = {};
    for (unsigned int i = 0; i < 3; ++i) {
        unsigned int* r = registers + 4 * i;
        if (!__get_cpuid(0x80000002 + i, r, r + 1, r + 2, r + 3)) return "unknown";
    }
    char name[sizeof registers + 1] = {};
    std::memcpy(name, registers, sizeof registers);
    return name;
}

}  // namespace

void print_processor() {
    const std::time_t seconds = std::time(nullptr);
    char date[32];
    std::strftime(date, sizeof date, "%Y-%m-%d %H:%M UTC", std::gmtime(&seconds));
    std::printf("Date:       %s\n", date);
    std::printf("Processor:  %s, %u logical processors\n", processor_name().c_str(),
                std::thread::hardware_concurrency());
#ifdef __clang__
    std::printf("Compiler:   clang %s\n", __VERSION__);
#else
    std::printf("Compiler:   g++ %s\n", __VERSION__);
#endif
}

void print_machine() {
    print_processor();
    std::printf("Beside it:  GMP %s, one thread\n", gmp_version);
}

}  // namespace bench
