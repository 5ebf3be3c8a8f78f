#include "core/file_io.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>

namespace vintar {

bool ReadWholeFile(const std::string& path, std::string& bytes, std::string& error) {
  std::error_code ec;
  if (std::filesystem::is_directory(path, ec)) {
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

bool WriteFileAtomically(const std::string& path, const std::string& bytes, std::string& error) {
  namespace fs = std::filesystem;
  std::error_code ec;
  if (fs::is_directory(path, ec)) {
    error = std::strerror(EISDIR);
    return false;
  }
  fs::path target(path);
  fs::path folder = target.has_parent_path() ? target.parent_path() : fs::path(".");
  std::random_device rd;
  std::string temp;
  int fd = -1;
  for (int attempt = 0; attempt < 20 && fd < 0; ++attempt) {
    temp = (folder / ("." + target.filename().string() + ".tmp" + std::to_string(rd() % 1000000))).string();
    fd = ::open(temp.c_str(), O_WRONLY | O_CREAT | O_EXCL, 0644);
    if (fd < 0 && errno != EEXIST) break;
  }
  if (fd < 0) {
    error = std::strerror(errno);
    return false;
  }
  // Keep the permissions of a file being replaced.
  struct stat old {};
  if (::stat(path.c_str(), &old) == 0) ::fchmod(fd, old.st_mode & 07777);

  const char* p = bytes.data();
  size_t left = bytes.size();
  bool ok = true;
  while (left > 0) {
    ssize_t n = ::write(fd, p, left);
    if (n < 0) {
      if (errno == EINTR) continue;
      ok = false;
      break;
    }
    p += n;
    left -= static_cast<size_t>(n);
  }
  if (ok && ::fsync(fd) != 0) ok = false;
  int savedErrno = errno;
  if (::close(fd) != 0 && ok) {
    ok = false;
    savedErrno = errno;
  }
  if (ok && std::rename(temp.c_str(), path.c_str()) != 0) {
    ok = false;
    savedErrno = errno;
  }
  if (!ok) {
    ::unlink(temp.c_str());
    error = std::strerror(savedErrno);
    return false;
  }
  return true;
}

}  // namespace vintar
