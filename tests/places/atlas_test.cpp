// The open atlas: the place text split, folding and the fuzzy pattern, the
// lookups over the shipped data/atlas.bin against GeoNames' figures, damaged
// files, and the user's own places.
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "places/atlas.h"
#include "support/test_support.h"

namespace vintar {
namespace {

using testing::TempDir;
using testing::TestSession;

const std::string kAtlasPath = std::string(VINTAR_SOURCE_DATA_DIR) + "/atlas.bin";

// One atlas for the whole suite: loading it is the slow part.
class AtlasTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    atlas_ = new Atlas();
    std::string error;
    ASSERT_TRUE(atlas_->Load(kAtlasPath, error)) << error;
  }
  static void TearDownTestSuite() { delete atlas_; }
  static const Atlas& atlas() { return *atlas_; }
  static AtlasStatus Lookup(const std::string& text, std::vector<AtlasPlace>& found) {
    AtlasStatus status = AtlasStatus::kFound;
    found = atlas_->Find(SplitPlaceText(text), &status);
    return status;
  }

 private:
  static Atlas* atlas_;
};
Atlas* AtlasTest::atlas_ = nullptr;

TEST(AtlasText, SplitsAtFirstCommaElseLastBlank) {
  struct Case {
    std::string text, city, region;
    bool atBlank;
  };
  const std::vector<Case> cases = {
      {"Ulm, Germany", "Ulm", "Germany", false},
      {"Frankfurt am Main, Hesse, Germany", "Frankfurt am Main", "Hesse, Germany", false},
      {"Chicago IL", "Chicago", "IL", true},
      {"Sao Paulo Brazil", "Sao Paulo", "Brazil", true},
      {"  Ulm  ", "Ulm", "", false},
      {"Ulm,", "Ulm", "", false},
      {"", "", "", false},
      {"Hobart, TAS", "Hobart", "Australia", false},
      {"Perth WA", "Perth", "Australia", true},
      {"Canberra, act", "Canberra", "Australia", false},
      {"Darwin NT", "Darwin", "Australia", true},
      {"Adelaide, SA", "Adelaide", "Australia", false},
      {"Sydney, NSW", "Sydney", "Australia", false},
      {"Cairns, QLD", "Cairns", "Australia", false},
      {"Geelong, VIC", "Geelong", "Australia", false},
      {"\x8Akofja Loka, Slovenia", "Skofja Loka", "Slovenia", false},   // 138
      {"\x8C" "deg\x9C, X", "OEdegoe", "X", false},                      // 140, 156
      {"\x83" "oo \x9A" "ar", "foo", "sar", true},                          // 131, 154
      {"\x9F" "ves", "Yves", "", false},                                  // 159
  };
  for (const Case& c : cases) {
    const AtlasQuery q = SplitPlaceText(c.text);
    EXPECT_EQ(q.city, c.city) << c.text;
    EXPECT_EQ(q.region, c.region) << c.text;
    EXPECT_EQ(q.atBlank, c.atBlank) << c.text;
  }
}

TEST(AtlasText, RegionIsKeptForTheNextEntry) {
  std::string last = "Germany";
  AtlasQuery q = SplitPlaceText("Ulm");
  KeepRegion(q, last);
  EXPECT_EQ(q.region, "Germany");
  q = SplitPlaceText("Lyon, France");
  KeepRegion(q, last);
  EXPECT_EQ(last, "France");
}

TEST(AtlasText, FoldsAccentsOfBothEncodings) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"M\xC3\xBCnchen", "munchen"},     // UTF-8
      {"M\xFCnchen", "munchen"},         // Latin-1
      {"K\xC3\xB8" "benhavn", "kobenhavn"},
      {"\xC5\x81\xC3\xB3" "d\xC5\xBA", "lodz"},
      {"Stra\xDF" "e", "strasse"},
      {"  Saint   Louis ", "saint louis"},
      {"\x8C\x9C", "oeoe"},
      {"Sa\xCC\x81o", "sao"},            // decomposed accent
      {"\xFF\x81", "y?"},
  };
  for (const auto& [text, folded] : cases) EXPECT_EQ(FoldPlaceText(text), folded) << text;
}

TEST(AtlasText, FuzzyPattern) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"Ulm", "[aeiou]l[nm]*"},       {"Chicago", "[ck]h[aeiou]*"}, {"Kiel", "[ck][aeiou][aeiou]*"},
      {"Jena", "[jg][aeiou][nm]*"},   {"Mainz", "[nm][aeiou][aeiou]*"}, {"Xi", "x[aeiou]*"},
      {"M\xFCnster", "[nm][aeiou][nm]*"},   {"", "*"},
  };
  for (const auto& [city, pattern] : cases) EXPECT_EQ(FuzzyPattern(city), pattern) << city;
}

