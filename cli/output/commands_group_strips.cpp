// `vintar group strips PROJECT.dat --harmonic H --out FILE.png|svg|pdf`: up
// to ten charts as strips of the harmonic circle, saved as a picture.
//
//   --records 1,4,7       the charts, in strip order (default: the first ten
//                         enabled records without a range of days)
//   --points Sun,Moon     the points shown (default: every selectable one)
//   --midpoints-of NAME   each shown point as its midpoint with NAME
//   --highlight NAME      NAME drawn in its colour on every strip
//
// JSON: the picture, the harmonic and modulus, and per strip its record,
// label and the place (StripX) of each shown point on the modulus.
#include <iostream>
#include <memory>

#include "cli/commands.h"
#include "cli/group_options.h"
#include "cli/output/gui_app.h"
#include "core/parse.h"
#include "groups/strips.h"
#include "output/drawing.h"
#include "output/group_reports.h"
#include "output/group_strips.h"

namespace vintar::cli {
namespace {

struct StripArgs {
  std::string project;
  std::string out;
  StripRequest request;
};

int Fail(Context& ctx) {
  if (ctx.json) ctx.PrintJson({{"failed", true}});
  return kExitFailed;
}

nlohmann::json StripsJson(const Session& s, const StripTable& table) {
  nlohmann::json strips = nlohmann::json::array();
  for (int strip = 1; strip <= table.LastUsed(); ++strip) {
    nlohmann::json points = nlohmann::json::array();
    for (size_t i = 1; i < table.StripOrder[strip].size(); ++i) {
      const int p = table.StripOrder[strip][i];
      const double x = table.StripX[p][strip];
      points.push_back({{"point", p},
                        {"name", J(Trim(s.vocab.PointName[p]))},
                        {"x", x < 0 ? nlohmann::json(nullptr) : nlohmann::json(x)},
                        {"longitude", table.StripLongitude[p][strip] < 0 ? nlohmann::json(nullptr)
                                                                         : nlohmann::json(table.StripLongitude[p][strip])}});
    }
    strips.push_back({{"strip", strip},
                      {"record", table.StripRecord[strip]},
                      {"label", J(ChartLabel(s, table, strip))},
                      {"points", points}});
  }
  return strips;
}

int RunStrips(Context& ctx, const StripArgs& a) {
  if (DrawingFormatOf(a.out) == DrawingFormat::Unknown) {
    std::cerr << "--out takes a .png, .svg or .pdf file\n";
    return kExitUsage;
  }
  if (!OpenProjectForCommand(ctx, a.project)) return kExitFailed;
  Session& s = ctx.session;
  StripTable table;
  if (const int code = StripsForCommand(ctx, a.request, table); code != kExitOk) return code;

  EnsureGuiApplication();
  const std::string modulus = GroupDegMin(table.Modulus());
  const std::string title = FormatOrdinal(table.PlotModulus) + " Harmonic - Modulus " + modulus + " - " +
                            Trim(s.project.Header.Title);
  std::string error;
  if (!SaveStripsPicture(a.out, s, table, QString::fromLatin1(title.c_str()), &error)) {
    s.ShowMessage(error, kIconStop, "Chart Strips");
    return Fail(ctx);
  }
  if (ctx.json) {
    ctx.PrintJson({{"failed", false},
                   {"out", JPath(a.out)},
                   {"harmonic", table.PlotModulus},
                   {"modulus", table.Modulus()},
                   {"midpointsOf", table.MidpointPartner},
                   {"highlight", table.HighlightPoint},
                   {"strips", StripsJson(s, table)}});
    return kExitOk;
  }
  std::cout << "Wrote " << DisplayText(a.out) << ": " << table.LastUsed()
            << (table.LastUsed() == 1 ? " strip" : " strips") << " in the "
            << FormatOrdinal(table.PlotModulus) << " harmonic (modulus " << ForTerminal(modulus) << ")\n";
  for (int strip = 1; strip <= table.LastUsed(); ++strip) {
    std::string label = ChartLabel(s, table, strip);
    for (char& c : label)
      if (c == '\n') c = ' ';
    std::cout << "  " << ForTerminal(label) << "\n";
  }
  return kExitOk;
}

}  // namespace

void AddGroupStripsCommand(CLI::App& group, Context& ctx, Action& action) {
  auto a = std::make_shared<StripArgs>();
  auto* cmd = group.add_subcommand("strips", "The charts as strips in a harmonic, to PNG, SVG or PDF");
  cmd->add_option("project", a->project, "PROJECT.dat")->required();
  cmd->add_option("--out", a->out, "The picture: a .png, .svg or .pdf file")->required();
  AddStripOptions(cmd, a->request);
  cmd->callback([&ctx, &action, a] { action = [&ctx, a] { return RunStrips(ctx, *a); }; });
}

}  // namespace vintar::cli
