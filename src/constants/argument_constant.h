// Constants with an integer argument in their name: Sqrt(n), ArcCoth(n), Log(n).
#pragma once

#include <cstdint>
#include <string>

#include "constants/constant.h"

namespace kelvara {

struct ArgumentRange {
    std::uint64_t low;
    std::uint64_t high;

    bool contains(std::uint64_t value) const { return low <= value && value <= high; }
};

// Repeats the prompt until a number in range is typed.
std::uint64_t read_argument(const char* prompt, ArgumentRange range);

class ArgumentConstant : public Constant {
  public:
    std::string short_name() const override { return with_argument(info().short_name); }
    std::string full_name() const override { return with_argument(info().full_name); }
    std::optional<std::uint64_t> argument() const override { return argument_; }
    // "n is out of range." outside the range.
    void set_argument(std::uint64_t value) override;
    void ask_argument() override;

  protected:
    ArgumentConstant(const ConstantInfo& info, ArgumentRange range, const char* heading)
        : Constant(info), range_(range), heading_(heading) {}

    ArgumentRange range() const { return range_; }
    const char* heading() const { return heading_; }
    void store(std::uint64_t value) { argument_ = value; }

  private:
    std::string with_argument(const char* name) const {
        return name + ("(" + std::to_string(argument_) + ")");
    }

    ArgumentRange range_;
    const char* heading_;  // of the prompt
    std::uint64_t argument_ = 2;
};

}  // namespace kelvara
