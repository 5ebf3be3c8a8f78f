#include "groups/group_report.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "calc/cache.h"
#include "calc/chart.h"
#include "core/parse.h"
#include "core/preferences.h"
#include "core/text.h"
#include "groups/interpretation.h"
#include "groups/rtf.h"

namespace vintar {

namespace {

constexpr int kReportFrom = 5, kReportTo = 12;
constexpr float kReportOrb = 10.0f;
constexpr int kReportMinMatches = 3;
constexpr int kTieLimit = 4;
constexpr double kOuterOrb = 10.0;

const char* const kNoRolePattern =
    "No single pattern was found that fits the group better than many other patterns. Therefore, it is likely "
    "that a number of different group roles will be possible for individuals in this group.";
const char* const kNoGroupPattern =
    "No single pattern was found that fits the group better than many other patterns. Therefore, it is likely "
    "that a number of different group dynamics will be working concurrently in this group.";

const char* const kMonths[] = {"January", "February", "March",     "April",   "May",      "June",
                               "July",    "August",   "September", "October", "November", "December"};

std::string DegMin(double degrees) {
  const long minutes = std::lround(std::fabs(degrees) * 60.0);
  const long d = minutes / 60, m = minutes % 60;
  return std::to_string(d) + "\xB0" + (m < 10 ? "0" : "") + std::to_string(m) + "'";
}

std::string Name(const Session& s, int point) {
  if (point < 1 || point >= static_cast<int>(s.vocab.PointName.size())) return "?";
  return Trim(s.vocab.PointName[point]);
}

// A name without a leading "The ".
std::string Bare(const std::string& name) {
  if (name.size() > 4 && EqualsIgnoreCase(name.substr(0, 4), "the ")) return name.substr(4);
  return name;
}

std::string MidpointLabel(const Session& s, int a, int b) {
  return "The " + Bare(Name(s, a)) + "/" + Bare(Name(s, b)) + " Midpoint";
}

// Everything one report run needs, passed round its steps.
class Report {
 public:
  Report(Session& session, GroupSearchState& state, const GroupReportOptions& options, Progress* progress)
      : s_(session), state_(state), o_(options), progress_(progress) {}

  GroupReportOutcome Run();

 private:
  bool Stopped() {
    if (!stop_ && progress_ && progress_->Cancelled()) stop_ = true;
    return stop_;
  }
  void Main(const std::string& text) {
    out_.MainLine = text;
    if (progress_) progress_->Caption(text);
  }
  void Step(const std::string& text) {
    out_.StepLine = text;
    if (progress_) progress_->Status(text);
  }
  // Interpretation texts, escaped and with their paragraphs made RTF.
  std::string T(const InterpretationFile& file, int table, int a, int b = 0, int c = 0) {
    std::string text;
    ReadInterpretation(file, table, a, b, c, text);
    return RtfLines(w_, RtfEscape(text));
  }
  std::string E(const std::string& text) { return RtfEscape(text); }
  std::string P() { return RtfParagraph(w_); }
  void Put(const std::string& text, int style) { file_.Put(RtfStyled(w_, text, style)); }
  bool Search(const GroupSearchParams& p) {
    SearchGroupPatterns(s_, state_, p, progress_);
    return !Stopped();
  }
  GroupSearchParams ReportParams(int from, int to, bool combination) const {
    GroupSearchParams p;
    p.FromHarmonic = from;
    p.ToHarmonic = to;
    p.Orb = kReportOrb;
    p.Position = 0.0f;
    p.MinMatches = kReportMinMatches;
    p.SpecifiedPosition = false;
    p.Combination = combination;
    return p;
  }

  void WriteHead();
  void WriteEmphasis();
  bool RoleChapter();
  bool GroupChapter();
  void WriteSelected();
  void Describe(int k, bool asPair, bool hasPairPoints);
  double ItemBase(const GroupMatch& m, const GroupMatchItem& item) const;

