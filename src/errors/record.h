// The byte records that exceptions serialise into: little-endian integers and NUL-terminated texts, one
// after the other without padding.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace qmp {

class RecordWriter {
  public:
    explicit RecordWriter(std::string_view name) { text(name); }

    // A text ends at its first NUL, as every reader of the record sees it.
    RecordWriter& text(std::string_view value);
    RecordWriter& u32(std::uint32_t value) { return integer(value, 4); }
    RecordWriter& u64(std::uint64_t value) { return integer(value, 8); }
    std::string take() { return std::move(bytes_); }

  private:
    RecordWriter& integer(std::uint64_t value, int bytes);

    std::string bytes_;
};

// Reads the fields back in their order. A record that ends inside a field is a ParseException.
class RecordReader {
  public:
    explicit RecordReader(std::string_view record) : rest_(record) {}

    std::string text();
    std::uint32_t u32() { return static_cast<std::uint32_t>(integer(4)); }
    std::uint64_t u64() { return integer(8); }
    std::size_t remaining() const { return rest_.size(); }
    // Refuses bytes behind the last field.
    void finish() const;

  private:
    std::uint64_t integer(std::size_t bytes);

    std::string_view rest_;
};

}  // namespace qmp
