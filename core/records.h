// The records of a project: the header of the .nat file, one EventRecord per
// line of the .dat file, the category value index and the session's project
// state flags. Flags are 16-bit with -1 true and 0 false, as in the files.
//
// Moments: EventRecord::JulianDay and the header's three Julian days are
// Julian days that carry the delta-T of their year (ephemeris time); a chart
// cast from text carries none.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace vintar {

inline constexpr int16_t kTrue = -1;
inline constexpr int16_t kFalse = 0;

struct ProjectHeader {
  int16_t FormatVersion = 2;
  std::string Title;
  std::string Name;
  std::string Date;
  std::string Time;
  std::string Place;
  std::string Latitude;
  std::string Longitude;
  std::string ZoneMnemonic;
  std::string ZoneTime;
  std::string EarliestTime;
  std::string LatestTime;
  std::string CategoryNames;
  std::string CategoryTypes;
  int16_t CategoryCount = 0;
  int32_t RecordCount = 0;
  double NatalJulianDay = 0.0;
  double EarliestJulianDay = 0.0;
  double LatestJulianDay = 0.0;
};

struct EventRecord {
  std::string Description;
  int16_t Year = 0;
  uint8_t Month = 0;
  uint8_t Day = 0;
  uint8_t Hour = 0;
  uint8_t Minute = 0;
  uint8_t Second = 0;
  uint8_t DayRange = 0;
  uint8_t DetailLevel = 0;
  std::string ZoneAbbr;
  float ZoneHours = 0.0f;
  std::string Placename;
  float Longitude = 0.0f;
  float Latitude = 0.0f;
  int16_t Enabled = kTrue;
  int16_t Reserved = 0;
  std::string Categories;
  // Not stored in the files.
  int16_t Validated = 0;
  double JulianDay = 0.0;
  int32_t GroupTag = 0;
};

// The category value index, rebuilt at every read. All three are indexed
// from 1; index 0 exists and is unused. Starts and lengths are 32-bit so
// that a project may hold more than 32,767 distinct values.
struct CategoryIndex {
  std::vector<std::string> CategoryValues{1};
  std::vector<int32_t> CategoryStart{0};
  std::vector<int32_t> CategoryLength{0};
};

struct CurStatus {
  int32_t ListCount = 0;
  int32_t ReCalculate = 0;
  int16_t NatalValid = 0;
  int16_t NatChanged = 0;
  int16_t NatalEdited = 0;
  int16_t DataChanged = 0;
  int16_t DataChangedSaved = 0;
  int16_t CacheDirty = 0;
  int16_t EventsBackedUp = 0;
  std::string NatPath;
};

// The session's one open project. Events(0) exists and is unused; records
// live at 1..Header.RecordCount. The array grows in steps of 100 and is never
// shrunk by deleting records.
struct ProjectState {
  CurStatus Status;
  ProjectHeader Header;
  std::vector<EventRecord> Events = std::vector<EventRecord>(101);
  CategoryIndex Categories;
  std::string ProjectPath;
  std::string ProjectFolder;
  std::string ProjectStem;
  // A project is open (new or read from a file): the project menus are live.
  bool Open = false;
};

}  // namespace vintar
