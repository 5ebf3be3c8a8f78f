// The dynamic event search: for a trial birth chart, every aspect that the
// moving points of one dynamic type (transits, secondary or tertiary
// progressions, solar arc directions) make to the chart's points between two
// dates, and how many of those hits fall on the project's dated events. The
// ratio of matched hits measures a birth time; Auto Rectify runs the search
// unattended for each candidate time.
//
// Units: longitudes in degrees with the zodiac's offset in them, orbs in
// degrees, dates as Julian days of life (the records' moments); progressed
// and directed searches run on the ephemeris scale of the progressed date
// (see ProgressedJD) and give their hits back on the scale of life.
//
// The options are kept in four binary files of the same layout: four
// 114-byte records, one per dynamic type, little-endian and packed, no
// header. Checked by tests/rectify/search_test.cpp against the byte layout,
// the scoring rules and a real search whose transit is placed on an event.
//
// A typical unattended run (what Auto Rectify does per candidate time):
//   LoadDynOptions(state.Options, OptionsLoadPath(session, OptionsFile::Auto));
//   from = DefaultSearchStart(session); to = DefaultSearchEnd(session);
//   CalcChart(session, 1, ...candidate time...);
//   for type in {0, 1, 3}:
//     DynamicSearchNew(session, state, type, from, to, &progress);
//     for hit h in 1..state.HitCount():
//       ScoreHit(session, state, state.Hits[h], NearestEvent(session, state.Hits[h]), true);
//     SearchTotals(state).Ratio is the score of the type.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "core/session.h"

namespace vintar {

class Progress;

// ---------------------------------------------------------------------------
// Options

inline constexpr int kDynOptionTypes = 4;           // dynamic types 0 to 3
inline constexpr int kDynOptionRecordBytes = 114;   // 24 + 24 + 7 flags, one orb
inline constexpr int kDynOptionFileBytes = kDynOptionTypes * kDynOptionRecordBytes;
inline constexpr int kAspectFlags = 7;              // a = 0 to 6: a * 30 degrees
inline constexpr float kDefaultOrb = 1.0f;

// One dynamic type's search options. Flags are 16-bit as in the file: -1 on,
// 0 off; any nonzero value reads as on.
struct DynOptions {
  std::array<int16_t, kPoints + 1> RadixPoints{};    // 1..24: targets in the trial chart
  std::array<int16_t, kPoints + 1> DynamicPoints{};  // 1..24: the moving points searched
  std::array<int16_t, kAspectFlags> Aspects{};       // 0 conjunction .. 6 opposition
  float Orb = kDefaultOrb;                           // "Orb for Hits:", degrees
};
using DynOptionSet = std::array<DynOptions, kDynOptionTypes>;

// Every orb 1.0 and every flag off: what a search has without a file.
void ResetDynOptions(DynOptionSet& records);
// The file image: 456 bytes, record by record in type order; in a record
// RadixPoints (point p at byte 2 * (p - 1)), DynamicPoints from byte 48,
// Aspects from byte 96, Orb as a single at byte 110.
std::string EncodeDynOptions(const DynOptionSet& records);
// Sets every orb to 1.0, then reads the whole records that `bytes` holds;
// the flags of the rest stay as they were. An orb that is not a number from
// 0 to 180 reads as 1.0.
void DecodeDynOptions(const std::string& bytes, DynOptionSet& records);
// Load sets every orb to 1.0 first, then reads the file; a missing or short
// file is no error and leaves the flags it does not hold as they were.
// Returns whether a file was read.
bool LoadDynOptions(DynOptionSet& records, const std::string& path);
// Writes the four records atomically, creating the folder when needed.
// False, with the system's text in `error`, when the file cannot be written.
bool SaveDynOptions(const DynOptionSet& records, const std::string& path, std::string& error);

// The four options files. Current: the options of the search screen;
// Defaults: the shipped defaults that "restore" brings back; Auto: what
// Auto Rectify searches with; Chart: the dynamic chart's options.
enum class OptionsFile { Current, Defaults, Auto, Chart };
const char* OptionsFileName(OptionsFile file);  // "dynopts.fil" ...
// Where the file is saved: always the user data folder.
std::string OptionsSavePath(const Session& session, OptionsFile file);
// Where it is read from: the user data folder; for the defaults and the Auto
// Rectify options the system data folder when the user has none.
std::string OptionsLoadPath(const Session& session, OptionsFile file);

// The options of the search screen: "dynopts.fil", else the shipped
// defaults. Returns the path of the file that was read (the defaults' path
// when neither was there; the records then stay at their reset values).
std::string LoadSearchScreenOptions(const Session& session, DynOptionSet& records);

// ---------------------------------------------------------------------------
// Hits

inline constexpr int kMaxHits = 500;

enum HitStatus : int16_t { kHitAlone = 0, kHitWithinOrb = 1, kHitWithinRange = 2 };

struct DynamicHit {
  int16_t DynamicPoint = 0;  // the moving point
  int16_t Aspect = 0;        // a, 0 to 6; the side is told by TargetLon
  int16_t RadixPoint = 0;    // the target point of the trial chart
  double TargetLon = 0.0;    // the longitude the moving point reaches
  double FirstDate = 0.0;    // Julian day of life: entering the orb at the first pass
  double LastDate = 0.0;     // leaving the orb at the last pass
  int16_t Sign = 0;          // sign of the target point, 1 to 12
  int16_t Keyword1 = 0;      // the houses the target point rules, 0 none
  int16_t Keyword2 = 0;
  int16_t Keyword3 = 0;
  int16_t NearestEvent = 0;  // record number, 0 none
  int16_t Status = kHitAlone;
};

// One longitude to reach: a radix point moved by an aspect to one side.
struct TargetRec {
  int16_t Point = 0;
  int16_t Aspect = 0;
  double Longitude = 0.0;
};

// The targets of a trial chart in `radixSlot` (geocentric longitudes): for
// each radix point p from 1 to 24 and aspect a from 0 to 6 that the options
// name, Mod(position + a * 30 * s, 360) for s = +1 then -1, one record
// only for a = 0 and a = 6. Points without a position are left out.
std::vector<TargetRec> BuildTargets(const Session& session, int radixSlot, const DynOptions& options);

// The houses a point rules in the chart of `radixSlot` (modern rulers):
// walking cusps 1 to 12, house i when the ruler of the cusp's sign is the
// point, and when the next cusp lies two or more signs on, house i as well
// when the point rules the intercepted sign before the next cusp's sign.
std::vector<int> RuledHouses(const Session& session, int radixSlot, int point);

// What one search leaves: the options by type, the window, the hits and
// their display order, and the positions computed on the way (so that the
// scoring does not compute the same moment twice).
struct SearchState {
  DynOptionSet Options = [] {
    DynOptionSet o;
    ResetDynOptions(o);
    return o;
  }();
  std::string StartDate, EndDate;  // the window as the user typed it

