// The session spine: the lenient numeric value, message boxes, profile files
// and preferences, the zone table, and two sessions side by side.
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>

#include <cmath>
#include <limits>

#include "core/file_io.h"
#include "core/form_places.h"
#include "core/preferences.h"
#include "core/session.h"
#include "core/text.h"
#include "support/test_support.h"

namespace vintar {
namespace {

using testing::ReadBytes;
using testing::TempDir;
using testing::TestSession;
using testing::WriteBytes;

TEST(Val, ReadsTheLeadingNumberAndStopsAtTheFirstStranger) {
  struct Case {
    const char* text;
    double value;
  } cases[] = {
      {"", 0},          {"   ", 0},         {"12", 12},       {"  -7.5xyz", -7.5}, {"+3", 3},
      {"1e3", 1000},    {"1e", 1},          {"2E-2", 0.02},   {".5", 0.5},         {"5.", 5},
      {"-", 0},         {"abc", 0},         {"12:30", 12},    {"0012", 12},        {"1 2", 1},
      {"1e999", 0},     {"- 5", 0},         {"3.2.1", 3.2},
  };
  for (const auto& c : cases) EXPECT_DOUBLE_EQ(Val(c.text), c.value) << '"' << c.text << '"';
}

TEST(Text, CaseFoldingCoversLatin1Letters) {
  EXPECT_EQ(UCase("caf\xe9 \xf7"), "CAF\xc9 \xf7");
  EXPECT_TRUE(EqualsIgnoreCase("M\xfcnchen", "M\xdcNCHEN"));
  EXPECT_LT(CompareIgnoreCase("abc", "ABD"), 0);
  EXPECT_EQ(Latin1ToUtf8("10\xb0"), "10\xc2\xb0");
  EXPECT_EQ(Utf8ToLatin1("10\xc2\xb0 \xe2\x98\x89"), "10\xb0 ?");
  EXPECT_EQ(Utf8ToLatin1("cut\xc3"), "cut\xc3");
  EXPECT_EQ(ZeroPad(-5, 3), "-005");
  // A Latin-1 message holding a UTF-8 file name: the name's bytes stay, the
  // rest is converted; overlong forms and surrogates are not UTF-8.
  EXPECT_EQ(DisplayText("Caf\xe9: /tmp/caf\xc3\xa9 \xe6\x97\xa5\xe6\x9c\xac.dat"),
            "Caf\xc3\xa9: /tmp/caf\xc3\xa9 \xe6\x97\xa5\xe6\x9c\xac.dat");
  EXPECT_EQ(DisplayText("\xc0\xaf \xed\xa0\x80 \xc3"), "\xc3\x80\xc2\xaf \xc3\xad\xc2\xa0\xc2\x80 \xc3\x83");
  EXPECT_EQ(ToIntSaturated(3e38), 2147483647);
  EXPECT_EQ(ToIntSaturated(-1e300), -2147483647 - 1);
  EXPECT_EQ(ToIntSaturated(std::nan("")), 0);
  EXPECT_EQ(ToLongSaturated(-2.5), -2);
}

TEST(Messages, DefaultAndAllowedButtons) {
  CapturingSink sink;
  EXPECT_EQ(sink.Show("a", kOkCancel, "t"), kOk);
  sink.answer = kNo;
  EXPECT_EQ(sink.Show("b", kYesNoCancel + kIconQuestion, "t"), kNo);
  EXPECT_EQ(sink.Show("c", kOkOnly, "t"), kOk) << "a button the box lacks is never returned";
  sink.answer = 0;
  EXPECT_EQ(sink.Show("d", kYesNo + kDefaultButton2, "t"), kNo);
  ASSERT_EQ(sink.messages.size(), 4u);
  EXPECT_EQ(sink.messages[1].flags, 35);
}

TEST(Session, BeepsOnlyWithTheSoundPreference) {
  TestSession t;
  t.session.prefs.Sound = kTrue;
  t.session.ShowMessage("x");
  t.session.prefs.Sound = kFalse;
  t.session.ShowMessage("y");
  EXPECT_EQ(t.sink.beeps, 1);
  EXPECT_EQ(t.sink.messages.back().title, "Vintar");
}

TEST(Session, TwoSessionsKeepTheirOwnState) {
  TestSession a, b;
  a.session.prefs.MonthFirst = kTrue;
  a.session.project.Header.Title = "A";
  a.session.CenturyBase = 1930;
  EXPECT_EQ(b.session.prefs.MonthFirst, kFalse);
  EXPECT_EQ(b.session.project.Header.Title, "");
  EXPECT_EQ(b.session.CenturyBase, 1900);
  a.session.ShowMessage("only a");
  EXPECT_EQ(a.sink.messages.size(), 1u);
  EXPECT_TRUE(b.sink.messages.empty());
}

TEST(Session, StartsWithNoProjectAndTheClearedHeader) {
  TestSession t;
  const Session& s = t.session;
  EXPECT_EQ(s.TitlePanel, "Current Project: None");
  EXPECT_EQ(s.project.Header.Time, "Unknown");
  EXPECT_EQ(s.project.Header.EarliestTime, "0:00 am");
  EXPECT_EQ(s.project.Header.LatestTime, "11:59 pm");
  EXPECT_EQ(s.project.Events.size(), 101u) << "Events starts with capacity 100";
  EXPECT_EQ(s.paths.FolderTable[0], s.paths.SystemDataPath);
  EXPECT_EQ(s.paths.FolderTable[1], s.paths.UserDataPath);
  EXPECT_EQ(s.paths.FolderTable[2], s.paths.UserDataPath);
  EXPECT_EQ(s.paths.FolderTable[5], s.paths.SystemDataPath);
  EXPECT_GT(s.zones.ZoneCount, 50);
  EXPECT_EQ(s.DrawRects, kTrue);
}

TEST(Session, CommandLineWordsSetTheReportFrames) {
  TempDir dir;
  CapturingSink sink;
  Session s(sink);
  StartupOptions options;
  options.ConfigDir = dir.file("cfg");
  options.SystemDataPath = VINTAR_SOURCE_DATA_DIR;
  options.CommandLine = "vintar norects dofill";
  StartSession(s, options);
  EXPECT_EQ(s.DrawRects, kFalse);
  EXPECT_EQ(s.FillRects, kTrue);
}

TEST(Session, WindowTitle) {
  TestSession t;
  UpdateTitle(t.session, "");
  EXPECT_EQ(t.session.WindowTitle, "New Project - Vintar");
  t.session.project.Status.NatChanged = kTrue;
  UpdateTitle(t.session, "/home/ann/projects/hollis.dat");
  EXPECT_EQ(t.session.WindowTitle, "...projects/hollis.dat - Vintar [Modified]");
}

TEST(PathHelpers, SplitAndJoin) {
  EXPECT_EQ(EnsureBackslash("/a/b"), "/a/b/");
  EXPECT_EQ(EnsureBackslash("/a/b/"), "/a/b/");
  EXPECT_EQ(PathStem("/x/y/hollis.dat"), "hollis");
  EXPECT_EQ(PathExtension("/x/y/hollis.dat"), ".dat");
  EXPECT_EQ(PathFolder("/x/y/hollis.dat"), "/x/y/");
  EXPECT_EQ(ReplaceExtension("/x/y/hollis.dat", ".nat"), "/x/y/hollis.nat");
  EXPECT_FALSE(FileExists("   "));
}

TEST(Preferences, DefaultsWithoutAFile) {
  TestSession t;
  const Preferences& p = t.session.prefs;
  EXPECT_EQ(p.Houses, 5);
  EXPECT_EQ(p.Zodiac, 1);
  EXPECT_EQ(p.Progressions, 1);
  EXPECT_EQ(p.WhichCusp, 1);
  EXPECT_EQ(p.PointOnCusp, 1) << "the cusp's clamp lands in the point after a load";
  EXPECT_EQ(p.Sound, kTrue);
  EXPECT_EQ(p.MonthFirst, kFalse);
  EXPECT_FLOAT_EQ(p.PeakSDFactor, 1.9f);
  EXPECT_FLOAT_EQ(p.DynInterval, 0.1f);
  EXPECT_EQ(p.HCTTFont, "CW Symbol");
  EXPECT_EQ(p.NodePoint(), 20);
}

TEST(Preferences, ClampsAndTheCuspQuirk) {
  TestSession t;
  Session& s = t.session;
  struct Case {
    const char* key;
    const char* value;
  } writes[] = {{"Houses", "99"}, {"Progressions", "0"}, {"Zodiac", "-4"}, {"WhichCusp", "40"},
                {"PointOnCusp", "7"}, {"PeakSDFactor", "2.5junk"}, {"UserAyan", ""}, {"TrueNode", "-1"},
                {"AutoScoreMode", "5"}, {"AutoGraphMinWeight", "-3"}};
  for (const auto& w : writes) ASSERT_TRUE(PutProfileText(s, "Vintar", w.key, w.value));
  LoadPreferences(s);
  EXPECT_EQ(s.prefs.Houses, 14);
  EXPECT_EQ(s.prefs.Progressions, 1);
  EXPECT_EQ(s.prefs.Zodiac, 1);
  EXPECT_EQ(s.prefs.WhichCusp, 40) << "the cusp itself is not clamped";
  EXPECT_EQ(s.prefs.PointOnCusp, 12);
  EXPECT_FLOAT_EQ(s.prefs.PeakSDFactor, 2.5f);
  EXPECT_FLOAT_EQ(s.prefs.UserAyan, 0.0f);
  EXPECT_EQ(s.prefs.NodePoint(), 19);
  EXPECT_EQ(s.prefs.AutoScoreMode, 1);
  EXPECT_FLOAT_EQ(s.prefs.AutoGraphMinWeight, 100.0f);
}

TEST(Preferences, SaveWritesItsKeysAndSurvivesALoad) {
  TestSession t;
  Session& s = t.session;
  s.prefs.Houses = 7;
  s.prefs.MonthFirst = kTrue;
  s.prefs.UserAyan = 335.25f;
  s.clock = Clock{2026, 3, 5, 14, 7, 0};
  t.sink.answer = kYes;
  SavePreferencesCommand(s);
  ASSERT_EQ(t.sink.messages.size(), 1u);
  EXPECT_EQ(t.sink.messages[0].title, "Save Preferences?");
  EXPECT_EQ(GetPreferenceText(s, "Last Updated", ""), "5 Mar 2026 2:07 PM");
  s.prefs = Preferences{};
  LoadPreferences(s);
  EXPECT_EQ(s.prefs.Houses, 7);
  EXPECT_EQ(s.prefs.MonthFirst, kTrue);
  EXPECT_FLOAT_EQ(s.prefs.UserAyan, 335.25f);
  EXPECT_EQ(GetPreferenceText(s, "DynInterval", "absent"), "absent") << "not a key that Save writes";

  // The Auto Rectify settings are written once changed, and then kept in step.
  EXPECT_EQ(GetPreferenceText(s, "AutoScoreMode", "absent"), "absent");
  s.prefs.AutoGraphMinWeight = 200.0f;
  s.prefs.AutoScoreMode = 1;
  ASSERT_TRUE(SavePreferences(s));
  LoadPreferences(s);
  EXPECT_FLOAT_EQ(s.prefs.AutoGraphMinWeight, 200.0f);
  EXPECT_EQ(s.prefs.AutoScoreMode, 1);
  s.prefs.AutoScoreMode = 0;
  ASSERT_TRUE(SavePreferences(s));
  EXPECT_EQ(GetPreferenceText(s, "AutoScoreMode", "absent"), "0");
}

TEST(Preferences, RestoreAskedNoKeepsTheSessionValues) {
  TestSession t;
  t.session.prefs.Houses = 3;
  t.sink.answer = kNo;
  RestorePreferencesCommand(t.session);
  EXPECT_EQ(t.session.prefs.Houses, 3);
  t.sink.answer = kYes;
  RestorePreferencesCommand(t.session);
  EXPECT_EQ(t.session.prefs.Houses, 5);
}

TEST(ProfileFile, SectionsKeysCaseAndDeletion) {
  TestSession t;
  Session& s = t.session;
  std::string file = t.dir.file("other.ini");
  WriteBytes(file, "; a comment\r\n[Form Main]\r\nLeft = 10 \r\ntop=\"20\"\r\n\r\n[Other]\r\nLeft=99\r\n");
  EXPECT_EQ(GetProfileText(s, "form main", "LEFT", "", file), "10");
  EXPECT_EQ(GetProfileText(s, "Form Main", "Top", "", file), "20");
  EXPECT_EQ(GetProfileText(s, "Form Main", "Width", "dflt", file), "dflt");
  EXPECT_DOUBLE_EQ(GetProfileNumber(s, "Other", "Left", 0, file), 99);
  EXPECT_DOUBLE_EQ(GetProfileNumber(s, "Other", "Gone", 7, file), 7);

  ASSERT_TRUE(PutProfileText(s, "Form Main", "Width", "300", file));
  ASSERT_TRUE(PutProfileText(s, "FORM MAIN", "left", "", file));
  ASSERT_TRUE(PutProfileNumber(s, "New", "State", 2, file));
  EXPECT_EQ(ReadBytes(file),
            "; a comment\r\n[Form Main]\r\ntop=\"20\"\r\nWidth=300\r\n\r\n[Other]\r\nLeft=99\r\n\r\n[New]\r\nState=2\r\n");
}

TEST(FormPlaces, MinimisedAndMaximisedKeepTheNormalPlace) {
  TestSession t;
  const Session& s = t.session;
  EXPECT_FALSE(LoadFormPlace(s, "Rectify").HasPosition);
  ASSERT_TRUE(SaveFormPlace(s, "Rectify", {kFormNormal, 10, 20, 640, 480}));
  ASSERT_TRUE(SaveFormPlace(s, "Rectify", {kFormMaximised, 0, 0, 1920, 1080}));
  ASSERT_TRUE(SaveFormPlace(s, "Rectify", {kFormMinimised, -32000, -32000, 160, 28}));
  const FormPlace place = LoadFormPlace(s, "Rectify");
  EXPECT_EQ(place.State, kFormMinimised);
  EXPECT_TRUE(place.HasPosition && place.HasSize);
  EXPECT_EQ(place.Left, 0);  // from the maximised close
  EXPECT_EQ(place.Width, 640);
  EXPECT_EQ(GetProfileText(s, "Form Rectify", "Height", "", s.paths.DesktopFile), "480");
}

TEST(ProfileFile, AnUnwritableFileFailsWithoutDamage) {
  TestSession t;
  std::string folder = t.dir.file("adir");
  std::filesystem::create_directories(folder);
  EXPECT_FALSE(PutProfileText(t.session, "Vintar", "Houses", "3", folder));
  EXPECT_TRUE(std::filesystem::is_directory(folder));
}

TEST(ZoneTable, FixedColumnsAndTheHundredthRow) {
  TestSession t;
  Session& s = t.session;
  std::string file = t.dir.file("timezone.fil");
  std::string bytes;
  for (int i = 1; i <= 100; ++i) {
    std::string m = "Z" + std::to_string(i);
    m.resize(5, ' ');
    std::string name = "Zone number " + std::to_string(i);
    name.resize(30, ' ');
    bytes += m + name + "-10:30\r\n";
  }
  WriteBytes(file, bytes);
  LoadTimeZones(s, file);
  EXPECT_TRUE(t.sink.messages.empty());
  EXPECT_EQ(s.zones.ZoneCount, 100);
  EXPECT_EQ(s.zones.ZoneMnemonic[100], "Z100");
  EXPECT_EQ(s.zones.ZoneName[7], "Zone number 7");
  EXPECT_EQ(s.zones.ZoneOffset[1], "-10:30") << "a six-character offset fills its field";
  EXPECT_EQ(s.zones.Find("z7  "), 7);
  EXPECT_EQ(s.zones.Find("nope"), 0);

  WriteBytes(file, bytes + "EXTRAExtra zone                    +1:00\r\n");
  LoadTimeZones(s, file);
  ASSERT_EQ(t.sink.messages.size(), 1u);
  EXPECT_EQ(t.sink.messages[0].title, "Too Many Time Zones");
  EXPECT_EQ(t.sink.messages[0].flags, 48);
  EXPECT_EQ(t.sink.messages[0].text, "Timezone file " + file + " has too many entries.\r\nCurrent limit is 100\r\n"
                                         "Entries beyond this number have been ignored.");
  EXPECT_EQ(s.zones.ZoneCount, 100);
}

TEST(ZoneTable, MissingFileLeavesTheTableAndShortLinesAreSafe) {
  TestSession t;
  int before = t.session.zones.ZoneCount;
  LoadTimeZones(t.session, t.dir.file("absent.fil"));
  EXPECT_EQ(t.session.zones.ZoneCount, before);
  std::string file = t.dir.file("short.fil");
  WriteBytes(file, "ab\n\"QUOTEQuoted zone                   -2:00\"\n\n\xff\xfe\n");
  LoadTimeZones(t.session, file);
  EXPECT_EQ(t.session.zones.ZoneCount, 3);
  EXPECT_EQ(t.session.zones.ZoneMnemonic[1], "AB");
  EXPECT_EQ(t.session.zones.ZoneOffset[2], "-2:00");
}

TEST(AtomicWrite, ReplacesWholeOrNotAtAll) {
  TempDir dir;
  std::string path = dir.file("x.dat"), error;
  auto files = [&] {
    int n = 0;
    for ([[maybe_unused]] auto& e : std::filesystem::directory_iterator(dir.path())) ++n;
    return n;
  };
  ASSERT_TRUE(WriteFileAtomically(path, "first", error));
  // Left by a save that died, and by one still running (process 1 always runs).
  WriteBytes(path + ".~999999999-0.tmp", "dead");
  WriteBytes(path + ".~1-0.tmp", "running");
  ASSERT_TRUE(WriteFileAtomically(path, "second", error));
  EXPECT_EQ(ReadBytes(path), "second");
  EXPECT_EQ(files(), 2) << "the dead save's file is gone, the running one's stays";
  std::filesystem::remove(path + ".~1-0.tmp");

  EXPECT_FALSE(WriteFileAtomically(dir.file("missing/x.dat"), "third", error));
  EXPECT_EQ(error, "Path not found");
  ::chmod(path.c_str(), 0444);
  EXPECT_FALSE(WriteFileAtomically(path, "third", error));
  EXPECT_EQ(error, "Permission denied\r\n" + path + " is write-protected.");
  ::chmod(path.c_str(), 0644);
  // A disk that fills up: the write is cut short by the file size limit.
  const int child = testing::RunInChild([&] {
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{4096, 4096};
    ::setrlimit(RLIMIT_FSIZE, &limit);
    std::string text;
    return WriteFileAtomically(path, std::string(100000, 'x'), text) ? 1 : text == "Disk full" ? 0 : 2;
  });
  EXPECT_EQ(child, 0);
  EXPECT_EQ(ReadBytes(path), "second");
  EXPECT_EQ(files(), 1) << "no temporary file is left behind";
}

TEST(AtomicWrite, APreferenceFileThatCannotBeReadIsNotWrittenOver) {
  TestSession t;
  std::filesystem::resize_file(t.session.paths.PreferenceFile, 17u << 20);  // over the readers' limit
  EXPECT_FALSE(PutProfileText(t.session, "Vintar", "Houses", "3"));
  EXPECT_EQ(std::filesystem::file_size(t.session.paths.PreferenceFile), 17u << 20);
}

}  // namespace
}  // namespace vintar
