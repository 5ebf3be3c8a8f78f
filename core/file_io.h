// Whole-file reading and safe writing. A write goes to a temporary file in
// the same folder and is renamed over the target only when every byte is on
// disk, so a failed save never leaves a damaged file behind.
#pragma once

#include <string>

namespace vintar {

// Reads the whole file; false (and `error` set) when it cannot be opened.
bool ReadWholeFile(const std::string& path, std::string& bytes, std::string& error);

// Staged writing, for saves that replace several files together: stage every
// file first, then commit them; discard what is staged when anything failed.
// Stage and commit return 0 or the errno of the failure. A folder standing
// where the file should be fails with EISDIR before anything is written.
struct StagedFile {
  std::string target;
  std::string temp;  // empty when nothing is staged
};
int StageFile(const std::string& target, const std::string& bytes, StagedFile& staged);
int CommitFile(StagedFile& staged);
void DiscardFile(StagedFile& staged);

// Stage and commit one file. On failure the old file is untouched, the
// temporary file is removed, `error` holds the system's text and the result
// is false.
bool WriteFileAtomically(const std::string& path, const std::string& bytes, std::string& error);

}  // namespace vintar
