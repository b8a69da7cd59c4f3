#include "sessions/memory_menu.h"

#include <cstdint>
#include <memory>
#include <string>
#include <utility>

#include "console/console.h"
#include "console/input.h"
#include "console/labels.h"
#include "platform/memory/memory_menu.h"
#include "sessions/memory_plan.h"

namespace kelvara {
namespace {

namespace console = qmp::console;

constexpr std::uint64_t column = 30;

void print_rule() {
    console::println("    " + std::string(40, '-'), 'w');
}

void print_unavailable(const char* label) {
    console::print_column_line(column, label, SwapSettings::unavailable, 'y');
}

// What every mode's settings have.
template <typename Settings>
class ModeMemoryMenu : public qmp::MemoryMenu {
  public:
    explicit ModeMemoryMenu(Settings& settings) : settings_(settings) {}

    qmp::BasicAllocator& allocator() override { return settings_.allocator(); }
    void set_allocator(std::unique_ptr<qmp::BasicAllocator> allocator) override {
        settings_.set_allocator(std::move(allocator));
    }

  protected:
    Settings& settings_;
};

class RamMemoryMenu final : public ModeMemoryMenu<RamSettings> {
  public:
    using ModeMemoryMenu::ModeMemoryMenu;

    void print_sizes() const override {
        const std::unique_ptr<RamComputation> computation = settings_.make_computation();
        const MemoryPlan plan =
            plan_memory(*computation, settings_.decimal_digits(), settings_.hexadecimal_digits());
        console::println("Memory Settings\n", 'P');
        console::print_column_separated_bytes(column, "    Twiddle Factor Tables", plan.twiddles, 'G');
        console::print_column_separated_bytes(column, "    Working Memory", plan.working, 'G');
        print_rule();
        console::print_column_separated_bytes(column, "    Total Memory", plan.total(), 'Y');
        console::newline();
    }
    const char* adjust_option() const override {
        return "   1    Adjust Total Memory (not available in this mode)";
    }
    void adjust() override {}
};

class SwapMemoryMenu final : public ModeMemoryMenu<SwapSettings> {
  public:
    using ModeMemoryMenu::ModeMemoryMenu;

    void print_sizes() const override {
        console::println("Memory Settings\n", 'P');
        print_unavailable("    Twiddle Factor Tables");
        console::print_column_separated_bytes(column, "    Disk I/O Buffers", settings_.raid().buffer_total(),
                                              'G');
        print_unavailable("    Minimum Working Memory");
        print_rule();
        print_unavailable("    Minimum Total Memory");
        console::newline();
        print_unavailable("    Current Working Memory");
        console::print_column_separated_bytes(column, "    Current Total Memory", settings_.memory_cap(),
                                              'Y');
        console::newline();
    }
    const char* adjust_option() const override { return "   1    Adjust Total Memory"; }
    void adjust() override {
        settings_.set_memory_cap(console::ask_memory_cap());
        console::newline();
    }
    void print_advice() const override {
        console::println("In Swap Mode, memory is used as a cache for disk. So it's usually best");
        console::println("to use as much as possible without running out of memory.");
        console::newline();
    }
};

}  // namespace

void edit_memory(RamSettings& settings) {
    RamMemoryMenu menu(settings);
    qmp::edit_memory(menu);
}

void edit_memory(SwapSettings& settings) {
    SwapMemoryMenu menu(settings);
    qmp::edit_memory(menu);
}

}  // namespace kelvara
