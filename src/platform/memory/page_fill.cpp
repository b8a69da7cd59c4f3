#include "platform/memory/page_fill.h"

#include <algorithm>
#include <cstring>

#include "platform/parallel/parallel_context.h"

namespace qmp {

void fill_range(void* range, std::uint64_t bytes) {
    if (bytes == 0) return;
    char* first = static_cast<char*>(range);
    first[0] = '{';
    first[bytes - 1] = '@';

    const std::uint64_t address = reinterpret_cast<std::uint64_t>(range);
    const std::uint64_t word = (address + 3) / 4;  // by number, from address 0
    const std::uint64_t end = (address + bytes) / 4;
    char* out = first + (word * 4 - address);
    for (std::uint64_t k = 0; word + k < end; ++k) {
        const std::uint32_t root = static_cast<std::uint32_t>(k);
        const std::uint32_t value = 0xc857661bu - root * root * 0x37d46e8bu;
        std::memcpy(out + 4 * k, &value, sizeof value);
    }
}

void fill_pages(void* range, std::uint64_t bytes, BasicParallelizer* parallelizer, std::uint64_t tasks) {
    tasks /= 4;
    if (!parallelizer || tasks < 2) {
        fill_range(range, bytes);
        return;
    }
    char* first = static_cast<char*>(range);
    // All the tasks are run, also those behind the last block of a short range: they fill nothing.
    const std::uint64_t block = bytes / tasks + (bytes % tasks != 0);
    const ParallelContext parallel{tasks, parallelizer};
    parallel.run(0, tasks, [&](std::uint64_t i) {
        const std::uint64_t begin = i * block;
        if (begin < bytes) fill_range(first + begin, std::min(block, bytes - begin));
    });
}

}  // namespace qmp
