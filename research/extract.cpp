// Filtering to a new project.
#include "research/extract.h"

#include <filesystem>

#include "core/file_io.h"
#include "core/project_file.h"
#include "core/text.h"
#include "research/results.h"

namespace vintar {

ExtractScreen ExtractScreenFor(const Session& session, const TabulationRun& run, const FilterBlock& block) {
  ExtractScreen screen;
  for (int c = std::max(1, block.FirstColumn); c <= std::min(block.LastColumn, run.ColumnCount); ++c)
    screen.Points.push_back(c < static_cast<int>(run.ColumnNames.size()) ? run.ColumnNames[c] : "");
  for (int cell = std::max(1, block.FirstCell); cell <= std::min(block.LastCell, run.CellCount); ++cell)
    screen.Divisions.push_back(CellName(session, run, cell, false));
  screen.Title = UCase(PathStem(session.project.ProjectPath)) + " - Filtered Records";
  return screen;
}

FilterResult FilterToProject(Session& session, ResearchState& state, const TabulateParams& params,
                             const FilterBlock& block, const std::string& path, const std::string& title,
                             bool overwrite, Progress* progress) {
  FilterResult result;
  const std::string dat = RTrim(path);
  const std::string nat = NatPathFor(dat);
  result.Path = dat;
  const ProjectState& project = session.project;
  if (dat.empty() || PathExtension(dat).empty()) {
    session.ShowMessage("Name the new project's file (.dat).", kIconExclamation, "File Error");
    return result;
  }
  const std::string open = RTrim(project.ProjectPath);
  if (!open.empty() && (SamePath(dat, open) || SamePath(nat, NatPathFor(open)))) {
    session.ShowMessage("The filtered records cannot be written over the current project. Please choose another "
                        "file.",
                        kIconExclamation, "File Error");
    return result;
  }
  if (!overwrite && (FileExists(dat) || FileExists(nat))) {
    session.ShowMessage("The file " + (FileExists(dat) ? dat : nat) +
                            " already exists. Please choose another name for the filtered records.",
                        kIconExclamation, "File Exists");
    return result;
  }
  if (!block.Active || block.FirstCell < 1 || block.FirstColumn < 1 || block.LastCell < block.FirstCell ||
      block.LastColumn < block.FirstColumn) {
    session.ShowMessage("Select a range of cells of the table to filter.", kIconExclamation, "Cannot Filter");
    return result;
  }

  std::string records;
  int written = 0;
  const TabulationRun run = TabulateRun(session, state, params, progress, block, [&](int n) {
    records += FormatDataRecord(project.Events[n]);
    ++written;
  });
  if (run.Failed || run.Cancelled) return result;

  ProjectHeader header = project.Header;
  header.Title = RTrim(title);
  header.RecordCount = written;
  header.FormatVersion = 2;
  std::string error;
  const bool datWasThere = FileExists(dat);
  if (!WriteFileAtomically(dat, records, error)) {
    session.ShowMessage("Error whilst writing file: " + dat + kLineEnd + error, kIconExclamation, "File Error");
    return result;
  }
  if (!WriteFileAtomically(nat, FormatNatFile(header), error)) {
    // A .dat without its .nat is no project: take back the one just made.
    if (!datWasThere) {
      std::error_code ec;
      std::filesystem::remove(dat, ec);
    }
    session.ShowMessage("Error whilst writing file: " + nat + kLineEnd + error, kIconExclamation, "File Error");
    return result;
  }
  result.Done = true;
  result.Written = written;
  session.ShowMessage(std::to_string(written) + " charts were filtered to file:" + kLineEnd + dat + kLineEnd +
                          kLineEnd +
                          "If you wish to use this new file then you can open it from the \"File\" menu of the main "
                          "screen.",
                      kIconInformation, "Filtering Results");
  return result;
}

}  // namespace vintar
