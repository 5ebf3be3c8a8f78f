// Control data: uniformity of random hours and dates by chi-square with a
// fixed seed, evenly spaced regular dates, shuffled multisets equal to the
// sample's, replication and shifts field by field, the validation messages,
// and files: bad input writes nothing and the open project stays as it was.
#include "research/control.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <set>
#include <tuple>

#include "core/calendar.h"
#include "core/project_file.h"
#include "support/test_support.h"

namespace vintar {
namespace {

double LocalJD(const EventRecord& r) {
  return JulDay(r.Day, r.Month, r.Year) + (r.Hour + r.Minute / 60.0 + r.Second / 3600.0) / 24.0;
}

// Pearson's chi-square of counts against an even spread.
double ChiSquare(const std::vector<int>& counts) {
  double total = 0, chi = 0;
  for (int c : counts) total += c;
  for (int c : counts) chi += (c - total / counts.size()) * (c - total / counts.size()) / (total / counts.size());
  return chi;
}

class ControlTest : public ::testing::Test {
 protected:
  testing::TestSession ts;
  Session& s = ts.session;
  ProjectState& p = s.project;

  // A base project of n records with distinct dates, times, zones and places.
  void LoadBase(int n) {
    p.Header.Title = "Sample";
    p.Events.assign(n + 1, EventRecord{});
    for (int i = 1; i <= n; ++i) {
      EventRecord& r = p.Events[i];
      r = {"Sample", static_cast<int16_t>(1900 + i), static_cast<uint8_t>(1 + i % 12), static_cast<uint8_t>(1 + i % 28),
           static_cast<uint8_t>(i % 24), static_cast<uint8_t>(i % 60), 7, 2, 3, "Z", float(i % 5 - 2),
           "Town" + std::to_string(i), i * 1.5f - 50, i * 0.5f - 20, kTrue, 0, "Town" + std::to_string(i) + " |"};
    }
    p.Header.RecordCount = n;
    p.ProjectStem = "sample";
    p.Open = true;
  }
  ControlOptions Options(const std::string& number, bool base = false) {
    ControlOptions o;
    o.Number = number;
    o.FromProject = base;
    o.StartDate = "1900";
    o.EndDate = "2000";
    o.Seed = 42;
    return o;
  }
  ControlProject Build(const ControlOptions& o) {
    ControlProject out;
    EXPECT_TRUE(BuildControlProject(s, o, out)) << (ts.sink.messages.empty() ? "" : ts.sink.messages[0].text);
    return out;
  }
};

TEST_F(ControlTest, ValidationMessages) {
  LoadBase(3);
  const std::vector<std::tuple<std::function<void(ControlOptions&)>, const char*>> cases = {
      {[](ControlOptions& o) { o.Number = "0"; }, "Invalid Number"},
      {[](ControlOptions& o) { o.Number = "1000001"; }, "Invalid Number"},
      {[](ControlOptions& o) { o.StartDate = "31 Foo 1900"; }, nullptr},
      {[](ControlOptions& o) { o.Latitude1 = "50N00", o.Latitude2 = "50S00"; }, "Invalid Latitude Range"},
      {[](ControlOptions& o) { o.Latitude1 = o.Latitude2 = "10N00"; }, "Invalid Latitude Range"},
      {[](ControlOptions& o) { o.Longitude1 = "60W00", o.Longitude2 = "120E00"; }, "Invalid Longitude Range"},
      {[](ControlOptions& o) { o.FromProject = true, o.Replicate = {true, true, true, true}; }, "Invalid Replication"},
      {[](ControlOptions& o) { o.FromProject = true, o.Shift = true, o.Period = "1e300"; }, "Invalid Period"},
      {[&](ControlOptions& o) { o.FromProject = true, p.Header.RecordCount = 0; }, "Control Data Generator"},
  };
  for (const auto& [change, title] : cases) {
    ControlOptions o = Options("10");
    change(o);
    ts.sink.Clear();
    ControlProject out;
    EXPECT_FALSE(BuildControlProject(s, o, out)) << ts.sink.messages.size();
    ASSERT_EQ(ts.sink.messages.size(), 1u);
    EXPECT_EQ(ts.sink.messages[0].title, title ? title : ts.sink.messages[0].title);
  }
  // East is negative: 120E00 to 60W00 is a range.
  ControlOptions east = Options("10");
  east.Longitude1 = "120E00", east.Longitude2 = "60W00";
  EXPECT_EQ(Build(east).Header.RecordCount, 10);
}

TEST_F(ControlTest, RandomDataIsUniform) {
  const int n = 24000;
  ControlProject out = Build(Options(std::to_string(n)));
  EXPECT_EQ(out.Header.Title, "24000 Random Events: 1900 to 2000");
  const double start = JulDay(1, 1, 1900), end = JulDay(1, 1, 2000);
  std::vector<int> hours(24), dates(20), places(10);
  for (int i = 1; i <= n; ++i) {
    const EventRecord& r = out.Events[i];
    ASSERT_TRUE(r.Description == "Random Date" && r.ZoneAbbr == "GMT" && r.DetailLevel == 3 && r.Enabled == kTrue);
    const double jd = LocalJD(r);
    ASSERT_TRUE(jd >= start && jd < end);
    ASSERT_TRUE(r.Latitude >= -50 && r.Latitude < 50 && r.Longitude >= -180 && r.Longitude < 180);
    ++hours[r.Hour];
    ++dates[static_cast<int>((jd - start) / (end - start) * 20)];
    ++places[static_cast<int>((r.Latitude + 50) / 10)];
  }
  // Critical values at p = 0.001: 49.73 (23 dof), 43.82 (19), 27.88 (9).
  EXPECT_LT(ChiSquare(hours), 49.73);
  EXPECT_LT(ChiSquare(dates), 43.82);
  EXPECT_LT(ChiSquare(places), 27.88);
  // The seed repeats a run, and the notepad names it; another seed differs.
  ControlOptions other = Options(std::to_string(n));
  EXPECT_EQ(FormatDataRecord(Build(other).Events[n]), FormatDataRecord(out.Events[n]));
  other.Seed = 43;
  EXPECT_NE(FormatDataRecord(Build(other).Events[n]), FormatDataRecord(out.Events[n]));
  EXPECT_NE(out.Notepad.find("seed 42"), std::string::npos);
}

TEST_F(ControlTest, RegularDatesAreEvenlySpacedInsideTheRange) {
  ControlOptions o = Options("239");
  o.RandomDates = 2;
  o.StartDate = "1 Jan 2000";
  o.EndDate = "11 Jan 2000";
  ControlProject out = Build(o);
  for (int i = 1; i <= 239; ++i) {
    ASSERT_EQ(out.Events[i].Description, "Regular Date");
    ASSERT_NEAR(LocalJD(out.Events[i]), JulDay(1, 1, 2000) + i / 24.0, 1e-9) << i;  // hourly, ends excluded
  }
}

TEST_F(ControlTest, ShuffleKeepsEachMarginalExactly) {
  LoadBase(60);
  p.Events[60].Enabled = kFalse;  // not part of the sample
  ControlOptions o = Options("", true);
  o.Shuffle = true;
  ControlProject out = Build(o);
  ASSERT_EQ(out.Header.RecordCount, 59);
  std::multiset<std::tuple<int, int, int, int>> d[2], t[2];
  std::multiset<std::tuple<std::string, float, float, float>> w[2];
  int moved = 0;
  for (int i = 1; i <= 59; ++i) {
    for (int k = 0; k < 2; ++k) {
      const EventRecord& r = k ? out.Events[i] : p.Events[i];
      d[k].insert({r.Year, r.Month, r.Day, r.DayRange});
      t[k].insert({r.Hour, r.Minute, r.Second, r.DetailLevel});
      w[k].insert({r.Placename, r.Longitude, r.Latitude, r.ZoneHours});
    }
    EXPECT_EQ(out.Events[i].Categories, p.Events[i].Categories);
    moved += out.Events[i].Year != p.Events[i].Year;
  }
  EXPECT_TRUE(d[0] == d[1] && t[0] == t[1] && w[0] == w[1]);
  EXPECT_GT(moved, 40);
}

TEST_F(ControlTest, ReplicationKeepsWhatIsTicked) {
  LoadBase(200);
  const std::vector<std::tuple<std::array<bool, 4>, std::string>> cases = {
      {{true, false, false, false}, "Replicated Yr "},
      {{true, true, false, false}, "Replicated Yr Day "},
      {{true, false, true, true}, "Replicated Yr Time Place"},
      {{false, false, true, false}, "Random Date + Replicated Time"},
      {{false, false, false, true}, "Random Date"},
  };
  for (const auto& [rep, description] : cases) {
    ControlOptions o = Options("", true);
    o.Replicate = rep;
    ControlProject out = Build(o);
    EXPECT_EQ(out.Header.Title, "Derived from SAMPLE - 200\r\nSample");
    int sameDay = 0;
    for (int i = 1; i <= 200; ++i) {
      const EventRecord &a = p.Events[i], &b = out.Events[i];
      ASSERT_EQ(b.Description, description);
      ASSERT_TRUE(rep[0] ? b.Year == a.Year : b.Year >= 1900 && b.Year < 2000);
      ASSERT_TRUE(!rep[1] || (b.Month == a.Month && b.Day == a.Day && b.DayRange == a.DayRange));
      sameDay += b.Month == a.Month && b.Day == a.Day;
      ASSERT_TRUE(rep[2] ? b.Hour == a.Hour && b.Minute == a.Minute && b.ZoneHours == a.ZoneHours
                         : b.ZoneAbbr == "GMT");
      ASSERT_EQ(b.Placename == a.Placename && b.Latitude == a.Latitude && b.Longitude == a.Longitude, rep[3]);
    }
    EXPECT_TRUE(rep[1] || sameDay < 10) << description;
  }
}

TEST_F(ControlTest, ShiftMovesTheClockExactly) {
  LoadBase(1);
  p.Events[1] = {"Sample", 2000, 1, 1, 0, 30, 0, 0, 3, "GMT", 0, "Greenwich", 0, 51.5f, kTrue, 0, ""};
  using Moment = std::tuple<int, int, int, int, int, int>;
  const std::vector<std::tuple<const char*, ShiftUnit, Moment>> cases = {
      {"-1", ShiftUnit::Hours, {1999, 12, 31, 23, 30, 0}}, {"90", ShiftUnit::Minutes, {2000, 1, 1, 2, 0, 0}},
      {"1.5", ShiftUnit::Days, {2000, 1, 2, 12, 30, 0}},   {"-45", ShiftUnit::Seconds, {2000, 1, 1, 0, 29, 15}},
      {"366", ShiftUnit::Days, {2001, 1, 1, 0, 30, 0}},
  };
  for (const auto& [period, unit, expected] : cases) {
    ControlOptions o = Options("", true);
    o.Shift = true, o.Period = period, o.Unit = unit;
    o.Replicate = {true, true, true, true};  // no effect under a shift
    const EventRecord r = Build(o).Events[1];
    EXPECT_EQ(Moment(r.Year, r.Month, r.Day, r.Hour, r.Minute, r.Second), expected) << period;
    EXPECT_TRUE(r.Placename == "Greenwich" && r.Description == "Sample");
  }
  ControlOptions o = Options("", true);
  o.Shift = true, o.Period = "-1", o.Unit = ShiftUnit::Hours;
  EXPECT_EQ(Build(o).Header.Title, "Derived from SAMPLE -  Shifted -1 Hours");
}

TEST_F(ControlTest, WritingRefusesBadTargetsAndLeavesTheProjectAlone) {
  LoadBase(5);
  const std::string before = FormatDataRecord(p.Events[3]), target = ts.dir.file("control.dat");
  testing::WriteBytes(ts.dir.file("taken.nat"), "keep");
  const std::vector<std::tuple<std::string, std::string, const char*>> cases = {
      {ts.dir.file("taken.dat"), "10", "File Exists"},
      {ts.dir.file("control.txt"), "10", "File Error"},
      {target, "2000000", "Invalid Number"},
      {ts.dir.file("missing/x.dat"), "10", "Vintar"},
  };
  const auto files = [&] { return std::distance(std::filesystem::recursive_directory_iterator(ts.dir.path()), {}); };
  const auto count = files();
  for (const auto& [path, number, title] : cases) {
    ts.sink.Clear();
    EXPECT_FALSE(GenerateControlData(s, Options(number), path));
    EXPECT_EQ(ts.sink.messages.back().title, title);
    EXPECT_EQ(files(), count) << path;
  }
  ControlOptions o = Options("", true);
  o.Replicate[kReplicateYears] = true;
  ASSERT_TRUE(GenerateControlData(s, o, target));
  EXPECT_TRUE(FormatDataRecord(p.Events[3]) == before && p.Header.Title == "Sample");
  ProjectHeader header;
  std::vector<EventRecord> records;
  CategoryIndex index;
  bool failed = false;
  ReadProjectHeader(s, NatPathFor(target), header, nullptr, failed);
  ASSERT_TRUE(!failed && ReadDataFile(s, target, header, records, index, nullptr, {}, false));
  EXPECT_EQ(header.RecordCount, 5);
  EXPECT_NE(testing::ReadBytes(ts.dir.file("control.txt")).find("seed 42"), std::string::npos);
  EXPECT_FALSE(GenerateControlData(s, o, target));  // never over an existing project
}

}  // namespace
}  // namespace vintar
