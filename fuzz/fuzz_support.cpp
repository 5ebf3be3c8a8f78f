#include "fuzz/fuzz_support.h"

#include <signal.h>
#include <stdlib.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace vintar::fuzz {
namespace {

std::string g_rootToRemove;

void RemoveRoot() {
  if (g_rootToRemove.empty()) return;
  std::error_code ec;
  std::filesystem::remove_all(g_rootToRemove, ec);
}

// TMPDIR when it is set; otherwise memory-backed /dev/shm, where the
// synced writes of the savers cost nothing; else /tmp.
std::string TempBase() {
  const char* tmpdir = std::getenv("TMPDIR");
  if (tmpdir && *tmpdir) return tmpdir;
  if (access("/dev/shm", W_OK | X_OK) == 0) return "/dev/shm";
  return "/tmp";
}

constexpr const char* kPrefix = "vintar-fuzz-";

// A process that crashes, times out or is stopped by libFuzzer's fork mode
// never reaches its exit handlers; the next process removes the folders of
// those that no longer run.
void RemoveFoldersOfDeadProcesses(const std::string& base) {
  std::error_code ec;
  for (std::filesystem::directory_iterator it(base, ec), end; !ec && it != end; it.increment(ec)) {
    const std::filesystem::path path = it->path();
    const std::string name = path.filename().string();
    if (name.rfind(kPrefix, 0) != 0) continue;
    char* after = nullptr;
    const long pid = std::strtol(name.c_str() + std::strlen(kPrefix), &after, 10);
    if (pid <= 0 || after == nullptr || *after != '-') continue;
    if (kill(static_cast<pid_t>(pid), 0) == 0 || errno != ESRCH) continue;
    std::error_code ignored;
    std::filesystem::remove_all(path, ignored);
  }
}

std::string MakeTempRoot() {
  const std::string base = TempBase();
  RemoveFoldersOfDeadProcesses(base);
  std::string pattern = base + "/" + kPrefix + std::to_string(getpid()) + "-XXXXXX";
  if (!mkdtemp(pattern.data())) {
    std::perror("mkdtemp");
    std::abort();
  }
  return pattern + "/";
}

}  // namespace

FuzzSession& FuzzSession::Get() {
  static FuzzSession instance;
  return instance;
}

FuzzSession::FuzzSession() : root_(MakeTempRoot()), work_(root_ + "work/") {
  g_rootToRemove = root_;
  std::atexit(RemoveRoot);

  std::error_code ec;
  std::filesystem::create_directories(root_ + "userdata", ec);
  StartupOptions options;
  options.ConfigDir = root_ + "config";
  options.SystemDataPath = VINTAR_SOURCE_DATA_DIR;
  options.UserDataPath = root_ + "userdata";
  StartSession(session_, options);
  // A fixed "today": the date parser fills a missing year from the clock.
  session_.clock = Clock{2026, 11, 22, 10, 30, 0};
  pristine_ = session_;
  sink_.Clear();
}

Session& FuzzSession::Reset(bool emptyWorkFolder) {
  session_ = pristine_;
  sink_.Clear();
  sink_.answer = 0;
  sink_.beeps = 0;
  if (emptyWorkFolder) {
    std::error_code ec;
    std::filesystem::remove_all(work_, ec);
    std::filesystem::create_directories(work_, ec);
  }
  return session_;
}

void WriteBytes(const std::string& path, const std::string& bytes) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

std::string ReadBytes(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream s;
  s << in.rdbuf();
  return s.str();
}

}  // namespace vintar::fuzz
