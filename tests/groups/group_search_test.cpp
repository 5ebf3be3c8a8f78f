// The group pattern search on groups made for the purpose: real charts
// whose cached positions are overwritten with planted ones, so that each
// case knows exactly which elements fall together.
#include "groups/group_search.h"

#include <gtest/gtest.h>

#include "groups/planted_group.h"

namespace vintar {
namespace {

TEST(GroupSearchArithmetic, MidpointsModuloAndSort) {
  EXPECT_DOUBLE_EQ(GroupMod(-30.0, 360.0), 330.0);
  EXPECT_DOUBLE_EQ(NearMidpoint(350.0, 10.0), 0.0);
  EXPECT_DOUBLE_EQ(NearMidpoint(10.0, 200.0), 285.0);  // the nearer of 105 and 285
  EXPECT_DOUBLE_EQ(HarmonicMidpoint(30.0, 29.0, 1.0), 0.0);
  EXPECT_DOUBLE_EQ(HarmonicMidpoint(30.0, 5.0, 9.0), 7.0);
  const std::vector<float> keys{0, 3, -10, 1, 3, -10};
  EXPECT_EQ(IndexSort(keys), (std::vector<int>{0, 2, 5, 3, 1, 4}));  // equal keys keep their order
  EXPECT_EQ(IndexSort(keys, true), (std::vector<int>{0, 1, 4, 3, 2, 5}));
}

// Five Moons planted one in each of five of the seven sectors of the 7th
// harmonic, all at 10 degrees of its circle: the same-point search finds them
// first, with the two sectors left empty as vacant.
TEST_F(PlantedGroup, FindsAPlantedSeventhHarmonicPatternFirst) {
  const double m7 = 360.0 / 7.0;
  const int sectors[5] = {0, 1, 3, 4, 6};
  for (int i = 0; i < 5; ++i) Plant(i + 2, kMoon, 10.0 + sectors[i] * m7 + 0.02 * i);
  Points({{kMoon, kMoon}, {kSun, kSun}});
  GroupSearchParams p;
  p.FromHarmonic = 1;
  p.ToHarmonic = 16;
  p.Orb = 8.0f;
  p.MinMatches = 4;
  p.Combination = false;
  SearchGroupPatterns(t.session, state, p);
  ASSERT_GE(state.MatchCount, 1);
  const GroupMatch& first = state.Matches[1];
  EXPECT_EQ(first.Harmonic, 7);
  EXPECT_EQ(first.PointIndex, 1);
  EXPECT_EQ(first.Charts, 5);
  EXPECT_EQ(first.Vacant, 2);
  EXPECT_NEAR(first.Position, 10.04, 0.05);
  EXPECT_EQ(ChartsOf(1), (std::vector<int>{2, 3, 4, 5, 6}));
  EXPECT_EQ(state.MatchesList[0].substr(0, 15), "Mon - 7th Hm - ");
  EXPECT_EQ(state.Status, "Finished Search: " + std::to_string(state.MatchCount) + " Items Found");
  EXPECT_TRUE(t.sink.messages.empty());

  // Its detail lists the five charts with their harmonic and zodiac positions.
  ShowGroupMatchDetail(t.session, state, p, 1);
  ASSERT_EQ(state.SecondaryList.size(), 5u);
  EXPECT_EQ(state.SecondaryList[0].substr(0, 27), "Chart 2 - Mon at 10\xB0" "00' (10");
}

// A combination search counts two points of one chart as two hits and one
// chart, so the least number of hits can be reached by a single chart.
TEST_F(PlantedGroup, CombinationCountsHitsAndChartsApart) {
  Plant(3, kMoon, 200.0);
  Plant(3, kSun, 200.5);
  Plant(5, kSun, 201.0);
  Points({{kMoon, kMoon}, {kSun, kSun}});
  GroupSearchParams p;
  p.FromHarmonic = p.ToHarmonic = 1;
  p.Orb = 1.0f;  // a window of 2 degrees on the whole zodiac
  p.MinMatches = 2;
  SearchGroupPatterns(t.session, state, p);
  ASSERT_EQ(state.MatchCount, 1);
  EXPECT_EQ(state.Matches[1].Hits, 3);
  EXPECT_EQ(state.Matches[1].Charts, 2);
  EXPECT_EQ(state.Matches[1].Vacant, 0);  // one sector in the first harmonic
  EXPECT_EQ(state.MatchesList[0].substr(0, 29), "1st Hm - 3 Hits - 2 Charts - ");
}

// The window: 2*orb/H wide, inclusive at its far edge, opening at the entry
// itself; an element at 0 joins a run but starts none; a specified position
// near the top of the circle reaches over 0 through the wrap.
TEST_F(PlantedGroup, WindowEdgesAndTheWrap) {
  struct Case {
    const char* what;
    double a, b;  // two planted Moons, in the 1st harmonic
    float orb, position;
    bool specified;
    int hits;  // of the one run expected, 0 for none
  };
  const Case cases[] = {
      {"inside the far edge", 100.0, 102.0, 1.0f, 0, false, 2},
      {"just beyond it", 100.0, 102.01, 1.0f, 0, false, 0},
      {"an element at 0 joins", 359.0, 0.0, 1.0f, 0, false, 2},
      {"specified position wraps", 359.5, 0.5, 1.0f, 359.9f, true, 2},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    Plant(1, kMoon, c.a);
    Plant(2, kMoon, c.b);
    Points({{kMoon, kMoon}});
    GroupSearchParams p;
    p.FromHarmonic = p.ToHarmonic = 1;
    p.Orb = c.orb;
    p.Position = c.position;
    p.SpecifiedPosition = c.specified;
    p.MinMatches = 2;
    p.Combination = false;
    SearchGroupPatterns(t.session, state, p);
    int found = 0;
    for (int k = 1; k <= state.MatchCount; ++k)
      if (ChartsOf(k) == std::vector<int>{1, 2} || ChartsOf(k) == std::vector<int>{2, 1}) found = state.Matches[k].Hits;
    EXPECT_EQ(found, c.hits);
    Plant(1, kMoon, 3.0 + 41.3);
    Plant(2, kMoon, 3.0 + 82.6);
  }
}

TEST_F(PlantedGroup, EveryElementInTheWindowEndsAtNHits) {
  for (int n = 1; n <= kCharts; ++n) Plant(n, kMoon, 50.0 + 0.1 * n);
  Points({{kMoon, kMoon}});
  GroupSearchParams p;
  p.FromHarmonic = p.ToHarmonic = 1;
  p.Orb = 5.0f;
  p.Combination = false;
  SearchGroupPatterns(t.session, state, p);
  ASSERT_GE(state.MatchCount, 1);
  EXPECT_EQ(state.Matches[1].Hits, kCharts);  // never counted twice round the wrap
}

TEST_F(PlantedGroup, RefusalsAndTheSilentEnd) {
  // A point no chart knows ends the whole search without a word.
  for (int n = 1; n <= kCharts; ++n) Plant(n, kMoon, -1.0);
  Points({{kMoon, kMoon}, {kSun, kSun}});
  GroupSearchParams p;
  p.Combination = false;
  p.MinMatches = 2;
  SearchGroupPatterns(t.session, state, p);
  EXPECT_EQ(state.MatchCount, 0);
  EXPECT_TRUE(t.sink.messages.empty());
  EXPECT_FALSE(state.Stop);

  // The screen's checks, in order, with their titles.
  std::string focus;
  struct Check {
    int from, to;
    float orb, position;
    bool specified;
    int points;
    const char* title;
  };
  const Check checks[] = {{5, 4, 8, 0, false, 1, "Invalid Harmonic Range"},
                          {1, 4, 90, 0, false, 1, "Invalid Orb"},
                          {1, 4, 8, 91, true, 1, "Invalid Position"},
                          {1, 4, 8, 0, false, 0, "No Points Selected"}};
  for (const Check& c : checks) {
    GroupSearchParams q;
    q.FromHarmonic = c.from;
    q.ToHarmonic = c.to;
    q.Orb = c.orb;
    q.Position = c.position;
    q.SpecifiedPosition = c.specified;
    EXPECT_FALSE(CheckGroupSearch(t.session, q, c.points, focus));
    EXPECT_EQ(t.sink.messages.back().title, c.title);
  }
  EXPECT_EQ(t.sink.messages[2].text,
            "Position is too large for maximum harmonic. Either change the harmonic range or reset the position to "
            "be less than 90\xB0" "00'");

  // No enabled chart.
  for (int n = 1; n <= kCharts; ++n) t.session.project.Events[n].Enabled = kFalse;
  SearchGroupPatterns(t.session, state, p);
  EXPECT_EQ(t.sink.messages.back().text, "There are no records switched on in this project.");
}

TEST_F(PlantedGroup, SearchPointFileRoundTripAndLimits) {
  Points({{kSun, kSun}, {kSun, kMoon}, {kMoon, kSun}});
  EXPECT_FALSE(AddSearchPair(t.session, state, kSun, kMoon));  // already there
  EXPECT_EQ(state.SearchList[0], "Sun  ");
  EXPECT_EQ(state.SearchList[1], "Sun/Mon");
  const std::string file = t.dir.file("grouppnt.fil");
  ASSERT_TRUE(WriteGroupPointFile(state, file));
  EXPECT_EQ(testing::ReadBytes(file), std::string("\x03\0\x03\0\x03\0\x01\0\x01\0\x03\0", 12));
  // Pairs outside 1 to 24 and a torn last pair are skipped.
  testing::WriteBytes(file, std::string("\x03\0\x19\0\x06\0\x06\0\x07", 9));
  GroupSearchState read;
  ASSERT_TRUE(ReadGroupPointFile(t.session, read, file));
  ASSERT_EQ(read.SearchPoints.size(), 1u);
  EXPECT_EQ(read.SearchPoints[0], (SearchPair{kMars, kMars}));
  // All midpoints of the Sun: one with each other selectable point (12 of
  // the 13 besides the Earth and the unchosen node).
  const int added = AddAllMidpointsOf(t.session, read, kSun);
  EXPECT_EQ(added, static_cast<int>(SelectablePoints(t.session).size()) - 1);
  EXPECT_EQ(SearchPlanetCount(read), "1 Planets");
  EXPECT_EQ(SearchMidpointCount(read), std::to_string(added) + " Midpoints");
  EXPECT_EQ(GroupDisplayList(t.session, true)[0], "All Midpoints of The Moon");
  for (int i = 0; i < 400; ++i) AddSearchPair(t.session, read, 1 + i % 24, 1 + i / 24 % 24);
  EXPECT_EQ(read.SearchPoints.size(), static_cast<size_t>(kMaxSearchPairs));
}

}  // namespace
}  // namespace vintar
