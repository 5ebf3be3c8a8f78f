// The place lookup of the imports: the open atlas with the zone in force
// from the IANA database when the UseACS preference is on, otherwise the
// user's place database (places.fil), whose places carry no zone: there the
// place's own local mean time is taken, as the entry screens do for "LMT".
//
// Units: latitudes north and longitudes west positive, degrees; zone texts
// in the zone parser's grammar ("+5:00", "-0:39:56"), hours added to local
// time to reach UT. Checked by tests/exchange/place_lookup_test.cpp.
#pragma once

#include <string>
#include <vector>

#include "core/session.h"
#include "exchange/events_list.h"
#include "places/atlas.h"
#include "places/place_db.h"
#include "places/zone_history.h"

namespace vintar {

class EventPlaceFinder {
 public:
  explicit EventPlaceFinder(Session& session) : s_(session) {}
  // A lookup bound to this finder; the finder must outlive it.
  EventPlaceLookup Lookup();
  // One lookup: City and State as the events list gives them, the local
  // date and time (hour -1: none; noon is then taken for the zone).
  bool Find(const std::string& city, const std::string& state, int year, int month, int day, int hour, int minute,
            FoundPlace& found);

 private:
  bool FromAtlas(const std::string& city, const std::string& state, int year, int month, int day, int hour,
                 int minute, FoundPlace& found);
  bool FromPlaces(const std::string& city, FoundPlace& found);

  Session& s_;
  Atlas atlas_;
  bool atlasTried_ = false;
  ZoneDatabase zones_;
  std::vector<PlaceRecord> places_;
  bool placesRead_ = false;
};

}  // namespace vintar
