// The research commands end to end on the shipped Gauquelin sample: a point
// list composed and saved, a tabulation read back as JSON, the export, and
// bad input that must end in a message rather than a crash.
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>


#include "cli/cli_runner.h"
#include "support/test_support.h"

namespace vintar {
namespace {

using testing::RunVintar;

class CliResearch : public ::testing::Test {
 protected:
  testing::TempDir dir;
  std::string project = testing::CopySampleProject(dir, "gauquelin_a1", "a1");
};

TEST_F(CliResearch, PointListsTabulationAndExport) {
  const std::string list = dir.file("mars.vpt");
  ASSERT_EQ(RunVintar(dir, {"research", "points", "save", list, "--point", "Mars"}).status, 0);
  const testing::CliRun added =
      RunVintar(dir, {"research", "points", "add", list, "--point", "Sun/Moon", "--part", "Fortune", "--json"});
  ASSERT_EQ(added.status, 0) << added.err;
  const auto names = added.json()["points"];
  ASSERT_EQ(names.size(), 3u);
  EXPECT_EQ(names[2]["name"], "Part of Fortune");

  // Mars in Gauquelin's 36 sectors over the 2,087 champions.
  const testing::CliRun tab = RunVintar(dir, {"research", "tabulate", project, "--point", "Mars", "--data-type", "6",
                                              "--division", "504", "--json"});
  ASSERT_EQ(tab.status, 0) << tab.err;
  const nlohmann::json j = tab.json();
  EXPECT_EQ(j["charts"]["used"], 2087);
  ASSERT_EQ(j["cells"].size(), 36u);
  double sum = 0;
  for (const auto& cell : j["cells"]) sum += cell["counts"][0].get<double>();
  EXPECT_EQ(sum, 2087);
  EXPECT_EQ(j["dof"], 35);
  EXPECT_GT(j["pValue"].get<double>(), 0.0);
  EXPECT_LT(j["pValue"].get<double>(), 0.05);  // the sectors after rising and culmination stand out

  // The charts behind Gauquelin's sectors 1 to 3 (cells 34 to 36) to a new project.
  const testing::CliRun filtered = RunVintar(dir, {"research", "filter", project, "--point", "Mars", "--data-type", "6",
                                                   "--division", "504", "--cells", "34..36", dir.file("rising.dat"),
                                                   "--json"});
  ASSERT_EQ(filtered.status, 0) << filtered.err;
  double rising = 0;
  for (int cell = 34; cell <= 36; ++cell) rising += j["cells"][cell - 1]["counts"][0].get<double>();
  EXPECT_EQ(filtered.json()["written"], rising);
  // The same charts found by the criteria search, with its report as text.
  const std::string report = dir.file("report.txt");
  ASSERT_EQ(RunVintar(dir, {"research", "criteria", project, "--test", "Mars:6:504:34..36", "--report", report,
                            "--passed-only"})
                .status,
            0);
  EXPECT_NE(testing::ReadBytes(report).find("Records which Passed Criteria : " +
                                            std::to_string(static_cast<int>(rising)) + "\r\n"),
            std::string::npos);

  const std::string tsv = dir.file("signs.tsv");
  ASSERT_EQ(RunVintar(dir, {"research", "export", project, "--points", list, "--data-type", "0", "--out", tsv}).status,
            0);
  const std::string text = testing::ReadBytes(tsv);
  EXPECT_NE(text.find("Division Type:\tSign\r\n"), std::string::npos);
  EXPECT_NE(text.find("\r\nAries\t"), std::string::npos);
}

TEST_F(CliResearch, BadInputEndsInAMessage) {
  const std::string junk = dir.file("junk.vpt");
  testing::WriteBytes(junk, std::string(40, '\xff'));
  struct Case {
    std::vector<std::string> args;
    std::string says;
  } cases[] = {
      {{"research", "tabulate", project, "--points", junk}, "junk.vpt"},
      {{"research", "tabulate", project, "--point", "Vulcan"}, "no point named"},
      {{"research", "tabulate", project, "--point", "Mars", "--division", "8", "--harmonic", "7"}, "whole degrees"},
      {{"research", "tabulate", project, "--point", "Mars", "--division", "12", "--harmonic", "0"}, "harmonic"},
      {{"research", "tabulate", project, "--point", "Mars", "--division", "12", "--cells", "0"}, "divisions"},
      {{"research", "tabulate", project, "--point", "Mars", "--point", "Moon", "--data-type", "2", "--division", "50",
        "--anchor", "0"},
       "orb"},
      {{"research", "tabulate", project, "--point", "Mars", "--data-type", "2"}, "insufficient points"},
      {{"research", "tabulate", project, "--data-type", "0"}, "no points selected"},
      {{"research", "filter", project, "--point", "Mars", "--cells", "12..13", dir.file("f.dat")}, "outside the table"},
      {{"research", "filter", project, "--point", "Mars", "--cells", "1", project}, "current project"},
  };
  for (const Case& c : cases) {
    const testing::CliRun r = RunVintar(dir, c.args);
    EXPECT_EQ(r.status, 1) << c.says << ": " << r.err;
    std::string err = r.err;
    std::transform(err.begin(), err.end(), err.begin(), ::tolower);
    EXPECT_NE(err.find(c.says), std::string::npos) << r.err;
  }
}

}  // namespace
}  // namespace vintar
