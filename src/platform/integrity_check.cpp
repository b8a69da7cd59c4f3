#include "platform/integrity_check.h"

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <utility>
#include <vector>

namespace kelvara {
namespace {

std::filesystem::path path_from_utf8(const std::string& text) {
    return std::filesystem::path(std::u8string(text.begin(), text.end()));
}

}  // namespace

std::optional<qmp::Sha256Digest> digest_of_file(const std::string& path) {
    constexpr std::size_t piece_size = 1 << 20;
    std::ifstream file(path_from_utf8(path), std::ios::binary);
    if (!file) return std::nullopt;
    qmp::Sha256 hash;
    std::vector<std::uint8_t> piece(piece_size);
    while (file) {
        file.read(reinterpret_cast<char*>(piece.data()), static_cast<std::streamsize>(piece.size()));
        hash.append({piece.data(), static_cast<std::size_t>(file.gcount())});
    }
    if (!file.eof()) return std::nullopt;
    return hash.finish();
}

const char* to_text(IntegrityOutcome outcome) {
    switch (outcome) {
        case IntegrityOutcome::intact:
            return "Intact";
        case IntegrityOutcome::modified:
            return "Modified";
        case IntegrityOutcome::unreadable:
            return "Unreadable";
        default:
            return "Unchecked";
    }
}

IntegrityCheck::IntegrityCheck(std::string program_path)
    : program_path_(std::move(program_path)), at_start_(digest_of_file(program_path_)) {}

void IntegrityCheck::operator()() {
    if (outcome_ == IntegrityOutcome::modified) return;
    const std::optional<qmp::Sha256Digest> present = digest_of_file(program_path_);
    if (!at_start_ || !present) {
        outcome_ = IntegrityOutcome::unreadable;
    } else {
        outcome_ = *at_start_ == *present ? IntegrityOutcome::intact : IntegrityOutcome::modified;
    }
}

std::string IntegrityCheck::digest() const {
    return at_start_ ? qmp::to_hexadecimal(*at_start_) : std::string();
}

}  // namespace kelvara
