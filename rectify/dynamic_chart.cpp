#include "rectify/dynamic_chart.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <sstream>

#include "calc/astro.h"
#include "calc/chart.h"
#include "calc/dynamic.h"
#include "core/calendar.h"
#include "core/file_io.h"
#include "core/parse.h"
#include "core/project_file.h"
#include "core/record_edit.h"
#include "core/text.h"

namespace vintar {
namespace {

constexpr double kDaysPerYearOfLife = 365.25;  // ages are in Julian years
constexpr double kOrbSlack = 1e-9;             // degrees: an aspect exactly at the orb counts
constexpr const char* kKeywordFile = "keywrd.fil";

std::string FormatFloat(float value) {
  std::ostringstream out;
  out << static_cast<double>(value);
  return out.str();
}

void ShowWriteError(Session& session, const std::string& error) {
  session.ShowMessage(std::string("Error whilst writing file:") + kLineEnd + kLineEnd + error, kIconExclamation,
                      "Vintar");
}

bool WriteUserFile(Session& session, const std::string& path, const std::string& bytes) {
  std::string error;
  try {
    const std::string folder = PathFolder(path);
    if (!folder.empty() && !FolderExists(folder)) {
      std::error_code ec;
      std::filesystem::create_directories(folder, ec);
    }
    if (WriteFileAtomically(path, bytes, error)) return true;
  } catch (...) {
    error = path;
  }
  ShowWriteError(session, error);
  return false;
}

int ClampType(int type) { return ClampInteger(type, 0, kDynOptionTypes - 1); }

// Local clock hours of a header time text; false when it is not a time.
bool HeaderHours(Session& session, const std::string& text, double& hours) {
  if (Trim(text).empty()) return false;
  int16_t h = 0, m = 0, s = 0;
  bool failed = false;
  ParseTime(session, text, h, m, s, false, failed);
  if (failed) return false;
  hours = h + m / 60.0 + s / 3600.0;
  return true;
}

void SetClock(ChartAdjustState& state, double hours) {
  long seconds = std::lround(Mod(hours, 24.0) * 3600.0) % 86400;
  state.Hour = static_cast<int>(seconds / 3600);
  state.Minute = static_cast<int>(seconds / 60 % 60);
  state.Second = static_cast<int>(seconds % 60);
}

std::string PointLabel(const Session& session, int point) {
  const auto& names = session.vocab.PointName;
  return point >= 1 && point < static_cast<int>(names.size()) ? names[point] : std::to_string(point);
}

std::string KeywordUserPath(const Session& session) {
  return EnsureBackslash(session.paths.UserDataPath) + kKeywordFile;
}

}  // namespace

// ---------------------------------------------------------------------------
// Options

ChartOptions LoadChartOptions(Session& session) {
  ChartOptions options;
  if (!LoadDynOptions(options.Records, OptionsLoadPath(session, OptionsFile::Chart))) {
    ResetDynOptions(options.Records);
    LoadDynOptions(options.Records, OptionsLoadPath(session, OptionsFile::Defaults));
  }
  options.StepDays = static_cast<int16_t>(StepDaysValue(session.prefs.DynStepDays));
  return options;
}

bool SaveChartOptions(Session& session, const ChartOptions& options) {
  session.prefs.DynStepDays = static_cast<int16_t>(StepDaysValue(options.StepDays));
  const std::string path = OptionsSavePath(session, OptionsFile::Chart);
  std::string error;
  if (SaveDynOptions(options.Records, path, error)) return true;
  ShowWriteError(session, error);
  return false;
}

int16_t IntervalDays(const std::string& text) {
  const double value = Val(Trim(text));
  if (!(value >= 1.0)) return 1;
  return static_cast<int16_t>(std::min(std::floor(value), 32767.0));
}

const std::vector<HarmonicChoice>& ChartHarmonicChoices() {
  static const std::vector<HarmonicChoice> choices = {
      {"4th Harmonic Aspects", 4},
      {"8th Harmonic Aspects", 8},
      {"12th Harmonic Aspects", 12},
  };
  return choices;
}

int DefaultChartHarmonic(const DynOptions& record) { return AspectHarmonicOf(record) == 12 ? 12 : 4; }

ChartOptForm OpenChartOpt(const ChartOptions& options, int dynamicType) {
  ChartOptForm form;
  form.Records = options.Records;
  form.DynType = ClampType(dynamicType);
  form.Orb = FormatFloat(form.Records[form.DynType].Orb);
  form.Interval = std::to_string(StepDaysValue(options.StepDays));
  return form;
}

namespace {
bool ApplyOrb(Session& session, ChartOptForm& form) {
  float orb = 0.0f;
  bool failed = false;
  ParseAngle(session, form.Orb, orb, failed);
  if (failed) return false;
  form.Records[ClampType(form.DynType)].Orb = orb;
  return true;
}
}  // namespace

bool ChartOptSelectType(Session& session, ChartOptForm& form, int dynamicType) {
  if (!ApplyOrb(session, form)) return false;
  form.DynType = ClampType(dynamicType);
  form.Orb = FormatFloat(form.Records[form.DynType].Orb);
  return true;
}

bool ChartOptAccept(Session& session, ChartOptForm& form, ChartOptions& options) {
  if (!ApplyOrb(session, form)) return false;
  const int16_t step = IntervalDays(form.Interval);
  form.Interval = std::to_string(step);
  ChartOptions updated;
  updated.Records = form.Records;
  updated.StepDays = step;
  if (!SaveChartOptions(session, updated)) return false;
  options = updated;
  return true;
}

// ---------------------------------------------------------------------------
// The radix

bool RadixAdjustState(Session& session, double localHours, ChartAdjustState& state) {
  const ProjectHeader& h = session.project.Header;
  bool failed = false;
  int16_t day = 0, month = 0, year = 0;
  ParseDate(session, h.Date, day, month, year, true, failed);
  if (failed) return false;
  float zone = 0.0f;
  std::string mnemonic;
  ParseZone(session, h.ZoneTime, zone, mnemonic, true, failed);
  if (failed) return false;
  double longitude = 0.0, latitude = 0.0;
  ParseLongitude(session, h.Longitude, longitude, true, failed);
  if (failed) return false;
  ParseLatitude(session, h.Latitude, latitude, true, failed);
  if (failed) return false;

  double hours = 12.0;
  if (localHours >= 0.0) {
    hours = localHours;
  } else if (!HeaderHours(session, h.Time, hours)) {
    double earliest = 0.0, latest = 0.0;
    hours = HeaderHours(session, h.EarliestTime, earliest) && HeaderHours(session, h.LatestTime, latest)
                ? (earliest + latest) / 2.0
                : 12.0;
  }
  state.Day = day;
  state.Month = month;
  state.Year = year;
  state.Zone = zone;
  state.Longitude = longitude;
  state.Latitude = latitude;
  state.Slot = kChartRadixSlot;
  SetClock(state, hours);
  return true;
}

void CastRadix(Session& session, const ChartAdjustState& state) {
  if (state.Slot < 1 || state.Slot > kSlots) return;
  CastChart(session, state.Slot, state.Day, state.Month, state.Year,
            state.Hour + state.Minute / 60.0 + state.Second / 3600.0, state.Zone, state.Longitude, state.Latitude);
  ChartSlot& slot = session.charts.Slots[state.Slot];
  slot.ChartName = session.project.Header.Name;
  slot.ChartPlace = session.project.Header.Place;
}

double SetRadixMC(Session& session, ChartAdjustState& state, double mc) {
  if (state.Slot < 1 || state.Slot > kSlots || !std::isfinite(mc)) return 0.0;
  const double hours = state.Hour + state.Minute / 60.0 + state.Second / 3600.0;
  const AnglesFromMCResult r = AnglesFromMC(session, Mod(mc, 360.0), state.Day, state.Month, state.Year, hours,
                                            state.Zone, state.Longitude, state.Latitude);
  SetClock(state, r.LocalHours);
  CastRadix(session, state);
  return session.charts.Longitude[kGeocentric][state.Slot][kMidheaven];
}

bool StoreRadixTime(Session& session, const ChartAdjustState& state) {
  NatalFields fields = NatalFieldsFromHeader(session.project.Header);
  fields.Time = FormatTime(state.Hour, state.Minute, state.Second, session.prefs.AMPM != 0);
  if (!ApplyNatalEntry(session, fields)) return false;
  UpdateTitle(session, session.project.ProjectPath);
  return true;
}

// ---------------------------------------------------------------------------
// The moving chart

void DynamicChart(Session& session, DynamicChartState& state, double jd) {
  state.DynamicType = ClampType(state.DynamicType);
  state.Method = ClampInteger(state.Method, kNaibod, kMeanQuotidian);
  state.JD = jd;
  DynamicChart(session, kChartDynamicSlot, kChartRadixSlot, jd, state.DynamicType, state.Method);
  if (state.DynamicType == kTransits || state.Method != kNaibod) return;

  // Naibod in sidereal time: the radix sidereal time of the birth moment
  // grows by a fixed measure for each year of life.
  const ChartSlot& radix = session.charts.Slots[kChartRadixSlot];
  ChartSlot& moving = session.charts.Slots[kChartDynamicSlot];
  const double years = (CenturiesFrom1900(jd) - CenturiesFrom1900(radix.ChartJD)) * 100.0;
  const double radixLst = Mod((radix.Ramc + radix.Longitude) / 15.0, 24.0);
  const double lst = Mod(radixLst + years * kNaibodHoursPerYear, 24.0);
  const double ramc = Mod(Ramc(lst, radix.Longitude), 360.0);
  ComputeAngles(session, kChartDynamicSlot, ramc, moving.Obliquity, radix.Latitude, moving.SiderealOffset);
  moving.Ramc = ramc;
  CalcHouses(session, kChartDynamicSlot, ramc, moving.Obliquity, radix.Latitude, session.prefs.Houses,
             moving.SiderealOffset);
}

bool AspectWithin(double moving, double radix, int harmonic, double orb, double& angle, double& distance) {
  if (harmonic < 1 || !std::isfinite(moving) || !std::isfinite(radix)) return false;
  const double step = 360.0 / harmonic;
  const double separation = Mod(moving - radix, 360.0);
  const double exact = std::floor(separation / step + 0.5) * step;
  distance = separation - exact;
  if (!(std::fabs(distance) <= orb + kOrbSlack)) return false;
  const double a = Mod(exact, 360.0);
  angle = a > 180.0 ? 360.0 - a : a;
  return true;
}

std::vector<ChartAspect> ChartAspects(const Session& session, const DynamicChartState& state) {
  std::vector<ChartAspect> aspects;
  const DynOptions& record = state.Options.Records[ClampType(state.DynamicType)];
  const auto& lon = session.charts.Longitude[kGeocentric];
  for (int p = 1; p <= kPoints; ++p) {
    if (!record.DynamicPoints[p] || lon[kChartDynamicSlot][p] < 0.0) continue;
    for (int q = 1; q <= kPoints; ++q) {
      if (!record.RadixPoints[q] || lon[kChartRadixSlot][q] < 0.0) continue;
      ChartAspect a;
      if (!AspectWithin(lon[kChartDynamicSlot][p], lon[kChartRadixSlot][q], state.Harmonic, record.Orb, a.Angle,
                        a.Orb))
        continue;
      a.Moving = p;
      a.Radix = q;
      const auto& angles = session.vocab.AspectAngle;
      for (int i = 1; i < static_cast<int>(angles.size()); ++i)
        if (std::fabs(angles[i] - a.Angle) < 1e-6) a.AspectIndex = i;
      aspects.push_back(a);
    }
  }
  std::stable_sort(aspects.begin(), aspects.end(),
                   [](const ChartAspect& x, const ChartAspect& y) { return std::fabs(x.Orb) < std::fabs(y.Orb); });
  return aspects;
}

std::string ChartAspectLine(const Session& session, const ChartAspect& aspect) {
  const auto& names = session.vocab.AspectName;
  std::string name = aspect.AspectIndex > 0 && aspect.AspectIndex < static_cast<int>(names.size())
                         ? names[aspect.AspectIndex]
                         : std::to_string(std::lround(aspect.Angle));
  const long minutes = std::lround(std::fabs(aspect.Orb) * 60.0);
  char orb[32];
  std::snprintf(orb, sizeof orb, "%ld%c%02ld'", minutes / 60, kDegreeSign, minutes % 60);
  return PointLabel(session, aspect.Moving) + " " + name + " " + PointLabel(session, aspect.Radix) + "  " + orb;
}

// ---------------------------------------------------------------------------
// Dates and events

std::string ChartAgeText(double jd, double radixJD) {
  char buffer[48];
  std::snprintf(buffer, sizeof buffer, "%.1f", (jd - radixJD) / kDaysPerYearOfLife);
  return std::string(buffer) + " Years";
}

std::string ChartDateText(const Session& session, double jd) {
  float day = 0.0f;
  int month = 1, year = 2000;
  RevJul(jd, day, month, year);
  return FormatDate(session, static_cast<int>(day), month, year);
}

bool ParseChartDate(Session& session, const std::string& text, double& jd) {
  int16_t day = 0, month = 0, year = 0;
  bool failed = false;
  ParseDate(session, text, day, month, year, true, failed);
  if (failed) return false;
  jd = JulDay(day, month, year) + 0.5;
  return true;
}

std::string EventListLine(const Session& session, int record) {
  const ProjectState& p = session.project;
  const int count = std::min<int>(p.Header.RecordCount, static_cast<int>(p.Events.size()) - 1);
  if (record < 1 || record > count) return "";
  const EventRecord& e = p.Events[record];
  const int month = ClampInteger(e.Month, 1, 12);
  const std::string& monthName = session.vocab.MonthName.size() > 12 ? session.vocab.MonthName[month] : "";
  const std::string shortMonth = monthName.substr(0, 3);
  const std::string day = std::to_string(e.Day);
  const std::string year = ZeroPad((e.Year % 100 + 100) % 100, 2);
  const std::string date =
      session.prefs.MonthFirst ? shortMonth + " " + day + " " + year : day + " " + shortMonth + " " + year;
  return date + "  " + e.Description;
}

int EventNearestDate(const Session& session, double jd) {
  const ProjectState& p = session.project;
  const int count = std::min<int>(p.Header.RecordCount, static_cast<int>(p.Events.size()) - 1);
  double best = 1e99;
  int nearest = 0;
  for (int n = 1; n <= count; ++n) {
    const double d = std::fabs(p.Events[n].JulianDay - jd);
    if (d < best) {
      best = d;
      nearest = n;
    }
  }
  return nearest;
}

// ---------------------------------------------------------------------------
// Keywords

std::string EncodeKeywords(const KeywordTable& table) {
  std::string out;
  for (const std::string& text : table.Text) {
    std::string field = text;
    // A quoted field cannot hold its own quote mark or a line end.
    for (char& c : field) {
      if (c == '"') c = '\'';
      if (c == '\r' || c == '\n') c = ' ';
    }
    out += "\"" + RTrim(field) + "\"" + kLineEnd;
  }
  return out;
}

KeywordTable DecodeKeywords(const std::string& bytes) {
  KeywordTable table;
  size_t start = 0;
  for (int item = 0; item < kKeywordItems && start < bytes.size(); ++item) {
    size_t end = bytes.find('\n', start);
    if (end == std::string::npos) end = bytes.size();
    std::string line = bytes.substr(start, end - start);
    start = end + 1;
    if (!line.empty() && line.back() == '\r') line.pop_back();
    line = Trim(line);
    if (!line.empty() && line.front() == '"') {
      const size_t close = line.find('"', 1);
      line = line.substr(1, close == std::string::npos ? std::string::npos : close - 1);
    }
    table.Text[item] = line;
  }
  return table;
}

KeywordTable LoadKeywords(const Session& session) {
  std::string path = KeywordUserPath(session);
  if (!FileExists(path)) path = EnsureBackslash(session.paths.SystemDataPath) + kKeywordFile;
  std::string bytes;
  if (ReadFileBytes(path, bytes, kMaxSmallFileBytes) != 0) return KeywordTable{};
  return DecodeKeywords(bytes);
}

bool SaveKeywords(Session& session, const KeywordTable& table) {
  return WriteUserFile(session, KeywordUserPath(session), EncodeKeywords(table));
}

std::vector<int> KeywordItemsOfHit(const Session& session, int radixPoint, double angle) {
  std::vector<int> items;
  if (radixPoint < 1 || radixPoint > kPoints) return items;
  const bool opposition = std::fabs(angle - 180.0) < 1e-6;
  if (opposition && radixPoint == kAscendant)
    items.push_back(kDescendantItem);
  else if (opposition && radixPoint == kMidheaven)
    items.push_back(kICItem);
  else
    items.push_back(radixPoint - 1);
  for (int house : RuledHouses(session, kChartRadixSlot, radixPoint))
    if (house >= 1 && house <= 12) items.push_back(kFirstHouseItem + house - 1);
  return items;
}

std::vector<std::string> HitKeywordLines(const Session& session, const KeywordTable& table,
                                         const ChartAspect& aspect) {
  std::vector<std::string> lines;
  auto add = [&](int item) {
    if (item < 0 || item >= kKeywordItems || Trim(table.Text[item]).empty()) return;
    const auto& headings = session.vocab.KeywordHeading;
    const std::string heading = item < static_cast<int>(headings.size()) ? headings[item] : "";
    lines.push_back(heading + ": " + table.Text[item]);
  };
  if (aspect.Moving >= 1 && aspect.Moving <= kPoints) add(aspect.Moving - 1);
  for (int item : KeywordItemsOfHit(session, aspect.Radix, aspect.Angle)) add(item);
  return lines;
}

// ---------------------------------------------------------------------------
// A record's chart

bool RecordAdjustState(Session& session, int record, ChartAdjustState& state, RadixLabel* label) {
  const ProjectState& project = session.project;
  const int count = std::min<int>(project.Header.RecordCount, static_cast<int>(project.Events.size()) - 1);
  if (record < 1 || record > count) return false;
  const EventRecord& e = project.Events[record];
  if (e.Month < 1 || e.Month > 12 || e.Day < 1 || e.Day > 31) return false;
  const std::string name = Trim(e.Description);
  if (!FieldsForDetail(e.DetailLevel).place) {
    session.ShowMessage("There is no place of birth for " + (name.empty() ? "record " + std::to_string(record) : name) +
                            ", so its chart cannot be drawn.",
                        kIconInformation, "Chart Strips");
    return false;
  }
  ChartAdjustState s;
  s.Day = e.Day;
  s.Month = e.Month;
  s.Year = e.Year;
  s.Zone = e.ZoneHours;
  s.Longitude = e.Longitude;
  s.Latitude = e.Latitude;
  s.Slot = kChartRadixSlot;
  // A record's detail levels nest: one with a place has its clock time too.
  s.Hour = e.Hour;
  s.Minute = e.Minute;
  s.Second = e.Second;
  state = s;
  if (label) *label = RadixLabel{name, Trim(e.Placename)};
  return true;
}

void CastRadix(Session& session, const ChartAdjustState& state, const RadixLabel& label) {
  CastRadix(session, state);
  if (state.Slot < 1 || state.Slot > kSlots) return;
  ChartSlot& slot = session.charts.Slots[state.Slot];
  slot.ChartName = label.Name;
  slot.ChartPlace = label.Place;
}

}  // namespace vintar
