// Hostile input to the `vintar` command: files that are not what they claim
// to be, files it may not read or write, a full disk, and names in any
// script. Each ends in a clear message and a non-zero exit (or, where the
// file is valid after all, in success), and leaves every file on disk as it
// was.
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <map>

#include "cli/cli_runner.h"
#include "support/test_support.h"

namespace vintar {
namespace {

using testing::CliRun;
using testing::ReadBytes;
using testing::RunVintar;
using testing::TempDir;
using testing::WriteBytes;

namespace fs = std::filesystem;

const std::string kNat =
    "VINTAR 2\r\n\"T\",\"\",\"\",\"\",\"\",\"\",\"\",\"\",\"\",\"\",\"\"\r\n\"Kin |\",\"0 |\"\r\n";
const std::string kRecord = "\"One\",1990,1,2,3,4,5,0,2,\"UT\",0,\"\",0,0,-1,0,\"A |\"\r\n";

// Every file under a folder with its bytes and mode, but the runner's own
// output and the program's configuration.
std::map<std::string, std::string> Snapshot(const TempDir& dir) {
  std::map<std::string, std::string> files;
  for (auto e = fs::recursive_directory_iterator(dir.path()); e != fs::recursive_directory_iterator(); ++e) {
    const std::string name = e->path().filename().string();
    if (name == "config" || name == "data") e.disable_recursion_pending();
    if (name == "out" || name == "err" || name == "config" || name == "data") continue;
    struct stat info {};
    ::lstat(e->path().c_str(), &info);
    std::string what = std::to_string(info.st_mode) + ":";
    if (e->is_regular_file() && info.st_size < (1 << 20)) what += ReadBytes(e->path().string());
    files[e->path().string()] = what;
  }
  return files;
}

// The names of the files that differ between two snapshots.
std::string Changed(const std::map<std::string, std::string>& a, const std::map<std::string, std::string>& b) {
  std::string names;
  for (const auto& [name, what] : a)
    if (!b.count(name) || b.at(name) != what) names += name + " ";
  for (const auto& [name, what] : b)
    if (!a.count(name)) names += name + " ";
  return names;
}

class Hostile : public ::testing::Test {
 protected:
  TempDir dir;
  std::string Put(const std::string& name, const std::string& bytes) {
    WriteBytes(dir.file(name), bytes);
    return dir.file(name);
  }
};

TEST_F(Hostile, ProjectFilesThatAreNotWhatTheyClaim) {
  std::string noise;
  for (unsigned x = 99, i = 0; i < 4000; ++i) noise += static_cast<char>((x = x * 1103515245u + 12345u) >> 16);
  std::string flags;
  for (int i = 0; i < 1000000; ++i) flags += "-1\r\n";

  Put("empty.nat", ""), Put("empty.dat", kRecord);
  Put("noise.dat", noise);
  Put("bad.dat", "\"One\",1990,1,2,3,4,5,0,2,\"UT\",0,\"\",0,0,-1,0,\"\"\r\n\"Two\",oops,1\r\n");
  fs::create_directory(dir.file("folder.dat"));
  ASSERT_EQ(::mkfifo(dir.file("pipe.dat").c_str(), 0644), 0);
  fs::resize_file(Put("huge.dat", ""), 1ull << 40);  // a terabyte, sparse
  Put("cats.nat", "VINTAR 2\r\n\"T\",\"\",\"\",\"\",\"\",\"\",\"\",\"\",\"\",\"\",\"\"\r\n\"" +
                      std::string(40000, '|') + "\",\"\"\r\n");
  Put("cats.dat", kRecord);
  Put("bars.dat", "\"One\",1990,1,2,3,4,5,0,2,\"UT\",0,\"\",0,0,-1,0,\"" + std::string(100000, '|') + "\"\r\n");
  // A version 1 header whose list of flags claims a million records.
  Put("claims.nat", "\"T\",\"\",\"\",\"\",\"\",\"\",\"\",\"\",\"\",\"\",\"\"\r\n" + flags);
  Put("claims.dat", "\"Trip\",\"5 May 1962\",2,1,\"BST\",\"-1:00\",\"\",\"London\",\"0W10\",\"51N30\"\r\n");
  // UTF-8 where the files hold Latin-1: a text field keeps its bytes; a
  // date the parser cannot read is reported and the record kept.
  Put("utf8.dat", "\"caf\xc3\xa9 \xe6\x97\xa5\",1990,1,2,3,4,5,0,2,\"UT\",0,\"\",0,0,-1,0,\"\"\r\n");
  Put("utf8v1.dat", "\"Trip\",\"12 ao\xc3\xbbt 1958\",2,1,\"BST\",\"-1:00\",\"\",\"London\",\"0W10\",\"51N30\"\r\n");

  struct Case {
    const char* file;
    int status;
    const char* says;  // in the messages
  } cases[] = {
      {"empty.dat", 1, "Input past end of file"},
      {"noise.dat", 1, "File Read Error"},
      {"bad.dat", 1, "Record 2"},
      {"folder.dat", 1, "Path/File access error"},
      {"pipe.dat", 1, "not a regular file"},
      {"huge.dat", 1, "File too large"},
      {"cats.dat", 1, "Too many categories (40000)"},
      {"bars.dat", 1, "Too many categories (100000)"},
      {"claims.dat", 0, ""},
      {"utf8.dat", 0, ""},
      {"utf8v1.dat", 0, "The format of the date is not recognized."},
  };
  const auto before = Snapshot(dir);
  for (const auto& c : cases) {
    SCOPED_TRACE(c.file);
    CliRun show = RunVintar(dir, {"project", "show", dir.file(c.file), "--json"});
    EXPECT_EQ(show.status, c.status) << show.err;
    EXPECT_NE(show.err.find(c.says), std::string::npos) << show.err;
    const auto json = show.json();  // valid JSON, whatever the bytes
    if (c.status == 0) {
      EXPECT_EQ(json["header"]["recordCount"], 1);
    } else {
      CliRun save = RunVintar(dir, {"project", "save", dir.file(c.file), dir.file(c.file)});
      EXPECT_EQ(save.status, 1);
    }
  }
  EXPECT_EQ(Changed(Snapshot(dir), before), "") << "nothing on disk changed";

  // A valid project in another script keeps its bytes through a save.
  ASSERT_EQ(RunVintar(dir, {"project", "save", dir.file("utf8.dat"), dir.file("copy.dat")}).status, 0);
  EXPECT_EQ(ReadBytes(dir.file("copy.dat")), ReadBytes(dir.file("utf8.dat")));
}

TEST_F(Hostile, FileNamesInAnyScriptAreTheSystemsOwn) {
  const std::string sample = std::string(VINTAR_SAMPLES_DIR) + "/hollis";
  const std::string cafe = dir.file("caf\xc3\xa9.dat"), japan = dir.file("\xe6\x97\xa5\xe6\x9c\xac.dat");
  WriteBytes(cafe, ReadBytes(sample + ".dat"));
  WriteBytes(dir.file("caf\xc3\xa9.nat"), ReadBytes(sample + ".nat"));
  CliRun save = RunVintar(dir, {"project", "save", cafe, japan, "--json"});
  ASSERT_EQ(save.status, 0) << save.err;
  EXPECT_EQ(save.json()["path"], japan);
  EXPECT_EQ(ReadBytes(japan), ReadBytes(sample + ".dat"));
  EXPECT_EQ(ReadBytes(dir.file("\xe6\x97\xa5\xe6\x9c\xac.nat")), ReadBytes(sample + ".nat"));
  CliRun show = RunVintar(dir, {"project", "show", japan});
  EXPECT_EQ(show.status, 0);
  EXPECT_NE(show.out.find(japan), std::string::npos) << "shown as it is named";
  fs::create_directory(dir.file("\xe6\x97\xa5.dat"));
  CliRun failed = RunVintar(dir, {"project", "show", dir.file("\xe6\x97\xa5.dat")});
  EXPECT_NE(failed.err.find(dir.file("\xe6\x97\xa5.dat")), std::string::npos) << failed.err;
}

// Saving where it cannot: a folder that is not the user's, a full disk (a
// small one mounted where the test may, else a limit on the size of files).
// The old project stays whole and no temporary file is left beside it.
TEST_F(Hostile, SavesThatCannotBeDone) {
  std::string big;
  for (int i = 0; i < 2000; ++i) big += kRecord;
  Put("big.dat", big), Put("big.nat", kNat);
  fs::create_directory(dir.file("shut"));
  Put("shut/p.dat", kRecord), Put("shut/p.nat", kNat);
  ::chmod(dir.file("shut").c_str(), 0555);
  ::chmod(dir.path().c_str(), 0755);
  fs::create_directory(dir.file("disk"));
  const bool mounted = ::mount("vintar-test", dir.file("disk").c_str(), "tmpfs", 0, "size=64k") == 0;
  Put("disk/p.dat", kRecord), Put("disk/p.nat", kNat);

  struct Case {
    const char* name;
    std::string target;
    std::string shell;
    const char* says;
  } cases[] = {
      {"a folder it may not write", dir.file("shut/p.dat"), "setpriv --reuid=65534 --regid=65534 --clear-groups",
       "Permission denied"},
      {"a disk that fills up", dir.file("disk/p.dat"), mounted ? "" : "trap '' XFSZ; ulimit -f 16;", "Disk full"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const auto before = Snapshot(dir);
    CliRun r = RunVintar(dir, {"project", "save", dir.file("big.dat"), c.target}, c.shell);
    EXPECT_EQ(r.status, 1) << r.err;
    EXPECT_NE(r.err.find(c.says), std::string::npos) << r.err;
    EXPECT_EQ(Changed(Snapshot(dir), before), "");
  }
  if (mounted) ::umount(dir.file("disk").c_str());
  ::chmod(dir.file("shut").c_str(), 0755);
}

}  // namespace
}  // namespace vintar
