// `vintar report group-search|group-display PROJECT.dat ... --out FILE.pdf`:
// the printed reports of the family and group analysis.
//
//   group-search   runs the pattern search (--harmonics A..B, --points,
//                  --orb, --position, --min, --same-point) and prints its
//                  parameters and matches; --match K also prints the charts
//                  of match K.
//   group-display  prints the charts as strips in --harmonic H (--records,
//                  --points, --midpoints-of, --highlight as for `group strips`).
//
// JSON: the PDF written, its pages, and the matches or strips printed.
#include <cstdlib>
#include <iostream>
#include <memory>

#include "cli/commands.h"
#include "cli/group_options.h"
#include "cli/output/gui_app.h"
#include "core/parse.h"
#include "groups/group_search.h"
#include "groups/strips.h"
#include "output/drawing.h"
#include "output/group_reports.h"

namespace vintar::cli {
namespace {

struct SearchReportArgs : GroupSearchArgs {
  std::string subtitle;
  std::string out;
};

struct DisplayReportArgs {
  std::string project;
  StripRequest request;
  std::string subtitle;
  std::string out;
};

int Usage(const std::string& text) {
  std::cerr << text << "\n";
  return kExitUsage;
}

int Fail(Context& ctx) {
  if (ctx.json) ctx.PrintJson({{"failed", true}});
  return kExitFailed;
}

// Writes the PDF; false after the message.
bool WritePdf(Context& ctx, const std::string& out, const std::function<void(ReportDocument&)>& build,
              int& pages) {
  EnsureGuiApplication();
  std::string error;
  pages = 0;
  if (SaveReportPdf(
          ctx.session, out,
          [&](ReportDocument& doc) {
            build(doc);
            pages = doc.SheetCount();
          },
          &error))
    return true;
  ctx.session.ShowMessage("Error occured during printing:\n\n" + error, kIconStop, "Printing Error");
  return false;
}

int RunSearchReport(Context& ctx, const SearchReportArgs& a) {
  if (DrawingFormatOf(a.out) != DrawingFormat::Pdf) return Usage("--out takes a .pdf file");
  GroupSearchState state;
  GroupSearchParams p;
  int code = kExitOk;
  if (!RunGroupSearchArgs(ctx, a, state, p, code)) return code;
  Session& s = ctx.session;
  ReportOptions options;
  options.SubTitle = FromArg(a.subtitle);
  int pages = 0;
  if (!WritePdf(ctx, a.out, [&](ReportDocument& doc) { GroupSearchReport(doc, s, state, p, a.match, options); },
                pages))
    return Fail(ctx);
  if (ctx.json) {
    nlohmann::json lines = nlohmann::json::array();
    for (const std::string& line : state.MatchesList) lines.push_back(J(line));
    nlohmann::json detail = nlohmann::json::array();
    for (const std::string& line : state.SecondaryList) detail.push_back(J(line));
    ctx.PrintJson({{"report", "group-search"},
                   {"out", JPath(a.out)},
                   {"pages", pages},
                   {"charts", state.SearchCharts.size()},
                   {"matches", lines},
                   {"selected", a.match},
                   {"detail", detail},
                   {"status", J(state.Status)}});
  } else {
    std::cout << "Wrote " << DisplayText(a.out) << " (" << pages << (pages == 1 ? " page" : " pages") << "): "
              << state.MatchCount << " matches in " << state.SearchCharts.size() << " charts\n";
  }
  return kExitOk;
}

int RunDisplayReport(Context& ctx, const DisplayReportArgs& a) {
  if (DrawingFormatOf(a.out) != DrawingFormat::Pdf) return Usage("--out takes a .pdf file");
  if (!OpenProjectForCommand(ctx, a.project)) return kExitFailed;
  Session& s = ctx.session;
  StripTable table;
  if (const int code = StripsForCommand(ctx, a.request, table); code != kExitOk) return code;
  ReportOptions options;
  options.SubTitle = FromArg(a.subtitle);
  int pages = 0;
  if (!WritePdf(ctx, a.out, [&](ReportDocument& doc) { GroupDisplayReport(doc, s, table, options); }, pages))
    return Fail(ctx);
  if (ctx.json) {
    nlohmann::json strips = nlohmann::json::array();
    for (int strip = 1; strip <= table.LastUsed(); ++strip)
      strips.push_back({{"strip", strip}, {"record", table.StripRecord[strip]},
                        {"label", J(ChartLabel(s, table, strip))}});
    ctx.PrintJson({{"report", "group-display"},
                   {"out", JPath(a.out)},
                   {"pages", pages},
                   {"harmonic", table.PlotModulus},
                   {"strips", strips}});
  } else {
    std::cout << "Wrote " << DisplayText(a.out) << ": " << table.LastUsed()
              << (table.LastUsed() == 1 ? " strip" : " strips") << " in the "
              << FormatOrdinal(table.PlotModulus) << " harmonic\n";
  }
  return kExitOk;
}

}  // namespace

void AddGroupReportCommands(CLI::App& report, Context& ctx, Action& action) {
  auto a = std::make_shared<SearchReportArgs>();
  auto* search = report.add_subcommand("group-search", "Family/Group Search Report: a pattern search and its "
                                                       "matches");
  AddGroupSearchOptions(search, *a);
  search->add_option("--subtitle", a->subtitle, "The report's subtitle");
  search->add_option("--out", a->out, "The report: a .pdf file")->required();
  search->callback([&ctx, &action, a] { action = [&ctx, a] { return RunSearchReport(ctx, *a); }; });

  auto d = std::make_shared<DisplayReportArgs>();
  auto* display = report.add_subcommand("group-display", "Family/Group Display: the charts as strips");
  display->add_option("project", d->project, "PROJECT.dat")->required();
  AddStripOptions(display, d->request);
  display->add_option("--subtitle", d->subtitle, "The report's subtitle");
  display->add_option("--out", d->out, "The report: a .pdf file")->required();
  display->callback([&ctx, &action, d] { action = [&ctx, d] { return RunDisplayReport(ctx, *d); }; });
}

}  // namespace vintar::cli
