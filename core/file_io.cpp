#include "core/file_io.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <sstream>

namespace vintar {

bool ReadWholeFile(const std::string& path, std::string& bytes, std::string& error) {
  struct stat info {};
  if (::stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode)) {
    error = std::strerror(EISDIR);
    return false;
  }
  std::ifstream in(path, std::ios::binary);
  if (!in) {
    error = std::strerror(errno ? errno : ENOENT);
    return false;
  }
  std::ostringstream s;
  s << in.rdbuf();
  bytes = s.str();
  return true;
}

int StageFile(const std::string& target, const std::string& bytes, StagedFile& staged) {
  staged.target = target;
  staged.temp.clear();
  struct stat existing {};
  bool exists = ::stat(target.c_str(), &existing) == 0;
  if (exists && S_ISDIR(existing.st_mode)) return EISDIR;

  int fd = -1;
  std::string temp;
  for (int attempt = 0; attempt < 100 && fd < 0; ++attempt) {
    temp = target + ".~" + std::to_string(::getpid()) + "_" + std::to_string(attempt) + ".tmp";
    fd = ::open(temp.c_str(), O_WRONLY | O_CREAT | O_EXCL, 0666);
    if (fd < 0 && errno != EEXIST) break;
  }
  if (fd < 0) return errno;
  // Keep the permissions of a file being replaced.
  if (exists && S_ISREG(existing.st_mode)) ::fchmod(fd, existing.st_mode & 07777);

  int err = 0;
  size_t done = 0;
  while (done < bytes.size() && err == 0) {
    ssize_t n = ::write(fd, bytes.data() + done, bytes.size() - done);
    if (n < 0) {
      if (errno != EINTR) err = errno;
      continue;
    }
    done += static_cast<size_t>(n);
  }
  if (err == 0 && ::fsync(fd) != 0 && errno != EINVAL && errno != EROFS) err = errno;
  if (::close(fd) != 0 && err == 0) err = errno;
  if (err != 0) {
    ::unlink(temp.c_str());
    return err;
  }
  staged.temp = temp;
  return 0;
}

int CommitFile(StagedFile& staged) {
  if (::rename(staged.temp.c_str(), staged.target.c_str()) != 0) {
    int err = errno;
    DiscardFile(staged);
    return err;
  }
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
  error = std::strerror(err);
  return false;
}

}  // namespace vintar
