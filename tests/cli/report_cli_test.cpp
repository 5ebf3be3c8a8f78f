// `vintar report`: reports written as PDF files with their page count, and
// requests that must fail with nothing written and the project untouched.
// Skipped when the program was built without its drawing layer.
#include <gtest/gtest.h>

#include <filesystem>

#include "cli/cli_runner.h"
#include "support/test_support.h"

namespace vintar {
namespace {

using testing::RunVintar;

class CliReport : public ::testing::Test {
 protected:
  void SetUp() override {
    const testing::CliRun probe = RunVintar(dir, {"report", "viability", project, "--out", dir.file("probe.pdf")});
    if (probe.err.find("no drawing layer") != std::string::npos) GTEST_SKIP() << "built without the drawing layer";
  }
  testing::TempDir dir;
  std::string project = testing::CopySampleProject(dir, "einstein", "einstein");
};

TEST_F(CliReport, WritesPdfWithPageCount) {
  struct Case {
    std::string name;
    std::vector<std::string> options;
  };
  const std::vector<Case> cases = {
      {"data", {"--kind", "enabled", "--subtitle", "Enabled only"}},
      {"tabulation", {"--point", "Sun", "--point", "Moon", "--style", "2"}},
      {"bar", {"--point", "Mars", "--column", "2"}},
      {"polar", {"--point", "Venus", "--data-type", "1"}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const std::string out = dir.file(c.name + ".pdf");
    std::vector<std::string> args = {"--json", "report", c.name, project, "--out", out};
    args.insert(args.end(), c.options.begin(), c.options.end());
    const testing::CliRun run = RunVintar(dir, args);
    ASSERT_EQ(run.status, 0) << run.err;
    const auto j = run.json();
    EXPECT_EQ(j["report"], c.name);
    EXPECT_EQ(j["out"], out);
    EXPECT_GE(j["pages"].get<int>(), 1);
    EXPECT_EQ(testing::ReadBytes(out).substr(0, 4), "%PDF");
  }
}

TEST_F(CliReport, RefusalsWriteNothing) {
  const std::string before = testing::ReadBytes(project);
  struct Case {
    std::vector<std::string> args;
    int status;
  };
  const std::string out = dir.file("refused.pdf");
  const std::vector<Case> cases = {
      {{"report", "nonsense", project, "--out", out}, 2},
      {{"report", "data", project, "--out", project}, 1},                      // over the project itself
      {{"report", "bar", project, "--point", "Sun", "--column", "3", "--out", out}, 1},  // one column and the total
      {{"report", "tabulation", project, "--point", "Nowhere", "--out", out}, 1},
      {{"report", "dynamic", project, "--out", out}, 1},                       // the sample's natal time is unknown
      {{"report", "data", project, "--kind", "passed", "--out", out}, 2},
  };
  for (size_t i = 0; i < cases.size(); ++i) {
    const Case& c = cases[i];
    SCOPED_TRACE("case " + std::to_string(i) + ": " + c.args[1]);
    const testing::CliRun run = RunVintar(dir, c.args);
    EXPECT_EQ(run.status, c.status) << run.err;
    EXPECT_FALSE(run.err.empty());
    EXPECT_FALSE(std::filesystem::exists(out));
  }
  EXPECT_EQ(testing::ReadBytes(project), before);
}

}  // namespace
}  // namespace vintar
