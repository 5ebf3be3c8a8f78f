#include "research/results.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <span>

#include "calc/astro.h"
#include "core/file_io.h"
#include "core/parse.h"
#include "core/text.h"
#include "research/dignity.h"

namespace vintar {
namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr int kDegreeRows = 360;
constexpr int kHarmonicRows = 60;
constexpr double kFourierFloor = 0.00001;
constexpr double kProbabilityFloor = 1E-10;

// A number with a fixed count of decimals, halves rounded away from zero
// as the display formats "0", "0.0", "0.00" and "0.000" do; never "-0".
std::string FormatFixed(double value, int decimals) {
  if (!std::isfinite(value)) return "0";
  double scale = std::pow(10.0, decimals);
  double rounded = std::round(value * scale) / scale;
  if (rounded == 0.0) rounded = 0.0;  // drops the sign of a negative zero
  char buffer[64];
  std::snprintf(buffer, sizeof buffer, "%.*f", decimals, rounded);
  return buffer;
}

// A number with at most two decimals and no trailing zeros: "30", "7.5".
std::string FormatShort(double value) {
  std::string text = FormatFixed(value, 2);
  if (text.find('.') != std::string::npos) {
    while (!text.empty() && text.back() == '0') text.pop_back();
    if (!text.empty() && text.back() == '.') text.pop_back();
  }
  return text;
}

// A range of degrees: "0-30", "-10 to 0" when either end is negative.
std::string RangeText(double from, double to) {
  std::string separator = from < 0 || to < 0 ? " to " : "-";
  return FormatShort(from) + separator + FormatShort(to);
}

// A latitude or longitude with its side letter: "40N", "75W", "0".
std::string SideText(double value, char positive, char negative) {
  std::string text = FormatShort(std::fabs(value));
  if (value > 0) text += positive;
  if (value < 0) text += negative;
  return text;
}

bool ValidCell(const TabulationRun& run, int cell) {
  return cell >= 1 && cell <= run.CellCount + 1 && cell < static_cast<int>(run.Tally.size());
}

bool ValidColumn(const TabulationRun& run, int column) {
  return column >= 1 && column <= run.ColumnCount + 1;
}

double TallyAt(const TabulationRun& run, int cell, int column) {
  if (cell < 0 || cell >= static_cast<int>(run.Tally.size())) return 0.0;
  const auto& row = run.Tally[cell];
  if (column < 0 || column >= static_cast<int>(row.size())) return 0.0;
  return row[column];
}

double ColumnTotal(const TabulationRun& run, int column) { return TallyAt(run, run.CellCount + 1, column); }

// The aspect orb (50, 51) and the latitude range (402) are entered in the
// anchor field; a run that carries them in Orb uses that.
double RunOrb(const TabulateParams& params) { return params.Orb > 0 ? params.Orb : params.Anchor; }

double RunHarmonic(const TabulateParams& params) {
  return params.Harmonic > 0 && std::isfinite(params.Harmonic) ? params.Harmonic : 1.0;
}

const std::string& Entry(const std::vector<std::string>& list, int index) {
  static const std::string empty;
  return index >= 0 && index < static_cast<int>(list.size()) ? list[index] : empty;
}

std::string PlanetCell(const Session& session, std::span<const int> list, int cell, bool forPrint) {
  if (cell >= static_cast<int>(list.size())) return "None";
  int point = list[cell];
  const auto& names = forPrint ? session.vocab.PointShort : session.vocab.PointName;
  std::string name = Trim(Entry(names, point));
  return name.empty() ? "Point " + std::to_string(point) : name;
}

std::string SignCell(const Session& session, int sign, bool forPrint) {
  return Entry(forPrint ? session.vocab.SignShort : session.vocab.SignName, sign);
}

// Per-cell ranges of the divisions laid out evenly over a span.
std::string EvenRange(double start, double width, int cell, double modulus) {
  double from = Mod(start + (cell - 1) * width, modulus);
  double to = from + width;
  if (to > modulus + 1e-9) to -= modulus;  // a cell across 0 reads "345-15"
  return RangeText(from, to);
}

// Probability for even degrees of freedom.
double EvenProbability(double chi, int degrees) {
  if (chi >= 10000) return kProbabilityFloor;
  double x = chi / 2;
  double s = 1;
  for (int k = degrees / 2 - 1; k >= 1; --k) s = x / k * s + 1;
  double p = std::pow(2.718282, -x) * s;
  return p < kProbabilityFloor ? kProbabilityFloor : p;
}

// The names of the selected points (pairs or single points).
std::vector<std::string> ColumnLabels(const TabulationRun& run) {
  std::vector<std::string> labels;
  int n = static_cast<int>(run.ColumnNames.size()) - 1;
  if (run.Params.DataType == kSeparationData && n >= 2 && n * (n - 1) / 2 == run.ColumnCount &&
      n != run.ColumnCount) {
    // Names of the points themselves: one column per pair i < j.
    for (int i = 1; i <= n; ++i)
      for (int j = i + 1; j <= n; ++j) labels.push_back(run.ColumnNames[i] + "/" + run.ColumnNames[j]);
    return labels;
  }
  for (int column = 1; column <= run.ColumnCount; ++column)
    labels.push_back(column <= n ? run.ColumnNames[column] : "Column " + std::to_string(column));
  return labels;
}

bool UsesHarmonic(int code) { return code == 8 || code == 12 || code == 51 || code == 601 || code == 701; }
bool UsesAnchorPoint(int code) { return code == 12 || code == 52 || code == 601 || code == 701; }

}  // namespace

