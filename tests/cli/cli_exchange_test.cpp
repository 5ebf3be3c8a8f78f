// The place, atlas, import and export commands end to end: what a script
// reads from their JSON, and their refusals.
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "cli/cli_runner.h"
#include "support/test_support.h"

namespace vintar {
namespace {

using testing::RunVintar;

TEST(CliExchange, AtlasImportsAndExport) {
  testing::TempDir dir;
  // The atlas with the zone of the moment.
  testing::CliRun r = RunVintar(dir, {"atlas", "find", "Ulm, Germany", "--date", "14 Mar 1879", "--json"});
  ASSERT_EQ(r.status, 0) << r.err;
  const nlohmann::json ulm = r.json()["places"][0];
  EXPECT_EQ(ulm["countryCode"], "DE");
  EXPECT_EQ(ulm["zoneName"], "Europe/Berlin");
  EXPECT_TRUE(ulm["isLmt"].get<bool>());
  EXPECT_NEAR(ulm["longitude"].get<double>(), -9.99, 0.01);
  r = RunVintar(dir, {"atlas", "find", "Nowhereville, Germany", "--json"});
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.json()["status"], "City not found");

  // An events list into a new project, out as AAF and back in.
  testing::WriteBytes(dir.file("events.txt"), "\"Born\"\r\n14 MAR 1979 11:30 AM\r\n\r\n\"Bad\"\r\n31 FEB 1990\r\n");
  r = RunVintar(dir, {"import", "events", dir.file("events.txt"), dir.file("events.dat"), "--json"});
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(r.json()["imported"], 1);
  EXPECT_NE(r.json()["report"].get<std::string>().find("The date is not a valid calendar date."), std::string::npos);
  r = RunVintar(dir, {"import", "events", dir.file("events.txt"), dir.file("events.dat"), "--json"});
  EXPECT_EQ(r.status, 1);  // never over an existing project
  r = RunVintar(dir, {"export", "aaf", dir.file("events.dat"), dir.file("events.aaf"), "--json"});
  ASSERT_EQ(r.status, 0) << r.err;
  r = RunVintar(dir, {"import", "aaf", dir.file("events.aaf"), dir.file("back.dat"), "--json"});
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(r.json()["imported"], 1);  // the project has no natal chart to write
  r = RunVintar(dir, {"import", "csv", dir.file("events.txt"), dir.file("rows.dat"), "--format", "no such"});
  EXPECT_EQ(r.status, 1);
  EXPECT_NE(r.err.find("The formats are:"), std::string::npos);
}

}  // namespace
}  // namespace vintar
