// The default framework: a pool of worker threads, one per running task.
//
// A task either goes to an idle worker or, where a thread limit leaves none, runs on the calling thread
// at once. An exception that escapes a task on a worker ends the program; one on the calling thread
// propagates after the other tasks have finished.
#pragma once

#include <memory>

#include "platform/parallel/basic_parallelizer.h"
#include "platform/parallel/push_pool.h"

namespace qmp {

class PushPoolParallelizer final : public BasicParallelizer {
  public:
    static constexpr const char* type_name = "pushpool";
    static constexpr const char* display_name = "Push Pool";
    // Larger ranges are halved first, so that the cost of handing over is itself spread over threads.
    static constexpr std::uint64_t largest_flat_range = 16;
    static constexpr std::uint64_t largest_thread_limit = 65536;

    PushPoolParallelizer();

    void run_in_parallel(BasicAction& action, std::uint64_t start, std::uint64_t end) override;
    // b goes to a worker.
    void run_in_parallel(BasicAction& a, BasicAction& b) override;
    // Starts one worker fewer than the thread limit (or than twice the processors): the calling thread is
    // the last one.
    void warm_up() override;
    std::uint64_t idle_processors() const override;
    // Replaces the pool by an empty one.
    void reset() override;

    const char* get_type_name() const override { return type_name; }
    const char* get_display_name() const override { return display_name; }
    std::uint64_t print_menu_options() const override;
    void handle_menu_option(std::uint64_t option) override;
    std::string print_settings() const override;
    void load_settings(TextCursor& cursor) override;
    notation::Object write_config() const override;
    void read_config(const notation::Object& config) override;

    bool randomize() const { return pool_->randomize.load(); }
    void set_randomize(bool on) { pool_->randomize.store(on); }
    // Threads that the pool holds at the moment.
    std::uint64_t workers() const { return pool_->count(); }

  protected:
    std::string summary_remark() const override;

  private:
    std::unique_ptr<PushPool> new_pool(bool randomize_searches) const;
    void hand_over(TaskLatch& latch, std::uint64_t index);
    // One from a file: cut to 0 to largest_thread_limit.
    void set_thread_limit(std::int64_t limit);

    std::uint16_t creator_group_;  // processor group of the thread that made the framework
    std::unique_ptr<PushPool> pool_;
};

}  // namespace qmp