void FourierStep(TabulationRun& run, Progress* progress) {
  const int columns = run.ColumnCount + 1;
  const std::vector<std::string> names = DisplayPoints(run, "All Points");
  std::vector<std::vector<float>> result(kHarmonicRows + 2, std::vector<float>(run.ColumnCount + 2, 0.0f));
  const bool phase = run.Params.Code == 301 || run.Params.Code == 303;

  std::array<double, kHarmonicRows + 2> re{}, im{};
  std::array<double, kDegreeRows + 1> x{};
  for (int column = 1; column <= columns; ++column) {
    if (progress) {
      if (progress->Cancelled()) {
        run.Cancelled = true;
        break;
      }
      progress->Status("Calculating Fourier Transform for " + Entry(names, column - 1));
    }
    for (int row = 1; row <= kDegreeRows; ++row) x[row] = TallyAt(run, row, column);
    // Horner's scheme for the first harmonics (k - 1 = 0 is the sum).
    for (int k = 1; k <= kHarmonicRows + 1; ++k) {
      double angle = 2 * kPi * (k - 1) / kDegreeRows;
      double c = std::cos(angle), s = std::sin(angle);
      double a = x[kDegreeRows], b = 0;
      for (int j = 1; j <= kDegreeRows - 2; ++j) {
        double a2 = c * a + s * b + x[kDegreeRows - j];
        double b2 = c * b - s * a;
        a = a2;
        b = b2;
      }
      re[k] = c * a + s * b + x[1];
      im[k] = c * b - s * a;
    }
    double a0 = std::sqrt(re[1] * re[1] + im[1] * im[1]);
    for (int h = 1; h <= kHarmonicRows; ++h) {
      double value = 0;
      if (phase) {
        if (std::fabs(re[h + 1]) >= kFourierFloor || std::fabs(im[h + 1]) >= kFourierFloor)
          value = Mod(Degrees(std::atan2(re[h + 1], im[h + 1])) + 180, 360);
      } else if (a0 >= kFourierFloor) {
        value = std::sqrt(re[h + 1] * re[h + 1] + im[h + 1] * im[h + 1]) / a0 * 200;
      }
      result[h][column] = static_cast<float>(value);
    }
  }
  if (progress) progress->Status("Totalling...");
  for (int column = 1; column <= columns; ++column)
    result[kHarmonicRows + 1][column] = static_cast<float>(TallyAt(run, kDegreeRows + 1, column));
  run.Tally = std::move(result);
  run.CellCount = kHarmonicRows;
  run.UsedCells = kHarmonicRows;
}