  // Hits 1..HitCount(); entry 0 is unused. HitOrder[1..] are hit numbers in
  // order of FirstDate.
  std::vector<DynamicHit> Hits = std::vector<DynamicHit>(1);
  std::vector<int16_t> HitOrder = std::vector<int16_t>(1);
  int HitCount() const { return static_cast<int>(Hits.size()) - 1; }

  // Of the last search.
  int16_t DynamicType = 0;
  double FromJD = 0.0, ToJD = 0.0;  // the window, moments of life
  bool Cancelled = false;

  // The moment frame of the last search and its computed positions:
  // (point, ephemeris moment) -> longitude and speed. Kept for the scoring,
  // and for transits (which do not depend on the chart) for the next search.
  struct Frame {
    double RadixJD = 0.0;
    double RadixLatitude = 0.0, RadixLongitude = 0.0;
    double Offset = 0.0;  // directions: the radix chart's zodiac offset
    int16_t Zodiac = 1;   // the zodiac of the moving positions
    float UserAyan = 0.0f;
    int Method = 1;       // progression method of the angles
    int Type = -1;
  } Moments;
  std::map<std::pair<int, double>, std::pair<double, double>> Positions;
};

// The search of one dynamic type against the trial chart standing in slot
// 1, between two date texts (parsed with their messages; the two dates are
// the window's ends). Uses slot 2 for positions. Fills state.Hits (500
// at most; further hits are dropped), state.HitOrder and the window. Moving
// points are searched from 24 down to 1, each over its targets starting
// from the one nearest its place; a point without a position (the Earth,
// transiting angles) is passed over. In a sidereal zodiac each moving
// position carries the offset of its own moment; directions carry the radix
// chart's, since the whole radix moves by one arc. Progress gets the percent done after each
// moving point and can stop the search (state.Cancelled). Returns false,
// with an empty list, when a date does not parse, the window is empty or
// beyond the ephemeris (its message once), the trial chart was never cast
// or the type is not 0 to 3.
bool DynamicSearchNew(Session& session, SearchState& state, int dynamicType, const std::string& fromText,
                      const std::string& toText, Progress* progress = nullptr);
// The same with the window as Julian days of life.
bool DynamicSearchWindow(Session& session, SearchState& state, int dynamicType, double fromJD, double toJD,
                         Progress* progress = nullptr);

// After a search that returned false: when the window was empty (its start
// after its end) says so, naming the two date texts.
void TellEmptySearchWindow(Session& session, const SearchState& state, const std::string& from,
                           const std::string& to);

// The trial birth time the search screen opens with: the natal time when it
// parses as a time, otherwise the middle of the project's time limits.
std::string DefaultTrialTime(Session& session);

// The record whose moment lies closest to the middle of the hit, disabled
// records included; ties keep the earlier record. 0 without records.
int NearestEvent(const Session& session, const DynamicHit& hit);

// The captions of a scored hit for the search screen.
struct HitScoreText {
  std::string Age;      // the age at the hit, e.g. "34.2 Years"
  std::string Caption;  // "Within Range", "12 Days Before, ..." or empty
};
// Scores a hit against record `event` (0: none) of the open project:
// Status 2 when the event's range lies inside the hit, else 1 when the
// moving point stands within the orb at either end of the event's range,
// else 0 with NearestEvent cleared. `quiet` leaves the texts empty.
HitScoreText ScoreHit(Session& session, SearchState& state, DynamicHit& hit, int event, bool quiet);

// The title of the search screen's print dialogue.
inline constexpr const char* kTransitsPrintTitle = "Print Transits Report";

// The search screen's pairing of its two lists: the hits (numbers, in
// display order) that a scored search matched to record `event`.
std::vector<int> HitsOfEvent(const SearchState& state, int event);

struct SearchTotalsResult {
  int Total = 0;    // hits in the list
  int Matched = 0;  // hits with a status above 0
  float Ratio = 0;  // matched / total, 0 for an empty list
};
SearchTotalsResult SearchTotals(const SearchState& state);
// A ratio in the score's format: "0%" style, a whole percent.
std::string ScorePercent(float ratio);

// The default window as date texts: from 1 January of the year of the
// earliest enabled event less 2 to 1 January of the year of the latest
// event (enabled or not) plus 2. Without enabled events the start is the
// natal date; without records the end is today (the session's clock).
std::string DefaultSearchStart(Session& session);
std::string DefaultSearchEnd(Session& session);

// ---------------------------------------------------------------------------
// The options screen (TranOpt) as plain functions.

// The aspect sets of cmbAspects, each with its harmonic number.
struct AspectSetChoice {
  const char* Name;
  int Harmonic;
};
std::span<const AspectSetChoice> AspectSetChoices();
// Rewrites the seven aspect flags for harmonic h: the conjunction always;
// the opposition from h = 2; the square from h = 4; the sextile, trine,
// semi-sextile and quincunx only for h = 12.
void ApplyAspectHarmonic(DynOptions& record, int harmonic);
// The harmonic of the choice whose flags the record has, 0 when none fits.
int AspectHarmonicOf(const DynOptions& record);

// The period check of OK: above 100 years the question titled "Verify
// Period"; true when the search may go on.
bool ConfirmSearchPeriod(Session& session, double fromJD, double toJD);

// The screen's fields.
struct TranOptForm {
  DynOptionSet Records;
  int DynType = 0;  // cmbDynType: the record shown
  std::string StartDate, EndDate;
  std::string Orb;  // txtOrb of the record shown
};
// Opens the screen on the state's options and window (the default window
// when none was set yet).
TranOptForm OpenTranOpt(Session& session, const SearchState& state);
// cmbDynType: keeps the orb typed for the record shown, then shows another.
// False (the record stays) when the orb does not parse.
bool TranOptSelectType(Session& session, TranOptForm& form, int dynamicType);
// btnRestore: after the question, the shipped defaults replace the records.
// False when the user declines.
bool TranOptRestoreDefaults(Session& session, TranOptForm& form);
// btnAuto: after the notice, the records become the Auto Rectify options.
// False when declined or not written.
bool TranOptSaveForAuto(Session& session, TranOptForm& form);
// OKButton: the dates and the orb through their parsers, the period check;
// then the options and window go into the state and "dynopts.fil". False
// leaves the screen open.
bool TranOptAccept(Session& session, TranOptForm& form, SearchState& state);

}  // namespace vintar
