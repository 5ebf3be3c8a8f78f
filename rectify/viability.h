// The viability report: whether a project's events are numerous, exact and
// far enough apart to be worth rectifying from. A plain text with CR LF line
// ends, and the counts behind it. Event moments are the records' stored
// Julian days (ephemeris time); only their differences matter here.
#pragma once

#include <array>
#include <string>

#include "core/session.h"

namespace vintar {

inline constexpr int kMinUsableEvents = 10;
inline constexpr double kMinIntervalDays = 150.0;
inline constexpr int kInvalidRangeDays = 30;

struct ViabilityCounts {
  int Total = 0;
  int Disabled = 0;
  int Invalid = 0;
  int IntervalWarnings = 0;
  int Usable = 0;
  std::array<int, 5> Bins{};  // 1..4: exact, 2-5 days, 6-15 days, over 15 days
};

// Builds the report of the session's open project into `text`; `problems`
// is true when an interval is too short or too few events are usable.
ViabilityCounts ViabilityReport(Session& session, std::string& text, bool& problems);

}  // namespace vintar
