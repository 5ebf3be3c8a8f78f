// `vintar report NAME PROJECT.dat [options] --out FILE.pdf [--subtitle S]
// [--also-records]`: a printed report as an A4 PDF, made as its screen
// would make it and then printed on the report frame.
//
//   data            the record list (--kind all|enabled|disabled)
//   angles          the angle search of `rectify angles` (--from, --to, --pair)
//   graphs          the three event graphs of `rectify graphs`
//   dynamic         the dynamic search of `rectify search` (--time, --type,
//                   --from, --to, --options); --time defaults to the natal time
//   viability       the viability report
//   auto            Auto Rectify (--threads)
//   search-results  a criteria search, its criteria as `research criteria`
//                   takes them (--criteria FILE.vcr or ordered --test/--pair
//                   words), --passed-only
//   tabulation, bar, polar
//                   a tabulation as `research tabulate` takes it; the graphs
//                   show one column (--column N, the last being all points)
//
// With --json: {"report": NAME, "out": FILE, "pages": N}. A report that
// cannot be made ends with the program's message and exit code 1.
#include <iostream>
#include <memory>

#include "calc/chart.h"
#include "cli/commands.h"
#include "cli/output/gui_app.h"
#include "cli/rectify_options.h"
#include "cli/research_options.h"
#include "core/parse.h"
#include "core/project_file.h"
#include "output/rectify_reports.h"
#include "output/report_page.h"
#include "output/research_reports.h"
#include "rectify/auto_rectify.h"
#include "rectify/rectification.h"
#include "rectify/search.h"
#include "research/results.h"