  Session& s_;
  GroupSearchState& state_;
  const GroupReportOptions& o_;
  Progress* progress_;
  GroupReportOutcome out_;
  RtfWriter w_;
  RtfFile file_;
  InterpretationFile general_, type_;
  bool interpret_ = true;
  bool stop_ = false;
  std::vector<int> charts_;
  std::vector<std::array<double, kPoints + 1>> lon_;  // by search chart
  std::array<bool, kPoints + 1> primary_{};
  int untimed_ = 0, unlocated_ = 0;
};

double Report::ItemBase(const GroupMatch& m, const GroupMatchItem& item) const {
  const auto at = std::find(charts_.begin(), charts_.end(), item.Chart);
  if (at == charts_.end()) return -1.0;
  const auto& lon = lon_[at - charts_.begin()];
  const SearchPair pair = MatchItemPair(state_, m, item);
  if (pair.First < 1 || pair.Second < 1) return -1.0;
  const double a = lon[pair.First], b = lon[pair.Second];
  if (a < 0.0 || b < 0.0) return -1.0;
  return pair.First == pair.Second ? a : NearMidpoint(b, a);
}

void Report::WriteHead() {
  const Clock& c = s_.clock;
  const std::string month = c.Month >= 1 && c.Month <= 12 ? kMonths[c.Month - 1] : "";
  const std::string today = s_.prefs.MonthFirst ? month + " " + std::to_string(c.Day) + ", " + std::to_string(c.Year)
                                                : std::to_string(c.Day) + " " + month + " " + std::to_string(c.Year);
  Put("Kinfold Analysis\\fs16  \\'ae", 0);
  Put(P() + P() + "Report produced by " + E(o_.UserName) + P() + E(today) + P() + E(o_.ProgramName) + " " +
          E(o_.ProgramVersion),
      1);
  Put(P() + P() + "Group Title: " + E(Trim(s_.project.Header.Title)) + P(), 2);
  Put("Group Type: " + RtfBold(w_, GroupTypes()[o_.GroupType].Title), 3);

  std::string body = T(general_, 4, o_.GroupType + 1) + P() + "Charts Included in Search:";
  const ProjectState& project = s_.project;
  for (int record : charts_) {
    const EventRecord& e = project.Events[record];
    body += P() + std::to_string(record) + ". " + RtfBold(w_, E(Trim(e.Description))) + "; " +
            E(FormatDate(s_, e.Day, e.Month, e.Year));
    if (e.DetailLevel > 0) body += ", " + E(FormatZone(e.ZoneHours) + " " + Trim(e.ZoneAbbr));
    if (e.DetailLevel > 1) body += ", " + E(Trim(FormatTime(e.Hour, e.Minute, e.Second, false)));
    if (e.DetailLevel > 2)
      body += ", " + E(FormatLatitude(e.Latitude) + " " + FormatLongitude(e.Longitude) + " " + Trim(e.Placename));
  }
  body += P() + "Total Charts: " + std::to_string(charts_.size());
  if (untimed_ > 0)
    body += P() + "Untimed Charts: " + std::to_string(untimed_);
  else if (unlocated_ > 0)
    body += P() + "Unlocated Charts: " + std::to_string(unlocated_);
  Put(body, 5);
  if (untimed_ > 0)
    Put(T(general_, 4, 105), 5);
  else if (unlocated_ > 0)
    Put(T(general_, 4, 106), 5);
}

void Report::WriteEmphasis() {
  if (interpret_) {
    Put("Introduction", 2);
    Put(T(general_, 3, 0), 5);
  }
  Step("Finding sign and house emphasis...");
  Put("Introducing Your Group", 2);
  std::array<int, 13> signs{}, houses{};
  TallyEmphasis(s_, charts_, lon_, primary_, signs, houses);

  auto emphasis = [&](const std::array<int, 13>& scores, const std::string& head, const std::string& intro,
                      const std::string& strongest, const std::function<std::string(int)>& label,
                      const std::function<std::string(int)>& suffix, int table) {
    std::vector<float> keys(13, 0.0f);
    for (int i = 1; i <= 12; ++i) keys[i] = static_cast<float>(scores[i]);
    const std::vector<int> order = IndexSort(keys, true);
    Put(head, 3);
    std::string line = intro;
    for (int i = 1; i <= 12; ++i)
      line += (i > 1 ? "; " : " ") + E(label(order[i])) + " " + std::to_string(scores[order[i]]);
    Put(line, 5);
    Put(RtfBold(w_, strongest), 5);
    for (int i = 1; i <= 12 && scores[order[i]] == scores[order[1]]; ++i) {
      std::string text = RtfItalic(w_, E(label(order[i]) + suffix(order[i])));
      if (interpret_) text += P() + T(type_, table, order[i], 2);
      Put(text, 5);
    }
  };
  emphasis(
      signs, "Sign Emphasis", "Sign Scores for all midpoints:", "Strongest Sign",
      [&](int sign) { return Trim(s_.vocab.SignName[sign]); }, [](int) { return std::string(": "); }, 14);
  if (untimed_ == 0 && unlocated_ == 0)
    emphasis(
        houses, "House Emphasis", "House Scores for all midpoints:", "Strongest House",
        [](int house) { return FormatOrdinal(house); }, [](int) { return std::string(" House: "); }, 13);
}

bool Report::RoleChapter() {
  Put(P() + P() + (interpret_ ? "Each Person's Role in the Group" : "Primary Point Patterns"), 2);
  if (interpret_) Put(T(general_, 4, 100), 5);
  Step("Combination search using primary points...");
  ClearSearchPoints(state_);
  for (int p = 1; p <= kPoints; ++p)
    if (primary_[p]) AddSearchPair(s_, state_, p, p);
  if (!Search(ReportParams(kReportFrom, kReportTo, true))) return false;
  float bestScore = 0;
  int bestCount = 0;
  ScorePatterns(state_, bestScore, bestCount, 0.2f, static_cast<int>(charts_.size()));
  Step("Patterns found: " + std::to_string(bestCount));
  int number = 0;
  if (bestCount <= kTieLimit) {
    for (int k = 1; k <= state_.MatchCount; ++k) {
      if (state_.Matches[k].Score != bestScore) continue;
      ++number;
      Put("Role Pattern " + std::to_string(number), 3);
      Describe(k, false, false);
    }
  }
  out_.RolePatterns = number;
  if (number == 0 || bestCount > kTieLimit) Put(kNoRolePattern, 5);
  return true;
}

bool Report::GroupChapter() {
  Put(P() + P() + (interpret_ ? "How Your Group Works" : "Midpoint Patterns"), 2);
  if (interpret_) Put(T(general_, 4, 101), 5);
  Step("Same point search using all midpoints...");

  struct Candidate {
    int a, b, harmonic;
    float score = 0;
  };
  std::vector<Candidate> candidates;
  for (int p = 1; p <= kPoints; ++p) {
    if (!primary_[p]) continue;
    ClearSearchPoints(state_);
    for (int q = p + 1; q <= kPoints; ++q)
      if (primary_[q]) AddSearchPair(s_, state_, p, q);
    if (state_.SearchPoints.empty()) continue;
    Step("Same point search using midpoints of " + Name(s_, p) + "...");
    if (!Search(ReportParams(kReportFrom, kReportTo, false))) return false;
    float bestScore = 0;
    int bestCount = 0;
    ScoreChartRatio(state_, bestScore, bestCount, 0.4f, static_cast<int>(charts_.size()));
    if (bestCount <= 0) continue;
    for (int k = 1; k <= state_.MatchCount; ++k) {
      const GroupMatch& m = state_.Matches[k];
      if (m.Score != bestScore || m.PointIndex < 1) continue;
      const SearchPair pair = state_.SearchPoints[m.PointIndex - 1];
      const bool known = std::any_of(candidates.begin(), candidates.end(), [&](const Candidate& c) {
        return c.a == pair.First && c.b == pair.Second && c.harmonic == m.Harmonic;
      });
      if (!known) candidates.push_back({pair.First, pair.Second, m.Harmonic});
    }
  }

  // The rating searches the two points and their midpoint together. The
  // status names the harmonic of the last candidate, as it always has.
  const std::string lastOrdinal = candidates.empty() ? "" : FormatOrdinal(candidates.back().harmonic);
  auto searchCandidate = [&](const Candidate& c, float ratio, float& bestScore, int& bestCount) {
    Step("Search using " + Name(s_, c.a) + " and " + Name(s_, c.b) + " in the " + lastOrdinal + " harmonic...");
    ClearSearchPoints(state_);
    AddSearchPair(s_, state_, c.a, c.a);
    AddSearchPair(s_, state_, c.b, c.b);
    AddSearchPair(s_, state_, c.b, c.a);
    if (!Search(ReportParams(c.harmonic, c.harmonic, true))) return false;
    ScorePatterns(state_, bestScore, bestCount, ratio, static_cast<int>(charts_.size()));
    return true;
  };
  float best = 0;
  int ties = 0;
  for (Candidate& c : candidates) {
    float bestScore = 0;
    int bestCount = 0;
    if (!searchCandidate(c, 0.2f, bestScore, bestCount)) return false;
    c.score = bestScore;
    if (c.score > best) {
      best = c.score;
      ties = 1;
    } else if (c.score == best) {
      ++ties;
    }
  }
  int number = 0;
  for (const Candidate& c : candidates) {
    if (c.score != best) continue;
    float bestScore = 0;
    int bestCount = 0;
    if (!searchCandidate(c, 0.5f, bestScore, bestCount)) return false;
    for (int k = 1; k <= state_.MatchCount; ++k) {
      if (state_.Matches[k].Score != bestScore) continue;
      ++number;
      Put("Group Pattern " + std::to_string(number), 3);
      Describe(k, true, true);
    }
  }
  out_.GroupPatterns = number;
  if (number == 0 || ties > kTieLimit) Put(kNoGroupPattern, 5);
  return true;
}

void Report::WriteSelected() {
  Put("User-Selected Pattern", 2);
  Put("Points Used in Search", 3);
  const GroupMatch& m = state_.Matches[o_.SelectedMatch];
  std::vector<SearchPair> pairs;
  if (m.PointIndex > 0 && m.PointIndex <= static_cast<int>(state_.SearchPoints.size()))
    pairs.push_back(state_.SearchPoints[m.PointIndex - 1]);
  else if (m.PointIndex == 0)
    pairs = state_.SearchPoints;
  std::vector<int> singles, midpoints;
  std::string list;
  for (const SearchPair& pair : pairs) {
    std::string text;
    if (pair.First == pair.Second) {
      singles.push_back(pair.First);
      text = Name(s_, pair.First);
    } else {
      midpoints.push_back(std::min(pair.First, pair.Second) * 100 + std::max(pair.First, pair.Second));
      text = Name(s_, pair.First) + "/" + Name(s_, pair.Second) + " Midpoint";
    }
    list += (list.empty() ? "" : ", ") + text;
  }
  Put((m.PointIndex > 0 ? "Same Point Search: " : "Combination Search: ") + E(list), 5);
  const bool asPair = singles.size() == 2 && midpoints.size() == 1 &&
                      midpoints[0] == std::min(singles[0], singles[1]) * 100 + std::max(singles[0], singles[1]);
  const bool hasPairPoints = asPair || midpoints.size() == 1;
  Describe(o_.SelectedMatch, asPair, hasPairPoints);
  if (interpret_)
    Put(RtfItalic(w_, T(general_, 4, 199)), 5);
  else
    Put("* * * Report End * * *", 1);
}

void Report::Describe(int k, bool asPair, bool hasPairPoints) {
  const GroupMatch m = state_.Matches[k];
  const int h = std::max<int>(m.Harmonic, 1);
  const double mod = 360.0 / h, half = mod / 2.0;
  Put(RtfBold(w_, "Number of Charts: " + std::to_string(m.Charts) + ";  Number of Hits: " + std::to_string(m.Hits) +
                      P() + "Pattern Harmonic: " + FormatOrdinal(h) + ";  Vacant Points: " + std::to_string(m.Vacant)),
      5);
  std::string harmonic = RtfBold(w_, FormatOrdinal(h) + " Harmonic");
  if (interpret_) harmonic += P() + T(general_, 5, h);
  Put(harmonic, 5);

  // The pattern's two points, for the patterns of a pair.
  int a = 0, b = 0;
  if (hasPairPoints && !state_.SearchPoints.empty()) {
    a = state_.SearchPoints[0].First;
    b = state_.SearchPoints[0].Second;
  }
  if (asPair) {
    for (size_t i = 0; i < std::min<size_t>(3, state_.SearchPoints.size()); ++i) {
      if (state_.SearchPoints[i].First != state_.SearchPoints[i].Second) {
        a = state_.SearchPoints[i].First;
        b = state_.SearchPoints[i].Second;
        break;
      }
    }
  }
  if (hasPairPoints && a > 0 && b > 0) {
    std::string text = RtfBold(w_, E("Pattern Point Combination: " + Name(s_, a) + " and " + Name(s_, b)));
    if (interpret_) text += P() + T(type_, 19, InterpretationIndex(a), 1, InterpretationIndex(b));
    Put(text, 5);
  }

  // The members in the pattern, by point.
  const std::vector<GroupMatchItem> items = MatchItems(state_, k);
  std::vector<bool> handled(items.size(), false), filled(h + 1, false);
  std::vector<int> seen;
  for (size_t i = 0; i < items.size(); ++i) {
    if (handled[i]) continue;
    const SearchPair pair = MatchItemPair(state_, m, items[i]);
    const std::string label =
        pair.First == pair.Second ? Name(s_, pair.First) : MidpointLabel(s_, pair.First, pair.Second);
    std::string text = RtfBold(w_, E(label)) + " is contributed by:";
    for (size_t j = i; j < items.size(); ++j) {
      if (handled[j] || !(MatchItemPair(state_, m, items[j]) == pair)) continue;
      handled[j] = true;
      seen.push_back(items[j].Chart);
      if (items[j].Sector >= 1 && items[j].Sector <= h) filled[items[j].Sector] = true;
      const double base = ItemBase(m, items[j]);
      const double nominal = GroupMod(m.Position + (items[j].Sector - 1) * mod, 360.0);
      const double orb = std::fabs(GroupMod(base - nominal + 180.0 / h, mod) - 180.0 / h);
      const EventRecord& e = s_.project.Events[items[j].Chart];
      text += P() + std::to_string(items[j].Chart) + ". " + RtfBold(w_, E(Trim(e.Description))) + " at " +
              E(Trim(ZodiacPosition(s_, base, false))) + " (Orb " + E(DegMin(orb)) + ")";
    }
    if (interpret_ && !asPair) {
      text += P() + (pair.First == pair.Second
                         ? T(type_, 15, InterpretationIndex(pair.First))
                         : T(type_, 19, InterpretationIndex(pair.First), 1, InterpretationIndex(pair.Second)));
    }
    Put(text, 5);
  }

  // The others: those who fit only with other points or wider orbs.
  const int others = static_cast<int>(charts_.size()) - m.Charts;
  if (others > 0) {
    std::string text = RtfBold(w_, "There " +
                                       (others == 1 ? std::string("is 1 group member who fits")
                                                    : "are " + std::to_string(others) + " group members who fit") +
                                       " into this pattern only with other points or wider orbs.");
    if (interpret_) text += P() + T(general_, 4, 104);
    Put(text, 5);
  }
  for (size_t c = 0; c < charts_.size(); ++c) {
    if (std::find(seen.begin(), seen.end(), charts_[c]) != seen.end()) continue;
    const auto& lon = lon_[c];
    double best = 999.0, pos = -1.0;
    int q = 0, x = 0;
    std::string label;
    if ((asPair || hasPairPoints) && a > 0 && b > 0 && lon[a] >= 0.0 && lon[b] >= 0.0) {
      for (int with : {a, b}) {
        for (int p = 1; p <= kPoints; ++p) {
          if (!primary_[p] || p == with || lon[p] < 0.0) continue;
          const double mid = NearMidpoint(lon[p], lon[with]);
          const double d = std::fabs(GroupMod(mid - m.Position + half, mod) - half);
          if (d < best) best = d, q = p, x = with, pos = mid;
        }
      }
      if (q > 0) label = MidpointLabel(s_, q, x);
    } else {
      for (int p = 1; p <= kPoints; ++p) {
        if (!primary_[p] || lon[p] < 0.0) continue;
        const double d = std::fabs(GroupMod(lon[p] - m.Position + half, mod) - half);
        if (d < best) best = d, q = p, pos = lon[p];
      }
      if (q > 0) label = Name(s_, q);
    }
    if (q == 0 || best > kOuterOrb) continue;
    const EventRecord& e = s_.project.Events[charts_[c]];
    std::string text = std::to_string(c + 1) + ". " + RtfBold(w_, E(Trim(e.Description))) + " contributes " +
                       RtfBold(w_, E(label)) + " at " + E(Trim(ZodiacPosition(s_, pos, false))) + " (Orb " +
                       E(DegMin(best)) + ")";
    if (interpret_) {
      text += P() + (asPair ? T(general_, 19, InterpretationIndex(q), 1, InterpretationIndex(x))
                            : T(type_, 15, InterpretationIndex(q)));
    }
    Put(text, 5);
  }

  // The nodes of the harmonic that no member fills.
  if (m.Vacant > 0) {
    int vacant = 0;
    for (int sector = 1; sector <= h; ++sector) {
      if (filled[sector]) continue;
      ++vacant;
      Put(RtfBold(w_, E("This pattern has a Vacant Point at " +
                        Trim(ZodiacPosition(s_, GroupMod(m.Position + (sector - 1) * mod, 360.0), false)))),
          5);
    }
    if (interpret_ && vacant > 0) Put(T(general_, 4, vacant == 1 ? 102 : 103), 5);
  }
}

GroupReportOutcome Report::Run() {
  out_.Path = o_.Path.empty() ? GroupReportPath(s_) : o_.Path;
  if (o_.GroupType < 0 || o_.GroupType >= kGroupTypes) return out_;
  interpret_ = o_.GroupType != 5;
  charts_ = GroupSearchCharts(s_);
  const int count = static_cast<int>(charts_.size());
  if (count < 3)
    s_.ShowMessage("There are less than 3 charts with time zones. This is too few to produce a report.",
                   kIconInformation, "Too few charts");
  if (count > 30) {
    const int answer =
        s_.ShowMessage("There are " + std::to_string(count) +
                           " charts to be included in the search, although it is normally recommended that you "
                           "limit the group to about 30 charts. This may take some time to process." +
                           kLineEnd + kLineEnd + "Are you sure that you wish to proceed?",
                       kOkCancel + kIconQuestion, "Many Charts");
    if (answer == kCancel) {
      out_.Result = GroupReportResult::Declined;
      return out_;
    }
  }
  if (o_.SelectedMatch > 0 && (o_.SelectedMatch > state_.MatchCount || !state_.CurrentMatches)) return out_;
  Main("Available Charts: " + std::to_string(count));
  Step("Initializing search...");

  // The files: the two interpretation files, the document, the positions.
  // The old document goes only once the texts are there to write a new one.
  const std::string general = FindInterpretationFile(s_, "general.int");
  const std::string type = FindInterpretationFile(s_, GroupTypes()[o_.GroupType].File);
  if (general.empty() || type.empty() || !OpenInterpretation(s_, general, general_) ||
      !OpenInterpretation(s_, type, type_)) {
    out_.Result = GroupReportResult::NoFile;
    return out_;
  }
  std::remove(out_.Path.c_str());
  if (!file_.Create(out_.Path)) {
    s_.ShowMessage("An error occured during report generation: " + std::string(kLineEnd) + kLineEnd +
                       "The report could not be written to " + out_.Path + ".",
                   kIconStop, "Error");
    out_.Result = GroupReportResult::Failed;
    return out_;
  }
  const int coordinate = s_.cache.Coordinate == kHeliocentric ? kHeliocentric : kGeocentric;
  bool cancelled = false;
  CalcEvents(s_, coordinate, kTransits, std::clamp<int>(s_.cache.ProgressionMethod, kNaibod, kMeanQuotidian),
             cancelled, progress_);
  CacheReader cache;
  if (cancelled || (count > 0 && !cache.Open(CacheFileName(s_.project.ProjectPath, coordinate, kTransits),
                                             charts_.back()))) {
    file_.Close();
    out_.Result = cancelled ? GroupReportResult::Stopped : GroupReportResult::NoFile;
    return out_;
  }
  for (int record : charts_) {
    std::array<double, kPoints + 1> lon{};
    lon.fill(-1.0);
    if (const unsigned char* bytes = cache.Record(record)) {
      const EventPositionRecord r = DecodeCacheRecord(bytes);
      if (CacheRecordUsable(r)) lon = AdjustedLongitudes(s_, r);
    }
    lon_.push_back(lon);
    const int detail = s_.project.Events[record].DetailLevel;
    if (detail < 2) ++untimed_;
    if (detail < 3) ++unlocated_;
  }

  w_.SetDefaultStyles();
  w_.Enabled = true;
  file_.Put(RtfHead(w_, 12));
  WriteHead();
  bool finished = !Stopped();
  if (finished) {
    primary_ = PrimaryPoints(s_, charts_);
    if (o_.SelectedMatch > 0) {
      WriteSelected();
    } else {
      WriteEmphasis();
      finished = RoleChapter() && GroupChapter();
      if (finished) {
        if (interpret_) {
          Put("Conclusion", 2);
          Put(T(general_, 4, 198), 5);
          Put(P() + P() + RtfItalic(w_, T(general_, 4, 199)), 5);
        } else {
          Put("* * * Report End * * *", 1);
        }
      }
    }
  }
  if (!finished) {
    file_.Close();
    Step("Search was stopped by user");
    out_.Result = GroupReportResult::Stopped;
    return out_;
  }
  file_.Put(RtfEnd(w_));
  if (!file_.Close()) {
    s_.ShowMessage("An error occured during report generation: " + std::string(kLineEnd) + kLineEnd +
                       "The report could not be written to " + out_.Path + ".",
                   kIconStop, "Error");
    out_.Result = GroupReportResult::Failed;
    return out_;
  }
  out_.Result = GroupReportResult::Written;
  if (o_.OpenWordProcessor && o_.Launch) {
    Step("Sending report to word processor...");
    StartWordProcessor(s_, out_.Path, o_.Launch);
  }
  Step("Finished");
  Main(out_.StepLine);
  return out_;
}

}  // namespace

const std::array<GroupType, kGroupTypes>& GroupTypes() {
  static const std::array<GroupType, kGroupTypes> kTypes{{{"&Family", "Family", "Family.int"},
                                                          {"&Hunting Party", "Hunting Group", "Hunt.int"},
                                                          {"&Gathering Group", "Gathering Group", "Gather.int"},
                                                          {"&Play/Peer Group", "Play/Peer Group", "Play.int"},
                                                          {"&Tribal Elders", "Tribal Elders", "Tribe.int"},
                                                          {"&Other", "Undefined", "Other.int"}}};
  return kTypes;
}

int GroupTypeByName(const std::string& name) {
  static const char* const kWords[kGroupTypes] = {"family", "hunt", "gather", "play", "tribe", "other"};
  const std::string n = Trim(name);
  for (int i = 0; i < kGroupTypes; ++i) {
    const std::string word = kWords[i];
    if (n.size() >= 3 && EqualsIgnoreCase(n, word.substr(0, std::min(word.size(), n.size())))) return i;
    if (EqualsIgnoreCase(n, GroupTypes()[i].Title)) return i;
  }
  return -1;
}

void ScorePatterns(GroupSearchState& state, float& bestScore, int& bestCount, float minChartRatio, int totalCharts) {
  bestScore = -1.0f;
  bestCount = 0;
  float minNodeRatio = 0.7f;
  for (int round = 1;; ++round) {
    int last = 0;
    for (int i = 1; i <= state.MatchCount; ++i) {
      GroupMatch& m = state.Matches[i];
      if (m.Charts <= 0 || m.Harmonic <= 0 || totalCharts <= 0) continue;
      const float chartRatio = static_cast<float>(static_cast<double>(m.Charts) / totalCharts);
      const float density = static_cast<float>(static_cast<double>(m.Hits) / m.Charts);
      const float nodeRatio = static_cast<float>(static_cast<double>(m.Harmonic - m.Vacant) / m.Harmonic);
      if (nodeRatio < minNodeRatio) continue;
      m.Score = density + m.Charts * 1000.0f;
      if (chartRatio < minChartRatio) m.Score = 0.0f;
      if (m.Score == bestScore) {
        bool duplicate = false;
        if (last > 0) {
          const GroupMatch& l = state.Matches[last];
          const double mod = 360.0 / m.Harmonic;
          const double d = std::fabs(GroupMod(m.Position - l.Position + mod / 2.0, mod) - mod / 2.0);
          duplicate = m.Harmonic == l.Harmonic && m.Vacant == l.Vacant && d < mod / 36.0;
        }
        if (duplicate) {
          m.Score = 0.0f;
        } else {
          ++bestCount;
          last = i;
        }
      } else if (m.Score > bestScore) {
        bestScore = m.Score;
        bestCount = 1;
        last = i;
      }
    }
    if (bestCount > 0 || round > 3) break;
    minNodeRatio = static_cast<float>(minNodeRatio - 0.1);
  }
}

void ScoreChartRatio(GroupSearchState& state, float& bestScore, int& bestCount, float minChartRatio,
                     int totalCharts) {
  bestScore = -1.0f;
  bestCount = 0;
  for (int i = 1; i <= state.MatchCount; ++i) {
    GroupMatch& m = state.Matches[i];
    const float ratio = totalCharts > 0 ? static_cast<float>(m.Charts) / static_cast<float>(totalCharts) : 0.0f;
    m.Score = ratio >= minChartRatio ? 1.0f : 0.0f;
    if (m.Score == bestScore) {
      ++bestCount;
    } else if (m.Score > bestScore) {
      bestScore = m.Score;
      bestCount = 1;
    }
  }
}

std::array<bool, kPoints + 1> PrimaryPoints(const Session& session, const std::vector<int>& charts) {
  bool untimed = false, unlocated = false;
  for (int record : charts) {
    const int detail = session.project.Events[record].DetailLevel;
    untimed = untimed || detail < 2;
    unlocated = unlocated || detail < 3;
  }
  std::array<bool, kPoints + 1> on{};
  for (int p = kSun; p <= kPluto; ++p) on[p] = true;
  on[session.vocab.NodePoint == kTrueNode ? kTrueNode : kMeanNode] = true;
  on[kMoon] = !untimed;
  on[kAscendant] = on[kMidheaven] = !unlocated;
  return on;
}

void TallyEmphasis(Session& session, const std::vector<int>& charts,
                   const std::vector<std::array<double, kPoints + 1>>& longitudes,
                   const std::array<bool, kPoints + 1>& primary, std::array<int, 13>& signScores,
                   std::array<int, 13>& houseScores) {
  signScores.fill(0);
  houseScores.fill(0);
  constexpr int kSlot = 7;
  for (size_t c = 0; c < charts.size() && c < longitudes.size(); ++c) {
    const EventRecord& e = session.project.Events[charts[c]];
    if (!e.Enabled) continue;
    const auto& lon = longitudes[c];
    CastChart(session, kSlot, e.Day, e.Month, e.Year, e.Hour + e.Minute / 60.0 + e.Second / 3600.0, e.ZoneHours,
              e.Longitude, e.Latitude);
    const std::array<double, 13> cusps = session.charts.Slots[kSlot].Cusps;
    for (int i = 1; i <= kPoints; ++i) {
      if (!primary[i] || lon[i] < 0.0) continue;
      for (int j = i; j <= kPoints; ++j) {
        if (!primary[j] || lon[j] < 0.0) continue;
        const double pos = i == j ? lon[i] : NearMidpoint(lon[j], lon[i]);
        signScores[static_cast<int>(pos / 30.0) % 12 + 1] += 1;
        if (i >= kAscendant || j >= kAscendant) continue;
        for (int k = 1; k <= 12; ++k) {
          const double from = cusps[k], to = cusps[k % 12 + 1];
          const bool inside = from <= to ? pos >= from && pos < to : pos >= from || pos < to;
          if (inside) {
            houseScores[k] += 1;
            break;
          }
        }
      }
    }
  }
}

WordProcessorChoice LoadWordProcessorChoice(const Session& session) {
  return {session.prefs.UseOtherWP != 0, session.prefs.WordProc};
}

bool ApplyWordProcessorChoice(Session& session, bool useOther, const std::string& path) {
  const std::string trimmed = Trim(path);
  session.prefs.WordProc = trimmed;
  session.prefs.UseOtherWP = useOther && !trimmed.empty() ? kTrue : kFalse;
  const bool a = PutProfileText(session, "Vintar", "WordProc", trimmed);
  const bool b = PutProfileText(session, "Vintar", "UseOtherWP", std::to_string(session.prefs.UseOtherWP));
  return a && b;
}

std::string GroupReportPath(const Session& session) {
  const std::string folder =
      session.paths.UserDataPath.empty() ? session.paths.SystemDataPath : session.paths.UserDataPath;
  return EnsureBackslash(folder) + "GroupRep.rtf";
}

GroupReportOutcome WriteGroupReport(Session& session, GroupSearchState& state, const GroupReportOptions& options,
                                    Progress* progress) {
  return Report(session, state, options, progress).Run();
}

}  // namespace vintar
