// Shared helpers of the test programs: a temporary folder per test, byte-exact
// file reading and writing, a started session with a fixed clock and captured
// messages, and one angle comparison that handles the wrap at 360 degrees.
#pragma once

#include <filesystem>
#include <functional>
#include <string>

#include "core/messages.h"
#include "core/session.h"

namespace vintar::testing {

class TempDir {
 public:
  TempDir();
  ~TempDir();
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;
  const std::filesystem::path& path() const { return path_; }
  std::string file(const std::string& name) const { return (path_ / name).string(); }

 private:
  std::filesystem::path path_;
};

std::string ReadBytes(const std::string& path);
void WriteBytes(const std::string& path, const std::string& bytes);

// A session started on temporary configuration and user data folders and
// the repository's data folder, with the clock fixed at 22 November 2026 10:30 and every
// message captured in `sink`.
struct TestSession {
  TestSession();
  TempDir dir;
  CapturingSink sink;
  Session session{sink};
};

// Runs `body` in a forked child and returns what it returns, or -1 when the
// child died by a signal. With `unprivileged`, the child first gives up
// root for the user nobody, so that file permissions hold for it as they
// do for a user (root reads and writes past them); the folders it uses
// must be open to others. `body` must not use gtest assertions: it reports
// by its return value, 0 for success.
int RunInChild(const std::function<int()>& body, bool unprivileged = false);

// Difference of two angles in degrees reduced to -180..180.
double AngleDiff(double a, double b);

// Tracks the largest angular error over a table of comparisons and prints it
// at the end, so that each test reports how close it came to its oracle.
class AngleErrorTracker {
 public:
  explicit AngleErrorTracker(std::string label) : label_(std::move(label)) {}
  ~AngleErrorTracker();
  // Returns true when |a - b| (wrapped) is at most `tolerance`.
  bool Check(double actual, double expected, double tolerance);
  double Largest() const { return largest_; }

 private:
  std::string label_;
  double largest_ = 0.0;
  int count_ = 0;
};

}  // namespace vintar::testing
