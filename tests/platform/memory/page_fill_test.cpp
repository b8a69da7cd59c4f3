#include "platform/memory/page_fill.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "platform/parallel/push_pool_parallelizer.h"
#include "platform/parallel/serial_parallelizer.h"

namespace {

constexpr unsigned char untouched = 0x11;

// The rule as it is stated, on a model of byte addresses from 0; the range starts at `start`.
void fill_model(std::vector<unsigned char>& memory, std::uint64_t start, std::uint64_t bytes) {
    if (bytes == 0) return;
    memory[start] = '{';
    memory[start + bytes - 1] = '@';
    const std::int64_t first = static_cast<std::int64_t>((start + 3) / 4);
    const std::int64_t count = static_cast<std::int64_t>((start + bytes) / 4) - first;
    for (std::int64_t k = 0; k < count; ++k) {
        const std::uint64_t product =
            (static_cast<std::uint64_t>(k) * static_cast<std::uint64_t>(k) & 0xffffffff) * 0x37d46e8b;
        const std::uint64_t word = (0xc857661b - (product & 0xffffffff)) & 0xffffffff;
        for (int byte = 0; byte < 4; ++byte) {
            memory[static_cast<std::uint64_t>(4 * (first + k) + byte)] =
                static_cast<unsigned char>(word >> (8 * byte));
        }
    }
}

// A copy of `bytes` bytes that begin `start` bytes behind an address divisible by 64.
template <typename Fill>
std::vector<unsigned char> filled(std::uint64_t size, std::uint64_t start, Fill fill) {
    std::vector<unsigned char> memory(size + 64, untouched);
    const std::uint64_t address = reinterpret_cast<std::uint64_t>(memory.data());
    unsigned char* base = memory.data() + (64 - address % 64) % 64;
    fill(base + start);
    return {base, base + size};
}

TEST(PageFill, FollowsTheRuleAtEveryAlignmentAndLength) {
    for (std::uint64_t start = 0; start < 8; ++start) {
        for (std::uint64_t bytes = 0; bytes < 70; ++bytes) {
            std::vector<unsigned char> model(128, untouched);
            fill_model(model, start, bytes);
            EXPECT_EQ(filled(128, start, [&](void* p) { qmp::fill_range(p, bytes); }), model)
                << start << " " << bytes;
        }
    }
}

TEST(PageFill, TenBytesAtAnOddAddress) {
    const auto memory = filled(16, 1, [](void* p) { qmp::fill_range(p, 10); });
    const std::vector<unsigned char> expected = {untouched, '{',       untouched, untouched, 0x1b, 0x66,
                                                 0x57,      0xc8,      untouched, untouched, '@',  untouched,
                                                 untouched, untouched, untouched, untouched};
    EXPECT_EQ(memory, expected);
}

TEST(PageFill, WordsOverwriteTheMarksOfAWholePage) {
    const auto memory = filled(4096, 0, [](void* p) { qmp::fill_range(p, 4096); });
    EXPECT_EQ(memory[0], 0x1b);
    std::vector<unsigned char> model(4096, untouched);
    fill_model(model, 0, 4096);
    EXPECT_EQ(memory, model);
}

TEST(PageFill, TheLongRangeWrapsItsArithmetic) {
    constexpr std::uint64_t bytes = 4 * 70000;  // k * k passes 2^32
    std::vector<unsigned char> model(bytes, untouched);
    fill_model(model, 0, bytes);
    EXPECT_EQ(filled(bytes, 0, [](void* p) { qmp::fill_range(p, bytes); }), model);
}

TEST(PageFill, ParallelFillRestartsThePatternInEveryBlock) {
    qmp::PushPoolParallelizer pool;
    qmp::SerialParallelizer serial;
    for (const std::uint64_t bytes : {0, 3, 10, 1001, 4096}) {
        for (const std::uint64_t tasks : {0, 1, 7, 8, 12, 100}) {
            std::vector<unsigned char> model(4200, untouched);
            const std::uint64_t blocks = tasks / 4;
            if (blocks < 2) {
                fill_model(model, 2, bytes);
            } else {
                const std::uint64_t block = (bytes + blocks - 1) / blocks;
                for (std::uint64_t i = 0; i < blocks && i * block < bytes; ++i) {
                    fill_model(model, 2 + i * block, std::min(block, bytes - i * block));
                }
            }
            for (qmp::BasicParallelizer* framework : {static_cast<qmp::BasicParallelizer*>(&pool),
                                                      static_cast<qmp::BasicParallelizer*>(&serial)}) {
                EXPECT_EQ(filled(4200, 2, [&](void* p) { qmp::fill_pages(p, bytes, framework, tasks); }),
                          model)
                    << bytes << " " << tasks;
            }
        }
    }
}

TEST(PageFill, MoreTasksThanBytesLeaveTheLastOnesWithoutWork) {
    qmp::SerialParallelizer serial;
    std::vector<unsigned char> model(1200, untouched);
    for (std::uint64_t i = 0; i < 1000; ++i) fill_model(model, i, 1);
    EXPECT_EQ(filled(1200, 0, [&](void* p) { qmp::fill_pages(p, 1000, &serial, 5000); }), model);
}

TEST(PageFill, WithoutAParallelizerTheRangeIsOneBlock) {
    std::vector<unsigned char> model(1200, untouched);
    fill_model(model, 1, 1000);
    EXPECT_EQ(filled(1200, 1, [](void* p) { qmp::fill_pages(p, 1000, nullptr, 64); }), model);
}

}  // namespace
