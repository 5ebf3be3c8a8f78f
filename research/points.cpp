#include "research/points.h"

#include <algorithm>
#include <bit>
#include <cerrno>
#include <cmath>
#include <cstring>

#include "calc/astro.h"
#include "calc/chart.h"
#include "core/file_io.h"
#include "core/parse.h"
#include "core/text.h"
#include "research/dignity.h"

namespace vintar {
namespace {

constexpr double kSynodicMonth = 29.53059027778;
constexpr double kLunationTolerance = 0.000018;  // degrees of elongation
constexpr int kLunationIterations = 50;           // Newton's steps; four or five are the rule
constexpr int kPartDepthLimit = 8;                 // parts made of parts, nested no deeper
constexpr int kPrenatalSlot = 6;
constexpr int kLastTransform = 16;
constexpr int kLastPointType = kPrenatalType;
constexpr int kFortunePoint = kFortunePseudoPoint;

// ------------------------------------------------------------------ chart access

int Frame(const Session& session) {
  return session.cache.Coordinate == kHeliocentric ? kHeliocentric : kGeocentric;
}

double PointLongitude(const Session& session, int slot, int point) {
  if (point < 1 || point > kPoints) return -1.0;
  return session.charts.Longitude[Frame(session)][slot][point];
}

// The chart's JD in the time scale its positions were cast in.
double ChartJD(const Session& session, int slot) { return session.charts.Slots[slot].T * 36525.0 + 2415020.0; }

bool IsAngle(int point) { return point >= kAscendant && point <= kEastPoint; }

// The midpoint on the shorter arc between two longitudes.
double NearMidpoint(double a, double b) {
  double mid = (a + b) / 2.0;
  if (std::fabs(a - b) > 180.0) mid += 180.0;
  return Mod(mid, 360.0);
}

// The Part of Fortune: Ascendant + Moon - Sun by day, Ascendant - Moon + Sun by night.
double FortuneLongitude(const Session& session, int slot, bool dayFormula) {
  const double asc = PointLongitude(session, slot, kAscendant);
  const double moon = PointLongitude(session, slot, kMoon);
  const double sun = PointLongitude(session, slot, kSun);
  if (asc < 0 || moon < 0 || sun < 0) return -1.0;
  return dayFormula ? Mod(asc + moon - sun, 360.0) : Mod(asc - moon + sun, 360.0);
}

void EnsureDignityData(Session& session, ResearchState& state) {
  if (state.Dignity.Loaded) return;
  int16_t failed = 0;
  LoadDignityData(session, state.Dignity, failed);
}

// ------------------------------------------------------------------ prenatal lunations

// The lunation of `kind` before the chart: 0 the last syzygy, 1 + q the last
// moment the elongation was q * 90.
const PrenatalResult& ChartLunation(Session& session, ResearchChart& chart, int kind) {
  if (!chart.PrenatalDone[kind]) {
    const auto& geo = session.charts.Longitude[kGeocentric][chart.Slot];
    const double elongation = geo[kMoon] >= 0 && geo[kSun] >= 0 ? Mod(geo[kMoon] - geo[kSun], 360.0) : -1.0;
    const double jd = ChartJD(session, chart.Slot);
    chart.Prenatal[kind] = kind == 0 ? PrenatalSearch(session, jd, elongation, 0.0, true, true)
                                     : PrenatalSearch(session, jd, elongation, (kind - 1) * 90.0, true, false);
    chart.PrenatalDone[kind] = true;
  }
  return chart.Prenatal[kind];
}

// Prenatal position 1 to 6 (syzygy Moon, Sun, elevated; new moon; full moon
// Moon, Sun) and the body it is; -1 for none.
double PrenatalLongitude(Session& session, ResearchChart& chart, int item, int& body) {
  body = kMoon;
  switch (item) {
    case 1: return ChartLunation(session, chart, 0).Moon;
    case 2: body = kSun; return ChartLunation(session, chart, 0).Sun;
    case 3: {
      const PrenatalResult& r = ChartLunation(session, chart, 0);
      const double mc = session.charts.Longitude[kGeocentric][chart.Slot][kMidheaven];
      const double dm = std::fabs(Mod(mc - r.Moon + 180.0, 360.0) - 180.0);
      const double ds = std::fabs(Mod(mc - r.Sun + 180.0, 360.0) - 180.0);
      if (ds > dm) return r.Moon;
      body = kSun;
      return r.Sun;
    }
    case 4: return ChartLunation(session, chart, 1).Moon;
    case 5: return ChartLunation(session, chart, 3).Moon;
    case 6: body = kSun; return ChartLunation(session, chart, 3).Sun;
    default: body = 0; return -1.0;
  }
}

// ------------------------------------------------------------------ Arabic parts

struct PartContext {
  Session& session;
  ResearchState& state;
  ResearchChart& chart;
  const std::vector<PartDef>& parts;
  bool forceDayFortune = false;
};

double PartLongitude(PartContext& cx, int index, int depth);

double RulerLongitude(PartContext& cx, double longitude) {
  if (longitude < 0) return -1.0;
  const int ruler = SetSign(cx.state.Dignity, cx.state.Dignity.ActiveRulerSet, SignOf(longitude)).Ruler;
  return PointLongitude(cx.session, cx.chart.Slot, ruler);
}

double TermPointLongitude(PartContext& cx, int point) {
  if (point == kFortunePoint) return FortuneLongitude(cx.session, cx.chart.Slot, cx.chart.IsDay || cx.forceDayFortune);
  return PointLongitude(cx.session, cx.chart.Slot, point);
}

double CuspLongitude(const Session& session, int slot, int cusp) {
  if (cusp < 1 || cusp > 12) return -1.0;
  return session.charts.Slots[slot].Cusps[cusp];
}

double TermLongitude(PartContext& cx, const PartTerm& term, int depth) {
  const int slot = cx.chart.Slot;
  switch (term.Kind) {
    case 0: return term.Degrees;  // any number of degrees, negative too
    case 1: return TermPointLongitude(cx, term.Item);
    case 2: return RulerLongitude(cx, TermPointLongitude(cx, term.Item));
    case 3: return CuspLongitude(cx.session, slot, term.Item);
    case 4: return RulerLongitude(cx, CuspLongitude(cx.session, slot, term.Item));
    case 5: return depth < kPartDepthLimit ? PartLongitude(cx, term.Item, depth + 1) : -1.0;
    case 6:
      if (term.Item < 1 || term.Item > 4) return -1.0;
      return ChartLunation(cx.session, cx.chart, term.Item).Moon;
    default: return -1.0;
  }
}

double PartLongitude(PartContext& cx, int index, int depth) {
  if (index < 1 || index > static_cast<int>(cx.parts.size())) return -1.0;
  const PartDef& part = cx.parts[index - 1];
  if ((part.SectRule == 1 && !cx.chart.IsDay) || (part.SectRule == 2 && cx.chart.IsDay)) return -1.0;
  EnsureCusps(cx.session, cx.chart);
  double sum = 0.0;
  for (int k = 0; k < 3; ++k) {
    const PartTerm& term = part.Terms[k];
    if (term.Kind == 0 && !std::isfinite(term.Degrees)) return -1.0;
    const double value = TermLongitude(cx, term, depth);
    if (term.Kind != 0 && value < 0) return -1.0;
    sum += k == 2 ? -value : value;
  }
  return Mod(sum, 360.0);
}

const std::vector<PartDef>& PartsOfFile(Session& session, ResearchState& state, const std::string& file) {
  if (Trim(file).empty()) return state.Parts;
  for (const auto& [name, parts] : state.AlmutenParts)
    if (EqualsIgnoreCase(name, file)) return parts;
  std::vector<PartDef> parts;
  std::string bytes, error;
  if (ReadFileBytes(ResolveListFile(session, Trim(file)), bytes, kMaxSmallFileBytes) == 0)
    parts = ParseParts(bytes, session.vocab.NodePoint, error);
  state.AlmutenParts.emplace_back(file, std::move(parts));
  return state.AlmutenParts.back().second;
}

// The item longitudes a chart almuten scores.
double AlmutenItemLongitude(Session& session, ResearchState& state, ResearchChart& chart, const AlmutenDef& def,
                            int item) {
  const int slot = chart.Slot;
  if (item >= 1 && item <= 99) {
    if (item == kFortunePoint) return FortuneLongitude(session, slot, chart.IsDay || def.ForceDayFortune != 0);
    if (item == 25) {
      const double node = PointLongitude(session, slot, session.vocab.NodePoint);
      return node < 0 ? -1.0 : Mod(node + 180.0, 360.0);
    }
    return PointLongitude(session, slot, FilePointCode(item, session.vocab.NodePoint));
  }
  if (item == 101 || item == 102) {
    const double angle = PointLongitude(session, slot, item == 101 ? kAscendant : kMidheaven);
    return angle < 0 ? -1.0 : Mod(angle + 180.0, 360.0);
  }
  if (item >= 103 && item <= 108) {
    int body = 0;
    return PrenatalLongitude(session, chart, item - 102, body);
  }
  if (item >= 201 && item <= 212) {
    if (chart.AlmutenHouseSystem != def.HouseSystem) {
      // Cast beside the slot's own cusps, which the chart's other points read.
      const ChartSlot& s = session.charts.Slots[slot];
      const auto& lon = session.charts.Longitude[kGeocentric][slot];
      HouseInput in;
      in.Ramc = s.Ramc;
      in.Obliquity = s.Obliquity;
      in.Latitude = s.Latitude;
      in.Offset = s.SiderealOffset;
      in.Ascendant = lon[kAscendant];
      in.Midheaven = lon[kMidheaven];
      in.Sun = lon[kSun];
      in.UserPoint = lon[ClampInteger(session.prefs.PointOnCusp, 1, kPoints)];
      in.UserCusp = session.prefs.WhichCusp;
      chart.AlmutenCusps.fill(-1.0);
      CalcHouseCusps(def.HouseSystem, in, chart.AlmutenCusps);
      chart.AlmutenHouseSystem = def.HouseSystem;
    }
    return chart.AlmutenCusps[item - 200];
  }
  if (item >= 301 && item <= 999) {
    const std::vector<PartDef>& parts = PartsOfFile(session, state, def.PartsFile);
    PartContext cx{session, state, chart, parts, def.ForceDayFortune != 0};
    return PartLongitude(cx, item - 300, 0);
  }
  return -1.0;
}

// ------------------------------------------------------------------ names

std::string ChartPointName(const Session& session, int point) {
  if (point == kTrueNode) return "True Node";
  if (point == kMeanNode) return "Mean Node";
  if (point >= 1 && point <= kPoints && point < static_cast<int>(session.vocab.PointName.size()))
    return session.vocab.PointName[point];
  return "Point " + std::to_string(point);
}

// A chart point by name: "The Sun", "Sun", "True Node", "North Node" (the live node).
int ChartPointByName(const Session& session, const std::string& text) {
  const std::string name = Trim(text);
  if (EqualsIgnoreCase(name, "True Node")) return kTrueNode;
  if (EqualsIgnoreCase(name, "Mean Node")) return kMeanNode;
  if (EqualsIgnoreCase(name, "North Node") || EqualsIgnoreCase(name, "Node")) return session.vocab.NodePoint;
  for (int point = 1; point <= kPoints && point < static_cast<int>(session.vocab.PointName.size()); ++point) {
    const std::string& full = session.vocab.PointName[point];
    if (EqualsIgnoreCase(name, full)) return point;
    if (StartsWithIgnoreCase(full, "The ") && EqualsIgnoreCase(name, full.substr(4))) return point;
  }
  return 0;
}

// ------------------------------------------------------------------ little-endian fields

void PutLE(std::string& out, size_t at, uint32_t value, int bytes) {
  for (int i = 0; i < bytes; ++i) out[at + i] = static_cast<char>((value >> (8 * i)) & 0xFF);
}

uint32_t GetLE(const std::string& in, size_t at, int bytes) {
  uint32_t value = 0;
  for (int i = 0; i < bytes; ++i) value |= static_cast<uint32_t>(static_cast<unsigned char>(in[at + i])) << (8 * i);
  return value;
}

void PutText(std::string& out, size_t at, const std::string& text, size_t width) {
  for (size_t i = 0; i < width; ++i) out[at + i] = i < text.size() ? text[i] : ' ';
}

std::string GetText(const std::string& in, size_t at, size_t width) {
  std::string text = in.substr(at, width);
  while (!text.empty() && (text.back() == ' ' || text.back() == '\0')) text.pop_back();
  return text;
}

}  // namespace

// ------------------------------------------------------------------ names

std::string PointName(const Session& session, const ResearchState& state, const PointRef& ref) {
  std::string base;
  switch (ref.PointType) {
    case kChartPointType: base = ChartPointName(session, ref.Item1); break;
    case kFixedPositionType: base = ZodiacPosition(session, ref.Position, false); break;
    case kMidpointType: base = ChartPointName(session, ref.Item1) + "/" + ChartPointName(session, ref.Item2); break;
    case kHouseCuspType: base = FormatOrdinal(ref.Item1) + " House Cusp"; break;
    case kArabicPartType:
      base = ref.Item1 >= 1 && ref.Item1 <= state.Parts.size() ? state.Parts[ref.Item1 - 1].Name : "*Invalid Part*";
      break;
    case kChartAlmutenType:
      base = ref.Item1 >= 1 && ref.Item1 <= state.Almutens.size() ? Trim(state.Almutens[ref.Item1 - 1].Name)
                                                                  : "*Invalid Almuten*";
      break;
    case kPrenatalType:
      base = ref.Item1 >= 1 && ref.Item1 <= session.vocab.PrenatalName.size() ? session.vocab.PrenatalName[ref.Item1 - 1]
                                                                             : "Prenatal " + std::to_string(ref.Item1);
      break;
    default: base = "Point type " + std::to_string(ref.PointType); break;
  }
  std::string prefix;
  if (ref.Transform > 0 && ref.Transform < static_cast<int>(session.vocab.TransformPrefix.size()))
    prefix = session.vocab.TransformPrefix[ref.Transform];
  return LTrim(prefix + " " + base);
}

// ------------------------------------------------------------------ part and almuten lists

bool LoadParts(Session& session, ResearchState& state, const std::string& path, std::string& error) {
  error.clear();
  if (UCase(path) == UCase(state.PartsFileName) && !state.Parts.empty()) return true;
  state.PartsFileName = path;
  state.Parts.clear();
  std::string text;
  const int err = ReadFileBytes(path, text, kMaxSmallFileBytes);
  if (err == ENOENT || Trim(path).empty()) return true;
  if (err != 0) {
    error = FileErrorText(err);
    return false;
  }
  state.Parts = ParseParts(text, session.vocab.NodePoint, error);
  return error.empty();
}

bool LoadAlmutens(Session&, ResearchState& state, const std::string& path, std::string& error) {
  error.clear();
  if (UCase(path) == UCase(state.AlmutenFileName) && !state.Almutens.empty()) return true;
  state.AlmutenFileName = path;
  state.Almutens.clear();
  std::string bytes;
  const int err = ReadFileBytes(path, bytes, kMaxSmallFileBytes);
  if (err == ENOENT || Trim(path).empty()) return true;
  if (err != 0) {
    error = FileErrorText(err);
    return false;
  }
  state.Almutens = ParseAlmutens(bytes);
  return true;
}

std::string ResolveListFile(const Session& session, const std::string& path) {
  const std::string given = Trim(path);
  if (given.empty() || FileExists(given)) return given;
  // A list saved elsewhere names its files by that machine's path: look for
  // the bare file name in the places this session keeps such files.
  const size_t cut = given.find_last_of("\\/");
  const std::string name = cut == std::string::npos ? given : given.substr(cut + 1);
  if (name.empty()) return given;
  for (const std::string& folder :
       {session.project.ProjectFolder, session.paths.UserDataPath, session.paths.SystemDataPath}) {
    if (folder.empty()) continue;
    const std::string candidate = EnsureBackslash(folder) + name;
    if (FileExists(candidate)) return candidate;
  }
  return given;
}

// ------------------------------------------------------------------ .vpt files

std::string EncodePointList(const PointListHeader& header, const std::vector<PointRef>& refs) {
  const size_t count = std::min<size_t>(refs.size(), 0x7FFF);
  std::string out(kPointListHeaderSize + count * kPointRefSize, '\0');
  PutText(out, 0, header.PartsFile, 255);
  PutText(out, 255, header.AlmutenFile, 255);
  PutLE(out, 510, static_cast<uint32_t>(count), 2);
  for (size_t i = 0; i < header.Carried.size() && i < 1024; ++i) out[512 + i] = header.Carried[i];
  for (size_t i = 0; i < count; ++i) {
    const PointRef& r = refs[i];
    const size_t at = kPointListHeaderSize + i * kPointRefSize;
    PutLE(out, at, static_cast<uint32_t>(r.PointType), 4);
    out[at + 4] = static_cast<char>(r.Item1);
    out[at + 5] = static_cast<char>(r.Item2);
    PutLE(out, at + 6, std::bit_cast<uint32_t>(r.Position), 4);
    PutLE(out, at + 10, static_cast<uint32_t>(r.Transform), 4);
  }
  return out;
}

bool DecodePointList(const std::string& bytes, PointListHeader& header, std::vector<PointRef>& refs,
                     std::string& error) {
  error.clear();
  if (bytes.size() < static_cast<size_t>(kPointListHeaderSize)) {
    error = "The file is too short to hold a point list header.";
    return false;
  }
  PointListHeader h;
  h.PartsFile = GetText(bytes, 0, 255);
  h.AlmutenFile = GetText(bytes, 255, 255);
  h.PointCount = static_cast<int16_t>(GetLE(bytes, 510, 2));
  h.Carried = bytes.substr(512, 1024);
  if (h.PointCount < 0 || h.PointCount > kMaxSelectedPoints) {
    error = "The point count " + std::to_string(h.PointCount) + " is out of range.";
    return false;
  }
  const size_t need = kPointListHeaderSize + static_cast<size_t>(h.PointCount) * kPointRefSize;
  if (bytes.size() < need) {
    error = "The file holds fewer points than its count of " + std::to_string(h.PointCount) + ".";
    return false;
  }
  std::vector<PointRef> list;
  for (int i = 0; i < h.PointCount; ++i) {
    const size_t at = kPointListHeaderSize + static_cast<size_t>(i) * kPointRefSize;
    PointRef r;
    r.PointType = static_cast<int32_t>(GetLE(bytes, at, 4));
    r.Item1 = static_cast<uint8_t>(bytes[at + 4]);
    r.Item2 = static_cast<uint8_t>(bytes[at + 5]);
    r.Position = std::bit_cast<float>(GetLE(bytes, at + 6, 4));
    r.Transform = static_cast<int32_t>(GetLE(bytes, at + 10, 4));
    if (r.PointType < 0 || r.PointType > kLastPointType || r.Transform < 0 || r.Transform > kLastTransform) {
      error = "Point " + std::to_string(i + 1) + " has an unknown type or transformation.";
      return false;
    }
    if (!std::isfinite(r.Position)) {
      if (r.PointType == kFixedPositionType) {
        error = "Point " + std::to_string(i + 1) + " has no valid position.";
        return false;
      }
      r.Position = 0.0f;  // unused by the other types; kept comparable
    }
    list.push_back(r);
  }
  header = std::move(h);
  refs = std::move(list);
  return true;
}

bool SavePointList(Session& session, const std::string& path, const ResearchState& state) {
  PointListHeader header = state.Header;
  header.PartsFile = state.PartsFileName;
  header.AlmutenFile = state.AlmutenFileName;
  header.PointCount = static_cast<int16_t>(std::min<size_t>(state.Selected.size(), kMaxSelectedPoints));
  std::vector<PointRef> refs(state.Selected.begin(), state.Selected.begin() + header.PointCount);
  std::string error;
  if (!WriteFileAtomically(path, EncodePointList(header, refs), error)) {
    session.ShowMessage(error, kIconExclamation, "Save Selected Points");
    return false;
  }
  return true;
}

bool OpenPointList(Session& session, ResearchState& state, const std::string& path) {
  std::string bytes, error;
  const int err = ReadFileBytes(path, bytes, kMaxSmallFileBytes);
  if (err != 0) {
    session.ShowMessage("Unable to open " + path + kLineEnd + FileErrorText(err), kIconStop, "Open Points File");
    return false;
  }
  PointListHeader header;
  std::vector<PointRef> refs;
  if (!DecodePointList(bytes, header, refs, error)) {
    session.ShowMessage(path + " is not a valid points file." + kLineEnd + error, kIconStop, "Open Points File");
    return false;
  }
  state.Header = header;
  state.Selected = std::move(refs);
  std::string partsError, almutenError;
  LoadParts(session, state, ResolveListFile(session, header.PartsFile), partsError);
  LoadAlmutens(session, state, ResolveListFile(session, header.AlmutenFile), almutenError);
  for (const std::string* e : {&partsError, &almutenError})
    if (!e->empty()) session.ShowMessage(*e, kIconExclamation, "Open Points File");
  return true;
}

// ------------------------------------------------------------------ list editing

int AddPoint(Session& session, std::vector<PointRef>& list, const PointRef& ref) {
  if (static_cast<int>(list.size()) >= kMaxSelectedPoints) {
    session.ShowMessage("The limit of " + std::to_string(kMaxSelectedPoints) +
                            " has been reached. You cannot add any more points unless you remove some others first.",
                        kIconStop, "Cannot Add");
    return -1;
  }
  for (size_t i = 0; i < list.size(); ++i)
    if (list[i] == ref) return static_cast<int>(i);
  list.push_back(ref);
  return static_cast<int>(list.size()) - 1;
}

void AddAllMidpoints(Session& session, std::vector<PointRef>& list, int point, int transform) {
  for (int other = 1; other <= kPoints; ++other) {
    if (other == point) continue;
    PointRef ref;
    ref.PointType = kMidpointType;
    ref.Item1 = static_cast<uint8_t>(point);
    ref.Item2 = static_cast<uint8_t>(other);
    ref.Transform = transform;
    if (AddPoint(session, list, ref) < 0) return;
  }
}

ListFileButton ListFileButtonFor(int pointType) {
  if (pointType == kArabicPartType) return {"Parts File...", "Select Parts File", "Parts Files (*.arp)|*.arp"};
  if (pointType == kChartAlmutenType)
    return {"Almuten File...", "Select Almutens File", "Almuten Files (*.alm)|*.alm"};
  return {};
}

std::string ChangeFileWarning(int selectedCount) {
  return "If you select a different file, then the " + std::to_string(selectedCount) +
         " existing selected points from the old file may be changed or invalidated!";
}

int TransformByName(const Session& session, const std::string& name) {
  const std::string text = Trim(name);
  const auto& names = session.vocab.TransformName;
  const auto& prefixes = session.vocab.TransformPrefix;
  for (size_t t = 0; t < names.size(); ++t) {
    if (EqualsIgnoreCase(text, names[t])) return static_cast<int>(t);
    if (t > 0 && t < prefixes.size() && EqualsIgnoreCase(text + " of", prefixes[t])) return static_cast<int>(t);
  }
  return -1;
}

bool PointByName(const Session& session, const ResearchState& state, const std::string& name, PointRef& ref) {
  std::string text = Trim(name);
  PointRef r;
  // A transformation prefix first, longest first so "C.Antiscia of" is not
  // read as "Antiscia of".
  int best = 0;
  size_t bestLength = 0;
  const auto& prefixes = session.vocab.TransformPrefix;
  for (size_t t = 1; t < prefixes.size(); ++t) {
    const std::string p = prefixes[t] + " ";
    if (p.size() > bestLength && StartsWithIgnoreCase(text, p)) {
      best = static_cast<int>(t);
      bestLength = p.size();
    }
  }
  r.Transform = best;
  text = Trim(text.substr(bestLength));
  if (text.empty()) return false;

  auto found = [&](int type, int item1, int item2 = 0, float position = 0.0f) {
    r.PointType = type;
    r.Item1 = static_cast<uint8_t>(item1);
    r.Item2 = static_cast<uint8_t>(item2);
    r.Position = position;
    ref = r;
    return true;
  };

  if (int point = ChartPointByName(session, text)) return found(kChartPointType, point);
  for (int cusp = 1; cusp <= 12; ++cusp)
    if (EqualsIgnoreCase(text, FormatOrdinal(cusp) + " House Cusp") ||
        EqualsIgnoreCase(text, FormatOrdinal(cusp) + " Cusp"))
      return found(kHouseCuspType, cusp);
  for (size_t i = 0; i < session.vocab.PrenatalName.size(); ++i)
    if (EqualsIgnoreCase(text, session.vocab.PrenatalName[i])) return found(kPrenatalType, static_cast<int>(i) + 1);
  for (size_t i = 0; i < state.Parts.size() && i < 255; ++i) {
    const PartDef& part = state.Parts[i];
    const std::string bare = StartsWithIgnoreCase(part.Name, "Part of ") ? part.Name.substr(8) : part.Name;
    if (EqualsIgnoreCase(text, part.Name) || EqualsIgnoreCase(text, bare) ||
        (!Trim(part.Abbrev).empty() && EqualsIgnoreCase(text, Trim(part.Abbrev))))
      return found(kArabicPartType, static_cast<int>(i) + 1);
  }
  for (size_t i = 0; i < state.Almutens.size() && i < 255; ++i) {
    const AlmutenDef& def = state.Almutens[i];
    if (EqualsIgnoreCase(text, Trim(def.Name)) ||
        (!Trim(def.ShortName).empty() && EqualsIgnoreCase(text, Trim(def.ShortName))))
      return found(kChartAlmutenType, static_cast<int>(i) + 1);
  }
  if (const size_t slash = text.find('/'); slash != std::string::npos) {
    const int a = ChartPointByName(session, text.substr(0, slash));
    const int b = ChartPointByName(session, text.substr(slash + 1));
    if (a && b) return found(kMidpointType, a, b);
    return false;
  }
  if (text.find_first_of("0123456789") != std::string::npos) {
    // The angle parser speaks its own message; a name that is no angle is
    // simply no match here.
    CapturingSink quiet;
    Session copy(session, quiet);
    float angle = 0.0f;
    bool failed = false;
    ParseAngle(copy, text, angle, failed);
    if (!failed) return found(kFixedPositionType, 0, 0, angle);
  }
  return false;
}

// ------------------------------------------------------------------ evaluation

void EnsureCusps(Session& session, ResearchChart& chart) {
  if (chart.CuspsCast) return;
  const ChartSlot& s = session.charts.Slots[chart.Slot];
  CalcHouses(session, chart.Slot, s.Ramc, s.Obliquity, s.Latitude, session.prefs.Houses, s.SiderealOffset);
  chart.CuspsCast = true;
}

PrenatalResult PrenatalSearch(Session& session, double jd, double elongation, double target, bool backward,
                              bool syzygy) {
  const double cycle = syzygy ? 180.0 : 360.0;
  PrenatalResult result;
  result.JD = jd;
  double moon = -1, sun = -1, moonSpeed = 0, sunSpeed = 0;
  auto cast = [&](double when) {
    const double T = (when - 2415020.0) / 36525.0;
    ComputePositions(session, kPrenatalSlot, kMoon, kSun, T, SessionSiderealOffset(session, T));
    const auto& c = session.charts;
    moon = c.Longitude[kGeocentric][kPrenatalSlot][kMoon];
    sun = c.Longitude[kGeocentric][kPrenatalSlot][kSun];
    moonSpeed = c.LongSpeed[kGeocentric][kPrenatalSlot][kMoon];
    sunSpeed = c.LongSpeed[kGeocentric][kPrenatalSlot][kSun];
    return moon >= 0 && sun >= 0 && std::isfinite(moon) && std::isfinite(sun);
  };
  if (!std::isfinite(jd)) return result;
  if (elongation < 0 || !std::isfinite(elongation)) {
    if (!cast(jd)) return result;
    elongation = Mod(moon - sun, 360.0);
  }
  double d = Mod(target - elongation, cycle);
  if (backward) d -= cycle;
  double jd2 = jd + d / 360.0 * kSynodicMonth;
  for (int step = 0; step < kLunationIterations; ++step) {
    if (!cast(jd2)) return PrenatalResult{jd2, -1, -1};
    const double e = Mod(moon - sun - target + cycle / 2.0, cycle) - cycle / 2.0;
    const double rate = moonSpeed - sunSpeed;
    if (!(std::fabs(rate) > 1e-3)) break;  // no motion to follow; keep the last cast
    jd2 -= e / rate;
    if (std::fabs(e) < kLunationTolerance) break;
  }
  result.JD = jd2;
  result.Moon = moon;
  result.Sun = sun;
  return result;
}

PointValue PointValueOf(Session& session, ResearchState& state, ResearchChart& chart, const PointRef& ref) {
  PointValue v;
  const int slot = chart.Slot;
  const int frame = Frame(session);
  const auto& c = session.charts;
  auto take = [&](int point) {
    if (point < 1 || point > kPoints || c.Longitude[frame][slot][point] < 0) return false;
    v.Longitude = c.Longitude[frame][slot][point];
    v.Latitude = c.Latitude[frame][slot][point];
    v.Speed = c.LongSpeed[frame][slot][point];
    return true;
  };
  switch (ref.PointType) {
    case kChartPointType:
      if (chart.NoHouses && IsAngle(ref.Item1)) break;
      take(ref.Item1);
      break;
    case kFixedPositionType:
      if (std::isfinite(ref.Position)) v.Longitude = ref.Position;
      break;
    case kMidpointType: {
      const int a = ref.Item1, b = ref.Item2;
      if (chart.NoHouses && (IsAngle(a) || IsAngle(b))) break;
      if (a < 1 || a > kPoints || b < 1 || b > kPoints) break;
      const double la = c.Longitude[frame][slot][a], lb = c.Longitude[frame][slot][b];
      if (la < 0 || lb < 0) break;
      v.Longitude = NearMidpoint(la, lb);
      v.Latitude = (c.Latitude[frame][slot][a] + c.Latitude[frame][slot][b]) / 2.0;
      v.Speed = (c.LongSpeed[frame][slot][a] + c.LongSpeed[frame][slot][b]) / 2.0;
      break;
    }
    case kHouseCuspType:
      if (chart.NoHouses || ref.Item1 < 1 || ref.Item1 > 12) break;
      EnsureCusps(session, chart);
      v.Longitude = c.Slots[slot].Cusps[ref.Item1];
      break;
    case kArabicPartType: {
      if (chart.NoHouses) break;
      EnsureDignityData(session, state);
      PartContext cx{session, state, chart, state.Parts};
      v.Longitude = PartLongitude(cx, ref.Item1, 0);
      break;
    }
    case kPrenatalType: {
      int body = 0;
      const double lon = PrenatalLongitude(session, chart, ref.Item1, body);
      if (lon >= 0) v.Longitude = lon;
      break;
    }
    default: break;  // chart almutens have a value only once expanded
  }
  if (!(v.Longitude >= 0)) v.Longitude = -1.0;
  return v;
}

void ExpandPoints(Session& session, ResearchState& state, ResearchChart& chart, const std::vector<PointRef>& refs,
                  std::vector<PointRef>& expanded, std::vector<int>& origin) {
  expanded.clear();
  origin.clear();
  EnsureDignityData(session, state);
  for (size_t i = 0; i < refs.size(); ++i) {
    const PointRef& ref = refs[i];
    const int from = static_cast<int>(i);
    switch (ref.PointType) {
      case kHouseCuspType:
      case kArabicPartType:
        if (chart.NoHouses) break;
        EnsureCusps(session, chart);
        expanded.push_back(ref);
        origin.push_back(from);
        break;
      case kChartAlmutenType: {
        if (chart.NoHouses || ref.Item1 < 1 || ref.Item1 > state.Almutens.size()) break;
        EnsureCusps(session, chart);
        const AlmutenDef& def = state.Almutens[ref.Item1 - 1];
        const AlmutenScores scores =
            ChartAlmuten(session, chart.Slot, state.Dignity, def,
                         [&](int item) { return AlmutenItemLongitude(session, state, chart, def, item); });
        const int ties = AlmutenTies(scores.Planets, scores.Scores);
        for (int k = 0; k < ties && k < static_cast<int>(scores.Planets.size()); ++k) {
          PointRef planet;
          planet.PointType = kChartPointType;
          planet.Item1 = static_cast<uint8_t>(scores.Planets[k]);
          planet.Transform = ref.Transform;
          expanded.push_back(planet);
          origin.push_back(from);
        }
        break;
      }
      case kPrenatalType: {
        int body = 0;
        const double lon = PrenatalLongitude(session, chart, ref.Item1, body);
        PointRef fixed;
        fixed.PointType = kFixedPositionType;
        fixed.Item1 = static_cast<uint8_t>(body);
        fixed.Position = static_cast<float>(lon >= 0 ? lon : -1.0);
        fixed.Transform = ref.Transform;
        expanded.push_back(fixed);
        origin.push_back(from);
        break;
      }
      default:
        expanded.push_back(ref);
        origin.push_back(from);
        break;
    }
  }

  // The degree almuten of each value replaces the ref; a group of equal
  // leaders adds one ref more for each further planet.
  const size_t firstPassCount = expanded.size();
  for (size_t i = 0; i < firstPassCount; ++i) {
    if (expanded[i].Transform != kLastTransform) continue;
    const PointValue value = PointValueOf(session, state, chart, expanded[i]);
    if (value.Longitude < 0) continue;
    const AlmutenScores scores = DegreeAlmuten(session, chart.Slot, state.Dignity, value.Longitude,
                                               state.Dignity.DegreeAlmutenDef);
    if (scores.Planets.empty()) continue;
    const int from = origin[i];
    for (size_t k = 0; k < scores.Planets.size(); ++k) {
      if (k > 0 && (k >= scores.Scores.size() || scores.Scores[k] != scores.Scores[0])) break;
      PointRef planet;
      planet.PointType = kChartPointType;
      planet.Item1 = static_cast<uint8_t>(scores.Planets[k]);
      if (k == 0) {
        expanded[i] = planet;
      } else {
        expanded.push_back(planet);
        origin.push_back(from);
      }
    }
  }
}

void EvaluatePoints(Session& session, ResearchState& state, ResearchChart& chart,
                    const std::vector<PointRef>& expanded, std::vector<PointValue>& values) {
  values.assign(expanded.size(), PointValue{});
  EnsureDignityData(session, state);
  const DignityData& data = state.Dignity;
  const int inSect = chart.IsDay ? kTripDay : kTripNight;
  const int outSect = chart.IsDay ? kTripNight : kTripDay;
  const int frame = Frame(session);
  const auto& c = session.charts;

  for (size_t i = 0; i < expanded.size(); ++i) {
    PointRef ref = expanded[i];
    PointValue v = PointValueOf(session, state, chart, ref);
    if (v.Longitude < 0) {
      values[i] = v;
      continue;
    }
    const int sign = SignOf(v.Longitude);
    const int element = ElementOf(sign);
    const int degree = DegreeOf(v.Longitude);
    const int decanate = DecanateOf(v.Longitude);
    int p = 0;
    switch (ref.Transform) {
      case 0: if (ref.PointType == kChartPointType) p = ref.Item1; break;
      case 1: v.Longitude = Mod(540.0 - v.Longitude, 360.0); ref.Item1 = 0; break;
      case 2: v.Longitude = Mod(360.0 - v.Longitude, 360.0); ref.Item1 = 0; break;
      case 3: p = RulerOf(sign, kModernScheme); break;
      case 4: p = RulerOf(sign, kAncientDayScheme); break;
      case 5: p = TriplicityRuler(data, element, kTripPtolemy, inSect); break;
      case 6: p = TriplicityRuler(data, element, kTripPtolemy, outSect); break;
      case 7: p = TriplicityRuler(data, element, kTripPtolemy, kTripExtra); break;
      case 8: p = TriplicityRuler(data, element, kTripDorothean, inSect); break;
      case 9: p = TriplicityRuler(data, element, kTripDorothean, outSect); break;
      case 10: p = TriplicityRuler(data, element, kTripDorothean, kTripExtra); break;
      case 11: p = TriplicityRuler(data, element, kTripLilly, inSect); break;
      case 12: p = TriplicityRuler(data, element, kTripLilly, outSect); break;
      case 13: p = data.Degrees[degree].TermPtolemy; break;
      case 14: p = data.Degrees[degree].TermEgyptian; break;
      case 15: p = SetSign(data, data.ActiveRulerSet, sign).Faces[(decanate - 1) % 3]; break;
      default:
        // A degree almuten left in place found no almuten: no value.
        v = PointValue{};
        values[i] = v;
        continue;
    }
    if (p != 0) {
      PointValue ruler;
      if (p >= 1 && p <= kPoints && c.Longitude[frame][chart.Slot][p] >= 0) {
        ruler.Longitude = c.Longitude[frame][chart.Slot][p];
        ruler.Latitude = c.Latitude[frame][chart.Slot][p];
        ruler.Speed = c.LongSpeed[frame][chart.Slot][p];
      }
      ruler.Planet = p;
      v = ruler;
    } else if (ref.PointType == kFixedPositionType) {
      v.Planet = ref.Item1;
    }
    values[i] = v;
  }
}

// ------------------------------------------------------------------ coordinates

void EclipticToEquatorial(double longitude, double latitude, double obliquity, double& ra, double& declination) {
  const double sinDec = SinD(latitude) * CosD(obliquity) + CosD(latitude) * SinD(obliquity) * SinD(longitude);
  declination = Degrees(std::asin(std::clamp(sinDec, -1.0, 1.0)));
  const double y = SinD(longitude) * CosD(obliquity) - TanD(latitude) * SinD(obliquity);
  ra = Mod(Degrees(std::atan2(y, CosD(longitude))), 360.0);
}

void EquatorialToHorizon(double ra, double declination, double ramc, double geoLatitude, double& azimuth,
                         double& altitude) {
  const double h = Mod(ramc - ra + 180.0, 360.0) - 180.0;
  const double x = CosD(h) * SinD(geoLatitude) - TanD(declination) * CosD(geoLatitude);
  const double a = Degrees(std::atan2(SinD(h), x));
  azimuth = Mod(a + 180.0, 360.0);
  const double sinAlt = SinD(geoLatitude) * SinD(declination) + CosD(geoLatitude) * CosD(declination) * CosD(h);
  altitude = Degrees(std::asin(std::clamp(sinAlt, -1.0, 1.0)));
}

double DiurnalPositionOf(double ra, double declination, double ramc, double geoLatitude) {
  const double x = TanD(geoLatitude) * TanD(declination);
  if (!std::isfinite(x) || std::fabs(x) > 1.0) return -1.0;
  const double dsa = 90.0 + Degrees(std::asin(x));
  const double nsa = 180.0 - dsa;
  auto toHalf = [](double a) { return a >= 180.0 ? a - 360.0 : a; };
  const double md = toHalf(Mod(ra - ramc, 360.0));
  if (-dsa <= md && md <= dsa) return md / dsa * 90.0 + 270.0;
  if (nsa <= 0.0) return -1.0;
  const double md2 = toHalf(Mod(ra - ramc + 180.0, 360.0));
  return md2 / nsa * 90.0 + 90.0;
}

void FillEquatorial(const Session& session, ResearchChart& chart, std::vector<PointValue>& values) {
  if (chart.EquatorialDone) return;
  const ChartSlot& s = session.charts.Slots[chart.Slot];
  for (PointValue& v : values) {
    if (v.Longitude < 0) continue;
    EclipticToEquatorial(Mod(v.Longitude - s.SiderealOffset, 360.0), v.Latitude, s.Obliquity, v.RightAscension,
                         v.Declination);
  }
  chart.EquatorialDone = true;
}

void FillHorizon(const Session& session, ResearchChart& chart, std::vector<PointValue>& values) {
  if (chart.HorizonDone) return;
  FillEquatorial(session, chart, values);
  const ChartSlot& s = session.charts.Slots[chart.Slot];
  for (PointValue& v : values) {
    if (v.Longitude < 0) continue;
    EquatorialToHorizon(v.RightAscension, v.Declination, s.Ramc, s.Latitude, v.Azimuth, v.Altitude);
  }
  chart.HorizonDone = true;
}

void FillDiurnal(const Session& session, ResearchChart& chart, std::vector<PointValue>& values) {
  if (chart.DiurnalDone) return;
  FillEquatorial(session, chart, values);
  const ChartSlot& s = session.charts.Slots[chart.Slot];
  for (PointValue& v : values) {
    if (v.Longitude < 0) continue;
    v.DiurnalPosition = DiurnalPositionOf(v.RightAscension, v.Declination, s.Ramc, s.Latitude);
  }
  chart.DiurnalDone = true;
}

}  // namespace vintar
