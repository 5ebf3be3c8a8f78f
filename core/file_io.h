// Bounded file reading and safe writing.
//
// Reading: every reader names the largest file it will take, and a larger
// one is refused before a byte of it is read, so a huge or sparse file
// never fills memory. Only regular files are read: a folder, a device or a
// pipe in place of a file is an error, never a hang.
//
// Writing: a write goes to a temporary file in the same folder and is
// renamed over the target only when every byte is on disk, so a failed or
// killed save never leaves a damaged file behind. A write-protected target
// is refused as an editor would refuse it. Temporary files are named
// `<target>.~<pid>-<n>.tmp`; one left behind by a process that no longer
// runs is removed by the next write of the same target. Checked by the
// file tests, the kill-during-save test and the fuzz harnesses.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace vintar {

// The largest files the readers take.
inline constexpr uint64_t kMaxProjectFileBytes = 256ull << 20;  // a .dat
inline constexpr uint64_t kMaxSmallFileBytes = 16ull << 20;     // .nat, preferences, zones, settings, options

// Reads the whole of a regular file of at most `maxBytes`. Returns 0, or
// the errno of the failure: ENOENT when there is no such file, EISDIR for a
// folder, EINVAL for something that is not a regular file, EFBIG when the
// file is larger than `maxBytes`.
int ReadFileBytes(const std::string& path, std::string& bytes, uint64_t maxBytes);
// Reads at most the first `maxBytes` bytes of a regular file; the rest of a
// longer file is left unread.
int ReadFilePrefix(const std::string& path, std::string& bytes, uint64_t maxBytes);

// The classic run-time error texts that the read and write messages quote
// ("Path not found", "Permission denied", "Disk full" and so on).
std::string FileErrorText(int err);
// The text of a write failure of `target`; a write-protected file is named.
std::string WriteErrorText(int err, const std::string& target);

// Staged writing, for saves that replace several files together: stage every
// file, then commit them; discard what is staged when anything failed. Stage
// and commit return 0 or the errno of the failure. Before anything is
// written, staging refuses a folder standing where the file should be
// (EISDIR) and a write-protected file (EROFS), and removes stale temporary
// files of the same target. `token` names the temporary file when given
// (pairs of files staged together share one); `kind` marks it (see below).
struct StagedFile {
  std::string target;
  std::string temp;   // empty when nothing is staged
  std::string token;  // "<pid>-<n>" of the temporary name
};
int StageFile(const std::string& target, const std::string& bytes, StagedFile& staged,
              const std::string& token = "", const std::string& kind = "");
// Renames the staged file over its target and makes the rename durable. On
// failure the temporary file stays staged; the caller discards it.
int CommitFile(StagedFile& staged);
void DiscardFile(StagedFile& staged);

// A staged file written piece by piece, for files too large to build in
// memory first. Open makes the same checks as StageFile; Commit syncs,
// closes and renames; a stream neither committed nor discarded is
// discarded when it goes.
class StagedStream {
 public:
  StagedStream() = default;
  StagedStream(const StagedStream&) = delete;
  StagedStream& operator=(const StagedStream&) = delete;
  ~StagedStream() { Discard(); }
  int Open(const std::string& target, const std::string& token = "", const std::string& kind = "");
  int Write(const void* data, size_t size);
  // Syncs and closes the temporary file, leaving it in place.
  int Close();
  // Files that can be made again from others (the position caches, checked
  // record by record on every run) skip the sync to the disk: a killed
  // program still leaves the old file or the whole new one, and only a
  // power cut at the wrong moment could cost the new one.
  void SetDerived() { derived_ = true; }
  // Close, then rename over the target; on failure the temporary file goes.
  int Commit();
  void Discard();
  // Hands the closed temporary file over to the caller.
  std::string ReleaseTemp() { return std::exchange(temp_, std::string()); }
  bool IsOpen() const { return fd_ >= 0; }
  const std::string& Token() const { return token_; }

 private:
  int fd_ = -1;
  bool derived_ = false;
  std::string target_, temp_, token_;
};

// Stage and commit one file. On failure the old file is untouched, the
// temporary file is removed, `error` holds the text of WriteErrorText and
// the result is false.
bool WriteFileAtomically(const std::string& path, const std::string& bytes, std::string& error);

// Temporary files of `target` in its folder. `kind` is "" for a plain one;
// `stale` when the process that made it no longer runs (or is this one,
// which has no save under way when it asks).
struct TemporaryFile {
  std::string path;
  std::string token;
  std::string kind;
  bool stale = false;
};
std::string TemporaryName(const std::string& target, const std::string& token, const std::string& kind);
std::vector<TemporaryFile> FindTemporaries(const std::string& target);
// Removes the stale plain temporary files of `target`; marked ones are left
// to the recovery that knows what they mean.
void RemoveStaleTemporaries(const std::string& target);
// Renames `from` over `to` and makes it durable; 0 or errno.
int RenameDurably(const std::string& from, const std::string& to);

}  // namespace vintar
