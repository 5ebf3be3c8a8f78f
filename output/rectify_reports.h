// The printed reports of rectification and of the record list, each written
// into a ReportDocument from the engine's state as the screens leave it: the
// candidate angles, the records, the three event graphs, the hits of a
// dynamic search, the viability report and the ranked times of Auto Rectify.
// Each report begins with its own frame at page 1 and breaks its tables over
// pages with a "(Continued...)" heading.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "core/session.h"
#include "output/report_page.h"
#include "rectify/auto_rectify.h"
#include "rectify/rectification.h"

namespace vintar {

// What the print screens gather.
struct ReportOptions {
  std::string SubTitle;
  bool AlsoEnabledRecords = false;
  // The angle search's time limits as typed; empty: the project's own.
  std::string TimeFrom, TimeTo;
  // The trial birth time of a dynamic search, as typed on its screen.
  std::string ChartTime;
};

// Writes one report (or more) into a document.
using ReportBuilder = std::function<void(ReportDocument&, const ReportOptions&)>;

// Record list kinds.
inline constexpr int kAllRecords = 0, kEnabledRecords = 1, kDisabledRecords = 2, kPassedRecords = 3;

// The heads of the reports (the title handed to the frame).
inline constexpr const char* kAngleSearchReportTitle = "Angle Search Report";
inline constexpr const char* kDataReportTitle = "Data Report";
inline constexpr const char* kGraphsReportTitle = "Rectification Graphs";
inline constexpr const char* kDynamicSearchReportTitle = "Dynamic Search Report";
inline constexpr const char* kViabilityReportTitle = "*** RECTIFICATION VIABILITY REPORT *** ";
inline constexpr const char* kAutoRectifyReportTitle = "Auto Rectify Report";
inline constexpr const char* kNoRecordsLine = "There are no data records in this project";

void AngleSearchReport(ReportDocument& doc, Session& session, const Rectification& rect, const ReportOptions& options);

// The list of records of kind 0 all, 1 enabled, 2 disabled, 3 passed (the
// records whose `passed` flag is set). With `passed` given, a list of all
// records prints the passed ones in bold.
void DataReport(ReportDocument& doc, Session& session, int kind, const ReportOptions& options,
                const std::vector<int16_t>* passed = nullptr);

void RectificationGraphsReport(ReportDocument& doc, Session& session, const Rectification& rect,
                               const ReportOptions& options);

void DynamicSearchReport(ReportDocument& doc, Session& session, const Rectification& rect,
                         const ReportOptions& options);

void ViabilityReport(ReportDocument& doc, Session& session, const ReportOptions& options);

void AutoRectifyReport(ReportDocument& doc, Session& session, const AutoRectifyResult& result,
                       const ReportOptions& options);

// Runs `build` and, when the options ask for it, the list of enabled
// records after it as a report of its own.
void BuildReport(ReportDocument& doc, Session& session, const ReportBuilder& build, const ReportOptions& options);

// The subtitle of the record list when none is typed: "All Events", "All
// Enabled Events", "All Disabled Events".
std::string RecordListSubTitle(int kind);

}  // namespace vintar
