// The printed reports of research: the search results and the tabulation.
#include "output/research_reports.h"

#include <algorithm>

#include "core/text.h"
#include "research/criteria.h"
#include "research/results.h"

namespace vintar {

void SearchResultsReport(ReportDocument& doc, Session& session, const std::vector<std::string>& criteria,
                         const std::vector<int16_t>& passed, bool allRecords, const ReportOptions& options) {
  const std::string title = kSearchResultsReportTitle;
  const std::string continuation = "List of Selection Criteria";
  doc.BeginReport(title);
  doc.PrintLabelled("  Project Title:", session.project.Header.Title);
  if (!options.SubTitle.empty()) doc.PrintLabelled("  SubTitle:", options.SubTitle);
  doc.PrintSectionHead("List of Selection Criteria");
  for (const std::string& line : criteria) {
    doc.EnsureRoom(title, continuation, 1.0);
    doc.PrintLine(line);
  }
  int enabled = 0, count = 0;
  const int records = std::min<int>(session.project.Header.RecordCount,
                                    static_cast<int>(session.project.Events.size()) - 1);
  for (int i = 1; i <= records; ++i) {
    if (!session.project.Events[i].Enabled) continue;
    ++enabled;
    if (i < static_cast<int>(passed.size()) && passed[i] != 0) ++count;
  }
  doc.NextLine();
  for (const std::string& line : SearchResultLines(enabled, count)) {
    doc.EnsureRoom(title, continuation, 1.0);
    doc.PrintLine(line);
  }
  // The records, as a report of its own on a new page.
  DataReport(doc, session, allRecords ? kAllRecords : kPassedRecords, options, &passed);
}

// ---------------------------------------------------------------- tabulation

namespace {

// Where a labelled value stands: as PrintLabelled places it.
double ValueX(ReportDocument& doc, const std::string& label) {
  return std::max(doc.TextWidth("  Dynamic Points:  "), doc.TextWidth(label) + 0.5 * doc.LineHeight());
}

// Items after a label, as many to a line as the page holds.
void PrintWrapped(ReportDocument& doc, const std::string& title, const std::string& label,
                  const std::vector<std::string>& items, const std::string& separator, double x = -1) {
  if (x < 0) x = ValueX(doc, label);
  const double room = doc.PageWidth() - x;
  std::vector<std::string> lines;
  for (const std::string& item : items) {
    if (!lines.empty() && doc.TextWidth(lines.back() + separator + item) <= room)
      lines.back() += separator + item;
    else
      lines.push_back(item);
  }
  if (lines.empty()) lines.push_back("");
  for (size_t i = 0; i < lines.size(); ++i) {
    doc.EnsureRoom(title, "", 1.0);
    if (i == 0 && !label.empty()) doc.PrintAligned(label, kAlignLeft, 0);
    if (!lines[i].empty()) doc.PrintAligned(lines[i], kAlignLeft, x);
    doc.NextLine();
  }
}

// The head of a tabulation's report: the project, the subtitle, the
// points, then the run's settings that apply (as the tabulation's text
// heads them; the points are already there).
void TabulationHead(ReportDocument& doc, const Session& session, const TabulationRun& run, int style,
                    const std::string& title, const ReportOptions& options) {
  doc.PrintLabelled("  Project Title:", session.project.Header.Title);
  if (!options.SubTitle.empty()) doc.PrintLabelled("  SubTitle:", options.SubTitle);
  std::vector<std::string> points = DisplayPoints(run);
  if (points.size() > 1) points.pop_back();  // the total
  PrintWrapped(doc, title, "  Points:", points, ", ");
  const std::string text = TabulationText(session, run, style);
  size_t start = 0;
  while (start < text.size()) {
    size_t end = text.find(kLineEnd, start);
    if (end == std::string::npos) end = text.size();
    const std::string line = text.substr(start, end - start);
    start = end + 2;
    if (line.empty()) break;  // the table follows
    const size_t tab = line.find('\t');
    if (tab == std::string::npos) continue;
    const std::string label = line.substr(0, tab), value = line.substr(tab + 1);
    if (value == "n/a" || label == "Points Used:") continue;
    doc.PrintLabelled("  " + label, value);
  }
  doc.PrintLabelled("  Display:", kTabStyleNames[std::clamp(style, 0, kTabStyles - 1)]);
}

struct TableColumn {
  std::string heading;
  int column = 0;  // 0: the cells' names
  double width = 0;
};

void PrintTableHeadings(ReportDocument& doc, const std::vector<TableColumn>& columns, const std::vector<double>& x) {
  doc.SetFont(true);
  for (size_t i = 0; i < columns.size(); ++i)
    doc.PrintAligned(columns[i].heading, i == 0 ? kAlignLeft : kAlignRight, i == 0 ? x[i] : x[i] + columns[i].width);
  doc.SetFont(false);
  doc.NextLine(1.2);
}

}  // namespace

void ResearchGraphReport(ReportDocument& doc, Session& session, const TabulationRun& run,
                         const ResearchGraphRequest& graph, const ReportOptions& options) {
  const bool polar = graph.Display == kPolarGraph;
  const std::string title = polar ? kResearchPolarGraphTitle : kResearchBarGraphTitle;
  doc.BeginReport(title);
  TabulationHead(doc, session, run, graph.Style, title, options);
  doc.NextLine(0.5);
  const double lh = doc.LineHeight();
  const double wanted = (polar ? 0.8 : 0.72) * doc.PageWidth() / lh;
  if (doc.RoomLeft() / lh - 1.0 < std::min(wanted, 16.0)) doc.NewPage(title);
  const double lines = std::min(wanted, doc.RoomLeft() / lh - 1.0);
  const QRectF area(0, doc.Y(), doc.PageWidth(), lines * lh);
  PaintResearchGraph(doc.Painter(), area, session, run, graph);
  doc.NextLine(lines + 0.5);
}

void ResearchTabulationReport(ReportDocument& doc, Session& session, const TabulationRun& run, int style,
                              const ReportOptions& options) {
  const std::string title = kResearchTabulationTitle;
  style = std::clamp(style, 0, kTabStyles - 1);
  doc.BeginReport(title);
  TabulationHead(doc, session, run, style, title, options);
  const std::string section = std::string(kTabulationSection) + " - " + kTabStyleNames[style];
  doc.EnsureRoom(title, "", 4.0);
  doc.PrintSectionHead(section);
  if (run.CellCount < 1 || static_cast<int>(run.Tally.size()) < run.CellCount + 2) {
    doc.PrintLine("  No data");
    return;
  }
  const int all = run.ColumnCount + 1, totalRow = run.CellCount + 1;
  std::vector<std::string> heads = DisplayPoints(run);
  heads.resize(run.ColumnCount);
  heads.push_back("TOTAL ");
  const std::string& division = session.vocab.DivisionName.size() > static_cast<size_t>(run.Params.Code)
                                    ? session.vocab.DivisionName[run.Params.Code]
                                    : std::string();

  // The widths, then the columns in groups as wide as the page.
  TableColumn names{division.empty() ? "Cell" : division, 0, 0};
  doc.SetFont(true);
  names.width = std::max(doc.TextWidth(names.heading), doc.TextWidth("TOTAL"));
  std::vector<TableColumn> values;
  for (int c = 1; c <= all; ++c) {
    TableColumn col{heads[c - 1], c, doc.TextWidth(heads[c - 1])};
    for (int cell = 1; cell <= totalRow; ++cell)
      col.width = std::max(col.width, doc.TextWidth(FormatStyled(run, cell, c, style)));
    values.push_back(col);
  }
  for (int cell = 1; cell <= run.CellCount; ++cell)
    names.width = std::max(names.width, doc.TextWidth(CellName(session, run, cell, true)));
  doc.SetFont(false);
  const double lh = doc.LineHeight(), gap = 1.2 * lh, indent = lh;
  std::vector<std::vector<TableColumn>> groups;
  double used = doc.PageWidth();
  for (const TableColumn& col : values) {
    if (groups.empty() || used + gap + col.width > doc.PageWidth()) {
      groups.push_back({names});
      used = indent + names.width;
    }
    groups.back().push_back(col);
    used += gap + col.width;
  }

  for (size_t g = 0; g < groups.size(); ++g) {
    const std::vector<TableColumn>& cols = groups[g];
    std::vector<double> x;
    double at = indent;
    for (const TableColumn& col : cols) {
      x.push_back(at);
      at += col.width + gap;
    }
    if (g > 0) doc.NextLine(0.8);
    doc.EnsureRoom(title, section, 3.0);
    PrintTableHeadings(doc, cols, x);
    for (int cell = 1; cell <= totalRow; ++cell) {
      if (doc.EnsureRoom(title, section, 1.0)) PrintTableHeadings(doc, cols, x);
      const bool total = cell == totalRow;
      doc.SetFont(total);
      for (size_t i = 0; i < cols.size(); ++i) {
        if (cols[i].column == 0)
          doc.PrintAligned(total ? "TOTAL" : CellName(session, run, cell, true), kAlignLeft, x[i]);
        else
          doc.PrintAligned(FormatStyled(run, cell, cols[i].column, style), kAlignRight, x[i] + cols[i].width);
      }
      doc.SetFont(false);
      doc.NextLine();
    }
  }

  // The statistics block of each column; that of the total only when it
  // differs from a single column's.
  const std::string statistics = "Statistics";
  doc.EnsureRoom(title, "", 4.0);
  doc.PrintSectionHead(statistics);
  double nameWidth = 0;
  doc.SetFont(true);
  for (const std::string& h : heads) nameWidth = std::max(nameWidth, doc.TextWidth(h + ":"));
  doc.SetFont(false);
  bool any = false;
  for (int c = 1; c <= all; ++c) {
    if (c == all && run.ColumnCount == 1) break;
    const std::vector<std::string> block = StatisticsBlock(session, run, c);
    if (block.empty()) continue;
    any = true;
    doc.EnsureRoom(title, statistics, 2.0);
    doc.SetFont(true);
    doc.PrintAligned(Trim(heads[c - 1]) + ":", kAlignLeft, indent);
    doc.SetFont(false);
    PrintWrapped(doc, title, "", block, "   ", indent + nameWidth + lh);
  }
  if (!any) doc.PrintLine("  None");
}

void ResearchResultsReport(ReportDocument& doc, Session& session, const TabulationRun& run, int display,
                           int column, int style, const ReportOptions& options) {
  if (display == kTabulationDisplay) {
    ResearchTabulationReport(doc, session, run, style, options);
    return;
  }
  ResearchGraphRequest graph;
  graph.Column = column;
  graph.Style = style;
  graph.Display = display == kPolarGraph ? kPolarGraph : kBarGraph;
  ResearchGraphReport(doc, session, run, graph, options);
}

}  // namespace vintar
