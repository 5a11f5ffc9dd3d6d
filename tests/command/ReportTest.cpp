// Tests of corvane report: which places it reads, and which files it writes.

#include "tests/command/Corvane.h"

#include "llvm/Support/JSON.h"

#include <algorithm>

using namespace corvane;
using namespace corvane::test;
using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace {
class Report : public CorvaneTest {
protected:
  /// A field of the JSON that is made of these places.
  std::uint64_t samplesIn(std::vector<std::string> places) const {
    places.insert(places.begin(), "report");
    places.insert(places.end(), {"--json", "-"});
    const Outcome outcome = corvane(places);
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
    llvm::Expected<llvm::json::Value> value = llvm::json::parse(outcome.out);
    if (!value) {
      ADD_FAILURE() << llvm::toString(value.takeError());
      return 0;
    }
    std::uint64_t count = 0;
    for (const llvm::json::Value &configuration :
         *value->getAsObject()->getArray("configurations"))
      for (const llvm::json::Value &version :
           *configuration.getAsObject()->getArray("versions"))
        count += version.getAsObject()->getArray("samples")->size();
    return count;
  }

  std::string logFolder(const std::string &name) const {
    std::filesystem::create_directories(folder.path() / name);
    std::string text = "kernel,x_global,y_global,z_global,x_local,y_local,"
                       "z_local,coarsed_kernel,time\n";
    for (int i = 0; i != 7; ++i)
      text += "scale,1024,,,64,,,baseline,100.000\n"
              "scale,1024,,,64,,,g0S4,50.000\n";
    EXPECT_TRUE(folder.write(name + "/.auto.csv", text));
    return folder.file(name);
  }
};
} // namespace

TEST_F(Report, WritesAPageBesideTheResults) {
  std::vector<RunLine> lines = fasterVariant();
  lines.emplace_back(endAfterLaunches(7));
  const std::string place = tunedFolder("t", lines);
  const Outcome outcome = corvane({"report", place});
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_EQ(outcome.out, "");
  EXPECT_THAT(outcome.err,
              AllOf(StartsWith("corvane: With the fastest versions the kernels "
                               "take 350.0 us instead of 700.0 us: 50 % less."),
                    HasSubstr("corvane: the report is in "),
                    EndsWith("report.html\n")));
  EXPECT_THAT(folder.read("t/report.html"), StartsWith("<!DOCTYPE html>"));
}

TEST_F(Report, WritesThePageWhereItIsToldTo) {
  const std::string place = tunedFolder("t", fasterVariant());
  EXPECT_EQ(
      corvane({"report", place, "--output", folder.file("p q.html")}).exitCode,
      0);
  EXPECT_THAT(folder.read("p q.html"), StartsWith("<!DOCTYPE html>"));
  EXPECT_FALSE(folder.has("t/report.html"));
}

TEST_F(Report, WritesOtherFilesWithoutThePage) {
  const std::string place = tunedFolder("t", fasterVariant());
  const Outcome outcome =
      corvane({"report", place, "--json", folder.file("r.json"), "--csv",
               folder.file("r.csv"), "--t4", folder.file("r.t4")});
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_THAT(folder.read("r.json"), HasSubstr("\"corvane-report\""));
  EXPECT_THAT(folder.read("r.csv"), StartsWith("kernel,sizes,"));
  EXPECT_THAT(folder.read("r.t4"), HasSubstr("\"schema_version\":\"1.0.0\""));
  EXPECT_FALSE(folder.has("t/report.html"));
}

TEST_F(Report, ReadsFoldersRecordsAndLogs) {
  const std::string tuned = tunedFolder("t", fasterVariant());
  const std::string log = logFolder("l");
  EXPECT_EQ(samplesIn({tuned}), 14U);
  EXPECT_EQ(samplesIn({tuned + "/runs/a"}), 14U);
  EXPECT_EQ(samplesIn({tuned + "/runs/a/run.jsonl"}), 14U);
  EXPECT_EQ(samplesIn({log}), 14U);
  EXPECT_EQ(samplesIn({log + "/.auto.csv"}), 14U);
  EXPECT_EQ(samplesIn({tuned, log}), 28U);
}

