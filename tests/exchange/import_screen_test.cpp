// The import screen's checks and remembered settings, and an import's
// progress: a cancel writes nothing, a watched import writes what an
// unwatched one does.
#include "exchange/import_screen.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "core/progress.h"
#include "core/records.h"
#include "support/test_support.h"

namespace vintar {
namespace {

TEST(ImportScreen, TransferChecksInOrder) {
  struct Case {
    const char* name;
    bool listed, chosen;
    const char *title, *result;
  } cases[] = {
      {"imported", true, true, "", "imported.dat"},
      {"Mine.DAT", true, true, "", "Mine.DAT"},
      {"  ", true, true, "Invalid File Name", ""},
      {"x.txt", true, true, "Invalid Extension", ""},
      {"a.b", true, true, "Invalid File Name", ""},  // too short to end in ".dat"
      {"ok", false, true, "No Source Files displayed", ""},
      {"ok", true, false, "Source File Not Selected", ""},
  };
  for (const Case& c : cases) {
    testing::TestSession t;
    std::string name = c.name;
    const bool ok = CheckImportTransfer(t.session, name, c.listed, c.chosen);
    EXPECT_EQ(ok, std::string(c.title).empty()) << c.name;
    if (ok) EXPECT_EQ(name, c.result);
    else EXPECT_EQ(t.sink.messages.at(0).title, c.title) << c.name;
  }
  EXPECT_EQ(ProposedImportName("/home/a/My Charts.AAF"), "my charts.dat");
}

TEST(ImportScreen, RememberedSettings) {
  testing::TestSession t;
  t.session.paths.UserDataPath = "/data/";
  ImportSettings s = LoadImportSettings(t.session);
  EXPECT_EQ(s.ToFile, "imported.dat");
  EXPECT_EQ(s.FromDir, "/data/");
  s.ToFile = "";
  s.FromFile = "events.txt";
  ASSERT_TRUE(SaveImportSettings(t.session, s));
  s = LoadImportSettings(t.session);
  EXPECT_EQ(s.ToFile, "imported.dat");  // empty reads back as the default
  EXPECT_EQ(s.FromFile, "events.txt");
}

TEST(ImportScreen, OpensTheImportedProjectAfterOfferingToSave) {
  testing::TestSession t;
  Session& s = t.session;
  const std::string source = t.dir.file("life.txt"), dat = t.dir.file("life.dat");
  testing::WriteBytes(source, "\"Wedding\"\r\n12 JUN 1990\r\n");
  RecentFilesMenu recent;
  EXPECT_FALSE(OpenImportedProject(s, dat, recent));  // nothing imported yet
  ASSERT_EQ(RunImport(s, ImportKind::EventsList, source, dat), dat);

  s.project.Status.DataChanged = kTrue;  // unsaved changes: Cancel keeps them
  t.sink.answer = kCancel;
  EXPECT_FALSE(OpenImportedProject(s, dat, recent));
  EXPECT_EQ(t.sink.messages.back().title, "Save Changes?");
  EXPECT_NE(s.project.ProjectPath, dat);

  t.sink.answer = kNo;
  ASSERT_TRUE(OpenImportedProject(s, dat, recent));
  EXPECT_EQ(s.project.ProjectPath, dat);
  EXPECT_EQ(s.project.Header.RecordCount, 1);
  EXPECT_EQ(s.project.Header.Title, "Imported from life.txt");
  EXPECT_EQ(recent.Count, 1);
}

// Records what an import reports and answers a cancel at poll `cancelAt`
// (0: never).
struct WatchingProgress : Progress {
  int cancelAt = 0, polls = 0;
  std::vector<double> fractions;
  std::vector<std::string> statuses;
  void Status(const std::string& text) override { statuses.push_back(text); }
  void Fraction(double done) override { fractions.push_back(done); }
  bool Cancelled() override { return ++polls == cancelAt; }
};

struct ImportSource {
  ImportKind kind;
  const char* file;
  std::string text;
};

std::vector<ImportSource> ImportSources() {
  std::string events, aaf, csv = "name,date,time,zone,place,lat,lon\r\n";
  for (int i = 1; i <= 12; ++i) {
    const std::string day = std::to_string(i);
    events += "\"Event " + day + "\"\r\n" + day + " JUN 1990\r\n\r\n";
    aaf += "#A93:Chart " + day + ",*,e," + day + ".6.1990,10:00,Ulm,D\r\n#B93:*,48n24,9e59,1he00,0\r\n";
    csv += "Row " + day + "," + day + "/6/1990,10:00,GMT,London,51N30,0W10\r\n";
  }
  return {{ImportKind::EventsList, "life.txt", events}, {ImportKind::Aaf, "charts.aaf", aaf},
          {ImportKind::Csv, "rows.csv", csv}};
}

size_t FilesIn(const std::string& folder) {
  size_t n = 0;
  for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(folder)) ++n;
  return n;
}

TEST(ImportScreen, ACancelWritesNothing) {
  for (const ImportSource& src : ImportSources()) {
    testing::TestSession t;
    Session& s = t.session;
    const std::string source = t.dir.file(src.file);
    testing::WriteBytes(source, src.text);
    WatchingProgress counted;  // how many polls a whole import makes
    ASSERT_EQ(RunImport(s, src.kind, source, t.dir.file("counted.dat"), 1, &counted), t.dir.file("counted.dat"));
    t.sink.Clear();

    std::filesystem::create_directories(t.dir.file("old"));
    const std::string existing = t.dir.file("old/kept.dat"), existingNat = t.dir.file("old/kept.nat");
    testing::WriteBytes(existing, "old records");
    testing::WriteBytes(existingNat, "old header");
    std::filesystem::create_directories(t.dir.file("new"));
    // At the first poll, and at the last one, just before the project would be written.
    for (const int at : {1, counted.polls}) {
      for (const std::string& dat : {t.dir.file("new/fresh.dat"), existing}) {
        WatchingProgress cancel;
        cancel.cancelAt = at;
        EXPECT_EQ(RunImport(s, src.kind, source, dat, 1, &cancel), "") << src.file << " " << at;
        EXPECT_EQ(cancel.polls, at) << src.file;
      }
      EXPECT_EQ(FilesIn(t.dir.file("new")), 0u) << src.file << " " << at;
      EXPECT_EQ(FilesIn(t.dir.file("old")), 2u) << src.file;
      EXPECT_EQ(testing::ReadBytes(existing), "old records");
      EXPECT_EQ(testing::ReadBytes(existingNat), "old header");
      EXPECT_TRUE(t.sink.messages.empty()) << src.file << ": " << t.sink.messages.at(0).text;
    }
  }
}

TEST(ImportScreen, AWatchedImportWritesWhatAnUnwatchedOneDoes) {
  for (const ImportSource& src : ImportSources()) {
    testing::TestSession t;
    Session& s = t.session;
    const std::string source = t.dir.file(src.file);
    testing::WriteBytes(source, src.text);
    std::filesystem::create_directories(t.dir.file("a"));
    std::filesystem::create_directories(t.dir.file("b"));
    const std::string plain = t.dir.file("a/out.dat"), watchedDat = t.dir.file("b/out.dat");
    ASSERT_EQ(RunImport(s, src.kind, source, plain), plain) << src.file;
    WatchingProgress watched;
    ASSERT_EQ(RunImport(s, src.kind, source, watchedDat, 1, &watched), watchedDat) << src.file;
    EXPECT_EQ(testing::ReadBytes(watchedDat), testing::ReadBytes(plain)) << src.file;
    EXPECT_EQ(testing::ReadBytes(t.dir.file("b/out.nat")), testing::ReadBytes(t.dir.file("a/out.nat")));
    EXPECT_GT(testing::ReadBytes(plain).size(), 0u);

    ASSERT_GE(watched.fractions.size(), 3u) << src.file;
    EXPECT_TRUE(std::is_sorted(watched.fractions.begin(), watched.fractions.end())) << src.file;
    EXPECT_EQ(watched.fractions.back(), 1.0);
    EXPECT_FALSE(watched.statuses.empty()) << src.file;
  }
}

}  // namespace
}  // namespace vintar
