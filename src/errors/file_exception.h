// Failures of files: of one file, of a digit file whose own description contradicts itself, and of the two
// kinds of RAID files. All carry the same fields and print alike; the RAID classes do not derive from
// FileException, so a handler of file failures does not catch them by accident.
#pragma once

#include <string_view>

#include "errors/exception.h"

namespace qmp {

// What the classes of this header share.
class FileFailure : public Exception {
  public:
    const std::string& function() const { return function_; }
    const std::string& message() const { return message_; }
    const std::string& path() const { return path_; }
    // The system's code (os_errors.h); 0 when the failure is not the system's.
    std::uint32_t error_code() const { return error_code_; }

  protected:
    FileFailure(std::string function, std::string message, std::string path, std::uint32_t error_code)
        : function_(std::move(function)),
          message_(std::move(message)),
          path_(std::move(path)),
          error_code_(error_code) {}
    void print_body() const override;
    std::string serialize_as(const char* name) const;
    std::string function_;
    std::string message_;
    std::string path_;
    std::uint32_t error_code_;
};

// For a failure that does not stop what is being done: the text as a warning, the code and its meaning.
void print_file_warning(std::string_view text, const FileFailure& failure);

namespace FileIO {

class FileException : public FileFailure {
  public:
    FileException(std::string function, std::string message, std::string path, std::uint32_t error_code = 0)
        : FileFailure(std::move(function), std::move(message), std::move(path), error_code) {}
    QMP_EXCEPTION_OPERATIONS(FileException, "FileException")
    std::string serialize() const override { return serialize_as("FileException"); }
};

}  // namespace FileIO

namespace R03 {

class Raid03Exception : public FileFailure {
  public:
    Raid03Exception(std::string function, std::string message, std::string path, std::uint32_t error_code)
        : FileFailure(std::move(function), std::move(message), std::move(path), error_code) {}
    QMP_EXCEPTION_OPERATIONS(Raid03Exception, "Raid03Exception")
    std::string serialize() const override { return serialize_as("Raid03Exception"); }

  protected:
    void print_heading() const override;
};

}  // namespace R03

namespace DiskRaid0 {

class Raid0Exception : public FileFailure {
  public:
    Raid0Exception(std::string function, std::string message, std::string path, std::uint32_t error_code)
        : FileFailure(std::move(function), std::move(message), std::move(path), error_code) {}
    QMP_EXCEPTION_OPERATIONS(Raid0Exception, "Raid0Exception")
    std::string serialize() const override { return serialize_as("Raid0Exception"); }

  protected:
    // Announces itself as a Raid03 exception: one heading serves both kinds of RAID files.
    void print_heading() const override;
};

}  // namespace DiskRaid0
}  // namespace qmp

namespace Ordalis {

// Serialises as its base, FileException.
class InconsistentMetaData : public qmp::FileIO::FileException {
  public:
    using FileException::FileException;
    QMP_EXCEPTION_OPERATIONS(InconsistentMetaData, "InconsistentMetaData")
};

}  // namespace Ordalis
