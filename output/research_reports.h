// The printed report of a criteria search or a record selection: the
// "Search Results Report" head with the project's title, the "List of
// Selection Criteria" as the list shows it, the three counts of the results
// screen, then the record list: all records with the passed ones in bold,
// or the passed records only. Written into a ReportDocument, so one code
// prints, saves a PDF and draws page images; checked by
// tests/output/research_reports_test.cpp through the recorded lines.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/session.h"
#include "output/rectify_reports.h"
#include "output/report_page.h"

namespace vintar {

inline constexpr const char* kSearchResultsReportTitle = "Search Results Report";

// `criteria` are the list's lines; `passed` the flags of the run (from 1);
// `allRecords` lists every record with the passed ones in bold, otherwise
// only the passed records.
void SearchResultsReport(ReportDocument& doc, Session& session, const std::vector<std::string>& criteria,
                         const std::vector<int16_t>& passed, bool allRecords, const ReportOptions& options);

}  // namespace vintar
