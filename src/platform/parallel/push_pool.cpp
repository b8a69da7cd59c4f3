#include "platform/parallel/push_pool.h"

#include <bit>
#include <memory>
#include <new>
#include <system_error>
#include <utility>

#include "platform/os/clock.h"

namespace qmp {
namespace {

std::uint64_t segment_of(std::uint64_t number) {
    // The mask changes nothing for numbers that exist; it shows the compiler the bound.
    return (static_cast<std::uint64_t>(std::bit_width(number + 1)) - 1) & 63;
}

std::uint64_t place_in_segment(std::uint64_t number) {
    return number + 1 - (std::uint64_t{1} << segment_of(number));
}

}  // namespace

PushPool::PushPool(bool randomize_searches, ThreadStartHook hook)
    : randomize(randomize_searches), hook_(std::move(hook)) {}

PushPool::~PushPool() {
    const std::uint64_t workers = count();
    for (std::uint64_t i = 0; i < workers; ++i) std::destroy_at(&worker(i));
    for (std::uint64_t k = 0; k < segments_.size(); ++k) {
        if (segments_[k]) std::allocator<PushPoolWorker>().deallocate(segments_[k], std::size_t{1} << k);
    }
}

PushPoolWorker& PushPool::worker(std::uint64_t number) const {
    return segments_[segment_of(number)][place_in_segment(number)];
}

bool PushPool::offer(std::uint64_t first, std::uint64_t last, TaskLatch& latch, std::uint64_t index) {
    for (std::uint64_t i = first; i < last; ++i) {
        if (worker(i).try_accept(latch, index)) {
            latch.set_handed_over();
            return true;
        }
    }
    return false;
}

// A worker that has just finished a task still looks for the next one, on a processor of its own. Waking
// another one takes some 50 microseconds, and the system may well put it where the caller runs.
bool PushPool::offer_to_awake(std::uint64_t workers, TaskLatch& latch, std::uint64_t index) {
    for (std::uint64_t i = 0; i < workers; ++i) {
        PushPoolWorker& candidate = worker(i);
        if (candidate.is_awake() && candidate.try_accept(latch, index)) {
            latch.set_handed_over();
            return true;
        }
    }
    return false;
}

bool PushPool::try_push(TaskLatch& latch, std::uint64_t index) {
    if (offer_to_awake(count(), latch, index)) return true;
    if (!randomize.load(std::memory_order_relaxed)) return offer(0, count(), latch, index);
    // The mask first: the count that is read after it is at least the one that the mask was made for, and
    // so one subtraction brings any masked number below the count.
    const std::uint64_t mask_seen = mask();
    const std::uint64_t workers = count();
    if (workers == 0) return false;
    std::uint64_t start = os::time_stamp_counter() & mask_seen;
    if (start >= workers) start -= workers;
    return offer(start, workers, latch, index) || offer(0, start, latch, index);
}

bool PushPool::push(TaskLatch& latch, std::uint64_t index) {
    while (!try_push(latch, index)) {
        const std::lock_guard<std::mutex> guard(lock_);
        if (!add_worker()) return false;
    }
    return true;
}

void PushPool::ensure_workers(std::uint64_t n) {
    if (count() >= n) return;
    const std::lock_guard<std::mutex> guard(lock_);
    while (count() < n && add_worker()) {
    }
}

bool PushPool::add_worker() {
    const std::uint64_t number = count_.load(std::memory_order_relaxed);
    const std::uint64_t old_mask = mask_.load(std::memory_order_relaxed);
    PushPoolWorker*& segment = segments_[segment_of(number)];
    try {
        if (!segment)
            segment = std::allocator<PushPoolWorker>().allocate(std::size_t{1} << segment_of(number));
        ::new (segment + place_in_segment(number)) PushPoolWorker(number, hook_);
    } catch (const std::system_error&) {
        return false;
    }
    count_.store(number + 1, std::memory_order_release);
    if (old_mask == number) mask_.store(2 * old_mask + 1, std::memory_order_release);
    return true;
}

}  // namespace qmp
