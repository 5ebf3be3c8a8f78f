// The entry screens' atlas lookup: the last used region, the candidate
// screen's titles, the fields of a chosen place, the Illinois warning.
#include "places/atlas_entry.h"

#include <gtest/gtest.h>

#include "core/parse.h"
#include "core/session.h"
#include "support/test_support.h"

namespace vintar {
namespace {

TEST(AtlasEntry, RegionsCandidatesFieldsAndTheIllinoisWarning) {
  testing::TestSession t;
  Session& s = t.session;
  s.paths.SystemDataPath = VINTAR_SOURCE_DATA_DIR "/";
  s.paths.UserDataPath = t.dir.file("user") + "/";
  AtlasLookupState state;
  AtlasCandidates c = FindEntryPlace(s, state, "Ulm, Germany");
  ASSERT_FALSE(c.Places.empty());
  EXPECT_FALSE(c.Fuzzy);
  const AtlasEntryFields ulm = FillEntryFields(s, state, c.Places[0], 1879, 3, 14, 11, 30);
  EXPECT_TRUE(ulm.IsLmt);
  EXPECT_EQ(ulm.ZoneTime, "-0:39:57");
  EXPECT_EQ(ulm.Latitude, FormatLatitude(c.Places[0].latitude));

  c = FindEntryPlace(s, state, "Munich");  // the country stays from the last lookup
  ASSERT_FALSE(c.Places.empty());
  EXPECT_EQ(c.Places[0].countryCode, "DE");
  c = FindEntryPlace(s, state, "Olm");  // no exact match: candidates
  EXPECT_TRUE(c.Fuzzy);
  EXPECT_EQ(c.Title, SelectPlaceTitle("Germany"));

  // The place name goes into Latin-1 project files: kept when Latin-1 holds
  // it, spelled in ASCII when it does not.
  struct Spelling {
    const char *typed, *name;
  } spellings[] = {{"Zurich, Switzerland", "Z\xfcrich, Switzerland"}, {"Lodz, Poland", "Lodz, Poland"}};
  for (const Spelling& sp : spellings) {
    c = FindEntryPlace(s, state, sp.typed);
    ASSERT_FALSE(c.Places.empty()) << sp.typed;
    EXPECT_EQ(FillEntryFields(s, state, c.Places[0], 1990, 1, 1, 12, 0).PlaceName, sp.name);
  }

  c = FindEntryPlace(s, state, "Chicago, IL");
  ASSERT_FALSE(c.Places.empty());
  t.sink.messages.clear();
  const AtlasEntryFields chicago = FillEntryFields(s, state, c.Places[0], 1955, 7, 4, 10, 0);
  EXPECT_EQ(chicago.ZoneMnemonic, "CDT");
  ASSERT_EQ(t.sink.messages.size(), 1u);
  EXPECT_EQ(t.sink.messages[0].text, std::string(kIllinoisStandardTimeMessage) + "\r\n" + kIllinoisRecordedTimeMessage);
  s.prefs.IllinoisWarning = kFalse;
  FillEntryFields(s, state, c.Places[0], 1955, 7, 4, 10, 0);
  EXPECT_EQ(t.sink.messages.size(), 1u);
}

}  // namespace
}  // namespace vintar
