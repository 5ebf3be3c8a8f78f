// Whole-file reading and safe writing. A write goes to a temporary file in
// the same folder and is renamed over the target only when every byte is on
// disk, so a failed save never leaves a damaged file behind.
#pragma once

#include <string>

namespace vintar {

// Reads the whole file; false (and `error` set) when it cannot be opened.
bool ReadWholeFile(const std::string& path, std::string& bytes, std::string& error);

// Writes `bytes` to `path` through a temporary file and a rename. On failure
// the old file is untouched, the temporary file is removed, `error` holds the
// system's text and the result is false.
bool WriteFileAtomically(const std::string& path, const std::string& bytes, std::string& error);

}  // namespace vintar
