// `vintar atlas find`: the places the open atlas finds for a typed place,
// with the zone in force on a local date and time when one is given.
#include <iomanip>
#include <sstream>
#include <iostream>
#include <memory>

#include "cli/commands.h"
#include "core/parse.h"
#include "places/atlas_entry.h"
#include "places/zone_history.h"

namespace vintar::cli {
namespace {

struct FindArgs {
  std::string place, date, time;
  bool fuzzy = false;
  int limit = 10;
};

int RunFind(Context& ctx, const FindArgs& a) {
  Session& s = ctx.session;
  auto fail = [&] {
    if (ctx.json) ctx.PrintJson({{"failed", true}});
    return kExitFailed;
  };
  int16_t day = 0, month = 0, year = 0, hour = 12, minute = 0, second = 0;
  bool failed = false;
  if (!a.date.empty()) {
    ParseDate(s, FromArg(a.date), day, month, year, true, failed);
    if (!failed && !a.time.empty()) ParseTime(s, FromArg(a.time), hour, minute, second, true, failed);
    if (failed) return fail();
  }
  AtlasLookupState state;
  if (!PrepareAtlasLookup(s, state)) return fail();
  const AtlasQuery query = SplitPlaceText(FromArg(a.place));
  AtlasStatus status = AtlasStatus::kFound;
  std::vector<AtlasPlace> found = FindPlace(state.atlas, state.personal, query, &status);
  if (found.empty() && a.fuzzy) found = state.atlas.FindFuzzy(query, &status);
  if (found.size() > static_cast<size_t>(a.limit)) found.resize(static_cast<size_t>(a.limit));
  if (found.empty()) ReportAtlasStatus(s, status);

  ZoneDatabase& zones = state.zones;
  nlohmann::json list = nlohmann::json::array();
  std::ostringstream text;
  for (const AtlasPlace& p : found) {
    nlohmann::json j{{"name", p.name},
                     {"country", p.countryName},
                     {"countryCode", p.countryCode},
                     {"admin1", p.divisionName},
                     {"latitude", p.latitude},
                     {"longitude", p.longitude},
                     {"latitudeText", FormatLatitude(p.latitude)},
                     {"longitudeText", FormatLongitude(p.longitude)},
                     {"population", p.population},
                     {"zoneName", p.zone}};
    text << p.name << ", " << (p.divisionName.empty() ? "" : p.divisionName + ", ") << p.countryName << "  "
         << FormatLatitude(p.latitude) << " " << FormatLongitude(p.longitude) << "  " << p.zone;
    if (!a.date.empty()) {
      const ZoneInForce z = zones.ZoneAt(p.zone, year, month, day, hour, minute, second, p.longitude);
      if (z.Failed) {
        j["zoneError"] = z.Message;
        text << "  (" << z.Message << ")";
      } else {
        j["zoneHours"] = z.Hours;
        j["zoneText"] = FormatZone(z.Hours);
        j["abbreviation"] = z.Abbreviation;
        j["isDst"] = z.IsDst;
        j["isLmt"] = z.IsLmt;
        j["inGap"] = z.InGap;
        j["inOverlap"] = z.InOverlap;
        text << "  " << z.Abbreviation << " " << FormatZone(z.Hours);
        if (IllinoisStandardTimeRule(p.divisionCode, p.countryCode, year, month, day)) {
          j["illinoisWarning"] = true;
          if (s.prefs.IllinoisWarning)
            s.ShowMessage(std::string(kIllinoisStandardTimeMessage) + kLineEnd + kIllinoisRecordedTimeMessage,
                          kIconInformation, "Vintar");
        }
      }
    }
    text << "\n";
    list.push_back(j);
  }
  if (ctx.json)
    ctx.PrintJson({{"failed", found.empty()}, {"status", AtlasStatusMessage(status)}, {"places", list}});
  else
    std::cout << text.str();
  return found.empty() ? kExitFailed : kExitOk;
}

}  // namespace

void AddAtlasCommands(CLI::App& app, Context& ctx, Action& action) {
  auto* atlas = app.add_subcommand("atlas", "Look places up in the world atlas (GeoNames)");
  atlas->require_subcommand(1);
  auto a = std::make_shared<FindArgs>();
  auto* find = atlas->add_subcommand("find", "Find a place: \"City, Country\" or \"City, State\"");
  find->add_option("place", a->place, "The place as typed, e.g. \"Ulm, Germany\" or \"Chicago, IL\"")->required();
  find->add_option("--date", a->date, "A local date: adds the zone in force then");
  find->add_option("--time", a->time, "The local time on that date (default noon)");
  find->add_flag("--fuzzy", a->fuzzy, "When nothing matches exactly, list places of a similar name");
  find->add_option("--limit", a->limit, "At most this many places (default 10)")->check(CLI::Range(1, 1000));
  find->callback([&ctx, &action, a] { action = [&ctx, a] { return RunFind(ctx, *a); }; });
}

}  // namespace vintar::cli
