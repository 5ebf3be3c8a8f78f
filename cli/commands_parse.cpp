// `vintar parse KIND TEXT` and `vintar format KIND VALUES...`: the value
// parsers and formatters, exactly as the entry screens use them.
#include <iostream>
#include <memory>

#include "cli/commands.h"
#include "core/parse.h"
#include "core/text.h"

namespace vintar::cli {
namespace {

struct ParseArgs {
  std::string kind;
  std::string text;
  bool monthFirst = false;
  int centuryBase = 1900;
};

int RunParse(Context& ctx, const ParseArgs& a) {
  Session& s = ctx.session;
  if (a.monthFirst) s.prefs.MonthFirst = kTrue;
  s.CenturyBase = static_cast<int16_t>(a.centuryBase);
  const std::string text = FromArg(a.text);
  bool failed = false;
  nlohmann::json out{{"kind", a.kind}, {"text", J(text)}};
  std::string human;

  if (a.kind == "date") {
    int16_t day = 0, month = 0, year = 0;
    ParseDate(s, text, day, month, year, true, failed);
    out.update({{"day", day}, {"month", month}, {"year", year}});
    human = "day " + std::to_string(day) + ", month " + std::to_string(month) + ", year " + std::to_string(year);
  } else if (a.kind == "time") {
    int16_t h = 0, m = 0, sec = 0;
    ParseTime(s, text, h, m, sec, true, failed);
    out.update({{"hours", h}, {"minutes", m}, {"seconds", sec}});
    human = "hours " + std::to_string(h) + ", minutes " + std::to_string(m) + ", seconds " + std::to_string(sec);
  } else if (a.kind == "angle") {
    float angle = 0;
    ParseAngle(s, text, angle, failed);
    out["angle"] = angle;
    human = "angle " + std::to_string(angle);
  } else if (a.kind == "latitude") {
    double v = 0;
    ParseLatitude(s, text, v, true, failed);
    out["latitude"] = v;
    human = "latitude " + std::to_string(v);
  } else if (a.kind == "longitude") {
    double v = 0;
    ParseLongitude(s, text, v, true, failed);
    out["longitude"] = v;
    human = "longitude " + std::to_string(v);
  } else {
    float hours = 0;
    std::string mnemonic;
    ParseZone(s, text, hours, mnemonic, true, failed);
    out.update({{"zoneHours", hours}, {"mnemonic", J(mnemonic)}});
    human = "zoneHours " + std::to_string(hours) + ", mnemonic \"" + ForTerminal(mnemonic) + "\"";
  }
  out["failed"] = failed;
  if (ctx.json)
    ctx.PrintJson(out);
  else
    std::cout << human << (failed ? " (failed)" : "") << "\n";
  return failed ? kExitFailed : kExitOk;
}

int PrintFormatted(Context& ctx, const std::string& kind, const std::string& text) {
  if (ctx.json)
    ctx.PrintJson({{"kind", kind}, {"text", J(text)}});
  else
    std::cout << ForTerminal(text) << "\n";
  return kExitOk;
}

}  // namespace

void AddParseCommands(CLI::App& app, Context& ctx, Action& action) {
  auto args = std::make_shared<ParseArgs>();
  auto* parse = app.add_subcommand("parse", "Parse a typed value as the entry screens do");
  parse->add_option("kind", args->kind, "date, time, angle, latitude, longitude or zone")
      ->required()
      ->check(CLI::IsMember({"date", "time", "angle", "latitude", "longitude", "zone"}));
  parse->add_option("text", args->text, "The text to parse")->required();
  parse->add_flag("--month-first", args->monthFirst, "Month before day in dates");
  parse->add_option("--century-base", args->centuryBase, "Century base for two-digit years")
      ->check(CLI::Range(0, 9999));
  parse->callback([&ctx, &action, args] { action = [&ctx, args] { return RunParse(ctx, *args); }; });

  auto* format = app.add_subcommand("format", "Format a value as the system shows it");
  format->require_subcommand(1);

  struct DateArgs { int day = 1, month = 1, year = 2000; bool monthFirst = false; };
  auto d = std::make_shared<DateArgs>();
  auto* date = format->add_subcommand("date", "DAY MONTH YEAR (astronomical year)");
  date->add_option("day", d->day)->required();
  date->add_option("month", d->month)->required();
  date->add_option("year", d->year)->required();
  date->add_flag("--month-first", d->monthFirst);
  date->callback([&ctx, &action, d] {
    action = [&ctx, d] {
      if (d->monthFirst) ctx.session.prefs.MonthFirst = kTrue;
      return PrintFormatted(ctx, "date", FormatDate(ctx.session, d->day, d->month, d->year));
    };
  });

  struct TimeArgs { int hour = 0, minute = 0, second = 0; bool ampm = false; };
  auto t = std::make_shared<TimeArgs>();
  auto* time = format->add_subcommand("time", "HOUR MINUTE [SECOND]");
  time->add_option("hour", t->hour)->required();
  time->add_option("minute", t->minute)->required();
  time->add_option("second", t->second);
  time->add_flag("--ampm", t->ampm, "12-hour clock with am/pm");
  time->callback([&ctx, &action, t] {
    action = [&ctx, t] { return PrintFormatted(ctx, "time", FormatTime(t->hour, t->minute, t->second, t->ampm)); };
  });

  auto value = std::make_shared<double>(0.0);
  auto addValue = [&](const char* name, const char* help, std::string (*formatter)(double)) {
    auto* sub = format->add_subcommand(name, help);
    sub->add_option("value", *value)->required()->allow_extra_args(false);
    std::string kind = name;
    sub->callback([&ctx, &action, value, kind, formatter] {
      action = [&ctx, value, kind, formatter] { return PrintFormatted(ctx, kind, formatter(*value)); };
    });
  };
  addValue("zone", "HOURS (added to local time to reach UT)", FormatZone);
  addValue("latitude", "DEGREES (north positive)", FormatLatitude);
  addValue("longitude", "DEGREES (west positive)", FormatLongitude);
}

}  // namespace vintar::cli
