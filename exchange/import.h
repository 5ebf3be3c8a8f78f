// What every import shares: the header of a project made from another
// program's file, and the writing of that new project (its .nat and .dat),
// which never replaces a project that is already there.
#pragma once

#include <string>
#include <vector>

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

}  // namespace vintar
