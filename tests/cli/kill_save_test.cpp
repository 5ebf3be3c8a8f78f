// Kills the `vintar` command with SIGKILL at random moments while it writes,
// again and again, and checks after every kill that each file it was
// writing holds all its old bytes or all its new ones once the project is
// next opened, and that no temporary file is left beside it. The moments
// come from a fixed seed; VINTAR_KILL_ROUNDS sets the number of rounds.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <thread>

#include "calc/cache.h"
#include "core/project_file.h"
#include "support/test_support.h"

namespace vintar {
namespace {

using testing::ReadBytes;
using testing::TempDir;
using testing::WriteBytes;

int Rounds(int fallback) {
  const char* text = std::getenv("VINTAR_KILL_ROUNDS");
  return text ? std::max(1, std::atoi(text)) : fallback;
}

// Starts `vintar` with `args` in its own configuration folder, output discarded.
pid_t Start(const TempDir& dir, const std::vector<std::string>& args) {
  const std::string config = dir.file("config");
  const pid_t pid = ::fork();
  if (pid == 0) {
    std::freopen("/dev/null", "w", stdout);
    std::freopen("/dev/null", "w", stderr);
    ::setenv("VINTAR_CONFIG_DIR", config.c_str(), 1);
    std::vector<char*> argv{const_cast<char*>(VINTAR_CLI_PATH)};
    for (const auto& a : args) argv.push_back(const_cast<char*>(a.c_str()));
    argv.push_back(nullptr);
    ::execv(VINTAR_CLI_PATH, argv.data());
    ::_exit(127);
  }
  return pid;
}

// Waits `micros`, kills the child if it still runs, and reaps it. True when
// the kill came before the child had ended.
bool KillAfter(pid_t pid, long micros) {
  std::this_thread::sleep_for(std::chrono::microseconds(micros));
  int status = 0;
  const bool running = ::waitpid(pid, &status, WNOHANG) == 0;
  if (running) {
    ::kill(pid, SIGKILL);
    ::waitpid(pid, &status, 0);
  }
  return running;
}

long Duration(const TempDir& dir, const std::vector<std::string>& args) {
  const auto start = std::chrono::steady_clock::now();
  int status = 0;
  ::waitpid(Start(dir, args), &status, 0);
  return std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now() - start).count();
}

int FilesIn(const std::filesystem::path& folder) {
  int n = 0;
  for ([[maybe_unused]] const auto& e : std::filesystem::directory_iterator(folder)) ++n;
  return n;
}

// A project of `count` records whose every record and title carry `tag`.
std::pair<std::string, std::string> Project(int count, const std::string& tag) {
  std::string dat;
  for (int i = 0; i < count; ++i)
    dat += "\"" + tag + " event " + std::to_string(i) + "\"," + std::to_string(1900 + i % 120) +
           ",3,14,15,9,26,0,2,\"UT\",0,\"Somewhere\",0,51.5,-1,0,\"" + tag + " |\"\r\n";
  const std::string nat = "VINTAR 2\r\n\"" + tag +
                          "\",\"\",\"\",\"\",\"\",\"\",\"\",\"\",\"\",\"\",\"\"\r\n\"Tag |\",\"0 |\"\r\n";
  return {dat, nat};
}

TEST(KillDuringSave, AProjectIsAlwaysWholeOldOrWholeNew) {
  TempDir dir;
  std::filesystem::create_directory(dir.file("p"));
  const auto [oldDat, oldNat] = Project(30000, "Old");
  const auto [newDat, newNat] = Project(30000, "New");
  WriteBytes(dir.file("new.dat"), newDat);
  WriteBytes(dir.file("new.nat"), newNat);
  const std::string target = dir.file("p/p.dat"), targetNat = dir.file("p/p.nat");
  const std::vector<std::string> save = {"project", "save", dir.file("new.dat"), target};
  auto reset = [&] {
    WriteBytes(target, oldDat);
    WriteBytes(targetNat, oldNat);
  };
  reset();
  const long full = Duration(dir, save);
  ASSERT_EQ(ReadBytes(target), newDat);

  // Half the kills anywhere in the run, half near its end, where the files
  // are written and renamed.
  std::mt19937_64 random(20261123);
  std::uniform_int_distribution<long> anywhere(0, full + full / 5), nearTheEnd(full * 4 / 5, full + full / 20);
  auto moment = [&](int round) { return round % 2 ? anywhere(random) : nearTheEnd(random); };
  const int rounds = Rounds(60);
  int killed = 0, old = 0, whole = 0, finished = 0, temporaries = 0;
  for (int round = 0; round < rounds; ++round) {
    reset();
    killed += KillAfter(Start(dir, save), moment(round));
    temporaries += FilesIn(dir.file("p")) - 2;
    finished += RecoverInterruptedSave(target);
    const std::string dat = ReadBytes(target), nat = ReadBytes(targetNat);
    const bool isOld = dat == oldDat && nat == oldNat, isNew = dat == newDat && nat == newNat;
    ASSERT_TRUE(isOld || isNew) << "round " << round << ": a mixed or damaged project";
    old += isOld;
    whole += isNew;
    ASSERT_EQ(FilesIn(dir.file("p")), 2) << "round " << round << ": a temporary file was left";
  }
  std::printf("[ kill figures ] project save, 30000 records, %.0f ms a save: %d rounds, %d killed while running; "
              "afterwards %d old, %d new (%d of them finished by the next open); %d temporary files found "
              "after kills, none left after the next open\n",
              full / 1000.0, rounds, killed, old, whole, finished, temporaries);
}

TEST(KillDuringSave, ACacheIsAlwaysTheOldOneOrACompleteNewOne) {
  TempDir dir;
  const std::string project = dir.file("life.dat");
  WriteBytes(project, ReadBytes(std::string(VINTAR_SAMPLES_DIR) + "/einstein.dat"));
  WriteBytes(dir.file("life.nat"), ReadBytes(std::string(VINTAR_SAMPLES_DIR) + "/einstein.nat"));
  const std::string cache = CacheFileName(project, 1, 0);
  const std::string oldCache(7 * kCacheRecordSize, '\x7f');  // every record stale
  const std::vector<std::string> run = {"cache", project, "--type", "0"};
  WriteBytes(cache, oldCache);
  const long full = Duration(dir, run);
  const std::string newCache = ReadBytes(cache);
  ASSERT_EQ(newCache.size(), 31u * kCacheRecordSize);

  std::mt19937_64 random(11);
  std::uniform_int_distribution<long> moment(0, full + full / 5);
  const int rounds = std::max(1, Rounds(60) / 3);
  int old = 0, whole = 0;
  for (int round = 0; round < rounds; ++round) {
    WriteBytes(cache, oldCache);
    KillAfter(Start(dir, run), moment(random));
    const std::string bytes = ReadBytes(cache);
    ASSERT_TRUE(bytes == oldCache || bytes == newCache) << "round " << round;
    old += bytes == oldCache;
    whole += bytes == newCache;
  }
  // The next run removes what a killed one left.
  WriteBytes(cache, oldCache);
  int status = 0;
  ::waitpid(Start(dir, run), &status, 0);
  EXPECT_EQ(ReadBytes(cache), newCache);
  EXPECT_EQ(FilesIn(dir.path()), 4) << "the project, its cache and the configuration folder";
  std::printf("[ kill figures ] cache run, 31 records, %.0f ms a run: %d rounds; afterwards %d old, %d new\n",
              full / 1000.0, rounds, old, whole);
}

}  // namespace
}  // namespace vintar
