// Settings of computations with everything chosen at random.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "constants/catalogue.h"
#include "platform/memory/interleave_allocator.h"
#include "platform/parallel/registry.h"
#include "sessions/ram_settings.h"
#include "sessions/swap_settings.h"
#include "support/random_words.h"

namespace kelvara_test {

class RandomSettings {
  public:
    // Digits and swap files go to the folder or to the default one.
    explicit RandomSettings(std::string folder) : folder_(std::move(folder)) {}

    // Ram Only and Swap Mode.
    std::unique_ptr<kelvara::ComputationSettings> next() {
        if (flip()) {
            auto settings = std::make_unique<kelvara::RamSettings>();
            choose_shared(*settings);
            return settings;
        }
        auto settings = std::make_unique<kelvara::SwapSettings>();
        choose_shared(*settings);
        settings->set_memory_cap(random_.next() >> below(64));
        settings->set_raid(raid());
        settings->set_bytes_per_seek(flip() ? 0 : random_.next() >> below(64));
        return settings;
    }

  private:
    std::uint64_t below(std::uint64_t limit) { return random_.next() % limit; }
    bool flip() { return below(2) == 0; }
    // No square is 2 modulo 4.
    std::uint64_t root() { return below(std::uint64_t{1} << 28) * 4 + 2; }

    void choose_shared(kelvara::ComputationSettings& settings) {
        using namespace kelvara;
        auto constant = make_constant(static_cast<std::uint32_t>(random_.between(0, constant_count - 1)));
        if (constant->argument())
            constant->set_argument(constant->id() == id_euler_gamma_override ? below(64) : root());
        constant->set_algorithm(static_cast<std::uint32_t>(below(constant->info().algorithms.size())));
        settings.set_constant(std::move(constant));
        settings.set_decimal_digits(random_.between(100, std::uint64_t{1} << random_.between(7, 49)));
        if (flip()) settings.set_hexadecimal_digits(0);
        if (flip()) settings.output_path = folder_;
        settings.set_task_decomposition(random_.between(1, 65536));
        const auto& frameworks = qmp::parallelizer_keys();
        settings.set_framework(qmp::make_parallelizer(frameworks[below(frameworks.size())]));
        const std::uint64_t flag = std::string(settings.framework().get_type_name()) == "pushpool" ? 5 : 4;
        if (flip()) settings.framework().handle_menu_option(flag);
        settings.set_allocator(allocator());
    }

    std::unique_ptr<qmp::BasicAllocator> allocator() {
        constexpr const char* keys[] = {"malloc", "mmap"};
        if (flip()) {
            auto interleave = std::make_unique<qmp::InterleaveAllocator>();
            interleave->hashed = flip();
            interleave->nodes.assign(random_.between(1, 5), random_.next());
            return interleave;
        }
        auto made = qmp::make_allocator(keys[below(2)]);
        for (std::uint64_t times = below(4); times > 0; --times)
            made->handle_menu_option(random_.between(3, 4));
        return made;
    }

    qmp::RaidSettings raid() {
        qmp::RaidSettings raid;
        for (std::uint64_t group = below(4); group > 0; --group) {
            raid.add_group(flip() ? qmp::RaidType::raid0 : qmp::RaidType::raid3);
            for (std::uint64_t paths = below(5); paths > 0; --paths)
                raid.add_path(raid.groups().size() - 1, flip() ? folder_ : "");
        }
        raid.set_buffer_per_file(random_.next() >> below(64));
        return raid;
    }

    Random random_;
    std::string folder_;
};

}  // namespace kelvara_test