TEST_F(AtlasTest, FindsPlacesByNameSpellingAndRegion) {
  struct Case {
    std::string text, name, country, division;
  };
  const std::vector<Case> cases = {
      {"Munich", "Munich", "DE", "Bavaria"},
      {"M\xC3\xBCnchen, Germany", "Munich", "DE", "Bavaria"},
      {"M\xFCnchen, DE", "Munich", "DE", "Bavaria"},
      {"Muenchen, Bavaria", "Munich", "DE", "Bavaria"},
      {"Chicago, IL", "Chicago", "US", "Illinois"},
      {"Chicago, Illinois", "Chicago", "US", "Illinois"},
      {"Chicago, USA", "Chicago", "US", "Illinois"},
      {"Chicago IL", "Chicago", "US", "Illinois"},
      {"London, UK", "London", "GB", "England"},
      {"London, England", "London", "GB", "England"},
      {"London, Ontario", "London", "CA", "Ontario"},
      {"Hobart, TAS", "Hobart", "AU", "Tasmania"},
      {"Los Angeles", "Los Angeles", "US", "California"},
      {"Glasgow, Scotland", "Glasgow", "GB", "Scotland"},
  };
  for (const Case& c : cases) {
    std::vector<AtlasPlace> found;
    ASSERT_EQ(Lookup(c.text, found), AtlasStatus::kFound) << c.text;
    EXPECT_EQ(found.front().name, c.name) << c.text;
    EXPECT_EQ(found.front().countryCode, c.country) << c.text;
    EXPECT_EQ(found.front().divisionName, c.division) << c.text;
    for (size_t i = 1; i < found.size(); ++i) EXPECT_GE(found[i - 1].population, found[i].population) << c.text;
  }
}

TEST_F(AtlasTest, UlmHasGeoNamesCoordinatesWestPositive) {
  std::vector<AtlasPlace> found;
  ASSERT_EQ(Lookup("Ulm, Germany", found), AtlasStatus::kFound);
  ASSERT_EQ(found.size(), 1u);
  EXPECT_NEAR(found[0].latitude, 48.4, 0.01);
  EXPECT_NEAR(found[0].longitude, -9.98, 0.02);
  EXPECT_EQ(found[0].zone, "Europe/Berlin");
  EXPECT_EQ(found[0].divisionName, "Baden-Wurttemberg");
}

TEST_F(AtlasTest, FailuresGiveTheirMessages) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"Xqzvbl, Germany", "City not found"},
      {"Ulm, Atlantis", "Country/State not found"},
      {"Ulm, France", "City not found"},
      {"", "The placename is not recognised."},
      {" , Germany", "The placename is not recognised."},
  };
  for (const auto& [text, message] : cases) {
    std::vector<AtlasPlace> found;
    EXPECT_EQ(AtlasStatusMessage(Lookup(text, found)), message) << text;
    EXPECT_TRUE(found.empty()) << text;
  }
  TestSession t;
  ReportAtlasStatus(t.session, AtlasStatus::kCountyNotFound);
  ASSERT_EQ(t.sink.messages.size(), 1u);
  EXPECT_EQ(t.sink.messages[0].text, "County not found");
}

TEST_F(AtlasTest, FuzzySearchFindsNearSpellingsWithinTheRegion) {
  AtlasStatus status = AtlasStatus::kCityNotFound;
  const std::vector<AtlasPlace> found = atlas().FindFuzzy(SplitPlaceText("Olm, Germany"), &status);
  ASSERT_EQ(status, AtlasStatus::kFound);
  EXPECT_LE(found.size(), kFuzzyLimit);
  bool ulm = false;
  for (const AtlasPlace& p : found) {
    EXPECT_EQ(p.countryCode, "DE");
    ulm = ulm || p.name == "Ulm";
  }
  EXPECT_TRUE(ulm);
  atlas().FindFuzzy(SplitPlaceText("Qqq, Germany"), &status);
  EXPECT_EQ(status, AtlasStatus::kCityNotFound);
}