double StyledValue(const TabulationRun& run, int cell, int column, int style) {
  if (!ValidCell(run, cell) || !ValidColumn(run, column)) return 0.0;
  double x = TallyAt(run, cell, column);
  if (style <= 0 || style >= kTabStyles) return x;
  double t = ColumnTotal(run, column);
  if (!(t > 0)) return 0.0;
  double multiplier = (style >= 3 && cell <= run.CellCount) ? run.CellCount : 1;
  return x / t * multiplier;
}

std::string FormatStyled(const TabulationRun& run, int cell, int column, int style) {
  if (style < 0 || style >= kTabStyles) style = 0;
  double value = StyledValue(run, cell, column, style);
  if (style == 0) return FormatFixed(value, 0);
  if (cell == run.CellCount + 1) return FormatFixed(value, 2);
  if (style == 2 || style == 4) return FormatFixed(value * 100, 1) + "%";
  return FormatFixed(value, 3);
}

ColumnStatistics ColumnStats(const TabulationRun& run, int column, bool ignoreLow) {
  ColumnStatistics stats;
  if (run.CellCount < 1 || !ValidColumn(run, column)) return stats;
  stats.Average = ColumnTotal(run, column) / run.CellCount;
  double sum = 0;
  for (int cell = 1; cell <= run.CellCount; ++cell) {
    double d = TallyAt(run, cell, column) - stats.Average;
    sum += d * d / run.CellCount;
  }
  stats.Deviation = std::sqrt(sum);

  int used = std::clamp(run.UsedCells, 1, run.CellCount);
  int highCell = 1, lowCell = 1;
  double high = TallyAt(run, 1, column), low = high;
  for (int cell = 2; cell <= used; ++cell) {
    double v = TallyAt(run, cell, column);
    if (v > high) high = v, highCell = cell;
    if (v < low) low = v, lowCell = cell;
  }
  stats.LowValue = low;
  stats.PeakValue = high;
  stats.PeakCell = highCell;
  if (!ignoreLow && stats.Average - low > high - stats.Average) {
    stats.PeakValue = low;
    stats.PeakCell = lowCell;
  }
  return stats;
}

double ChiSquareProbability(double chi, int degrees) {
  if (degrees < 1 || std::isnan(chi)) return 1.0;
  if (chi < 0) chi = 0;
  if (degrees % 2 == 0) return EvenProbability(chi, degrees);
  if (degrees == 1)
    return std::pow(10.0, 1.5 * std::log10(EvenProbability(chi, 2)) - 0.5 * std::log10(EvenProbability(chi, 4))) *
           0.55;
  return std::pow(10.0, (std::log10(EvenProbability(chi, degrees - 1)) +
                         std::log10(EvenProbability(chi, degrees + 1))) * 0.5);
}

bool ChiSquareApplies(const TabulationRun& run) {
  int type = run.Params.DataType;
  if (type != kLongitudeData && type != kHouseData && type != kDiurnalData && type != kRightAscensionData)
    return false;
  return run.Params.Code != 105 && run.Params.Code != 106;
}

namespace {

ColumnTest TestAgainst(const TabulationRun& run, double observed, double expected, bool shown) {
  ColumnTest test;
  test.Shown = shown;
  test.Expected = expected;
  test.Degrees = run.CellCount - 1;
  if (!(expected > 5)) {
    test.TooSparse = true;
    return test;
  }
  test.Chi = (observed - expected) * (observed - expected) / expected;
  test.P = ChiSquareProbability(test.Chi, test.Degrees);
  test.OneIn = std::floor(1 / test.P) + 1;
  return test;
}

}  // namespace

ColumnTest PeakTest(const TabulationRun& run, int column) {
  ColumnStatistics stats = ColumnStats(run, column, false);
  return TestAgainst(run, stats.PeakValue, stats.Average, ChiSquareApplies(run));
}

