// The File menu's project operations under `vintar project`: new, merge,
// split, sort, title and delete. Each saves the project unless --dry-run.
#include <cmath>
#include <iostream>
#include <memory>

#include "calc/cache.h"
#include "calc/chart.h"
#include "calc/ephemeris.h"
#include "cli/commands.h"
#include "core/project_file.h"
#include "core/project_ops.h"
#include "core/text.h"

namespace vintar::cli {
namespace {

struct OpsArgs {
  std::string project, other, title, by = "date";
  int first = 1, last = 1;
  bool descending = false, dedupe = false, dryRun = false;
};

int Fail(Context& ctx) {
  if (ctx.json) ctx.PrintJson({{"failed", true}});
  return kExitFailed;
}

// Folder and name of a .dat path as the save dialogue takes them.
void SplitSavePath(const std::string& path, std::string& folder, std::string& name) {
  folder = PathFolder(path);
  if (folder.empty()) folder = "./";
  name = PathFileName(path);
  if (EndsWithIgnoreCase(name, ".dat")) name.resize(name.size() - 4);
}

bool OpenForOps(Context& ctx, const std::string& path) {
  Session& s = ctx.session;
  if (!ProjectFileExists(s, path)) return false;
  s.MergeActive = 0;
  bool failed = false;
  return OpenProject(s, path, failed, nullptr, CacheFileName);
}

nlohmann::json Summary(const Session& s, bool saved) {
  return {{"failed", false},
          {"path", JPath(s.project.ProjectPath)},
          {"title", J(s.project.Header.Title)},
          {"records", s.project.Header.RecordCount},
          {"categories", s.project.Header.CategoryCount},
          {"saved", saved}};
}

int Finish(Context& ctx, nlohmann::json body, bool save, const std::string& text) {
  bool saved = false;
  if (save) {
    saved = SaveCommand(ctx.session);
    if (!saved) return Fail(ctx);
  }
  body["saved"] = saved;
  if (ctx.json)
    ctx.PrintJson(body);
  else
    std::cout << text << (saved ? "" : " (not saved)") << "\n";
  return kExitOk;
}

int RunNew(Context& ctx, const OpsArgs& a) {
  Session& s = ctx.session;
  if (!NewProject(s, FromArg(a.title))) return Fail(ctx);
  std::string folder, name, path;
  SplitSavePath(a.project, folder, name);
  if (CheckSaveFileName(s, folder, name, path) != SaveNameCheck::Accepted) return Fail(ctx);
  AcceptSaveFileName(s, path);
  return Finish(ctx, Summary(s, false), !a.dryRun, "New project " + DisplayText(path));
}

int RunMerge(Context& ctx, const OpsArgs& a) {
  Session& s = ctx.session;
  if (!OpenForOps(ctx, a.project)) return Fail(ctx);
  const int32_t before = s.project.Header.RecordCount;
  if (!MergeProject(s, a.other, nullptr, CacheFileName)) return Fail(ctx);
  nlohmann::json body = Summary(s, false);
  body["added"] = s.project.Header.RecordCount - before;
  return Finish(ctx, body, !a.dryRun,
                "Merged " + std::to_string(s.project.Header.RecordCount - before) + " records; the project has " +
                    std::to_string(s.project.Header.RecordCount));
}

int RunSplit(Context& ctx, const OpsArgs& a) {
  Session& s = ctx.session;
  if (!OpenForOps(ctx, a.project)) return Fail(ctx);
  std::string folder, name, target;
  SplitSavePath(a.other, folder, name);
  if (CheckSaveFileName(s, folder, name, target) != SaveNameCheck::Accepted) return Fail(ctx);
  SplitResult r = SplitProject(s, a.first, a.last, target, !a.dryRun);
  if (!r.done) return Fail(ctx);
  const bool saved = !a.dryRun && s.project.Status.DataChanged == kFalse;
  if (!a.dryRun && !saved) return Fail(ctx);
  nlohmann::json body = Summary(s, saved);
  body["target"] = JPath(target);
  body["first"] = r.first;
  body["last"] = r.last;
  body["moved"] = r.moved;
  if (ctx.json)
    ctx.PrintJson(body);
  else
    std::cout << "Moved records " << r.first << " to " << r.last << " to " << DisplayText(target) << "; "
              << s.project.Header.RecordCount << " remain" << (saved ? "" : " (nothing written)") << "\n";
  return kExitOk;
}

int RunSort(Context& ctx, const OpsArgs& a) {
  Session& s = ctx.session;
  if (!OpenForOps(ctx, a.project)) return Fail(ctx);
  SortRequest request;
  request.key = a.by == "description" ? SortKey::Description : a.by == "sun" ? SortKey::Sun : SortKey::Date;
  request.descending = a.descending;
  request.fromFileMenu = a.dedupe;
  request.sunLongitude = [&s](const EventRecord& r) { return RecordSunLongitude(s, r); };
  SortResult r = SortProject(s, request);
  if (!r.done) return Fail(ctx);
  nlohmann::json body = Summary(s, false);
  body["moved"] = r.moved;
  body["duplicatesRemoved"] = r.duplicatesRemoved;
  return Finish(ctx, body, !a.dryRun,
                "Sorted " + std::to_string(s.project.Header.RecordCount) + " records by " + a.by + ", " +
                    std::to_string(r.duplicatesRemoved) + " duplicates removed");
}

int RunTitle(Context& ctx, const OpsArgs& a) {
  Session& s = ctx.session;
  if (!OpenForOps(ctx, a.project)) return Fail(ctx);
  const bool unchanged = FromArg(a.title) == s.project.Header.Title;
  bool failed = false;
  if (!EditProjectTitle(s, FromArg(a.title), failed, !a.dryRun) || failed) return Fail(ctx);
  const bool saved = !a.dryRun && !unchanged;
  nlohmann::json body = Summary(s, saved);
  if (ctx.json)
    ctx.PrintJson(body);
  else
    std::cout << "Title: " << ForTerminal(s.project.Header.Title) << (saved ? "" : " (not saved)") << "\n";
  return kExitOk;
}

int RunDelete(Context& ctx, const OpsArgs& a) {
  Session& s = ctx.session;
  std::vector<std::string> files = ProjectFamilyFiles(a.project);
  nlohmann::json list = nlohmann::json::array();
  for (const auto& f : files) list.push_back(JPath(f));
  if (files.empty()) {
    s.ShowMessage("No project files found for " + a.project, kIconExclamation, "Vintar");
    return Fail(ctx);
  }
  int deleted = 0;
  if (!a.dryRun) {
    // Deleting is never the default of a command line: --yes is required.
    if (!ctx.yes) {
      std::cerr << "Nothing deleted: add --yes to delete " << files.size() << " files\n";
      return kExitUsage;
    }
    deleted = DeleteProjectFiles(s, a.project);
    if (deleted < 0) return Fail(ctx);
  }
  if (ctx.json) {
    ctx.PrintJson({{"failed", false}, {"files", list}, {"deleted", deleted}});
  } else {
    for (const auto& f : files) std::cout << (a.dryRun ? "would delete " : "deleted ") << DisplayText(f) << "\n";
  }
  return kExitOk;
}

}  // namespace

void AddProjectOpsCommands(CLI::App& project, Context& ctx, Action& action) {
  auto add = [&](const char* name, const char* help, int (*run)(Context&, const OpsArgs&)) {
    auto args = std::make_shared<OpsArgs>();
    auto* sub = project.add_subcommand(name, help);
    sub->add_flag("--dry-run", args->dryRun, "Change nothing on disk");
    sub->callback([&ctx, &action, args, run] { action = [&ctx, args, run] { return run(ctx, *args); }; });
    return std::make_pair(sub, args);
  };

  auto [newCmd, newArgs] = add("new", "Start a project with a title and save it", RunNew);
  newCmd->add_option("path", newArgs->project, "The project's .dat file")->required();
  newCmd->add_option("--title", newArgs->title, "The project's title")->required();

  auto [merge, mergeArgs] = add("merge", "Add another project's records to a project", RunMerge);
  merge->add_option("project", mergeArgs->project, "The project's .dat file")->required();
  merge->add_option("other", mergeArgs->other, "The .dat file to merge into it")->required();

  auto [split, splitArgs] = add("split", "Move a range of records to a new version 1 .dat", RunSplit);
  split->add_option("project", splitArgs->project, "The project's .dat file")->required();
  split->add_option("--first", splitArgs->first, "First record to move")->required();
  split->add_option("--last", splitArgs->last, "Last record to move")->required();
  split->add_option("--to", splitArgs->other, "The .dat file to write the records to")->required();

  auto [sort, sortArgs] = add("sort", "Sort a project's records", RunSort);
  sort->add_option("project", sortArgs->project, "The project's .dat file")->required();
  sort->add_option("--by", sortArgs->by, "date, description or sun")
      ->check(CLI::IsMember({"date", "description", "sun"}));
  sort->add_flag("--descending", sortArgs->descending, "Largest first");
  sort->add_flag("--dedupe", sortArgs->dedupe, "Remove adjacent duplicate records, as the File menu's sort does");

  auto [title, titleArgs] = add("title", "Change a project's title", RunTitle);
  title->add_option("project", titleArgs->project, "The project's .dat file")->required();
  title->add_option("title", titleArgs->title, "The new title")->required();

  auto [del, delArgs] = add("delete", "Delete a project and every file named after it (needs --yes)", RunDelete);
  del->add_option("path", delArgs->project, "The project's .dat file")->required();
}

}  // namespace vintar::cli
