// The vocabulary's numbering contract: point and list numbers, house codes,
// division code ranges, rays and glyph codes that other modules index by.
#include "core/vocabulary.h"

#include <gtest/gtest.h>

#include <numeric>

#include "core/preferences.h"

namespace vintar {
namespace {

// The start-up order of the session.
Vocabulary Started(const Preferences& prefs = {}, bool equalWeights = false) {
  Vocabulary v;
  BuildVocabulary(v);
  SetNodePoint(v, prefs.NodePoint());
  SetUserHouseName(v, prefs.PointOnCusp, prefs.WhichCusp);
  BuildRayTables(v, equalWeights);
  BuildGlyphTables(v, prefs);
  return v;
}

TEST(Vocabulary, ListSizesSlotZeroAndFieldWidths) {
  const Vocabulary v = Started();
  struct Row { const char* name; const std::vector<std::string>& list; size_t size; bool fromOne; size_t width; };
  const Row rows[] = {
      {"PointShort", v.PointShort, 25, true, 3}, {"PointName", v.PointName, 25, true, 10},
      {"KeywordHeading", v.KeywordHeading, 38, false, 0}, {"SignName", v.SignName, 13, true, 11},
      {"SignShort", v.SignShort, 13, true, 2}, {"PolarityName", v.PolarityName, 3, true, 0},
      {"ModeName", v.ModeName, 4, true, 0}, {"ElementName", v.ElementName, 5, true, 0},
      {"SignAxisName", v.SignAxisName, 7, true, 0}, {"DirectionName", v.DirectionName, 4, true, 0},
      {"DignityStateName", v.DignityStateName, 6, true, 0}, {"NorthSouthName", v.NorthSouthName, 3, true, 0},
      {"EastWestName", v.EastWestName, 3, true, 0}, {"HouseModeName", v.HouseModeName, 4, true, 0},
      {"AccidentalName", v.AccidentalName, 3, true, 0}, {"HorizonName", v.HorizonName, 3, true, 0},
      {"QuadrantName", v.QuadrantName, 5, true, 0}, {"NodeKindName", v.NodeKindName, 3, true, 0},
      {"AspectName", v.AspectName, 10, true, 0}, {"MonthName", v.MonthName, 13, true, 9},
      {"HouseSystemName", v.HouseSystemName, 15, false, 0}, {"ZodiacName", v.ZodiacName, 9, false, 0},
      {"CoordName", v.CoordName, 3, true, 0}, {"DynamicMethodName", v.DynamicMethodName, 4, false, 0},
      {"DynamicMethodShort", v.DynamicMethodShort, 4, false, 0},
      {"ProgressionMethodName", v.ProgressionMethodName, 4, true, 0},
      {"CoordinateName", v.CoordinateName, 12, false, 0}, {"PointTypeName", v.PointTypeName, 7, false, 0},
      {"PrenatalName", v.PrenatalName, 6, false, 0}, {"TransformName", v.TransformName, 17, false, 0},
      {"ComparisonName", v.ComparisonName, 9, false, 0}, {"ConnectiveName", v.ConnectiveName, 3, false, 0},
      {"RecordFieldName", v.RecordFieldName, 11, false, 0}, {"GroupTypeName", v.GroupTypeName, 6, false, 0},
      {"GroupTypeShort", v.GroupTypeShort, 6, false, 0}, {"GlyphText", v.GlyphText, 129, false, 0},
      {"UnicodePointGlyph", v.UnicodePointGlyph, 25, true, 0}, {"UnicodeSignGlyph", v.UnicodeSignGlyph, 13, true, 0},
      {"UnicodeAspectGlyph", v.UnicodeAspectGlyph, 10, true, 0}};
  for (const Row& r : rows) {
    SCOPED_TRACE(r.name);
    ASSERT_EQ(r.list.size(), r.size);
    if (r.fromOne) {
      EXPECT_EQ(r.list[0], "");
    }
    for (size_t i = r.fromOne ? 1 : 0; i < r.list.size() && r.name != std::string("GlyphText"); ++i) {
      EXPECT_FALSE(r.list[i].empty()) << i;
      if (r.width) {
        EXPECT_LE(r.list[i].size(), r.width) << r.list[i];
      }
    }
  }
  EXPECT_EQ(v.AspectAngle.size(), 10u);
  EXPECT_EQ(v.TransformPrefix.size(), v.TransformName.size());
}

TEST(Vocabulary, PointNumberingAndNames) {
  const Vocabulary v = Started();
  std::string firstEleven;
  for (int p = 1; p <= 11; ++p) firstEleven += v.PointShort[p];
  EXPECT_EQ(firstEleven, "MonEarSunMerVenMarJupSatUraNepPlu");
  EXPECT_EQ(v.PointShort[19], "TNo");
  EXPECT_EQ(v.PointShort[20], "MNo");
  EXPECT_EQ(v.KeywordHeading[23], "EastPoint");
  EXPECT_EQ(v.KeywordHeading[24], "Descendant");
  EXPECT_EQ(v.KeywordHeading[26], "1st House");
  EXPECT_EQ(v.KeywordHeading[37], "12th House");
  EXPECT_EQ(v.ZodiacName[5], "Usha Shashi");
  EXPECT_EQ(v.HouseSystemName[11], "0\xB0" "Aries");
  EXPECT_EQ(v.TransformPrefix[0], "");
  EXPECT_EQ(v.TransformPrefix[2], "C.Antiscia of");
  EXPECT_EQ(v.TransformPrefix[5], "Trip. Ruler (Ptolemy - In Sect) of");
}

TEST(Vocabulary, ListNumberingIsInverseAndFollowsNode) {
  for (int node : {19, 20}) {
    Vocabulary v;
    BuildVocabulary(v);
    SetNodePoint(v, node);
    SCOPED_TRACE(node);
    EXPECT_EQ(v.ListToPoint[20], node);
    EXPECT_EQ(v.ListToPoint[21], node);
    EXPECT_EQ(HouseCodeEntry(v, 22).PointOnCusp, node);
    for (int p = 1; p <= 24; ++p) {
      if (p == 19 || p == 20) continue;
      EXPECT_EQ(v.ListToPoint[v.PointToList[p]], p) << p;
    }
    for (int n = 1; n < kPointListSize; ++n) {
      const int p = v.ListToPoint[n];
      if (p >= 1 && p <= 24 && n != 20 && n != 21) {
        EXPECT_EQ(v.PointToList[p], n) << n;
      }
    }
    EXPECT_EQ(v.ListToPoint[4], 0);
  }
}

TEST(Vocabulary, HouseCodeEntries) {
  Vocabulary v;
  BuildVocabulary(v);
  struct Row { int code, system, point, cusp; };
  const Row rows[] = {{0, 0, 0, 0},   {8, 8, 0, 0},     {9, 10, 0, 0},    {10, 11, 0, 0},  {11, 13, 0, 0},
                      {12, 14, 3, 1}, {13, 14, 1, 1},   {14, 14, 4, 1},   {21, 14, 11, 1}, {23, 14, 23, 7},
                      {24, 14, 24, 1}, {25, 14, 22, 10}, {26, 12, 0, 0},  {27, 9, 0, 0},   {28, 0, 0, 0},
                      {-1, 10, 0, 0}, {29, 10, 0, 0}};
  for (const Row& r : rows) {
    const HouseCodeChoice c = HouseCodeEntry(v, r.code);
    EXPECT_EQ(c.System, r.system) << r.code;
    EXPECT_EQ(c.PointOnCusp, r.point) << r.code;
    EXPECT_EQ(c.WhichCusp, r.cusp) << r.code;
  }
}

TEST(Vocabulary, UserHouseName) {
  Vocabulary v;
  BuildVocabulary(v);
  EXPECT_EQ(v.HouseSystemName[14], "User Defined...");
  struct Row { int point, cusp; const char* name; };
  const Row rows[] = {{1, 1, "Mon on 1st"}, {3, 2, "Sun on 2nd"}, {21, 3, "Asc on 3rd"}, {22, 10, "MC on 10th"},
                      {4, 11, "Mer on 11th"}, {19, 12, "TNo on 12th"}, {0, 13, "Mon on 12th"}};
  for (const Row& r : rows) {
    SetUserHouseName(v, r.point, r.cusp);
    EXPECT_EQ(v.HouseSystemName[14], r.name);
  }
}

TEST(Vocabulary, DivisionRangesMatchTabulationCodes) {
  const Vocabulary v = Started();
  const DivisionRange expected[kCoordinateCount] = {{0, 12},    {100, 106}, {50, 52},   {200, 211},
                                                    {300, 303}, {400, 402}, {500, 504}, {600, 601},
                                                    {400, 402}, {700, 701}, {800, 802}, {900, 903}};
  for (int c = 0; c < kCoordinateCount; ++c) {
    EXPECT_EQ(v.DivisionBounds[c].First, expected[c].First) << c;
    EXPECT_EQ(v.DivisionBounds[c].Last, expected[c].Last) << c;
    EXPECT_EQ(DivisionsOf(v, c).size(), size_t(expected[c].Last - expected[c].First + 1)) << c;
    for (const std::string& name : DivisionsOf(v, c)) EXPECT_FALSE(name.empty()) << c;
  }
  EXPECT_EQ(DivisionsOf(v, 8), DivisionsOf(v, 5));
  EXPECT_EQ(v.DivisionName[11], "Ray (Triangles)");
  EXPECT_TRUE(DivisionsOf(v, 12).empty());
}

TEST(Vocabulary, RayTablesAndWeights) {
  const Vocabulary v = Started();
  std::array<double, kRays + 1> share{};
  std::array<int, kRays + 1> signsPerRay{};
  for (int s = 1; s <= 12; ++s) {
    ASSERT_GE(v.RayCount[s], 1);
    ASSERT_LE(v.RayCount[s], 3);
    for (int k = 1; k <= v.RayCount[s]; ++k) {
      share[v.SignRay[s][k]] += 1.0 / v.RayCount[s];
      ++signsPerRay[v.SignRay[s][k]];
    }
  }
  EXPECT_EQ(v.SignRay[9][1], 6);  // Sagittarius: first ray is the primary cell
  for (int r = 1; r <= kRays; ++r) {
    EXPECT_EQ(signsPerRay[r], 3) << r;
    EXPECT_NEAR(v.RayWeight[r], share[r] / 1.714286, 1e-12) << r;
  }
  EXPECT_NEAR(std::accumulate(v.RayWeight.begin() + 1, v.RayWeight.end(), 0.0), 7.0, 1e-5);
  const Vocabulary equal = Started({}, true);
  for (int r = 1; r <= kRays; ++r) EXPECT_EQ(equal.RayWeight[r], 1.0);
}

TEST(Vocabulary, GlyphCodesAndPreferences) {
  const Vocabulary v = Started();
  EXPECT_EQ(v.SignGlyph[1], 220);
  EXPECT_EQ(v.SignGlyph[2], 221);
  EXPECT_EQ(v.SignGlyph[3], 130);
  EXPECT_EQ(v.SignGlyph[10], 137);
  EXPECT_EQ(v.SignGlyph[13], 140);
  // Default codes name their own points, the overridable ones included.
  for (int p = 1; p <= 24; ++p) {
    if (p == 19) continue;  // the mean node is live
    EXPECT_EQ(GlyphFallbackText(v, GlyphOf(v, p)), v.PointShort[p]) << p;
  }
  for (int a = 1; a <= 9; ++a) EXPECT_EQ(GlyphFallbackText(v, v.AspectGlyph[a]), v.AspectName[a]) << a;
  EXPECT_EQ(GlyphFallbackText(v, 176), "\xB0");
  EXPECT_EQ(GlyphFallbackText(v, 220), "Ar");
  EXPECT_EQ(GlyphUnicodeText(v, 128), "\u2648");
  EXPECT_EQ(GlyphUnicodeText(v, GlyphOf(v, 1)), "\u263D");
  EXPECT_EQ(GlyphFallbackText(v, 126), "");
  EXPECT_EQ(GlyphOf(v, 25), 0);
  EXPECT_EQ(GlyphCharOf(v, 3), std::string(1, char(184)));

  Preferences prefs;
  prefs.UranusGlyph = " 185 ";
  prefs.PlutoGlyph = "300";
  prefs.CapricornGlyph = "x";
  const Vocabulary custom = Started(prefs);
  EXPECT_EQ(GlyphOf(custom, 9), 185);
  EXPECT_EQ(GlyphOf(custom, 11), 193);
  EXPECT_EQ(custom.SignGlyph[10], 137);
}

TEST(Vocabulary, DeltaTYearsAscend) {
  const Vocabulary v = Started();
  for (int i = 1; i < kDeltaTCount; ++i) EXPECT_LT(v.DeltaT[i - 1].Year, v.DeltaT[i].Year);
  EXPECT_EQ(v.DeltaT.back().Year, 2010);
}

}  // namespace
}  // namespace vintar
