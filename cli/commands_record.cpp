// Editing a project by hand from the terminal: `vintar record` (list, add,
// set, delete, enable, disable), `vintar natal set` and `vintar category`
// (list, add, rename, delete, move). Each goes through the same functions as
// the entry screens and saves the project unless --dry-run.
#include <iostream>
#include <memory>

#include "cli/commands.h"
#include "core/parse.h"
#include "core/project_file.h"
#include "core/record_edit.h"
#include "core/text.h"

namespace vintar::cli {
namespace {

struct EditArgs {
  std::string project;
  int number = 0;
  bool dryRun = false;
  std::string description, date, time, zone, place, latitude, longitude, name, earliest, latest;
  int range = 0, detail = 0;
  std::vector<std::string> categories;  // N=VALUE
  RecordFields fields;                  // the options given, filled after parsing
  NatalFields natal;
  bool natalGiven[10] = {};
  bool all = false;
  std::string text;  // category name or direction
  int type = 0;
};

struct NatalOption {
  const char* name;
  const char* help;
};
constexpr NatalOption kNatalOptions[] = {{"--name", "The person's name"},
                                         {"--date", "The birth date"},
                                         {"--time", "The birth time, or Unknown"},
                                         {"--zone", "The zone: a mnemonic, or a mnemonic and hours, or hours"},
                                         {"--zone-time", "The zone in hours"},
                                         {"--place", "The birth place"},
                                         {"--latitude", "Latitude"},
                                         {"--longitude", "Longitude"},
                                         {"--earliest", "Earliest time of the rectification window"},
                                         {"--latest", "Latest time of the rectification window"}};

int Fail(Context& ctx) {
  if (ctx.json) ctx.PrintJson({{"failed", true}});
  return kExitFailed;
}

int Usage(const std::string& text) {
  std::cerr << text << "\n";
  return kExitUsage;
}

// Writes what the edit marked as changed.
bool Save(Context& ctx) {
  bool failed = false;
  Session& s = ctx.session;
  WriteProject(s, s.project.ProjectPath, s.project.Header, s.project.Events, failed, false);
  return !failed;
}

int Finish(Context& ctx, const EditArgs& a, nlohmann::json body, const std::string& text) {
  const bool saved = !a.dryRun;
  if (saved && !Save(ctx)) return Fail(ctx);
  body["failed"] = false;
  body["saved"] = saved;
  body["path"] = JPath(ctx.session.project.ProjectPath);
  if (ctx.json)
    ctx.PrintJson(body);
  else
    std::cout << ForTerminal(text) << (saved ? "" : " (not saved)") << "\n";
  return kExitOk;
}

nlohmann::json LinesJson(const Session& s) {
  nlohmann::json list = nlohmann::json::array();
  for (int32_t i = 1; i <= s.project.Header.RecordCount; ++i)
    list.push_back({{"number", i}, {"line", J(RecordListLine(s, s.project.Events[i], i))}});
  return list;
}

int RunList(Context& ctx, const EditArgs& a) {
  Session& s = ctx.session;
  if (!OpenProjectForCommand(ctx, a.project)) return kExitFailed;
  if (ctx.json) {
    ctx.PrintJson({{"failed", false}, {"records", LinesJson(s)}});
  } else {
    for (int32_t i = 1; i <= s.project.Header.RecordCount; ++i)
      std::cout << ForTerminal(RecordListLine(s, s.project.Events[i], i)) << "\n";
  }
  return kExitOk;
}

// Opens the project and takes the editing copy; false after the message.
bool OpenForEdit(Context& ctx, const EditArgs& a, RecordEditCopy& copy) {
  return OpenProjectForCommand(ctx, a.project) && BeginRecordEdit(ctx.session, copy);
}

bool NumberValid(const Context& ctx, int number) {
  return number >= 1 && number <= ctx.session.project.Header.RecordCount;
}

// Applies the fields and closes the edit as OK would; a refusal drops every change.
int ApplyAndFinish(Context& ctx, const EditArgs& a, RecordEditCopy& copy, int32_t number, const char* verb) {
  Session& s = ctx.session;
  int32_t bad = 0;
  if (!ApplyRecordFields(s, s.project, number, a.fields) || !FinishRecordEdit(s, copy, bad)) return Fail(ctx);
  return Finish(ctx, a, {{"number", number}, {"line", J(RecordListLine(s, s.project.Events[number], number))}},
                std::string(verb) + " " + RecordListLine(s, s.project.Events[number], number));
}

int RunAdd(Context& ctx, const EditArgs& a) {
  RecordEditCopy copy;
  if (!OpenForEdit(ctx, a, copy)) return Fail(ctx);
  Session& s = ctx.session;
  EditArgs args = a;
  // Without --detail the level follows the fields given.
  if (!args.fields.detail)
    args.fields.detail = (args.fields.place || args.fields.latitude || args.fields.longitude) ? kDetailTimePlace
                         : args.fields.time                                                   ? kDetailExactTime
                         : args.fields.zone                                                   ? kDetailZoneOnly
                                                                                              : kDetailNoTime;
  const int32_t number = AddRecord(s.project);
  if (number == 0) {
    s.ShowMessage("Out of memory", kIconExclamation, "Vintar");
    return Fail(ctx);
  }
  return ApplyAndFinish(ctx, args, copy, number, "Added");
}

int RunSet(Context& ctx, const EditArgs& a) {
  RecordEditCopy copy;
  if (!OpenForEdit(ctx, a, copy)) return Fail(ctx);
  if (!NumberValid(ctx, a.number)) return Usage("No record " + std::to_string(a.number) + " in this project");
  return ApplyAndFinish(ctx, a, copy, a.number, "Changed");
}

int RunDelete(Context& ctx, const EditArgs& a) {
  RecordEditCopy copy;
  if (!OpenForEdit(ctx, a, copy)) return Fail(ctx);
  if (!NumberValid(ctx, a.number)) return Usage("No record " + std::to_string(a.number) + " in this project");
  Session& s = ctx.session;
  const std::string line = RecordListLine(s, s.project.Events[a.number], a.number);
  if (!DeleteRecord(s, s.project, a.number)) return Fail(ctx);
  int32_t bad = 0;
  if (!FinishRecordEdit(s, copy, bad)) return Fail(ctx);
  return Finish(ctx, a, {{"deleted", a.number}, {"records", s.project.Header.RecordCount}}, "Deleted " + line);
}

int RunEnable(Context& ctx, const EditArgs& a, bool enabled) {
  RecordEditCopy copy;
  if (!OpenForEdit(ctx, a, copy)) return Fail(ctx);
  Session& s = ctx.session;
  if (a.number == 0)
    SetAllRecordsEnabled(s.project, enabled);
  else if (!NumberValid(ctx, a.number) || !SetRecordEnabled(s.project, a.number, enabled))
    return Usage("No record " + std::to_string(a.number) + " in this project");
  int32_t bad = 0;
  if (!FinishRecordEdit(s, copy, bad)) return Fail(ctx);
  const std::string what = a.number == 0 ? "all records" : "record " + std::to_string(a.number);
  return Finish(ctx, a, {{"number", a.number}, {"enabled", enabled}},
                std::string(enabled ? "Enabled " : "Disabled ") + what);
}

int RunNatal(Context& ctx, const EditArgs& a) {
  Session& s = ctx.session;
  if (!OpenProjectForCommand(ctx, a.project)) return kExitFailed;
  NatalFields f = NatalFieldsFromHeader(s.project.Header);
  std::string* slots[] = {&f.Name,  &f.Date,     &f.Time,      &f.ZoneMnemonic, &f.ZoneTime,
                          &f.Place, &f.Latitude, &f.Longitude, &f.Earliest,     &f.Latest};
  const std::string* given[] = {&a.natal.Name,     &a.natal.Date,  &a.natal.Time,     &a.natal.ZoneMnemonic,
                                &a.natal.ZoneTime, &a.natal.Place, &a.natal.Latitude, &a.natal.Longitude,
                                &a.natal.Earliest, &a.natal.Latest};
  for (int i = 0; i < 10; ++i)
    if (a.natalGiven[i]) *slots[i] = *given[i];
  // --zone alone may hold the hours too: "EST", "XYZ -5:00" or "-5:00".
  if (a.natalGiven[3] && !a.natalGiven[4]) {
    const std::string zone = Trim(a.natal.ZoneMnemonic);
    const size_t blank = zone.find(' ');
    const std::string first = zone.substr(0, blank);
    if (s.zones.Find(first) > 0) {
      f.ZoneMnemonic = first;
    } else if (blank != std::string::npos) {
      f.ZoneMnemonic = first;
      f.ZoneTime = Trim(zone.substr(blank + 1));
    } else {
      f.ZoneMnemonic.clear();
      f.ZoneTime = zone;
    }
  }
  if (!ApplyNatalEntry(s, f)) return Fail(ctx);
  const ProjectHeader& h = s.project.Header;
  return Finish(ctx, a,
                {{"name", J(h.Name)},
                 {"date", J(h.Date)},
                 {"time", J(h.Time)},
                 {"zoneMnemonic", J(h.ZoneMnemonic)},
                 {"zoneTime", J(h.ZoneTime)},
                 {"place", J(h.Place)},
                 {"latitude", J(h.Latitude)},
                 {"longitude", J(h.Longitude)},
                 {"earliestTime", J(h.EarliestTime)},
                 {"latestTime", J(h.LatestTime)},
                 {"natalValid", s.project.Status.NatalValid != 0}},
                "Natal details of " + h.Name + ": " + h.Date + " " + h.Time + " " + h.Place);
}

nlohmann::json CategoriesJson(const CategoryEditor& editor) {
  nlohmann::json list = nlohmann::json::array();
  for (size_t i = 0; i < editor.entries.size(); ++i)
    list.push_back({{"number", i + 1},
                    {"name", J(editor.entries[i].name)},
                    {"type", editor.entries[i].type},
                    {"typeText", CategoryTypeText(editor.entries[i].type)}});
  return list;
}

int RunCategoryList(Context& ctx, const EditArgs& a) {
  if (!OpenProjectForCommand(ctx, a.project)) return kExitFailed;
  const CategoryEditor editor = LoadCategoryEditor(ctx.session.project.Header);
  if (ctx.json) {
    ctx.PrintJson({{"failed", false}, {"categories", CategoriesJson(editor)}});
  } else {
    for (size_t i = 0; i < editor.entries.size(); ++i)
      std::cout << i + 1 << ") " << ForTerminal(CategoryListLine(editor.entries[i])) << "\n";
  }
  return kExitOk;
}

enum class CategoryAction { Add, Rename, Delete, Move };

int RunCategory(Context& ctx, const EditArgs& a, CategoryAction act) {
  Session& s = ctx.session;
  if (!OpenProjectForCommand(ctx, a.project)) return kExitFailed;
  if (s.project.Header.RecordCount > kMaxRecordsForAction && ProjectTooLarge(s)) return Fail(ctx);
  CategoryEditor editor = LoadCategoryEditor(s.project.Header);
  const int position = a.number - 1;
  const bool exists = position >= 0 && position < static_cast<int>(editor.entries.size());
  if (act != CategoryAction::Add && !exists)
    return Usage("No category " + std::to_string(a.number) + " in this project");
  std::string done;
  switch (act) {
    case CategoryAction::Add: {
      if (a.type < 0 || a.type > 2) return Usage("--type must be 0 (list), 1 (numeric) or 2 (free text)");
      const int added = AddCategory(editor, a.type);
      if (!a.name.empty() && !RenameCategory(editor, added, FromArg(a.name)))
        return Usage("A category name must not be blank or contain '|'");
      done = "Added category " + std::to_string(added + 1) + " " + editor.entries[added].name;
      break;
    }
    case CategoryAction::Rename:
      if (!RenameCategory(editor, position, FromArg(a.text)))
        return Usage("A category name must not be blank or contain '|'");
      done = "Renamed category " + std::to_string(a.number) + " to " + editor.entries[position].name;
      break;
    case CategoryAction::Delete:
      done = "Deleted category " + std::to_string(a.number) + " " + editor.entries[position].name;
      DeleteCategory(editor, position);
      break;
    case CategoryAction::Move: {
      const int delta = EqualsIgnoreCase(a.text, "up") ? -1 : EqualsIgnoreCase(a.text, "down") ? 1 : 0;
      if (delta == 0) return Usage("The direction is up or down");
      if (!MoveCategory(editor, position, delta))
        return Usage("Category " + std::to_string(a.number) + " cannot move " + a.text);
      done = "Moved category " + std::to_string(a.number) + " " + a.text;
      break;
    }
  }
  if (!SaveCategories(s, editor)) return Fail(ctx);
  return Finish(ctx, a, {{"categories", CategoriesJson(LoadCategoryEditor(s.project.Header))}}, done);
}

// Turns the options that were given into the optional fields.
void GatherRecordFields(CLI::App* sub, EditArgs& a) {
  RecordFields& f = a.fields;
  auto text = [&](const char* option, const std::string& value, std::optional<std::string>& out) {
    const CLI::Option* given = sub->get_option_no_throw(option);
    if (given && given->count()) out = FromArg(value);
  };
  text("--description", a.description, f.description);
  text("--date", a.date, f.date);
  text("--time", a.time, f.time);
  text("--zone", a.zone, f.zone);
  text("--place", a.place, f.place);
  text("--latitude", a.latitude, f.latitude);
  text("--longitude", a.longitude, f.longitude);
  const CLI::Option* range = sub->get_option_no_throw("--range");
  const CLI::Option* detail = sub->get_option_no_throw("--detail");
  if (range && range->count()) f.range = a.range;
  if (detail && detail->count()) f.detail = a.detail;
  for (const std::string& c : a.categories) {
    const size_t eq = c.find('=');
    const std::string number = eq == std::string::npos ? "" : c.substr(0, eq);
    // A bad pair becomes category 0, which every record refuses.
    const int category = IsAllDigits(number) && number.size() <= 5 ? ToIntSaturated(Val(number)) : 0;
    f.categories.emplace_back(category, eq == std::string::npos ? "" : FromArg(c.substr(eq + 1)));
  }
}

void AddRecordOptions(CLI::App* sub, EditArgs& a) {
  sub->add_option("--description", a.description, "What happened");
  sub->add_option("--date", a.date, "The date; a year alone may become a year marker");
  sub->add_option("--time", a.time, "The clock time");
  sub->add_option("--zone", a.zone, "The time zone: a mnemonic or hours");
  sub->add_option("--place", a.place, "The place name");
  sub->add_option("--latitude", a.latitude, "Latitude, e.g. 48N24");
  sub->add_option("--longitude", a.longitude, "Longitude, e.g. 9E59");
  sub->add_option("--range", a.range, "Uncertainty of the date in days (above 180: a year marker)")
      ->check(CLI::Range(0, 9999));
  sub->add_option("--detail", a.detail, "0 no time, 1 zone only, 2 exact time, 3 time and place")
      ->check(CLI::Range(0, 3));
  sub->add_option("--category", a.categories, "N=VALUE: the value of category N (repeatable)");
}

}  // namespace

void AddRecordCommands(CLI::App& app, Context& ctx, Action& action) {
  auto make = [&](CLI::App* parent, const char* name, const char* help, bool numbered, bool dryRun) {
    auto args = std::make_shared<EditArgs>();
    auto* sub = parent->add_subcommand(name, help);
    sub->add_option("project", args->project, "The project's .dat file")->required();
    if (numbered) sub->add_option("number", args->number, "The record or category number (from 1)")->required();
    if (dryRun) sub->add_flag("--dry-run", args->dryRun, "Change nothing on disk");
    return std::make_pair(sub, args);
  };
  using Run = int (*)(Context&, const EditArgs&);
  auto bind = [&ctx, &action](CLI::App* sub, const std::shared_ptr<EditArgs>& args, Run run) {
    sub->callback([&ctx, &action, sub, args, run] {
      GatherRecordFields(sub, *args);
      action = [&ctx, args, run] { return run(ctx, *args); };
    });
  };

  auto* record = app.add_subcommand("record", "List and edit a project's records");
  record->require_subcommand(1);
  auto [list, listArgs] = make(record, "list", "The record list, one line per record", false, false);
  bind(list, listArgs, RunList);
  auto [add, addArgs] = make(record, "add", "Add a record", false, true);
  AddRecordOptions(add, *addArgs);
  add->get_option("--description")->required();
  add->get_option("--date")->required();
  bind(add, addArgs, RunAdd);
  auto [set, setArgs] = make(record, "set", "Change fields of record N", true, true);
  AddRecordOptions(set, *setArgs);
  bind(set, setArgs, RunSet);
  auto [del, delArgs] = make(record, "delete", "Delete record N (asks Verify Delete)", true, true);
  bind(del, delArgs, RunDelete);
  for (bool enabled : {true, false}) {
    auto args = std::make_shared<EditArgs>();
    auto* sub = record->add_subcommand(enabled ? "enable" : "disable", enabled ? "Enable record N, or all with --all"
                                                                               : "Disable record N, or all with --all");
    sub->add_option("project", args->project, "The project's .dat file")->required();
    auto* number = sub->add_option("number", args->number, "The record number (from 1)");
    auto* all = sub->add_flag("--all", args->all, "Every record");
    number->excludes(all);
    sub->add_flag("--dry-run", args->dryRun, "Change nothing on disk");
    sub->callback([&ctx, &action, args, enabled, number, all] {
      if (!number->count() && !all->count()) throw CLI::RequiredError("number or --all");
      if (number->count() && args->number < 1) throw CLI::ValidationError("number", "records count from 1");
      action = [&ctx, args, enabled] { return RunEnable(ctx, *args, enabled); };
    });
  }

  auto* natal = app.add_subcommand("natal", "Edit the natal details of a project");
  natal->require_subcommand(1);
  auto natalArgs = std::make_shared<EditArgs>();
  auto* natalSet = natal->add_subcommand("set", "Change the natal details; the others stay as they are");
  natalSet->add_option("project", natalArgs->project, "The project's .dat file")->required();
  natalSet->add_flag("--dry-run", natalArgs->dryRun, "Change nothing on disk");
  std::string* natalSlots[] = {&natalArgs->natal.Name,         &natalArgs->natal.Date,      &natalArgs->natal.Time,
                               &natalArgs->natal.ZoneMnemonic, &natalArgs->natal.ZoneTime,  &natalArgs->natal.Place,
                               &natalArgs->natal.Latitude,     &natalArgs->natal.Longitude, &natalArgs->natal.Earliest,
                               &natalArgs->natal.Latest};
  for (int i = 0; i < 10; ++i) natalSet->add_option(kNatalOptions[i].name, *natalSlots[i], kNatalOptions[i].help);
  natalSet->callback([&ctx, &action, natalSet, natalArgs] {
    for (int i = 0; i < 10; ++i) natalArgs->natalGiven[i] = natalSet->count(kNatalOptions[i].name) > 0;
    std::string* slots[] = {&natalArgs->natal.Name,         &natalArgs->natal.Date,      &natalArgs->natal.Time,
                            &natalArgs->natal.ZoneMnemonic, &natalArgs->natal.ZoneTime,  &natalArgs->natal.Place,
                            &natalArgs->natal.Latitude,     &natalArgs->natal.Longitude, &natalArgs->natal.Earliest,
                            &natalArgs->natal.Latest};
    for (std::string* slot : slots) *slot = FromArg(*slot);
    action = [&ctx, natalArgs] { return RunNatal(ctx, *natalArgs); };
  });

  auto* category = app.add_subcommand("category", "List and edit a project's categories");
  category->require_subcommand(1);
  auto [clist, clistArgs] = make(category, "list", "The categories with their types", false, false);
  bind(clist, clistArgs, RunCategoryList);
  auto categoryAction = [&](const char* name, const char* help, bool numbered, CategoryAction act) {
    auto [sub, args] = make(category, name, help, numbered, true);
    sub->callback([&ctx, &action, args, act] {
      action = [&ctx, args, act] { return RunCategory(ctx, *args, act); };
    });
    return std::make_pair(sub, args);
  };
  auto [cadd, caddArgs] = categoryAction("add", "Add \"Category N\" of a type", false, CategoryAction::Add);
  cadd->add_option("--type", caddArgs->type, "0 list, 1 numeric, 2 free text");
  cadd->add_option("--name", caddArgs->name, "A name instead of \"Category N\"");
  auto [crename, crenameArgs] = categoryAction("rename", "Rename category N", true, CategoryAction::Rename);
  crename->add_option("name", crenameArgs->text, "The new name")->required();
  categoryAction("delete", "Delete category N and its values in every record", true, CategoryAction::Delete);
  auto [cmove, cmoveArgs] = categoryAction("move", "Move category N up or down", true, CategoryAction::Move);
  cmove->add_option("direction", cmoveArgs->text, "up or down")->required();
}

}  // namespace vintar::cli
