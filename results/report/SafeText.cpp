// Decodes names as UTF-8 and escapes them character by character.

#include "results/report/SafeText.h"

#include "llvm/ADT/StringExtras.h"
#include "llvm/Support/ConvertUTF.h"

#include <cstdint>

using namespace corvane;

using Character = std::uint32_t;

static constexpr Character notShown = 0xFFFD;

// Takes the first character off the text, or one byte that is no UTF-8.
static Character takeCharacter(std::string_view &text) {
  const auto *const begin = reinterpret_cast<const llvm::UTF8 *>(text.data());
  const llvm::UTF8 *next = begin;
  llvm::UTF32 character = 0;
  if (llvm::convertUTF8Sequence(&next, begin + text.size(), &character,
                                llvm::strictConversion) != llvm::conversionOK) {
    text.remove_prefix(1);
    return notShown;
  }
  text.remove_prefix(static_cast<std::size_t>(next - begin));
  const bool isControl =
      character < 0x20 || (character >= 0x7F && character < 0xA0);
  return isControl ? notShown : character;
}

static bool isAscii(Character character) { return character < 0x80; }

static bool isMarkup(Character character) {
  return character == '&' || character == '<' || character == '>' ||
         character == '"' || character == '\'';
}

static std::string reference(Character character) {
  return "&#" + std::to_string(character) + ";";
}

std::string corvane::htmlText(std::string_view name) {
  std::string text;
  while (!name.empty()) {
    const Character character = takeCharacter(name);
    if (isAscii(character) && !isMarkup(character))
      text += static_cast<char>(character);
    else
      text += reference(character);
  }
  return text;
}

// "\u" and four digits; for characters past U+FFFF a surrogate pair of them.
static std::string escape(Character character) {
  if (character > 0xFFFF) {
    const Character rest = character - 0x10000;
    return escape(0xD800 + (rest >> 10)) + escape(0xDC00 + (rest & 0x3FF));
  }
  return "\\u" + llvm::utohexstr(character, /*LowerCase=*/false, /*Width=*/4);
}

static bool hasOtherMeaning(Character character) {
  return isMarkup(character) || character == '_';
}

static Character fullWidth(Character character) { return character + 0xFEE0; }

std::string corvane::scriptText(std::string_view name) {
  std::string text;
  while (!name.empty()) {
    const Character character = takeCharacter(name);
    if (hasOtherMeaning(character))
      text += escape(fullWidth(character));
    else if (isAscii(character) && character != '\\')
      text += static_cast<char>(character);
    else
      text += escape(character);
  }
  return text;
}

std::string corvane::attributePath(std::string_view path) {
  std::string text;
  for (const char byte : path) {
    if (byte == '"')
      text += reference('"');
    else
      text += byte;
  }
  return text;
}
