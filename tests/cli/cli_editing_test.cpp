// The project, record, natal and category commands end to end, and the
// --no answer that must never take an OK/Cancel box's OK.
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>


#include "cli/cli_runner.h"
#include "support/test_support.h"

namespace vintar {
namespace {

using testing::RunVintar;

TEST(CliEditing, ProjectRecordNatalAndCategoryCommands) {
  testing::TempDir dir;
  const std::string fam = dir.file("fam.dat"), ash = dir.file("ashgrove.dat");
  testing::CopySampleProject(dir, "ashgrove", "ashgrove");
  struct Step {
    std::vector<std::string> args;
    int status;
  } steps[] = {
      {{"project", "new", fam, "--title", "Family"}, 0},
      {{"record", "add", fam, "--description", "Wedding", "--date", "3 May 1985"}, 0},
      {{"record", "add", fam, "--description", "Move", "--date", "1 Jan 1980"}, 0},
      {{"record", "delete", fam, "1", "--no"}, 1},  // --no is Cancel: nothing deleted
      {{"project", "sort", fam, "--by", "date"}, 0},
      {{"natal", "set", fam, "--name", "Ann", "--date", "12 Aug 1958", "--time", "3:40 pm", "--zone", "BST",
        "--place", "Leeds", "--latitude", "53N48", "--longitude", "1W33"},
       0},
      {{"category", "add", fam, "--name", "Notes"}, 0},
      {{"project", "split", ash, "--first", "5", "--last", "99", "--to", dir.file("tail.dat")}, 0},  // clamped to the end
      {{"project", "merge", fam, dir.file("missing.dat")}, 1},
  };
  for (const Step& s : steps) {
    const testing::CliRun r = RunVintar(dir, s.args);
    EXPECT_EQ(r.status, s.status) << s.args[0] << " " << s.args[1] << ": " << r.err;
  }
  const testing::CliRun list = RunVintar(dir, {"record", "list", fam, "--json"});
  ASSERT_EQ(list.status, 0) << list.err;
  const nlohmann::json j = list.json();
  ASSERT_EQ(j["records"].size(), 2u);
  EXPECT_EQ(j["records"][0]["line"].get<std::string>().rfind("1) Move", 0), 0u);  // sorted by date
  const testing::CliRun show = RunVintar(dir, {"project", "show", fam, "--json"});
  EXPECT_EQ(show.json()["header"]["name"], "Ann") << show.out;
}

}  // namespace
}  // namespace vintar
