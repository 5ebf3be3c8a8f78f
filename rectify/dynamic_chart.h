// The dynamic chart: a trial radix chart with a moving chart around it,
// stepped through time. The radix stands in slot 1 and the moving chart in
// slot 2. The moving chart is one of the four dynamic types (transits,
// secondary and tertiary progressions, solar arc directions); the aspects
// drawn between the wheels are those of one harmonic (4, 8 or 12) within the
// orb of the type's options.
//
// Units: longitudes in degrees with the zodiac's offset in them; dates are
// Julian days of life; ages are Julian years; the play step is whole days.
// The chart's options are the search's options records kept in their own
// file ("chtopts.fil"): DynamicPoints are the moving points shown, and
// RadixPoints the aspected points of the radix. The keywords shown beside a
// hit are kept one item a line in "keywrd.fil" in the user data folder.
//
// Checked by tests/rectify/dynamic_chart_test.cpp: the Naibod angles against
// a hand computation, aspect hits at the edge of the orb, the options and
// keyword files round trip, a record's chart and the records that have none.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "core/session.h"
#include "rectify/chart_adjust.h"
#include "rectify/search.h"

namespace vintar {

inline constexpr int kChartRadixSlot = 1;
inline constexpr int kChartDynamicSlot = 2;
// Naibod's measure in sidereal time: hours added to the radix sidereal time
// for each year of life.
inline constexpr double kNaibodHoursPerYear = 0.06569444;

// ---------------------------------------------------------------------------
// Options

struct ChartOptions {
  DynOptionSet Records = [] {
    DynOptionSet o;
    ResetDynOptions(o);
    return o;
  }();
  int16_t StepDays = 7;  // the play step, whole days, at least 1
};

// "chtopts.fil" from the user data folder; without one, the shipped default
// options. The step is the DynStepDays preference.
ChartOptions LoadChartOptions(Session& session);
// Writes "chtopts.fil" and keeps the step in the DynStepDays preference
// (saved with the recent files at shutdown). False after the write error's
// message.
bool SaveChartOptions(Session& session, const ChartOptions& options);

// The typed play step: a whole number of days, anything below 1 (or not a
// number) taken as 1.
int16_t IntervalDays(const std::string& text);

// The harmonics of the aspects drawn between the wheels, in the order of the
// AspectHarmonic list ("4th Harmonic Aspects" ...).
struct HarmonicChoice {
  const char* Name;
  int Harmonic;
};
const std::vector<HarmonicChoice>& ChartHarmonicChoices();
// The harmonic a set of options suggests: 12 when its aspect flags are those
// of the twelfth harmonic, otherwise 4.
int DefaultChartHarmonic(const DynOptions& record);

// The ChartOpt screen's fields: the records, the one shown, its orb and the
// step as typed.
struct ChartOptForm {
  DynOptionSet Records;
  int DynType = 0;
  std::string Orb;
  std::string Interval;
};
ChartOptForm OpenChartOpt(const ChartOptions& options, int dynamicType);
// cmbDynType: keeps the orb typed for the record shown, then shows another.
// False (the record stays) when the orb does not parse.
bool ChartOptSelectType(Session& session, ChartOptForm& form, int dynamicType);
// OK: the orb through the angle parser, the step (below 1 taken as 1), then
// "chtopts.fil". False leaves the screen open.
bool ChartOptAccept(Session& session, ChartOptForm& form, ChartOptions& options);

// ---------------------------------------------------------------------------
// The radix

// The open project's birth data as a chart to adjust, at `localHours` of the
// birth date (negative: the natal time; a natal time that is not a clock
// time, such as "Unknown", gives the middle of the earliest and latest
// times, else noon). False, after the parser's message, when the birth data
// do not parse.
bool RadixAdjustState(Session& session, double localHours, ChartAdjustState& state);
// Casts the state into its slot with the project's name and place.
void CastRadix(Session& session, const ChartAdjustState& state);
// The Midheaven typed on the adjust screen: the time that brings it, to the
// second, and the chart recast then. Returns the Midheaven of the new chart.
double SetRadixMC(Session& session, ChartAdjustState& state, double mc);
// The time of the state becomes the project's natal time (its moments
// recomputed and the header marked changed). False when the project's birth
// data do not parse.
bool StoreRadixTime(Session& session, const ChartAdjustState& state);

// ---------------------------------------------------------------------------
// The moving chart

struct DynamicChartState {
  int DynamicType = kTransits;  // 0 to 3
  int Method = kNaibod;         // progression method of the angles, 1 to 3
  int Harmonic = 4;             // aspects between the wheels
  double JD = 0.0;              // the chart's date, a moment of life
  ChartOptions Options;
};

// Recomputes the moving chart (slot 2) for `jd` against the radix in slot 1
// and stores the date in the state. Transits take the angles of the moment
// at the radix place. Progressions and directions progress the angles by the
// method; with Naibod the radix sidereal time grows by 0.06569444 hours a
// year of life, through the radix longitude, with the obliquity of the
// progressed date.
void DynamicChart(Session& session, DynamicChartState& state, double jd);

// One aspect between the wheels.
struct ChartAspect {
  int Moving = 0;        // point of the moving chart
  int Radix = 0;         // point of the radix
  double Angle = 0.0;    // the aspect, 0 to 180 degrees
  double Orb = 0.0;      // how far from exact, degrees, signed: + past exact
  int AspectIndex = 0;   // the vocabulary's aspect 1 to 9, 0 when it has none
};
// Whether `moving` stands within `orb` (inclusive) of an aspect of harmonic
// h to `radix`: a multiple of 360 / h. Fills the aspect and the distance.
bool AspectWithin(double moving, double radix, int harmonic, double orb, double& angle, double& distance);
// Every aspect of the harmonic within the type's orb from the moving points
// shown to the aspected radix points, closest first. Points without a
// position are left out.
std::vector<ChartAspect> ChartAspects(const Session& session, const DynamicChartState& state);
// The aspect table's line: "Jupiter Square The Sun  0°24'" (the orb in degrees
// and minutes of arc).
std::string ChartAspectLine(const Session& session, const ChartAspect& aspect);

// ---------------------------------------------------------------------------
// Dates and events

// The age at `jd` of a life that began at `radixJD`: "34.2 Years".
std::string ChartAgeText(double jd, double radixJD);
// The date of a Julian day in the program's date format.
std::string ChartDateText(const Session& session, double jd);
// A typed date as a Julian day at noon; false after the parser's message.
bool ParseChartDate(Session& session, const std::string& text, double& jd);
// One line of the event list: the date with a two-digit year, two blanks,
// the description ("14 Mar 79  Sister born").
std::string EventListLine(const Session& session, int record);
// The record whose moment is closest to `jd`, ties to the earlier; 0 when
// the project has none.
int EventNearestDate(const Session& session, double jd);

// ---------------------------------------------------------------------------
// Keywords

inline constexpr int kKeywordItems = 38;  // the vocabulary's keyword headings 0 to 37
inline constexpr int kDescendantItem = 24;
inline constexpr int kICItem = 25;
inline constexpr int kFirstHouseItem = 26;

struct KeywordTable {
  std::array<std::string, kKeywordItems> Text{};
};
// The file image: one quoted field a line, CR LF ends, item 0 first.
std::string EncodeKeywords(const KeywordTable& table);
// Reads as many lines as there are; items without a line stay empty.
KeywordTable DecodeKeywords(const std::string& bytes);
// "keywrd.fil" of the user data folder, else of the system data folder; a
// missing file gives empty keywords.
KeywordTable LoadKeywords(const Session& session);
// Writes the user's "keywrd.fil"; false after the write error's message.
bool SaveKeywords(Session& session, const KeywordTable& table);
// The keyword items of a radix point hit by an aspect: the point itself (the
// Descendant or IC for an opposition to the Ascendant or Midheaven) and the
// houses the point rules in the radix chart.
std::vector<int> KeywordItemsOfHit(const Session& session, int radixPoint, double angle);
// The keyword lines shown for an aspect between the wheels: the moving point
// and each item of the radix side, heading and keywords; items without
// keywords are left out.
std::vector<std::string> HitKeywordLines(const Session& session, const KeywordTable& table,
                                         const ChartAspect& aspect);

// ---------------------------------------------------------------------------
// A record's chart

// The name and place a radix slot carries when the chart is not the
// project's birth chart.
struct RadixLabel {
  std::string Name;
  std::string Place;
};

// Record `record` of the open project as a chart to look at: its date, clock
// time and zone, longitude and latitude, named by its description. False
// when the record does not exist or holds no date; a record without a place
// (a detail level below time and place; the levels nest, so one with a place
// has its clock time too) is told in a message and gives false. `label`,
// when given, takes the record's description and place name.
bool RecordAdjustState(Session& session, int record, ChartAdjustState& state, RadixLabel* label = nullptr);
// CastRadix under the label's name and place instead of the project's.
void CastRadix(Session& session, const ChartAdjustState& state, const RadixLabel& label);

}  // namespace vintar