TEST_F(AtlasTest, ListsCountriesAndDivisions) {
  const std::vector<AtlasCountry> countries = atlas().Countries();
  EXPECT_GT(countries.size(), 200u);
  bool germany = false;
  for (const AtlasCountry& c : countries) germany = germany || (c.code == "DE" && c.name == "Germany");
  EXPECT_TRUE(germany);
  for (const char* country : {"US", "United States", "USA"}) {
    const std::vector<AtlasDivision> states = atlas().Divisions(country);
    EXPECT_GE(states.size(), 50u) << country;
  }
  EXPECT_TRUE(atlas().Divisions("Atlantis").empty());
  EXPECT_EQ(SelectPlaceTitle("Illinois"), "Select Place in Illinois");
  EXPECT_EQ(SelectCountryForTitle("Ulm"), "Select Country or State for \"Ulm\"");
}

TEST(AtlasFile, DamagedFilesFailWithAMessage) {
  const std::string good = testing::ReadBytes(kAtlasPath);
  ASSERT_GT(good.size(), 1000u);
  TempDir dir;
  std::string flipped = good;
  flipped[flipped.size() / 2] ^= 0x5A;
  std::string badCount = good;
  badCount[12] ^= 1;
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"", "empty"},
      {good.substr(0, 47), "header only"},
      {good.substr(0, good.size() / 3), "truncated"},
      {std::string(5000, '\xFF'), "garbage"},
      {flipped, "flipped byte"},
      {badCount, "count"},
  };
  for (const auto& [bytes, label] : cases) {
    const std::string path = dir.file("atlas.bin");
    testing::WriteBytes(path, bytes);
    Atlas atlas;
    std::string error;
    EXPECT_FALSE(atlas.Load(path, error)) << label;
    EXPECT_NE(error.find(path), std::string::npos) << label << ": " << error;
    EXPECT_FALSE(atlas.Loaded()) << label;
    EXPECT_EQ(atlas.Find(SplitPlaceText("Ulm, Germany")).size(), 0u) << label;
  }
  Atlas atlas;
  std::string error;
  EXPECT_FALSE(atlas.Load(dir.file("missing.bin"), error));
  EXPECT_FALSE(atlas.Load(dir.path().string(), error));
}

TEST_F(AtlasTest, PersonalPlacesAddFindDeleteAndSurviveBadLines) {
  TempDir dir;
  const std::string path = dir.file(kPersonalPlacesFileName);
  PersonalPlaces mine;
  std::string error;
  ASSERT_TRUE(mine.Load(path, error)) << error;  // no file yet: an empty list
  AtlasPlace farm;
  farm.name = "Hof Br\xC3\xBCggen";
  farm.countryCode = "DE";
  farm.countryName = "Germany";
  farm.divisionName = "Bavaria";
  farm.latitude = 48.1;
  farm.longitude = -11.2;
  farm.zone = "Europe/Berlin";
  ASSERT_TRUE(mine.Add(farm, error)) << error;
  AtlasPlace bad = farm;
  bad.latitude = 91;
  EXPECT_FALSE(mine.Add(bad, error));
  bad = farm;
  bad.name = " ";
  EXPECT_FALSE(mine.Add(bad, error));

  PersonalPlaces reread;
  ASSERT_TRUE(reread.Load(path, error)) << error;
  for (const char* text : {"Hof Bruggen, Bavaria", "Hof Br\xFCggen, DE", "hof bruggen, Germany"}) {
    AtlasStatus status = AtlasStatus::kCityNotFound;
    const std::vector<AtlasPlace> found = FindPlace(atlas(), reread, SplitPlaceText(text), &status);
    ASSERT_EQ(status, AtlasStatus::kFound) << text;
    EXPECT_TRUE(found.front().personal);
    EXPECT_NEAR(found.front().longitude, -11.2, 1e-9);
  }
  std::vector<AtlasPlace> found = FindPlace(atlas(), reread, SplitPlaceText("Ulm, Germany"));
  ASSERT_FALSE(found.empty());
  EXPECT_FALSE(found.front().personal);

  EXPECT_EQ(reread.Remove("HOF BRUGGEN", error), 1);
  EXPECT_EQ(reread.Remove("Nowhere", error), 0);
  PersonalPlaces after;
  ASSERT_TRUE(after.Load(path, error));
  EXPECT_TRUE(after.Places().empty());

  // Damaged lines are skipped; the good one survives a later save.
  testing::WriteBytes(path, std::string("junk\r\n\xFF\t\t\t\t1e999\tx\t\r\nFarm\tDE\tGermany\t\t48\t-11\tEurope/Berlin\r\n") +
                                std::string("\0\0\t", 3));
  ASSERT_TRUE(after.Load(path, error));
  EXPECT_EQ(after.Places().size(), 1u);
  EXPECT_EQ(after.SkippedLines(), 3);
  EXPECT_FALSE(PersonalPlaces().Load(dir.path().string(), error));  // a folder
}

}  // namespace
}  // namespace vintar
