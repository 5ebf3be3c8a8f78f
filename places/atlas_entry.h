// The atlas lookup of the entry screens (events and natal details): the
// typed place split and completed with the last used country or state, the
// places found (exactly, else by the fuzzy first search, for the screen
// that lists candidates), and for the chosen place the fields the screen
// fills: latitude, longitude and the zone in force at the event's local date
// and time, through the system's formatters; the Illinois warning when it
// applies and the preference asks for it.
//
// Units: as the atlas and the zone history (north and west positive;
// zones added to local time to reach UT). Checked by
// tests/places/atlas_entry_test.cpp.
#pragma once

#include <string>
#include <vector>

#include "places/atlas.h"
#include "places/zone_history.h"

namespace vintar {

class Session;

// What a screen keeps between lookups: the atlas, the user's own places,
// the zone database and the last used country or state.
struct AtlasLookupState {
  Atlas atlas;
  PersonalPlaces personal;
  ZoneDatabase zones;
  std::string lastRegion;
  bool loaded = false;
};

// Loads the atlas from the system data folder and the user's own places
// from the user data folder (once). False, with the message shown, when the
// atlas cannot be read.
bool PrepareAtlasLookup(Session& session, AtlasLookupState& state);

struct AtlasCandidates {
  AtlasStatus Status = AtlasStatus::kNotRecognised;
  std::vector<AtlasPlace> Places;  // exact matches first; fuzzy ones when none
  bool Fuzzy = false;              // the list came from the fuzzy search
  std::string Title;               // the candidate screen's title when it is shown
};
// The places a typed text names. With no exact match the fuzzy search's
// candidates are given for the screen titled "Select Country or State" (or
// "Select Place in " + the state, or "... for \"place\"").
AtlasCandidates FindEntryPlace(Session& session, AtlasLookupState& state, const std::string& text);

// The fields of a chosen place on a local date and time.
struct AtlasEntryFields {
  bool Failed = false;
  std::string PlaceName;  // "City, Country" in the files' single-byte text (ASCII when Latin-1 cannot hold it)
  std::string Latitude, Longitude, ZoneTime, ZoneMnemonic;
  double ZoneHours = 0.0;
  bool IsLmt = false, InGap = false, InOverlap = false;
};
AtlasEntryFields FillEntryFields(Session& session, AtlasLookupState& state, const AtlasPlace& place, int year,
                                 int month, int day, int hour, int minute);

}  // namespace vintar
