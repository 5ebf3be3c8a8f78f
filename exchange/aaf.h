// Charts in the astrological exchange format (AAF): a text file of records,
// each opened by a "#A93:" line (name, first name, kind, date, time, place,
// country) and usually followed by a "#B93:" line (Julian day in universal
// time, latitude as 48n24, longitude as 9e59, zone as 1he00 or 0e21:48,
// daylight saving hours) and a "#ZNAM:" line (the zone's abbreviation).
// Unknown fields are "*"; other chunks are passed over.
//
// Units: latitudes north positive and longitudes west positive in degrees
// once read (the file writes east and west with letters), zones in hours
// added to local time to reach Universal Time (so "1he00", one hour east,
// reads as -1). Dates are the calendar's of their day. Checked by
// tests/exchange/aaf_test.cpp: hemisphere letters, missing fields and
// chunks, zones as offsets, mnemonics or from the Julian day, damaged
// records skipped by line, and a project's round trip.
#pragma once

#include <string>
#include <vector>

#include "core/progress.h"
#include "core/records.h"
#include "core/session.h"

namespace vintar {

// One chart as the file gives it, already checked.
struct AafChart {
  int Line = 0;                 // the line of its #A93 chunk
  std::string Name, FirstName;  // "*" read as empty
  std::string Kind;             // m, f, e, ...; empty when unknown
  int Day = 0, Month = 0, Year = 0;
  bool HasTime = false;
  int Hour = 0, Minute = 0, Second = 0;
  std::string Place, Country;
  bool HasPosition = false;      // latitude and longitude read
  double Latitude = 0.0, Longitude = 0.0;
  bool HasZone = false;          // the zone in force, daylight saving included
  double ZoneHours = 0.0;
  std::string ZoneName;          // from #ZNAM, or the mnemonic of a zone given as text
};

struct AafReadResult {
  std::vector<AafChart> Charts;
  std::vector<std::string> Skipped;  // "Line 12: ..." for each record left out
  bool Cancelled = false;            // stopped by the user: no charts
};

// Reads every record of an AAF text. Never fails: records that cannot be
// used are listed in Skipped with their line and the reason. Reports its
// lines to `progress` and stops, with Cancelled set, when asked to.
AafReadResult ReadAaf(Session& session, const std::string& text, Progress* progress = nullptr);

// A chart as a project record: the names as the description, the date and
// time, zone, place and coordinates, with the detail level that what is
// known allows (3: time, zone and place; 2: time in UT; 1: zone and place
// without a time; 0: the date alone).
EventRecord AafChartToRecord(const AafChart& chart);

// The AAF text of a project: its natal chart first (from the header; a time
// of "Unknown" is written as "*"), then each record as an event chart, each
// with #A93, #B93 and #ZNAM lines, CR LF line ends.
std::string WriteAaf(Session& session, const ProjectHeader& header, const std::vector<EventRecord>& records);

// The imports and the export of the command line and the import screen.
// ImportAaf writes a new project at `datPath` (and its .nat) from the charts
// of an AAF file; it refuses a destination that exists. False, with the
// reason in `error`, when nothing was written; a cancel through `progress`
// writes nothing either and leaves `error` empty with read.Cancelled set.
bool ImportAaf(Session& session, const std::string& aafPath, const std::string& datPath, AafReadResult& read,
               std::string& error, Progress* progress = nullptr);
bool ExportAaf(Session& session, const std::string& aafPath, std::string& error);

// The export as the File menu and the command line run it: ExportAaf with
// its failure shown ("Error whilst writing file:" and the reason, under
// `title`).
bool ExportAafFile(Session& session, const std::string& aafPath, const std::string& title = "Vintar");
// The line that reports a finished export.
std::string AafExportSummary(const Session& session, const std::string& aafPath);
// The File menu's check before either export: a project is open, else a
// message and false.
bool ProjectOpenForExport(Session& session);

}  // namespace vintar
