// A thread of the program's own, for one piece of work.
#pragma once

#include <functional>
#include <thread>
#include <utility>

namespace qmp {

// Starts a thread for the work. std::system_error when the system grants none.
using StartThread = std::function<std::thread(std::function<void()> work)>;

// Runs the work prepared for a crash and under a guard: an exception that escapes it prints itself and
// "FATAL ERROR: Unhandled exception in child thread.", and ends the program with exit code 1.
std::thread start_child_thread(std::function<void()> work);

// Joins at the end of its life, so that an exception on the owner's side leaves no thread behind that still
// works on what the owner holds.
class JoiningThread {
  public:
    explicit JoiningThread(std::thread thread) : thread_(std::move(thread)) {}
    ~JoiningThread() { join(); }
    JoiningThread(JoiningThread&&) = default;
    JoiningThread& operator=(JoiningThread&&) = delete;

    void join() {
        if (thread_.joinable()) thread_.join();
    }

  private:
    std::thread thread_;
};

}  // namespace qmp
