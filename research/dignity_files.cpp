// The dignity data files, their readers and writers, and the scores built
// on them: planetary hours, the almuten of a degree and of a chart.
#include "research/dignity_files.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "calc/astro.h"
#include "core/file_io.h"
#include "core/text.h"
#include "research/dignity.h"

namespace vintar {

namespace {

constexpr int kFileCodes = 37;
// A file code's point; -2 stands for the session's node.
constexpr std::array<int, kFileCodes> kFilePoint = {0,  1,  2,  3,  0,  4,  5,  6,  7,  8,  9,  10, 11,
                                                    12, 13, 14, 15, 16, 17, 18, -2, -2, 21, 22, 23, 24,
                                                    26, 0,  0,  0,  0,  0,  0,  0,  0,  0,  0};

const SignDignity kNoSign{};

// Little-endian fields.
void Put16(unsigned char* p, int16_t v) {
  const auto u = static_cast<uint16_t>(v);
  p[0] = static_cast<unsigned char>(u & 0xFF);
  p[1] = static_cast<unsigned char>(u >> 8);
}
int16_t Get16(const unsigned char* p) { return static_cast<int16_t>(static_cast<uint16_t>(p[0] | (p[1] << 8))); }

void PutText(unsigned char* p, size_t size, const std::string& text) {
  for (size_t i = 0; i < size; ++i) p[i] = i < text.size() ? static_cast<unsigned char>(text[i]) : ' ';
}
// Space padded text; trailing blanks and NULs go.
std::string GetText(const unsigned char* p, size_t size) {
  std::string s(reinterpret_cast<const char*>(p), size);
  while (!s.empty() && (s.back() == ' ' || s.back() == '\0')) s.pop_back();
  return s;
}

std::string CodeError(int code, size_t offset) {
  return "Subscript out of range: point code " + std::to_string(code) + " at byte " + std::to_string(offset) + ".";
}

// One converted byte; false (with `error`) for a code out of range.
bool Convert(const std::string& bytes, size_t offset, int nodePoint, int& out, std::string& error) {
  const int code = static_cast<unsigned char>(bytes[offset]);
  const int point = FilePointCode(code, nodePoint);
  if (point < 0) {
    error = CodeError(code, offset);
    return false;
  }
  out = point;
  return true;
}

// Comma-separated fields, quoted or not, across line ends.
class FieldReader {
 public:
  explicit FieldReader(const std::string& text) : text_(text) {}
  bool AtEnd() {
    SkipBlanks(true);
    return pos_ >= text_.size();
  }
  bool Next(std::string& field) {
    if (AtEnd()) return false;
    field.clear();
    if (text_[pos_] == '"') {
      const size_t close = text_.find('"', pos_ + 1);
      const size_t end = close == std::string::npos ? text_.size() : close;
      field = text_.substr(pos_ + 1, end - pos_ - 1);
      pos_ = close == std::string::npos ? text_.size() : close + 1;
      SkipBlanks(false);
      if (pos_ < text_.size() && text_[pos_] == ',') ++pos_;
      return true;
    }
    const size_t end = text_.find_first_of(",\r\n", pos_);
    field = Trim(text_.substr(pos_, (end == std::string::npos ? text_.size() : end) - pos_));
    pos_ = end == std::string::npos ? text_.size() : end;
    if (pos_ < text_.size() && text_[pos_] == ',') ++pos_;
    return true;
  }

