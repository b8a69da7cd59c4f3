// A standard exception carried as one of the program's own.
#pragma once

#include <exception>

#include "errors/exception.h"

namespace qmp {

class StdException : public Exception {
  public:
    explicit StdException(std::string text) : text_(std::move(text)) {}
    explicit StdException(const std::exception& wrapped) : text_(wrapped.what()) {}
    QMP_EXCEPTION_OPERATIONS(StdException, "StdException")
    std::string serialize() const override;
    const std::string& text() const { return text_; }

  protected:
    void print_body() const override;
    std::string text_;
};

}  // namespace qmp
