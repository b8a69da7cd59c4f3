// "Bytes/Seek": how many bytes the swap files transfer in the time of one seek. It decides between
// algorithms with more seeks and algorithms with more bytes of access.
#pragma once

#include <cstdint>

namespace qmp {

class BytesPerSeek {
  public:
    static constexpr std::uint64_t least = 4096;
    static constexpr std::uint64_t largest = 0x7fffffffffffffff;

    explicit BytesPerSeek(std::uint64_t default_bytes) : bytes_(default_bytes) {}

    std::uint64_t bytes() const { return bytes_; }
    // 0 as long as it is the default: what set() takes back.
    std::uint64_t chosen() const { return chosen_ ? bytes_ : 0; }

    // A choice of the user's, brought between the least and the largest; 0 for the default.
    void set(std::uint64_t bytes, std::uint64_t default_bytes);
    // The default has changed, which matters unless the user has chosen.
    void follow(std::uint64_t default_bytes) { set(chosen(), default_bytes); }

  private:
    std::uint64_t bytes_;
    bool chosen_ = false;
};

// "Minimum I/O Blocksize (Bytes Per Seek):" and the answer.
void ask_bytes_per_seek(BytesPerSeek& bytes_per_seek, std::uint64_t default_bytes);

}  // namespace qmp
