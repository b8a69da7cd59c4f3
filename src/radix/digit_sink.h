// Where produced digits go. The digit-file writers implement it.
#pragma once

#include <cstdint>

namespace qmp {

class DigitSink {
  public:
    virtual ~DigitSink() = default;
    // Takes `count` digit values (0 to 15), most significant first. The buffer's content may be changed.
    virtual void write(char* digits, std::uint64_t count) = 0;
    // After the last digit: brings everything that is still held back to its place, waits until it is there,
    // and throws when that fails, which a destructor could not.
    virtual void finish() {}
};

}  // namespace qmp
