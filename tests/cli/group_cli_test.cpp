// `vintar group search|report` on the royal family sample: the ranked
// patterns, a match's charts, the report written, and refusals that write
// nothing.
#include <gtest/gtest.h>

#include <filesystem>

#include "cli/cli_runner.h"
#include "support/test_support.h"

namespace vintar {
namespace {

using testing::RunVintar;

class CliGroup : public ::testing::Test {
 protected:
  testing::TempDir dir;
  std::string project = testing::CopySampleProject(dir, "royal_family", "royal");
};

TEST_F(CliGroup, SearchRanksPatternsAndListsAMatch) {
  const testing::CliRun r = RunVintar(
      dir, {"--json", "group", "search", project, "--harmonics", "1..16", "--orb", "8", "--match", "1"});
  ASSERT_EQ(r.status, 0) << r.err;
  const auto j = r.json();
  EXPECT_EQ(j["charts"], 16);
  ASSERT_FALSE(j["matches"].empty());
  int previous = 1 << 30;
  for (const auto& m : j["matches"]) {  // charts never rise down the ranking
    EXPECT_LE(m["charts"].get<int>(), previous);
    previous = m["charts"].get<int>();
    EXPECT_GE(m["hits"].get<int>(), 3);
  }
  EXPECT_EQ(j["matches"][0]["charts"], 13);
  EXPECT_FALSE(j["detail"].empty());
  EXPECT_EQ(j["status"].get<std::string>().rfind("Finished Search: ", 0), 0u);
}

// The strips of one pattern: its charts, each marked with its point.
TEST_F(CliGroup, StripsOfAMatch) {
  const std::string out = dir.file("strips.png");
  const testing::CliRun r =
      RunVintar(dir, {"--json", "group", "strips", project, "--harmonic", "6", "--match", "1", "--out", out});
  if (r.err.find("no drawing layer") != std::string::npos) GTEST_SKIP() << "built without the drawing layer";
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(r.json()["strips"].size(), 10u);
  EXPECT_EQ(testing::ReadBytes(out).substr(1, 3), "PNG");
  EXPECT_EQ(RunVintar(dir, {"group", "strips", project, "--harmonic", "6", "--match", "99", "--out", out}).status, 1);
}

TEST_F(CliGroup, ReportIsWrittenAndRefusalsWriteNothing) {
  const std::string out = dir.file("royal.rtf");
  const testing::CliRun r = RunVintar(dir, {"--json", "group", "report", project, "--type", "tribe", "--out", out});
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(r.json()["result"], "written");
  EXPECT_NE(testing::ReadBytes(out).find("Group Type: {\\b Tribal Elders}"), std::string::npos);

  struct Case {
    std::vector<std::string> args;
    int status;
    const char* err;
  };
  const std::vector<Case> cases = {
      {{"group", "report", project, "--type", "club", "--out", dir.file("x.rtf")}, 2, "--type is one of"},
      {{"group", "report", project, "--out", project}, 2, "--out takes an .rtf file"},
      {{"group", "report", project, "--out", dir.file("no/such/folder/r.rtf")}, 1, "could not be written to"},
      {{"group", "search", project, "--points", "Sun,Vulcan"}, 1, "\"Vulcan\" is not a point"},
      {{"group", "search", project, "--harmonics", "12..5"}, 1, "Second harmonic value must be greater then"},
      {{"group", "search", project, "--harmonics", "0..400"}, 2, "--harmonics takes a range"},
  };
  for (const Case& c : cases) {
    const testing::CliRun bad = RunVintar(dir, c.args);
    EXPECT_EQ(bad.status, c.status) << c.err;
    EXPECT_NE(bad.err.find(c.err), std::string::npos) << bad.err;
  }
  EXPECT_FALSE(std::filesystem::exists(dir.file("x.rtf")));
  EXPECT_EQ(testing::ReadBytes(project), testing::ReadBytes(std::string(VINTAR_SAMPLES_DIR) + "/royal_family.dat"));
}

}  // namespace
}  // namespace vintar
