// Sequential files: digit files, reports, configuration. And what else the program asks of folders and
// files. Paths are UTF-8.
//
// A failing create or open throws FileException with the path and the system's error code, or, when the
// caller asks to retry, prints the error, waits for a key and tries again. With no keyboard to wait for,
// a retry that cannot succeed throws as well: it never spins.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

namespace qmp::FileIO {

class SequentialFile {
  public:
    SequentialFile();
    ~SequentialFile();
    SequentialFile(SequentialFile&&) noexcept;
    SequentialFile& operator=(SequentialFile&&) noexcept;

    // Creates or empties the file, for reading and writing, written through to the disk.
    void create(const std::string& path, bool retry = false);
    // The same for a file that is written in one go: it has reached the disk once close() has returned with
    // last_error() 0, and while it is written the disk works on its own.
    void create_for_streaming(const std::string& path, bool retry = false);
    void open(const std::string& path, bool retry = false);
    void close();
    bool is_open() const;

    // Bytes really read or written; a short count means the end of the file or a failing disk, whose
    // error code last_error() keeps.
    std::uint64_t read(void* buffer, std::uint64_t bytes);
    std::uint64_t write(const void* buffer, std::uint64_t bytes);
    void seek(std::uint64_t offset);
    std::uint64_t size() const;

    const std::string& path() const { return path_; }
    std::uint32_t last_error() const { return last_error_; }

  private:
    struct Handle;
    void create(const std::string& path, bool retry, bool streaming);

    std::string path_;
    std::unique_ptr<Handle> handle_;
    std::uint32_t last_error_ = 0;
};

// Size of a file by its path; a missing file is fatal ("Path does not exist.").
std::uint64_t file_size(const std::string& path);
// True when a file can be created in the folder (one is, and deleted again).
bool path_check(const std::string& folder);
// Makes the folder unless it is there; the one that it lies in must exist. FileException
// ("FileIO::create_folder()").
void create_folder(const std::string& folder);
// Renames, replacing an existing target; tries again until it succeeds.
void rename_with_retries(const std::string& from, const std::string& to);
// The folder with a '/' at its end unless it already ends in '/' or '\'.
std::string with_trailing_slash(std::string folder);

}  // namespace qmp::FileIO
