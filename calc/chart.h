// Chart construction: positions of points 1 to 20 from the ephemeris, the
// angles 21 to 24 and twelve cusps from this program's own formulas, cast
// into one of the session's seven chart slots.
//
// Time scales: a chart cast from text (CalcChart) hands universal time to
// the ephemeris where it expects ephemeris time, adding no delta-T; a
// record's stored moment carries the delta-T of its year. T is Julian
// centuries from 1900 January 0.5. Longitudes carry the sidereal offset of
// the session's zodiac; -1.0 marks a body that could not be computed.
// Checked against the ephemeris library's house routines and published
// chart data (see tests/calc).
#pragma once

#include <string>

#include "calc/astro.h"
#include "core/calendar.h"
#include "core/session.h"

namespace vintar {

// Calls swe_calc for the points firstPoint..lastPoint (0 means 1 and 24) of
// `slot` at T and stores them with `siderealOffset` added; bodies that fail
// get -1.0. Shows the ephemeris message only when every body failed.
void ComputePositions(Session& session, int slot, int firstPoint, int lastPoint, double T, double siderealOffset);

// The ephemeris body number of a point, -1 for the angles (21 to 24), which
// are this program's own.
int EphemerisBody(int point);

// One body's longitude (0 up to 360) at T with the caller's flags; -1.0 on failure.
double PlanetLongitude(Session& session, double T, int body, int flags);

// The ephemeris failure text. Returns true (and fills `message`) when
// `value` is negative; shows it unless `quiet`.
bool CheckSwissResult(Session& session, int value, std::string& message, bool quiet);

// Points 21 to 24 of both coordinates of the slot.
void ComputeAngles(Session& session, int slot, double ramc, double obliquity, double latitude, double offset);

// Cusps of the slot for `system`, with the fallback stored in the slot; the
// slot's Ascendant, Midheaven and Sun must already stand. An unknown system
// shows "Unrecognised house system" and leaves the cusps as they were.
void CalcHouses(Session& session, int slot, double ramc, double obliquity, double latitude, int system,
                double offset);

// The sidereal offset of the session's zodiac at T (0 for the tropical zodiac).
double SessionSiderealOffset(const Session& session, double T);

// The Sun's zodiac longitude (sidereal offset included) at a record's stored
// moment, the key of the sort by Sun; negative when it could not be computed.
double RecordSunLongitude(Session& session, const EventRecord& record);

// The whole construction from text fields, as typed. An empty time means
// 12:00. Returns false when a text does not parse (its parser has said why)
// and the slot is then left as it was.
bool CalcChart(Session& session, int slot, const std::string& dateText, const std::string& timeText,
               const std::string& zoneText, const std::string& longitudeText, const std::string& latitudeText,
               const std::string& name = "", const std::string& place = "");

// The same from parsed values: a date, local time in hours, zone hours (added
// to local time to reach UT), place longitude (west positive) and latitude.
void CastChart(Session& session, int slot, int day, int month, int year, double hours, double zone,
               double longitude, double latitude);

// Counts and first point of the points the slot shows.
void SelectChartPoints(Session& session, int slot);

// The inverse for rectification: from a Midheaven longitude (with the
// offset in it), a date and a place, the other angles and the local time.
struct AnglesFromMCResult {
  double Ramc = 0, Ascendant = 0, Vertex = 0, EastPoint = 0;
  double LocalHours = 0;
};
AnglesFromMCResult AnglesFromMC(const Session& session, double mc, int day, int month, int year, double hours,
                                double zone, double longitude, double latitude);

}  // namespace vintar
