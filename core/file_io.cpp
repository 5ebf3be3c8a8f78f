#include "core/file_io.h"

#include <dirent.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include "core/session.h"
#include "core/text.h"

namespace vintar {
namespace {

// Reads an open descriptor to its end, refusing more than `maxBytes` unless
// `prefixOnly`, in which case the rest is left unread.
int ReadDescriptor(int fd, std::string& bytes, uint64_t maxBytes, bool prefixOnly) {
  struct stat info {};
  if (::fstat(fd, &info) != 0) return errno;
  if (S_ISDIR(info.st_mode)) return EISDIR;
  if (!S_ISREG(info.st_mode)) return EINVAL;
  const uint64_t size = info.st_size > 0 ? static_cast<uint64_t>(info.st_size) : 0;
  if (size > maxBytes && !prefixOnly) return EFBIG;
  std::string out;
  try {
    out.resize(static_cast<size_t>(size < maxBytes ? size : maxBytes));
  } catch (...) {
    return ENOMEM;
  }
  size_t done = 0;
  for (;;) {
    if (done == out.size()) {
      // The file may have grown since it was measured: read on, within the limit.
      if (done >= maxBytes) {
        char probe;
        ssize_t more = ::read(fd, &probe, 1);
        if (more > 0 && !prefixOnly) return EFBIG;
        break;
      }
      try {
        out.resize(static_cast<size_t>(std::min<uint64_t>(maxBytes, done + 65536)));
      } catch (...) {
        return ENOMEM;
      }
    }
    ssize_t n = ::read(fd, out.data() + done, out.size() - done);
    if (n < 0) {
      if (errno == EINTR) continue;
      return errno;
    }
    if (n == 0) break;
    done += static_cast<size_t>(n);
  }
  out.resize(done);
  bytes = std::move(out);
  return 0;
}

int ReadFile(const std::string& path, std::string& bytes, uint64_t maxBytes, bool prefixOnly) {
  if (path.empty()) return ENOENT;
  // Non-blocking, so that a pipe without a writer fails instead of waiting.
  const int fd = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  if (fd < 0) return errno;
  const int err = ReadDescriptor(fd, bytes, maxBytes, prefixOnly);
  ::close(fd);
  return err;
}

// The folder of a file, to open: "." for a bare file name.
std::string FolderToOpen(const std::string& path) {
  const std::string folder = PathFolder(path);
  return folder.empty() ? "." : folder;
}

void SyncFolderOf(const std::string& path) {
  const int fd = ::open(FolderToOpen(path).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (fd < 0) return;
  ::fsync(fd);
  ::close(fd);
}

// Whether the process that made a temporary file has ended. This process
// counts as ended: it asks only when it has no write under way.
bool ProcessEnded(long pid) {
  if (pid <= 0 || pid == static_cast<long>(::getpid())) return true;
  return ::kill(static_cast<pid_t>(pid), 0) != 0 && errno == ESRCH;
}

}  // namespace

int ReadFileBytes(const std::string& path, std::string& bytes, uint64_t maxBytes) {
  return ReadFile(path, bytes, maxBytes, false);
}

int ReadFilePrefix(const std::string& path, std::string& bytes, uint64_t maxBytes) {
  return ReadFile(path, bytes, maxBytes, true);
}

std::string FileErrorText(int err) {
  switch (err) {
    case ENOENT:
    case ENOTDIR:
    case ENAMETOOLONG:
      return "Path not found";
    case EACCES:
    case EPERM:
    case EROFS:
      return "Permission denied";
    case EISDIR:
    case EINVAL:
      return "Path/File access error";
    case ENOSPC:
    case EFBIG:
#ifdef EDQUOT
    case EDQUOT:
#endif
      return "Disk full";
    case ENOMEM:
      return "Out of memory";
    default:
      return "Device I/O error";
  }
}

std::string WriteErrorText(int err, const std::string& target) {
  if (err == EROFS) return FileErrorText(err) + kLineEnd + target + " is write-protected.";
  return FileErrorText(err);
}

std::string TemporaryName(const std::string& target, const std::string& token, const std::string& kind) {
  return target + ".~" + token + (kind.empty() ? "" : "." + kind) + ".tmp";
}

std::vector<TemporaryFile> FindTemporaries(const std::string& target) {
  std::vector<TemporaryFile> found;
  const std::string folder = PathFolder(target);
  const std::string prefix = PathFileName(target) + ".~";
  DIR* dir = ::opendir(FolderToOpen(target).c_str());
  if (!dir) return found;
  while (const dirent* entry = ::readdir(dir)) {
    const std::string name = entry->d_name;
    if (name.size() <= prefix.size() + 4 || name.compare(0, prefix.size(), prefix) != 0 ||
        name.compare(name.size() - 4, 4, ".tmp") != 0)
      continue;
    // "<pid>-<n>" or, from earlier versions, "<pid>_<n>"; then ".<kind>".
    std::string rest = name.substr(prefix.size(), name.size() - prefix.size() - 4);
    size_t i = 0;
    long pid = 0;
    while (i < rest.size() && rest[i] >= '0' && rest[i] <= '9' && pid < 100000000) pid = pid * 10 + (rest[i++] - '0');
    if (i == 0 || i >= rest.size() || (rest[i] != '-' && rest[i] != '_')) continue;
    ++i;
    const size_t digits = i;
    while (i < rest.size() && rest[i] >= '0' && rest[i] <= '9') ++i;
    if (i == digits) continue;
    TemporaryFile t;
    t.path = folder + name;
    t.token = rest.substr(0, i);
    if (i < rest.size()) {
      if (rest[i] != '.') continue;
      t.kind = rest.substr(i + 1);
    }
    t.stale = ProcessEnded(pid);
    found.push_back(std::move(t));
  }
  ::closedir(dir);
  return found;
}

void RemoveStaleTemporaries(const std::string& target) {
  for (const TemporaryFile& t : FindTemporaries(target))
    if (t.stale && t.kind.empty()) ::unlink(t.path.c_str());
}

int RenameDurably(const std::string& from, const std::string& to) {
  if (::rename(from.c_str(), to.c_str()) != 0) return errno;
  SyncFolderOf(to);
  return 0;
}

int StagedStream::Open(const std::string& target, const std::string& token, const std::string& kind) {
  Discard();
  target_ = target;
  struct stat existing {};
  const bool exists = ::stat(target.c_str(), &existing) == 0;
  if (exists && S_ISDIR(existing.st_mode)) return EISDIR;
  if (exists && S_ISREG(existing.st_mode) && (existing.st_mode & 0222) == 0) return EROFS;
  RemoveStaleTemporaries(target);

  int fd = -1;
  std::string temp, used;
  for (int attempt = 0; attempt < 100 && fd < 0; ++attempt) {
    used = token.empty() ? std::to_string(::getpid()) + "-" + std::to_string(attempt) : token;
    temp = TemporaryName(target, used, kind);
    fd = ::open(temp.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (fd < 0 && (errno != EEXIST || !token.empty())) break;
  }
  if (fd < 0) return errno;
  // Keep the permissions of a file being replaced.
  if (exists && S_ISREG(existing.st_mode)) ::fchmod(fd, existing.st_mode & 07777);
  fd_ = fd;
  temp_ = temp;
  token_ = used;
  return 0;
}

int StagedStream::Write(const void* data, size_t size) {
  if (fd_ < 0) return EBADF;
  const char* p = static_cast<const char*>(data);
  size_t done = 0;
  while (done < size) {
    ssize_t n = ::write(fd_, p + done, size - done);
    if (n < 0) {
      if (errno == EINTR) continue;
      return errno;
    }
    if (n == 0) return EIO;
    done += static_cast<size_t>(n);
  }
  return 0;
}

int StagedStream::Close() {
  if (fd_ < 0) return temp_.empty() ? EBADF : 0;
  int err = 0;
  if (!derived_ && ::fsync(fd_) != 0 && errno != EINVAL && errno != EROFS) err = errno;
  if (::close(fd_) != 0 && err == 0) err = errno;
  fd_ = -1;
  return err;
}

int StagedStream::Commit() {
  int err = Close();
  if (err == 0 && ::rename(temp_.c_str(), target_.c_str()) != 0) err = errno;
  if (err == 0 && !derived_) SyncFolderOf(target_);
  if (err != 0) {
    Discard();
    return err;
  }
  temp_.clear();
  return 0;
}

void StagedStream::Discard() {
  if (fd_ >= 0) ::close(fd_);
  fd_ = -1;
  if (!temp_.empty()) ::unlink(temp_.c_str());
  temp_.clear();
}

int StageFile(const std::string& target, const std::string& bytes, StagedFile& staged, const std::string& token,
              const std::string& kind) {
  staged.target = target;
  staged.temp.clear();
  staged.token.clear();
  StagedStream stream;
  if (int err = stream.Open(target, token, kind)) return err;
  int err = stream.Write(bytes.data(), bytes.size());
  if (err == 0) err = stream.Close();
  if (err != 0) return err;  // the stream removes its file as it goes
  // Written and synced, and left in place for CommitFile.
  staged.token = stream.Token();
  staged.temp = stream.ReleaseTemp();
  return 0;
}

int CommitFile(StagedFile& staged) {
  if (staged.temp.empty()) return 0;
  if (int err = RenameDurably(staged.temp, staged.target)) return err;
  staged.temp.clear();
  return 0;
}

void DiscardFile(StagedFile& staged) {
  if (!staged.temp.empty()) ::unlink(staged.temp.c_str());
  staged.temp.clear();
}

bool WriteFileAtomically(const std::string& path, const std::string& bytes, std::string& error) {
  StagedFile staged;
  int err = StageFile(path, bytes, staged);
  if (err == 0) err = CommitFile(staged);
  if (err == 0) return true;
  DiscardFile(staged);
  error = WriteErrorText(err, path);
  return false;
}

}  // namespace vintar
