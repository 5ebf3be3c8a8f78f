// What every import shares: the header of a project made from another
// program's file, and the writing of that new project (its .nat and .dat),
// which never replaces a project that is already there, and the progress
// every import reports while it reads its source.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "core/progress.h"
#include "core/records.h"
#include "core/session.h"

namespace vintar {

// A new project's header: no natal details ("Unknown" time, zone "UT", the
// whole day as the window) and the title "Imported from " + the source's
// file name.
ProjectHeader ImportedProjectHeader(const std::string& sourceFileName);

// Writes records 1.. as a new project at `datPath` with the header above.
// False, with the reason in `error`, when the destination (.dat or .nat)
// exists or cannot be written; nothing is replaced.
bool WriteImportedProject(Session& session, const std::string& datPath, const std::string& sourceFileName,
                          std::vector<EventRecord>& records, std::string& error);

// The progress of reading a source of `lineCount` lines: the status "Reading
// line N of M" every tenth line, the fraction read, and the cancel flag
// polled at each line. A null `progress` reports nothing and never stops.
class ImportSteps {
 public:
  ImportSteps(Progress* progress, size_t lineCount);
  // Line `n` (from 1) is about to be read; true when the user asked to stop.
  bool Line(size_t n);
  // The whole source is read (the fraction reaches 1); true when the user
  // asked to stop, which is still in time: nothing has been written.
  bool Finish();

 private:
  Progress* progress_;
  size_t count_;
};

}  // namespace vintar
