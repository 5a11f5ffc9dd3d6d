// Tests of JSON that anyone may have written, and of numbers in any locale.

#include "results/runs/Json.h"

#include "llvm/Support/Format.h"
#include "llvm/Support/raw_ostream.h"

#include <gmock/gmock.h>

#include <clocale>
#include <cmath>
#include <cstdlib>

using namespace corvane;
using testing::HasSubstr;
using testing::StartsWith;

static std::string numberText(const JsonValue &value) {
  if (const auto whole = value.asWhole())
    return std::to_string(*whole);
  const double number = value.asNumber().value_or(0.0);
  std::string text;
  llvm::raw_string_ostream out(text);
  if (number == std::floor(number) && std::fabs(number) < 1e19)
    out << llvm::format("%.0f", number);
  else
    out << llvm::format("%g", number);
  return out.str();
}

static std::string printed(const JsonValue &value);

// Of fields of one key, only the one that counts.
static std::string printed(const JsonObject &object) {
  std::string text;
  for (const JsonField &field : object)
    if (findField(object, field.key) == &field.value)
      text += (text.empty() ? "" : ",") + ("\"" + field.key + "\":") +
              printed(field.value);
  return "{" + text + "}";
}

static std::string printed(const JsonList &list) {
  std::string text;
  for (const JsonValue &element : list)
    text += (text.empty() ? "" : ",") + printed(element);
  return "[" + text + "]";
}

static std::string printed(const JsonValue &value) {
  if (value.isNull())
    return "null";
  if (const auto flag = value.asFlag())
    return *flag ? "true" : "false";
  if (const auto *text = value.asText())
    return "\"" + *text + "\"";
  if (const auto *list = value.asList())
    return printed(*list);
  if (const auto *object = value.asObject())
    return printed(*object);
  return numberText(value);
}

static std::string reprinted(llvm::StringRef text) {
  llvm::Expected<JsonValue> value = parseJson(text);
  return value ? printed(*value)
               : "error: " + llvm::toString(value.takeError());
}

TEST(Json, ReadsValuesOfEveryType) {
  EXPECT_EQ(reprinted(" { \"a\" : [ 1 , -2, true,false,null, \"x\" ] } "),
            "{\"a\":[1,-2,true,false,null,\"x\"]}");
  EXPECT_EQ(reprinted("[]"), "[]");
  EXPECT_EQ(reprinted("{}"), "{}");
}

TEST(Json, ReadsTheLargestNumbers) {
  EXPECT_EQ(reprinted("18446744073709551615"), "18446744073709551615");
  EXPECT_EQ(reprinted("-9223372036854775808"), "-9223372036854775808");
  EXPECT_THAT(reprinted("1e999"), StartsWith("error: byte 1:"));
  EXPECT_THAT(reprinted("1-2"), StartsWith("error: byte 1:"));
}

TEST(Json, ReadsEscapes) {
  EXPECT_EQ(*parseJson(R"("\"\\\/\b\f\n\r\t\u0041\u00e9\u20AC\ud83d\ude00")")
                 ->asText(),
            "\"\\/\b\f\n\r\tA\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80");
}

TEST(Json, ReplacesHalfASurrogatePair) {
  const std::string replaced = "\xEF\xBF\xBD";
  EXPECT_EQ(*parseJson(R"("\ud83dx")")->asText(), replaced + "x");
  EXPECT_EQ(*parseJson(R"("\ud83d\u0041")")->asText(), replaced + "A");
  EXPECT_EQ(*parseJson(R"("\ude00")")->asText(), replaced);
}

TEST(Json, ReplacesBytesThatAreNoUtf8) {
  EXPECT_EQ(*parseJson("\"a\xFF\"")->asText(), "a\xEF\xBF\xBD");
}

TEST(Json, SaysWhereAMistakeIs) {
  EXPECT_EQ(reprinted("{\"a\" 1}"), "error: byte 6: a key needs : after it");
  EXPECT_EQ(reprinted("[1 2]"), "error: byte 4: a list needs , or ] here");
  EXPECT_EQ(reprinted("{} x"), "error: byte 4: something follows the value");
  EXPECT_EQ(reprinted("\"abc"), "error: byte 5: a string does not end");
  EXPECT_EQ(reprinted("\"\\x\""), "error: byte 3: this escape is unknown");
  EXPECT_THAT(reprinted(""), StartsWith("error: byte 1:"));
  EXPECT_THAT(reprinted("\"\\u12g4\""), HasSubstr("hexadecimal"));
}

TEST(Json, RefusesTextThatIsNestedTooDeep) {
  const auto nested = [](std::size_t depth) {
    return std::string(depth, '[') + std::string(depth, ']');
  };
  EXPECT_EQ(reprinted(nested(maxJsonDepth)), nested(maxJsonDepth));
  EXPECT_THAT(reprinted(nested(maxJsonDepth + 2)), HasSubstr("too deep"));
  // Deep enough to overflow the stack of a reader that recurses.
  EXPECT_THAT(reprinted(std::string(10'000'000, '[')), HasSubstr("too deep"));
}

static std::string written(double number) {
  std::string text;
  llvm::raw_string_ostream stream(text);
  llvm::json::OStream out(stream);
  writeNumber(out, number);
  return stream.str();
}

TEST(Json, WritesNumbersThatAreReadBackAsTheyWere) {
  for (double number : {0.0, 0.1, 1.0 / 3.0, 1e-300, 123456789.125, 5e300})
    EXPECT_EQ(*finiteAmount(*parseJson(written(number))), number);
  EXPECT_EQ(written(12.5), "12.5");
  EXPECT_EQ(written(*finiteAmount(*parseJson("-0.0"))), "0");
  EXPECT_EQ(written(std::numeric_limits<double>::infinity()), "null");
}

TEST(Json, KnowsNoDecimalComma) {
  if (!std::setlocale(LC_NUMERIC, "de_DE.UTF-8"))
    GTEST_SKIP() << "there is no locale with a decimal comma";
  ASSERT_STREQ(std::localeconv()->decimal_point, ",");
  EXPECT_EQ(*finiteAmount(*parseJson("12.5")), 12.5);
  EXPECT_EQ(written(12.5), "12.5");
}

TEST(JsonFields, TellsTheFirstProblem) {
  const JsonValue value = *parseJson(R"({"a":-1,"b":"x","c":5000000000})");
  JsonFields fields(value.asObject());
  EXPECT_EQ(fields.text("b"), "x");
  EXPECT_EQ(fields.problem(), "");
  EXPECT_EQ(fields.whole32("c"), 0U);
  EXPECT_EQ(fields.whole("a"), 0U);
  EXPECT_EQ(fields.problem(), "\"c\" is no whole number in range");
}

TEST(JsonFields, HaveAProblemWithoutAnObject) {
  JsonFields fields(nullptr);
  EXPECT_FALSE(fields.has("a"));
  EXPECT_EQ(fields.amount("a"), 0.0);
  EXPECT_EQ(fields.problem(), "it is no object");
}
