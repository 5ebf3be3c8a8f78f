// The printed reports of family and group analysis, written into a
// ReportDocument (so one code prints, saves a PDF and draws page images):
//
// - "Family/Group Display": the project's head, the zodiac, coordinates and
//   node, the harmonic and the modulus, and the chart strips drawn below.
// - "Family/Group Search Report": the search's parameters (search points,
//   harmonics with the orb, position, least matches and kind of match), the
//   matches found (or the one selected), and the charts of the match shown
//   in detail; long lists break over pages under "(Continued...)" heads.
//
// Harmonic positions and orbs are printed as degrees and minutes. Checked by
// tests/output/group_reports_test.cpp through the recorded lines and a
// rendered page.
#pragma once

#include <string>
#include <vector>

#include "core/session.h"
#include "groups/group_search.h"
#include "groups/strips.h"
#include "output/rectify_reports.h"
#include "output/report_page.h"

namespace vintar {

inline constexpr const char* kGroupDisplayReportTitle = "Family/Group Display";
inline constexpr const char* kGroupSearchReportTitle = "Family/Group Search Report";

// "  Tropical Zodiac - Geocentric Coordinates - Mean Node".
std::string GroupFrameLine(const Session& session);

// Degrees and minutes of a harmonic position or an orb: "12°30'" (Latin-1).
std::string GroupDegMin(double degrees);

void GroupDisplayReport(ReportDocument& doc, Session& session, const StripTable& table,
                        const ReportOptions& options);

// `selectedMatch` 1 to the match count prints that match alone under
// "Selected Match"; 0 prints all of them under "Matches Found". The charts
// in match are the search's SecondaryList as it stands.
void GroupSearchReport(ReportDocument& doc, Session& session, const GroupSearchState& state,
                       const GroupSearchParams& params, int selectedMatch, const ReportOptions& options);

}  // namespace vintar
