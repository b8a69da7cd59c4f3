// The bench of whole computations: one command prints all of it (--help).
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <set>
#include <stdexcept>
#include <string>
#include <system_error>

#include "agreement.h"
#include "breakdown.h"
#include "constant_name.h"
#include "errors/exception.h"
#include "multiply/instruction_levels.h"
#include "options.h"
#include "rivals.h"
#include "support/machine.h"
#include "tables.h"

namespace {

using bench::Computation;
using bench::Measured;
using bench::Options;

// A folder of the benchmark's own among the temporary ones, unless one is chosen.
class Folder {
  public:
    explicit Folder(const std::string& chosen) : path_(chosen), own_(chosen.empty()) {
        if (!own_) return;
        std::string name = (std::filesystem::temp_directory_path() / "kelvara-bench-XXXXXX").string();
        if (!mkdtemp(name.data())) throw std::system_error(errno, std::generic_category(), name);
        path_ = name;
    }
    ~Folder() {
        std::error_code ignored;
        if (own_) std::filesystem::remove_all(path_, ignored);
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    const std::string& path() const { return path_; }

  private:
    std::string path_;
    bool own_;
};

// Those of the options that the constant has.
std::vector<std::string> algorithms_for(const std::string& constant, const Options& options) {
    const std::vector<std::string> known = bench::algorithms_of(constant);
    if (options.algorithms.empty()) return {known.front()};
    if (options.algorithms == std::vector<std::string>{"all"}) return known;
    std::vector<std::string> algorithms;
    for (const std::string& algorithm : options.algorithms) {
        if (std::find(known.begin(), known.end(), algorithm) != known.end()) algorithms.push_back(algorithm);
    }
    if (algorithms.empty()) throw std::invalid_argument("None of the algorithms is one of " + constant);
    return algorithms;
}

std::vector<Computation> computations(const Options& options) {
    std::vector<Computation> list;
    std::set<std::string> used = {"all"};
    for (const std::string& constant : options.constants) {
        for (const std::string& algorithm : algorithms_for(constant, options)) {
            used.insert(algorithm);
            for (const std::uint64_t digits : options.digits) {
                for (const std::uint64_t tasks : options.tasks) {
                    list.push_back({constant, algorithm, digits, tasks});
                }
            }
        }
    }
    for (const std::string& algorithm : options.algorithms) {
        if (!used.contains(algorithm)) throw std::invalid_argument("No such algorithm: " + algorithm);
    }
    return list;
}

void print_head(const Options& options) {
    bench::print_machine();
    std::printf("U:          one product of 10^6 x 10^6 words by mpn_mul_n, measured before each run\n");
    std::printf(
        "Times:      wall-clock, \"Begin Computation\" to digits written and verified; of %llu runs the one "
        "with "
        "the median in U\n",
        static_cast<unsigned long long>(options.runs));
}

std::vector<Measured> measure_all(const Options& options, const std::string& folder) {
    std::vector<Measured> all;
    bench::print_table_head();
    for (const std::string& level : options.levels) {
        qmp::force_level(level);
        for (const Computation& computation : computations(options)) {
            auto result = bench::run(computation, options.runs, folder, options.digits);
            if (!result) {
                std::printf("| %s | %s | %llu | %llu | not enough memory |\n", computation.name().c_str(),
                            level.c_str(), static_cast<unsigned long long>(computation.digits),
                            static_cast<unsigned long long>(computation.tasks));
                continue;
            }
            all.push_back({computation, level, std::move(*result)});
            bench::print_line(all.back());
        }
    }
    return all;
}

void print_breakdowns(const Options& options, const std::vector<Measured>& all) {
    for (const Measured& measured : all) {
        if (measured.computation.digits != options.digits.back()) continue;
        qmp::force_level(measured.level);
        bench::print_phases(measured);
        bench::print_newton(measured);
        if (measured.computation.tasks == 1) bench::print_series(measured);
    }
}

// False when digits differ.
bool run(const Options& options) {
    const Folder folder(options.folder);
    computations(options);  // what the options name is known before anything is measured
    print_head(options);
    const std::vector<Measured> all = measure_all(options, folder.path());
    if (options.digits.size() > 1) bench::print_growth(all);
    if (options.breakdown) print_breakdowns(options, all);
    bench::print_rivals(options.rivals, options.constants, options.digits, options.tasks.back());
    return bench::print_agreement(all);
}

}  // namespace

int main(int argc, char** argv) {
    try {
        const Options options = bench::parse_options(argc, argv);
        if (options.help) {
            bench::print_help();
            return 0;
        }
        if (!run(options)) return 1;
    } catch (const std::logic_error& e) {  // of the options
        std::fprintf(stderr, "computation_bench: %s\n", e.what());
        return 2;
    } catch (const std::system_error& e) {
        std::fprintf(stderr, "computation_bench: %s\n", e.what());
        return 2;
    } catch (const qmp::Exception& e) {
        std::fflush(stdout);
        e.print();
        return 2;
    }
    return 0;
}
