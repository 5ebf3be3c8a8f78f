// `vintar project show FILE.dat` and `vintar project save IN.dat OUT.dat`.
#include <iomanip>
#include <iostream>
#include <memory>
#include <sstream>

#include "cli/commands.h"
#include "core/parse.h"
#include "core/project_file.h"
#include "core/text.h"

namespace vintar::cli {
namespace {

nlohmann::json HeaderJson(const ProjectHeader& h) {
  return {{"formatVersion", h.FormatVersion},
          {"title", J(h.Title)},
          {"name", J(h.Name)},
          {"date", J(h.Date)},
          {"time", J(h.Time)},
          {"place", J(h.Place)},
          {"latitude", J(h.Latitude)},
          {"longitude", J(h.Longitude)},
          {"zoneMnemonic", J(h.ZoneMnemonic)},
          {"zoneTime", J(h.ZoneTime)},
          {"earliestTime", J(h.EarliestTime)},
          {"latestTime", J(h.LatestTime)},
          {"categoryNames", J(h.CategoryNames)},
          {"categoryTypes", J(h.CategoryTypes)},
          {"categoryCount", h.CategoryCount},
          {"recordCount", h.RecordCount},
          {"natalJulianDay", h.NatalJulianDay},
          {"earliestJulianDay", h.EarliestJulianDay},
          {"latestJulianDay", h.LatestJulianDay}};
}

nlohmann::json RecordJson(const EventRecord& r) {
  return {{"description", J(r.Description)},
          {"year", r.Year},
          {"month", r.Month},
          {"day", r.Day},
          {"hour", r.Hour},
          {"minute", r.Minute},
          {"second", r.Second},
          {"dayRange", r.DayRange},
          {"detailLevel", r.DetailLevel},
          {"zoneAbbr", J(r.ZoneAbbr)},
          {"zoneHours", r.ZoneHours},
          {"placename", J(r.Placename)},
          {"longitude", r.Longitude},
          {"latitude", r.Latitude},
          {"enabled", r.Enabled},
          {"reserved", r.Reserved},
          {"categories", J(r.Categories)},
          {"julianDay", r.JulianDay}};
}

nlohmann::json CategoryValuesJson(const ProjectState& p) {
  nlohmann::json list = nlohmann::json::array();
  const ProjectHeader& h = p.Header;
  for (int c = 1; c <= h.CategoryCount; ++c) {
    std::string name;
    int type = 0;
    GetCategoryDefinition(h, c, name, type);
    nlohmann::json values = nlohmann::json::array();
    if (c < static_cast<int>(p.Categories.CategoryStart.size())) {
      int start = p.Categories.CategoryStart[c], length = p.Categories.CategoryLength[c];
      for (int i = 0; i < length; ++i) values.push_back(J(p.Categories.CategoryValues[start + i]));
    }
    list.push_back({{"category", c}, {"name", J(Trim(name))}, {"type", type}, {"values", values}});
  }
  return list;
}

void PrintProject(const Session& s) {
  const ProjectState& p = s.project;
  const ProjectHeader& h = p.Header;
  auto line = [](const char* label, const std::string& value) {
    std::cout << std::left << std::setw(16) << label << ForTerminal(value) << "\n";
  };
  line("Project:", h.Title);
  std::cout << std::left << std::setw(16) << "File:" << DisplayText(p.ProjectPath) << "\n";
  line("Format:", "version " + std::to_string(h.FormatVersion));
  line("Name:", h.Name);
  line("Date:", h.Date);
  line("Time:", h.Time);
  line("Place:", h.Place);
  line("Latitude:", h.Latitude);
  line("Longitude:", h.Longitude);
  line("Zone:", Trim(h.ZoneMnemonic + " " + h.ZoneTime));
  line("Search window:", h.EarliestTime + " to " + h.LatestTime);
  line("Natal details:", p.Status.NatalValid ? "complete" : "incomplete");
  for (int c = 1; c <= h.CategoryCount; ++c) {
    std::string name;
    int type = 0;
    GetCategoryDefinition(h, c, name, type);
    static const char* kTypes[] = {"list of items", "numeric", "free text"};
    line(("Category " + std::to_string(c) + ":").c_str(),
         Trim(name) + " (" + (type >= 0 && type <= 2 ? kTypes[type] : "unknown") + ")");
  }
  std::cout << "\n" << h.RecordCount << " records\n";
  std::cout << std::right << std::setw(4) << "#" << "  " << std::left << std::setw(30) << "Description"
            << std::setw(13) << "Date" << std::setw(12) << "Time" << std::setw(14) << "Zone" << std::setw(22)
            << "Place" << std::setw(10) << "Lat" << std::setw(11) << "Long"
            << "Range  On  Categories\n";
  for (int i = 1; i <= h.RecordCount; ++i) {
    const EventRecord& r = p.Events[i];
    std::string time = r.DetailLevel >= 2 ? FormatTime(r.Hour, r.Minute, r.Second, s.prefs.AMPM != 0) : "";
    std::string zone = r.DetailLevel >= 1 ? Trim(r.ZoneAbbr + " " + FormatZone(r.ZoneHours)) : "";
    std::string place = r.DetailLevel >= 3 ? r.Placename : "";
    std::string range = r.DayRange > 180 ? "year" : std::to_string(r.DayRange);
    std::string categories;
    for (const auto& e : SplitOnText(r.Categories, "|", 1000)) categories += (categories.empty() ? "" : ", ") + Trim(e);
    std::ostringstream row;
    row << std::right << std::setw(4) << i << "  " << std::left << std::setw(30) << r.Description.substr(0, 29)
        << std::setw(13) << FormatDate(s, r.Day, r.Month, r.Year) << std::setw(12) << time << std::setw(14) << zone
        << std::setw(22) << place.substr(0, 21) << std::setw(10)
        << (r.DetailLevel >= 3 ? FormatLatitude(r.Latitude) : "") << std::setw(11)
        << (r.DetailLevel >= 3 ? FormatLongitude(r.Longitude) : "") << std::setw(7) << range
        << std::setw(4) << (r.Enabled ? "yes" : "no") << categories;
    std::cout << ForTerminal(row.str()) << "\n";
  }
}

int RunShow(Context& ctx, const std::string& path) {
  Session& s = ctx.session;
  if (!OpenProjectForCommand(ctx, path)) return kExitFailed;
  if (ctx.json) {
    nlohmann::json records = nlohmann::json::array();
    for (int i = 1; i <= s.project.Header.RecordCount; ++i) records.push_back(RecordJson(s.project.Events[i]));
    ctx.PrintJson({{"failed", false},
                   {"path", JPath(s.project.ProjectPath)},
                   {"natalValid", s.project.Status.NatalValid != 0},
                   {"header", HeaderJson(s.project.Header)},
                   {"records", records},
                   {"categoryValues", CategoryValuesJson(s.project)}});
  } else {
    PrintProject(s);
  }
  return kExitOk;
}

int RunSave(Context& ctx, const std::string& in, const std::string& out) {
  Session& s = ctx.session;
  if (!OpenProjectForCommand(ctx, in)) return kExitFailed;
  // An explicit save writes both files.
  s.project.Status.DataChanged = kTrue;
  s.project.Status.NatChanged = kTrue;
  bool failed = false;
  WriteProject(s, out, s.project.Header, s.project.Events, failed, true);
  if (ctx.json)
    ctx.PrintJson({{"failed", failed}, {"path", JPath(out)}, {"records", s.project.Header.RecordCount}});
  else if (!failed)
    std::cout << "Saved " << s.project.Header.RecordCount << " records to " << DisplayText(out) << "\n";
  return failed ? kExitFailed : kExitOk;
}

}  // namespace

void AddProjectCommands(CLI::App& app, Context& ctx, Action& action) {
  auto* project = app.add_subcommand("project", "Read and write project files (.dat and .nat)");
  project->require_subcommand(1);

  auto showPath = std::make_shared<std::string>();
  auto* show = project->add_subcommand("show", "Print a project's header and records");
  show->add_option("file", *showPath, "The project's .dat file")->required();
  show->callback([&ctx, &action, showPath] { action = [&ctx, showPath] { return RunShow(ctx, *showPath); }; });

  auto paths = std::make_shared<std::pair<std::string, std::string>>();
  auto* save = project->add_subcommand("save", "Read a project and write it as version 2");
  save->add_option("in", paths->first, "The project's .dat file")->required();
  save->add_option("out", paths->second, "The .dat file to write (its .nat goes beside it)")->required();
  save->callback([&ctx, &action, paths] {
    action = [&ctx, paths] { return RunSave(ctx, paths->first, paths->second); };
  });
  AddProjectOpsCommands(*project, ctx, action);
}

}  // namespace vintar::cli
