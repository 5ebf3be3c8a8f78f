// The position cache: the 464-byte record layout, the file names, which
// records a run recalculates (field by field by time accuracy), what the
// positions are against direct ephemeris calls, stations inside a range, and
// damaged files, cancels and dates beyond the ephemeris.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <filesystem>

#include "calc/astro.h"
#include "calc/cache.h"
#include "core/calendar.h"
#include "calc/dynamic.h"
#include "calc/ephemeris.h"
#include "calc/oracle.h"
#include "support/test_support.h"

namespace vintar {
namespace {

using testing::ReadBytes;
using testing::TempDir;
using testing::TestSession;
using testing::WriteBytes;

double Oracle(int body, double jd, double* speed = nullptr) { return testing::LibraryLongitude(body, jd, speed); }

EventRecord Event(int year, int month, int day, int accuracy, int range = 0, int hour = 12, int minute = 0) {
  EventRecord e;
  e.Description = "Event";
  e.Year = static_cast<int16_t>(year);
  e.Month = static_cast<uint8_t>(month);
  e.Day = static_cast<uint8_t>(day);
  e.DetailLevel = static_cast<uint8_t>(accuracy);
  e.DayRange = static_cast<uint8_t>(range);
  e.Hour = static_cast<uint8_t>(hour);
  e.Minute = static_cast<uint8_t>(minute);
  e.ZoneHours = -1.0f;
  e.Longitude = -13.4f;
  e.Latitude = 52.5f;
  return e;
}

// A project held in memory with its path in a folder of its own.
struct Project {
  TestSession t;
  TempDir folder;
  Session& s = t.session;
  explicit Project(const std::vector<EventRecord>& events) {
    SetEphemerisPath(s.prefs.SwissEphPath);
    s.project.ProjectPath = folder.file("life.dat");
    s.project.Header.Date = "1 Jan 1968";  // progressions need a natal date
    s.project.Events.assign(1, EventRecord{});
    for (EventRecord e : events) {
      e.JulianDay = RecordJulianDay(e);
      s.project.Events.push_back(e);
    }
    s.project.Header.RecordCount = static_cast<int32_t>(events.size());
  }
  EventRecord& operator[](int n) { return s.project.Events[n]; }
  // A run as after opening the project: the validity table is clear.
  CacheRunStats Run(int coordinate = kGeocentric, int type = kTransits, Progress* progress = nullptr) {
    s.cache.Clear();
    CacheRunStats stats;
    bool cancelled = true;
    CalcEvents(s, coordinate, type, kNaibod, cancelled, progress, &stats);
    EXPECT_FALSE(cancelled);
    return stats;
  }
  std::string File(int coordinate = kGeocentric, int type = kTransits) {
    return CacheFileName(s.project.ProjectPath, coordinate, type);
  }
  EventPositionRecord Record(int n, int coordinate = kGeocentric, int type = kTransits) {
    EventPositionRecord r;
    EXPECT_TRUE(ReadCacheRecord(File(coordinate, type), n, r)) << n;
    return r;
  }
};

float FloatAt(const unsigned char* p) {
  uint32_t u = p[0] | p[1] << 8 | p[2] << 16 | static_cast<uint32_t>(p[3]) << 24;
  float f;
  std::memcpy(&f, &u, 4);
  return f;
}

TEST(CacheRecord, BytesLieWhereTheLayoutPutsThem) {
  EventPositionRecord r;
  r.Year = 0x1234;
  r.Zone = -10.5f;
  r.RangeDays = 7;
  r.PrecessionArcsec = -0x01020304;
  r.StartPos[1] = 123.25f;
  r.EndPos[1] = 124.5f;
  r.Motion[1] = -2;
  r.StartLat[1] = -1.0f;
  r.EndLat[1] = 0.75f;
  r.EndLat[24] = 359.5f;
  unsigned char bytes[kCacheRecordSize + 4];
  std::memset(bytes, 0x5A, sizeof bytes);
  EncodeCacheRecord(r, bytes);
  EXPECT_EQ(bytes[0], 0x34);
  EXPECT_EQ(bytes[1], 0x12);
  EXPECT_EQ(FloatAt(bytes + 14), -10.5f);
  EXPECT_EQ(bytes[18], 7);
  EXPECT_EQ(bytes[28], 0xFC);  // -0x01020304 in two's complement, low byte first
  EXPECT_EQ(bytes[31], 0xFE);
  EXPECT_EQ(FloatAt(bytes + 32), 123.25f);
  EXPECT_EQ(FloatAt(bytes + 128), 124.5f);
  EXPECT_EQ(bytes[224], 0xFE);
  EXPECT_EQ(bytes[225], 0xFF);
  EXPECT_EQ(FloatAt(bytes + 272), -1.0f);
  EXPECT_EQ(FloatAt(bytes + 368), 0.75f);
  EXPECT_EQ(FloatAt(bytes + 460), 359.5f);
  EXPECT_EQ(bytes[kCacheRecordSize], 0x5A) << "nothing written past 464 bytes";

  EventPositionRecord back = DecodeCacheRecord(bytes);
  unsigned char again[kCacheRecordSize];
  EncodeCacheRecord(back, again);
  EXPECT_EQ(std::memcmp(bytes, again, kCacheRecordSize), 0);
  EXPECT_EQ(back.PrecessionArcsec, -0x01020304);
}

TEST(CacheRecord, FileNamesOfTheEightCaches) {
  const char* names[3][4] = {{}, {"/p/life.geo", "/p/life.gsp", "/p/life.gtp", "/p/life.gdi"},
                             {"/p/life.heo", "/p/life.hsp", "/p/life.htp", "/p/life.hdi"}};
  for (int c = 1; c <= 2; ++c)
    for (int type = 0; type <= 3; ++type) EXPECT_EQ(CacheFileName("/p/life.dat", c, type), names[c][type]);
}

TEST(CalcEvents, ProjectWithoutRecordsCreatesNothing) {
  Project p({});
  EXPECT_EQ(p.Run().Recalculated, 0);
  EXPECT_TRUE(std::filesystem::is_empty(p.folder.path()));
}

// Only the fields that the record's accuracy uses make it stale, and an
// edit recalculates that one record alone.
TEST(CalcEvents, StalenessFollowsTheTimeAccuracy) {
  struct Case {
    const char* what;
    int accuracy;
    void (*edit)(EventRecord&);
    bool stale;
  } cases[] = {
      {"zone, date only", 0, [](EventRecord& e) { e.ZoneHours = 5; }, false},
      {"zone, zone known", 1, [](EventRecord& e) { e.ZoneHours = 5; }, true},
      {"minute, zone known", 1, [](EventRecord& e) { e.Minute = 30; }, false},
      {"minute, exact time", 2, [](EventRecord& e) { e.Minute = 30; }, true},
      {"place, exact time", 2, [](EventRecord& e) { e.Latitude = 10; }, false},
      {"place, time and place", 3, [](EventRecord& e) { e.Latitude = 10; }, true},
      {"day", 0, [](EventRecord& e) { e.Day = 2; }, true},
      {"range", 3, [](EventRecord& e) { e.DayRange = 1; }, true},
      {"accuracy", 1, [](EventRecord& e) { e.DetailLevel = 0; }, true},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    Project p({Event(1990, 3, 1, 3), Event(1991, 6, 1, c.accuracy), Event(1992, 9, 1, 0)});
    EXPECT_EQ(p.Run().Recalculated, 3);
    c.edit(p[2]);
    CacheRunStats again = p.Run();
    EXPECT_EQ(again.Recalculated, c.stale ? 1 : 0);
    EXPECT_EQ(again.Current, c.stale ? 2 : 3);
  }
}

TEST(CalcEvents, CheckedCacheIsNotCheckedAgain) {
  Project p({Event(1990, 3, 1, 3)});
  p.Run();
  CacheRunStats stats;
  bool cancelled = false;
  CalcEvents(p.s, kGeocentric, kTransits, kNaibod, cancelled, nullptr, &stats);
  EXPECT_EQ(stats.Recalculated + stats.Current, 0);
  EXPECT_EQ(p.s.cache.Valid[kGeocentric][kTransits][kNaibod], kTrue);
}

TEST(CalcEvents, InstantsRangesAndTheirPositions) {
  Project p({Event(1995, 7, 14, 3, 0, 9, 45), Event(1995, 7, 14, 0)});
  p.s.cache.AsteroidsOn = kTrue;
  p.Run();
  const double jd = RecordJulianDay(p[1]);

  EventPositionRecord instant = p.Record(1);
  EXPECT_EQ(instant.PrecessionArcsec, PrecessionArcsec(CenturiesFrom1900(jd)));
  for (auto [point, body] : {std::pair{1, 1}, {3, 0}, {kMars, 4}, {12, 15}, {16, 17}, {20, 10}}) {
    double speed;
    const float expected = static_cast<float>(Oracle(body, jd, &speed));
    EXPECT_EQ(instant.StartPos[point], expected) << point;
    EXPECT_EQ(instant.EndPos[point], expected) << point;
    EXPECT_EQ(instant.Motion[point], speed >= 0 ? 1 : 2) << point;
  }
  EXPECT_EQ(instant.StartPos[17], -1.0f) << "no Hygeia file";
  EXPECT_TRUE(p.t.sink.messages.empty());
  const Angles angles = ComputeAngleSet(
      Ramc(LocalSidereal(SiderealAtZero(JulDay(14, 7, 1995)), 9.75 - 1.0), -13.4f), MeanObliquity(CenturiesFrom1900(jd)),
      52.5f, 0.0);
  EXPECT_NEAR(instant.StartPos[kAscendant], angles.Ascendant, 1e-4);
  EXPECT_NEAR(instant.EndPos[kMidheaven], angles.Midheaven, 1e-4);
  EXPECT_EQ(instant.Motion[kAscendant], 1);

  // A date alone spans two days even with no range, and has no angles.
  EventPositionRecord day = p.Record(2);
  const double noon = RecordJulianDay(p[2]);
  EXPECT_EQ(day.StartPos[kMoon], static_cast<float>(Oracle(1, noon - 1)));
  EXPECT_EQ(day.EndPos[kMoon], static_cast<float>(Oracle(1, noon + 1)));
  EXPECT_EQ(day.Motion[kMoon], -1);
  EXPECT_EQ(day.StartPos[kAscendant], -1.0f);
}

TEST(CalcEvents, AsteroidsOffLeaveTheirPointsEmpty) {
  Project p({Event(1995, 7, 14, 3)});
  p.s.cache.AsteroidsOn = kFalse;
  p.Run();
  EventPositionRecord r = p.Record(1);
  for (int point = kChiron; point < kTrueNode; ++point) {
    EXPECT_EQ(r.StartPos[point], -1.0f);
    EXPECT_EQ(r.EndLat[point], -1.0f);
    EXPECT_EQ(r.Motion[point], -1);
  }
  EXPECT_GE(r.StartPos[kMeanNode], 0.0f);
}

// Mercury turning retrograde inside a five-day range: one forward arc from
// the start to the station; without the station handling the record would
// run the other way.
TEST(CalcEvents, StationInsideARangeGivesOneArc) {
  double from = 2452000.0, speed = 0;
  Oracle(2, from, &speed);
  while (Oracle(2, from + 1, &speed), speed > 0) from += 1;  // the day before the station
  float day;
  int month, year;
  RevJul(from + 1, day, month, year);
  Project p({Event(year, month, static_cast<int>(day), 0, 2)});
  p.s.project.Header.NatalJulianDay = from - 10000;
  p.Run();
  p.Run(kHeliocentric);
  p.Run(kGeocentric, kSecondary);
  const double noon = RecordJulianDay(p[1]);
  const double s1 = Oracle(2, noon - 3), s2 = Oracle(2, noon + 3);

  EventPositionRecord r = p.Record(1);
  EXPECT_EQ(r.Motion[kMercury], 0);
  EXPECT_LT(Mod(r.EndPos[kMercury] - r.StartPos[kMercury], 360), 180);
  const double arc = Mod(r.EndPos[kMercury] - r.StartPos[kMercury], 360);
  for (double s : {s1, s2}) EXPECT_LE(Mod(s - r.StartPos[kMercury], 360), arc + 1e-4);
  EXPECT_EQ(p.Record(1, kHeliocentric).Motion[kMercury], -1);
  EXPECT_NE(p.Record(1, kGeocentric, kSecondary).Motion[kMercury], 0);
}

// A damaged file is taken as it stands up to the damage and recalculated
// from there, ending byte for byte as a clean run.
TEST(CalcEvents, DamagedFilesAreRecalculatedFromTheDamage) {
  Project p({Event(1990, 3, 1, 3), Event(1991, 6, 1, 1), Event(1992, 9, 1, 0, 3), Event(1993, 1, 1, 2)});
  p.Run();
  const std::string clean = ReadBytes(p.File());
  ASSERT_EQ(clean.size(), 4u * kCacheRecordSize);
  // A record whose fields all match but whose positions no calculation
  // gives: a NaN Sun in record 2, a latitude of 1e30 in record 4.
  auto poke = [&](int record, int offset, const char* four) {
    std::string bytes = clean;
    bytes.replace((record - 1) * kCacheRecordSize + offset, 4, four, 4);
    return bytes;
  };
  struct Case {
    const char* what;
    std::string bytes;
    int recalculated;
  } cases[] = {
      {"shorter", clean.substr(0, 2 * kCacheRecordSize), 2},
      {"cut inside a record", clean.substr(0, 2 * kCacheRecordSize + 100), 2},
      {"longer by odd bytes", clean + "xyz", 0},
      {"garbage in record 3", clean.substr(0, 928) + std::string(464, '\xAB') + clean.substr(1392), 1},
      {"garbage file", std::string(1000, '\x7F'), 4},
      {"NaN position", poke(2, 32 + 4 * (kSun - 1), "\x00\x00\xc0\x7f"), 1},
      {"huge latitude", poke(4, 272 + 4 * (kMars - 1), "\xca\xf2\x49\x71"), 1},
      {"empty", "", 4},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    WriteBytes(p.File(), c.bytes);
    EXPECT_EQ(p.Run().Recalculated, c.recalculated);
    EXPECT_EQ(ReadBytes(p.File()).substr(0, clean.size()), clean);
  }
}

class CancelAfter : public Progress {
 public:
  explicit CancelAfter(int records) : left_(records) {}
  bool Cancelled() override { return left_-- <= 0; }
  void Status(const std::string& text) override { last = text; }
  std::string last;

