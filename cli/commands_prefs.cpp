// `vintar prefs show` and `vintar prefs set KEY VALUE` over VINTAR2.INI.
#include <iostream>
#include <memory>

#include "cli/commands.h"
#include "core/preferences.h"
#include "core/text.h"

namespace vintar::cli {
namespace {

// Keys whose values are folders, files or programs: the system's bytes,
// kept as typed.
bool NamesAFile(const std::string& key) {
  return EndsWithIgnoreCase(key, "Path") || StartsWithIgnoreCase(key, "FilePath") ||
         StartsWithIgnoreCase(key, "FileName") || EqualsIgnoreCase(key, "WordProc");
}

int RunShow(Context& ctx) {
  const Session& s = ctx.session;
  auto listing = PreferenceListing(s.prefs);
  if (ctx.json) {
    nlohmann::json prefs = nlohmann::json::object();
    for (const auto& [key, value] : listing) prefs[key] = NamesAFile(key) ? JPath(value) : J(value);
    ctx.PrintJson({{"preferenceFile", JPath(s.paths.PreferenceFile)}, {"preferences", prefs}});
  } else {
    std::cout << "; " << DisplayText(s.paths.PreferenceFile) << "\n";
    for (const auto& [key, value] : listing)
      std::cout << key << "=" << (NamesAFile(key) ? DisplayText(value) : ForTerminal(value)) << "\n";
  }
  return kExitOk;
}

int RunSet(Context& ctx, const std::string& key, const std::string& value) {
  if (!IsPreferenceKey(key)) {
    std::cerr << "Unknown preference key: " << key << "\n";
    return kExitUsage;
  }
  Session& s = ctx.session;
  bool ok = PutProfileText(s, "Vintar", key, NamesAFile(key) ? value : FromArg(value));
  if (!ok) s.ShowMessage("Unable to write the preference file " + s.paths.PreferenceFile, kIconExclamation, "Vintar");
  LoadPreferences(s);
  if (ctx.json)
    ctx.PrintJson({{"failed", !ok}, {"key", key}, {"value", DisplayText(GetPreferenceText(s, key, ""))}});
  else if (ok)
    std::cout << key << "=" << DisplayText(GetPreferenceText(s, key, "")) << "\n";
  return ok ? kExitOk : kExitFailed;
}

}  // namespace

void AddPrefsCommands(CLI::App& app, Context& ctx, Action& action) {
  auto* prefs = app.add_subcommand("prefs", "Show or change preferences (VINTAR2.INI)");
  prefs->require_subcommand(1);
  auto* show = prefs->add_subcommand("show", "Print every preference with its current value");
  show->callback([&ctx, &action] { action = [&ctx] { return RunShow(ctx); }; });

  auto kv = std::make_shared<std::pair<std::string, std::string>>();
  auto* set = prefs->add_subcommand("set", "Set KEY to VALUE; an empty VALUE removes the key");
  set->add_option("key", kv->first)->required();
  set->add_option("value", kv->second)->required();
  set->callback([&ctx, &action, kv] { action = [&ctx, kv] { return RunSet(ctx, kv->first, kv->second); }; });
}

}  // namespace vintar::cli
