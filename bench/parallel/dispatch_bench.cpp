// The cost of dispatching empty tasks, as one table (--help).
#include <algorithm>
#include <atomic>
#include <cstdio>
#include <functional>
#include <stdexcept>

#include "dispatchers.h"
#include "options.h"
#include "support/machine.h"
#include "support/timing.h"

namespace {

using bench::Dispatcher;
using Dispatchers = std::vector<std::unique_ptr<Dispatcher>>;

class EmptyTask final : public qmp::BasicAction {
  public:
    void run(std::uint64_t) override { asm volatile(""); }  // a call that the compiler must not drop
};

class CountedTask final : public qmp::BasicAction {
  public:
    void run(std::uint64_t) override { runs.fetch_add(1, std::memory_order_relaxed); }
    std::atomic<std::uint64_t> runs{0};
};

// One line of the table. False where a dispatcher has nothing for it.
struct Shape {
    std::string name;
    std::uint64_t tasks;
    std::function<bool(Dispatcher&, qmp::BasicAction&)> run;
};

std::vector<Shape> shapes_of(const bench::Options& options) {
    std::vector<Shape> shapes;
    for (const std::uint64_t n : options.tasks) {
        shapes.push_back({"range of " + std::to_string(n), n, [n](Dispatcher& dispatcher, auto& task) {
                              dispatcher.run_range(task, n);
                              return true;
                          }});
    }
    const std::uint64_t depth = options.depth;
    const std::uint64_t leaves = std::uint64_t{1} << depth;
    shapes.push_back(
        {"pairs, depth " + std::to_string(depth), leaves, [depth](Dispatcher& dispatcher, auto& task) {
             dispatcher.run_halves(task, depth);
             return true;
         }});
    shapes.push_back(
        {"where idle, depth " + std::to_string(depth), leaves, [depth](Dispatcher& dispatcher, auto& task) {
             return dispatcher.run_halves_where_idle(task, depth);
         }});
    return shapes;
}

// Throws when a dispatcher does not run every task once.
std::vector<Dispatcher*> takers_of(const Shape& shape, const Dispatchers& dispatchers) {
    std::vector<Dispatcher*> takers;
    for (const auto& dispatcher : dispatchers) {
        CountedTask counted;
        if (!shape.run(*dispatcher, counted)) continue;
        if (counted.runs != shape.tasks) throw std::runtime_error(dispatcher->name() + " lost a task.");
        takers.push_back(dispatcher.get());
    }
    return takers;
}

void print_line(const Shape& shape, const Dispatchers& dispatchers, double budget) {
    constexpr double rest = 5e-3;
    const std::vector<Dispatcher*> takers = takers_of(shape, dispatchers);
    EmptyTask task;
    std::vector<bench::Run> runs;
    for (Dispatcher* taker : takers) runs.emplace_back([&shape, &task, taker] { shape.run(*taker, task); });
    const std::vector<double> seconds = bench::measure(runs, budget, rest);

    std::printf("%-22s", shape.name.c_str());
    for (const auto& dispatcher : dispatchers) {
        const auto taker = std::find(takers.begin(), takers.end(), dispatcher.get());
        if (taker == takers.end()) {
            std::printf(" %12s", "-");
        } else {
            std::printf(" %12.3f", 1e6 * seconds[static_cast<std::size_t>(taker - takers.begin())]);
        }
    }
    std::printf("\n");
    std::fflush(stdout);
}

void print_table(const bench::Options& options) {
    Dispatchers dispatchers = bench::framework_dispatchers(options.frameworks);
    for (auto& rival : bench::rival_dispatchers()) dispatchers.push_back(std::move(rival));
    bench::print_processor();
    std::printf(
        "Times:      microseconds of a whole call, tasks empty; medians, in turns, threads started "
        "before\n\n");
    std::printf("%-22s", "");
    for (const auto& dispatcher : dispatchers) std::printf(" %12s", dispatcher->name().c_str());
    std::printf("\n");
    for (const Shape& shape : shapes_of(options)) print_line(shape, dispatchers, options.budget);
}

}  // namespace

int main(int argc, char** argv) {
    try {
        const bench::Options options = bench::parse_options(argc, argv);
        if (options.help) {
            bench::print_help();
        } else {
            print_table(options);
        }
    } catch (const std::logic_error& e) {  // of the options
        std::fprintf(stderr, "dispatch_bench: %s\n", e.what());
        return 2;
    } catch (const std::runtime_error& e) {
        std::fprintf(stderr, "dispatch_bench: %s\n", e.what());
        return 1;
    }
    return 0;
}