ColumnTest CellTest(const TabulationRun& run, int cell, int column) {
  if (run.CellCount < 1) return {};
  double expected = ColumnTotal(run, column) / run.CellCount;
  bool harmonicAspect = run.Params.Code == 51;
  if (harmonicAspect) expected = expected * RunHarmonic(run.Params) * RunOrb(run.Params) * 2 / 360;
  return TestAgainst(run, TallyAt(run, cell, column), expected, ChiSquareApplies(run) || harmonicAspect);
}

EvenSpreadFit EvenSpreadTest(const TabulationRun& run, int column) {
  EvenSpreadFit f;
  if (!ValidColumn(run, column)) return f;
  double total = 0;
  for (int c = 1; c <= run.UsedCells; ++c) total += run.At(c, column);
  if (run.UsedCells < 2 || total <= 0) return f;
  const double expected = total / run.UsedCells;
  for (int c = 1; c <= run.UsedCells; ++c) f.Chi += std::pow(run.At(c, column) - expected, 2) / expected;
  f.Dof = run.UsedCells - 1;
  f.P = ChiSquareProbability(f.Chi, f.Dof);
  f.Valid = true;
  return f;
}

namespace {

// A probability as people read it: four decimals, or the power of ten
// when smaller ("3.2e-07"); the series never goes below 1e-10.
std::string ProbabilityText(double p) {
  if (p >= 0.001) return FormatFixed(p, 4);
  if (p <= 1e-10) return "< 1e-10";
  char text[32];
  std::snprintf(text, sizeof text, "%.1e", p);
  return text;
}

}  // namespace

std::string EvenSpreadText(const TabulationRun& run, int column) {
  if (run.Params.DataType == kHarmonicData || run.Params.DataType == kNatalDetailsData) return "";
  const EvenSpreadFit f = EvenSpreadTest(run, column);
  if (!f.Valid) return "";
  return "goodness of fit over " + std::to_string(run.UsedCells) + " cells: chi-square " + FormatFixed(f.Chi, 2) +
         ", " + std::to_string(f.Dof) + " degrees of freedom, p " + (f.P <= 1e-10 ? "" : "= ") +
         ProbabilityText(f.P);
}

std::vector<std::string> StatisticsBlock(const Session& session, const TabulationRun& run, int column) {
  int code = run.Params.Code;
  if (code == 301 || code == 303 || !ValidColumn(run, column)) return {};
  bool amplitude = code == 300 || code == 302;
  ColumnStatistics stats = ColumnStats(run, column, amplitude);
  if (stats.PeakValue == 0) return {};
  std::vector<std::string> lines;
  if (!amplitude) lines.push_back("Avg Count = " + FormatFixed(stats.Average, 2));
  lines.push_back("Division = " + CellName(session, run, stats.PeakCell, false));
  lines.push_back("Count = " + FormatFixed(stats.PeakValue, 1));
  if (!amplitude && ChiSquareApplies(run)) {
    ColumnTest test = PeakTest(run, column);
    std::string heading = "Chi Sq (" + std::to_string(test.Degrees) + ") = ";
    if (test.TooSparse) {
      lines.push_back(heading + "Too Sparse");
    } else {
      lines.push_back(heading + FormatFixed(test.Chi, 1));
      lines.push_back("Prob. = 1 in " + FormatFixed(test.OneIn, 0));
    }
  }
  return lines;
}

