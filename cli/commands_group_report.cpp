// `vintar group report PROJECT.dat --type family --out REPORT.rtf`: the
// automatic group report.
#include <cstdlib>
#include <iostream>
#include <memory>

#include "cli/commands.h"
#include "cli/group_options.h"
#include "core/preferences.h"
#include "core/project_ops.h"
#include "groups/group_report.h"

namespace vintar::cli {

namespace {

// With --match K the report describes match K of the search that the
// search options ask for; otherwise it runs its own searches.
struct ReportArgs : GroupSearchArgs {
  std::string type = "family";
  std::string out;
  std::string user;
  bool open = false;
};

int RunReport(Context& ctx, const ReportArgs& a) {
  const int type = GroupTypeByName(a.type);
  if (type < 0) {
    std::cerr << "--type is one of family, hunt, gather, play, tribe, other\n";
    return kExitUsage;
  }
  if (!a.out.empty() && !EqualsIgnoreCase(PathExtension(a.out), ".rtf")) {
    std::cerr << "--out takes an .rtf file\n";
    return kExitUsage;
  }
  GroupSearchState state;
  if (a.match > 0) {
    GroupSearchParams p;
    int code = kExitOk;
    if (!RunGroupSearchArgs(ctx, a, state, p, code)) return code;
  } else if (!OpenProjectForCommand(ctx, a.project)) {
    return kExitFailed;
  }
  Session& s = ctx.session;
  if (!CheckReportRecordCount(s)) return kExitFailed;
  GroupReportOptions options;
  options.GroupType = type;
  options.SelectedMatch = a.match;
  options.Path = a.out;
  options.UserName = a.user.empty() ? Trim(GetPreferenceText(s, "UserName", "")) : FromArg(a.user);
  if (options.UserName.empty()) {
    const char* login = std::getenv("USER");
    options.UserName = login ? login : "Vintar User";
  }
  options.OpenWordProcessor = a.open;
  if (a.open) options.Launch = SystemNotepadHooks().launch;
  TerminalProgress progress(ctx);
  const GroupReportOutcome outcome = WriteGroupReport(s, state, options, &progress);
  const char* result = "failed";
  int code = kExitFailed;
  switch (outcome.Result) {
    case GroupReportResult::Written:
      result = "written", code = kExitOk;
      break;
    case GroupReportResult::Declined:
      result = "declined";
      break;
    case GroupReportResult::Stopped:
      result = "stopped";
      break;
    case GroupReportResult::NoFile:
      result = "no-file";
      s.ShowMessage("The interpretation files (general.int and " + std::string(GroupTypes()[type].File) +
                        ") or the position file of the project could not be read.",
                    kIconStop, "Cannot Write Report");
      break;
    case GroupReportResult::Failed:
      break;
  }
  if (ctx.json) {
    ctx.PrintJson({{"result", result},
                   {"out", JPath(outcome.Path)},
                   {"type", J(GroupTypes()[type].Title)},
                   {"rolePatterns", outcome.RolePatterns},
                   {"groupPatterns", outcome.GroupPatterns},
                   {"status", J(outcome.StepLine)}});
  } else if (code == kExitOk) {
    std::cout << "Wrote the " << GroupTypes()[type].Title << " report to " << DisplayText(outcome.Path);
    if (a.match > 0)
      std::cout << " (match " << a.match << ")\n";
    else
      std::cout << " (" << outcome.RolePatterns << " role patterns, " << outcome.GroupPatterns << " group patterns)\n";
  }
  return code;
}

}  // namespace

void AddGroupReportCommand(CLI::App& group, Context& ctx, Action& action) {
  auto a = std::make_shared<ReportArgs>();
  auto* cmd = group.add_subcommand("report", "Write the automatic group report (RTF)");
  AddGroupSearchOptions(cmd, *a);
  cmd->add_option("--type", a->type, "Group type: family, hunt, gather, play, tribe or other (default family)");
  cmd->add_option("--out", a->out, "The RTF document (default GroupRep.rtf in the user data folder)");
  cmd->add_option("--user", a->user, "The name after \"Report produced by\" (default the UserName preference)");
  cmd->add_flag("--open", a->open, "Open the report in the word processor afterwards");
  cmd->callback([&ctx, &action, a] { action = [&ctx, a] { return RunReport(ctx, *a); }; });
}

}  // namespace vintar::cli
