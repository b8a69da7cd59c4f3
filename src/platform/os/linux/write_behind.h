// Files that are written in one go, past the page cache: what is written sets out for the disk at once, and
// what has arrived there is dropped from the cache.
//
// A cache that keeps the whole file costs the file's size in pages that somebody has to clear, or, in a
// virtual machine, to ask of the host: several times as much as the way to a fast disk. So only a window of
// the file's last part is kept, and its pages are used over and over.
#pragma once

#include <cstdint>

#include "platform/os/file.h"

namespace qmp::os {

// Writes at the descriptor's position.
Transfer write_behind(int descriptor, const void* buffer, std::uint64_t bytes);
// Waits until everything has reached the disk. What is no file on a disk has nothing to wait for.
ErrorCode settle(int descriptor);

}  // namespace qmp::os