std::string CellName(const Session& session, const TabulationRun& run, int cell, bool forPrint) {
  if (cell < 1 || cell > std::max(run.CellCount, 1)) return "";
  const Vocabulary& v = session.vocab;
  const TabulateParams& p = run.Params;
  const int cells = std::max(run.CellCount, 1);
  const double harmonic = RunHarmonic(p);
  const int scheme = p.Scheme == kModernScheme ? kModernScheme : kAncientDayScheme;
  switch (p.Code) {
    case 0:
    case 6:
    case 7:
      return SignCell(session, cell, forPrint);
    case 1:
      return Entry(v.SignAxisName, cell);
    case 2:
      return Entry(v.ElementName, cell);
    case 3:
      return Entry(v.ModeName, cell);
    case 4:
      return Entry(v.PolarityName, cell);
    case 5: {
      int from = (cell - 1) % 3 * 10;
      return SignCell(session, (cell - 1) / 3 + 1, forPrint) + " " + RangeText(from, from + 10);
    }
    case 8:
      return "Degree " + std::to_string(cell);
    case 9:
      return Entry(v.DirectionName, cell);
    case 10:
    case 11:
      return "Ray " + std::to_string(cell);
    case 12:
      return EvenRange(p.Anchor, 360 / harmonic / cells, cell, 360 / harmonic);
    case 50:
      return cell <= kAspectCount ? Entry(v.AspectName, cell) : "None";
    case 51:
      if (cell > run.UsedCells || cell > cells - 1) return "None";
      if (cell == 1) return Entry(v.AspectName, 1);
      return FormatShort((cell - 1) * 360 / harmonic) + kDegreeSign;
    case 52:
      return EvenRange(p.Anchor, 360.0 / cells, cell, 360);
    case 100:
    case 105:
      return FormatOrdinal(cell) + " House";
    case 101:
      return Entry(v.HouseModeName, cell);
    case 102:
    case 500:
      return Entry(v.QuadrantName, cell);
    case 103:
      return Entry(v.EastWestName, cell);
    case 104:
      return Entry(v.NorthSouthName, cell);
    case 106:
      return Entry(v.AccidentalName, cell);
    case 200:
    case 202:
    case 203:
    case 206:
    case 207:
      return PlanetCell(session, RulerList(scheme), cell, forPrint);
    case 201:
      return Entry(v.DignityStateName, cell);
    case 204:
    case 205:
      return PlanetCell(session, ExaltationList(scheme), cell, forPrint);
    case 208:
    case 209:
      return PlanetCell(session, SevenPlanetList(), cell, forPrint);
    case 210:
    case 211:
      return PlanetCell(session, FivePlanetList(), cell, forPrint);
    case 300:
    case 301:
    case 302:
    case 303:
      return "H" + std::to_string(cell);
    case 400:  // South is the first cell here
      return Entry(v.NorthSouthName, cell == 1 ? 2 : 1);
    case 401:
      if (cell == 1) return "Below -39";
      if (cell == cells) return "Above 39";
      return RangeText(cell - 41, cell - 40);
    case 402: {
      int inner = cells - 2;
      double range = std::floor(RunOrb(p));
      if (cell == 1) return "Below " + FormatShort(-range);
      if (cell > inner + 1 || inner < 1) return "Above " + FormatShort(range);
      double width = 2 * range / inner;
      return RangeText(-range + (cell - 2) * width, -range + (cell - 1) * width);
    }
    case 501:
    case 600:
    case 700:
      return EvenRange(0, 360.0 / cells, cell, 360);
    case 502:
      return "Sector " + std::to_string(13 - cell);
    case 503:
      return "Sector " + std::to_string(19 - cell);
    case 504:
      return "Sector " + std::to_string(37 - cell);
    case 601:
    case 701:
      return EvenRange(p.Anchor * harmonic, 360.0 / cells, cell, 360);
    case 800:
      return Entry(v.HorizonName, cell);
    case 801:
    case 802: {
      double width = 180.0 / cells;
      return RangeText(-90 + (cell - 1) * width, -90 + cell * width);
    }
    case 900:
      return ZeroPad(cell - 1, 2) + ":00-" + ZeroPad(cell, 2) + ":00";
    case 901: {
      double y0 = std::floor(p.Anchor - 1) * 100;
      double width = 100.0 / cells;
      long long from = std::llround(y0 + std::ceil((cell - 1) * width - 1e-9));
      long long to = std::llround(y0 + std::ceil(cell * width - 1e-9)) - 1;
      if (to <= from) return std::to_string(from);
      return std::to_string(from) + "-" + std::to_string(to);
    }
    case 902: {
      double centre = (cell - 1) * 10.0 - 90;
      return SideText(centre - 5, 'N', 'S') + "-" + SideText(centre + 5, 'N', 'S');
    }
    case 903: {
      double centre = (cell - 1) * 10.0 - 180;  // west positive
      return SideText(centre - 5, 'W', 'E') + "-" + SideText(centre + 5, 'W', 'E');
    }
    default:
      return "Cell " + std::to_string(cell);
  }
}

