// The printed report of a criteria search or a record selection.
#include "output/research_reports.h"

#include "research/criteria.h"

namespace vintar {

void SearchResultsReport(ReportDocument& doc, Session& session, const std::vector<std::string>& criteria,
                         const std::vector<int16_t>& passed, bool allRecords, const ReportOptions& options) {
  const std::string title = kSearchResultsReportTitle;
  const std::string continuation = "List of Selection Criteria (Continued...)";
  doc.BeginReport(title);
  doc.PrintLabelled("  Project Title:", session.project.Header.Title);
  if (!options.SubTitle.empty()) doc.PrintLabelled("  SubTitle:", options.SubTitle);
  doc.PrintSectionHead("List of Selection Criteria");
  for (const std::string& line : criteria) {
    if (doc.EnsureRoom(title, continuation, 1.0)) doc.PrintSectionHead(continuation);
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

}  // namespace vintar
