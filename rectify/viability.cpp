#include "rectify/viability.h"

#include <cmath>
#include <vector>

#include "core/parse.h"
#include "core/text.h"

namespace vintar {
namespace {

constexpr int kBinBound[5] = {0, 0, 5, 15, 255};
const char* const kBinLabel[5] = {"", "  Exact Dates:    ", "  2-5 Day Range: ", "  6-15 Day Range: ",
                                  "  > 15 Day Range: "};

}  // namespace

ViabilityCounts ViabilityReport(Session& session, std::string& text, bool& problems) {
  const ProjectHeader& h = session.project.Header;
  const auto& events = session.project.Events;
  const std::string nl = kLineEnd;
  ViabilityCounts counts;

  text = nl + "*** RECTIFICATION VIABILITY REPORT *** " + nl + nl + "DETAILS: " + nl;
  text += "  Project Title:" + h.Title + nl;
  text += "  Name:         " + h.Name + nl;
  text += "  Date:         " + h.Date + nl;
  text += "  Time:         " + h.Time + nl;
  text += "  TimeZone:     " + h.ZoneTime + "  " + h.ZoneMnemonic + nl;
  text += "  Place:        " + h.Place + "  " + h.Latitude + "  " + h.Longitude + nl;

  // Records in date order, through the shared stable sort.
  const int count = std::max(0, std::min<int>(h.RecordCount, static_cast<int>(events.size()) - 1));
  std::vector<int32_t> order(count + 1);
  std::vector<double> keys(count + 1);
  for (int i = 1; i <= count; ++i) {
    order[i] = i;
    keys[i] = events[i].JulianDay;
  }
  IndexSortDouble(keys, order, count, false);

  std::string warnings;
  int previous = 0;
  for (int k = 1; k <= count; ++k) {
    const int n = order[k];
    const EventRecord& e = events[n];
    if (!e.Enabled) {
      ++counts.Disabled;
      continue;
    }
    if (e.DayRange >= kInvalidRangeDays) {
      ++counts.Invalid;
      continue;
    }
    int bin = 1;
    while (bin < 4 && kBinBound[bin] < e.DayRange) ++bin;
    ++counts.Bins[bin];
    if (previous) {
      const double interval = e.JulianDay - events[previous].JulianDay;
      if (interval < kMinIntervalDays) {
        warnings += "  Date interval too small - Events " + std::to_string(previous) + " & " + std::to_string(n) +
                    " - " + std::to_string(static_cast<long long>(std::floor(interval))) + " Days" + nl;
        ++counts.IntervalWarnings;
      }
    }
    previous = n;
  }
  counts.Total = count;
  counts.Usable = count - counts.Disabled - counts.Invalid - counts.IntervalWarnings;
  if (counts.Usable < kMinUsableEvents) warnings += "  Too few usable events - " + std::to_string(counts.Usable) + nl;
  problems = counts.IntervalWarnings > 0 || counts.Usable < kMinUsableEvents;

  text += nl + "WARNINGS: " + nl + (warnings.empty() ? "  None" + nl : warnings);
  text += nl + "SUMMARY: " + nl;
  text += "  Total Events:   " + std::to_string(counts.Total) + nl;
  text += "  Disabled Events: " + std::to_string(counts.Disabled) + nl;
  text += "  Invalid Events: " + std::to_string(counts.Invalid) + nl;
  text += "  Usable Events: " + std::to_string(counts.Usable) + nl;
  for (int bin = 1; bin <= 4; ++bin) text += kBinLabel[bin] + std::to_string(counts.Bins[bin]) + nl;
  text += nl + "*** END REPORT ***" + nl;
  return counts;
}

}  // namespace vintar
