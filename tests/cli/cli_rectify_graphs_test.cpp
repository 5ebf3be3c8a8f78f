// `vintar rectify graphs|peaks|angles` end to end on a small project written
// for the test: JSON shapes, the graphs' own consistency, the sort question
// under --yes and --no, and usage errors.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <nlohmann/json.hpp>

#include "core/project_file.h"
#include "cli/cli_runner.h"
#include "support/test_support.h"

namespace vintar {
namespace {

using testing::ReadBytes;
using testing::TempDir;
using testing::WriteBytes;
using testing::CliRun;
using testing::RunVintar;


class RectifyGraphsCli : public ::testing::Test {
 protected:
  // A life of fourteen exactly timed events, in date order unless `shuffled`.
  std::string WriteProject(bool shuffled = false) {
    ProjectHeader h;
    ResetProjectHeader(h);
    h.Title = "Graphs";
    h.Name = "Test Person";
    h.Date = "12 Aug 1958";
    h.Time = "Unknown";
    h.Place = "Leeds";
    h.Latitude = "53N48";
    h.Longitude = "1W33";
    h.ZoneMnemonic = "BST";
    h.ZoneTime = "-1:00";
    std::string dat;
    for (int i = 0; i < 14; ++i) {
      EventRecord e;
      e.Description = "Event " + std::to_string(i + 1);
      e.Year = static_cast<int16_t>(shuffled && i == 0 ? 1999 : 1970 + 2 * i);
      e.Month = static_cast<uint8_t>(1 + (i * 5) % 12);
      e.Day = static_cast<uint8_t>(1 + (i * 7) % 28);
      e.Hour = static_cast<uint8_t>((i * 3) % 24);
      e.DetailLevel = 3;
      e.ZoneAbbr = "GMT";
      e.Placename = "Leeds";
      e.Longitude = 1.55f;
      e.Latitude = 53.8f;
      dat += FormatDataRecord(e);
    }
    const std::string path = dir.file("life.dat");
    WriteBytes(dir.file("life.nat"), FormatNatFile(h));
    WriteBytes(path, dat);
    return path;
  }

  CliRun Vintar(const std::vector<std::string>& args) { return RunVintar(dir, args); }
  TempDir dir;
};

TEST_F(RectifyGraphsCli, GraphsPeaksAndAngles) {
  const std::string project = WriteProject();
  CliRun graphs = Vintar({"--json", "rectify", "graphs", project});
  ASSERT_EQ(graphs.status, 0) << graphs.err;
  const nlohmann::json built = graphs.json();
  ASSERT_EQ(built["graphs"].size(), 3u);
  for (const auto& graph : built["graphs"]) {
    ASSERT_EQ(graph["bars"].size(), 120u);
    double sum = 0.0;
    for (double b : graph["bars"]) sum += b;
    const double total = graph["totalWeight"];
    EXPECT_GT(total, 0.0);
    EXPECT_NEAR(sum, total, total * 1e-5);  // smoothing moves weight, never loses it
    EXPECT_NEAR(graph["mean"].get<double>(), total / 120.0, 1e-5);
  }

  CliRun peaks = Vintar({"--json", "rectify", "peaks", project});
  ASSERT_EQ(peaks.status, 0) << peaks.err;
  EXPECT_EQ(peaks.json()["commonHarmonic"], 12);
  EXPECT_EQ(peaks.json()["peaks"].size(), 3u);

  CliRun angles = Vintar({"--json", "rectify", "angles", project, "--from", "6:00", "--to", "18:00"});
  ASSERT_EQ(angles.status, 0) << angles.err;
  auto a = angles.json();
  EXPECT_EQ(a["common"], peaks.json()["common"]);
  EXPECT_FALSE(a["candidates"].empty());
  double previous = -1.0;
  for (const auto& c : a["candidates"]) {
    EXPECT_GE(c["timeLow"].get<double>(), previous);  // sorted by time
    previous = c["timeLow"];
    EXPECT_GT(c["timeHigh"].get<double>(), 5.5);  // within the limits, give or take the widening
    EXPECT_LT(c["timeLow"].get<double>(), 18.5);
  }
  EXPECT_EQ(Vintar({"rectify", "angles", project}).status, 0);
}

TEST_F(RectifyGraphsCli, TheSortQuestionUsageAndMissingProjects) {
  const std::string project = WriteProject(true);
  const std::string before = ReadBytes(project);
  CliRun no = Vintar({"--no", "--json", "rectify", "graphs", project});
  EXPECT_EQ(no.status, 1);
  EXPECT_NE(no.err.find("Sort Events?"), std::string::npos);
  EXPECT_EQ(Vintar({"--yes", "rectify", "peaks", project}).status, 0);
  EXPECT_EQ(ReadBytes(project), before);  // sorted in memory only
  EXPECT_EQ(Vintar({"rectify", "peaks", project, "--pair", "1,1"}).status, 2);
  EXPECT_EQ(Vintar({"rectify", "peaks", project, "--pair", "1,4"}).status, 2);
  EXPECT_EQ(Vintar({"rectify", "angles", dir.file("none.dat")}).status, 1);
}

}  // namespace
}  // namespace vintar
