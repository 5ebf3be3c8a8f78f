// Control data: a new project of synthetic records to compare a sample
// against. Wholly random records (dates uniform in a range, or evenly
// spaced through it; places uniform in a latitude and longitude box), the
// records of the open project with some of their date, time and place kept
// and the rest drawn afresh, the open project moved by a fixed time, or a
// shuffled control group that deals the sample's dates, times and places
// out to its records independently (each marginal distribution kept exactly).
//
// Units: Julian days for the date range, degrees for places (latitude north
// positive, longitude west positive, so an eastern longitude is negative),
// the record's local clock time and zone for times. Generated records carry
// the stored moment of core/calendar.h RecordJulianDay (ephemeris time).
//
// The generator is std::mt19937_64, one stream drawn in the order the steps
// use it, seeded from the session's clock or from an explicit seed; either
// way the seed is written into the new project's notepad text, so a run can
// be repeated. The open project is only read; the new one never replaces a
// file: an existing file of its name is refused. Checked by
// tests/research/control_test.cpp (chi-square of generated hours and dates
// against uniform, shuffled multisets, regular spacing, replication and
// shifts field by field, the validation messages).
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "core/records.h"

namespace vintar {

class Session;
struct Clock;

// The units of a uniform time shift, in the order of the period list.
enum class ShiftUnit { Days = 0, Hours = 1, Minutes = 2, Seconds = 3 };
inline constexpr std::array<const char*, 4> kShiftUnitNames{"Days", "Hours", "Minutes", "Seconds"};

// The replication boxes, in screen order.
enum ReplicateItem { kReplicateYears = 0, kReplicateDayMonth = 1, kReplicateTime = 2, kReplicatePlace = 3 };

// What the Control Data Generator screen gathers, as texts where the screen
// has text boxes.
struct ControlOptions {
  bool FromProject = false;  // "Use Current Project as Base"; else "Generate Independent Data"
  std::string Number;        // "Total Records" (independent data only)
  int RandomDates = 1;       // 1 random, 2 regular
  std::string StartDate, EndDate;
  std::array<bool, 4> Replicate{};  // base project only
  bool Shift = false;               // base project only; keeps all but the moment
  std::string Period;               // the shift, read with Val
  ShiftUnit Unit = ShiftUnit::Days;
  std::string Latitude1 = "50S00", Latitude2 = "50N00";
  std::string Longitude1 = "180E00", Longitude2 = "180W00";
  // Shuffled control group of the open project: dates, times and places of
  // its enabled records permuted independently. Ignores every other option.
  bool Shuffle = false;
  // Seeds the generator; the session clock's YYYYMMDDhhmmss when unset.
  std::optional<uint64_t> Seed;
};

// The checked values of the options.
struct ControlPlan {
  int32_t Count = 0;
  double StartJD = 0, EndJD = 0;
  double ShiftDays = 0;
  std::string ShiftText;  // the period text and the unit, joined by a blank
  double Latitude1 = 0, Latitude2 = 0, Longitude1 = 0, Longitude2 = 0;
  uint64_t Seed = 0;
};

// A generated project, not yet on disk: Events(0) unused, records at
// 1..Header.RecordCount. The header's natal name slot holds the project's
// kind ("Random Events", "Regular Events", "Control Data").
struct ControlProject {
  ProjectHeader Header;
  std::vector<EventRecord> Events;
  uint64_t Seed = 0;
  std::string Notepad;  // the companion text, naming the seed
};

// The screen around the options -----------------------------------------

// "Test Data - " and the open project's title, or "Control Data Generator"
// without a project.
std::string ControlCaption(const Session& session);
// The base option needs open records.
bool BaseOptionAvailable(const Session& session);
// Which groups of the screen are live: the record count is fixed for a
// base project; replication and shift are for a base project only; a
// shift disables replication and dates; places are drawn unless a shift
// or a replicated place keeps them.
struct ControlScreenState {
  bool NumberEditable = true, ReplicationEnabled = false, ShiftEnabled = false, DatesEnabled = true,
       PlacesEnabled = true;
};
ControlScreenState ControlScreen(const ControlOptions& options);

// The seed of a run started at `clock`: its digits YYYYMMDDhhmmss.
uint64_t ClockSeed(const Clock& clock);
// A uniform draw in [0, 1) from 53 bits of the engine's output.
double UniformDraw(uint64_t word);

// Checks ----------------------------------------------------------------

// The validation of the OK button, in order, each with its message: the
// record count (independent data: a whole number from 1 to the project
// file's record limit), a base project with records, the dates (unless a
// shift), the shift period, at least one replication item left out, the
// latitude and longitude ranges (unless a shift or a replicated place).
// False after the message; `plan` then holds what was read so far.
bool CheckControlOptions(Session& session, const ControlOptions& options, ControlPlan& plan);

// Generation --------------------------------------------------------------

// Checks the options and generates the project in memory from the open
// project (which is only read). False after a message.
bool BuildControlProject(Session& session, const ControlOptions& options, ControlProject& out);

// Writes `project` as `datPath` and its .nat, with the notepad companion
// (.txt) holding the seed. Refused with a message, nothing written, when
// the path is not a .dat or any of the three files exists. A failed write
// leaves nothing behind. The open project is not touched.
bool WriteControlProject(Session& session, ControlProject& project, const std::string& datPath);

// Both of the above: the OK button of the screen, less the reload of the
// new project, which the caller does.
bool GenerateControlData(Session& session, const ControlOptions& options, const std::string& datPath,
                         ControlProject* generated = nullptr);

}  // namespace vintar
