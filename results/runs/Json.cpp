// Fields of JSON objects, and numbers and text written as JSON.

#include "results/runs/Json.h"

#include <array>
#include <charconv>
#include <cmath>

using namespace corvane;
using llvm::StringRef;
namespace json = llvm::json;

void corvane::writeNumber(json::OStream &out, double number) {
  if (!std::isfinite(number)) {
    out.value(nullptr);
    return;
  }
  std::array<char, 32> text; // 24 characters are enough for any double
  const auto [end, failed] =
      std::to_chars(text.data(), text.data() + text.size(), number);
  out.rawValue(
      StringRef(text.data(), static_cast<std::size_t>(end - text.data())));
}

void corvane::writeNumberField(json::OStream &out, StringRef key,
                               double number) {
  out.attributeBegin(key);
  writeNumber(out, number);
  out.attributeEnd();
}

void corvane::writeTextField(json::OStream &out, StringRef key,
                             StringRef text) {
  if (json::isUTF8(text))
    out.attribute(key, text);
  else
    out.attribute(key, json::fixUTF8(text));
}

std::optional<std::uint64_t> corvane::wholeNumber(const JsonValue &value) {
  return value.asWhole();
}

std::optional<double> corvane::finiteAmount(const JsonValue &value) {
  const auto number = value.asNumber();
  if (!number || !std::isfinite(*number) || *number < 0.0)
    return std::nullopt;
  return *number + 0.0; // which makes a negative zero a positive one
}

JsonFields::JsonFields(const JsonObject *object) : fields(object) {
  if (!fields)
    complain("it is no object");
}

void JsonFields::complain(std::string what) {
  if (firstProblem.empty())
    firstProblem = std::move(what);
}

void JsonFields::mistaken(StringRef key, const char *expected) {
  complain("\"" + key.str() + "\" is no " + expected);
}

const JsonValue *JsonFields::find(StringRef key) {
  const JsonValue *const value = fields ? findField(*fields, key) : nullptr;
  if (!value)
    complain("\"" + key.str() + "\" is missing");
  return value;
}

bool JsonFields::has(StringRef key) const {
  const JsonValue *const value = fields ? findField(*fields, key) : nullptr;
  return value && !value->isNull();
}

std::uint64_t JsonFields::whole(StringRef key, std::uint64_t max) {
  if (const JsonValue *const value = find(key)) {
    const std::optional<std::uint64_t> number = wholeNumber(*value);
    if (number && *number <= max)
      return *number;
    mistaken(key, "whole number in range");
  }
  return 0;
}

double JsonFields::amount(StringRef key) {
  if (const JsonValue *const value = find(key)) {
    if (const std::optional<double> number = finiteAmount(*value))
      return *number;
    mistaken(key, "number of at least 0");
  }
  return 0.0;
}

std::string JsonFields::text(StringRef key) {
  if (const JsonValue *const value = find(key)) {
    if (const std::string *const string = value->asText())
      return *string;
    mistaken(key, "text");
  }
  return {};
}

bool JsonFields::flag(StringRef key) {
  if (const JsonValue *const value = find(key)) {
    if (const auto truth = value->asFlag())
      return *truth;
    mistaken(key, "true or false");
  }
  return false;
}

llvm::ArrayRef<JsonValue> JsonFields::list(StringRef key) {
  if (const JsonValue *const value = find(key)) {
    if (const JsonList *const elements = value->asList())
      return *elements;
    mistaken(key, "list");
  }
  return {};
}

const JsonObject *JsonFields::object(StringRef key) {
  if (const JsonValue *const value = find(key)) {
    if (const JsonObject *const inner = value->asObject())
      return inner;
    mistaken(key, "object");
  }
  return nullptr;
}
