// A piece of parallel work: task number `index` of whatever its owner divided.
#pragma once

#include <cstdint>

namespace qmp {

class BasicAction {
  public:
    virtual ~BasicAction() = default;
    virtual void run(std::uint64_t index) = 0;
};

// Runs a callable: Callable(std::uint64_t index). Holds a reference; lives on the caller's stack.
template <typename Callable>
class FunctionAction final : public BasicAction {
  public:
    explicit FunctionAction(Callable& callable) : callable_(callable) {}
    void run(std::uint64_t index) override { callable_(index); }

  private:
    Callable& callable_;
};

}  // namespace qmp
