// The criteria search: list logic, .vcr files, list text, the evaluation of
// a record's chart and the run over a project, and the results actions.
#include "research/criteria.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <iomanip>
#include <sstream>

#include "calc/astro.h"
#include "calc/cache.h"
#include "core/file_io.h"
#include "core/parse.h"
#include "core/project_file.h"
#include "core/project_ops.h"
#include "core/text.h"
#include "research/dignity.h"
#include "research/results.h"

namespace vintar {

namespace {

constexpr int kMaxNestLevel = 255;
constexpr int kLastPointTypeCode = kPrenatalType;
constexpr int kLastTransformCode = 16;

void PutLE(std::string& out, size_t at, uint32_t value, int bytes) {
  for (int b = 0; b < bytes; ++b) out[at + b] = static_cast<char>((value >> (8 * b)) & 0xFF);
}
uint32_t GetLE(const std::string& in, size_t at, int bytes) {
  uint32_t v = 0;
  for (int b = 0; b < bytes; ++b) v |= static_cast<uint32_t>(static_cast<unsigned char>(in[at + b])) << (8 * b);
  return v;
}
int16_t Get16(const std::string& in, size_t at) { return static_cast<int16_t>(GetLE(in, at, 2)); }
int32_t Get32(const std::string& in, size_t at) { return static_cast<int32_t>(GetLE(in, at, 4)); }

void PutPoint(std::string& out, size_t at, const PointRef& r) {
  PutLE(out, at, static_cast<uint32_t>(r.PointType), 4);
  out[at + 4] = static_cast<char>(r.Item1);
  out[at + 5] = static_cast<char>(r.Item2);
  PutLE(out, at + 6, std::bit_cast<uint32_t>(r.Position), 4);
  PutLE(out, at + 10, static_cast<uint32_t>(r.Transform), 4);
}
PointRef GetPoint(const std::string& in, size_t at) {
  PointRef r;
  r.PointType = Get32(in, at);
  r.Item1 = static_cast<uint8_t>(in[at + 4]);
  r.Item2 = static_cast<uint8_t>(in[at + 5]);
  r.Position = std::bit_cast<float>(GetLE(in, at + 6, 4));
  r.Transform = Get32(in, at + 10);
  return r;
}

std::string TwoPart(const std::string& a, const std::string& b) { return a + kLineEnd + kLineEnd + b; }

// The division settings of a criterion as a tabulation's, for cell names.
TabulationRun RunOf(const CriterionRecord& c) {
  TabulationRun run;
  run.Params.DataType = c.DataType;
  run.Params.Code = c.DivisionCode;
  run.Params.Harmonic = c.Harmonic >= 1 ? c.Harmonic : 1;
  run.Params.UserDivisions = c.UserDivisions;
  run.Params.Anchor = c.Orb;
  run.Params.Orb = c.Orb;
  run.Params.Scheme = c.Scheme == kModernScheme ? kModernScheme : kAncientDayScheme;
  run.CellCount = c.CellCount;
  run.UsedCells = std::min<int>(c.CellCount, CellCountsOf(run.Params).UsedCells);
  return run;
}

const std::string& Entry(const std::vector<std::string>& list, int i) {
  static const std::string kNone;
  return i >= 0 && i < static_cast<int>(list.size()) ? list[i] : kNone;
}

// A cache record with no position at all: the chart lacks every body.
EventPositionRecord NoPositions() {
  EventPositionRecord r;
  r.StartPos.fill(-1.0f);
  r.EndPos.fill(-1.0f);
  return r;
}

}  // namespace

// ---------------------------------------------------------------- logic

int16_t CombineFlags(int16_t left, int16_t right, int op) {
  switch (op) {
    case kAndOperator: return static_cast<int16_t>(left & right);
    case kOrOperator: return static_cast<int16_t>(left | right);
    case kXorOperator: return static_cast<int16_t>(left ^ right);
    default: return kFalse;
  }
}

bool ToggleBrackets(Session& session, int count, int first, int last, const std::function<int16_t&(int)>& level) {
  if (count < 1) return false;
  if (first > last) std::swap(first, last);
  first = std::clamp(first, 1, count);
  last = std::clamp(last, 1, count);
  if (first == last) return false;
  const int before = first > 1 ? level(first - 1) : 0;
  const int after = last < count ? level(last + 1) : 0;
  if (level(first) != level(last) && before != after) {
    session.ShowMessage(
        "Cannot apply or remove brackets because selected records are at varying levels of nesting.", kIconStop,
        "Cannot apply");
    return false;
  }
  if (first == 1 && last == count) {
    session.ShowMessage("Cannot apply brackets because all records are selected.", kIconStop, "Cannot apply");
    return false;
  }
  const bool remove = (first == 1 || level(first) > level(first - 1)) &&
                      (last == count || level(last) > level(last + 1));
  for (int k = first; k <= last; ++k) {
    int16_t& l = level(k);
    l = static_cast<int16_t>(std::clamp(l + (remove ? -1 : 1), 0, kMaxNestLevel));
  }
  return true;
}

bool ToggleBracketsOnSelection(Session& session, const std::vector<bool>& selected,
                               const std::function<int16_t&(int)>& level) {
  const int count = static_cast<int>(selected.size()) - 1;
  bool changed = false;
  for (int k = 1; k <= count; ++k) {
    if (!selected[k]) continue;
    int end = k;
    while (end < count && selected[end + 1]) ++end;
    changed = ToggleBrackets(session, count, k, end, level) || changed;
    k = end;
  }
  return changed;
}

// ---------------------------------------------------------------- files

std::string EncodeCriteriaFile(const CriteriaList& list) {
  PointListHeader header = list.Header;
  std::string out = EncodePointList(header, list.Points);
  for (int i = 1; i <= list.Count(); ++i) {
    const CriterionRecord& c = list.Criteria[i];
    std::string r(kCriterionRecordSize, '\0');
    PutLE(r, 0, static_cast<uint32_t>(c.InexactOption), 4);
    PutLE(r, 4, static_cast<uint16_t>(c.PointCount), 2);
    PutPoint(r, 6, c.Points[0]);
    PutPoint(r, 20, c.Points[1]);
    PutLE(r, 34, static_cast<uint16_t>(c.MinMatches), 2);
    r[36] = static_cast<char>(c.DataType);
    PutLE(r, 37, static_cast<uint16_t>(c.DivisionCode), 2);
    PutLE(r, 39, static_cast<uint16_t>(c.UserDivisions), 2);
    for (int k = 0; k < kCriterionCells; ++k) PutLE(r, 41 + 2 * k, static_cast<uint16_t>(c.CellSelected[k]), 2);
    PutLE(r, 761, static_cast<uint16_t>(c.CellCount), 2);
    PutLE(r, 763, static_cast<uint16_t>(c.SelectedCells), 2);
    PutLE(r, 765, std::bit_cast<uint32_t>(c.Orb), 4);
    PutLE(r, 769, static_cast<uint16_t>(c.Harmonic), 2);
    r[771] = static_cast<char>(c.Scheme);
    PutLE(r, 772, static_cast<uint32_t>(c.Reserved), 4);
    PutLE(r, 776, static_cast<uint16_t>(c.Negate), 2);
    PutLE(r, 778, static_cast<uint16_t>(c.NestLevel), 2);
    PutLE(r, 780, static_cast<uint32_t>(c.Operator), 4);
    out += r;
  }
  return out;
}

bool DecodeCriteriaFile(const std::string& bytes, CriteriaList& list, std::string& error) {
  CriteriaList read;
  if (!DecodePointList(bytes, read.Header, read.Points, error)) return false;
  const size_t start = kPointListHeaderSize + read.Points.size() * kPointRefSize;
  const size_t count = (bytes.size() - start) / kCriterionRecordSize;
  for (size_t i = 0; i < count; ++i) {
    const std::string r = bytes.substr(start + i * kCriterionRecordSize, kCriterionRecordSize);
    CriterionRecord c;
    c.InexactOption = Get32(r, 0);
    c.PointCount = Get16(r, 4);
    c.Points[0] = GetPoint(r, 6);
    c.Points[1] = GetPoint(r, 20);
    c.MinMatches = Get16(r, 34);
    c.DataType = static_cast<uint8_t>(r[36]);
    c.DivisionCode = Get16(r, 37);
    c.UserDivisions = Get16(r, 39);
    for (int k = 0; k < kCriterionCells; ++k) c.CellSelected[k] = Get16(r, 41 + 2 * k);
    c.CellCount = Get16(r, 761);
    c.SelectedCells = Get16(r, 763);
    c.Orb = std::bit_cast<float>(GetLE(r, 765, 4));
    c.Harmonic = Get16(r, 769);
    c.Scheme = static_cast<uint8_t>(r[771]);
    c.Reserved = Get32(r, 772);
    c.Negate = Get16(r, 776);
    c.NestLevel = Get16(r, 778);
    c.Operator = Get32(r, 780);

    const std::string which = "Criterion " + std::to_string(i + 1);
    if (c.DataType >= kDataTypes || !DivisionBelongs(c.DataType, c.DivisionCode)) {
      error = which + " has an unknown data type or division.";
      return false;
    }
    if (c.PointCount < 0 || c.PointCount > 2) {
      error = which + " has a point count out of range.";
      return false;
    }
    for (const PointRef& p : c.Points)
      if (p.PointType < 0 || p.PointType > kLastPointTypeCode || p.Transform < 0 || p.Transform > kLastTransformCode ||
          !std::isfinite(p.Position)) {
        error = which + " has a point of unknown type or transformation.";
        return false;
      }
    if (c.CellCount < 0 || c.CellCount > kCriterionCells || c.NestLevel < 0 || c.NestLevel > kMaxNestLevel ||
        !std::isfinite(c.Orb)) {
      error = which + " has a cell count, bracket level or orb out of range.";
      return false;
    }
    read.Criteria.push_back(c);
  }
  list = std::move(read);
  return true;
}

bool SaveCriteriaFile(Session& session, const std::string& path, const CriteriaList& list) {
  std::string error;
  if (!WriteFileAtomically(path, EncodeCriteriaFile(list), error)) {
    session.ShowMessage(error, kIconExclamation, "Save Current Criteria");
    return false;
  }
  return true;
}

bool OpenCriteriaFile(Session& session, ResearchState& state, const std::string& path, CriteriaList& list) {
  std::string bytes, error;
  const int err = ReadFileBytes(path, bytes, kMaxSmallFileBytes);
  if (err != 0) {
    session.ShowMessage("Unable to open " + path + kLineEnd + FileErrorText(err), kIconStop,
                        "Open Selection Criteria");
    return false;
  }
  CriteriaList read;
  if (!DecodeCriteriaFile(bytes, read, error)) {
    session.ShowMessage(path + " is not a valid criteria file." + kLineEnd + error, kIconStop,
                        "Open Selection Criteria");
    return false;
  }
  list = std::move(read);
  state.Header = list.Header;
  state.Selected = list.Points;
  std::string partsError, almutenError;
  if (!list.Header.PartsFile.empty())
    LoadParts(session, state, ResolveListFile(session, list.Header.PartsFile), partsError);
  if (!list.Header.AlmutenFile.empty())
    LoadAlmutens(session, state, ResolveListFile(session, list.Header.AlmutenFile), almutenError);
  for (const std::string* e : {&partsError, &almutenError})
    if (!e->empty()) session.ShowMessage(*e, kIconExclamation, "Open Selection Criteria");
  return true;
}

// ---------------------------------------------------------------- building

bool AddCriterion(Session& session, CriteriaList& list, const NewCriterion& in) {
  const int selected = static_cast<int>(in.Selected.size());
  if (in.DataType != kNatalDetailsData) {
    const int want = in.DataType == kSeparationData ? 2 : 1;
    if (selected != want && selected != 0) {
      session.ShowMessage(want == 2 ? "You must select a pair of points. Please ensure that exactly two points are "
                                      "selected."
                                    : "You must select a single point. Please ensure that exactly one point is "
                                      "selected.",
                          kIconExclamation, "Too Many Points");
      return false;
    }
    if (selected == 0 && in.PointsAvailable) {
      session.ShowMessage(
          TwoPart("No points have been selected.", "Please select at least one point and then try again."),
          kIconStop, "Cannot Add");
      return false;
    }
  }
  if (in.Cells.empty()) {
    session.ShowMessage(
        TwoPart("No division names have been selected.", "Please select at least one division and then try again."),
        kIconStop, "Cannot Add");
    return false;
  }
  CriterionRecord c;
  c.InexactOption = in.InexactOption;
  c.DataType = static_cast<uint8_t>(in.DataType);
  c.DivisionCode = static_cast<int16_t>(in.Code);
  c.CellCount = static_cast<int16_t>(std::clamp(in.CellCount, 0, kCriterionCells));
  for (int cell : in.Cells)
    if (cell >= 1 && cell <= kCriterionCells && !c.CellSelected[cell - 1]) {
      c.CellSelected[cell - 1] = kTrue;
      ++c.SelectedCells;
    }
  c.MinMatches = 1;
  if (in.DataType != kNatalDetailsData) {
    c.PointCount = static_cast<int16_t>(std::min(selected, 2));
    for (int k = 0; k < c.PointCount; ++k) c.Points[k] = in.Selected[k];
  }
  c.UserDivisions = static_cast<int16_t>(in.UserDivisions);
  c.Orb = static_cast<float>(in.Orb);
  c.Harmonic = static_cast<int16_t>(in.Harmonic >= 1 ? in.Harmonic : 1);
  c.Scheme = in.ModernRulers ? kModernScheme : kAncientDayScheme;
  list.Criteria.push_back(c);
  return true;
}

void SetCriterionOperator(CriteriaList& list, const std::vector<int>& selected, int op) {
  for (int i : selected)
    if (i >= 1 && i <= list.Count()) list.Criteria[i].Operator = op;
}

void ToggleCriterionNegate(CriteriaList& list, int first, int last) {
  if (first != last || first < 1 || first > list.Count()) return;
  int16_t& n = list.Criteria[first].Negate;
  n = n ? kFalse : kTrue;
}

void DeleteCriteria(CriteriaList& list, const std::vector<int>& selected) {
  std::vector<CriterionRecord> kept(1);
  for (int i = 1; i <= list.Count(); ++i) {
    if (std::find(selected.begin(), selected.end(), i) != selected.end()) continue;
    kept.push_back(list.Criteria[i]);
    kept.back().NestLevel = 0;
  }
  list.Criteria = std::move(kept);
}

// ---------------------------------------------------------------- text

std::pair<std::string, std::string> CriterionText(const Session& session, const ResearchState& state,
                                                  const CriterionRecord& c) {
  std::string left = "Charts with ";
  if (c.PointCount >= 1) left = PointName(session, state, c.Points[0]);
  if (c.PointCount >= 2) left += "-" + PointName(session, state, c.Points[1]);
  if (left.size() > 30) left = "Selected points";
  std::string right;
  if (c.SelectedCells == 1) {
    int cell = 0;
    for (int k = 0; k < kCriterionCells && cell == 0; ++k)
      if (c.CellSelected[k]) cell = k + 1;
    right = "in " + CellName(session, RunOf(c), cell, false);
  } else {
    right = "in any of " + std::to_string(c.SelectedCells) + " selected divisions of " +
            Entry(session.vocab.DivisionName, c.DivisionCode) + ": " +
            Entry(session.vocab.CoordinateName, c.DataType);
  }
  return {left, right};
}

std::string CriterionLine(const Session& session, const ResearchState& state, const CriteriaList& list, int i) {
  if (i < 1 || i > list.Count()) return "";
  const CriterionRecord& c = list.Criteria[i];
  std::string word = i > 1 ? Entry(session.vocab.ConnectiveName, c.Operator) : std::string();
  word.resize(std::max<size_t>(word.size(), 4), ' ');
  const int previous = i > 1 ? list.Criteria[i - 1].NestLevel : 0;
  const int next = i < list.Count() ? list.Criteria[i + 1].NestLevel : 0;
  std::string line = word;
  for (int level = 1; level <= c.NestLevel; ++level) line += level > previous ? "( " : "  ";
  const auto [left, right] = CriterionText(session, state, c);
  std::string text = left + (!left.empty() && left.back() == ' ' ? "" : " ") + right;
  if (c.Negate) text = "Not (" + text + ")";
  line += text;
  for (int k = next; k < c.NestLevel; ++k) line += " )";
  return line;
}

std::vector<std::string> CriteriaLines(const Session& session, const ResearchState& state, const CriteriaList& list) {
  std::vector<std::string> lines;
  for (int i = 1; i <= list.Count(); ++i) lines.push_back(CriterionLine(session, state, list, i));
  return lines;
}

// ---------------------------------------------------------------- evaluation

CriteriaEvaluator::CriteriaEvaluator(Session& session, ResearchState& state, const CriteriaList& list)
    : session_(session), state_(state), list_(list) {}

void CriteriaEvaluator::BeginRecord(const EventRecord& event, const EventPositionRecord& cached) {
  event_ = &event;
  cached_ = &cached;
  castPass_ = 0;
}

int16_t CriteriaEvaluator::EvaluateList(int first, int last) {
  return EvaluateBracketed(
      first, last, [this](int k) { return static_cast<int>(list_.Criteria[k].NestLevel); },
      [this](int k) { return static_cast<int>(list_.Criteria[k].Operator); },
      [this](int k) {
        // Each test fills its own values: the chart's per-value groups start afresh.
        chart_.EquatorialDone = chart_.HorizonDone = chart_.DiurnalDone = false;
        return EvaluateCriterion(k);
      });
}

int16_t CriteriaEvaluator::EvaluateCriterion(int index) {
  if (!event_ || index < 1 || index > list_.Count()) return kFalse;
  const CriterionRecord& c = list_.Criteria[index];
  int passes[2] = {1, 0};
  int count = 1;
  if (event_->DetailLevel < 2) {
    // A chart without a known time fails under option 2 whether or not the test is negated.
    if (c.InexactOption == 2) return kFalse;
    if (c.InexactOption == 1) {
      passes[0] = 3;
    } else {
      passes[1] = 2;
      count = 2;
    }
  }
  bool met = true;
  for (int k = 0; k < count && met; ++k) met = Pass(c, passes[k]);
  int16_t flag = met ? kTrue : kFalse;
  if (c.Negate) flag = NotFlag(flag);
  return flag;
}

bool CriteriaEvaluator::ValueOf(int dataType, const PointValue& pv, double& v, double& y) const {
  if (pv.Longitude < 0.0) return false;
  switch (dataType) {
    case kDiurnalData: v = pv.DiurnalPosition, y = 0; break;
    case kRightAscensionData: case kDeclinationData: v = pv.RightAscension, y = pv.Declination; break;
    case kAzimuthData: case kAltitudeData: v = pv.Azimuth, y = pv.Altitude; break;
    default: v = pv.Longitude, y = pv.Latitude; break;
  }
  return v >= 0.0;
}

bool CriteriaEvaluator::Pass(const CriterionRecord& c, int pass) {
  const EventRecord& e = *event_;
  const int code = c.DivisionCode;
  const std::array<double, 8> rays = RayWeights(code == 11);
  ClassifyInput in;
  in.Code = code;
  in.CellCount = c.CellCount;
  in.Harmonic = c.Harmonic >= 1 ? c.Harmonic : 1;
  in.Anchor = c.Orb;
  in.Orb = c.Orb;
  in.RayWeight = &rays;
  in.Year = e.Year;
  in.Hour = e.Hour;
  in.PlaceLatitude = e.Latitude;
  in.PlaceLongitude = e.Longitude;
  auto wanted = [&c](int cell) { return cell >= 1 && cell <= kCriterionCells && c.CellSelected[cell - 1] != 0; };
  auto anyWanted = [&](int cell) {
    bool hit = wanted(cell);
    for (size_t k = 1; k < extra_.size() && !hit; ++k) hit = wanted(extra_[k]);
    return hit;
  };

  if (c.DataType == kNatalDetailsData) {
    in.Scheme = c.Scheme;
    const int cell = ClassifyPoint(in, extra_);
    return (anyWanted(cell) ? 1 : 0) >= c.MinMatches;
  }

  if (castPass_ != pass) {
    LoadResearchChart(session_, chart_, e, *cached_, pass);
    castPass_ = pass;
  }
  int scheme = c.Scheme == kModernScheme ? kModernScheme : kAncientDayScheme;
  if (code >= 208 && code <= 211) scheme = kAncientDayScheme;
  if (scheme == kAncientDayScheme && !chart_.IsDay) scheme = kAncientNightScheme;
  state_.Scheme = scheme;
  in.Scheme = scheme;
  refs_.assign(c.Points.begin(), c.Points.begin() + std::clamp<int>(c.PointCount, 0, 2));
  ExpandPoints(session_, state_, chart_, refs_, expanded_, origin_);
  EvaluatePoints(session_, state_, chart_, expanded_, values_);
  if (c.DataType == kHouseData) {
    if (!chart_.CuspsCast) EnsureCusps(session_, chart_);
    in.Cusps = &session_.charts.Slots[chart_.Slot].Cusps;
  }
  const int t = c.DataType;
  const bool diurnal = t == kDiurnalData || code == 302 || code == 303;
  if (diurnal || t == kRightAscensionData || t == kDeclinationData || t == kAzimuthData || t == kAltitudeData)
    FillEquatorial(session_, chart_, values_);
  if (t == kAzimuthData || t == kAltitudeData) FillHorizon(session_, chart_, values_);
  if (diurnal) FillDiurnal(session_, chart_, values_);

  const int n = static_cast<int>(values_.size());
  hit_.assign(n, 0);
  int matches = 0;
  if (t == kSeparationData) {
    for (int i = 0; i < n; ++i) {
      if (origin_[i] != 0 || values_[i].Longitude < 0.0) continue;
      for (int j = i + 1; j < n; ++j) {
        if (origin_[j] != 1 || values_[j].Longitude < 0.0) continue;
        in.Value = Mod(values_[i].Longitude - values_[j].Longitude, 360.0);
        in.Secondary = 0;
        in.Planet = 0;
        const int cell = ClassifyPoint(in, extra_);
        if (cell > 0 && wanted(cell) && !hit_[i]) {
          hit_[i] = 1;
          ++matches;
        }
      }
    }
  } else {
    for (int i = 0; i < n; ++i) {
      double v = 0, y = 0;
      if (!ValueOf(t, values_[i], v, y)) continue;
      in.Value = v;
      in.Secondary = y;
      in.Speed = values_[i].Speed;
      in.Planet = values_[i].Planet;
      const int cell = ClassifyPoint(in, extra_);
      if (anyWanted(cell) && !hit_[i]) {
        hit_[i] = 1;
        ++matches;
      }
    }
  }
  return matches >= c.MinMatches;
}

bool CheckCriteriaList(Session& session, const CriteriaList& list) {
  if (list.Count() > 0) return true;
  session.ShowMessage(TwoPart("You have not specified any criteria to search for.",
                              "Please add one or more criteria and then try again."),
                      kIconStop, "Cannot Search");
  return false;
}

CriteriaRun RunSearch(Session& session, ResearchState& state, const CriteriaList& list, Progress* progress) {
  CriteriaRun run;
  if (!CheckCriteriaList(session, list)) {
    run.Failed = true;
    return run;
  }
  const int savedScheme = state.Scheme;
  try {
    std::string error;
    if (!list.Header.PartsFile.empty())
      LoadParts(session, state, ResolveListFile(session, list.Header.PartsFile), error);
    if (!list.Header.AlmutenFile.empty())
      LoadAlmutens(session, state, ResolveListFile(session, list.Header.AlmutenFile), error);
    int16_t failed = 0;
    LoadDignityData(session, state.Dignity, failed);
    if (progress) {
      progress->Caption("Search Status");
      progress->Status("Reading data records...");
    }
    bool needsPositions = false;
    for (int i = 1; i <= list.Count(); ++i)
      needsPositions = needsPositions || list.Criteria[i].DataType != kNatalDetailsData;

    ProjectState& project = session.project;
    const int count = static_cast<int>(
        std::clamp<long long>(project.Header.RecordCount, 0, static_cast<long long>(project.Events.size()) - 1));
    const int coordinate = session.cache.Coordinate == kHeliocentric ? kHeliocentric : kGeocentric;
    CacheReader cache;
    if (needsPositions && count > 0) {
      const int method = std::clamp<int>(session.cache.ProgressionMethod, kNaibod, kMeanQuotidian);
      bool cancelled = false;
      CalcEvents(session, coordinate, kTransits, method, cancelled, progress);
      if (cancelled) {
        run.Cancelled = true;
        return run;
      }
      if (!cache.Open(CacheFileName(project.ProjectPath, coordinate, kTransits), count)) {
        session.ShowMessage("The position file of this project could not be read.", kIconExclamation, "Error");
        run.Failed = true;
        return run;
      }
    }

    run.PassedFlags.assign(static_cast<size_t>(count) + 1, kFalse);
    CriteriaEvaluator evaluator(session, state, list);
    const EventPositionRecord none = NoPositions();
    EventPositionRecord cached = none;
    for (int i = 1; i <= count; ++i) {
      if (progress && i % 10 == 0) {
        progress->Status(std::to_string(i) + "/" + std::to_string(count));
        progress->Fraction(static_cast<double>(i) / count);
        if (progress->Cancelled()) {
          run.Cancelled = true;
          break;
        }
      }
      const EventRecord& e = project.Events[i];
      if (!e.Enabled) continue;
      ++run.Enabled;
      cached = none;
      if (needsPositions) {
        if (const unsigned char* bytes = cache.Record(i)) {
          cached = DecodeCacheRecord(bytes);
          if (!CacheRecordUsable(cached)) cached = none;
        }
      }
      evaluator.BeginRecord(e, cached);
      run.PassedFlags[i] = evaluator.EvaluateList(1, list.Count());
      if (run.PassedFlags[i]) ++run.Passed;
    }
  } catch (const std::exception& ex) {
    session.ShowMessage(TwoPart(ex.what(), "An error occurred during criteria search."), kIconStop, "Search Error");
    run.Failed = true;
  }
  state.Scheme = savedScheme;
  return run;
}

// ---------------------------------------------------------------- results

std::string PercentPassedText(int passed, int enabled) {
  const double share = enabled > 0 ? 100.0 * passed / enabled : 0.0;
  std::ostringstream t;
  t << std::fixed << std::setprecision(1) << share << "%";
  return t.str();
}

std::vector<std::string> SearchResultLines(int enabled, int passed) {
  return {"Enabled Records in Project : " + std::to_string(enabled),
          "Records which Passed Criteria : " + std::to_string(passed),
          "Percent Passed : " + PercentPassedText(passed, enabled)};
}

bool DisableFailedRecords(Session& session, const std::vector<int16_t>& flags) {
  ProjectState& p = session.project;
  const int count =
      std::clamp<int>(p.Header.RecordCount, 0, static_cast<int>(p.Events.size()) - 1);
  int enabled = 0;
  for (int i = 1; i <= count; ++i) enabled += p.Events[i].Enabled ? 1 : 0;
  if (enabled < count) {
    const int answer = session.ShowMessage(
        TwoPart(std::to_string(count - enabled) + " records are already disabled.",
                "Are you sure that you wish to proceed to disable further records?"),
        kYesNo + kIconQuestion, "Confirm");
    if (answer == kNo) return false;
  }
  for (int i = 1; i <= count; ++i) {
    const bool passed = i < static_cast<int>(flags.size()) && flags[i] != 0;
    if (!passed && p.Events[i].Enabled) {
      p.Events[i].Enabled = kFalse;
      p.Status.DataChanged = kTrue;
    }
  }
  session.ShowMessage("Only those records which passed the search criteria are now enabled.", kIconInformation,
                      "Records Disabled");
  return true;
}

bool CreatePassedProject(Session& session, std::vector<int16_t>& flags) {
  ProjectState& p = session.project;
  if (p.Status.DataChanged || p.Status.NatChanged) {
    bool failed = false;
    SaveProject(session, p.ProjectPath, failed);
    if (failed) return false;
  }
  ProjectState backup = p;
  const int count = std::clamp<int>(p.Header.RecordCount, 0, static_cast<int>(p.Events.size()) - 1);
  int kept = 0;
  for (int i = 1; i <= count; ++i) {
    if (i >= static_cast<int>(flags.size()) || flags[i] == 0) continue;
    ++kept;
    if (kept != i) p.Events[kept] = std::move(p.Events[i]);
  }
  for (int i = kept + 1; i <= count; ++i) p.Events[i] = EventRecord{};
  ProjectHeader& h = p.Header;
  h.RecordCount = kept;
  h.Title += " - After Search Criteria";
  h.Name = "n/a";
  h.Date = "1 Jan 2000";
  SetNoNatalChart(h);
  ComputeHeaderJulianDays(session, h);
  RebuildCategoryIndex(session, h, p.Events, p.Categories, nullptr);
  session.cache.Clear();
  p.Status.DataChanged = kTrue;
  p.Status.NatChanged = kTrue;
  p.ProjectStem = "Unnamed1";
  p.ProjectPath.clear();

  // The Save As dialogue; the chosen name is kept for the project.
  std::string chosen;
  const auto ask = session.AskSavePath;
  session.AskSavePath = [&ask, &chosen](std::string& path) {
    const bool accepted = ask && ask(path);
    if (accepted) chosen = path;
    return accepted;
  };
  bool failed = false;
  SaveProject(session, std::string(), failed);
  session.AskSavePath = ask;
  const bool written = !failed && !chosen.empty() && p.Status.DataChanged == kFalse;
  if (!written) {
    p = std::move(backup);
    UpdateTitle(session, p.ProjectPath);
    return false;
  }
  if (p.ProjectPath.empty()) AcceptSaveFileName(session, chosen);
  UpdateTitle(session, p.ProjectPath);
  flags.clear();
  return true;
}

std::vector<std::string> SearchResultsReport(const Session& session, const std::vector<std::string>& criteriaLines,
                                             const std::vector<int16_t>& flags, bool allRecords,
                                             const std::string& subTitle) {
  const ProjectState& p = session.project;
  std::vector<std::string> out{"Search Results Report", "  Project Title:  " + p.Header.Title};
  if (!Trim(subTitle).empty()) out.push_back("  SubTitle:  " + subTitle);
  out.push_back("");
  out.push_back("List of Selection Criteria");
  for (const auto& line : criteriaLines) out.push_back("  " + line);
  out.push_back("");
  const int count = std::clamp<int>(p.Header.RecordCount, 0, static_cast<int>(p.Events.size()) - 1);
  int enabled = 0, passed = 0;
  for (int i = 1; i <= count; ++i) {
    enabled += p.Events[i].Enabled ? 1 : 0;
    passed += i < static_cast<int>(flags.size()) && flags[i] ? 1 : 0;
  }
  for (const auto& line : SearchResultLines(enabled, passed)) out.push_back("  " + line);
  out.push_back("");
  out.push_back(allRecords ? "List of All Records" : "List of Passed Records");
  if (allRecords) out.push_back("  Passed Records marked *");
  bool any = false;
  for (int i = 1; i <= count; ++i) {
    const bool pass = i < static_cast<int>(flags.size()) && flags[i];
    if (!allRecords && !pass) continue;
    const EventRecord& e = p.Events[i];
    std::string line = (allRecords && pass ? "* " : "  ") + std::to_string(i) + "  " + e.Description + "  " +
                       FormatDate(session, e.Day, e.Month, e.Year);
    if (e.DetailLevel >= 1) line += "  " + FormatTime(e.Hour, e.Minute, e.Second, session.prefs.AMPM != 0);
    if (!Trim(e.Placename).empty()) line += "  " + e.Placename;
    out.push_back(line);
    any = true;
  }
  if (!any) out.push_back(count == 0 ? "  There are no data records in this project" : "  None");
  return out;
}

}  // namespace vintar
