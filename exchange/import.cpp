#include "exchange/import.h"

#include "core/file_io.h"
#include "core/project_file.h"
#include "core/text.h"

namespace vintar {

ProjectHeader ImportedProjectHeader(const std::string& sourceFileName) {
  ProjectHeader h;
  ResetProjectHeader(h);
  h.ZoneMnemonic = "UT";
  h.ZoneTime = "0:00";
  h.EarliestTime = "0:00 AM";
  h.LatestTime = "11:59 PM";
  h.Title = sourceFileName.empty() ? "Imported rectification events" : "Imported from " + sourceFileName;
  return h;
}

ImportSteps::ImportSteps(Progress* progress, size_t lineCount) : progress_(progress), count_(lineCount) {}

bool ImportSteps::Line(size_t n) {
  if (!progress_) return false;
  if (n == 1 || n % 10 == 0 || n == count_) {
    progress_->Status("Reading line " + std::to_string(n) + " of " + std::to_string(count_));
    progress_->Fraction(count_ ? static_cast<double>(n - 1) / count_ : 0.0);
  }
  return progress_->Cancelled();
}

bool ImportSteps::Finish() {
  if (!progress_) return false;
  progress_->Fraction(1.0);
  return progress_->Cancelled();
}

bool WriteImportedProject(Session& session, const std::string& datPath, const std::string& sourceFileName,
                          std::vector<EventRecord>& records, std::string& error) {
  if (FileExists(datPath) || FileExists(NatPathFor(datPath))) {
    error = PathFileName(datPath) + " (destination file) already exists. Please enter a different file name to "
            "import to.";
    return false;
  }
  if (records.empty()) records.resize(1);
  ProjectHeader header = ImportedProjectHeader(sourceFileName);
  header.RecordCount = static_cast<int32_t>(records.size() - 1);
  const CurStatus saved = session.project.Status;
  session.project.Status.NatChanged = kTrue;
  session.project.Status.DataChanged = kTrue;
  bool failed = false;
  WriteProject(session, datPath, header, records, failed, false);
  session.project.Status = saved;
  if (failed) error = "The project could not be written: " + datPath;
  return !failed;
}

}  // namespace vintar