std::vector<std::string> DisplayPoints(const TabulationRun& run, const std::string& last) {
  if (run.Params.DataType == kNatalDetailsData) return {"Natal"};
  std::vector<std::string> entries = ColumnLabels(run);
  entries.push_back(run.Params.DataType == kSeparationData ? "All Points" : last);
  return entries;
}

std::string TabulationText(const Session& session, const TabulationRun& run, int style) {
  const Vocabulary& v = session.vocab;
  const TabulateParams& p = run.Params;
  const int code = p.Code;
  const std::string na = "n/a";
  std::string text;
  auto line = [&](const std::string& label, const std::string& value) {
    text += label + "\t" + value + kLineEnd;
  };

  std::string zodiac = Entry(v.ZodiacName, session.prefs.Zodiac - 1);
  std::string coords = Entry(v.CoordName, session.cache.Coordinate);
  line("Zodiac:", zodiac.empty() ? na : zodiac);
  std::string houses = Entry(v.HouseSystemName, session.prefs.Houses);
  line("Houses:", p.DataType == kHouseData && !houses.empty() ? houses : na);
  line("Coords:", coords.empty() ? na : coords);
  line("Node Type:", session.prefs.TrueNode ? "True" : "Mean");
  std::string divisionsOf = Entry(v.CoordinateName, p.DataType);
  line("Divisions of:", divisionsOf.empty() ? na : divisionsOf);
  std::string divisionType = Entry(v.DivisionName, code);
  line("Division Type:", divisionType.empty() ? na : divisionType);
  line("No. Divisions:", std::to_string(run.UsedCells));
  double harmonic = RunHarmonic(p);
  line("Harmonic:", UsesHarmonic(code) ? FormatShort(harmonic) : na);
  line("Modulus:", UsesHarmonic(code) ? FormatShort(360 / harmonic) : na);
  line("Aspect:", code == 51 ? AngleText(360 / harmonic) : na);
  line("Aspect Orb:", code == 50 || code == 51 ? AngleText(RunOrb(p)) : na);
  line("Angle Range:", code == 402 ? std::string(1, '\xB1') + AngleText(std::floor(RunOrb(p))) : na);
  std::string anchor = na;
  if (UsesAnchorPoint(code)) anchor = AngleText(p.Anchor);
  if (code == 901) anchor = "Century " + FormatShort(p.Anchor);
  line("Anchor Point:", anchor);
  line("Total Charts", std::to_string(run.ChartsUsed));
  std::vector<std::string> points = ColumnLabels(run);
  std::string used;
  for (const std::string& name : points) used += (used.empty() ? "" : ", ") + name;
  line("Points Used:", p.DataType == kNatalDetailsData || used.empty() ? na : used);
  text += kLineEnd;

  // The table: a heading row, the cells, the totals row.
  text += divisionType;
  for (const std::string& name : points) text += "\t" + name;
  text += std::string("\t") + "TOTAL " + kLineEnd;
  for (int cell = 1; cell <= run.CellCount + 1; ++cell) {
    text += cell <= run.CellCount ? CellName(session, run, cell, false) : "TOTAL";
    for (int column = 1; column <= run.ColumnCount + 1; ++column) text += "\t" + FormatStyled(run, cell, column, style);
    text += kLineEnd;
  }
  return text;
}

bool SaveTabulation(Session& session, const TabulationRun& run, int style, std::string path) {
  if (PathExtension(path).empty()) path += ".dat";
  StagedFile staged;
  int err = StageFile(path, TabulationText(session, run, style), staged);
  if (err == 0) err = CommitFile(staged);
  if (err != 0) {
    DiscardFile(staged);
    session.ShowMessage("Unable to save file: " + path + kLineEnd + "Reason: " + WriteErrorText(err, path),
                        kIconExclamation, "Save Tabulation");
    return false;
  }
  return true;
}

}  // namespace vintar

