// Reads JSON that anyone may have edited, and writes numbers into it.
//
// The writer is LLVM's. Its parser is not used: it takes numbers in the locale
// that the application has set, and the stack limits its nesting.

#pragma once

#include "results/runs/JsonValue.h"

#include "llvm/ADT/ArrayRef.h"
#include "llvm/ADT/StringRef.h"
#include "llvm/Support/Error.h"
#include "llvm/Support/JSON.h"

#include <cstdint>
#include <limits>
#include <optional>
#include <string>

namespace corvane {

/// How deep arrays and objects may lie in each other.
inline constexpr unsigned maxJsonDepth = 16;

/// The value that \p text is, white space around it allowed. Bytes that are no
/// UTF-8 become U+FFFD. Of keys that occur twice the last one counts. An error
/// says what was wrong and at which byte, counted from 1.
llvm::Expected<JsonValue> parseJson(llvm::StringRef text);

/// Writes \p number so that it is read back as the same double, whatever the
/// locale; infinities and NaNs, which JSON does not have, as null.
void writeNumber(llvm::json::OStream &out, double number);
void writeNumberField(llvm::json::OStream &out, llvm::StringRef key,
                      double number);

/// Writes \p text with bytes that are no UTF-8 replaced by U+FFFD.
void writeTextField(llvm::json::OStream &out, llvm::StringRef key,
                    llvm::StringRef text);

/// The fields of one object, each with a default for what is missing or of
/// another type. The first thing that was wrong is remembered, so that a caller
/// reads all fields and then asks once.
class JsonFields {
public:
  /// \p object must outlive this; null has no fields and is itself a problem.
  explicit JsonFields(const JsonObject *object);

  /// A whole number from 0 to \p max.
  std::uint64_t
  whole(llvm::StringRef key,
        std::uint64_t max = std::numeric_limits<std::uint64_t>::max());
  std::uint32_t whole32(llvm::StringRef key) {
    return static_cast<std::uint32_t>(
        whole(key, std::numeric_limits<std::uint32_t>::max()));
  }
  /// A number of at least 0 that is finite.
  double amount(llvm::StringRef key);
  std::string text(llvm::StringRef key);
  bool flag(llvm::StringRef key);
  /// The elements; none when there is no such list.
  llvm::ArrayRef<JsonValue> list(llvm::StringRef key);
  /// Null when there is no such object.
  const JsonObject *object(llvm::StringRef key);

  /// Whether the field is there and not null, which is no problem either way.
  bool has(llvm::StringRef key) const;

  /// Remembers \p what unless something was wrong before.
  void complain(std::string what);
  /// What was wrong first; empty when nothing was.
  const std::string &problem() const { return firstProblem; }

private:
  const JsonValue *find(llvm::StringRef key);
  void mistaken(llvm::StringRef key, const char *expected);

  const JsonObject *fields;
  std::string firstProblem;
};

/// \p value as a whole number from 0; none when it is something else.
std::optional<std::uint64_t> wholeNumber(const JsonValue &value);

/// \p value as a finite number of at least 0; none when it is something else.
std::optional<double> finiteAmount(const JsonValue &value);

} // namespace corvane
