// Runs the `vintar` program for a CLI test: in its own configuration and
// user data folders, with stdout and stderr captured and no standard input.
#pragma once

#include <sys/wait.h>

#include <cstdlib>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "support/test_support.h"

namespace vintar::testing {

struct CliRun {
  int status = -1;
  std::string out, err;
  nlohmann::json json() const { return nlohmann::json::parse(out); }
};

inline std::string ShellQuote(const std::string& s) {
  std::string q = "'";
  for (char c : s) q += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return q + "'";
}

// `shell` goes in front of the command, for limits and users: "ulimit -f 8;"
// or "setpriv --reuid=65534 ...".
inline CliRun RunVintar(const TempDir& dir, const std::vector<std::string>& args, const std::string& shell = "") {
  std::string command = shell + " env VINTAR_CONFIG_DIR=" + ShellQuote(dir.file("config")) +
                        " XDG_DATA_HOME=" + ShellQuote(dir.file("data")) + " " + ShellQuote(VINTAR_CLI_PATH);
  for (const auto& a : args) command += " " + ShellQuote(a);
  command += " >" + ShellQuote(dir.file("out")) + " 2>" + ShellQuote(dir.file("err")) + " </dev/null";
  CliRun r;
  int raw = std::system(command.c_str());
  r.status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
  r.out = ReadBytes(dir.file("out"));
  r.err = ReadBytes(dir.file("err"));
  return r;
}

// Copies a sample project (its .dat and .nat) into `dir` as `as`; returns
// the copy's .dat path. Tests never write into samples/.
inline std::string CopySampleProject(const TempDir& dir, const std::string& stem, const std::string& as) {
  for (const char* ext : {".dat", ".nat"})
    WriteBytes(dir.file(as + ext), ReadBytes(std::string(VINTAR_SAMPLES_DIR) + "/" + stem + ext));
  return dir.file(as + ".dat");
}

}  // namespace vintar::testing
