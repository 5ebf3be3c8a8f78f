// Auto Rectify: the manual rectification procedure run without the user.
// Event graphs of transits in both frames, their common peaks, the candidate
// angles and local times inside the natal time limits, then for each
// candidate time a search of transits, secondary progressions and solar arc
// directions, each scored by the share of hits that fell on events, and the
// candidates ranked by an overall score.
//
// Times are local decimal hours of the natal date; scores are fractions
// (0.25 shows as 25%). Candidate charts are cast through CalcChart, so their
// moments are universal time without delta-T. The candidates' searches run
// on as many threads as asked, with results identical to one thread.
// Checked by tests/rectify/auto_rectify_test.cpp on the scoring rule, the
// stages' texts and a sample project on one and two threads.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "core/progress.h"
#include "core/session.h"
#include "rectify/rectification.h"

namespace vintar {

// Where a run starts: 0 from the events, 1 from the peaks of graphs 4 and 5
// already built, 2 from the candidate list that SearchAngles already made.
inline constexpr int kAutoFromEvents = 0, kAutoFromPeaks = 1, kAutoFromCandidates = 2;

// The candidate list of the Auto Rectify screen: its column heading and a
// row per candidate (time range, Ascendant range, MC range, three blanks
// between).
inline constexpr const char* kCandidateHeading = "  Time              Asc                  MC";
std::string CandidateRowText(const Session& session, const AngleResult& candidates, int candidate);
// A time of the run as the candidate charts are cast: local hours as text.
std::string AutoTimeText(const Session& session, double hours);

// The screen's texts: the stop button's caption once the run has ended, and
// the title of its print dialogue.
inline constexpr const char* kAutoQuitCaption = "&Quit";
inline constexpr const char* kAutoPrintTitle = "Print Auto Rectify Report";

// One row of the ranked result, in report order.
struct AutoRectifyRow {
  int Candidate = 0;          // index into the AngleResult arrays
  double Time = 0;            // mid time of the candidate, local hours
  std::string TimeText;       // as the chart was cast
  int PlusMinusMinutes = 0;   // half the candidate's time range
  std::array<float, 2> Asc{}, MC{};
  float Transits = 0;         // T: share of transit hits on events
  float Progressions = 0;     // S: secondary progressions, divided by the largest hit total
  float SolarArcs = 0;        // D shown in the report: solar arcs, divided by the largest hit total
  float Overall = 0;
};

struct AutoRectifyResult {
  // Scores[c][type]: the ratio of SearchTotals for candidate c (from 1) and
  // dynamic type 0 to 3; tertiary progressions (2) are never searched.
  std::vector<std::array<float, 4>> Scores;
  std::vector<float> Overall;
  std::vector<int32_t> Order;  // candidates by Overall, highest first
  float MaxSec = 1.0f, MaxDir = 1.0f;
  std::vector<AutoRectifyRow> Rows;
  std::string Status;         // the last status line, as the screen shows it
  bool Finished = false;      // all three passes ran over every candidate
  bool Cancelled = false;     // the user stopped the run
  uint64_t EphemerisCalls = 0;
};

struct AutoRectifyOptions {
  int Threads = 0;  // workers for the candidates' searches; 0: one per core
};

// The whole run. Status lines go to `progress` as they change; so does the
// cancel request, which ends the run as the stop button does. The graphs'
// settings are those standing in `rect` (the project's, once loaded); the
// preferences AutoGraphMinWeight and AutoScoreMode choose how far the
// graphs are narrowed and how the candidates are ranked.
AutoRectifyResult RunAutoRectify(Session& session, Rectification& rect, int mode, Progress* progress = nullptr,
                                 const AutoRectifyOptions& options = {});

// The overall score of one candidate from its three ratios: the lowest of
// T, S and D is left out and the other two averaged.
float OverallScore(float transits, float progressions, float solarArcs);

}  // namespace vintar
