// `vintar place list|find|add|delete`: the place database of the user's
// data folder. A user without a places.fil of their own sees the one that
// ships with the program; the first add or delete writes the user's copy
// (the shipped places with the change made), and the shipped file is never
// written.
#include <iostream>
#include <memory>

#include "cli/commands.h"
#include "core/text.h"
#include "places/place_db.h"

namespace vintar::cli {
namespace {

struct PlaceArgs {
  std::string text;  // the name or the characters to find
  std::string latitude;
  std::string longitude;
};

nlohmann::json PlaceJson(int record, const PlaceRecord& p) {
  return {{"record", record}, {"name", J(p.Name)}, {"latitude", J(p.Latitude)}, {"longitude", J(p.Longitude)}};
}

std::string PlaceLine(const PlaceRecord& p) {
  std::string name = p.Name;
  if (name.size() < size_t(kPlaceNameBytes)) name.resize(kPlaceNameBytes, ' ');
  std::string lat = p.Latitude;
  if (lat.size() < size_t(kPlaceLatitudeBytes)) lat.resize(kPlaceLatitudeBytes, ' ');
  return ForTerminal(name) + "  " + lat + "  " + p.Longitude;
}

PlaceRecord Shown(const PlaceScreen& screen) { return {screen.Name, screen.Latitude, screen.Longitude}; }

int RunList(Context& ctx) {
  Session& s = ctx.session;
  std::vector<PlaceRecord> records;
  if (!ReadPlaceRecords(s, records)) {
    s.ShowMessage("Unable to read the place file " + PlaceReadPath(s), kIconExclamation, "Vintar");
    if (ctx.json) ctx.PrintJson({{"failed", true}, {"file", JPath(PlaceReadPath(s))}});
    return kExitFailed;
  }
  PlaceScreen screen;
  LoadPlaces(s, screen);
  nlohmann::json list = nlohmann::json::array();
  for (size_t i = 0; i < screen.PlaceIndex.size(); ++i) {
    int16_t record = screen.PlaceIndex[i];
    if (record <= 0 || size_t(record) > records.size()) continue;
    const PlaceRecord& p = records[size_t(record - 1)];
    if (ctx.json)
      list.push_back(PlaceJson(record, p));
    else
      std::cout << PlaceLine(p) << "\n";
  }
  if (ctx.json)
    ctx.PrintJson({{"failed", false}, {"file", JPath(PlaceReadPath(s))}, {"count", screen.PlaceCount}, {"places", list}});
  return kExitOk;
}

int RunFind(Context& ctx, const PlaceArgs& a) {
  Session& s = ctx.session;
  PlaceScreen screen;
  LoadPlaces(s, screen);
  int position = FindPlace(s, screen, FromArg(a.text));
  if (position < 0) {
    s.ShowMessage("The place database holds no places.", kIconInformation, "Vintar");
    if (ctx.json) ctx.PrintJson({{"failed", true}});
    return kExitFailed;
  }
  if (ctx.json)
    ctx.PrintJson({{"failed", false}, {"position", position + 1}, {"place", PlaceJson(screen.CurrentPlace, Shown(screen))}});
  else
    std::cout << PlaceLine(Shown(screen)) << "\n";
  return kExitOk;
}

int RunAdd(Context& ctx, const PlaceArgs& a) {
  Session& s = ctx.session;
  int16_t record = PutPlace(s, FromArg(a.text), FromArg(a.latitude), FromArg(a.longitude));
  PlaceRecord written;
  if (record > 0) {
    std::vector<PlaceRecord> records;
    if (ReadPlaceRecords(s, records) && size_t(record) <= records.size()) written = records[size_t(record - 1)];
  }
  if (ctx.json) {
    nlohmann::json out{{"failed", record == 0}, {"file", JPath(PlaceFilePath(s))}};
    if (record > 0) out["place"] = PlaceJson(record, written);
    ctx.PrintJson(out);
  } else if (record > 0) {
    std::cout << "record " << record << ": " << PlaceLine(written) << "\n";
  }
  return record > 0 ? kExitOk : kExitFailed;
}

int RunDelete(Context& ctx, const PlaceArgs& a) {
  Session& s = ctx.session;
  PlaceScreen screen;
  LoadPlaces(s, screen);
  const std::string name = Trim(FromArg(a.text));
  std::vector<int> marked;
  for (size_t i = 0; i < screen.PlaceList.size(); ++i)
    if (EqualsIgnoreCase(Trim(screen.PlaceList[i]), name)) marked.push_back(int(i));
  if (marked.empty()) {
    s.ShowMessage("There is no place called " + name + " on the place database.", kIconInformation, "Vintar");
    if (ctx.json) ctx.PrintJson({{"failed", true}, {"deleted", 0}});
    return kExitFailed;
  }
  int before = screen.PlaceCount;
  bool ok = DeletePlaces(s, screen, marked);
  int deleted = ok ? before - screen.PlaceCount : 0;
  if (ctx.json)
    ctx.PrintJson({{"failed", !ok}, {"deleted", deleted}, {"file", JPath(PlaceFilePath(s))}});
  else if (ok)
    std::cout << "deleted " << deleted << " of " << marked.size() << " place" << (marked.size() == 1 ? "" : "s")
              << " called " << ForTerminal(name) << "\n";
  return ok ? kExitOk : kExitFailed;
}

}  // namespace

void AddPlaceCommands(CLI::App& app, Context& ctx, Action& action) {
  auto* place = app.add_subcommand("place", "The place database (places.fil in the user data folder)");
  place->require_subcommand(1);
  auto args = std::make_shared<PlaceArgs>();

  auto* list = place->add_subcommand("list", "Every place, sorted by name");
  list->callback([&ctx, &action] { action = [&ctx] { return RunList(ctx); }; });

  auto* find = place->add_subcommand("find", "The first place whose name is not below TEXT, else the last");
  find->add_option("text", args->text, "Characters to find")->required();
  find->callback([&ctx, &action, args] { action = [&ctx, args] { return RunFind(ctx, *args); }; });

  auto* add = place->add_subcommand("add", "Add a place; one of the same name is replaced when answered Yes");
  add->add_option("name", args->text, "Place name (20 characters are kept)")->required();
  add->add_option("--latitude", args->latitude, "Latitude, e.g. 51N30")->required();
  add->add_option("--longitude", args->longitude, "Longitude, e.g. 0W07")->required();
  add->callback([&ctx, &action, args] { action = [&ctx, args] { return RunAdd(ctx, *args); }; });

  auto* del = place->add_subcommand("delete", "Delete the places of this name, each when answered Yes");
  del->add_option("name", args->text, "Place name")->required();
  del->callback([&ctx, &action, args] { action = [&ctx, args] { return RunDelete(ctx, *args); }; });
}

}  // namespace vintar::cli
