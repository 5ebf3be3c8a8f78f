// The `vintar` command: the engine's jobs from a terminal or a script.
#include <iostream>

#include "calc/ephemeris.h"
#include "cli/commands.h"

int main(int argc, char** argv) {
  using namespace vintar::cli;
  CLI::App app{"Vintar: a research workbench for astrologers"};
  app.require_subcommand(1);
  app.fallthrough();
  Context ctx;
  app.add_flag("--json", ctx.json, "Machine-readable output (UTF-8 JSON on stdout)");
  app.add_flag("--yes", ctx.yes, "Answer Yes to questions");
  app.add_flag("--no", ctx.no, "Answer No to questions");
  app.add_option("--config-dir", ctx.configDir, "Folder of the preference file VINTAR2.INI");

  Action action;
  AddParseCommands(app, ctx, action);
  AddProjectCommands(app, ctx, action);
  AddPrefsCommands(app, ctx, action);
  AddChartCommands(app, ctx, action);
  AddRectifyCommands(app, ctx, action);
  AddPlaceCommands(app, ctx, action);
  AddExchangeCommands(app, ctx, action);
  AddAtlasCommands(app, ctx, action);
  AddRecordCommands(app, ctx, action);
  AddResearchCommands(app, ctx, action);
  AddGroupCommands(app, ctx, action);
  AddReportCommands(app, ctx, action);

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& e) {
    int code = app.exit(e);
    return code == 0 ? kExitOk : kExitUsage;
  }
  if (ctx.yes && ctx.no) {
    std::cerr << "--yes and --no exclude each other\n";
    return kExitUsage;
  }
  if (!action) return kExitUsage;
  ctx.Start();
  int code = action();
  vintar::CloseEphemeris();
  return code;
}
