// Chart strips: up to ten charts of a group, each drawn as one horizontal
// strip that is the harmonic circle of 360/H degrees cut open at 0, so that
// a pattern the charts share shows as glyphs standing in one column.
//
// This is the engine side, without drawing: which record each strip holds,
// the adjusted longitudes of its points (the transit position cache, single
// precision as cached, tropical with the session's sidereal correction
// added), the place of each shown point on the modulus, optionally as the
// nearer midpoint with a chosen partner, the display order, the labels and
// the lists the strips screen offers. Degrees throughout; tables are 1-based
// with slot 0 unused.
//
// Checked by tests/groups/strips_test.cpp: places on the whole zodiac and
// in a harmonic, midpoint partners, unknown points, and the loaded
// longitudes against the ephemeris library's own positions.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "core/progress.h"
#include "core/session.h"
#include "groups/group_search.h"

namespace vintar {

inline constexpr int kStripCount = 10;
// The place of a point that cannot be shown (not known in the chart).
inline constexpr double kStripUnknown = -10.0;
// StripFocusPoint of a strip whose match element is a midpoint.
inline constexpr int kStripFocusMidpoint = -1;

// The five colour classes of the highlight colour table.
enum StripColourClass : int {
  kStripLuminaries = 0,  // Moon, Earth, Sun
  kStripPersonal = 1,    // Mercury, Venus, Mars
  kStripSocial = 2,      // Jupiter, Saturn
  kStripOuter = 3,       // Uranus to Pluto, Chiron and the asteroids
  kStripAngles = 4,      // the nodes, Ascendant, Midheaven, Vertex, EastPoint
};

struct StripTable {
  StripTable();

  // Per strip, 1 to 10.
  std::array<int32_t, kStripCount + 1> StripRecord{};  // record number, 0 for an empty strip
  std::array<int32_t, kStripCount + 1> StripLoaded{};  // record whose positions are held
  std::array<int, kStripCount + 1> StripFocusPoint{};  // the match element's point, 0 none
  std::array<bool, kStripCount + 1> StripSelected{};   // the chart comes from a match

  // Per point 1 to 24 and strip 1 to 10.
  using PointByStrip = std::array<std::array<double, kStripCount + 1>, kPoints + 1>;
  PointByStrip StripLongitude;  // adjusted longitude, -1 when not known
  PointByStrip StripMidpoint;   // nearer midpoint with the partner, -10 when unknown
  PointByStrip StripX;          // the place on the modulus, -10 when unknown

  // Per strip: the shown points in display order, ascending by StripX
  // (unknown ones first), 1-based.
  std::array<std::vector<int>, kStripCount + 1> StripOrder;

  // What is shown.
  int PlotModulus = 1;           // the harmonic H, 1 to 360
  double ScaleStart = 0.0;       // a match's position as a share of the modulus, 0 up to 1
  std::vector<int> Shown;        // the points of DisplayList, in list order
  int MidpointPartner = 0;       // "&Midpoints of": each shown point with this one; 0 off
  int HighlightPoint = 0;        // HighList: drawn in its class colour on every strip; 0 "None"

  double Modulus() const { return 360.0 / PlotModulus; }
  // Whether strip s holds a chart.
  bool Used(int s) const { return s >= 1 && s <= kStripCount && StripRecord[s] > 0; }
  // The last strip that holds a chart, 0 when none.
  int LastUsed() const;
};

// The PlotModulus field on leaving: 1 to 360.
int ClampPlotModulus(int h);

// The class of a point for the highlight colour (kStripLuminaries ...).
int PointColourClass(int point);

// Puts `records` into the strips from the first on (at most ten, the rest
// empty), not from a match. Positions are read by LoadStripPositions.
void SetStripRecords(StripTable& table, const std::vector<int>& records);

// The strips of match k of a search: its charts in order of their first
// element (at most ten), its harmonic, and the scale's start at its
// position; each strip's focus is the point of the chart's first element.
// False when there is no such match.
bool StripsFromMatch(StripTable& table, const GroupSearchState& state, int k);

// Reads the positions of every strip whose record differs from the one
// loaded (all of them with `reload`), from the transit cache brought up to
// date first. A strip whose record cannot be read is left without
// positions. False when the cache could not be brought up or opened.
bool LoadStripPositions(Session& session, StripTable& table, Progress* progress = nullptr, bool reload = false);

// The place of one point on the modulus: its longitude reduced to the
// modulus, or with a partner the nearer midpoint of the two reduced; -10
// when a longitude needed is negative (not known).
double StripPlace(double longitude, double partnerLongitude, bool withPartner, double modulus);

// StripMidpoint, StripX and StripOrder of every strip for the shown points,
// the partner and the modulus; empty strips get nothing.
void ComputeStripPlaces(StripTable& table);

// Loads what is needed and computes the places: what each change of a list
// or of the modulus does before the strips are drawn again.
bool RefreshStrips(Session& session, StripTable& table, Progress* progress = nullptr);

// The label of strip s: "3) Description" (trimmed), a line break, the
// record's date in the session's form. Empty for an empty strip.
std::string ChartLabel(const Session& session, const StripTable& table, int s);

// The command line's forms. Records: "1,4,7" (numbers of the project's
// records, in strip order); empty: the first ten charts a search takes in.
// Points: names or short names joined by commas ("Sun, Moon, Asc"); empty or
// "all": every selectable point. A single point: a name, or empty or "none"
// for none (0). False with the reason in `error`.
bool StripRecordsFromText(const Session& session, const std::string& text, std::vector<int>& records,
                          std::string& error);
bool StripPointsFromText(const Session& session, const std::string& text, std::vector<int>& points,
                         std::string& error);
bool StripPointFromText(const Session& session, const std::string& text, int& point, std::string& error);

// What a command asks of the strips, in the forms above.
struct StripRequest {
  int Harmonic = 1;
  std::string Records, Points, MidpointsOf, Highlight;
  // Match k of a combination search of the default points in this harmonic
  // with this orb (at the first harmonic) gives the charts instead of
  // Records; 0: none.
  int Match = 0;
  float Orb = 8.0f;
};
// Sets the records, the shown points, the partner, the highlight and the
// modulus (clamped) of `table`; false with the reason in `error`. The
// records are not checked against the ten strips: `records` gets them all.
bool StripsFromRequest(const Session& session, StripTable& table, const StripRequest& request,
                       std::vector<int>& records, std::string& error);

// One line of the strips screen's point lists.
struct StripListEntry {
  int Point = 0;      // 0 for "None"
  std::string Glyph;  // UTF-8 symbol, empty for "None"
  std::string Name;   // Latin-1
};
// DisplayList: the selectable points with glyph and name.
std::vector<StripListEntry> DisplayListEntries(const Session& session);
// HighList: "None" first, then the selectable points.
std::vector<StripListEntry> HighListEntries(const Session& session);
// MidPointList: the partners a midpoint can be taken with.
std::vector<StripListEntry> MidPointListEntries(const Session& session);

// The search screen's Display button: the charts of the SecondaryList lines
// the user selected (0-based line numbers), each chart once in line order;
// and the strips of those charts with the harmonic and position of match k,
// each strip's focus the point of the chart's first selected line. False
// when no line names a chart or there is no match k.
std::vector<int> DetailLineCharts(const GroupSearchState& state, const std::vector<int>& lines);
bool StripsFromDetailLines(StripTable& table, const GroupSearchState& state, int k, const std::vector<int>& lines);

}  // namespace vintar
