// `vintar research select`: records chosen by what they hold, one
// condition per --where, joined and bracketed by the words of `research
// criteria` (--and, --or, --xor, --not, --open, --close), in order:
//   --where FIELD:CONDITION:VALUE
// FIELD is a record field (Description, Date, Day Range, Detail Level, Zone
// Abbr, Zone Time, Time, Placename, Latitude, Longitude) or a category's
// name; CONDITION is one of = <> > >= < <= matches contains starts, or the
// comparison's full name ("is greater than"); VALUE is the rest, colons
// and all. Without --disable-failed or --save-passed nothing is changed.
#include <iostream>
#include <memory>
#include <set>

#include "cli/commands.h"
#include "cli/research_options.h"
#include "research/criteria.h"
#include "research/selection.h"

namespace vintar::cli {


namespace {

struct SelectArgs {
  std::string savePassed;
  bool disableFailed = false;
  std::vector<std::string> words;
};

int ConditionOf(const Session& s, const std::string& text) {
  static const char* const kShort[] = {"=", "<>", ">", ">=", "<", "<=", "matches", "contains", "starts"};
  const std::string t = Trim(text);
  if (t == "==") return 0;
  if (t == "!=") return 1;
  for (int c = 0; c < 9; ++c)
    if (EqualsIgnoreCase(t, kShort[c]) ||
        (c < static_cast<int>(s.vocab.ComparisonName.size()) && EqualsIgnoreCase(t, s.vocab.ComparisonName[c])))
      return c;
  return -1;
}

bool BuildCondition(Context& ctx, const OrderedTerm& term, SelectionList& list) {
  Session& s = ctx.session;
  const std::string value = FromArg(term.Value);
  const size_t a = value.find(':');
  const size_t b = a == std::string::npos ? a : value.find(':', a + 1);
  if (b == std::string::npos) {
    s.ShowMessage("A condition reads FIELD:CONDITION:VALUE, not \"" + value + "\".", kIconExclamation, "Cannot Add");
    return false;
  }
  const std::string fieldName = Trim(value.substr(0, a));
  const std::vector<std::string> fields = SelFieldNames(s);
  int field = -1;
  for (size_t f = 0; f < fields.size() && field < 0; ++f)
    if (EqualsIgnoreCase(fields[f], fieldName)) field = static_cast<int>(f);
  if (field < 0) {
    s.ShowMessage("There is no field or category named \"" + fieldName + "\" in this project.", kIconExclamation,
                  "Cannot Add");
    return false;
  }
  const int condition = ConditionOf(s, value.substr(a + 1, b - a - 1));
  if (condition < 0) {
    s.ShowMessage("\"" + value.substr(a + 1, b - a - 1) + "\" is not a comparison: use = <> > >= < <= matches "
                  "contains or starts.",
                  kIconExclamation, "Cannot Add");
    return false;
  }
  AddSelCriterion(list, field, condition, NormaliseSelValue(s, field, value.substr(b + 1)));
  SelCriterion& c = list.Items.back();
  c.Connective = list.Count() > 1 ? term.Operator : 0;
  c.Negated = term.Negate ? kTrue : kFalse;
  c.NestLevel = static_cast<int16_t>(term.Level);
  return true;
}

int RunSelect(Context& ctx, SelectArgs& a) {
  Session& s = ctx.session;
  auto fail = [&] {
    if (ctx.json) ctx.PrintJson({{"failed", true}});
    return kExitFailed;
  };
  std::string project;
  std::vector<OrderedTerm> terms;
  if (!ParseOrderedTerms(ctx, a.words, {"--where"}, project, terms)) return fail();
  if (terms.empty()) {
    s.ShowMessage("Give one or more conditions with --where.", kIconExclamation, "Cannot Search");
    return fail();
  }
  if (!CheckNewProjectPath(ctx, a.savePassed, project)) return fail();
  if (!OpenProjectForCommand(ctx, project)) return kExitFailed;
  SelectionList list;
  for (const OrderedTerm& t : terms)
    if (!BuildCondition(ctx, t, list)) return fail();

  SelectionRun run = RunSelection(s, list);
  nlohmann::json records = nlohmann::json::array();
  std::vector<std::string> passed;
  for (size_t i = 1; i < run.PassedFlags.size(); ++i)
    if (run.PassedFlags[i]) {
      records.push_back(i);
      passed.push_back(std::to_string(i) + "  " + s.project.Events[i].Description);
    }
  nlohmann::json conditions = nlohmann::json::array();
  std::vector<std::string> lines;
  for (int i = 1; i <= list.Count(); ++i) {
    lines.push_back(SelCriterionText(s, list, i));
    conditions.push_back(J(lines.back()));
  }
  nlohmann::json body{{"conditions", conditions},
                      {"enabled", run.Enabled},
                      {"passed", run.Passed},
                      {"percent", PercentPassedText(run.Passed, run.Enabled)},
                      {"records", records}};
  if (!ApplyResultActions(ctx, run.PassedFlags, a.disableFailed, a.savePassed, body)) return fail();
  if (ctx.json) {
    ctx.PrintJson(body);
    return kExitOk;
  }
  std::cout << "Conditions:\n";
  for (size_t i = 0; i < lines.size(); ++i) std::cout << "  " << i + 1 << ") " << ForTerminal(lines[i]) << "\n";
  std::cout << "\n" << run.Passed << " records were selected from a possible " << run.Enabled << " ("
            << PercentPassedText(run.Passed, run.Enabled) << ")\n";
  if (!passed.empty()) std::cout << "\nSelected records:\n";
  for (const auto& p : passed) std::cout << "  " << ForTerminal(p) << "\n";
  if (a.disableFailed) std::cout << "\nOnly the selected records are now enabled in the project.\n";
  if (!a.savePassed.empty()) std::cout << "Saved the selected records as " << DisplayText(a.savePassed) << "\n";
  return kExitOk;
}

}  // namespace

void AddResearchSelectCommand(CLI::App& research, Context& ctx, Action& action) {
  auto* cmd = research.add_subcommand("select", "Select the records of a project by their fields and categories");
  auto a = std::make_shared<SelectArgs>();
  cmd->add_flag("--disable-failed", a->disableFailed, "Disable the records not selected and save the project");
  cmd->add_option("--save-passed", a->savePassed, "Save the selected records as a new project (.dat)");
  cmd->footer(
      "PROJECT.dat and the conditions, in order:\n"
      "  --where FIELD:CONDITION:VALUE   e.g. \"Date:>=:1 Jan 1900\", \"Sport:matches:Football\"\n"
      "  --and | --or | --xor | --not | --open | --close   as in `research criteria`\n"
      "CONDITION: = <> > >= < <= matches contains starts.");
  TakeOrderedWords(cmd, ctx, action, a->words, [&ctx, a] { return RunSelect(ctx, *a); });
}

}  // namespace vintar::cli
