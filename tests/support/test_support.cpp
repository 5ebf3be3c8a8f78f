#include "support/test_support.h"

#include <grp.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <random>
#include <sstream>

namespace vintar::testing {

TempDir::TempDir() {
  std::random_device rd;
  auto base = std::filesystem::temp_directory_path();
  for (;;) {
    path_ = base / ("vintar-test-" + std::to_string(rd()));
    if (std::filesystem::create_directory(path_)) break;
  }
}

TempDir::~TempDir() {
  std::error_code ec;
  std::filesystem::remove_all(path_, ec);
}

std::string ReadBytes(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream s;
  s << in.rdbuf();
  return s.str();
}

void WriteBytes(const std::string& path, const std::string& bytes) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out << bytes;
}

TestSession::TestSession() {
  StartupOptions options;
  options.ConfigDir = dir.file("config");
  options.SystemDataPath = VINTAR_SOURCE_DATA_DIR;
  options.UserDataPath = dir.file("userdata");
  StartSession(session, options);
  session.clock = Clock{2026, 11, 22, 10, 30, 0};
  sink.Clear();
}

int RunInChild(const std::function<int()>& body, bool unprivileged) {
  std::fflush(nullptr);
  const pid_t pid = ::fork();
  if (pid < 0) return -1;
  if (pid == 0) {
    int code = 0;
    if (unprivileged && ::geteuid() == 0 && (::setgroups(0, nullptr) != 0 || ::setgid(65534) != 0 || ::setuid(65534) != 0))
      code = 125;
    if (code == 0) code = body();
    std::fflush(nullptr);
    ::_exit(code);
  }
  int status = 0;
  while (::waitpid(pid, &status, 0) < 0 && errno == EINTR) {
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

double AngleDiff(double a, double b) {
  double d = std::fmod(a - b, 360.0);
  if (d > 180.0) d -= 360.0;
  if (d < -180.0) d += 360.0;
  return d;
}

AngleErrorTracker::~AngleErrorTracker() {
  std::printf("[ largest error ] %s: %.3g degrees over %d comparisons\n", label_.c_str(), largest_, count_);
}

bool AngleErrorTracker::Check(double actual, double expected, double tolerance) {
  double e = std::fabs(AngleDiff(actual, expected));
  if (e > largest_) largest_ = e;
  ++count_;
  return e <= tolerance;
}

}  // namespace vintar::testing
