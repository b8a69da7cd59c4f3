#include "config/notation.h"

#include <utility>

#include "errors/exception.h"

namespace qmp::notation {
namespace {

// The value as the class of its type.
template <typename Class>
const Class& checked(const Value& value, Type expected, std::string_view context) {
    if (value.type() == expected) return static_cast<const Class&>(value);
    std::string message(context);
    if (!context.empty()) message += ": ";
    message += "Expected ";
    message += type_name(expected);
    message += ", got ";
    message += type_name(value.type());
    throw ParseException("", message + ".");
}

}  // namespace

std::string_view type_name(Type type) {
    switch (type) {
        case Type::integer:
            return "Integer";
        case Type::string:
            return "String";
        case Type::array:
            return "Array";
        case Type::object:
            return "Object";
    }
    return "invalid type";
}

std::unique_ptr<Value> make_value(Type type) {
    switch (type) {
        case Type::integer:
            return std::make_unique<Integer>();
        case Type::string:
            return std::make_unique<String>();
        case Type::array:
            return std::make_unique<Array>();
        case Type::object:
            return std::make_unique<Object>();
    }
    throw ParseException("", "Invalid object type: " + std::to_string(static_cast<std::uint32_t>(type)));
}

std::int64_t as_integer(const Value& value, std::string_view context) {
    return checked<Integer>(value, Type::integer, context).value;
}

const std::string& as_string(const Value& value, std::string_view context) {
    return checked<String>(value, Type::string, context).value;
}

bool as_bool(const Value& value, std::string_view context) {
    const std::string& text = as_string(value, context);
    if (text == "true") return true;
    if (text == "false") return false;
    throw ParseException("", "Expected true or false.");
}

const Array& as_array(const Value& value, std::string_view context) {
    return checked<Array>(value, Type::array, context);
}

const Object& as_object(const Value& value, std::string_view context) {
    return checked<Object>(value, Type::object, context);
}

std::unique_ptr<Value> Integer::clone() const {
    return std::make_unique<Integer>(value);
}

std::unique_ptr<Value> String::clone() const {
    return std::make_unique<String>(value);
}

std::unique_ptr<Value> Array::clone() const {
    auto copy = std::make_unique<Array>();
    for (const auto& element : elements_) copy->append(element->clone());
    return copy;
}

std::unique_ptr<Value> Object::clone() const {
    auto copy = std::make_unique<Object>();
    copy->comment = comment;
    for (const Member& member : members_) copy->insert(member.key, member.value->clone(), member.comment);
    return copy;
}

bool Object::try_insert(std::string key, std::unique_ptr<Value> value, std::string member_comment) {
    if (!places_.emplace(key, members_.size()).second) return false;
    members_.push_back({std::move(key), std::move(member_comment), std::move(value)});
    return true;
}

void Object::insert(std::string key, std::unique_ptr<Value> value, std::string member_comment) {
    if (!try_insert(std::move(key), std::move(value), std::move(member_comment)))
        throw ParseException("", "Duplicate key in object.");
}

void Object::insert_integer(std::string key, std::int64_t value, std::string member_comment) {
    insert(std::move(key), std::make_unique<Integer>(value), std::move(member_comment));
}

void Object::insert_string(std::string key, std::string value, std::string member_comment) {
    insert(std::move(key), std::make_unique<String>(std::move(value)), std::move(member_comment));
}

void Object::insert_bool(std::string key, bool value, std::string member_comment) {
    insert_string(std::move(key), value ? "true" : "false", std::move(member_comment));
}

void Object::insert_members(Object&& other) {
    for (Member& member : other.members_)
        insert(std::move(member.key), std::move(member.value), std::move(member.comment));
    other.members_.clear();
    other.places_.clear();
}

const Value* Object::find(std::string_view key) const {
    const auto place = places_.find(key);
    return place == places_.end() ? nullptr : members_[place->second].value.get();
}

const Value& Object::get(std::string_view key) const {
    if (const Value* value = find(key)) return *value;
    throw ParseException("", "Key not found: " + std::string(key));
}

std::int64_t Object::get_integer(std::string_view key, std::string_view context) const {
    return as_integer(get(key), context);
}

const std::string& Object::get_string(std::string_view key, std::string_view context) const {
    return as_string(get(key), context);
}

bool Object::get_bool(std::string_view key, std::string_view context) const {
    return as_bool(get(key), context);
}

const Array& Object::get_array(std::string_view key, std::string_view context) const {
    return as_array(get(key), context);
}

const Object& Object::get_object(std::string_view key, std::string_view context) const {
    return as_object(get(key), context);
}

}  // namespace qmp::notation
