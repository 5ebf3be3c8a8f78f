// The criteria search and record selection end to end on a copy of the
// Gauquelin sample: a criteria test agrees with the tabulation of the same
// cells, lists round-trip through .vcr files, the passes go to a new
// project, and bad input ends in a message with the project untouched.
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>


#include "cli/cli_runner.h"
#include "support/test_support.h"

namespace vintar {
namespace {

using testing::CliRun;
using testing::RunVintar;

class CliCriteria : public ::testing::Test {
 protected:
  testing::TempDir dir;
  std::string project = testing::CopySampleProject(dir, "gauquelin_a1", "a1");
};

TEST_F(CliCriteria, SearchSelectAndSavePassed) {
  // Mars in Gauquelin's key sectors after rising: the same charts the tabulation counts there.
  const CliRun tab = RunVintar(dir, {"research", "tabulate", project, "--point", "Mars", "--data-type", "6",
                                     "--division", "504", "--json"});
  ASSERT_EQ(tab.status, 0) << tab.err;
  double rising = 0;
  for (int cell = 34; cell <= 36; ++cell) rising += tab.json()["cells"][cell - 1]["counts"][0].get<double>();
  const std::string vcr = dir.file("mars.vcr");
  const CliRun mars = RunVintar(dir, {"research", "criteria", project, "--test", "Mars:6:504:34..36",
                                      "--save-criteria", vcr, "--json"});
  ASSERT_EQ(mars.status, 0) << mars.err;
  EXPECT_EQ(mars.json()["passed"].get<double>(), rising);
  EXPECT_EQ(mars.json()["enabled"], 2087);
  EXPECT_EQ(mars.json()["records"].size(), mars.json()["passed"].get<size_t>());

  // Not, Or and brackets: A And (Not B Or C) leaves A's passes less those of B without C.
  auto passed = [&](std::vector<std::string> args) {
    args.insert(args.begin(), {"research", "criteria", project});
    args.push_back("--json");
    const CliRun r = RunVintar(dir, args);
    EXPECT_EQ(r.status, 0) << r.err;
    return r.status == 0 ? r.json()["passed"].get<int>() : -1;
  };
  const int a = passed({"--criteria", vcr});
  EXPECT_EQ(a, rising);
  const int aAndB = passed({"--test", "Mars:6:504:34..36", "--test", "Sun:0:0:1..6"});
  const int aAndBAndC = passed({"--test", "Mars:6:504:34..36", "--test", "Sun:0:0:1..6", "--test", "Moon:0:0:1"});
  const int bracketed = passed({"--test", "Mars:6:504:34..36", "--open", "--not", "--test", "Sun:0:0:1..6", "--or",
                                "--test", "Moon:0:0:1", "--close"});
  const int flat = passed({"--test", "Mars:6:504:34..36", "--not", "--test", "Sun:0:0:1..6", "--or", "--test",
                           "Moon:0:0:1"});
  EXPECT_GT(aAndB, aAndBAndC);
  EXPECT_EQ(bracketed, a - (aAndB - aAndBAndC));
  EXPECT_GT(flat, bracketed);  // (A And Not B) Or C holds every C, the bracketed list only those in A

  // The passes as a new project; the sample's copy stays as it was.
  const std::string before = testing::ReadBytes(project);
  const CliRun saved = RunVintar(dir, {"research", "criteria", project, "--criteria", vcr, "--save-passed",
                                       dir.file("rising.dat"), "--json"});
  ASSERT_EQ(saved.status, 0) << saved.err;
  const CliRun back = RunVintar(dir, {"research", "select", dir.file("rising.dat"), "--where", "Description:contains:(",
                                      "--json"});
  ASSERT_EQ(back.status, 0) << back.err;
  EXPECT_EQ(back.json()["enabled"].get<double>(), rising);
  EXPECT_EQ(testing::ReadBytes(project), before);

  // Selection by category, and the failures disabled in the project.
  const CliRun football = RunVintar(dir, {"research", "select", project, "--where", "Sport:matches:Football",
                                          "--disable-failed", "--yes", "--json"});
  ASSERT_EQ(football.status, 0) << football.err;
  const int chosen = football.json()["passed"];
  EXPECT_GT(chosen, 0);
  EXPECT_EQ(passed({"--test", "Sun:0:0:1..12"}), chosen);  // only they are enabled now
}

TEST_F(CliCriteria, BadInputEndsInAMessage) {
  testing::WriteBytes(dir.file("junk.vcr"), std::string(700, 'j'));
  testing::WriteBytes(dir.file("taken.dat"), "x");
  const std::vector<std::vector<std::string>> cases = {
      {"criteria", project, "--test", "Sun:0:0:1", "--open", "--test", "Moon:0:0:1"},  // left open
      {"criteria", project, "--close", "--test", "Sun:0:0:1"},
      {"criteria", project, "--test", "Sun:0:0:1", "--and"},
      {"criteria", project, "--test", "Sun:0:0:1", "--not", "--open", "--test", "Moon:0:0:1", "--close"},
      {"criteria", project},                                                           // empty list
      {"criteria", project, "--criteria", dir.file("junk.vcr")},
      {"criteria", project, "--test", "Nobody:0:0:1"},
      {"criteria", project, "--test", "Sun:0:0:13"},                                   // no 13th sign
      {"criteria", project, "--test", "Sun:0:150:1"},
      {"criteria", project, "--pair", "Sun:2:50:1"},                                   // a pair needs two
      {"criteria", project, "--test", "Sun:0:0:1", "--save-passed", dir.file("taken.dat")},
      {"select", project, "--where", "Nothing:=:1"},
      {"select", project, "--where", "Sport:~:x"},
      {"select", project},
  };
  const std::string before = testing::ReadBytes(project);
  for (const auto& args : cases) {
    std::vector<std::string> full{"research"};
    full.insert(full.end(), args.begin(), args.end());
    full.push_back("--disable-failed");
    const CliRun r = RunVintar(dir, full);
    EXPECT_EQ(r.status, 1) << args.back() << "\n" << r.err;
    EXPECT_FALSE(r.err.empty()) << args.back();
  }
  EXPECT_EQ(testing::ReadBytes(project), before);
}

}  // namespace
}  // namespace vintar
