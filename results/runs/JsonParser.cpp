// Parses JSON by recursive descent to a fixed depth.

#include "results/runs/Json.h"

#include "llvm/ADT/StringExtras.h"
#include "llvm/ADT/Twine.h"

#include <charconv>
#include <system_error>
#include <utility>

using namespace corvane;
using llvm::StringRef;
namespace json = llvm::json;

namespace {

/// Walks over one text. Each step takes what it recognises from the front of
/// the rest; after the first mistake all steps return false.
class Parser {
public:
  explicit Parser(StringRef all) : text(all), rest(all) {}

  llvm::Expected<JsonValue> parse();

private:
  bool parseValue(JsonValue &value, unsigned depth);
  bool parseArray(JsonValue &value, unsigned depth);
  bool parseObject(JsonValue &value, unsigned depth);
  bool parseNumber(JsonValue &value);
  bool parseString(std::string &string);
  bool parseEscape(std::string &string);
  bool parseCodePoint(std::string &string);
  bool parseHexadecimal(unsigned &unit);

  void skipSpace() { rest = rest.ltrim(" \t\r\n"); }
  bool take(char character) {
    return rest.consume_front(StringRef(&character, 1));
  }
  bool fail(const char *why) {
    if (!mistake) {
      mistake = why;
      place = text.size() - rest.size() + 1;
    }
    return false;
  }

  StringRef text;
  StringRef rest;
  const char *mistake = nullptr;
  std::size_t place = 0; ///< the byte of the mistake, from 1
};

} // namespace

static void appendUtf8(std::string &string, unsigned point) {
  const auto tail = [point](unsigned shift) {
    return static_cast<char>(0x80 | ((point >> shift) & 0x3F));
  };
  if (point < 0x80) {
    string += static_cast<char>(point);
  } else if (point < 0x800) {
    string += static_cast<char>(0xC0 | (point >> 6));
    string += tail(0);
  } else if (point < 0x10000) {
    string += static_cast<char>(0xE0 | (point >> 12));
    string += tail(6);
    string += tail(0);
  } else {
    string += static_cast<char>(0xF0 | (point >> 18));
    string += tail(12);
    string += tail(6);
    string += tail(0);
  }
}

bool Parser::parseHexadecimal(unsigned &unit) {
  unit = 0;
  for (int digit = 0; digit != 4; ++digit) {
    if (rest.empty() || !llvm::isHexDigit(rest.front()))
      return fail("\\u needs four hexadecimal digits");
    unit = unit * 16 + llvm::hexDigitValue(rest.front());
    rest = rest.drop_front();
  }
  return true;
}

// Parses the digits after "\u". A surrogate pair makes one code point; a
// surrogate that is alone becomes U+FFFD.
bool Parser::parseCodePoint(std::string &string) {
  constexpr unsigned replacement = 0xFFFD;
  unsigned first = 0;
  if (!parseHexadecimal(first))
    return false;
  const bool high = first >= 0xD800 && first < 0xDC00;
  if (!high) {
    const bool low = first >= 0xDC00 && first < 0xE000;
    appendUtf8(string, low ? replacement : first);
    return true;
  }

  const StringRef afterFirst = rest;
  unsigned second = 0;
  if (rest.consume_front("\\u")) {
    if (!parseHexadecimal(second))
      return false;
    if (second >= 0xDC00 && second < 0xE000) {
      appendUtf8(string, 0x10000 + ((first - 0xD800) << 10) + second - 0xDC00);
      return true;
    }
  }
  rest = afterFirst;
  appendUtf8(string, replacement);
  return true;
}

bool Parser::parseEscape(std::string &string) {
  static constexpr StringRef::size_type none = StringRef::npos;
  if (take('u'))
    return parseCodePoint(string);
  const std::size_t index =
      rest.empty() ? none : StringRef("\"\\/bfnrt").find(rest.front());
  if (index == none)
    return fail("this escape is unknown");
  string += "\"\\/\b\f\n\r\t"[index];
  rest = rest.drop_front();
  return true;
}

