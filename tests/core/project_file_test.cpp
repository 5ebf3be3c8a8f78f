// Project files: byte-for-byte round trips of both versions, format
// detection, the reader's handling of damaged files, safe saving, the header
// Julian days, the natal check and the sample projects.
#include "core/project_file.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>

#include "core/calendar.h"
#include "core/progress.h"
#include "core/session.h"
#include "support/test_support.h"

namespace vintar {
namespace {

using testing::ReadBytes;
using testing::WriteBytes;

const std::string kSamples = VINTAR_SAMPLES_DIR;
const std::string kReadError = "Error whilst attempting to read from file: ";

class ProjectFileTest : public ::testing::Test {
 protected:
  testing::TestSession ts;
  Session& session = ts.session;

  std::string Path(const std::string& name) { return ts.dir.file(name); }
  std::string Put(const std::string& name, const std::string& bytes) {
    WriteBytes(Path(name), bytes);
    return Path(name);
  }
  bool Open(const std::string& dat) { return OpenProjectFiles(session, dat, nullptr); }
  EventRecord& Record(int i) { return session.project.Events[i]; }
  std::vector<std::string> Messages() {
    std::vector<std::string> texts;
    for (const auto& m : ts.sink.messages) texts.push_back(m.text);
    return texts;
  }
  // Files left in the temporary folder other than the given ones.
  int StrayFiles(std::initializer_list<std::string> known) {
    int n = 0;
    for (const auto& entry : std::filesystem::directory_iterator(ts.dir.path())) {
      std::string name = entry.path().filename().string();
      if (name == "config") continue;
      if (std::find(known.begin(), known.end(), name) == known.end()) ++n;
    }
    return n;
  }
};

const std::string kNatV2 =
    "VINTAR 2\r\n\"Small\",\"Ann Lee\",\"3 Feb 1932\",\"7:20 am\",\"Hobart\",\"42S53\",\"147E20\",\"AEST\","
    "\"-10:00\",\"0:00 am\",\"11:59 pm\"\r\n\"Kin |Age |\",\"0 |1 |\"\r\n";
const std::string kRecordV2 = "\"Trip\",1962,5,5,9,30,15,2,3,\"BST\",-1,\"London\",0.16666667,51.5,-1,0,\"A |4 |\"\r\n";

TEST_F(ProjectFileTest, Version2SampleRoundTripsByteForByte) {
  std::string dat = ReadBytes(kSamples + "/hollis.dat"), nat = ReadBytes(kSamples + "/hollis.nat");
  Put("in.nat", nat);
  ASSERT_TRUE(Open(Put("in.dat", dat)));
  session.project.Status.NatChanged = session.project.Status.DataChanged = kTrue;
  bool failed = true;
  WriteProject(session, Path("out.dat"), session.project.Header, session.project.Events, failed, true);
  EXPECT_FALSE(failed);
  EXPECT_EQ(ReadBytes(Path("out.dat")), dat);
  EXPECT_EQ(ReadBytes(Path("out.nat")), nat);
  EXPECT_FALSE(session.project.Status.NatChanged || session.project.Status.DataChanged);
  EXPECT_EQ(session.WindowTitle.find("[Modified]"), std::string::npos);
  EXPECT_TRUE(Messages().empty());
}

TEST_F(ProjectFileTest, Version1IsRewrittenAsVersion2OnTheFirstSave) {
  // The .nat's Enabled list (0, 0) has no effect; an empty time reads as noon.
  Put("v1.nat", "\"Old\",\"\",\"\",\"\",\"\",\"\",\"\",\"\",\"\",\"\",\"11:59 pm\"\r\n0\r\n0\r\n");
  std::string dat = Put("v1.dat",
                        "\"Trip\",\"5 May 1962\",2,1,\"BST\",\"-1:00\",\"\",\"London, England\",\"0W10\",\"51N30\"\r\n"
                        "\"Wedding\",\"22 Jun 1974\",0,3,\"CEST \",\"-2:00\",\"11:00 am\",\"Zurich\",\"8E33\",\"47N22\"\r\n");
  ASSERT_TRUE(Open(dat));
  EXPECT_EQ(session.project.Header.FormatVersion, 1);
  bool failed = true;
  WriteProject(session, dat, session.project.Header, session.project.Events, failed, false);
  EXPECT_FALSE(failed);
  EXPECT_EQ(ReadBytes(dat),
            "\"Trip\",1962,5,5,12,0,0,2,1,\"BST\",-1,\"London, England\",0.16666667,51.5,-1,0,\"\"\r\n"
            "\"Wedding\",1974,6,22,11,0,0,0,3,\"CEST\",-2,\"Zurich\",-8.55,47.366665,-1,0,\"\"\r\n");
  EXPECT_EQ(ReadBytes(Path("v1.nat")).substr(0, 6), "\"Old\",") << "an unflagged .nat stays as it was";
  EXPECT_EQ(session.project.Header.FormatVersion, 2);

  session.project.Status.NatChanged = kTrue;
  WriteProject(session, dat, session.project.Header, session.project.Events, failed, false);
  EXPECT_EQ(ReadBytes(Path("v1.nat")), "VINTAR 2\r\n\"Old\",\"\",\"\",\"\",\"\",\"\",\"\",\"\",\"\",\"\",\"11:59 pm\"\r\n"
                                       "\"\",\"\"\r\n");
  EXPECT_TRUE(Messages().empty());
}

TEST_F(ProjectFileTest, DetectsTheFormatByTheSecondField) {
  struct Case {
    const char* bytes;
    int format;
  } cases[] = {
      {"\"a\",\"1/1/50\",0\r\n", 2},       {"\"a\",\"1/12/50\",0\r\n", 1}, {"\"a\",1958,8,12\r\n", 2},
      {"\"a\", \"12 Aug 1958\"\r\n", 1}, {"", 2},                        {"\"only one\"", 2},
  };
  for (const auto& c : cases) EXPECT_EQ(DetectDataFormat(Put("d.dat", c.bytes)), c.format) << c.bytes;
  EXPECT_EQ(DetectDataFormat(Path("missing.dat")), 0);
  EXPECT_EQ(DetectDataFormat(ts.dir.path().string()), 0);
}

TEST_F(ProjectFileTest, WideDayRangesComeUpDisabled) {
  struct Case {
    int range;
    int16_t enabled;
  } cases[] = {{0, kTrue}, {179, kTrue}, {180, kFalse}, {181, kFalse}, {255, kFalse}};
  for (const auto& c : cases) {
    std::string dat = Put("r.dat", "\"x\",2000,1,1,0,0,0," + std::to_string(c.range) +
                                       ",0,\"UT\",0,\"p\",0,0,-1,0,\"\"\r\n");
    ASSERT_TRUE(Open(dat));
    EXPECT_EQ(Record(1).Enabled, c.enabled) << c.range;
    EXPECT_EQ(Record(1).DayRange, c.range);
  }
}

TEST_F(ProjectFileTest, CompanionlessAndUnknownVersions) {
  ASSERT_TRUE(Open(Put("lone.dat", kRecordV2)));
  const ProjectHeader& h = session.project.Header;
  EXPECT_EQ(h.Title, "New Project");
  EXPECT_EQ(h.ZoneMnemonic, "UT");
  EXPECT_EQ(h.EarliestTime, "0:00 AM");
  EXPECT_EQ(session.project.Status.NatPath, Path("lone.nat"));
  EXPECT_EQ(session.project.ProjectStem, "lone");

  Put("v3.nat", "VINTAR 3\r\n\"T\",\"\",\"\",\"\",\"\",\"\",\"\",\"\",\"\",\"\",\"\"\r\n\"\",\"\"\r\n");
  EXPECT_FALSE(Open(Put("v3.dat", kRecordV2)));
  EXPECT_EQ(session.project.Header.FormatVersion, 0);
  EXPECT_TRUE(Messages().empty()) << "an unknown version gives up quietly";
}

TEST_F(ProjectFileTest, ReadsFieldsNotLines) {
  // LF line ends, blanks around fields, junk after a closing quote, a quoted
  // field across a line end, Latin-1 bytes kept, an empty last field at the
  // very end of the file.
  Put("f.nat", kNatV2);
  std::string dat = Put("f.dat",
                        "  \"Caf\xe9\"junk , 1900 ,1,2,3,4,5,0,2,  UT  ,0,\"a\r\nb\",1.5,-2,-1,7,\"A |\"\n"
                        "\"Two\",2000,1,1,0,0,0,0,0,\"\",,\"\",0,0,0,0,");
  ASSERT_TRUE(Open(dat));
  ASSERT_EQ(session.project.Header.RecordCount, 2);
  EXPECT_EQ(Record(1).Description, "Caf\xe9");
  EXPECT_EQ(Record(1).Second, 5);
  EXPECT_EQ(Record(1).ZoneAbbr, "UT");
  EXPECT_EQ(Record(1).Placename, "a\r\nb");
  EXPECT_EQ(Record(1).Reserved, 7);
  EXPECT_EQ(Record(2).ZoneHours, 0.0f) << "an empty number reads as 0";
  EXPECT_EQ(Record(2).Enabled, kFalse);
  EXPECT_EQ(Record(2).Categories, "");
  EXPECT_DOUBLE_EQ(Record(1).JulianDay, RecordJulianDay(Record(1)));
  EXPECT_TRUE(Messages().empty());
}

TEST_F(ProjectFileTest, DamagedDataFilesNameTheRecordAndTouchNothing) {
  std::string good = kRecordV2;
  // A fixed pseudo-random run of bytes, quotes, commas and line ends included.
  std::string garbage;
  for (unsigned x = 12345, i = 0; i < 3000; ++i) garbage += static_cast<char>((x = x * 1103515245u + 12345u) >> 16);
  struct Case {
    const char* name;
    std::string bytes;
    int record;  // 0: any record
    const char* error;
  } cases[] = {
      {"truncated line", good + good + "\"Cut\",1962,5,5,9", 3, "Input past end of file"},
      {"text in a number", good + "\"x\",19x2,5,5,9,30,15,2,3,\"BST\",-1,\"L\",0,0,-1,0,\"\"\r\n", 2,
       "Type mismatch"},
      {"quoted number", "\"x\",\"1962\",5,5,9,30,15,2,3,\"BST\",-1,\"L\",0,0,-1,0,\"\"\r\n", 1, "Type mismatch"},
      {"year too large", good + good + good + "\"x\",99999,5,5,9,30,15,2,3,\"B\",-1,\"L\",0,0,-1,0,\"\"\r\n", 4,
       "Overflow"},
      {"byte below zero", "\"x\",1962,-1,5,9,30,15,2,3,\"B\",-1,\"L\",0,0,-1,0,\"\"\r\n", 1, "Overflow"},
      {"float too large", "\"x\",1962,5,5,9,30,15,2,3,\"B\",-1,\"L\",1e50,0,-1,0,\"\"\r\n", 1, "Overflow"},
      {"short line", good + "\"x\",1962,5,5\r\n" + good, 2, "Type mismatch"},
      {"binary garbage", garbage, 0, nullptr},
  };
  Put("bad.nat", kNatV2);
  for (const auto& c : cases) {
    ts.sink.Clear();
    std::string dat = Put("bad.dat", c.bytes);
    EXPECT_FALSE(Open(dat)) << c.name;
    ASSERT_EQ(ts.sink.messages.size(), 1u) << c.name;
    const auto& m = ts.sink.messages[0];
    EXPECT_EQ(m.title, "File Read Error");
    EXPECT_EQ(m.flags, 48);
    std::string prefix = kReadError + dat + "\r\n\r\nRecord ";
    EXPECT_EQ(m.text.substr(0, prefix.size()), prefix) << c.name;
    if (c.record) {
      EXPECT_EQ(m.text, prefix + std::to_string(c.record) + "\r\n\r\n" + c.error) << c.name;
    }
    EXPECT_EQ(session.project.Header.RecordCount, 0);
    EXPECT_EQ(session.project.Status.NatalValid, kFalse);
    EXPECT_EQ(ReadBytes(dat), c.bytes) << "reading never writes";
  }
  ts.sink.Clear();
  EXPECT_TRUE(Open(Put("bad.dat", ""))) << "an empty .dat is a project without records";
  EXPECT_EQ(session.project.Header.RecordCount, 0);
  EXPECT_TRUE(Messages().empty());
}

TEST_F(ProjectFileTest, DamagedNatFiles) {
  struct Case {
    const char* bytes;
    const char* error;
  } cases[] = {
      {"", "Input past end of file"},
      {"VINTAR 2\r\n\"T\",\"N\"\r\n", "Input past end of file"},
      {"\"T\",\"\",\"\",\"\",\"\",\"\",\"\",\"\",\"\",\"\",\"\"\r\n-1\r\nyes\r\n", "Type mismatch"},
  };
  for (const auto& c : cases) {
    ts.sink.Clear();
    std::string nat = Put("n.nat", c.bytes);
    EXPECT_FALSE(Open(Put("n.dat", kRecordV2)));
    EXPECT_EQ(Messages(), std::vector<std::string>{kReadError + nat + "\r\n\r\n" + c.error});
  }
}

TEST_F(ProjectFileTest, AFailedSaveLeavesTheOldFilesAsTheyWere) {
  Put("p.nat", kNatV2);
  ASSERT_TRUE(Open(Put("p.dat", kRecordV2)));
  CurStatus& status = session.project.Status;
  struct Case {
    const char* name;
    std::string target;
    const char* folderInTheWay;  // a folder where a file should go
    const char* writeProtected;  // a file made read-only (0444) first
    std::string error;
  } cases[] = {
      {"data file is a folder", Path("q.dat"), "q.dat", nullptr, "Path/File access error"},
      {"header file is a folder", Path("r.dat"), "r.nat", nullptr, "Path/File access error"},
      {"missing folder", Path("none/p.dat"), nullptr, nullptr, "Path not found"},
      {"write-protected data file", Path("q.dat"), nullptr, "q.dat",
       "Permission denied\r\n" + Path("q.dat") + " is write-protected."},
      {"write-protected header file", Path("q.dat"), nullptr, "q.nat",
       "Permission denied\r\n" + Path("q.nat") + " is write-protected."},
  };
  for (const auto& c : cases) {
    ts.sink.Clear();
    for (const char* f : {"q.dat", "q.nat"}) ::chmod(Path(f).c_str(), 0644);
    Put("q.dat", "old q"), Put("q.nat", "old q nat"), Put("r.dat", "old r");
    if (c.folderInTheWay) {
      std::filesystem::remove(Path(c.folderInTheWay));
      std::filesystem::create_directory(Path(c.folderInTheWay));
    }
    if (c.writeProtected) ::chmod(Path(c.writeProtected).c_str(), 0444);
    status.NatChanged = status.DataChanged = kTrue;
    bool failed = false;
    WriteProject(session, c.target, session.project.Header, session.project.Events, failed, true);
    EXPECT_TRUE(failed) << c.name;
    EXPECT_EQ(Messages(), std::vector<std::string>{"Error whilst writing file:\r\n\r\n" + c.error});
    EXPECT_TRUE(status.NatChanged && status.DataChanged) << "change flags stay set";

    for (auto [file, old] : {std::pair{"q.dat", "old q"}, {"q.nat", "old q nat"}, {"r.dat", "old r"}}) {
      if (std::filesystem::is_regular_file(Path(file))) {
        EXPECT_EQ(ReadBytes(Path(file)), old) << c.name;
      }
    }
    EXPECT_EQ(StrayFiles({"p.dat", "p.nat", "q.dat", "q.nat", "r.dat", "r.nat"}), 0) << "no temporary file left";
    std::filesystem::remove_all(Path(c.folderInTheWay ? c.folderInTheWay : "none"));
  }
}

// A file that is there but cannot be read is an error with its reason,
// never an empty project that a save would then write over.
TEST_F(ProjectFileTest, FilesThatCannotBeReadAreErrorsNotEmptyProjects) {
  Put("n2.dat", kRecordV2), Put("b5.dat", kRecordV2), Put("b5.nat", kNatV2);
  std::filesystem::create_directory(Path("d1.dat"));
  std::filesystem::create_directory(Path("n2.nat"));
  ASSERT_EQ(::mkfifo(Path("p3.dat").c_str(), 0644), 0);
  std::filesystem::resize_file(Put("b4.dat", ""), (256u << 20) + 1);  // sparse: no disk used
  std::filesystem::resize_file(Put("b5.nat", ""), (16u << 20) + 1);
  const std::string tooLarge = "File too large: the most this program reads is ";
  struct Case {
    const char* dat;
    const char* reported;
    std::string error;
  } cases[] = {
      {"d1.dat", "d1.dat", "Path/File access error"},
      {"n2.dat", "n2.nat", "Path/File access error"},
      {"p3.dat", "p3.dat", "Path/File access error (not a regular file)"},
      {"b4.dat", "b4.dat", tooLarge + "256 MB."},
      {"b5.dat", "b5.nat", tooLarge + "16 MB."},
  };
  for (const auto& c : cases) {
    ts.sink.Clear();
    EXPECT_FALSE(Open(Path(c.dat))) << c.dat;
    EXPECT_EQ(Messages(), std::vector<std::string>{kReadError + Path(c.reported) + "\r\n\r\n" + c.error});
    EXPECT_EQ(session.project.Header.RecordCount, 0);
  }

  // Permissions, as a user meets them (root reads past them).
  ::chmod(ts.dir.path().c_str(), 0755);
  ::chmod(Put("locked.dat", kRecordV2).c_str(), 0);
  ts.sink.Clear();
  int result = testing::RunInChild(
      [&] {
        return !Open(Path("locked.dat")) &&
                       Messages() ==
                           std::vector<std::string>{kReadError + Path("locked.dat") + "\r\n\r\nPermission denied"}
                   ? 0
                   : 1;
      },
      true);
  EXPECT_EQ(result, 0);
}

// A kill between the two renames of a save leaves a new .dat beside the old
// .nat; the next open finishes that save. A kill before them is undone.
TEST_F(ProjectFileTest, AnInterruptedSaveIsFinishedOrUndoneByTheNextOpen) {
  const std::string newNat = "VINTAR 2\r\n\"New\",\"\",\"\",\"\",\"\",\"\",\"\",\"\",\"\",\"\",\"\"\r\n\"\",\"\"\r\n";
  const std::string newDat = kRecordV2 + kRecordV2;
  // This process has no save under way, so its temporary files are stale;
  // process 1 always runs, so its file belongs to a save in progress.
  const std::string mine = std::to_string(::getpid()) + "-7";
  struct Case {
    const char* name;
    bool datRenamed;     // the new .dat is in place
    bool datStaged;      // the .dat temporary is still there
    bool natStaged;      // the .nat temporary of the pair is there
    const char* other;   // another temporary file beside the .dat
    bool otherStays;
    const char* expectDat;  // "old" or "new"
    const char* expectNat;
  } cases[] = {
      {"killed while staging the .nat", false, true, true, nullptr, false, "old", "old"},
      {"killed between the renames", true, false, true, nullptr, false, "new", "new"},
      {"a dead save's temporary file", false, false, false, "p.dat.~999999999-0.tmp", false, "old", "old"},
      {"an earlier version's temporary file", false, false, false, "p.dat.~999999999_3.tmp", false, "old", "old"},
      {"a running save's temporary file", false, false, false, "p.dat.~1-0.tmp", true, "old", "old"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    std::filesystem::remove_all(Path("s"));
    std::filesystem::create_directory(Path("s"));
    const std::string dat = Put("s/p.dat", c.datRenamed ? newDat : kRecordV2);
    Put("s/p.nat", kNatV2);
    if (c.datStaged) Put("s/p.dat.~" + mine + ".tmp", newDat);
    if (c.natStaged) Put("s/p.nat.~" + mine + ".pair.tmp", newNat);
    if (c.other) Put(std::string("s/") + c.other, "x");
    ASSERT_TRUE(Open(dat));
    EXPECT_EQ(ReadBytes(dat), std::string(c.expectDat) == "new" ? newDat : kRecordV2);
    EXPECT_EQ(ReadBytes(Path("s/p.nat")), std::string(c.expectNat) == "new" ? newNat : kNatV2);
    EXPECT_EQ(session.project.Header.Title, std::string(c.expectNat) == "new" ? "New" : "Small");
    int left = 0;
    for ([[maybe_unused]] const auto& e : std::filesystem::directory_iterator(Path("s"))) ++left;
    EXPECT_EQ(left, c.otherStays ? 3 : 2);
  }
}

TEST_F(ProjectFileTest, SaveWithoutAPathAsksForOne) {
  Put("p.nat", kNatV2);
  ASSERT_TRUE(Open(Put("p.dat", kRecordV2)));
  bool failed = true;
  session.DialogCancelled = kTrue;
  WriteProject(session, "  ", session.project.Header, session.project.Events, failed, true);
  EXPECT_FALSE(failed);
  EXPECT_EQ(session.DialogCancelled, 0) << "no dialogue counts as a cancel, and the flag is cleared";

  // A new name writes both files although nothing changed.
  session.AskSavePath = [&](std::string& path) { return path = Path("copy.dat"), true; };
  WriteProject(session, "", session.project.Header, session.project.Events, failed, true);
  EXPECT_EQ(ReadBytes(Path("copy.dat")), kRecordV2);
  EXPECT_EQ(ReadBytes(Path("copy.nat")), kNatV2);
}

TEST_F(ProjectFileTest, HeaderJulianDaysCountSecondsAsMinutes) {
  ProjectHeader h;
  h.Date = "12 Aug 1958";
  h.ZoneTime = "-1:00";
  h.Time = "15:40:30";
  h.EarliestTime = "0:00 am";
  h.LatestTime = "11:59 pm";
  ComputeHeaderJulianDays(session, h);
  const double day0 = 2436427.5 + DeltaT(1958) / 24.0;  // 1958 August 12, 0h
  EXPECT_NEAR(h.NatalJulianDay, day0 + (-1 + 15 + 40 / 60.0 + 30 / 60.0) / 24.0, 1e-8);
  EXPECT_NEAR(h.EarliestJulianDay, day0 - 1 / 24.0, 1e-8);
  EXPECT_NEAR(h.LatestJulianDay, day0 + (-1 + 23 + 59 / 60.0) / 24.0, 1e-8);
  h.Time = "Unknown";
  ComputeHeaderJulianDays(session, h);
  EXPECT_DOUBLE_EQ(h.NatalJulianDay, (h.EarliestJulianDay + h.LatestJulianDay) / 2);
  EXPECT_TRUE(Messages().empty());
}

TEST_F(ProjectFileTest, NatalCheck) {
  ProjectHeader good;
  good.Name = "Ann", good.Date = "3 Feb 1932", good.Place = "Hobart", good.Latitude = "42S53";
  good.Longitude = "147E20", good.ZoneTime = "-10:00";
  struct Case {
    std::string ProjectHeader::*field;
    const char* value;
    bool valid;
  } cases[] = {
      {&ProjectHeader::Name, "  ", false},       {&ProjectHeader::Date, "31 Feb 1932", false},
      {&ProjectHeader::Place, "", false},        {&ProjectHeader::Longitude, "147X20", false},
      {&ProjectHeader::Latitude, "95N", false},  {&ProjectHeader::ZoneTime, "+5:30", true},
      {&ProjectHeader::ZoneTime, "AEST", false}, {&ProjectHeader::ZoneTime, "-10:75", false},
  };
  EXPECT_TRUE(NatalCheck(session, good));
  for (const auto& c : cases) {
    ProjectHeader h = good;
    h.*c.field = c.value;
    EXPECT_EQ(NatalCheck(session, h), c.valid) << c.value;
  }
  EXPECT_TRUE(Messages().empty());
}

TEST_F(ProjectFileTest, TooLargeAboveThirtyTwoThousand) {
  session.project.Header.RecordCount = 32000;
  EXPECT_FALSE(ProjectTooLarge(session));
  session.project.Header.RecordCount = 32001;
  EXPECT_TRUE(ProjectTooLarge(session));
  ASSERT_EQ(ts.sink.messages.size(), 1u);
  EXPECT_EQ(ts.sink.messages[0].flags, 48);
  EXPECT_EQ(ts.sink.messages[0].text,
            "The current project is too large to perform this action.\r\nThe current project has 32001 records, but "
            "the most allowed for this action is 32000\r\nIf you wish to use this function, then you must first "
            "split the project into smaller files, using the File/Data Options/Split menu items.");
}

TEST_F(ProjectFileTest, RecordArrayGrowsInStepsOfAHundred) {
  std::string dat;
  for (int i = 0; i < 150; ++i) dat += kRecordV2;
  struct Statuses : Progress {
    std::vector<std::string> lines;
    void Status(const std::string& text) override { lines.push_back(text); }
  } progress;
  Put("big.nat", kNatV2);
  ASSERT_TRUE(OpenProjectFiles(session, Put("big.dat", dat), &progress));
  EXPECT_EQ(session.project.Header.RecordCount, 150);
  EXPECT_EQ(session.project.Events.size(), 202u);
  auto counted = std::count_if(progress.lines.begin(), progress.lines.end(),
                               [](const std::string& s) { return s.rfind("Records Read: ", 0) == 0; });
  EXPECT_EQ(counted, 16) << "every tenth record and once at the end";
  ASSERT_GE(progress.lines.size(), 2u);
  EXPECT_EQ(progress.lines.end()[-2], "Reading Category Data: Kin ");
  EXPECT_EQ(progress.lines.back(), "Reading Category Data: Age ");
}

TEST_F(ProjectFileTest, SampleProjectsOpenCleanly) {
  ASSERT_TRUE(Open(kSamples + "/hollis.dat"));
  const ProjectState& p = session.project;
  EXPECT_EQ(p.Header.FormatVersion, 2);
  EXPECT_EQ(p.Header.RecordCount, 20);
  EXPECT_EQ(p.Header.CategoryCount, 3);
  EXPECT_EQ(p.Status.NatalValid, kTrue);
  EXPECT_EQ(p.Categories.CategoryStart[1], 1);
  EXPECT_EQ(p.Categories.CategoryLength[1], 13);
  EXPECT_EQ(p.Categories.CategoryValues[1], "Self");
  EXPECT_EQ(p.Categories.CategoryLength[3], 0) << "free text has no value list";
  EXPECT_EQ(session.TitlePanel, "Current Project: Hollis Family");

  ASSERT_TRUE(Open(kSamples + "/ashgrove.dat"));
  EXPECT_EQ(p.Header.FormatVersion, 1);
  EXPECT_EQ(p.Header.RecordCount, 10);
  EXPECT_EQ(p.Status.NatalValid, kTrue);
  for (int i = 1; i <= 10; ++i) EXPECT_EQ(p.Events[i].Enabled, kTrue) << i;
  EXPECT_TRUE(Messages().empty());
}

}  // namespace
}  // namespace vintar
