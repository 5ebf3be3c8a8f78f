// The imports' place lookup: the atlas with the zone in force at the
// event's local moment, or the place database with the place's own mean
// time.
#include "exchange/place_lookup.h"

#include <gtest/gtest.h>

#include "places/place_db.h"
#include "support/test_support.h"

namespace vintar {
namespace {

TEST(EventPlaceFinder, AtlasZonesAndThePlaceDatabase) {
  testing::TestSession t;
  Session& s = t.session;
  s.paths.SystemDataPath = VINTAR_SOURCE_DATA_DIR "/";
  s.prefs.UseACS = kTrue;
  EventPlaceFinder finder(s);
  FoundPlace found;
  struct Case {
    const char *city, *state;
    int year, month, day, hour;
    const char *zone, *name;
  } cases[] = {
      // The place's own mean time, at the atlas's longitude of Ulm (9.99 E).
      {"ULM", "GERMANY", 1879, 3, 14, 11, "-0:39:57", "LMT"},
      {"CHICAGO", "IL", 1955, 7, 4, 10, "+5:00", "CDT"},
      {"MUNICH", "GERMANY", 1985, 7, 1, -1, "-2:00", "CEST"},  // no time: noon
  };
  for (const Case& c : cases) {
    ASSERT_TRUE(finder.Find(c.city, c.state, c.year, c.month, c.day, c.hour, 0, found)) << c.city;
    EXPECT_EQ(found.ZoneText, c.zone) << c.city;
    EXPECT_EQ(found.ZoneName, c.name) << c.city;
  }
  EXPECT_FALSE(finder.Find("NOSUCHPLACEATALL", "GERMANY", 1980, 1, 1, 12, 0, found));

  // The place database: a place of the user's, at its mean time.
  s.prefs.UseACS = kFalse;
  s.paths.FolderTable[1] = t.dir.file("user") + "/";
  ASSERT_GT(PutPlace(s, "Hobbiton", "51N00", "1W30"), 0);
  EventPlaceFinder local(s);
  ASSERT_TRUE(local.Find("HOBBITON", "", 1980, 1, 1, 12, 0, found));
  EXPECT_EQ(found.ZoneText, "+0:06");
  EXPECT_EQ(found.ZoneName, "LMT");
  EXPECT_NEAR(found.Longitude, 1.5, 1e-9);
}

}  // namespace
}  // namespace vintar
