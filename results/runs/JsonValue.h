// A value of JSON in memory.
//
// LLVM's own does not survive a request for memory that is refused while an
// object grows, and the library reads profiles within the application.

#pragma once

#include "llvm/ADT/StringRef.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace corvane {

class JsonValue;
struct JsonField;

using JsonList = std::vector<JsonValue>;

/// The fields in the order of the text. A key may occur twice: the last counts.
using JsonObject = std::vector<JsonField>;

/// Null, true or false, a number, a text, a list or an object.
class JsonValue {
public:
  JsonValue() = default;
  template <typename Value>
  explicit JsonValue(Value value) : data(std::move(value)) {}

  bool isNull() const { return std::holds_alternative<std::monostate>(data); }
  /// Null if it is something else.
  const std::string *asText() const { return std::get_if<std::string>(&data); }
  const JsonList *asList() const { return std::get_if<JsonList>(&data); }
  const JsonObject *asObject() const { return std::get_if<JsonObject>(&data); }

  std::optional<bool> asFlag() const;
  /// Any number, as the nearest one that a double holds.
  std::optional<double> asNumber() const;
  /// A whole number of at least 0.
  std::optional<std::uint64_t> asWhole() const;

private:
  std::variant<std::monostate, bool, std::int64_t, std::uint64_t, double,
               std::string, JsonList, JsonObject>
      data;
};

struct JsonField {
  std::string key;
  JsonValue value;
};

/// The value that counts for \p key; null if there is none.
const JsonValue *findField(const JsonObject &object, llvm::StringRef key);

} // namespace corvane
