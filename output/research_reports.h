// The printed reports of research. The "Search Results Report" of a
// criteria search or a record selection: the head with the project's
// title, the "List of Selection Criteria" as the list shows it, the three
// counts of the results screen, then the record list: all records with the
// passed ones in bold, or the passed records only. And the three reports
// of a tabulation: its bar graph or polar graph of one column, or its
// table in the display style with the statistics block of every column,
// each with a head of the project, the points and the run's settings.
// Written into a ReportDocument, so one code prints, saves a PDF and draws
// page images; checked by tests/output/research_reports_test.cpp and
// tests/output/research_graphs_test.cpp through the recorded lines.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/session.h"
#include "output/rectify_reports.h"
#include "output/report_page.h"
#include "output/research_graphs.h"
#include "research/tabulate.h"

namespace vintar {

inline constexpr const char* kSearchResultsReportTitle = "Search Results Report";

// `criteria` are the list's lines; `passed` the flags of the run (from 1);
// `allRecords` lists every record with the passed ones in bold, otherwise
// only the passed records.
void SearchResultsReport(ReportDocument& doc, Session& session, const std::vector<std::string>& criteria,
                         const std::vector<int16_t>& passed, bool allRecords, const ReportOptions& options);

inline constexpr const char* kResearchBarGraphTitle = "Research Bar Graph";
inline constexpr const char* kResearchPolarGraphTitle = "Research Polar Graph";
inline constexpr const char* kResearchTabulationTitle = "Research Tabulation";
// The heading of the printed table; on later pages with " (Continued...)".
inline constexpr const char* kTabulationSection = "Tabulation";

// The bar graph (graph.Display kBarGraph) or the polar graph of a column.
void ResearchGraphReport(ReportDocument& doc, Session& session, const TabulationRun& run,
                         const ResearchGraphRequest& graph, const ReportOptions& options);
// The table of every cell and column in a style, then the statistics.
void ResearchTabulationReport(ReportDocument& doc, Session& session, const TabulationRun& run, int style,
                              const ReportOptions& options);
// The report of what the results screen shows: `display` is kBarGraph,
// kPolarGraph or kTabulationDisplay.
void ResearchResultsReport(ReportDocument& doc, Session& session, const TabulationRun& run, int display,
                           int column, int style, const ReportOptions& options);

}  // namespace vintar