// Parses a string after its first quotation mark.
bool Parser::parseString(std::string &string) {
  while (!rest.empty()) {
    const StringRef plain =
        rest.take_until([](char c) { return c == '"' || c == '\\'; });
    string += plain;
    rest = rest.drop_front(plain.size());
    if (take('"'))
      return true;
    if (take('\\') && !parseEscape(string))
      return false;
  }
  return fail("a string does not end");
}

bool Parser::parseNumber(JsonValue &value) {
  const StringRef digits = rest.take_while([](char c) {
    return llvm::isDigit(c) || c == '-' || c == '+' || c == '.' || c == 'e' ||
           c == 'E';
  });
  const char *const end = digits.end();
  const auto all = [end](std::from_chars_result result) {
    return result.ec == std::errc() && result.ptr == end;
  };
  std::int64_t whole = 0;
  std::uint64_t positive = 0;
  double number = 0.0;
  if (all(std::from_chars(digits.begin(), end, whole)))
    value = JsonValue(whole);
  else if (all(std::from_chars(digits.begin(), end, positive)))
    value = JsonValue(positive);
  else if (all(std::from_chars(digits.begin(), end, number)))
    value = JsonValue(number);
  else
    return fail("this is no number that can be held");
  rest = rest.drop_front(digits.size());
  return true;
}

// Parses a list after its "[".
bool Parser::parseArray(JsonValue &value, unsigned depth) {
  JsonList elements;
  skipSpace();
  if (!take(']')) {
    do {
      elements.emplace_back();
      if (!parseValue(elements.back(), depth))
        return false;
      skipSpace();
    } while (take(','));
    if (!take(']'))
      return fail("a list needs , or ] here");
  }
  value = JsonValue(std::move(elements));
  return true;
}

// Parses an object after its "{".
bool Parser::parseObject(JsonValue &value, unsigned depth) {
  JsonObject fields;
  skipSpace();
  if (!take('}')) {
    do {
      skipSpace();
      JsonField &field = fields.emplace_back();
      if (!take('"'))
        return fail("an object needs a key here");
      if (!parseString(field.key))
        return false;
      skipSpace();
      if (!take(':'))
        return fail("a key needs : after it");
      if (!parseValue(field.value, depth))
        return false;
      skipSpace();
    } while (take(','));
    if (!take('}'))
      return fail("an object needs , or } here");
  }
  value = JsonValue(std::move(fields));
  return true;
}

bool Parser::parseValue(JsonValue &value, unsigned depth) {
  skipSpace();
  if (depth == 0)
    return fail("lists and objects lie too deep in each other");
  if (take('{'))
    return parseObject(value, depth - 1);
  if (take('['))
    return parseArray(value, depth - 1);
  if (take('"')) {
    std::string string;
    if (!parseString(string))
      return false;
    value = JsonValue(std::move(string));
    return true;
  }
  if (rest.consume_front("true"))
    value = JsonValue(true);
  else if (rest.consume_front("false"))
    value = JsonValue(false);
  else if (rest.consume_front("null"))
    value = JsonValue();
  else
    return parseNumber(value);
  return true;
}

llvm::Expected<JsonValue> Parser::parse() {
  JsonValue value;
  // A scalar at the end of the deepest list takes one level as well.
  if (parseValue(value, maxJsonDepth + 1)) {
    skipSpace();
    if (!rest.empty())
      fail("something follows the value");
  }
  if (mistake)
    return llvm::createStringError(std::errc::invalid_argument, "byte %zu: %s",
                                   place, mistake);
  return value;
}

llvm::Expected<JsonValue> corvane::parseJson(StringRef text) {
  if (json::isUTF8(text))
    return Parser(text).parse();
  const std::string repaired = json::fixUTF8(text);
  return Parser(repaired).parse();
}
