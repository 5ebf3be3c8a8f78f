// The criteria search: the connectives on 16-bit flags, bracket nesting
// without precedence, the bracket button's rule, .vcr files (round trip,
// fixed offsets, damaged files), the list text, and tests on charts with
// hand-set positions including the inexact-time rules.
#include <gtest/gtest.h>

#include <random>

#include "research/criteria.h"
#include "research/dignity.h"
#include "support/test_support.h"

namespace vintar {
namespace {

constexpr int16_t T = kTrue, F = kFalse;

TEST(Criteria, ConnectivesAreBitwiseOnFlags) {
  struct Case { int16_t a, b; int op; int16_t expected; };
  const std::vector<Case> cases = {
      {T, T, 0, T}, {T, F, 0, F}, {F, F, 0, F}, {T, F, 1, T}, {F, F, 1, F}, {T, T, 1, T},
      {T, T, 2, F}, {T, F, 2, T}, {F, T, 2, T}, {F, F, 2, F}, {T, T, 3, F}, {T, T, -1, F}};
  for (const Case& c : cases) EXPECT_EQ(CombineFlags(c.a, c.b, c.op), c.expected) << c.a << " " << c.op << " " << c.b;
  EXPECT_EQ(NotFlag(T), F);
  EXPECT_EQ(NotFlag(F), T);
}

struct ListCase {
  const char* name;
  std::vector<int> levels, ops;
  std::vector<int16_t> terms;
  int16_t expected;
};

TEST(Criteria, BracketsAloneGroupStrictlyLeftToRight) {
  const std::vector<ListCase> cases = {
      {"single", {0}, {0}, {T}, T},
      {"A or B and C is (A or B) and C", {0, 0, 0}, {0, 1, 0}, {T, F, F}, F},
      {"A and (B or C)", {0, 1, 1}, {0, 0, 1}, {F, F, T}, F},
      {"A and (B or C), true", {0, 1, 1}, {0, 0, 1}, {T, F, T}, T},
      {"A or (B and (C or D))", {0, 1, 2, 2}, {0, 1, 0, 1}, {F, F, T, T}, F},
      {"(A or B) and C", {1, 1, 0}, {0, 1, 0}, {T, F, F}, F},
      {"A xor (B and C)", {0, 1, 1}, {0, 2, 0}, {T, T, F}, T},
      {"group joined by its first record's connective", {0, 1, 1, 0}, {0, 1, 0, 0}, {F, T, T, T}, T},
      {"unknown connective is false", {0, 0}, {0, 7}, {T, T}, F},
      {"first record's connective unused", {0, 0}, {2, 0}, {T, T}, T},
  };
  for (const ListCase& c : cases) {
    const int n = static_cast<int>(c.terms.size());
    const int16_t got = EvaluateBracketed(
        1, n, [&](int k) { return c.levels[k - 1]; }, [&](int k) { return c.ops[k - 1]; },
        [&](int k) { return c.terms[k - 1]; });
    EXPECT_EQ(got, c.expected) << c.name;
  }
}

TEST(Criteria, BracketButton) {
  testing::TestSession t;
  struct Case {
    std::vector<int16_t> before;
    int first, last;
    std::vector<int16_t> after;
    std::string message;
  };
  const std::vector<Case> cases = {
      {{0, 0, 0}, 2, 3, {0, 1, 1}, ""},                  // A And (B Or C)
      {{0, 1, 1}, 2, 3, {0, 0, 0}, ""},                  // and the brackets removed
      {{0, 1, 1, 0}, 2, 2, {0, 1, 1, 0}, ""},            // one record: nothing
      {{0, 0, 0}, 1, 3, {0, 0, 0}, "Cannot apply brackets because all records are selected."},
      {{0, 1, 1, 0}, 1, 2, {0, 1, 1, 0},
       "Cannot apply or remove brackets because selected records are at varying levels of nesting."},
      // Ends at different levels with neighbours alike: removed, never below 0.
      {{0, 1, 1, 0}, 2, 4, {0, 0, 0, 0}, ""},
  };
  for (const Case& c : cases) {
    t.sink.Clear();
    std::vector<int16_t> levels(1);
    levels.insert(levels.end(), c.before.begin(), c.before.end());
    ToggleBrackets(t.session, static_cast<int>(c.before.size()), c.first, c.last,
                   [&](int k) -> int16_t& { return levels[k]; });
    EXPECT_EQ(std::vector<int16_t>(levels.begin() + 1, levels.end()), c.after) << c.first << ".." << c.last;
    if (c.message.empty()) {
      EXPECT_TRUE(t.sink.messages.empty());
    } else {
      ASSERT_EQ(t.sink.messages.size(), 1u);
      EXPECT_EQ(t.sink.messages[0].text, c.message);
      EXPECT_EQ(t.sink.messages[0].title, "Cannot apply");
      EXPECT_EQ(t.sink.messages[0].flags, 16);
    }
  }
  // A discontiguous selection goes run by run.
  std::vector<int16_t> levels(6, 0);
  ToggleBracketsOnSelection(t.session, {false, true, true, false, true, true},
                            [&](int k) -> int16_t& { return levels[k]; });
  EXPECT_EQ(levels, (std::vector<int16_t>{0, 1, 1, 0, 1, 1}));
}

CriterionRecord MakeTest(int point, int dataType, int code, std::vector<int> cells, int cellCount) {
  CriterionRecord c;
  c.PointCount = point > 0 ? 1 : 0;
  c.Points[0] = PointRef{kChartPointType, static_cast<uint8_t>(point), 0, 0, 0};
  c.DataType = static_cast<uint8_t>(dataType);
  c.DivisionCode = static_cast<int16_t>(code);
  c.CellCount = static_cast<int16_t>(cellCount);
  for (int cell : cells) c.CellSelected[cell - 1] = T;
  c.SelectedCells = static_cast<int16_t>(cells.size());
  return c;
}

TEST(Criteria, FileRoundTripAndOffsets) {
  CriteriaList list;
  list.Header.PartsFile = "vintar.arp";
  list.Points = {PointRef{0, kSun, 0, 0, 0}, PointRef{0, kMoon, 0, 0, 0}};
  CriterionRecord a = MakeTest(kSun, 0, 0, {1, 5, 9}, 12);
  a.InexactOption = 1, a.Orb = 2.5f, a.Harmonic = 3, a.Scheme = 2, a.Negate = T, a.MinMatches = 2;
  CriterionRecord b = MakeTest(kMoon, 2, 50, {4}, 10);
  b.PointCount = 2, b.Points[1] = PointRef{kMidpointType, kSun, kMoon, 0, 3};
  b.Operator = kXorOperator, b.NestLevel = 1;
  list.Criteria.push_back(a);
  list.Criteria.push_back(b);

  const std::string bytes = EncodeCriteriaFile(list);
  const size_t start = kPointListHeaderSize + 2 * kPointRefSize;
  ASSERT_EQ(bytes.size(), start + 2 * kCriterionRecordSize);
  const size_t second = start + kCriterionRecordSize;
  EXPECT_EQ(bytes[second + 778], 1);  // NestLevel before Operator in the file
  EXPECT_EQ(bytes[second + 780], 2);
  EXPECT_EQ(static_cast<unsigned char>(bytes[start + 41]), 0xFF);  // cell 1 wanted, -1 little-endian
  EXPECT_EQ(bytes[start + 771], 2);

  CriteriaList back;
  std::string error;
  ASSERT_TRUE(DecodeCriteriaFile(bytes + "tail", back, error)) << error;  // a short tail is no record
  ASSERT_EQ(back.Count(), 2);
  EXPECT_EQ(back.Criteria[1], a);
  EXPECT_EQ(back.Criteria[2], b);
  EXPECT_EQ(back.Points, list.Points);
  EXPECT_EQ(back.Header.PartsFile, "vintar.arp");

  // A 0-byte criteria section is an empty list.
  ASSERT_TRUE(DecodeCriteriaFile(bytes.substr(0, start), back, error));
  EXPECT_EQ(back.Count(), 0);
}

TEST(Criteria, DamagedFilesGiveAnErrorNeverACrash) {
  CriteriaList list;
  list.Criteria.push_back(MakeTest(kSun, 0, 0, {1}, 12));
  const std::string good = EncodeCriteriaFile(list);
  const size_t rec = kPointListHeaderSize;
  auto with = [&](size_t at, char v) {
    std::string b = good;
    b[at] = v;
    return b;
  };
  const std::vector<std::string> bad = {"", std::string(100, 'x'), with(rec + 36, 40),  // data type 40
                                        with(rec + 37, 99),                              // code 99 not of type 0
                                        with(rec + 4, 7),                                // 7 points
                                        with(rec + 6, 20),                               // point type 20
                                        with(rec + 779, 0x7F)};                          // nesting far too deep
  for (size_t i = 0; i < bad.size(); ++i) {
    CriteriaList out;
    std::string error;
    EXPECT_FALSE(DecodeCriteriaFile(bad[i], out, error)) << i;
    EXPECT_FALSE(error.empty()) << i;
  }
  std::mt19937 rng(12);
  for (int n = 0; n < 200; ++n) {
    std::string b = good;
    for (int k = 0; k < 20; ++k) b[rng() % b.size()] = static_cast<char>(rng());
    CriteriaList out;
    std::string error;
    if (DecodeCriteriaFile(b, out, error)) {
      EXPECT_TRUE(DecodeCriteriaFile(EncodeCriteriaFile(out), out, error));
    }
  }
}

TEST(Criteria, AddChecksAndListText) {
  testing::TestSession t;
  ResearchState state;
  CriteriaList list;
  const PointRef sun{0, kSun, 0, 0, 0}, moon{0, kMoon, 0, 0, 0};
  struct Case { NewCriterion in; std::string title; };
  const std::vector<Case> refused = {
      {{2, 50, {sun}, true, {1}, 10}, "Too Many Points"},
      {{0, 0, {sun, moon}, true, {1}, 12}, "Too Many Points"},
      {{0, 0, {}, true, {1}, 12}, "Cannot Add"},
      {{0, 0, {sun}, true, {}, 12}, "Cannot Add"},
  };
  for (const Case& c : refused) {
    t.sink.Clear();
    EXPECT_FALSE(AddCriterion(t.session, list, c.in));
    ASSERT_EQ(t.sink.messages.size(), 1u);
    EXPECT_EQ(t.sink.messages[0].title, c.title);
  }
  ASSERT_TRUE(AddCriterion(t.session, list, {0, 0, {sun}, true, {1}, 12}));
  ASSERT_TRUE(AddCriterion(t.session, list, {2, 50, {sun, moon}, true, {1, 4}, 10, 12, 5}));
  ASSERT_TRUE(AddCriterion(t.session, list, {11, 900, {}, false, {8}, 24}));
  SetCriterionOperator(list, {2}, kOrOperator);
  ToggleCriterionNegate(list, 2, 2);
  ToggleBrackets(t.session, 3, 2, 3, [&](int k) -> int16_t& { return list.Criteria[k].NestLevel; });
  const std::vector<std::string> lines = CriteriaLines(t.session, state, list);
  ASSERT_EQ(lines.size(), 3u);
  EXPECT_EQ(lines[0], "    The Sun in Aries");
  EXPECT_EQ(lines[1], "Or  ( Not (The Sun-The Moon in any of 2 selected divisions of Aspect: Angular Separations)");
  EXPECT_EQ(lines[2].substr(0, 18), "And   Charts with ");
  EXPECT_EQ(lines[2].substr(lines[2].size() - 2), " )");
  DeleteCriteria(list, {1});
  EXPECT_EQ(list.Count(), 2);
  EXPECT_EQ(list.Criteria[1].NestLevel, 0);
}

// A timed chart (or one without a known time) with the Sun and Moon set by hand.
struct ChartCase {
  const char* name;
  CriterionRecord test;
  int detail;
  float sunStart, sunEnd, moon;
  int16_t expected;
};

TEST(Criteria, TestsOnHandSetCharts) {
  testing::TestSession t;
  ResearchState state;
  int16_t failed = 0;
  LoadDignityData(t.session, state.Dignity, failed);
  auto negated = [](CriterionRecord c) { return c.Negate = T, c; };
  auto option = [](CriterionRecord c, int o) { return c.InexactOption = o, c; };
  CriterionRecord pair = MakeTest(kSun, 2, 50, {4}, 10);
  pair.PointCount = 2, pair.Points[1] = PointRef{0, kMoon, 0, 0, 0}, pair.Orb = 5;
  const CriterionRecord aries = MakeTest(kSun, 0, 0, {1}, 12);
  const std::vector<ChartCase> cases = {
      {"Sun in Aries", aries, 3, 15, 15, 100, T},
      {"not Sun in Aries", negated(aries), 3, 15, 15, 100, F},
      {"Sun in fire", MakeTest(kSun, 0, 2, {1}, 4), 3, 250, 250, 100, T},
      {"Sun without a position", aries, 3, -1, -1, 100, F},
      {"Sun square Moon", pair, 3, 10, 10, 100, T},
      {"Sun not square Moon", pair, 3, 10, 10, 150, F},
      {"inexact, both ends must pass", aries, 0, 29, 31, 100, F},
      {"inexact, both ends in Aries", aries, 0, 10, 12, 100, T},
      {"inexact, median time", option(MakeTest(kSun, 0, 0, {2}, 12), 1), 0, 29.5f, 31, 100, T},
      {"inexact excluded", option(aries, 2), 0, 10, 12, 100, F},
      {"inexact excluded even when negated", negated(option(aries, 2)), 0, 10, 12, 100, F},
  };
  for (const ChartCase& c : cases) {
    CriteriaList list;
    list.Criteria.push_back(c.test);
    EventRecord e;
    e.Year = 1950, e.Month = 6, e.Day = 1, e.Hour = 12, e.DetailLevel = static_cast<uint8_t>(c.detail);
    e.DayRange = 0, e.Latitude = 48.8f, e.Longitude = -2.3f;
    EventPositionRecord r;
    r.StartPos.fill(-1), r.EndPos.fill(-1);
    r.StartPos[kSun] = c.sunStart, r.EndPos[kSun] = c.sunEnd;
    r.StartPos[kMoon] = r.EndPos[kMoon] = c.moon;
    for (int p = 1; p <= kPoints; ++p) r.Motion[p] = 1;
    CriteriaEvaluator ev(t.session, state, list);
    ev.BeginRecord(e, r);
    EXPECT_EQ(ev.EvaluateList(1, 1), c.expected) << c.name;
  }
}

TEST(Criteria, ResultsTextAndEmptyList) {
  testing::TestSession t;
  EXPECT_EQ(PercentPassedText(1, 3), "33.3%");
  EXPECT_EQ(PercentPassedText(0, 0), "0.0%");
  EXPECT_EQ(SearchResultLines(40, 10)[1], "Records which Passed Criteria : 10");
  ResearchState state;
  const CriteriaRun run = RunSearch(t.session, state, CriteriaList{});
  EXPECT_TRUE(run.Failed);
  ASSERT_EQ(t.sink.messages.size(), 1u);
  EXPECT_EQ(t.sink.messages[0].title, "Cannot Search");
}

}  // namespace
}  // namespace vintar
