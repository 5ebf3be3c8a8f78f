// `vintar chart`, `vintar cache` and `vintar cache-dump`: one chart cast from
// typed values, and a project's position caches brought up to date and read.
#include <cstdio>
#include <iomanip>
#include <iostream>
#include <memory>
#include <sstream>

#include "calc/cache.h"
#include "calc/chart.h"
#include "cli/commands.h"
#include "core/parse.h"
#include "core/project_file.h"
#include "core/text.h"

namespace vintar::cli {
namespace {

struct ChartArgs {
  std::string date, time, zone, latitude, longitude;
  int houses = -1, zodiac = 0;
  std::string node;
};

int RunChart(Context& ctx, const ChartArgs& a) {
  Session& s = ctx.session;
  if (a.houses >= 0) s.prefs.Houses = static_cast<int16_t>(a.houses);
  if (a.zodiac > 0) s.prefs.Zodiac = static_cast<int16_t>(a.zodiac);
  if (!a.node.empty()) s.prefs.TrueNode = a.node == "true" ? kTrue : kFalse;
  const int slot = 1;
  if (!CalcChart(s, slot, FromArg(a.date), FromArg(a.time), FromArg(a.zone), FromArg(a.longitude),
                 FromArg(a.latitude))) {
    if (ctx.json) ctx.PrintJson({{"failed", true}});
    return kExitFailed;
  }
  const ChartTables& c = s.charts;
  const ChartSlot& cs = c.Slots[slot];
  // The Earth exists only in the heliocentric frame; every other point is
  // shown geocentric.
  auto frame = [](int point) { return point == kEarth ? kHeliocentric : kGeocentric; };

  if (ctx.json) {
    nlohmann::json points = nlohmann::json::array();
    for (int p = 1; p <= kPoints; ++p) {
      int f = frame(p);
      points.push_back({{"point", p},
                        {"name", J(s.vocab.PointName[p])},
                        {"longitude", c.Longitude[f][slot][p]},
                        {"latitude", c.Latitude[f][slot][p]},
                        {"speed", c.LongSpeed[f][slot][p]},
                        {"retrograde", c.Retrograde[slot][p] != 0}});
    }
    nlohmann::json cusps = nlohmann::json::array();
    for (int i = 1; i <= 12; ++i) cusps.push_back(cs.Cusps[i]);
    ctx.PrintJson({{"failed", false},
                   {"jd", cs.ChartJD},
                   {"t", cs.T},
                   {"ramc", cs.Ramc},
                   {"obliquity", cs.Obliquity},
                   {"siderealOffset", cs.SiderealOffset},
                   {"zodiac", J(s.vocab.ZodiacName[s.prefs.Zodiac - 1])},
                   {"nodePoint", s.prefs.NodePoint()},
                   {"points", points},
                   {"cusps", cusps},
                   {"houseSystem", cs.ChartHouseSystem},
                   {"houseSystemName", J(s.vocab.HouseSystemName[cs.ChartHouseSystem])}});
    return kExitOk;
  }

  std::cout << std::fixed << std::setprecision(6) << "Julian day       " << cs.ChartJD << "\n"
            << "T                " << std::setprecision(9) << cs.T << "\n"
            << std::setprecision(6) << "RAMC             " << cs.Ramc << "\n"
            << "Obliquity        " << cs.Obliquity << "\n"
            << "Sidereal offset  " << cs.SiderealOffset << "  ("
            << ForTerminal(s.vocab.ZodiacName[s.prefs.Zodiac - 1]) << ")\n\n";
  std::cout << " #  Point         Longitude                   Latitude       Speed\n";
  for (int p = 1; p <= kPoints; ++p) {
    int f = frame(p);
    std::ostringstream row;
    row << std::setw(2) << p << "  " << std::left << std::setw(12) << s.vocab.PointName[p] << std::right
        << std::fixed << std::setprecision(6) << std::setw(11) << c.Longitude[f][slot][p] << "  " << std::setw(14)
        << std::left << ZodiacPosition(s, c.Longitude[f][slot][p]) << std::right << std::setw(11)
        << c.Latitude[f][slot][p] << std::setw(12) << c.LongSpeed[f][slot][p]
        << (c.Retrograde[slot][p] ? "  R" : "");
    std::cout << ForTerminal(row.str()) << "\n";
  }
  std::cout << "\nHouses: " << ForTerminal(s.vocab.HouseSystemName[cs.ChartHouseSystem]) << "\n";
  for (int i = 1; i <= 12; ++i) {
    std::ostringstream row;
    row << std::setw(5) << FormatOrdinal(i) << "  " << std::fixed << std::setprecision(6) << std::setw(11)
        << cs.Cusps[i] << "  " << ZodiacPosition(s, cs.Cusps[i]);
    std::cout << ForTerminal(row.str()) << "\n";
  }
  return kExitOk;
}

struct CacheArgs {
  std::string path;
  int coordinate = 1, type = 0, method = 0, record = 0;
};

int RunCache(Context& ctx, const CacheArgs& a) {
  Session& s = ctx.session;
  if (!OpenProjectForCommand(ctx, a.path)) return kExitFailed;
  const int method = a.method > 0 ? a.method : s.prefs.Progressions;
  TerminalProgress progress(ctx);
  progress.Caption("Recalculating " + s.vocab.DynamicMethodName[a.type] + " (" +
                   s.vocab.CoordName[a.coordinate] + ")");
  CacheRunStats stats;
  bool cancelled = false;
  CalcEvents(s, a.coordinate, a.type, method, cancelled, &progress, &stats);
  const std::string file = CacheFileName(s.project.ProjectPath, a.coordinate, a.type);
  if (ctx.json) {
    ctx.PrintJson({{"failed", cancelled},
                   {"cancelled", cancelled},
                   {"file", J(file)},
                   {"records", s.project.Header.RecordCount},
                   {"recalculated", stats.Recalculated},
                   {"current", stats.Current}});
  } else {
    std::cout << ForTerminal(file) << ": " << stats.Recalculated << " records recalculated, " << stats.Current
              << " records current" << (cancelled ? " (stopped)" : "") << "\n";
  }
  return cancelled ? kExitFailed : kExitOk;
}

nlohmann::json CacheRecordJson(const EventPositionRecord& r) {
  auto floats = [](const std::array<float, kPoints + 1>& a) {
    nlohmann::json list = nlohmann::json::array();
    for (int p = 1; p <= kPoints; ++p) list.push_back(a[p]);
    return list;
  };
  nlohmann::json motion = nlohmann::json::array();
  for (int p = 1; p <= kPoints; ++p) motion.push_back(r.Motion[p]);
  return {{"year", r.Year},           {"month", r.Month},
          {"day", r.Day},             {"timeAccuracy", r.TimeAccuracy},
          {"hour", r.Hour},           {"minute", r.Minute},
          {"second", r.Second},       {"zone", r.Zone},
          {"rangeDays", r.RangeDays}, {"longitude", r.Longitude},
          {"latitude", r.Latitude},   {"precessionArcsec", r.PrecessionArcsec},
          {"startPos", floats(r.StartPos)}, {"endPos", floats(r.EndPos)},
          {"motion", motion},         {"startLat", floats(r.StartLat)},
          {"endLat", floats(r.EndLat)}};
}

int RunCacheDump(Context& ctx, const CacheArgs& a) {
  const std::string file = CacheFileName(a.path, a.coordinate, a.type);
  nlohmann::json records = nlohmann::json::array();
  int first = a.record > 0 ? a.record : 1;
  for (int n = first;; ++n) {
    EventPositionRecord r;
    if (!ReadCacheRecord(file, n, r)) break;
    nlohmann::json j = CacheRecordJson(r);
    j["record"] = n;
    records.push_back(j);
    if (a.record > 0) break;
  }
  if (records.empty()) {
    ctx.session.ShowMessage("No cache record " + std::to_string(first) + " in " + file, kIconExclamation, "Vintar");
    if (ctx.json) ctx.PrintJson({{"failed", true}, {"file", J(file)}});
    return kExitFailed;
  }
  if (ctx.json)
    ctx.PrintJson({{"failed", false}, {"file", J(file)}, {"records", records}});
  else
    std::cout << records.dump(2) << "\n";
  return kExitOk;
}

}  // namespace

void AddChartCommands(CLI::App& app, Context& ctx, Action& action) {
  auto a = std::make_shared<ChartArgs>();
  auto* chart = app.add_subcommand("chart", "Cast one chart and print its positions, angles and cusps");
  chart->add_option("--date", a->date, "Date, e.g. \"12 Aug 1958\"")->required();
  chart->add_option("--time", a->time, "Local time, e.g. \"3:40 pm\" (empty: 12:00)");
  chart->add_option("--zone", a->zone, "Zone mnemonic or hours added to local time to reach UT")->required();
  chart->add_option("--latitude", a->latitude, "Latitude, e.g. 53N48")->required();
  chart->add_option("--longitude", a->longitude, "Longitude, e.g. 1W33")->required();
  chart->add_option("--houses", a->houses, "House system 0 to 14")->check(CLI::Range(0, 14));
  chart->add_option("--zodiac", a->zodiac, "Zodiac 1 (tropical) to 9 (user ayanamsa)")->check(CLI::Range(1, 9));
  chart->add_option("--node", a->node, "true or mean")->check(CLI::IsMember({"true", "mean"}));
  chart->callback([&ctx, &action, a] { action = [&ctx, a] { return RunChart(ctx, *a); }; });

  auto c = std::make_shared<CacheArgs>();
  auto* cache = app.add_subcommand("cache", "Bring a project's position cache up to date");
  cache->add_option("project", c->path, "The project's .dat file")->required();
  cache->add_option("--coordinate", c->coordinate, "1 geocentric, 2 heliocentric")->check(CLI::Range(1, 2));
  cache->add_option("--type", c->type, "0 transits, 1 secondary, 2 tertiary, 3 solar arc")->check(CLI::Range(0, 3));
  cache->add_option("--method", c->method, "Progressed angles: 1 Naibod, 2 solar arc, 3 mean quotidian")
      ->check(CLI::Range(1, 3));
  cache->callback([&ctx, &action, c] { action = [&ctx, c] { return RunCache(ctx, *c); }; });

  auto d = std::make_shared<CacheArgs>();
  auto* dump = app.add_subcommand("cache-dump", "Decode a position cache record by record");
  dump->add_option("project", d->path, "The project's .dat file")->required();
  dump->add_option("--coordinate", d->coordinate, "1 geocentric, 2 heliocentric")->required()->check(CLI::Range(1, 2));
  dump->add_option("--type", d->type, "0 to 3")->required()->check(CLI::Range(0, 3));
  dump->add_option("--record", d->record, "Only this record (from 1)")->check(CLI::Range(1, 1 << 30));
  dump->callback([&ctx, &action, d] { action = [&ctx, d] { return RunCacheDump(ctx, *d); }; });
}

}  // namespace vintar::cli