 private:
  int left_;
};

TEST(CalcEvents, CancelKeepsWhatWasWritten) {
  Project p({Event(1990, 1, 1, 0), Event(1991, 1, 1, 0), Event(1992, 1, 1, 0), Event(1993, 1, 1, 0)});
  CancelAfter progress(2);
  bool cancelled = false;
  CalcEvents(p.s, kGeocentric, kTransits, kNaibod, cancelled, &progress);
  EXPECT_TRUE(cancelled);
  EXPECT_EQ(p.s.cache.NeedsGraphRecalc, kTrue);
  EXPECT_EQ(p.s.cache.Valid[kGeocentric][kTransits][kNaibod], 0);
  EXPECT_EQ(ReadBytes(p.File()).size(), 2u * kCacheRecordSize);
  EXPECT_EQ(progress.last.rfind("Record 2 of 4", 0), 0u) << progress.last;
  CacheRunStats rest = p.Run();
  EXPECT_EQ(rest.Current, 2);
  EXPECT_EQ(rest.Recalculated, 2);
}

// Several workers build the same file as one, show the same messages in the
// same order, and a cancel part-way leaves a file that a later run finishes.
TEST(CalcEvents, WorkersBuildTheFileOfOneThread) {
  std::vector<EventRecord> events;
  for (int i = 1; i <= 300; ++i) {
    EventRecord e = Event(1900 + (i * 7) % 150, 1 + i % 12, 1 + (i * 5) % 28, i % 4, i % 5 == 0 ? i % 9 : 0,
                          (i * 3) % 24, (i * 11) % 60);
    if (i % 97 == 0) e.Year = -5000;  // beyond the ephemeris: a message
    events.push_back(e);
  }
  for (int type : {kTransits, kSecondary, kSolarArc}) {
    SCOPED_TRACE(type);
    Project one(events), three(events);
    one.s.project.Header.NatalJulianDay = three.s.project.Header.NatalJulianDay = 2439857.0;
    bool cancelled = true;
    CalcEvents(one.s, kGeocentric, type, kNaibod, cancelled, nullptr, nullptr, 1);
    ASSERT_FALSE(cancelled);
    const std::string reference = ReadBytes(one.File(kGeocentric, type));
    ASSERT_EQ(reference.size(), 300u * kCacheRecordSize);

    CancelAfter progress(120);
    CalcEvents(three.s, kGeocentric, type, kNaibod, cancelled, &progress, nullptr, 3);
    EXPECT_TRUE(cancelled);
    EXPECT_EQ(ReadBytes(three.File(kGeocentric, type)), reference.substr(0, 120 * kCacheRecordSize));
    three.s.cache.Clear();
    CacheRunStats stats;
    CalcEvents(three.s, kGeocentric, type, kNaibod, cancelled, nullptr, &stats, 3);
    EXPECT_FALSE(cancelled);
    EXPECT_EQ(stats.Current, 120);
    EXPECT_EQ(stats.Recalculated, 180);
    EXPECT_EQ(ReadBytes(three.File(kGeocentric, type)), reference);

    auto texts = [](const Project& p) {
      std::vector<std::string> all;
      for (const auto& m : p.t.sink.messages) all.push_back(m.text);
      return all;
    };
    EXPECT_EQ(texts(one).empty(), type != kTransits) << "a progressed year -5000 still falls near the birth";
    EXPECT_EQ(texts(three), texts(one));
  }
}

TEST(CalcEvents, DatesBeyondTheEphemerisGiveEmptyRecordsAndTheRunGoesOn) {
  Project p({Event(1990, 3, 1, 3), Event(-5000, 3, 1, 3), Event(9000, 3, 1, 0, 2), Event(1993, 1, 1, 3)});
  p.Run();
  for (int n : {2, 3}) {
    EventPositionRecord r = p.Record(n);
    for (int point = 1; point <= kMeanNode; ++point) EXPECT_EQ(r.EndPos[point], -1.0f) << n << "/" << point;
  }
  EXPECT_GE(p.Record(4).StartPos[kSun], 0.0f);
  EXPECT_FALSE(p.t.sink.messages.empty());
}

// Progressions and directions measure from the natal moment; the run puts
// back the session's own choice of cache afterwards.
TEST(CalcEvents, ProgressionsUseTheNatalMomentAndSettingsAreRestored) {
  Project p({Event(2000, 5, 5, 3)});
  const double natal = 2440000.25;
  p.s.project.Header.NatalJulianDay = natal;
  p.s.cache.DynamicType = kTertiary;
  p.s.cache.ProgressionMethod = kMeanQuotidian;
  p.Run(kGeocentric, kSecondary);
  p.Run(kGeocentric, kSolarArc);
  EXPECT_EQ(p.s.cache.DynamicType, kTertiary);
  EXPECT_EQ(p.s.cache.ProgressionMethod, kMeanQuotidian);

  const double jd = RecordJulianDay(p[1]);
  EXPECT_NEAR(p.Record(1, kGeocentric, kSecondary).StartPos[kMars], Oracle(4, natal + (jd - natal) / 365.24219907),
              1e-4);
  const double arc = Mod(Oracle(0, ProgressedJD(kSolarArc, jd, natal)) - Oracle(0, natal), 360);
  EXPECT_NEAR(p.Record(1, kGeocentric, kSolarArc).StartPos[kMoon], Mod(Oracle(1, natal) + arc, 360), 1e-4);
}

TEST(CalcEvents, ProgressionsWithoutANatalDateSayItOnce) {
  Project p({Event(1990, 3, 1, 3), Event(1991, 3, 1, 0, 5)});
  p.s.project.Header.Date = "";
  bool cancelled = false;
  CalcEvents(p.s, kGeocentric, kSecondary, kNaibod, cancelled);
  EXPECT_TRUE(cancelled);
  ASSERT_EQ(p.t.sink.messages.size(), 1u);
  EXPECT_FALSE(FileExists(p.File(kGeocentric, kSecondary)));
  CalcEvents(p.s, kGeocentric, kTransits, kNaibod, cancelled);
  EXPECT_FALSE(cancelled) << "transits need no birth";
}

TEST(CalcEvents, AFileThatCannotBeWrittenCancelsWithoutHarm) {
  Project p({Event(1990, 3, 1, 3)});
  bool cancelled = false;
  p.s.project.ProjectPath = p.folder.file("missing/life.dat");
  CalcEvents(p.s, kGeocentric, kTransits, kNaibod, cancelled);
  EXPECT_TRUE(cancelled);
  // A project whose own name is that of a cache is never overwritten by it.
  p.s.project.ProjectPath = p.folder.file("odd.geo");
  WriteBytes(p.s.project.ProjectPath, "\"Event\",1990\r\n");
  CalcEvents(p.s, kGeocentric, kTransits, kNaibod, cancelled);
  EXPECT_TRUE(cancelled);
  EXPECT_EQ(ReadBytes(p.s.project.ProjectPath), "\"Event\",1990\r\n");
}

}  // namespace
}  // namespace vintar