TEST_F(Report, CountsTheLogOfARunOnlyOnce) {
  const std::string tuned = tunedFolder("t", fasterVariant());
  logFolder("t/runs/a");
  EXPECT_EQ(samplesIn({tuned}), 14U);
  EXPECT_EQ(samplesIn({tuned + "/runs/a"}), 14U);
}

TEST_F(Report, UsesWhatIsWholeOfARecord) {
  const std::string place = tunedFolder("t", fasterVariant());
  const std::string text = folder.read("t/runs/a/run.jsonl");
  ASSERT_TRUE(folder.write("t/runs/a/run.jsonl",
                           text + "nonsense\n" + text.substr(0, 40)));
  const Outcome outcome = corvane({"report", place});
  const auto lines = std::count(text.begin(), text.end(), '\n');
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_THAT(outcome.err, HasSubstr("run.jsonl, line " +
                                     std::to_string(lines + 1) + ": byte 1: "));
  EXPECT_EQ(samplesIn({place}), 14U);
}

TEST_F(Report, SaysWhatItCannotUseOfASingleRecord) {
  const std::string file =
      tunedFolder("t", fasterVariant()) + "/runs/a/run.jsonl";
  ASSERT_TRUE(
      folder.write("t/runs/a/run.jsonl", readBytes(file) + "nonsense\n"));
  EXPECT_THAT(
      corvane({"report", file, "--output", folder.file("page.html")}).err,
      HasSubstr(": byte 1: "));
}

TEST_F(Report, PassesOverForeignFilesInTheRuns) {
  const std::string place = tunedFolder("t", fasterVariant());
  std::filesystem::create_directories(folder.path() / "t/runs/b/run.jsonl");
  ASSERT_TRUE(folder.write("t/runs/photo.jpg", "\xff\xd8"));
  EXPECT_EQ(samplesIn({place}), 14U);
}

TEST_F(Report, RefusesPlacesWithoutResults) {
  const Outcome missing = corvane({"report", folder.file("none")});
  EXPECT_EQ(missing.exitCode, 125);
  EXPECT_THAT(missing.err, HasSubstr("none is not there"));
  std::filesystem::create_directories(folder.path() / "empty");
  const Outcome empty = corvane({"report", folder.file("empty")});
  EXPECT_EQ(empty.exitCode, 125);
  EXPECT_THAT(empty.err, HasSubstr("has no record of a run and no timing log"));
  EXPECT_FALSE(folder.has("empty/report.html"));
}

TEST_F(Report, TellsAFileThatCannotBeWritten) {
  const std::string place = tunedFolder("t", fasterVariant());
  const Outcome outcome =
      corvane({"report", place, "--output", folder.file("no/page.html")});
  EXPECT_EQ(outcome.exitCode, 125);
  EXPECT_THAT(outcome.err, AllOf(HasSubstr("page.html cannot be written: "),
                                 Not(HasSubstr("the report is in"))));
}

TEST_F(Report, LeavesNoOtherFileBehind) {
  const std::string place = tunedFolder("t", fasterVariant());
  ASSERT_EQ(corvane({"report", place}).exitCode, 0);
  ASSERT_EQ(corvane({"report", place}).exitCode, 0);
  std::size_t count = 0;
  for ([[maybe_unused]] const auto &entry :
       std::filesystem::directory_iterator(place))
    ++count;
  EXPECT_EQ(count, 2U); // the runs and the page
}

TEST_F(Report, SaysOneTrueSentenceWhenThereIsNothingToChooseFrom) {
  const std::string place = tunedFolder("t", startOfRun({{"scale", {}}}));
  EXPECT_THAT(corvane({"report", place}).err,
              StartsWith("corvane: No program had variants: there was nothing "
                         "to choose from.\n"));
}