namespace vintar {

std::string AngleText(double degrees) {
  if (!std::isfinite(degrees)) degrees = 0;
  long minutes = std::lround(std::fabs(degrees) * 60.0);
  std::string text = degrees < 0 && minutes > 0 ? "-" : "";
  const long d = minutes / 60, m = minutes % 60;
  text += std::to_string(d) + "\xB0" + (m < 10 ? "0" : "") + std::to_string(m) + "'";
  return text;
}

std::vector<std::string> CellPointerLabel(const Session& session, const TabulationRun& run, int cell, int column) {
  if (cell < 1 || cell > run.UsedCells || column < 1 || column > run.ColumnCount + 1 || run.Tally.empty())
    return {};
  std::vector<std::string> lines{CellName(session, run, cell, false)};
  const int code = run.Params.Code;
  const double value = run.At(cell, column);
  if (code == 301 || code == 303) {
    lines.push_back("Phase Angle = " + AngleText(Mod(value, 360.0)));
    lines.push_back("Angle of Peak = " + AngleText(Mod(value + 90.0, 360.0)));
  } else if (code == 300 || code == 302) {
    lines.push_back("Amplitude = " + FormatFixed(value, 0) + "%");
  } else if (ChiSquareApplies(run) || code == 51) {
    const ColumnTest t = CellTest(run, cell, column);
    lines.push_back("Count = " + FormatFixed(value, 1));
    const std::string heading = "Chi Sq(" + std::to_string(t.Degrees) + ") = ";
    if (t.TooSparse) {
      lines.push_back(heading + "Too Sparse");
    } else {
      lines.push_back(heading + FormatFixed(t.Chi, 1));
      lines.push_back("Prob = 1 in " + FormatFixed(t.OneIn, 0));
    }
  } else {
    lines.push_back("Count = " + FormatFixed(value, 1));
  }
  return lines;
}

int BarCellAt(const TabulationRun& run, double fraction) {
  if (!(fraction >= 0.0 && fraction < 1.0) || run.UsedCells < 1) return 0;
  return static_cast<int>(fraction * run.UsedCells) + 1;
}

int PolarCellAt(const TabulationRun& run, double angle, double radius) {
  if (!std::isfinite(angle) || !(radius >= 0.0 && radius <= 0.42) || run.UsedCells < 1) return 0;
  const int cell = static_cast<int>(Mod(angle + 90.0, 360.0) * run.UsedCells / 360.0) + 1;
  return std::clamp(cell, 1, run.UsedCells);
}

void ResultsSettings::Clamp() {
  TabulateStyle = std::clamp(TabulateStyle, 0, kTabStyles - 1);
  LastGraphType = std::clamp(LastGraphType, 0, kTabulationDisplay);
}

bool FilterBlockFor(Session& session, const TabulationRun& run, int display, int firstCell, int lastCell,
                    int firstColumn, int lastColumn, FilterBlock& block) {
  if (display != kTabulationDisplay) {
    session.ShowMessage(
        "To filter data into a new file you must choose to view the data as a tabulation, and then to select a "
        "range of cells.",
        kIconExclamation, "Cannot Filter");
    return false;
  }
  if (firstCell > lastCell) std::swap(firstCell, lastCell);
  if (firstColumn > lastColumn) std::swap(firstColumn, lastColumn);
  if (lastCell > run.CellCount) lastCell = run.CellCount;
  if (firstCell > run.CellCount || firstCell < 1) firstCell = 1;
  if (lastColumn > run.ColumnCount) lastColumn = run.ColumnCount;
  if (firstColumn > run.ColumnCount || firstColumn < 1) firstColumn = 1;
  block = {true, firstCell, lastCell, firstColumn, lastColumn};
  return true;
}

}  // namespace vintar
