// The import screen's checks and remembered settings.
#include "exchange/import_screen.h"

#include <gtest/gtest.h>

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

}  // namespace
}  // namespace vintar
