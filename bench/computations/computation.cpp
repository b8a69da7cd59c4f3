#include "computation.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <memory>

#include "constant_name.h"
#include "digests.h"
#include "platform/os/memory.h"
#include "quiet_output.h"
#include "radix/output_driver.h"
#include "resident.h"
#include "sessions/ram_session.h"
#include "sessions/ram_settings.h"
#include "unit.h"

namespace bench {
namespace {

using kelvara::RamSession;
using kelvara::RamSettings;

// Computations leave a validation file where the process stands: in a folder that goes away with them.
class PassingFolder {
  public:
    explicit PassingFolder(const std::filesystem::path& parent)
        : before_(std::filesystem::current_path()),
          folder_(std::filesystem::absolute(parent) / "validation") {
        std::filesystem::create_directories(folder_);
        std::filesystem::current_path(folder_);
    }
    ~PassingFolder() {
        std::error_code ignored;
        std::filesystem::current_path(before_, ignored);
        std::filesystem::remove_all(folder_, ignored);
    }
    PassingFolder(const PassingFolder&) = delete;
    PassingFolder& operator=(const PassingFolder&) = delete;

  private:
    std::filesystem::path before_;
    std::filesystem::path folder_;
};

void set_up(RamSettings& settings, const Computation& computation, const std::string& folder) {
    settings.set_constant(make_constant(computation.constant));
    settings.set_algorithm(computation.algorithm);
    settings.set_decimal_digits(computation.digits);
    settings.set_hexadecimal_digits(0);
    settings.set_task_decomposition(computation.tasks);
    settings.output_path = std::filesystem::absolute(folder).string();
    settings.check();
}

// A session that cannot reserve its memory ends the process.
bool fits(const RamSettings& settings) {
    const std::uint64_t available = qmp::os::committable_memory();
    if (available == 0) return true;
    const auto computation = settings.constant().make_ram_computation(settings.task_decomposition());
    const std::uint64_t needed =
        std::max(computation->working_bytes(),
                 qmp::decimal_output_bytes(settings.decimal_digits(), settings.task_decomposition()));
    return needed + needed / 16 < available;
}

// Where the digits begin, behind the integer part and the point.
std::uint64_t digits_begin(const std::string& path) {
    std::ifstream file(path);
    std::string integer_part;
    std::getline(file, integer_part, '.');
    return integer_part.size() + 1;
}

void read_file(Result& result, const std::string& path, std::uint64_t digits,
               const std::vector<std::uint64_t>& digit_counts) {
    const std::uint64_t begin = digits_begin(path);
    std::vector<std::uint64_t> ends;
    for (const std::uint64_t fewer : digit_counts) {
        if (fewer < digits) ends.push_back(begin + fewer);
    }
    std::vector<std::string> digests = file_digests(path, ends);
    for (std::size_t i = 0; i < ends.size(); ++i) {
        result.prefixes.push_back({ends[i] - begin, std::move(digests[i])});
    }
    result.digest = std::move(digests.back());
}

Figures figures_of(const kelvara::SessionRecord& record, double unit, StepTimes&& steps) {
    Figures figures;
    figures.unit = unit;
    figures.seconds = record.total_seconds();
    figures.output = qmp::seconds_between(record.ended.wall, record.computed.wall);
    figures.reserving = record.reserving_seconds;
    figures.twiddles = record.twiddle_seconds;
    figures.reserved = record.working_memory;
    figures.used = record.working_memory_peak;
    figures.twiddle_bytes = record.twiddle_memory;
    figures.resident = resident_peak();
    figures.steps = std::move(steps);
    return figures;
}

}  // namespace

std::optional<Result> run(const Computation& computation, std::uint64_t runs, const std::string& folder,
                          const std::vector<std::uint64_t>& digit_counts) {
    Result result;
    std::vector<Figures> all;
    for (std::uint64_t i = 0; i < runs; ++i) {
        RamSettings settings;
        set_up(settings, computation, folder);
        if (!fits(settings)) return std::nullopt;
        result.precision = settings.precision();
        const double unit = measure_unit();
        StepTimes steps;
        RamSession session(settings, &steps);
        restart_resident_peak();
        {
            const QuietOutput quiet;
            const PassingFolder work(folder);
            session.run();
        }
        const kelvara::SessionRecord& record = session.record();
        all.push_back(figures_of(record, unit, std::move(steps)));
        const std::string& path = record.files.front().path;
        if (i + 1 == runs) {
            result.hash = record.decimal.hash;
            result.last_digits = record.decimal.last_digits;
            read_file(result, path, computation.digits, digit_counts);
        }
        std::filesystem::remove(path);
    }
    const auto middle = all.begin() + static_cast<std::ptrdiff_t>((all.size() - 1) / 2);
    std::nth_element(all.begin(), middle, all.end(),
                     [](const Figures& a, const Figures& b) { return a.in_units() < b.in_units(); });
    result.median = std::move(*middle);
    return result;
}

}  // namespace bench
