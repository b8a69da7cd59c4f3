// The values as text. Lines end in CR LF, as configuration files do.
#include <algorithm>

#include "config/notation.h"

namespace qmp::notation {
namespace {

std::string indentation(std::uint64_t level) {
    return std::string(level * 4, ' ');
}

void append_comment(std::string& text, const std::string& comment, const std::string& indent) {
    text += "\r\n";
    for (std::size_t start = 0; start <= comment.size();) {
        const std::size_t end = std::min(comment.find('\n', start), comment.size());
        text += indent + "//  " + comment.substr(start, end - start) + "\r\n";
        start = end + 1;
    }
}

}  // namespace

std::string Integer::to_text(std::uint64_t) const {
    return std::to_string(value);
}

std::string String::to_text(std::uint64_t) const {
    std::string text = "\"";
    for (const char c : value) {
        if (c == '"' || c == '\\') text += '\\';
        text += c;
    }
    return text + '"';
}

std::string Array::to_text(std::uint64_t level) const {
    if (elements_.empty()) return "[]";
    const bool integers = std::all_of(elements_.begin(), elements_.end(),
                                      [](const auto& element) { return element->type() == Type::integer; });
    const bool one_string = size() == 1 && elements_.front()->type() == Type::string;
    if (integers || one_string) {
        std::string text = "[";
        for (const auto& element : elements_) {
            if (text.size() > 1) text += ' ';
            text += element->to_text(level);
        }
        return text + ']';
    }
    std::string text = "[\r\n";
    for (const auto& element : elements_)
        text += indentation(level + 1) + element->to_text(level + 1) + "\r\n";
    return text + indentation(level) + "]\r\n";
}

std::string Object::to_text(std::uint64_t level) const {
    if (members_.empty()) return "{}";
    std::string text = "{";
    if (!comment.empty()) text += "   //  " + comment;
    text += "\r\n";
    const std::string inner = indentation(level + 1);
    for (const Member& member : members_) {
        if (!member.comment.empty()) append_comment(text, member.comment, inner);
        text += inner + member.key + " : " + member.value->to_text(level + 1) + "\r\n";
    }
    return text + indentation(level) + "}\r\n";
}

}  // namespace qmp::notation
