// Failures of a product's convolution: a length that cannot hold it, and a coefficient that broke its bound.
#pragma once

#include "errors/exception.h"

namespace qmp {

class ConvolutionTooSmallException : public InvalidTransformException {
  public:
    ConvolutionTooSmallException(std::string function, std::uint64_t convolution_size,
                                 std::uint64_t requested_size)
        : InvalidTransformException(std::move(function), {}),
          convolution_size_(convolution_size),
          requested_size_(requested_size) {}
    QMP_EXCEPTION_OPERATIONS(ConvolutionTooSmallException, "ConvolutionTooSmallException")
    std::string serialize() const override;
    std::uint64_t convolution_size() const { return convolution_size_; }
    std::uint64_t requested_size() const { return requested_size_; }

  protected:
    void print_body() const override;
    std::uint64_t convolution_size_;
    std::uint64_t requested_size_;
};

// Prints as a text; the limit and the value found travel in the record only.
class ConvolutionFailedException : public AlgorithmFailedException {
  public:
    ConvolutionFailedException(std::string function, std::string message, std::uint64_t limit,
                               std::uint64_t found)
        : AlgorithmFailedException(std::move(function), std::move(message)), limit_(limit), found_(found) {}
    QMP_EXCEPTION_OPERATIONS(ConvolutionFailedException, "ConvolutionFailedException")
    std::string serialize() const override;
    std::uint64_t limit() const { return limit_; }
    std::uint64_t found() const { return found_; }

  protected:
    std::uint64_t limit_;
    std::uint64_t found_;
};

}  // namespace qmp