namespace vintar::cli {
namespace {

struct ReportArgs {
  std::string project, out, subtitle;
  bool alsoRecords = false;
};

void AddOutputOptions(CLI::App* cmd, ReportArgs& a) {
  cmd->add_option("--out", a.out, "The PDF file to write")->required();
  cmd->add_option("--subtitle", a.subtitle, "The subtitle under the project's title");
  cmd->add_flag("--also-records", a.alsoRecords, "Also print the list of enabled records after the report");
}

void AddProjectAndOutput(CLI::App* cmd, ReportArgs& a) {
  cmd->add_option("project", a.project, "The project (.dat)")->required();
  AddOutputOptions(cmd, a);
}

int Fail(Context& ctx) {
  if (ctx.json) ctx.PrintJson({{"failed", true}});
  return kExitFailed;
}

// A report goes only to a .pdf, and never over the project it reads.
bool CheckOut(Context& ctx, const ReportArgs& a) {
  if (!EqualsIgnoreCase(PathExtension(a.out), ".pdf") || SamePath(a.out, a.project)) {
    ctx.session.ShowMessage("Reports are saved as PDF files: give --out a new file name ending in .pdf.",
                            kIconExclamation, "Save as PDF");
    return false;
  }
  return true;
}

// Writes the report, then says where, with its page count.
int WritePdf(Context& ctx, const std::string& name, const ReportArgs& a, ReportOptions options,
             const ReportBuilder& build) {
  Session& s = ctx.session;
  EnsureGuiApplication();
  options.SubTitle = options.SubTitle.empty() ? FromArg(a.subtitle) : options.SubTitle;
  options.AlsoEnabledRecords = a.alsoRecords;
  int pages = 0;
  std::string error;
  const bool saved = SaveReportPdf(
      s, a.out,
      [&](ReportDocument& doc) {
        BuildReport(doc, s, build, options);
        pages = doc.SheetCount();
      },
      &error);
  if (!saved) {
    s.ShowMessage(error, kIconExclamation, "Save as PDF");
    return Fail(ctx);
  }
  if (ctx.json)
    ctx.PrintJson({{"report", name}, {"out", JPath(a.out)}, {"pages", pages}});
  else
    std::cout << "Saved " << DisplayText(a.out) << " (" << pages << (pages == 1 ? " page" : " pages") << ")\n";
  return kExitOk;
}

// Opens the project after the output's check: kExitOk, or the exit code
// after the failure's JSON.
int Open(Context& ctx, const ReportArgs& a) {
  if (!CheckOut(ctx, a)) return Fail(ctx);
  return OpenProjectForCommand(ctx, a.project) ? kExitOk : kExitFailed;
}

// ---------------------------------------------------------------- records

int RunData(Context& ctx, const ReportArgs& a, const std::string& kindName) {
  if (int code = Open(ctx, a); code != kExitOk) return code;
  const int kind = EqualsIgnoreCase(kindName, "enabled") ? kEnabledRecords
                   : EqualsIgnoreCase(kindName, "disabled") ? kDisabledRecords
                                                             : kAllRecords;
  ReportOptions options;
  // The record list's own subtitle when none is given.
  options.SubTitle = a.subtitle.empty() ? RecordListSubTitle(kind) : FromArg(a.subtitle);
  Session& s = ctx.session;
  return WritePdf(ctx, "data", a, options,
                  [&s, kind](ReportDocument& doc, const ReportOptions& o) { DataReport(doc, s, kind, o); });
}

// ---------------------------------------------------------------- rectification

struct RectifyArgs {
  ReportArgs report;
  std::vector<int> pair{1, 2};
  std::string from, to, time, options;
  int type = 0;
  int threads = 0;
};

// The three graphs from the project's settings, as `rectify graphs` builds them.
bool PrepareGraphs(Context& ctx, Rectification& r) {
  Session& s = ctx.session;
  if (ProjectTooLarge(s)) return false;
  LoadGraphSettings(s, r.graphs);
  TerminalProgress progress(ctx);
  bool cancelled = false;
  BuildGraphs(s, r.graphs, cancelled, &progress);
  return !cancelled;
}

int RunGraphs(Context& ctx, const RectifyArgs& a) {
  if (int code = Open(ctx, a.report); code != kExitOk) return code;
  auto r = std::make_shared<Rectification>();
  if (!PrepareGraphs(ctx, *r)) return Fail(ctx);
  Session& s = ctx.session;
  return WritePdf(ctx, "graphs", a.report, {}, [&s, r](ReportDocument& doc, const ReportOptions& o) {
    RectificationGraphsReport(doc, s, *r, o);
  });
}

int RunAngles(Context& ctx, const RectifyArgs& a) {
  if (a.pair.size() != 2 || a.pair[0] == a.pair[1]) {
    std::cerr << "--pair needs two different graphs\n";
    return kExitUsage;
  }
  if (int code = Open(ctx, a.report); code != kExitOk) return code;
  auto r = std::make_shared<Rectification>();
  if (!PrepareGraphs(ctx, *r)) return Fail(ctx);
  Session& s = ctx.session;
  // The peaks of `rectify peaks`: each graph's own, merged for the pair.
  std::array<PeakList, kShownGraphs + 1> lists;
  PeakList common;
  int harmonic = 0;
  for (int g = 1; g <= kShownGraphs; ++g) AutoSelectPeaks(s, r->graphs, g);
  CombineGraphPeaks(s, r->graphs, a.pair[0], a.pair[1], lists, common, harmonic);
  r->peaks.Common = common;
  r->peaks.CommonHarmonic = static_cast<int16_t>(harmonic);
  ReportOptions options;
  options.TimeFrom = a.from.empty() ? s.project.Header.EarliestTime : FromArg(a.from);
  options.TimeTo = a.to.empty() ? s.project.Header.LatestTime : FromArg(a.to);
  TerminalProgress progress(ctx);
  progress.Caption("Searching For Angles...");
  if (!SearchAngles(s, r->graphs, 0, harmonic, common, options.TimeFrom, options.TimeTo, r->peaks.Results, false,
                    &progress))
    return Fail(ctx);
  return WritePdf(ctx, "angles", a.report, options, [&s, r](ReportDocument& doc, const ReportOptions& o) {
    AngleSearchReport(doc, s, *r, o);
  });
}

int RunDynamic(Context& ctx, const RectifyArgs& a) {
  if (int code = Open(ctx, a.report); code != kExitOk) return code;
  Session& s = ctx.session;
  const ProjectHeader& h = s.project.Header;
  std::string time = FromArg(a.time);
  if (time.empty()) {
    int16_t hours = 0, minutes = 0, seconds = 0;
    bool failed = false;
    ParseTime(s, h.Time, hours, minutes, seconds, false, failed);
    if (failed) {
      s.ShowMessage("The natal time of this project is \"" + h.Time +
                        "\": give the trial birth time of the search with --time.",
                    kIconExclamation, "No Chart Time");
      return Fail(ctx);
    }
    time = FormatTime(hours, minutes, seconds, s.prefs.AMPM != 0);
  }
  auto r = std::make_shared<Rectification>();
  DynamicSearchRun run;
  run.Type = a.type;
  run.Time = time;
  run.OptionsFile = a.options;
  run.From = FromArg(a.from);
  run.To = FromArg(a.to);
  if (!RunDynamicSearchCommand(ctx, r->search, run)) return Fail(ctx);
  ReportOptions options;
  options.ChartTime = time;
  return WritePdf(ctx, "dynamic", a.report, options, [&s, r](ReportDocument& doc, const ReportOptions& o) {
    DynamicSearchReport(doc, s, *r, o);
  });
}

int RunViability(Context& ctx, const RectifyArgs& a) {
  if (int code = Open(ctx, a.report); code != kExitOk) return code;
  Session& s = ctx.session;
  return WritePdf(ctx, "viability", a.report, {},
                  [&s](ReportDocument& doc, const ReportOptions& o) { ViabilityReport(doc, s, o); });
}

int RunAuto(Context& ctx, const RectifyArgs& a) {
  if (int code = Open(ctx, a.report); code != kExitOk) return code;
  Session& s = ctx.session;
  Rectification rect;
  LoadGraphSettings(s, rect.graphs);
  TerminalProgress progress(ctx);
  progress.Caption("Auto Rectify");
  AutoRectifyOptions options;
  options.Threads = a.threads;
  auto result = std::make_shared<AutoRectifyResult>(RunAutoRectify(s, rect, kAutoFromEvents, &progress, options));
  if (!result->Finished) return Fail(ctx);
  return WritePdf(ctx, "auto", a.report, {}, [&s, result](ReportDocument& doc, const ReportOptions& o) {
    AutoRectifyReport(doc, s, *result, o);
  });
}

// ---------------------------------------------------------------- research

struct CriteriaReportArgs {
  ReportArgs report;
  std::string criteriaFile;
  bool passedOnly = false;
  std::vector<std::string> words;
};

int RunSearchResults(Context& ctx, CriteriaReportArgs& a) {
  Session& s = ctx.session;
  std::vector<OrderedTerm> terms;
  if (!ParseOrderedTerms(ctx, a.words, {"--test", "--pair"}, a.report.project, terms)) return Fail(ctx);
  if (int code = Open(ctx, a.report); code != kExitOk) return code;
  ResearchState state;
  CriteriaList list;
  if (!ComposeCriteria(ctx, state, a.criteriaFile, terms, list)) return Fail(ctx);
  auto lines = std::make_shared<std::vector<std::string>>(CriteriaLines(s, state, list));
  TerminalProgress progress(ctx);
  CriteriaRun run = RunSearch(s, state, list, &progress);
  if (run.Failed || run.Cancelled) return Fail(ctx);
  auto passed = std::make_shared<std::vector<int16_t>>(run.PassedFlags);
  const bool all = !a.passedOnly;
  return WritePdf(ctx, "search-results", a.report, {},
                  [&s, lines, passed, all](ReportDocument& doc, const ReportOptions& o) {
                    SearchResultsReport(doc, s, *lines, *passed, all, o);
                  });
}

struct TabReportArgs {
  ReportArgs report;
  TabArgs tab;
  int column = 1;
};

int RunTabulation(Context& ctx, TabReportArgs& a, const std::string& name, int display) {
  Session& s = ctx.session;
  a.report.project = a.tab.project;
  if (int code = Open(ctx, a.report); code != kExitOk) return code;
  ResearchState state;
  TabulateParams p;
  if (!TabParams(ctx, a.tab, state, p)) return Fail(ctx);
  TerminalProgress progress(ctx);
  auto run = std::make_shared<TabulationRun>(TabulateRun(s, state, p, &progress));
  if (run->Failed || run->Cancelled) return Fail(ctx);
  if (display != kTabulationDisplay && (a.column < 1 || a.column > run->ColumnCount + 1)) {
    s.ShowMessage("There is no column " + std::to_string(a.column) + ": the tabulation has " +
                      std::to_string(run->ColumnCount) + " column" + (run->ColumnCount == 1 ? "" : "s") +
                      " and their total, column " + std::to_string(run->ColumnCount + 1) + ".",
                  kIconExclamation, "No Such Column");
    return Fail(ctx);
  }
  const int column = a.column, style = a.tab.style;
  return WritePdf(ctx, name, a.report, {},
                  [&s, run, display, column, style](ReportDocument& doc, const ReportOptions& o) {
                    ResearchResultsReport(doc, s, *run, display, column, style, o);
                  });
}

}  // namespace

void AddReportCommands(CLI::App& app, Context& ctx, Action& action) {
  auto* report = app.add_subcommand("report", "A printed report to PDF");
  // An unknown name is left over as an unexpected word, which the parser
  // names; no name at all lists them.
  report->callback([report, &action] {
    if (!report->get_subcommands().empty()) return;
    action = [report] {
      std::string names;
      for (CLI::App* sub : report->get_subcommands([](CLI::App*) { return true; }))
        names += (names.empty() ? "" : ", ") + sub->get_name();
      std::cerr << "Name the report: " << names << ".\n";
      return kExitUsage;
    };
  });

  auto data = std::make_shared<ReportArgs>();
  auto kind = std::make_shared<std::string>("all");
  auto* dataCmd = report->add_subcommand("data", "The list of records (\"Data Report\")");
  AddProjectAndOutput(dataCmd, *data);
  dataCmd->add_option("--kind", *kind, "all, enabled or disabled records")
      ->check(CLI::IsMember({"all", "enabled", "disabled"}, CLI::ignore_case));
  dataCmd->callback([&ctx, &action, data, kind] { action = [&ctx, data, kind] { return RunData(ctx, *data, *kind); }; });

  // The rectification reports share one set of arguments; each takes the
  // options of the command whose work it prints.
  using Runner = int (*)(Context&, const RectifyArgs&);
  auto rectify = [&](const char* name, const char* help, Runner run) {
    auto a = std::make_shared<RectifyArgs>();
    auto* cmd = report->add_subcommand(name, help);
    AddProjectAndOutput(cmd, a->report);
    cmd->callback([&ctx, &action, a, run] { action = [&ctx, a, run] { return run(ctx, *a); }; });
    return std::make_pair(cmd, a);
  };
  auto [angles, anglesArgs] =
      rectify("angles", "The angle search (\"Angle Search Report\"), as `rectify angles` runs it", RunAngles);
  angles->add_option("--from", anglesArgs->from, "Earliest birth time (default: the project's earliest time)");
  angles->add_option("--to", anglesArgs->to, "Latest birth time (default: the project's latest time)");
  angles->add_option("--pair", anglesArgs->pair, "The two graphs whose peaks are merged (default 1,2)")
      ->expected(2)
      ->delimiter(',')
      ->check(CLI::Range(1, kShownGraphs));
  rectify("graphs", "The three event graphs (\"Rectification Graphs\")", RunGraphs);
  auto [dynamic, dynamicArgs] =
      rectify("dynamic", "A dynamic search (\"Dynamic Search Report\"), as `rectify search` runs it", RunDynamic);
  dynamic->add_option("--time", dynamicArgs->time, "Trial birth time, local (default: the natal time)");
  dynamic->add_option("--type", dynamicArgs->type, "0 transits, 1 secondary, 2 tertiary, 3 solar arc")
      ->check(CLI::Range(0, 3));
  dynamic->add_option("--from", dynamicArgs->from, "Start of the search (default: two years before the first event)");
  dynamic->add_option("--to", dynamicArgs->to, "End of the search (default: two years after the last event)");
  dynamic->add_option("--options", dynamicArgs->options,
                      "Options file (default: dynopts.fil, else the shipped defopts.fil)");
  rectify("viability", "The rectification viability report", RunViability);
  auto [autoCmd, autoArgs] = rectify("auto", "Auto Rectify (\"Auto Rectify Report\")", RunAuto);
  autoCmd->add_option("--threads", autoArgs->threads, "Threads for the candidates' searches (0: one per core)")
      ->check(CLI::Range(0, 256));

  auto criteria = std::make_shared<CriteriaReportArgs>();
  auto* search = report->add_subcommand("search-results", "A criteria search (\"Search Results Report\")");
  search->allow_extras();
  search->fallthrough(false);
  AddOutputOptions(search, criteria->report);
  search->add_option("--criteria", criteria->criteriaFile, "A criteria list (.vcr) instead of tests");
  search->add_flag("--passed-only", criteria->passedOnly, "List only the passed records (else all, passed in bold)");
  search->footer("PROJECT.dat and the tests in order, as `vintar research criteria` takes them.");
  search->callback([&ctx, &action, criteria, search] {
    criteria->words = search->remaining();
    NoteGlobalFlags(ctx, criteria->words);
    action = [&ctx, criteria] { return RunSearchResults(ctx, *criteria); };
  });

  struct Tabulated {
    const char* name;
    const char* help;
    int display;
  };
  for (const Tabulated& t : {Tabulated{"tabulation", "A tabulation's table (\"Research Tabulation\")", kTabulationDisplay},
                             Tabulated{"bar", "A tabulation's bar graph (\"Research Bar Graph\")", kBarGraph},
                             Tabulated{"polar", "A tabulation's polar graph (\"Research Polar Graph\")", kPolarGraph}}) {
    auto a = std::make_shared<TabReportArgs>();
    auto* cmd = report->add_subcommand(t.name, t.help);
    AddTabOptions(cmd, a->tab);
    AddOutputOptions(cmd, a->report);
    if (t.display != kTabulationDisplay)
      cmd->add_option("--column", a->column, "The column to draw, from 1; the last is all points (default 1)");
    const std::string name = t.name;
    const int display = t.display;
    cmd->callback([&ctx, &action, a, name, display] {
      action = [&ctx, a, name, display] { return RunTabulation(ctx, *a, name, display); };
    });
  }

  AddGroupReportCommands(*report, ctx, action);
}

}  // namespace vintar::cli
