// Validation of Auto Rectify: how often it finds a birth time that is known.
//
// Synthetic lives: a seeded generator draws a birth moment (1900 to 2000,
// to the minute, local clock time), a place (latitude -60 to 60, longitude
// -180 to 180 west positive, the zone of the longitude in whole hours),
// casts the true chart, and dates events on the days when slow planets (and,
// in the "crossings" mix, Mars as well) make a conjunction, square or
// opposition to its Ascendant or Midheaven, from age 3 to age 75 and not
// after 2020. The birth time is then hidden in a window of a few hours
// placed at random around it, and Auto Rectify is run on the project as a
// user would run it, with the user's settings. Corpus mode does the same with
// real projects whose birth time is known.
//
// Units: times are local decimal hours of the natal date; errors are minutes
// on the 24-hour circle (a best time of 23:50 for a birth at 0:10 is 20
// minutes out). Event passes are Julian days on the ephemeris scale; the
// events are dated to the day, as a user records them. The generator draws
// from std::mt19937_64 through its own mapping to [0, 1), so a seed gives
// the same lives on every machine. Checked by tests/rectify/validate_test.cpp:
// each event date against the planet's position on that date, the window
// against the true time, repeatability of a seed, and a short run.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/progress.h"
#include "core/records.h"
#include "core/session.h"

namespace vintar {

// Which transits date the events of a synthetic life. Slow: Jupiter to
// Pluto. Crossings: half of the events from Mars, half from the slow ones.
enum class EventMix { Slow, Crossings };

struct ValidateOptions {
  int Lives = 20;            // synthetic lives to run
  uint64_t Seed = 1;
  int Events = 30;           // events drawn per synthetic life
  EventMix Mix = EventMix::Slow;
  double WindowHours = 6.0;  // width of the time window that hides the birth time
  std::string Corpus;        // a folder of projects: real lives instead of synthetic ones
  int Threads = 0;           // Auto Rectify's threads, 0 = all cores
};

// One dated event of a synthetic life and the transit it was made from.
struct SyntheticEvent {
  int Mover = 0;         // the transiting point, kMars to kPluto
  int Angle = 0;         // kAscendant or kMidheaven of the true chart
  int Aspect = 0;        // degrees ahead of the angle: 0, 90, 180 or 270
  double PassJD = 0.0;   // the exact pass, ephemeris Julian day
  EventRecord Record;    // the event as the project holds it
};

// A synthetic life: the project's header (time hidden) and its events, with
// the truth kept beside them.
struct SyntheticLife {
  ProjectHeader Header;
  std::string TrueTime;   // the clock time of birth, as text
  double TrueHours = 0;   // the same in local decimal hours
  double Ascendant = 0, Midheaven = 0;  // of the true chart, degrees
  std::vector<SyntheticEvent> Events;   // in date order
};

// Life `index` (from 1) of the series of `options.Seed`: the same seed,
// index, options and settings always give the same life. Uses chart slots 1
// and 2 of `session`. False, with the reason in `error`, when the true chart
// cannot be cast or no transit falls within the life.
bool MakeSyntheticLife(Session& session, const ValidateOptions& options, int index, SyntheticLife& life,
                       std::string& error);

// The outcome of one life.
struct ValidateLife {
  std::string Name;           // "Life 3", or the project's file name
  std::string Date;           // the natal date as the header holds it
  std::string TrueTime;       // the known birth time
  std::string Earliest, Latest;  // the window it was hidden in
  double TrueHours = 0;
  int Events = 0;             // enabled events Auto Rectify worked from
  bool GotTime = false;       // Auto Rectify ranked at least one time
  std::string BestTime;       // its best time, when GotTime
  double BestHours = 0;
  double ErrorMinutes = 0;    // circular difference from the true time, when GotTime
  bool NoAngles = false;      // no candidate angles: Auto Rectify found no time
  bool Failed = false;        // the life could not be run (see Message)
  std::string Message;        // why, for a failed life
};

struct ValidateReport {
  std::vector<ValidateLife> Lives;       // the lives finished, in order
  std::vector<std::string> Skipped;      // corpus projects without a known time
  int Within5 = 0, Within15 = 0, Within60 = 0;  // lives recovered within so many minutes
  int Timed = 0;                         // lives that got a time
  int NoAngles = 0;
  int Failed = 0;
  double MedianMinutes = 0;              // of the lives that got a time; 0 without any
  double Percentile90Minutes = 0;        // nearest rank
  double Seconds = 0;                    // wall time of the run
  bool Cancelled = false;                // stopped through the progress; the figures cover the lives finished
  bool Ok = true;                        // false: nothing could run (see Error)
  std::string Error;
};

// The whole measurement, with the settings of `session` (preferences,
// folders, zones, vocabulary, ephemeris). Each life runs in a session of its
// own whose messages are kept, on a project written to a temporary folder
// that is removed at the end, also after a cancel. Progress: "Life k of N"
// as the status, the lives done as the fraction; its cancel request stops
// the run after the lives finished so far.
ValidateReport RunValidation(Session& session, const ValidateOptions& options, Progress* progress = nullptr);

}  // namespace vintar
