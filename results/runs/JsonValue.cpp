// Looks into values of JSON.

#include "results/runs/JsonValue.h"

#include <algorithm>

using namespace corvane;

std::optional<bool> JsonValue::asFlag() const {
  if (const bool *const flag = std::get_if<bool>(&data))
    return *flag;
  return std::nullopt;
}

std::optional<double> JsonValue::asNumber() const {
  if (const auto *const number = std::get_if<double>(&data))
    return *number;
  if (const auto *const whole = std::get_if<std::int64_t>(&data))
    return static_cast<double>(*whole);
  if (const auto *const positive = std::get_if<std::uint64_t>(&data))
    return static_cast<double>(*positive);
  return std::nullopt;
}

std::optional<std::uint64_t> JsonValue::asWhole() const {
  if (const auto *const positive = std::get_if<std::uint64_t>(&data))
    return *positive;
  const auto *const whole = std::get_if<std::int64_t>(&data);
  if (whole && *whole >= 0)
    return static_cast<std::uint64_t>(*whole);
  return std::nullopt;
}

const JsonValue *corvane::findField(const JsonObject &object,
                                    llvm::StringRef key) {
  const auto found =
      std::find_if(object.rbegin(), object.rend(),
                   [key](const JsonField &field) { return key == field.key; });
  return found == object.rend() ? nullptr : &found->value;
}
