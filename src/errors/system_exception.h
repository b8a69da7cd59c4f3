// A failed call of the operating system that concerns no file.
#pragma once

#include "errors/exception.h"

namespace qmp {

class SystemException : public Exception {
  public:
    SystemException(std::string function, std::string message, std::uint32_t error_code)
        : function_(std::move(function)), message_(std::move(message)), error_code_(error_code) {}
    QMP_EXCEPTION_OPERATIONS(SystemException, "SystemException")
    std::string serialize() const override;
    const std::string& function() const { return function_; }
    const std::string& message() const { return message_; }
    std::uint32_t error_code() const { return error_code_; }

  protected:
    void print_heading() const override;
    void print_body() const override;
    std::string function_;
    std::string message_;
    std::uint32_t error_code_;
};

}  // namespace qmp
