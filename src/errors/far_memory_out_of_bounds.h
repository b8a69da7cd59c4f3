// An access that leaves a far-memory object.
#pragma once

#include "errors/exception.h"

namespace qmp {

class FarMemoryOutOfBoundsException : public Exception {
  public:
    // Sizes and offsets in bytes.
    FarMemoryOutOfBoundsException(std::string function, std::uint64_t object_size,
                                  std::uint64_t access_offset, std::uint64_t access_length)
        : function_(std::move(function)),
          object_size_(object_size),
          access_offset_(access_offset),
          access_length_(access_length) {}
    QMP_EXCEPTION_OPERATIONS(FarMemoryOutOfBoundsException, "FarMemoryOutOfBoundsException")
    std::string serialize() const override;
    const std::string& function() const { return function_; }
    std::uint64_t object_size() const { return object_size_; }
    std::uint64_t access_offset() const { return access_offset_; }
    std::uint64_t access_length() const { return access_length_; }

  protected:
    void print_body() const override;
    std::string function_;
    std::uint64_t object_size_;
    std::uint64_t access_offset_;
    std::uint64_t access_length_;
};

}  // namespace qmp
