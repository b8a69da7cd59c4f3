#include "platform/integrity_check.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/integrity_seal.h"

namespace kelvara {
namespace {

std::filesystem::path path_from_utf8(const std::string& text) {
    return std::filesystem::path(std::u8string(text.begin(), text.end()));
}

std::span<const std::uint8_t> bytes_of(std::string_view text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

// Appends the next `size` bytes of the file to the hash; false when it ends before.
bool append_piece(std::ifstream& file, std::vector<char>& piece, std::uint64_t size, qmp::Sha256& hash) {
    while (size > 0) {
        const std::size_t count = std::min<std::uint64_t>(size, piece.size());
        if (!file.read(piece.data(), static_cast<std::streamsize>(count))) return false;
        hash.append(bytes_of({piece.data(), count}));
        size -= count;
    }
    return true;
}

}  // namespace

std::string seal_of(const qmp::Sha256Digest& content) {
    qmp::Sha256 hash;
    hash.append(bytes_of(seal_key));
    hash.append(bytes_of(qmp::to_hexadecimal(content)));
    return std::string(seal_mark) + qmp::to_hexadecimal(hash.finish());
}

std::optional<SealedContent> read_sealed_content(const std::string& path) {
    constexpr std::size_t piece_size = 1 << 18;
    std::error_code error;
    const std::uint64_t size = std::filesystem::file_size(path_from_utf8(path), error);
    std::ifstream file(path_from_utf8(path), std::ios::binary);
    if (error || !file) return std::nullopt;

    std::vector<char> piece(piece_size);
    const std::size_t end_size = std::min<std::uint64_t>(size, seal_size);
    std::string end(end_size, '\0');
    qmp::Sha256 hash;
    if (!append_piece(file, piece, size - end_size, hash)) return std::nullopt;
    if (!file.read(end.data(), static_cast<std::streamsize>(end_size))) return std::nullopt;

    const bool sealed = end_size == seal_size && end.starts_with(seal_mark);
    if (!sealed) hash.append(bytes_of(end));
    SealedContent content{hash.finish(), IntegrityOutcome::unsealed};
    if (sealed) {
        content.outcome =
            end == seal_of(content.digest) ? IntegrityOutcome::intact : IntegrityOutcome::modified;
    }
    return content;
}

const char* to_text(IntegrityOutcome outcome) {
    switch (outcome) {
        case IntegrityOutcome::intact:
            return "Intact";
        case IntegrityOutcome::modified:
            return "Modified";
        case IntegrityOutcome::unsealed:
            return "Unsealed";
        default:
            return "Unreadable";
    }
}

IntegrityCheck::IntegrityCheck(std::string program_path) : program_path_(std::move(program_path)) {
    if (const std::optional<SealedContent> content = read_sealed_content(program_path_)) {
        at_start_ = content->digest;
        outcome_ = content->outcome;
    }
}

void IntegrityCheck::operator()() {
    if (outcome_ == IntegrityOutcome::modified || outcome_ == IntegrityOutcome::unreadable) return;
    const std::optional<SealedContent> present = read_sealed_content(program_path_);
    if (!present) {
        outcome_ = IntegrityOutcome::unreadable;
    } else if (present->digest != *at_start_ || present->outcome != outcome_) {
        outcome_ = IntegrityOutcome::modified;
    }
}

std::string IntegrityCheck::digest() const {
    return at_start_ ? qmp::to_hexadecimal(*at_start_) : std::string();
}

}  // namespace kelvara
