// Tests of profiles as they are written, and as they are read after an edit.

#include "results/profile/ProfileFile.h"

#include <gmock/gmock.h>

using namespace corvane;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

static Profile example() {
  Profile profile;
  profile.devices = {{"cpu-haswell", "Maker", "3.1"}, {"gpu", "Other", "550"}};
  profile.programs = {"0123abcd"};
  ProfileEntry tuned;
  tuned.kernel = "matmul";
  tuned.sizes = {2, {512, 256, 0}, {16, 4, 0}};
  tuned.device = 1;
  tuned.use = "g0S4";
  tuned.versions[""] = {83896, 7, Agreement::Equal};
  tuned.versions["g0S4"] = {25692.5, 7, Agreement::WithinBound};
  tuned.versions["l0S4"] = {0, 0, Agreement::Different};
  tuned.interval = RatioInterval{0.25, 0.5};
  ProfileEntry plain;
  plain.kernel = "fill";
  plain.sizes = {1, {7, 0, 0}, {}};
  profile.entries = {tuned, plain};
  return profile;
}

static const char exampleText[] =
    R"({
"format": "corvane-profile",
"version": 1,
"devices": [
  {"name":"cpu-haswell","vendor":"Maker","driver":"3.1"},
  {"name":"gpu","vendor":"Other","driver":"550"}
],
"programs": [
  {"hash":"0123abcd"}
],
"entries": [
  {"kernel":"matmul","use":"g0S4","global":[512,256],"local":[16,4],)"
    R"("device":1,"program":0,)"
    R"("medians":{"baseline":83896,"g0S4":25692.5,"l0S4":0},)"
    R"("interval":[0.25,0.5],)"
    R"("samples":{"baseline":7,"g0S4":7,"l0S4":0},)"
    R"("check":{"baseline":"equal","g0S4":"within bound","l0S4":"different"}},
  {"kernel":"fill","use":null,"global":[7],"local":null,"device":0,)"
    R"("program":0,"medians":{},"interval":null,"samples":{},"check":{}}
]
}
)";

// The error of reading a text; empty if there is none.
static std::string problemOf(llvm::StringRef text) {
  llvm::Expected<Profile> profile = readProfile(text);
  return profile ? std::string() : llvm::toString(profile.takeError());
}

// The error of reading the example with one piece replaced.
static std::string problemWith(const std::string &piece,
                               const std::string &instead) {
  std::string text = exampleText;
  const std::size_t place = text.find(piece);
  if (place == std::string::npos)
    return "the example has no such piece";
  return problemOf(text.replace(place, piece.size(), instead));
}

TEST(ProfileText, IsStable) { EXPECT_EQ(profileText(example()), exampleText); }

TEST(ProfileText, OfAnEmptyProfileCanBeRead) {
  EXPECT_EQ(problemOf(profileText(Profile())), "");
}

TEST(ProfileText, HoldsAnyNames) {
  Profile profile = example();
  profile.devices[0].name = "a\"\n\\\xFF";
  profile.entries[0].kernel = "\x01";
  llvm::Expected<Profile> read = readProfile(profileText(profile));
  ASSERT_TRUE(static_cast<bool>(read));
  EXPECT_EQ(read->devices[0].name, "a\"\n\\\xEF\xBF\xBD");
  EXPECT_EQ(read->entries[0].kernel, "\x01");
}

TEST(ReadProfile, ReadsWhatIsWritten) {
  llvm::Expected<Profile> read = readProfile(exampleText);
  ASSERT_TRUE(static_cast<bool>(read));
  EXPECT_EQ(profileText(*read), exampleText);
}

TEST(ReadProfile, IgnoresFieldsThatItDoesNotKnow) {
  EXPECT_EQ(problemWith(R"("format")", R"("more": [{"a":1}], "format")"), "");
  EXPECT_EQ(problemWith(R"("kernel")", R"("colour":"green","kernel")"), "");
}

TEST(ReadProfile, RefusesWhatIsNoProfile) {
  EXPECT_THAT(problemOf(""), HasSubstr("byte 1"));
  EXPECT_EQ(problemOf("[]"), "it is no object");
  EXPECT_EQ(problemOf("{}"), "\"format\" is missing");
  EXPECT_EQ(problemWith("corvane-profile", "corvane-run"),
            "\"format\" is not \"corvane-profile\"");
  EXPECT_EQ(problemWith("\"version\": 1", "\"version\": 2"),
            "format version 2 is not known here; this is version 1");
  EXPECT_THAT(problemOf(llvm::StringRef(exampleText).drop_back(10)),
              HasSubstr("byte "));
}

TEST(ReadProfile, SaysWhichEntryIsWrong) {
  EXPECT_EQ(problemWith("\"device\":1", "\"device\":2"),
            "entries[0]: \"device\" is 2, and there are 2");
  EXPECT_EQ(problemWith("\"program\":0,\"medians\":{}",
                        "\"program\":1,\"medians\":{}"),
            "entries[1]: \"program\" is 1, and there are 1");
  EXPECT_EQ(problemWith("\"global\":[7]", "\"global\":[]"),
            "entries[1]: \"global\" needs one to three numbers");
  EXPECT_EQ(problemWith("\"use\":\"g0S4\"", "\"use\":4"),
            "entries[0]: \"use\" is no text");
  EXPECT_EQ(problemWith("25692.5", "-1"),
            "entries[0]: \"medians\" of \"g0S4\" is not what it should be");
  EXPECT_EQ(problemWith("within bound", "perhaps"),
            "entries[0]: \"check\" of \"g0S4\" is not what it should be");
  EXPECT_EQ(problemWith("[0.25,0.5]", "[0.25]"),
            "entries[0]: \"interval\" is no pair of numbers");
  EXPECT_EQ(problemWith("{\"hash\":\"0123abcd\"}", "7"),
            "programs[0]: it is no object");
  EXPECT_EQ(problemWith("\"driver\":\"550\"", "\"driver\":550"),
            "devices[1]: \"driver\" is no text");
}