 private:
  void SkipBlanks(bool lineEnds) {
    while (pos_ < text_.size()) {
      const char c = text_[pos_];
      if (c == ' ' || c == '\t' || (lineEnds && (c == '\r' || c == '\n'))) {
        ++pos_;
      } else {
        break;
      }
    }
  }
  const std::string& text_;
  size_t pos_ = 0;
};

std::string FormatReal(double v) {
  char buffer[40];
  std::snprintf(buffer, sizeof buffer, "%.15g", v);
  return buffer;
}

std::string QuotedText(const std::string& s) {
  std::string out = s;
  std::replace(out.begin(), out.end(), '"', '\'');
  return "\"" + out + "\"";
}

double SlotLongitude(const Session& session, int slot, int point) {
  if (slot < 1 || slot > kSlots || point < 1 || point > kPoints) return -1.0;
  return session.charts.Longitude[kGeocentric][slot][point];
}

// What the nine slots of a longitude hold for one definition.
class DignitySlots {
 public:
  DignitySlots(const DignityData& data, const AlmutenDef& def, bool isDay)
      : data_(data), def_(def), set_(def.RulerSetIndex), position_(isDay ? kTripDay : kTripNight) {}

  // Slots 1 to 9 (0 unused): ruler, exaltation, triplicity, two empty, term,
  // face, ruler and exaltation of the opposite sign.
  std::array<int, 10> Fill(double longitude) const {
    std::array<int, 10> slot{};
    const double shift = def_.SignShift;
    const int sign = SignOf(Mod(longitude + 360.0 - shift, 360.0));
    const int opposite = OppositeSign(sign);
    int degree = DegreeOf(Mod(longitude, 360.0));
    if (def_.SignShift == 1 && degree % 30 == 1) degree = (degree + 358) % 360 + 1;
    const int decanate = std::clamp(static_cast<int>(Mod(longitude - shift, 30.0) / 10.0) + 1, 1, 3);
    const SignDignity& s = SetSign(data_, set_, sign);
    slot[1] = s.Ruler;
    slot[2] = s.Exaltation;
    slot[3] = TriplicityRuler(data_, ElementOf(sign), def_.TripScheme, position_);
    const DegreeDignity& d = data_.Degrees[degree];
    slot[6] = def_.TermScheme == 0 ? d.TermPtolemy : def_.TermScheme == 1 ? d.TermEgyptian
                                                   : def_.TermScheme == 2 ? d.TermOther : 0;
    slot[7] = s.Faces[decanate - 1];
    slot[8] = SetSign(data_, set_, opposite).Ruler;
    slot[9] = SetSign(data_, set_, opposite).Exaltation;
    return slot;
  }

  // Every point the tables can name, the node aside.
  std::array<bool, kPoints + 1> CanScore(int nodePoint) const {
    std::array<bool, kPoints + 1> can{};
    auto note = [&can](int p) {
      if (p >= 1 && p <= kPoints) can[p] = true;
    };
    for (int sign = 1; sign <= 12; ++sign) {
      const SignDignity& s = SetSign(data_, set_, sign);
      note(s.Ruler);
      note(s.Exaltation);
      for (int f : s.Faces) note(f);
    }
    for (int element = 1; element <= 4; ++element) note(TriplicityRuler(data_, element, def_.TripScheme, position_));
    for (int d = 1; d <= 360; ++d) {
      const DegreeDignity& t = data_.Degrees[d];
      note(def_.TermScheme == 0 ? t.TermPtolemy : def_.TermScheme == 1 ? t.TermEgyptian
                                                : def_.TermScheme == 2 ? t.TermOther : 0);
    }
    if (nodePoint >= 1 && nodePoint <= kPoints) can[nodePoint] = false;
    return can;
  }

