// The tree of values that configuration files hold: objects, arrays, strings and integers.
//
// Booleans are the strings "true" and "false". Members of an object keep the order of their insertion.
// Typed access throws a ParseException: "Key not found: KEY", or "CONTEXT: Expected TYPE, got TYPE."
// (without "CONTEXT: " when the context is empty), or "Expected true or false.". notation_parser.h reads
// texts.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace qmp::notation {

// By their type codes.
enum class Type : std::uint32_t { integer = 0, string = 1, array = 2, object = 3 };

// "Integer", "String", "Array", "Object"; "invalid type" for any other code.
std::string_view type_name(Type type);

class Value {
  public:
    virtual ~Value() = default;
    Type type() const { return type_; }
    // Appends the value as text; `level` is the depth of the line that it stands on, four blanks each.
    virtual void append_text(std::string& text, std::uint64_t level) const = 0;
    virtual std::unique_ptr<Value> clone() const = 0;
    std::string to_text(std::uint64_t level) const;

  protected:
    explicit Value(Type type) : type_(type) {}
    Value(const Value&) = default;
    Value& operator=(const Value&) = default;

  private:
    Type type_;
};

class Integer final : public Value {
  public:
    explicit Integer(std::int64_t number = 0) : Value(Type::integer), value(number) {}
    void append_text(std::string& text, std::uint64_t level) const override;
    std::unique_ptr<Value> clone() const override;

    std::int64_t value;
};

class String final : public Value {
  public:
    explicit String(std::string text = {}) : Value(Type::string), value(std::move(text)) {}
    void append_text(std::string& text, std::uint64_t level) const override;
    std::unique_ptr<Value> clone() const override;

    std::string value;
};

class Array final : public Value {
  public:
    Array() : Value(Type::array) {}
    Array(Array&&) = default;
    Array& operator=(Array&&) = default;
    void append_text(std::string& text, std::uint64_t level) const override;
    std::unique_ptr<Value> clone() const override;

    void append(std::unique_ptr<Value> element) { elements_.push_back(std::move(element)); }
    void append(std::int64_t element) { append(std::make_unique<Integer>(element)); }
    std::uint64_t size() const { return elements_.size(); }
    const Value& operator[](std::uint64_t index) const { return *elements_[index]; }

  private:
    std::vector<std::unique_ptr<Value>> elements_;
};

// A text can only be read back when its keys hold nothing but identifier characters, quotes and backslashes.
struct Member {
    std::string key;
    std::string comment;  // lines separated by LF; empty for none
    std::unique_ptr<Value> value;
};

class Object final : public Value {
  public:
    Object() : Value(Type::object) {}
    Object(Object&&) = default;
    Object& operator=(Object&&) = default;
    void append_text(std::string& text, std::uint64_t level) const override;
    std::unique_ptr<Value> clone() const override;

    // False, and nothing is inserted, when the key is already there.
    bool try_insert(std::string key, std::unique_ptr<Value> value, std::string comment = {});
    // A key that is already there is a ParseException "Duplicate key in object.".
    void insert(std::string key, std::unique_ptr<Value> value, std::string comment = {});
    void insert_integer(std::string key, std::int64_t value, std::string comment = {});
    void insert_string(std::string key, std::string value, std::string comment = {});
    void insert_bool(std::string key, bool value, std::string comment = {});
    // All members of another object, behind the own ones.
    void insert_members(Object&& other);

    // Null when there is no such member.
    const Value* find(std::string_view key) const;
    const Value& get(std::string_view key) const;
    std::int64_t get_integer(std::string_view key, std::string_view context) const;
    const std::string& get_string(std::string_view key, std::string_view context) const;
    bool get_bool(std::string_view key, std::string_view context) const;
    const Array& get_array(std::string_view key, std::string_view context) const;
    const Object& get_object(std::string_view key, std::string_view context) const;

    const std::vector<Member>& members() const { return members_; }

    std::string comment;  // one line, behind the opening brace; an empty object shows none

  private:
    // Finds keys by views of them.
    struct KeyHash {
        using is_transparent = void;
        std::size_t operator()(std::string_view key) const { return std::hash<std::string_view>{}(key); }
    };

    std::vector<Member> members_;
    std::unordered_map<std::string, std::uint64_t, KeyHash, std::equal_to<>> places_;  // of the members
};

// A value of that type, empty or 0. A code that is no type is a ParseException "Invalid object type: CODE".
std::unique_ptr<Value> make_value(Type type);

// The value itself as another type, or the type error.
std::int64_t as_integer(const Value& value, std::string_view context);
const std::string& as_string(const Value& value, std::string_view context);
bool as_bool(const Value& value, std::string_view context);
const Array& as_array(const Value& value, std::string_view context);
const Object& as_object(const Value& value, std::string_view context);

}  // namespace qmp::notation
