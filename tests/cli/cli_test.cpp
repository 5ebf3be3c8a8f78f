// The `vintar` command end to end: exit codes, JSON shapes, message texts on
// stderr and in the JSON, and that a failed save damages nothing.
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cstdlib>

#include "cli/cli_runner.h"
#include "support/test_support.h"

namespace vintar {
namespace {

using testing::ReadBytes;
using testing::TempDir;
using testing::WriteBytes;
using testing::CliRun;
using testing::RunVintar;

class Cli : public ::testing::Test {
 protected:
  CliRun Vintar(const std::vector<std::string>& args) { return RunVintar(dir, args); }
  TempDir dir;
};

TEST_F(Cli, ParseGivesTheOutputsByName) {
  struct Case {
    std::vector<std::string> args;
    const char* key;
    double value;
  } cases[] = {
      {{"parse", "date", "August 3rd 1990"}, "year", 1990},
      {{"parse", "date", "12/31/09", "--month-first"}, "year", 1909},
      {{"parse", "date", "29 1 29", "--century-base", "1930"}, "year", 2029},
      {{"parse", "time", "5:07:09 pm"}, "hours", 17},
      {{"parse", "latitude", "35.5"}, "latitude", 35 + 5 / 60.0},
      {{"parse", "longitude", "151E13"}, "longitude", -(151 + 13 / 60.0)},
      {{"parse", "zone", "EST -5"}, "zoneHours", 5},
  };
  for (const auto& c : cases) {
    auto args = c.args;
    args.push_back("--json");
    CliRun r = Vintar(args);
    ASSERT_EQ(r.status, 0) << args[2] << "\n" << r.err;
    auto j = r.json();
    EXPECT_NEAR(j[c.key].get<double>(), c.value, 1e-6) << args[2];
    EXPECT_FALSE(j["failed"].get<bool>());
    EXPECT_TRUE(j["messages"].empty());
  }
  EXPECT_EQ(Vintar({"parse", "zone", "EST -5", "--json"}).json()["mnemonic"], "EST");
}

TEST_F(Cli, AFailedParseExitsOneWithItsMessage) {
  CliRun r = Vintar({"parse", "zone", "14:00", "--json"});
  EXPECT_EQ(r.status, 1);
  auto j = r.json();
  EXPECT_TRUE(j["failed"].get<bool>());
  ASSERT_EQ(j["messages"].size(), 1u);
  EXPECT_EQ(j["messages"][0]["title"], "Error in Time Zone");
  EXPECT_NE(r.err.find("The format of the Time Zone is not recognised."), std::string::npos);
}

TEST_F(Cli, UsageErrorsExitTwo) {
  EXPECT_EQ(Vintar({}).status, 2);
  EXPECT_EQ(Vintar({"parse", "colour", "red"}).status, 2);
  EXPECT_EQ(Vintar({"frobnicate"}).status, 2);
  EXPECT_EQ(Vintar({"prefs", "set", "NoSuchKey", "1"}).status, 2);
  EXPECT_EQ(Vintar({"--help"}).status, 0);
}

TEST_F(Cli, FormatCommands) {
  struct Case {
    std::vector<std::string> args;
    const char* text;
  } cases[] = {
      {{"format", "date", "31", "12", "2009"}, "31 Dec 2009"},
      {{"format", "date", "15", "1", "-99"}, "15 Jan 0100 BC"},
      {{"format", "time", "17", "7", "9", "--ampm"}, "5:07:09 pm"},
      {{"format", "zone", "--", "-5.5"}, "-5:30"},
      {{"format", "latitude", "--", "-33.8667"}, "33S52"},
      {{"format", "longitude", "--", "-151.2167"}, "151E13"},
  };
  for (const auto& c : cases) {
    CliRun r = Vintar(c.args);
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out, std::string(c.text) + "\n");
  }
}

TEST_F(Cli, ProjectShowAndSaveRoundTrip) {
  std::string sample = std::string(VINTAR_SAMPLES_DIR) + "/hollis.dat";
  CliRun show = Vintar({"project", "show", sample, "--json"});
  ASSERT_EQ(show.status, 0) << show.err;
  auto j = show.json();
  int count = j["header"]["recordCount"];
  EXPECT_GT(count, 0);
  EXPECT_EQ(j["records"].size(), static_cast<size_t>(count));
  EXPECT_TRUE(j["records"][0].contains("julianDay"));
  EXPECT_FALSE(j["categoryValues"].empty());

  std::string out = dir.file("copy.dat");
  CliRun save = Vintar({"project", "save", sample, out});
  ASSERT_EQ(save.status, 0) << save.err;
  EXPECT_EQ(ReadBytes(out), ReadBytes(sample));
  EXPECT_EQ(ReadBytes(dir.file("copy.nat")), ReadBytes(std::string(VINTAR_SAMPLES_DIR) + "/hollis.nat"));
}

TEST_F(Cli, VersionOneProjectIsSavedAsVersionTwo) {
  std::string out = dir.file("v2.dat");
  CliRun save = Vintar({"project", "save", std::string(VINTAR_SAMPLES_DIR) + "/ashgrove.dat", out});
  ASSERT_EQ(save.status, 0) << save.err;
  EXPECT_EQ(ReadBytes(dir.file("v2.nat")).rfind("VINTAR 2\r\n", 0), 0u);
  CliRun show = Vintar({"project", "show", out, "--json"});
  ASSERT_EQ(show.status, 0) << show.err;
  EXPECT_EQ(show.json()["header"]["formatVersion"], 2);
}

TEST_F(Cli, PrefsSetAndShow) {
  CliRun set = Vintar({"prefs", "set", "Houses", "6"});
  ASSERT_EQ(set.status, 0) << set.err;
  CliRun show = Vintar({"prefs", "show", "--json"});
  ASSERT_EQ(show.status, 0);
  auto prefs = show.json()["preferences"];
  EXPECT_EQ(prefs["Houses"], "6");
  EXPECT_EQ(prefs["PointOnCusp"], "1");
  EXPECT_NE(ReadBytes(dir.file("config/VINTAR2.INI")).find("Houses=6\r\n"), std::string::npos);
  ASSERT_EQ(Vintar({"prefs", "set", "Houses", ""}).status, 0);
  EXPECT_EQ(ReadBytes(dir.file("config/VINTAR2.INI")).find("Houses="), std::string::npos);
}

TEST_F(Cli, ChartPrintsEveryPointAndTheCusps) {
  CliRun r = Vintar({"chart", "--date", "12 Aug 1958", "--time", "3:40 pm", "--zone", "BST", "--latitude", "53N48",
                     "--longitude", "1W33", "--houses", "6", "--json"});
  ASSERT_EQ(r.status, 0) << r.err;
  auto j = r.json();
  for (const char* key : {"jd", "t", "ramc", "obliquity", "siderealOffset"}) EXPECT_TRUE(j.contains(key)) << key;
  ASSERT_EQ(j["points"].size(), 24u);
  EXPECT_EQ(j["points"][2]["name"], "The Sun");
  EXPECT_NEAR(j["points"][2]["longitude"].get<double>(), 139.4, 0.3) << "the Sun in mid Leo";
  EXPECT_EQ(j["cusps"].size(), 12u);
  EXPECT_EQ(j["houseSystem"], 6);
  EXPECT_NEAR(j["jd"].get<double>(), 2436427.5 + 14.0 / 24 + 40.0 / 1440, 1e-9) << "3:40 pm BST is 14:40 UT";

  CliRun bad = Vintar({"chart", "--date", "12 Aug 1958", "--zone", "BST", "--latitude", "95N00", "--longitude",
                       "1W33", "--json"});
  EXPECT_EQ(bad.status, 1);
  EXPECT_EQ(bad.json()["messages"][0]["title"], "Error in Latitude");
}

TEST_F(Cli, CacheIsBuiltOnceThenCurrentAndDecodes) {
  for (const char* ext : {".dat", ".nat"})
    WriteBytes(dir.file(std::string("hollis") + ext),
               ReadBytes(std::string(VINTAR_SAMPLES_DIR) + "/hollis" + ext));
  std::string project = dir.file("hollis.dat");
  CliRun first = Vintar({"cache", project, "--type", "1", "--json"});
  ASSERT_EQ(first.status, 0) << first.err;
  int records = first.json()["records"];
  EXPECT_EQ(first.json()["recalculated"], records);
  EXPECT_EQ(ReadBytes(dir.file("hollis.gsp")).size(), static_cast<size_t>(records) * 464);

  CliRun again = Vintar({"cache", project, "--type", "1", "--json"});
  ASSERT_EQ(again.status, 0) << again.err;
  EXPECT_EQ(again.json()["recalculated"], 0);
  EXPECT_EQ(again.json()["current"], records);

  CliRun dump = Vintar({"cache-dump", project, "--coordinate", "1", "--type", "1", "--record", "2", "--json"});
  ASSERT_EQ(dump.status, 0) << dump.err;
  auto rec = dump.json()["records"][0];
  EXPECT_EQ(rec["record"], 2);
  EXPECT_EQ(rec["year"], 1929);
  EXPECT_EQ(rec["startPos"].size(), 24u);

  EXPECT_EQ(Vintar({"cache-dump", project, "--coordinate", "2", "--type", "0", "--json"}).status, 1)
      << "no heliocentric transit cache was built";
}

}  // namespace
}  // namespace vintar
