#include "shell/driver/faults.h"

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <stdexcept>
#include <thread>

#include "errors/fatal.h"
#include "platform/parallel/basic_action.h"
#include "platform/parallel/registry.h"

namespace kelvara_test {
namespace {

// Volatile throughout, so that the compiler believes neither the addresses nor the operands.

void write_to_address_16() {
    volatile std::uintptr_t address = 16;
    *reinterpret_cast<volatile int*>(address) = 1;
}

void read_address_0() {
    volatile std::uintptr_t address = 0;
    static_cast<void>(*reinterpret_cast<volatile int*>(address));
}

void call_address_0() {
    volatile std::uintptr_t address = 0;
    reinterpret_cast<void (*)()>(address)();
}

void divide_by_zero() {
    __asm__ volatile("xorl %%edx, %%edx\n\txorl %%ecx, %%ecx\n\tmovl $1, %%eax\n\tdivl %%ecx" ::
                         : "eax", "ecx", "edx", "cc");
}

void execute_no_instruction() {
    __asm__ volatile("ud2");
}

// The compiler must not see that there is no end.
int use_stack(int depth) {
    volatile char room[4096];
    room[0] = 1;
    return depth < 0 ? 0 : use_stack(depth == 1'000'000'000 ? 1 : depth + 1) + room[0];
}

void overflow_stack() {
    volatile int depth = 1;
    volatile int result = use_stack(depth);
    static_cast<void>(result);
}

// Whoever follows the call stack from here reads where there is no memory.
void lose_stack() {
    __asm__ volatile("xorl %esp, %esp\n\tud2");
}

void free_twice() {
    // Not of a size for which the library keeps a list without a lock.
    void* volatile block = std::malloc(5000);
    void* volatile next = std::malloc(5000);
    std::free(block);
    std::free(block);
    std::free(next);
}

void let_an_exception_escape() {
    throw std::runtime_error("nobody catches this");
}

void fail_an_assertion() {
    qmp::assertion_failure("a < b", " in commit_fault()", "a is 5");
}

const std::map<std::string, void (*)()> faults = {
    {"write", write_to_address_16},
    {"read", read_address_0},
    {"call", call_address_0},
    {"divide", divide_by_zero},
    {"instruction", execute_no_instruction},
    {"overflow", overflow_stack},
    {"lost-stack", lose_stack},
    {"free-twice", free_twice},
    {"exception", let_an_exception_escape},
    {"abort", std::abort},
    {"assertion", fail_an_assertion},
};

class FaultyAction final : public qmp::BasicAction {
  public:
    explicit FaultyAction(std::string name) : name_(std::move(name)), starter_(std::this_thread::get_id()) {}
    void run(std::uint64_t) override {
        // The tasks of the calling thread wait, so that the fault happens on a worker.
        if (std::this_thread::get_id() != starter_) commit_fault(name_);
        for (;;) std::this_thread::sleep_for(std::chrono::hours(1));
    }

  private:
    std::string name_;
    std::thread::id starter_;
};

}  // namespace

void commit_fault(const std::string& name) {
    const auto fault = faults.find(name);
    if (fault == faults.end()) throw std::invalid_argument("no fault is called " + name);
    fault->second();
}

void commit_fault_on_a_thread(const std::string& name) {
    std::thread([&] { commit_fault(name); }).join();
}

void commit_fault_on_a_worker(const std::string& name) {
    FaultyAction action(name);
    qmp::make_default_parallelizer()->run_in_parallel(action, 0, 4);
}

void commit_fault_twice_at_once(const std::string& name) {
    std::atomic<int> ready{0};
    const auto commit = [&] {
        ready.fetch_add(1);
        while (ready.load() < 2) continue;
        commit_fault(name);
    };
    std::thread first(commit), second(commit);
    first.join();
    second.join();
}

}  // namespace kelvara_test
