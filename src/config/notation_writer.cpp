// The values as text. Lines end in CR LF, as configuration files do.
#include <algorithm>

#include "config/notation.h"

namespace qmp::notation {
namespace {

void append_indentation(std::string& text, std::uint64_t level) {
    text.append(level * 4, ' ');
}

void append_escaped(std::string& text, const std::string& raw) {
    for (const char c : raw) {
        if (c == '"' || c == '\\') text += '\\';
        text += c;
    }
}

void append_comment(std::string& text, const std::string& comment, std::uint64_t level) {
    text += "\r\n";
    for (std::size_t start = 0; start <= comment.size();) {
        const std::size_t end = std::min(comment.find('\n', start), comment.size());
        append_indentation(text, level);
        text += "//  ";
        text.append(comment, start, end - start);
        text += "\r\n";
        start = end + 1;
    }
}

}  // namespace

std::string Value::to_text(std::uint64_t level) const {
    std::string text;
    append_text(text, level);
    return text;
}

void Integer::append_text(std::string& text, std::uint64_t) const {
    text += std::to_string(value);
}

void String::append_text(std::string& text, std::uint64_t) const {
    text += '"';
    append_escaped(text, value);
    text += '"';
}

void Array::append_text(std::string& text, std::uint64_t level) const {
    const bool integers = std::all_of(elements_.begin(), elements_.end(),
                                      [](const auto& element) { return element->type() == Type::integer; });
    const bool one_string = size() == 1 && elements_.front()->type() == Type::string;
    text += '[';
    if (integers || one_string) {
        for (const auto& element : elements_) {
            if (element != elements_.front()) text += ' ';
            element->append_text(text, level);
        }
        text += ']';
        return;
    }
    text += "\r\n";
    for (const auto& element : elements_) {
        append_indentation(text, level + 1);
        element->append_text(text, level + 1);
        text += "\r\n";
    }
    append_indentation(text, level);
    text += "]\r\n";
}

void Object::append_text(std::string& text, std::uint64_t level) const {
    if (members_.empty()) {
        text += "{}";
        return;
    }
    text += '{';
    if (!comment.empty()) text += "   //  " + comment;
    text += "\r\n";
    for (const Member& member : members_) {
        if (!member.comment.empty()) append_comment(text, member.comment, level + 1);
        append_indentation(text, level + 1);
        append_escaped(text, member.key);
        text += " : ";
        member.value->append_text(text, level + 1);
        text += "\r\n";
    }
    append_indentation(text, level);
    text += "}\r\n";
}

}  // namespace qmp::notation