 private:
  const DignityData& data_;
  const AlmutenDef& def_;
  int set_;
  int position_;
};

constexpr std::array<int, 5> kEssential = {1, 2, 3, 6, 7};
constexpr const char* kMarkChars = "+++  ++--";

// The score of one candidate at one longitude; `mark` receives its mark
// character there.
int ScoreAt(const DignitySlots& slots, const AlmutenDef& def, const std::array<int, 10>& at, int point,
            double ownLongitude, char& mark) {
  int score = 0;
  int first = 0;
  bool essential = false;
  for (int k = 1; k <= 9; ++k) {
    if (at[k] != point) continue;
    score += def.Weights[k];
    if (first == 0) first = k;
    if (k <= 3 || k == 6 || k == 7) essential = true;
  }
  if (ownLongitude >= 0.0) {
    const std::array<int, 10> own = slots.Fill(ownLongitude);
    for (size_t i = 0; i < kEssential.size(); ++i) {
      const int k = kEssential[i];
      if (own[k] != point) continue;
      score += def.Weights[k + 9];
      if (def.KnockOut[i + 1]) essential = false;
    }
  }
  mark = first == 0 ? ' ' : kMarkChars[first - 1];
  if (mark == '+' && !essential) mark = ' ';
  return score;
}

// The candidates of a definition in point order.
std::vector<int> Candidates(const Session& session, int slot, const DignitySlots& slots, const AlmutenDef& def) {
  const std::array<bool, kPoints + 1> can = slots.CanScore(session.vocab.NodePoint);
  std::vector<int> list;
  for (int p = 1; p <= kPoints; ++p) {
    if (!can[p]) continue;
    if (def.OnlyCalculated && SlotLongitude(session, slot, p) < 0.0) continue;
    list.push_back(p);
  }
  return list;
}

// Sorts the candidates by score, highest first, ties in point order, and
// counts the groups of equal score.
void SortScores(AlmutenScores& r) {
  std::vector<size_t> order(r.Planets.size());
  for (size_t i = 0; i < order.size(); ++i) order[i] = i;
  std::stable_sort(order.begin(), order.end(), [&r](size_t a, size_t b) { return r.Scores[a] > r.Scores[b]; });
  AlmutenScores sorted;
  int previous = -999;
  for (size_t i : order) {
    sorted.Planets.push_back(r.Planets[i]);
    sorted.Scores.push_back(r.Scores[i]);
    if (!r.Marks.empty()) sorted.Marks.push_back(r.Marks[i]);
    if (r.Scores[i] != previous) ++sorted.Groups;
    previous = r.Scores[i];
  }
  r = std::move(sorted);
}

bool HaveSet(const DignityData& data, int index) {
  return index >= 1 && index < static_cast<int>(data.RulerSets.size());
}

}  // namespace

int FilePointCode(int code, int nodePoint) {
  if (code < 0 || code >= kFileCodes) return -1;
  const int point = kFilePoint[code];
  return point == -2 ? nodePoint : point;
}

int PointFileCode(int point) {
  if (point == kTrueNode || point == kMeanNode) return 20;
  for (int code = 1; code < kFileCodes; ++code)
    if (kFilePoint[code] == point && point != 0) return code;
  return 0;
}

// ---- Almuten definitions ----

void EncodeAlmutenDef(const AlmutenDef& def, unsigned char* out) {
  PutText(out, 20, def.ShortName);
  PutText(out + 20, 40, def.Name);
  PutText(out + 60, 255, def.PartsFile);
  for (int i = 1; i <= 16; ++i) Put16(out + 315 + 2 * (i - 1), def.Weights[i]);
  for (int i = 1; i <= 12; ++i) Put16(out + 347 + 2 * (i - 1), def.HouseFlags[i]);
  Put16(out + 371, def.TripScheme);
  Put16(out + 373, def.TermScheme);
  for (int i = 1; i <= 5; ++i) Put16(out + 375 + 2 * (i - 1), def.KnockOut[i]);
  Put16(out + 385, def.OnlyCalculated);
  for (int i = 1; i <= 36; ++i) Put16(out + 387 + 2 * (i - 1), def.Points[i]);
  Put16(out + 459, def.Reserved1);
  Put16(out + 461, def.ForceDayFortune);
  Put16(out + 463, def.RulerSetIndex);
  Put16(out + 465, def.HouseSystem);
  std::copy(def.Reserved2.begin(), def.Reserved2.end(), out + 467);
  Put16(out + 479, def.SignShift);
  Put16(out + 481, def.SectRule);
  Put16(out + 483, def.Reserved3);
  std::copy(def.Carried1.begin(), def.Carried1.end(), out + 485);
  std::copy(def.Carried2.begin(), def.Carried2.end(), out + 493);
}

AlmutenDef DecodeAlmutenDef(const unsigned char* in) {
  AlmutenDef def;
  def.ShortName = GetText(in, 20);
  def.Name = GetText(in + 20, 40);
  def.PartsFile = GetText(in + 60, 255);
  for (int i = 1; i <= 16; ++i) def.Weights[i] = Get16(in + 315 + 2 * (i - 1));
  for (int i = 1; i <= 12; ++i) def.HouseFlags[i] = Get16(in + 347 + 2 * (i - 1));
  def.TripScheme = Get16(in + 371);
  def.TermScheme = Get16(in + 373);
  for (int i = 1; i <= 5; ++i) def.KnockOut[i] = Get16(in + 375 + 2 * (i - 1));
  def.OnlyCalculated = Get16(in + 385);
  for (int i = 1; i <= 36; ++i) def.Points[i] = Get16(in + 387 + 2 * (i - 1));
  def.Reserved1 = Get16(in + 459);
  def.ForceDayFortune = Get16(in + 461);
  def.RulerSetIndex = Get16(in + 463);
  def.HouseSystem = Get16(in + 465);
  std::copy(in + 467, in + 479, def.Reserved2.begin());
  def.SignShift = Get16(in + 479);
  def.SectRule = Get16(in + 481);
  def.Reserved3 = Get16(in + 483);
  std::copy(in + 485, in + 493, def.Carried1.begin());
  std::copy(in + 493, in + 579, def.Carried2.begin());
  return def;
}

std::vector<AlmutenDef> ParseAlmutens(const std::string& bytes) {
  std::vector<AlmutenDef> defs;
  const auto* p = reinterpret_cast<const unsigned char*>(bytes.data());
  for (size_t at = 0; at + kAlmutenDefSize <= bytes.size(); at += kAlmutenDefSize)
    defs.push_back(DecodeAlmutenDef(p + at));
  return defs;
}

std::string FormatAlmutens(const std::vector<AlmutenDef>& defs) {
  std::string out(defs.size() * kAlmutenDefSize, '\0');
  auto* p = reinterpret_cast<unsigned char*>(out.data());
  for (size_t i = 0; i < defs.size(); ++i) EncodeAlmutenDef(defs[i], p + i * kAlmutenDefSize);
  return out;
}

// ---- Rulership sets, triplicities, degrees ----

std::vector<RulerSet> ParseRulerSets(const std::string& bytes, int nodePoint, std::string& error) {
  std::vector<RulerSet> sets;
  error.clear();
  const auto* p = reinterpret_cast<const unsigned char*>(bytes.data());
  for (size_t at = 0; at + kRulerSetSize <= bytes.size(); at += kRulerSetSize) {
    RulerSet set;
    set.Name = GetText(p + at, 40);
    set.Code = GetText(p + at + 40, 15);
    for (int sign = 1; sign <= 12; ++sign) {
      const size_t b = at + 55 + 9 * static_cast<size_t>(sign - 1);
      SignDignity& s = set.Signs[sign];
      if (!Convert(bytes, b, nodePoint, s.Ruler, error) || !Convert(bytes, b + 2, nodePoint, s.Exaltation, error) ||
          !Convert(bytes, b + 4, nodePoint, s.Extra1, error) || !Convert(bytes, b + 5, nodePoint, s.Extra2, error) ||
          !Convert(bytes, b + 6, nodePoint, s.Faces[0], error) ||
          !Convert(bytes, b + 7, nodePoint, s.Faces[1], error) ||
          !Convert(bytes, b + 8, nodePoint, s.Faces[2], error))
        return sets;
      s.RulerSect = p[b + 1];
      s.ExaltationExtra = p[b + 3];
    }
    sets.push_back(std::move(set));
  }
  if (bytes.size() % kRulerSetSize != 0)
    error = "The file ends inside record " + std::to_string(sets.size() + 1) + ".";
  return sets;
}

std::string FormatRulerSet(const RulerSet& set) {
  std::string out(kRulerSetSize, ' ');
  auto* p = reinterpret_cast<unsigned char*>(out.data());
  PutText(p, 40, set.Name);
  PutText(p + 40, 15, set.Code);
  for (int sign = 1; sign <= 12; ++sign) {
    unsigned char* b = p + 55 + 9 * (sign - 1);
    const SignDignity& s = set.Signs[sign];
    b[0] = static_cast<unsigned char>(PointFileCode(s.Ruler));
    b[1] = static_cast<unsigned char>(s.RulerSect);
    b[2] = static_cast<unsigned char>(PointFileCode(s.Exaltation));
    b[3] = static_cast<unsigned char>(s.ExaltationExtra);
    b[4] = static_cast<unsigned char>(PointFileCode(s.Extra1));
    b[5] = static_cast<unsigned char>(PointFileCode(s.Extra2));
    for (int f = 0; f < 3; ++f) b[6 + f] = static_cast<unsigned char>(PointFileCode(s.Faces[f]));
  }
  return out;
}

std::array<std::array<int, 9>, 5> ParseTriplicities(const std::string& bytes, int nodePoint, std::string& error) {
  std::array<std::array<int, 9>, 5> rows{};
  error.clear();
  for (int element = 1; element <= 4; ++element) {
    const size_t at = static_cast<size_t>(element - 1) * kTriplicityRowSize;
    if (at + kTriplicityRowSize > bytes.size()) {
      error = "The file ends inside the row of element " + std::to_string(element) + ".";
      return rows;
    }
    for (int i = 0; i < kTriplicityRowSize; ++i)
      if (!Convert(bytes, at + i, nodePoint, rows[element][i], error)) return rows;
  }
  return rows;
}

std::array<DegreeDignity, 361> ParseDegreeDignities(const std::string& bytes, int nodePoint, std::string& error) {
  std::array<DegreeDignity, 361> degrees{};
  error.clear();
  for (int d = 1; d <= 360; ++d) {
    const size_t at = static_cast<size_t>(d - 1) * kDegreeDignitySize;
    if (at + kDegreeDignitySize > bytes.size()) {
      error = "The file ends inside the record of degree " + std::to_string(d) + ".";
      return degrees;
    }
    DegreeDignity& r = degrees[d];
    if (!Convert(bytes, at, nodePoint, r.TermPtolemy, error) ||
        !Convert(bytes, at + 1, nodePoint, r.TermEgyptian, error) ||
        !Convert(bytes, at + 2, nodePoint, r.TermOther, error))
      return degrees;
    r.Carried1 = static_cast<unsigned char>(bytes[at + 3]);
    r.Carried2 = static_cast<unsigned char>(bytes[at + 4]);
  }
  return degrees;
}

std::string FormatTriplicities(const std::array<std::array<int, 9>, 5>& rows) {
  std::string out;
  for (int element = 1; element <= 4; ++element)
    for (int i = 0; i < kTriplicityRowSize; ++i) out += static_cast<char>(PointFileCode(rows[element][i]));
  return out;
}

std::string FormatDegreeDignities(const std::array<DegreeDignity, 361>& degrees) {
  std::string out;
  for (int d = 1; d <= 360; ++d) {
    const DegreeDignity& r = degrees[d];
    out += static_cast<char>(PointFileCode(r.TermPtolemy));
    out += static_cast<char>(PointFileCode(r.TermEgyptian));
    out += static_cast<char>(PointFileCode(r.TermOther));
    out += static_cast<char>(r.Carried1);
    out += static_cast<char>(r.Carried2);
  }
  return out;
}

// ---- Arabic parts ----

std::vector<PartDef> ParseParts(const std::string& text, int nodePoint, std::string& error) {
  std::vector<PartDef> parts;
  error.clear();
  FieldReader reader(text);
  std::string field;
  while (!reader.AtEnd()) {
    PartDef part;
    const std::string where = "Part " + std::to_string(parts.size() + 1) + ": ";
    auto next = [&](std::string& f) {
      if (reader.Next(f)) return true;
      error = where + "Input past end of file.";
      return false;
    };
    for (PartTerm& term : part.Terms) {
      if (!next(field)) return parts;
      term.Kind = ClampToInt16(Val(field));
      if (!next(field)) return parts;
      term.Item = ClampToInt16(Val(field));
      if (!next(field)) return parts;
      term.Degrees = Val(field);
      if (term.Kind == 1 || term.Kind == 2) {
        const int point = FilePointCode(term.Item, nodePoint);
        if (point < 0) {
          error = where + "Subscript out of range: point code " + std::to_string(term.Item) + ".";
          return parts;
        }
        term.Item = static_cast<int16_t>(point);
      }
    }
    if (!next(field)) return parts;
    part.SectRule = ClampToInt16(Val(field));
    if (!next(part.Name) || !next(part.Abbrev)) return parts;
    part.Name = RTrim(part.Name);
    part.Abbrev = RTrim(part.Abbrev);
    parts.push_back(std::move(part));
  }
  return parts;
}

std::string FormatPartsFile(const std::vector<PartDef>& parts) {
  std::string out;
  for (const PartDef& part : parts) {
    for (const PartTerm& term : part.Terms) {
      const int item = term.Kind == 1 || term.Kind == 2 ? PointFileCode(term.Item) : term.Item;
      out += std::to_string(term.Kind) + "," + std::to_string(item) + "," + FormatReal(term.Degrees) + ",";
    }
    out += std::to_string(part.SectRule) + "," + QuotedText(part.Name) + "," + QuotedText(part.Abbrev) + kLineEnd;
  }
  return out;
}

// ---- Loading ----

std::string DignityFilePath(const Session& session, const std::string& name) {
  const std::string user = session.paths.UserDataPath.empty() ? "" : EnsureBackslash(session.paths.UserDataPath) + name;
  if (!user.empty() && FileExists(user)) return user;
  return EnsureBackslash(session.paths.SystemDataPath) + name;
}

void LoadDignityData(Session& session, DignityData& data, int16_t& failed) {
  if (data.Loaded) return;
  failed = kTrue;
  const int node = session.vocab.NodePoint;
  std::string bytes, error, path;
  auto read = [&](const char* name) {
    path = DignityFilePath(session, name);
    return ReadFileBytes(path, bytes, kMaxSmallFileBytes) == 0;
  };
  auto fault = [&]() {
    const std::string text = "Error whilst attempting to read from file: " + path + kLineEnd + kLineEnd + error;
    if (text != data.ShownError) {
      data.ShownError = text;
      session.ShowMessage(text, kIconExclamation, "Vintar");
    }
  };

  if (!read("house.alm")) return;
  const std::vector<AlmutenDef> defs = ParseAlmutens(bytes);
  data.HaveDegreeAlmutenDef = !defs.empty();
  if (!defs.empty()) data.DegreeAlmutenDef = defs.front();

  if (!read("rulers2.fil")) return;
  std::vector<RulerSet> sets = ParseRulerSets(bytes, node, error);
  data.RulerSets.assign(1, RulerSet{});
  data.RulerSets.insert(data.RulerSets.end(), sets.begin(), sets.end());
  data.ActiveRulerSet = std::min<int>(2, static_cast<int>(sets.size()));
  if (!error.empty()) return fault();

  if (!read("tripdig2.fil")) return;
  data.Triplicity = ParseTriplicities(bytes, node, error);
  if (!error.empty()) return fault();

  if (!read("degdig2.fil")) return;
  data.Degrees = ParseDegreeDignities(bytes, node, error);
  if (!error.empty()) return fault();

  data.Loaded = true;
  data.ShownError.clear();
  failed = kFalse;
}

const SignDignity& SetSign(const DignityData& data, int setIndex, int sign) {
  if (!HaveSet(data, setIndex) || sign < 1 || sign > 12) return kNoSign;
  return data.RulerSets[setIndex].Signs[sign];
}

int TriplicityRuler(const DignityData& data, int element, int scheme, int position) {
  if (element < 1 || element > 4 || scheme < 0 || scheme > 2 || position < 0 || position > 2) return 0;
  return data.Triplicity[element][scheme + 3 * position];
}

// ---- Planetary hours ----

bool SlotIsDay(const Session& session, int slot) {
  return IsDayChart(SlotLongitude(session, slot, kSun), SlotLongitude(session, slot, kAscendant));
}

bool PlanetaryHours(const Session& session, int slot, PlanetaryHour& out) {
  if (slot < 1 || slot > kSlots) return false;
  const ChartSlot& s = session.charts.Slots[slot];
  const double sun = SlotLongitude(session, slot, kSun);
  if (sun < 0.0) return false;
  // The Sun on the ecliptic (latitude 0) in equatorial coordinates.
  const double lambda = Mod(sun - s.SiderealOffset, 360.0);
  const double ra = Mod(Degrees(ArcTan2(SinD(lambda) * CosD(s.Obliquity), CosD(lambda))), 360.0);
  const double declination = Degrees(ArcSin(SinD(s.Obliquity) * SinD(lambda)));

  const double jdLocal = s.ChartJD - s.ChartZone / 24.0;
  int dayIndex = static_cast<int>(static_cast<long long>(std::floor(jdLocal + 1.5)) % 7);
  if (dayIndex < 0) dayIndex += 7;
  double h = Mod(s.Ramc - ra, 360.0);
  if (h >= 180.0) h -= 360.0;

  // The diurnal semi-arc; none for a Sun that neither rises nor sets.
  const double x = TanD(s.Latitude) * TanD(declination);
  if (!std::isfinite(x) || std::fabs(x) > 1.0) return false;
  const double a = 90.0 + Degrees(ArcSin(x));
  const double n = 180.0 - a;

  int hourIndex = 0;
  double length = 0.0, position = 0.0;
  if (h < a && -a < h) {
    position = (a + h) * 12.0 / (2.0 * a);
    hourIndex = static_cast<int>(position);
    length = 2.0 * a / 3.0;
  } else {
    if (n <= 0.0) return false;
    // Hours after local midnight belong to the planetary day before.
    if (Mod(jdLocal + 0.5, 1.0) < 0.5) dayIndex = (dayIndex + 6) % 7;
    const double v = Mod(n + h + 180.0, 360.0);
    position = 12.0 * v / (2.0 * n);
    hourIndex = static_cast<int>(position) + 12;
    length = 2.0 * n / 3.0;
  }
  const double f = Mod(position, 1.0);

  static constexpr const char* kDayRulers = "3164758";   // Sun, Moon, Mars, Mercury, Jupiter, Venus, Saturn
  static constexpr const char* kFirstHour = "0362514";   // each day's first hour in the Chaldean sequence
  static constexpr const char* kChaldean = "3541876";    // Sun, Venus, Mercury, Moon, Saturn, Jupiter, Mars
  out.DayIndex = dayIndex;
  out.DayRuler = kDayRulers[dayIndex] - '0';
  out.HourIndex = hourIndex;
  out.HourRuler = kChaldean[(kFirstHour[dayIndex] - '0' + hourIndex) % 7] - '0';
  out.MinutesGone = ClampToInt16(length * f);
  out.MinutesLeft = ClampToInt16(length * (1.0 - f));
  return true;
}

// ---- Almutens ----

AlmutenScores DegreeAlmuten(const Session& session, int slot, const DignityData& data, double longitude,
                            const AlmutenDef& def) {
  AlmutenScores r;
  if (!HaveSet(data, def.RulerSetIndex) || !std::isfinite(longitude)) return r;
  const DignitySlots slots(data, def, SlotIsDay(session, slot));
  const std::array<int, 10> at = slots.Fill(Mod(longitude, 360.0));
  for (int p : Candidates(session, slot, slots, def)) {
    char mark = ' ';
    r.Planets.push_back(p);
    r.Scores.push_back(ScoreAt(slots, def, at, p, SlotLongitude(session, slot, p), mark));
  }
  SortScores(r);
  return r;
}

AlmutenScores ChartAlmuten(const Session& session, int slot, const DignityData& data, const AlmutenDef& def,
                           const std::function<double(int item)>& itemLongitude) {
  AlmutenScores r;
  if (!HaveSet(data, def.RulerSetIndex)) return r;
  const bool isDay = SlotIsDay(session, slot);
  if (def.SectRule != 0 && isDay != (def.SectRule == 1)) return r;
  const DignitySlots slots(data, def, isDay);

  auto longitudeOf = [&](int item) -> double {
    const double asc = SlotLongitude(session, slot, kAscendant);
    if (item == kFortunePseudoPoint) {
      const double moon = SlotLongitude(session, slot, kMoon), sun = SlotLongitude(session, slot, kSun);
      if (asc < 0.0 || moon < 0.0 || sun < 0.0) return -1.0;
      return isDay || def.ForceDayFortune ? Mod(asc + moon - sun, 360.0) : Mod(asc - moon + sun, 360.0);
    }
    if (item == 25) {
      const double node = SlotLongitude(session, slot, session.vocab.NodePoint);
      return node < 0.0 ? -1.0 : Mod(node + 180.0, 360.0);
    }
    if (item >= 1 && item <= 99) {
      const int point = FilePointCode(item, session.vocab.NodePoint);
      return point >= 1 && point <= kPoints ? SlotLongitude(session, slot, point) : -1.0;
    }
    if (item == 101 || item == 102) {
      const double angle = SlotLongitude(session, slot, item == 101 ? kAscendant : kMidheaven);
      return angle < 0.0 ? -1.0 : Mod(angle + 180.0, 360.0);
    }
    return itemLongitude ? itemLongitude(item) : -1.0;
  };

  const std::vector<int> candidates = Candidates(session, slot, slots, def);
  r.Planets = candidates;
  r.Scores.assign(candidates.size(), 0);
  r.Marks.assign(candidates.size(), std::string());
  std::array<double, kPoints + 1> own{};
  for (int p : candidates) own[p] = SlotLongitude(session, slot, p);

  for (int i = 1; i <= 36; ++i) {
    const int entry = def.Points[i];
    if (entry == 0) continue;
    const int weight = std::max(1, entry / 1000);
    const int item = entry % 1000;
    const double lon = item > 0 ? longitudeOf(item) : -1.0;
    const bool usable = std::isfinite(lon) && lon >= 0.0;
    const std::array<int, 10> at = usable ? slots.Fill(Mod(lon, 360.0)) : std::array<int, 10>{};
    for (size_t c = 0; c < candidates.size(); ++c) {
      char mark = ' ';
      if (usable) r.Scores[c] += weight * ScoreAt(slots, def, at, candidates[c], own[candidates[c]], mark);
      r.Marks[c] += mark;
    }
  }

  if (def.Weights[15] != 0 || def.Weights[16] != 0) {
    PlanetaryHour hour;
    if (PlanetaryHours(session, slot, hour)) {
      for (size_t c = 0; c < candidates.size(); ++c) {
        if (candidates[c] == hour.DayRuler) r.Scores[c] += def.Weights[15];
        if (candidates[c] == hour.HourRuler) r.Scores[c] += def.Weights[16];
      }
    }
  }
  SortScores(r);
  return r;
}

int AlmutenTies(const std::vector<int>& planets, const std::vector<int>& scores) {
  const size_t count = std::min(planets.size(), scores.size());
  if (count == 0) return 0;
  size_t ties = 1;
  while (ties < count && scores[ties] == scores[ties - 1]) ++ties;
  return ties >= 6 ? 0 : static_cast<int>(ties);
}

}  // namespace vintar
