#include "output/rectify_reports.h"

#include <QDateTime>
#include <QFileInfo>

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "calc/astro.h"
#include "core/calendar.h"
#include "core/parse.h"
#include "core/record_edit.h"
#include "core/text.h"
#include "output/event_graph.h"
#include "rectify/viability.h"

namespace vintar {
namespace {

// A table of text columns whose positions follow from the widest cell of
// each; it breaks over pages with its continuation heading and repeats its
// column headings on each page.
struct Table {
  std::vector<std::string> headings;
  std::vector<std::vector<std::string>> rows;
  std::vector<bool> bold;  // per row; empty: none bold
  std::vector<bool> right;  // per column: right-aligned
};

struct Columns {
  std::vector<double> starts, widths;
  double scale = 1.0;  // of the base font: below 1 when the table is too wide for the page at its size
};

Columns LayColumns(ReportDocument& doc, const Table& t) {
  const size_t n = t.headings.size();
  Columns cols;
  cols.widths.assign(n, 0.0);
  doc.SetFont(true);
  for (size_t c = 0; c < n; ++c) cols.widths[c] = doc.TextWidth(t.headings[c]);
  for (const auto& row : t.rows)
    for (size_t c = 0; c < n && c < row.size(); ++c) cols.widths[c] = std::max(cols.widths[c], doc.TextWidth(row[c]));
  doc.SetFont(false);
  const double indent = doc.LineHeight();
  double total = 0;
  for (double w : cols.widths) total += w;
  double gap = 1.5 * doc.LineHeight();
  if (n > 1 && indent + total + gap * double(n - 1) > doc.PageWidth())
    gap = std::max(0.8 * doc.LineHeight(), (doc.PageWidth() - indent - total) / double(n - 1));
  // Still too wide at the narrowest gap: the whole table in a smaller font.
  const double room = doc.PageWidth() - indent - gap * double(n > 0 ? n - 1 : 0);
  if (total > room && total > 0) {
    cols.scale = std::max(0.6, room / total);
    for (double& w : cols.widths) w *= cols.scale;
  }
  double x = indent;
  for (size_t c = 0; c < n; ++c) {
    cols.starts.push_back(x);
    x += cols.widths[c] + gap;
  }
  return cols;
}

void PrintCells(ReportDocument& doc, const Table& t, const Columns& cols, const std::vector<std::string>& cells) {
  for (size_t c = 0; c < cells.size() && c < t.headings.size(); ++c) {
    if (cells[c].empty()) continue;
    if (c < t.right.size() && t.right[c])
      doc.PrintAligned(cells[c], kAlignRight, cols.starts[c] + cols.widths[c]);
    else
      doc.PrintAligned(cells[c], kAlignLeft, cols.starts[c]);
  }
}

void PrintHeadings(ReportDocument& doc, const Table& t, const Columns& starts) {
  doc.SetFont(true, starts.scale);
  PrintCells(doc, t, starts, t.headings);
  doc.SetFont(false);
  doc.NextLine(1.2);
}

// Prints the table; `title` and `continuation` go to the page breaks.
void PrintTable(ReportDocument& doc, const std::string& title, const std::string& continuation, const Table& t) {
  const Columns starts = LayColumns(doc, t);
  doc.EnsureRoom(title, continuation, 2.0);
  PrintHeadings(doc, t, starts);
  for (size_t r = 0; r < t.rows.size(); ++r) {
    if (doc.EnsureRoom(title, continuation, 1.0)) PrintHeadings(doc, t, starts);
    const bool bold = r < t.bold.size() && t.bold[r];
    doc.SetFont(bold, starts.scale);
    PrintCells(doc, t, starts, t.rows[r]);
    doc.SetFont(false);
    doc.NextLine();
  }
}

// A line of text that keeps room for itself.
void TextLine(ReportDocument& doc, const std::string& title, const std::string& continuation,
              const std::string& text) {
  doc.EnsureRoom(title, continuation, 1.0);
  doc.PrintLine(text);
}

// The lines every report with parameters begins with.
void ReportHead(ReportDocument& doc, const Session& session, const ReportOptions& options) {
  doc.PrintLabelled("  Project Title:", session.project.Header.Title);
  if (!options.SubTitle.empty()) doc.PrintLabelled("  SubTitle:", options.SubTitle);
}

std::string Range(const Session& s, const std::array<float, 2>& r) {
  return ZodiacPosition(s, r[kLow], false) + " to " + ZodiacPosition(s, r[kHigh], false);
}

std::string DateOf(const Session& s, double jd) {
  float day = 0;
  int month = 1, year = 2000;
  RevJul(jd, day, month, year);
  return FormatDate(s, static_cast<int>(day), month, year);
}

std::string PointShort(const Session& s, int point) {
  return point >= 1 && point < int(s.vocab.PointShort.size()) ? s.vocab.PointShort[point] : std::to_string(point);
}

std::string PointName(const Session& s, int point) {
  return point >= 1 && point < int(s.vocab.PointName.size()) ? s.vocab.PointName[point] : std::to_string(point);
}

// The name of the aspect of a * 30 degrees.
std::string AspectOf(const Session& s, int a) {
  const Vocabulary& v = s.vocab;
  for (size_t i = 1; i < v.AspectName.size() && i < v.AspectAngle.size(); ++i)
    if (std::fabs(v.AspectAngle[i] - std::abs(a) * 30.0) < 1e-9) return v.AspectName[i];
  return std::to_string(std::abs(a) * 30);
}

std::string PointList(const Session& s, const std::array<int16_t, kPoints + 1>& flags) {
  std::string text;
  for (int p = 1; p <= kPoints; ++p)
    if (flags[p]) text += (text.empty() ? "" : ", ") + PointShort(s, p);
  return text.empty() ? "None" : text;
}

bool RecordOfKind(const EventRecord& e, int kind, const std::vector<int16_t>* passed, int number) {
  switch (kind) {
    case kEnabledRecords: return e.Enabled != 0;
    case kDisabledRecords: return e.Enabled == 0;
    case kPassedRecords: return passed && number < int(passed->size()) && (*passed)[number] != 0;
    default: return true;
  }
}

std::string RangeText(const EventRecord& e) {
  if (e.DayRange > kMarkerRange) return " Year Marker";
  return "+/-" + std::to_string(e.DayRange) + " Days";
}

}  // namespace

std::string RecordListSubTitle(int kind) {
  switch (kind) {
    case kEnabledRecords: return "All Enabled Events";
    case kDisabledRecords: return "All Disabled Events";
    default: return "All Events";
  }
}

void BuildReport(ReportDocument& doc, Session& session, const ReportBuilder& build, const ReportOptions& options) {
  if (build) build(doc, options);
  if (options.AlsoEnabledRecords) {
    ReportOptions list = options;
    list.AlsoEnabledRecords = false;
    DataReport(doc, session, kEnabledRecords, list);
  }
}

// ---------------------------------------------------------------- angles

void AngleSearchReport(ReportDocument& doc, Session& session, const Rectification& rect,
                       const ReportOptions& options) {
  const std::string title = kAngleSearchReportTitle;
  doc.BeginReport(title);
  ReportHead(doc, session, options);
  // The search screen's header: zodiac and node, then the graphs used.
  const std::vector<std::string> header = AngleSearchHeader(session, rect.graphs);
  for (size_t i = 0; i + 1 < header.size(); ++i) doc.PrintLine("  " + header[i]);
  const ProjectHeader& h = session.project.Header;
  const std::string from = options.TimeFrom.empty() ? h.EarliestTime : options.TimeFrom;
  const std::string to = options.TimeTo.empty() ? h.LatestTime : options.TimeTo;
  doc.PrintSectionHead("Possible Chart Angles and Times - " + from + " to " + to);
  const AngleResult& res = rect.peaks.Results;
  if (res.Count <= 0) {
    TextLine(doc, title, "", "  No Angles Found");
    return;
  }
  Table t;
  t.headings = {"Ascendant", "Midheaven", "Vertex", "Local Time"};
  for (int i = 1; i <= res.Count; ++i)
    t.rows.push_back({Range(session, res.ResultAsc[i]), Range(session, res.ResultMC[i]),
                      Range(session, res.ResultVertex[i]),
                      AutoTimeText(session, res.ResultTime[i][kLow]) + " to " +
                          AutoTimeText(session, res.ResultTime[i][kHigh])});
  PrintTable(doc, title, "Possible Chart Angles and Times", t);
}

// ---------------------------------------------------------------- records

void DataReport(ReportDocument& doc, Session& session, int kind, const ReportOptions& options,
                const std::vector<int16_t>* passed) {
  const std::string title = kDataReportTitle;
  const ProjectState& project = session.project;
  doc.BeginReport(title);
  ReportHead(doc, session, options);
  if (!project.ProjectPath.empty()) {
    doc.PrintLabelled("  Data File:", project.ProjectPath);
    const QFileInfo info(QString::fromLocal8Bit(project.ProjectPath.c_str()));
    if (info.exists()) {
      const QDateTime saved = info.lastModified();
      const QDate d = saved.date();
      const QTime t = saved.time();
      doc.PrintLabelled("  Saved:", FormatDate(session, d.day(), d.month(), d.year()) + " " +
                                        FormatTime(t.hour(), t.minute(), 0, session.prefs.AMPM != 0));
    }
  }
  static const char* const kHeads[] = {"List of All Records", "List of Enabled Records", "List of Disabled Records",
                                       "List of Passed Records"};
  kind = std::clamp(kind, kAllRecords, kPassedRecords);
  doc.PrintSectionHead(kHeads[kind]);
  const int count = std::max(0, std::min<int>(project.Header.RecordCount, int(project.Events.size()) - 1));
  if (count == 0) {
    TextLine(doc, title, "", kNoRecordsLine);
    return;
  }
  const bool boldPassed = passed && kind == kAllRecords;
  if (boldPassed) doc.PrintLine("  Passed Records in Bold");
  Table t;
  t.headings = {"No.", "Description", "Date", "Time", "Range", "Place"};
  t.right = {true, false, false, false, false, false};
  for (int i = 1; i <= count; ++i) {
    const EventRecord& e = project.Events[i];
    if (!RecordOfKind(e, kind, passed, i)) continue;
    const bool timed = e.DetailLevel >= kDetailZoneOnly;
    t.rows.push_back({std::to_string(i), e.Description, FormatDate(session, e.Day, e.Month, e.Year),
                      timed ? FormatTime(e.Hour, e.Minute, e.Second, session.prefs.AMPM != 0) : std::string(),
                      RangeText(e), e.Placename});
    t.bold.push_back(boldPassed && i < int(passed->size()) && (*passed)[i] != 0);
  }
  if (t.rows.empty()) {
    TextLine(doc, title, "", "  None");
    return;
  }
  PrintTable(doc, title, "List of Records", t);
}

// ---------------------------------------------------------------- graphs

void RectificationGraphsReport(ReportDocument& doc, Session& session, const Rectification& rect,
                               const ReportOptions& options) {
  const std::string title = kGraphsReportTitle;
  doc.BeginReport(title);
  ReportHead(doc, session, options);
  doc.PrintLine("  " + RectifyScreenTitle(session));
  doc.NextLine(0.5);
  const int shown = std::clamp<int>(rect.graphs.GraphCount, 1, kShownGraphs);
  const double lh = doc.LineHeight();
  // Three panels to the first page when they fit, none under ten lines.
  const double panel = std::max(10.0, std::min(22.0, doc.RoomLeft() / lh / shown - 1.0));
  for (int g = 1; g <= shown; ++g) {
    doc.EnsureRoom(title, "", panel);
    const QRectF area(0, doc.Y(), doc.PageWidth(), panel * lh);
    PaintEventGraph(doc.Painter(), area, session, rect, g);
    doc.NextLine(panel + 0.6);
  }
}

// ---------------------------------------------------------------- dynamic search

void DynamicSearchReport(ReportDocument& doc, Session& session, const Rectification& rect,
                         const ReportOptions& options) {
  const std::string title = kDynamicSearchReportTitle;
  const Vocabulary& v = session.vocab;
  const SearchState& state = rect.search;
  doc.BeginReport(title);
  ReportHead(doc, session, options);
  const int z = ClampInteger(session.prefs.Zodiac, 1, std::max<int>(1, v.ZodiacName.size())) - 1;
  const int houses = ClampInteger(session.prefs.Houses, 0, std::max<int>(0, int(v.HouseSystemName.size()) - 1));
  std::string frame = "  ";
  if (z >= 0 && z < int(v.ZodiacName.size())) frame += v.ZodiacName[z] + " Zodiac - ";
  if (houses < int(v.HouseSystemName.size())) frame += v.HouseSystemName[houses] + " Houses  ";
  frame += std::string(session.prefs.TrueNode ? "True" : "Mean") + " Node";
  doc.PrintLine(frame);
  if (!options.ChartTime.empty())
    doc.PrintLabelled("  Chart Time:", session.project.Header.Date + "  " + options.ChartTime);

  // The events' viability in brief.
  std::string viability;
  bool problems = false;
  const ViabilityCounts counts = ViabilityReport(session, viability, problems);
  int enabled = 0;
  for (int i = 1; i <= counts.Total; ++i) enabled += session.project.Events[i].Enabled != 0;
  doc.PrintSectionHead("Viability Summary");
  doc.PrintLine("  Total Records = " + std::to_string(counts.Total));
  doc.PrintLine("  Enabled Records = " + std::to_string(enabled));
  doc.PrintLine("  Warnings = " + std::to_string(counts.IntervalWarnings + (counts.Usable < kMinUsableEvents)));

  const int type = ClampInteger(state.DynamicType, 0, kDynOptionTypes - 1);
  const DynOptions& o = state.Options[type];
  doc.EnsureRoom(title, "", 8.0);
  doc.PrintSectionHead("Search Parameters");
  doc.PrintLabelled("  Method:", type < int(v.DynamicMethodName.size()) ? v.DynamicMethodName[type] : "");
  std::string window;
  if (state.ToJD > state.FromJD)
    window = DateOf(session, state.FromJD) + " to " + DateOf(session, state.ToJD);
  else if (!state.StartDate.empty() || !state.EndDate.empty())
    window = state.StartDate + " to " + state.EndDate;
  doc.PrintLabelled("  Date Range:", window);
  doc.PrintLabelled("  Natal Points:", PointList(session, o.RadixPoints));
  doc.PrintLabelled("  Dynamic Points:", PointList(session, o.DynamicPoints));
  char orb[32];
  std::snprintf(orb, sizeof orb, "%.2f", double(o.Orb));
  doc.PrintLabelled("  Orb for Hits:", orb);
  std::string aspects;
  for (int a = 0; a < kAspectFlags; ++a)
    if (o.Aspects[a]) aspects += (aspects.empty() ? "" : ", ") + AspectOf(session, a);
  doc.PrintLabelled("  Aspects:", aspects.empty() ? "None" : aspects);

  const std::string continuation = "Events to Radix";
  doc.EnsureRoom(title, "", 3.0);
  doc.PrintSectionHead(continuation);
  if (state.HitCount() == 0) {
    TextLine(doc, title, continuation, "  No Transits Found");
    return;
  }
  // One table per moving point, in the order the search ran them.
  for (int q = kPoints; q >= 1; --q) {
    Table t;
    t.headings = {"Event", "Date Range", "Houses", "Event Date", "Event Desc"};
    int inRange = 0;
    for (int k = 1; k <= state.HitCount(); ++k) {
      const DynamicHit& hit = state.Hits[state.HitOrder[k]];
      if (hit.DynamicPoint != q) continue;
      std::string houses;
      for (int house : {hit.Keyword1, hit.Keyword2, hit.Keyword3})
        if (house > 0) houses += (houses.empty() ? "" : ", ") + std::to_string(house);
      std::string date, desc;
      if (hit.Status > kHitAlone && hit.NearestEvent > 0 && hit.NearestEvent <= session.project.Header.RecordCount) {
        const EventRecord& e = session.project.Events[hit.NearestEvent];
        date = FormatDate(session, e.Day, e.Month, e.Year) + (hit.Status == kHitWithinRange ? ", R" : ", N");
        desc = e.Description;
        ++inRange;
      }
      t.rows.push_back({PointShort(session, hit.DynamicPoint) + " " + AspectOf(session, hit.Aspect) + " " +
                            PointShort(session, hit.RadixPoint),
                        DateOf(session, hit.FirstDate) + " - " + DateOf(session, hit.LastDate), houses, date, desc});
    }
    if (t.rows.empty()) continue;
    doc.EnsureRoom(title, continuation, 4.0);
    doc.NextLine(0.5);
    doc.SetFont(true);
    doc.PrintLine("  " + PointName(session, q) + " to Natal Points - Events in Range: " + std::to_string(inRange));
    doc.SetFont(false);
    PrintTable(doc, title, continuation, t);
  }
  const SearchTotalsResult totals = SearchTotals(state);
  doc.NextLine(0.5);
  TextLine(doc, title, "", "  Hits: " + std::to_string(totals.Total) + "   Matched: " +
                               std::to_string(totals.Matched) + "   Score: " + ScorePercent(totals.Ratio));
}

// ---------------------------------------------------------------- viability

void ViabilityReport(ReportDocument& doc, Session& session, const ReportOptions& options) {
  const std::string title = kViabilityReportTitle;
  std::string text;
  bool problems = false;
  ViabilityReport(session, text, problems);
  doc.BeginReport(title);
  if (!options.SubTitle.empty()) doc.PrintLabelled("  SubTitle:", options.SubTitle);
  size_t start = 0;
  while (start < text.size()) {
    size_t end = text.find('\n', start);
    if (end == std::string::npos) end = text.size();
    std::string line = text.substr(start, end - start);
    if (!line.empty() && line.back() == '\r') line.pop_back();
    TextLine(doc, title, "", line);
    start = end + 1;
  }
}

// ---------------------------------------------------------------- auto rectify

void AutoRectifyReport(ReportDocument& doc, Session& session, const AutoRectifyResult& result,
                       const ReportOptions& options) {
  const std::string title = kAutoRectifyReportTitle;
  doc.BeginReport(title);
  ReportHead(doc, session, options);
  doc.PrintLine("  " + RectifyScreenTitle(session));
  doc.PrintSectionHead("Suggested Chart Times and Angles");
  Table t;
  t.headings = {"Time", "Ascendant", "Midheaven", "Transits", "Sec.Progs", "Solar Arcs", "OverAll"};
  t.right = {false, false, false, true, true, true, true};
  for (const AutoRectifyRow& row : result.Rows)
    t.rows.push_back({row.TimeText + " +/- " + std::to_string(row.PlusMinusMinutes) + " min", Range(session, row.Asc),
                      Range(session, row.MC), ScorePercent(row.Transits), ScorePercent(row.Progressions),
                      ScorePercent(row.SolarArcs), ScorePercent(row.Overall)});
  if (t.rows.empty())
    TextLine(doc, title, "", "  No Angles Found");
  else
    PrintTable(doc, title, "Suggested Chart Times and Angles", t);
  if (!result.Status.empty()) {
    doc.NextLine(0.5);
    TextLine(doc, title, "", "  " + result.Status);
  }
}

}  // namespace vintar
