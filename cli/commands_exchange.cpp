// `vintar import events|aaf` and `vintar export aaf`: projects made from an
// events list or from charts in the exchange format, and a project written
// out as such charts.
#include <iostream>
#include <memory>

#include "cli/commands.h"
#include "core/file_io.h"
#include "core/project_file.h"
#include "exchange/aaf.h"
#include "exchange/csv_import.h"
#include "exchange/events_list.h"
#include "exchange/import.h"
#include "exchange/place_lookup.h"
#include "exchange/send_chart.h"

namespace vintar::cli {
namespace {

struct Paths {
  std::string source, destination;
  std::string format;  // the CSV format's title or number
};

// The messages of a run, one entry per line of text, for the terminal.
void PrintText(const std::string& text) {
  std::string shown;
  for (char c : text)
    if (c != '\r') shown += c;
  std::cout << ForTerminal(shown) << "\n";
}

int ImportEvents(Context& ctx, const Paths& p) {
  Session& s = ctx.session;
  std::string text;
  const int e = ReadFileBytes(p.source, text, kMaxSmallFileBytes);
  if (e != 0) {
    s.ShowMessage("Error opening events file", kIconExclamation, "Import Simple Events List");
    if (ctx.json) ctx.PrintJson({{"failed", true}});
    return kExitFailed;
  }
  EventPlaceFinder finder(s);
  EventsListResult r;
  {  // the bar ends before the summary is printed
    TerminalProgress progress(ctx);
    progress.Caption("Importing from " + PathFileName(p.source));
    r = ParseEventsList(s, text, finder.Lookup(), &progress);
  }
  if (r.Cancelled) {
    if (ctx.json) ctx.PrintJson({{"failed", true}});
    return kExitFailed;
  }
  std::string error;
  bool ok = r.Error == 0;
  if (!ok) s.ShowMessage(r.ErrorText, kIconExclamation, "Import Simple Events List");
  if (ok && !WriteImportedProject(s, p.destination, PathFileName(p.source), r.Records, error)) {
    s.ShowMessage(error, kIconExclamation, "Importing from " + PathFileName(p.source));
    ok = false;
  }
  if (ctx.json) {
    ctx.PrintJson({{"failed", !ok}, {"imported", ok ? r.Imported : 0}, {"report", J(r.Message)},
                   {"project", JPath(p.destination)}});
  } else if (ok) {
    PrintText("Imported " + std::to_string(r.Imported) + " events." + (r.Message.empty() ? "" : "\n\n" + r.Message));
  }
  return ok ? kExitOk : kExitFailed;
}

int ImportCharts(Context& ctx, const Paths& p) {
  Session& s = ctx.session;
  AafReadResult read;
  std::string error;
  bool ok = false;
  {  // the bar ends before the summary is printed
    TerminalProgress progress(ctx);
    progress.Caption("Importing from " + PathFileName(p.source));
    ok = ImportAaf(s, p.source, p.destination, read, error, &progress);
  }
  if (!ok && !read.Cancelled) s.ShowMessage(error, kIconExclamation, "Import Data");
  if (ctx.json) {
    nlohmann::json skipped = nlohmann::json::array();
    for (const std::string& line : read.Skipped) skipped.push_back(J(line));
    ctx.PrintJson({{"failed", !ok}, {"imported", ok ? read.Charts.size() : 0}, {"skipped", skipped},
                   {"project", JPath(p.destination)}});
  } else if (ok) {
    std::cout << "Imported " << read.Charts.size() << " charts.\n";
    for (const std::string& line : read.Skipped) std::cout << "Skipped: " << ForTerminal(line) << "\n";
  }
  return ok ? kExitOk : kExitFailed;
}

int ImportRows(Context& ctx, const Paths& p) {
  Session& s = ctx.session;
  const std::vector<CsvFormat> formats = LoadCsvFormats(s);
  const CsvFormat* format = nullptr;
  for (size_t i = 0; i < formats.size(); ++i)
    if (EqualsIgnoreCase(formats[i].Title, p.format) || std::to_string(i + 1) == p.format) format = &formats[i];
  if (!format) {
    std::string known;
    for (size_t i = 0; i < formats.size(); ++i) known += "\n  " + std::to_string(i + 1) + ": " + formats[i].Title;
    s.ShowMessage(formats.empty() ? std::string(kNoAsciiFormats) : "No format \"" + p.format + "\". The formats are:" + known,
                  kIconExclamation, "Import Data");
    if (ctx.json) ctx.PrintJson({{"failed", true}});
    return kExitFailed;
  }
  CsvImportResult read;
  std::string error;
  bool ok = false;
  {  // the bar ends before the summary is printed
    TerminalProgress progress(ctx);
    progress.Caption("Importing from " + PathFileName(p.source));
    ok = ImportCsv(s, p.source, p.destination, *format, read, error, &progress);
  }
  if (!ok && !read.Cancelled) s.ShowMessage(error, kIconExclamation, "Import Data");
  const size_t imported = read.Records.empty() ? 0 : read.Records.size() - 1;
  if (ctx.json) {
    nlohmann::json skipped = nlohmann::json::array();
    for (const std::string& line : read.Skipped) skipped.push_back(J(line));
    ctx.PrintJson({{"failed", !ok}, {"imported", ok ? imported : 0}, {"skipped", skipped},
                   {"project", JPath(p.destination)}});
  } else if (ok) {
    std::cout << "Imported " << imported << " records.\n";
    for (const std::string& line : read.Skipped) std::cout << "Skipped: " << ForTerminal(line) << "\n";
  }
  return ok ? kExitOk : kExitFailed;
}

int ExportCharts(Context& ctx, const Paths& p) {
  if (!OpenProjectForCommand(ctx, p.source)) return kExitFailed;
  const bool ok = ExportAafFile(ctx.session, p.destination);
  if (ctx.json)
    ctx.PrintJson({{"failed", !ok}, {"charts", ctx.session.project.Header.RecordCount + 1},
                   {"file", JPath(p.destination)}});
  else if (ok)
    std::cout << DisplayText(AafExportSummary(ctx.session, p.destination)) << "\n";
  return ok ? kExitOk : kExitFailed;
}

int SendChart(Context& ctx, const Paths& p) {
  if (!OpenProjectForCommand(ctx, p.source)) return kExitFailed;
  const std::string path = SendChartToSibling(ctx.session, p.destination.empty() ? DocumentsFolder() : p.destination);
  if (ctx.json) ctx.PrintJson({{"failed", path.empty()}, {"file", JPath(path)}});
  else if (!path.empty()) std::cout << DisplayText(path) << "\n";
  return path.empty() ? kExitFailed : kExitOk;
}

CLI::App* Add(CLI::App& parent, const char* name, const char* help, const char* source, const char* destination,
              Context& ctx, Action& action, int (*run)(Context&, const Paths&), std::shared_ptr<Paths> p = nullptr) {
  if (!p) p = std::make_shared<Paths>();
  auto* cmd = parent.add_subcommand(name, help);
  cmd->add_option("source", p->source, source)->required();
  cmd->add_option("destination", p->destination, destination)->required();
  cmd->callback([&ctx, &action, p, run] { action = [&ctx, p, run] { return run(ctx, *p); }; });
  return cmd;
}

}  // namespace

void AddExchangeCommands(CLI::App& app, Context& ctx, Action& action) {
  auto* import = app.add_subcommand("import", "Make a new project from an events list or a chart file");
  import->require_subcommand(1);
  Add(*import, "events", "Import a simple events list (text) into a new project", "The events list",
      "The new project's .dat file", ctx, action, ImportEvents);
  Add(*import, "aaf", "Import the charts of an AAF file into a new project", "The AAF file",
      "The new project's .dat file", ctx, action, ImportCharts);
  auto csv = std::make_shared<Paths>();
  Add(*import, "csv", "Import the rows of a delimited text file into a new project", "The text file",
      "The new project's .dat file", ctx, action, ImportRows, csv)
      ->add_option("--format", csv->format, "The format's title or number (see data/csvformats.txt)")
      ->required();
  auto* out = app.add_subcommand("export", "Write a project's natal chart and records to another format");
  out->require_subcommand(1);
  Add(*out, "aaf", "Write the natal chart and every record as AAF charts", "The project's .dat file",
      "The AAF file to write", ctx, action, ExportCharts);
  auto send = std::make_shared<Paths>();
  auto* sibling = out->add_subcommand("halcyra", "Send the project to the sibling charting program (as AAF in its "
                                                 "chart folder)");
  sibling->add_option("project", send->source, "The project's .dat file")->required();
  sibling->add_option("--documents", send->destination, "The documents folder (default: the user's)");
  sibling->callback([&ctx, &action, send] { action = [&ctx, send] { return SendChart(ctx, *send); }; });
}

}  // namespace vintar::cli
