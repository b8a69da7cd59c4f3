#include "platform/parallel/halving_parallelizer.h"

#include <algorithm>

#include "platform/os/threads.h"
#include "platform/parallel/spare_processor.h"

namespace qmp {
namespace {

// One of a limited number of places, or none.
class Place {
  public:
    Place(std::atomic<std::uint64_t>& taken, std::uint64_t places)
        : taken_(taken), got_(taken_.fetch_add(1, std::memory_order_relaxed) < places) {}
    ~Place() { taken_.fetch_sub(1, std::memory_order_relaxed); }
    Place(const Place&) = delete;
    Place& operator=(const Place&) = delete;

    bool got() const { return got_; }

  private:
    std::atomic<std::uint64_t>& taken_;
    bool got_;
};

}  // namespace

std::uint64_t HalvingParallelizer::usual_most_pairs() {
    return std::max<std::uint64_t>(256, 4 * std::uint64_t{os::active_processors()});
}

void HalvingParallelizer::run_in_parallel(BasicAction& action, std::uint64_t start, std::uint64_t end) {
    if (end <= start || end - start == 1) {
        BasicParallelizer::run_in_parallel(action, start, end);
        return;
    }
    {
        const Place place(pairs_, most_pairs_);
        if (place.got()) {
            BasicParallelizer::run_in_parallel(action, start, end);
            return;
        }
    }
    const std::uint64_t middle = start + (end - start) / 2;
    run_in_parallel(action, start, middle);
    run_in_parallel(action, middle, end);
}

std::uint64_t HalvingParallelizer::idle_processors() const {
    return SpareProcessor::count();
}

}  // namespace qmp
