// `vintar research control` end to end: a seeded run repeats byte for byte,
// a shuffled control group leaves the Gauquelin sample as it was, and bad
// input ends in a message or a usage error with nothing written.
#include <gtest/gtest.h>

#include <filesystem>

#include "cli/cli_runner.h"
#include "support/test_support.h"

namespace vintar {
namespace {

using testing::ReadBytes;
using testing::RunVintar;

TEST(CliControl, SeededRunsRepeatTheBaseStaysAndBadInputWritesNothing) {
  testing::TempDir dir;
  const std::string project = dir.file("a1.dat"), fresh = dir.file("new.dat");
  testing::CopySampleProject(dir, "gauquelin_a1", "a1");
  auto control = [&](std::vector<std::string> args) {
    args.insert(args.begin(), {"research", "control"});
    return RunVintar(dir, args);
  };
  for (const char* out : {"one.dat", "two.dat"}) {
    const testing::CliRun r =
        control({"--independent", dir.file(out), "--count", "300", "--from", "1900", "--to", "2000", "--seed", "99",
                 "--json"});
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.json()["written"], 300);
    EXPECT_EQ(r.json()["seed"], 99);
  }
  EXPECT_EQ(ReadBytes(dir.file("one.dat")), ReadBytes(dir.file("two.dat")));

  const std::string base = ReadBytes(project) + ReadBytes(dir.file("a1.nat"));
  const testing::CliRun shuffled = control({project, dir.file("shuffled.dat"), "--shuffle", "--json"});
  ASSERT_EQ(shuffled.status, 0) << shuffled.err;
  EXPECT_EQ(shuffled.json()["written"], 2087);
  EXPECT_EQ(ReadBytes(project) + ReadBytes(dir.file("a1.nat")), base);

  const std::vector<std::pair<std::vector<std::string>, int>> bad = {
      {{"--independent", dir.file("one.dat"), "--count", "5", "--from", "1900", "--to", "2000"}, 1},
      {{"--independent", fresh, "--count", "2000000", "--from", "1900", "--to", "2000"}, 1},
      {{project, fresh, "--replicate", "years,daymonth,time,place", "--from", "1900", "--to", "2000"}, 1},
      {{dir.file("missing.dat"), fresh, "--shuffle"}, 1},
      {{project, fresh, "--replicate", "moon"}, 2},
      {{"--independent", fresh, "--shuffle", "--count", "5"}, 2},
      {{"--independent", fresh}, 2},
  };
  for (const auto& [args, status] : bad) {
    const testing::CliRun r = control(args);
    EXPECT_EQ(r.status, status) << args[1] << r.err;
    EXPECT_FALSE(r.err.empty());
    EXPECT_FALSE(std::filesystem::exists(fresh) || std::filesystem::exists(dir.file("new.txt")));
  }
  EXPECT_EQ(ReadBytes(dir.file("one.dat")), ReadBytes(dir.file("two.dat")));
}

}  // namespace
}  // namespace vintar
