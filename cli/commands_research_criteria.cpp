// `vintar research criteria`: a criteria list from a .vcr file or from the
// command line, run over a project; the passing records listed, and
// optionally the failures disabled or the passes saved as a new project.
//
// The terms map one to one onto the list, left to right:
//   --test POINT:DATATYPE:DIVISION:CELLS[:orb=X][:harmonic=H][:min=N]
//          [:cells=N][:rulers=old|new][:inexact=0|1|2]
//   --pair A,B:DATATYPE:DIVISION:CELLS[...]
//   --and | --or | --xor   before a test: how it joins what stands before it
//   --not                  before a test: the test negated
//   --open | --close       brackets around tests
// CELLS is a list such as 1,5,9 or 1..3. The order of these words matters
// and CLI11 keeps no order between different options, so they are taken
// from the subcommand's unparsed arguments in the order given.
#include <iostream>
#include <memory>
#include <set>

#include "cli/commands.h"
#include "cli/research_options.h"
#include "core/file_io.h"
#include "core/project_file.h"
#include "core/project_ops.h"
#include "research/criteria.h"
#include "research/tabulate.h"

namespace vintar::cli {


// Walks the subcommand's unparsed words: the project, the terms with
// their connectives and brackets, and the global flags given after the
// subcommand. False after a message on a word it does not know or on
// brackets that do not balance.
bool ParseOrderedTerms(Context& ctx, const std::vector<std::string>& words, const std::set<std::string>& termKinds,
                       std::string& project, std::vector<OrderedTerm>& terms) {
  Session& s = ctx.session;
  auto refuse = [&](const std::string& text) {
    s.ShowMessage(text, kIconExclamation, "Cannot Search");
    return false;
  };
  int depth = 0, op = 0, opens = 0, closes = 0;
  bool negate = false, pending = false;
  for (size_t i = 0; i < words.size(); ++i) {
    const std::string& w = words[i];
    if (w == "--json") ctx.json = true;
    else if (w == "--yes") ctx.yes = true;
    else if (w == "--no") ctx.no = true;
    else if (w == "--and" || w == "--or" || w == "--xor") op = w == "--and" ? 0 : (w == "--or" ? 1 : 2), pending = true;
    else if (w == "--not") negate = !negate, pending = true;
    else if (w == "--open") {
      // Not belongs to one test: a bracket has no Not of its own.
      if (negate) return refuse("--not applies to a single test and cannot stand before a bracket.");
      ++depth, ++opens, pending = true;
    }
    else if (w == "--close") {
      if (pending || terms.empty()) return refuse("A bracket closes before any test stands inside it.");
      if (--depth < 0) return refuse("Unbalanced brackets: --close without an --open before it.");
      ++closes;
    } else if (termKinds.count(w)) {
      if (i + 1 >= words.size()) return refuse(w + " needs a value.");
      if (opens > 0 && closes > 0)
        return refuse("A bracket closes and another opens between two tests. The list keeps only the depth of "
                      "each test, so groups side by side would run together: nest one inside the other instead.");
      terms.push_back({w, words[++i], op, negate, depth});
      op = 0, negate = false, pending = false, opens = closes = 0;
    } else if (!w.empty() && w[0] == '-') {
      return refuse("Unknown option " + w + ".");
    } else if (project.empty()) {
      project = w;
    } else {
      return refuse("Unexpected word " + w + ".");
    }
  }
  if (pending) return refuse("--and, --or, --xor, --not and --open must stand before a test.");
  if (depth != 0) return refuse("Unbalanced brackets: " + std::to_string(depth) + " left open.");
  if (project.empty()) return refuse("Name the project (.dat).");
  return true;
}

// The global flags given after the subcommand land among its unparsed
// words; they must be known before the session starts.
void NoteGlobalFlags(Context& ctx, const std::vector<std::string>& words) {
  for (const std::string& w : words) {
    if (w == "--json") ctx.json = true;
    if (w == "--yes") ctx.yes = true;
    if (w == "--no") ctx.no = true;
  }
}

void TakeOrderedWords(CLI::App* cmd, Context& ctx, Action& action, std::vector<std::string>& words,
                      std::function<int()> run) {
  cmd->allow_extras();
  cmd->fallthrough(false);
  cmd->callback([&ctx, &action, &words, cmd, run] {
    words = cmd->remaining();
    NoteGlobalFlags(ctx, words);
    action = run;
  });
}

// The results buttons for the command line: --disable-failed and
// --save-passed. The project file changes only with --disable-failed.
bool ApplyResultActions(Context& ctx, std::vector<int16_t>& flags, bool disable, const std::string& savePassed,
                        nlohmann::json& body) {
  Session& s = ctx.session;
  if (disable) {
    if (!DisableFailedRecords(s, flags)) return false;
    bool failed = false;
    SaveProject(s, s.project.ProjectPath, failed);
    if (failed) return false;
    body["disabledFailed"] = true;
  }
  if (!savePassed.empty()) {
    s.AskSavePath = [&s, savePassed](std::string& path) {
      path = savePassed;
      AcceptSaveFileName(s, savePassed);
      return true;
    };
    if (!CreatePassedProject(s, flags)) return false;
    body["saved"] = JPath(savePassed);
  }
  return true;
}

// A new project of passed records must not overwrite anything.
bool CheckNewProjectPath(Context& ctx, const std::string& out, const std::string& project) {
  if (out.empty()) return true;
  if (FileExists(out) || FolderExists(out) || FileExists(NatPathFor(out)) || out == project) {
    ctx.session.ShowMessage("The file " + out + " already exists. Choose a new name for the project of passed records.",
                            kIconExclamation, "File Exists");
    return false;
  }
  return true;
}

namespace {

struct CriteriaArgs {
  std::string criteriaFile, saveCriteria, savePassed, report;
  bool disableFailed = false, passedOnly = false;
  std::vector<std::string> words;
};

int RunCriteria(Context& ctx, CriteriaArgs& a) {
  Session& s = ctx.session;
  auto fail = [&] {
    if (ctx.json) ctx.PrintJson({{"failed", true}});
    return kExitFailed;
  };
  std::string project;
  std::vector<OrderedTerm> terms;
  if (!ParseOrderedTerms(ctx, a.words, {"--test", "--pair"}, project, terms)) return fail();
  if (!a.criteriaFile.empty() && !terms.empty()) {
    s.ShowMessage("Give either --criteria or tests on the command line, not both.", kIconExclamation, "Cannot Search");
    return fail();
  }
  if (!CheckNewProjectPath(ctx, a.savePassed, project)) return fail();
  if (!OpenProjectForCommand(ctx, project)) return kExitFailed;

  ResearchState state;
  CriteriaList list;
  if (!ComposeCriteria(ctx, state, a.criteriaFile, terms, list)) return fail();
  if (!a.saveCriteria.empty() && !SaveCriteriaFile(s, a.saveCriteria, list)) return fail();

  const std::vector<std::string> lines = CriteriaLines(s, state, list);
  TerminalProgress progress(ctx);
  CriteriaRun run = RunSearch(s, state, list, &progress);
  if (run.Failed || run.Cancelled) return fail();

  nlohmann::json records = nlohmann::json::array();
  for (size_t i = 1; i < run.PassedFlags.size(); ++i)
    if (run.PassedFlags[i]) records.push_back(i);
  nlohmann::json criteria = nlohmann::json::array();
  for (const auto& l : lines) criteria.push_back(J(l));
  nlohmann::json body{{"criteria", criteria},
                      {"enabled", run.Enabled},
                      {"passed", run.Passed},
                      {"percent", PercentPassedText(run.Passed, run.Enabled)},
                      {"records", records}};
  if (!a.saveCriteria.empty()) body["criteriaFile"] = JPath(a.saveCriteria);
  std::vector<int16_t> flags = run.PassedFlags;
  const std::vector<std::string> descriptions = [&] {
    std::vector<std::string> d;
    for (size_t i = 1; i < flags.size(); ++i)
      if (flags[i]) d.push_back(std::to_string(i) + "  " + s.project.Events[i].Description);
    return d;
  }();
  if (!a.report.empty()) {
    // The Search Results Report as text, before any action changes the project.
    std::string text;
    for (const auto& l : SearchResultsReport(s, lines, flags, !a.passedOnly)) text += l + kLineEnd;
    std::string error;
    if (!WriteFileAtomically(a.report, text, error)) {
      s.ShowMessage("Unable to save file: " + a.report + kLineEnd + "Reason: " + error, kIconExclamation, "Vintar");
      return fail();
    }
    body["report"] = JPath(a.report);
  }
  if (!ApplyResultActions(ctx, flags, a.disableFailed, a.savePassed, body)) return fail();

  if (ctx.json) {
    ctx.PrintJson(body);
    return kExitOk;
  }
  std::cout << "Criteria:\n";
  for (size_t i = 0; i < lines.size(); ++i) std::cout << "  " << i + 1 << ") " << ForTerminal(lines[i]) << "\n";
  std::cout << "\n";
  for (const auto& l : SearchResultLines(run.Enabled, run.Passed)) std::cout << l << "\n";
  if (!descriptions.empty()) std::cout << "\nPassed records:\n";
  for (const auto& d : descriptions) std::cout << "  " << ForTerminal(d) << "\n";
  if (a.disableFailed) std::cout << "\nOnly the passed records are now enabled in the project.\n";
  if (!a.savePassed.empty()) std::cout << "Saved the passed records as " << DisplayText(a.savePassed) << "\n";
  return kExitOk;
}

}  // namespace

void AddResearchCriteriaCommand(CLI::App& research, Context& ctx, Action& action) {
  auto* cmd = research.add_subcommand("criteria", "Test every enabled chart of a project against a criteria list");
  auto a = std::make_shared<CriteriaArgs>();
  cmd->add_option("--criteria", a->criteriaFile, "A criteria list (.vcr) instead of tests on the command line");
  cmd->add_option("--save-criteria", a->saveCriteria, "Save the list as a criteria file (.vcr)");
  cmd->add_flag("--disable-failed", a->disableFailed, "Disable the records that failed and save the project");
  cmd->add_option("--save-passed", a->savePassed, "Save the passed records as a new project (.dat)");
  cmd->add_option("--report", a->report, "Write the Search Results Report as text to this file");
  cmd->add_flag("--passed-only", a->passedOnly, "The report lists only the passed records (else all, passed marked)");
  cmd->footer(
      "PROJECT.dat and the tests, in order:\n"
      "  --test POINT:DATATYPE:DIVISION:CELLS[:orb=X][:harmonic=H][:min=N][:cells=N][:rulers=old][:inexact=N]\n"
      "  --pair A,B:DATATYPE:DIVISION:CELLS[...]\n"
      "  --and | --or | --xor   before a test: how it joins what stands before it (And by default)\n"
      "  --not                  before a test: the test negated\n"
      "  --open | --close       brackets around tests\n"
      "CELLS: 1,5,9 or 1..3. Points as `research points` names them: Mars, \"Sun/Moon\", \"10th House Cusp\".");
  TakeOrderedWords(cmd, ctx, action, a->words, [&ctx, a] { return RunCriteria(ctx, *a); });
}

}  // namespace vintar::cli
