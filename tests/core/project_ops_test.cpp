// The File menu's project operations: merge category maps and merges read
// back, sort keys and de-duplication, split output read back as version 1,
// the recent file list, the save dialogue's name checks, the size guard,
// the notepad companion with a stubbed launcher, the open dialogue's title
// preview and delete, and the cache date check.
#include "core/project_ops.h"

#include <gtest/gtest.h>

#include <sys/time.h>

#include <cmath>
#include <ctime>
#include <filesystem>
#include <map>
#include <tuple>

#include "core/calendar.h"
#include "core/parse.h"
#include "core/preferences.h"
#include "core/project_file.h"
#include "core/session.h"
#include "core/text.h"
#include "support/test_support.h"

namespace vintar {
namespace {

using testing::ReadBytes;
using testing::WriteBytes;

EventRecord Rec(const std::string& desc, int year, int month, int day, int hour = 12, int minute = 0,
                const std::string& cats = "") {
  EventRecord r;
  r.Description = desc;
  r.Year = static_cast<int16_t>(year);
  r.Month = static_cast<uint8_t>(month);
  r.Day = static_cast<uint8_t>(day);
  r.Hour = static_cast<uint8_t>(hour);
  r.Minute = static_cast<uint8_t>(minute);
  r.DetailLevel = 3;
  r.ZoneAbbr = "CET";
  r.ZoneHours = -1.0f;
  r.Placename = "Ulm";
  r.Longitude = -9.9833f;
  r.Latitude = 48.4f;
  r.Categories = cats;
  r.JulianDay = RecordJulianDay(r);
  return r;
}

class ProjectOpsTest : public ::testing::Test {
 protected:
  testing::TestSession ts;
  Session& s = ts.session;
  ProjectState& p = s.project;

  std::string Path(const std::string& name) { return ts.dir.file(name); }
  // Makes the session's project from records and categories.
  void Load(const std::vector<EventRecord>& records, const std::string& names = "", const std::string& types = "") {
    ResetProjectHeader(p.Header);
    p.Header.Title = "Test";
    p.Header.CategoryNames = names;
    p.Header.CategoryTypes = types;
    p.Header.CategoryCount = static_cast<int16_t>(CategoryElementCount(names));
    p.Events.assign(records.size() + 1, EventRecord{});
    for (size_t i = 0; i < records.size(); ++i) p.Events[i + 1] = records[i];
    p.Header.RecordCount = static_cast<int32_t>(records.size());
  }
  // Writes the session's project to `name` and leaves it open there.
  std::string Save(const std::string& name) {
    p.Status.DataChanged = p.Status.NatChanged = kTrue;
    bool failed = false;
    WriteProject(s, Path(name), p.Header, p.Events, failed, false);
    EXPECT_FALSE(failed);
    AcceptSaveFileName(s, Path(name));
    return Path(name);
  }
  std::vector<std::string> Descriptions() {
    std::vector<std::string> out;
    for (int i = 1; i <= p.Header.RecordCount; ++i) out.push_back(p.Events[i].Description);
    return out;
  }
  const CapturingSink::Entry& Last() { return ts.sink.messages.back(); }
};

TEST_F(ProjectOpsTest, MergeCategoryMapFollowsNamesTypesAndTheAnswer) {
  struct Case {
    std::string names, types;
    int answer;
    std::vector<int> map;
    bool asked, cancelled;
  } cases[] = {
      {" married |", "0 |", kYes, {0, 2}, true, false},            // same trimmed name, any case
      {"Married |", "1 |", kYes, {0, 3}, false, false},             // another type never matches
      {"Married |Job |", "0 |2 |", kNo, {0, 3, 4}, true, false},    // No keeps them all apart
      {"Job |Married |", "2 |0 |", kYes, {0, 3, 2}, true, false},   // the others take the next numbers
      {"Married |", "0 |", kCancel, {0, 2}, true, true},
  };
  ProjectHeader current;
  current.CategoryNames = "Place |Married |";
  current.CategoryTypes = "2 |0 |";
  current.CategoryCount = 2;
  for (const Case& c : cases) {
    ts.sink.Clear();
    ts.sink.answer = c.answer;
    ProjectHeader merged;
    merged.CategoryNames = c.names;
    merged.CategoryTypes = c.types;
    merged.CategoryCount = static_cast<int16_t>(CategoryElementCount(c.names));
    bool cancelled = false;
    auto map = BuildMergeCategoryMap(s, current, merged, merged.CategoryCount, cancelled);
    EXPECT_EQ(cancelled, c.cancelled) << c.names;
    if (!c.cancelled) {
      EXPECT_EQ(map, c.map) << c.names;
    }
    ASSERT_EQ(ts.sink.messages.size(), c.asked ? 1u : 0u) << c.names;
    if (c.asked) {
      EXPECT_EQ(Last().title, "Merge Categories?");
      EXPECT_EQ(Last().flags, 35);
      EXPECT_NE(Last().text.find("These categories are: \r\n"), std::string::npos);
      EXPECT_NE(Last().text.find("arried\r\nDo you wish to merge the data in these categories?"), std::string::npos);
    }
  }
}

TEST_F(ProjectOpsTest, MergeAddsRecordsMapsCategoriesAndWritesNothing) {
  // The other project's records carry a third category its .nat lacks.
  Load({Rec("Wed", 1903, 1, 6, 12, 0, "Yes |cook |extra |")}, "Married |Job |", "0 |2 |");
  const std::string other = Save("other.dat");
  Load({Rec("Born", 1879, 3, 14, 11, 30, "Ulm |No |")}, "Place |Married |", "2 |0 |");
  const std::string mine = Save("mine.dat");
  const std::string before = ReadBytes(mine) + ReadBytes(NatPathFor(mine));
  p.Status.DataChanged = p.Status.NatChanged = kFalse;

  ts.sink.answer = kCancel;
  EXPECT_FALSE(MergeProject(s, other));
  EXPECT_EQ(p.Header.RecordCount, 1);
  EXPECT_EQ(p.Header.CategoryCount, 2);
  EXPECT_FALSE(p.Status.DataChanged);

  ts.sink.answer = kYes;
  ASSERT_TRUE(MergeProject(s, other));
  EXPECT_EQ(p.Header.RecordCount, 2);
  EXPECT_EQ(p.Header.CategoryNames, "Place |Married |Job |Untitled4 |");
  EXPECT_EQ(p.Header.CategoryTypes, "2 |0 |2 |2 |");
  auto elements = SplitOnText(p.Events[2].Categories, "|", 10);
  ASSERT_GE(elements.size(), 4u);
  EXPECT_EQ(Trim(elements[0]), "");  // the merged file had no Place
  EXPECT_EQ(Trim(elements[1]), "Yes");
  EXPECT_EQ(Trim(elements[2]), "cook");
  EXPECT_EQ(Trim(elements[3]), "extra");
  EXPECT_TRUE(p.Status.DataChanged && p.Status.NatChanged);
  EXPECT_EQ(Last().title, "Merge Finished");
  EXPECT_EQ(Last().flags, 64);
  EXPECT_NE(Last().text.find("The current project now contains 2 events."), std::string::npos);
  EXPECT_EQ(ReadBytes(mine) + ReadBytes(NatPathFor(mine)), before);

  // A missing file: a clear message, the project as it was.
  EXPECT_FALSE(MergeProject(s, Path("gone.dat")));
  EXPECT_EQ(Last().title, "File Read Error");
  EXPECT_EQ(p.Header.RecordCount, 2);
}

TEST_F(ProjectOpsTest, SortKeysOrdersAndDeduplication) {
  const std::vector<EventRecord> records = {
      Rec("charlie", 1950, 5, 1), Rec("Alpha", 1940, 1, 1), Rec("bravo", 1960, 9, 9), Rec("ALPHA", 1940, 1, 1)};
  auto sun = [](const EventRecord& r) { return r.Month * 30.0 + 0.99 / 60.0; };  // stands in for the ephemeris
  struct Case {
    SortKey key;
    bool descending, dedupe;
    std::vector<std::string> order;
  } cases[] = {
      {SortKey::Date, false, false, {"Alpha", "ALPHA", "charlie", "bravo"}},
      {SortKey::Date, true, false, {"bravo", "charlie", "Alpha", "ALPHA"}},
      {SortKey::Description, false, false, {"Alpha", "ALPHA", "bravo", "charlie"}},
      {SortKey::Sun, true, false, {"bravo", "charlie", "Alpha", "ALPHA"}},
      {SortKey::Date, false, true, {"Alpha", "charlie", "bravo"}},  // equal ignoring case
  };
  for (const Case& c : cases) {
    Load(records);
    p.Status.DataChanged = kFalse;
    SortRequest request{c.key, c.descending, c.dedupe, sun};
    SortResult r = SortProject(s, request);
    EXPECT_TRUE(r.done);
    EXPECT_EQ(Descriptions(), c.order);
    EXPECT_TRUE(p.Status.DataChanged);
    EXPECT_EQ(r.duplicatesRemoved, c.dedupe ? 1 : 0);
    EXPECT_EQ(Last().title, "Sort Finished");
    EXPECT_EQ(Last().text, "The sort was successful.");
  }
  // Records that differ in place only are kept.
  EventRecord moved = Rec("Alpha", 1940, 1, 1);
  moved.Placename = "Bern";
  Load({Rec("Alpha", 1940, 1, 1), moved});
  EXPECT_EQ(SortProject(s, {SortKey::Date, false, true, nullptr}).duplicatesRemoved, 0);
  EXPECT_EQ(p.Header.RecordCount, 2);
  // No Sun key, no sort.
  EXPECT_FALSE(SortProject(s, {SortKey::Sun, false, false, nullptr}).done);
}

TEST_F(ProjectOpsTest, TooLargeAtOneMoreThan32000) {
  for (int32_t count : {32000, 32001}) {
    p.Events.assign(static_cast<size_t>(count) + 1, Rec("x", 1900, 1, 1));
    p.Header.RecordCount = count;
    ts.sink.Clear();
    EXPECT_EQ(SortProject(s, {}).done, count == 32000);
    if (count == 32001) {
      EXPECT_EQ(ts.sink.messages.front().flags, 48);
      EXPECT_EQ(ts.sink.messages.front().text,
                "The current project is too large to perform this action.\r\nThe current project has 32001 "
                "records, but the most allowed for this action is 32000\r\nIf you wish to use this function, then "
                "you must first split the project into smaller files, using the File/Data Options/Split menu items.");
    }
  }
}

TEST_F(ProjectOpsTest, SplitWritesVersion1ThenRemovesAndSaves) {
  std::vector<EventRecord> records;
  for (int i = 1; i <= 5; ++i) records.push_back(Rec("E" + std::to_string(i), 1900 + i, i, i, 8 + i, 15 * (i % 4)));
  Load(records);
  const std::string mine = Save("mine.dat");
  EXPECT_EQ(SplitRangeText(s), "Available Range: 1 to 5");

  // A target that cannot be written: the project stays whole.
  std::filesystem::create_directory(Path("folder.dat"));
  EXPECT_FALSE(SplitProject(s, 2, 3, Path("folder.dat")).done);
  EXPECT_EQ(p.Header.RecordCount, 5);
  EXPECT_FALSE(SplitProject(s, 2, 3, mine).done);  // never over itself
  EXPECT_EQ(p.Header.RecordCount, 5);

  SplitResult r = SplitProject(s, 9, 4, Path("part.dat"));  // past the end and reversed
  ASSERT_TRUE(r.done);
  EXPECT_EQ(r.first, 4);
  EXPECT_EQ(r.last, 5);
  EXPECT_EQ(Last().title, "Merge Finished");
  EXPECT_EQ(Last().text, "The split was successful.\r\nThe current project now contains 3 events.");
  EXPECT_EQ(DetectDataFormat(Path("part.dat")), 1);

  ProjectHeader h;
  std::vector<EventRecord> back;
  CategoryIndex index;
  ASSERT_TRUE(ReadDataFile(s, Path("part.dat"), h, back, index, nullptr, {}, false));
  ASSERT_EQ(h.RecordCount, 2);
  for (int i = 1; i <= 2; ++i) {
    const EventRecord& want = records[static_cast<size_t>(i + 2)];
    EXPECT_EQ(back[i].Description, want.Description);
    EXPECT_EQ(std::tie(back[i].Year, back[i].Month, back[i].Day, back[i].Hour, back[i].Minute),
              std::tie(want.Year, want.Month, want.Day, want.Hour, want.Minute));
    EXPECT_EQ(back[i].ZoneHours, want.ZoneHours);
    EXPECT_NEAR(back[i].Longitude, want.Longitude, 1.0 / 60);
    EXPECT_NEAR(back[i].Latitude, want.Latitude, 1.0 / 60);
  }
  // The project on disk now holds the first three.
  ASSERT_TRUE(OpenProjectFiles(s, mine, nullptr));
  EXPECT_EQ(Descriptions(), (std::vector<std::string>{"E1", "E2", "E3"}));

  Load({Rec("only", 1900, 1, 1)});
  EXPECT_FALSE(SplitProject(s, 1, 1, Path("x.dat")).done);
  EXPECT_EQ(Last().title, "Cannot Split Events");
}

TEST_F(ProjectOpsTest, RecentFilesShiftOnlyForNewProjectsAndTick) {
  RecentFilesMenu menu;
  auto open = [&](const std::string& folder, const std::string& stem) {
    p.ProjectFolder = folder;
    p.ProjectStem = stem;
    UpdateRecentFiles(s, menu);
  };
  for (const char* stem : {"a", "b", "c", "d"}) open("/p/", stem);
  EXPECT_EQ(menu.Count, 4);
  EXPECT_EQ(menu.Captions[1], "&1 /p/d.dat");
  EXPECT_EQ(menu.Captions[4], "&4 /p/a.dat");
  open("/P/", "B");  // a hit, ignoring case: ticked, nothing moves
  EXPECT_EQ(s.prefs.FileName[1], "d");
  EXPECT_TRUE(menu.Checked[3]);
  EXPECT_FALSE(menu.Checked[1]);
  open("/p/", "e");  // new: first, and "a" falls off
  EXPECT_EQ(s.prefs.FileName[1], "e");
  EXPECT_EQ(s.prefs.FileName[4], "b");
  EXPECT_TRUE(menu.Checked[1]);
  EXPECT_FALSE(menu.Checked[3]);
}

TEST_F(ProjectOpsTest, RecentEntryWhoseFileIsGone) {
  Load({Rec("keep", 1900, 1, 1)});
  const std::string kept = Save("kept.dat");
  const std::string bytes = ReadBytes(kept);
  s.prefs.FilePath[2] = ts.dir.path().string() + "/";
  s.prefs.FileName[2] = "gone";
  RecentFilesMenu menu;
  p.Status.DataChanged = p.Status.NatChanged = kFalse;
  EXPECT_FALSE(OpenRecentFile(s, menu, 2));
  EXPECT_EQ(Last().title, "File Read Error");
  EXPECT_NE(Last().text.find("gone.dat"), std::string::npos);
  EXPECT_EQ(p.ProjectPath, "");  // no project, so no save can write over one
  EXPECT_EQ(p.Header.RecordCount, 0);
  EXPECT_EQ(ReadBytes(kept), bytes);
  EXPECT_FALSE(std::filesystem::exists(Path("gone.dat")));
}

TEST_F(ProjectOpsTest, SaveFileNameChecks) {
  WriteBytes(Path("taken.dat"), "");
  const std::string folder = ts.dir.path().string();
  struct Case {
    std::string name;
    int answer;
    SaveNameCheck result;
    std::string title;
  } cases[] = {
      {"  fresh  ", 0, SaveNameCheck::Accepted, ""},
      {std::string(81, 'n'), 0, SaveNameCheck::Invalid, "File Error"},
      {"   ", 0, SaveNameCheck::Invalid, "File Error"},
      {"a/b", 0, SaveNameCheck::Invalid, "File Error"},
      {"taken", kYes, SaveNameCheck::Accepted, "File Exists"},
      {"taken", kNo, SaveNameCheck::Declined, "File Exists"},
      {"taken", kCancel, SaveNameCheck::StayOpen, "File Exists"},
      {"taken", 0, SaveNameCheck::Declined, "File Exists"},  // unanswered: never overwrite
  };
  for (const Case& c : cases) {
    ts.sink.Clear();
    ts.sink.answer = c.answer;
    std::string path;
    EXPECT_EQ(CheckSaveFileName(s, folder, c.name, path), c.result) << c.name;
    EXPECT_EQ(ts.sink.messages.empty() ? "" : Last().title, c.title) << c.name;
  }
  std::string path;
  CheckSaveFileName(s, folder, std::string(80, 'n'), path);
  EXPECT_EQ(path, folder + "/" + std::string(80, 'n') + ".dat");
}

TEST_F(ProjectOpsTest, NotepadCompanionAndEditorChoice) {
  Load({Rec("x", 1900, 1, 1)});
  p.Header.Title = "Albert";
  Save("albert.dat");
  std::vector<std::string> launched;
  bool starts = true;
  std::map<std::string, std::string> env;
  NotepadHooks hooks{[&](const std::vector<std::string>& argv) {
                       launched = argv;
                       return starts;
                     },
                     [&](const std::string& name) { return env[name]; }};
  const std::string txt = Path("albert.txt");
  struct Case {
    std::string visual, editor;
    std::vector<std::string> argv;
  } cases[] = {
      {"", "", {"xdg-open", txt}},
      {"", "nano -w", {"nano", "-w", txt}},
      {"gedit", "nano", {"gedit", txt}},
  };
  for (const Case& c : cases) {
    env = {{"VISUAL", c.visual}, {"EDITOR", c.editor}};
    EXPECT_TRUE(OpenNotepad(s, hooks));
    EXPECT_EQ(launched, c.argv);
  }
  EXPECT_EQ(ReadBytes(txt), "Vintar Project: Albert\r\n");
  WriteBytes(txt, "my notes");
  starts = false;
  EXPECT_FALSE(OpenNotepad(s, hooks));
  EXPECT_EQ(Last().title, "Unable to Start Program");
  EXPECT_EQ(Last().text, "Error occured when trying to run the command:\r\ngedit " + txt);
  EXPECT_EQ(ReadBytes(txt), "my notes");  // an existing companion is never rewritten

  ts.sink.answer = kYes;
  starts = true;
  launched.clear();
  EXPECT_TRUE(OfferNotepad(s, hooks));
  EXPECT_EQ(Last().title, "Open Notepad?");
  EXPECT_EQ(Last().flags, 36);
  s.prefs.Prompt = 0;
  EXPECT_FALSE(OfferNotepad(s, hooks));
}

TEST_F(ProjectOpsTest, TitlePreviewAndDeleteFromList) {
  struct Case {
    std::string nat;
    bool present;
    std::string title;
  } cases[] = {
      {"", false, "No Title Stored"},
      {"VINTAR 2\r\n\"Albert\",\"Einstein\"\r\n", true, "Albert"},
      {"\"Old One\",\"Name\"\r\n-1\r\n", true, "Old One"},
      {std::string("\"\x01\xff\",,\0", 7), true, "\x01\xff"},
      {std::string("\"\x01\xff", 3), true, "\x01\xff"},  // an unclosed quote runs to the end
  };
  for (const Case& c : cases) {
    std::filesystem::remove(Path("t.nat"));
    if (c.present) WriteBytes(Path("t.nat"), c.nat);
    EXPECT_EQ(ProjectTitlePreview(Path("t.dat")), c.title);
  }

  for (const char* name : {"ein.dat", "ein.nat", "ein.txt", "ein.geo", "einx.dat", "other.dat"})
    WriteBytes(Path(name), "x");
  ts.sink.answer = kCancel;
  EXPECT_EQ(DeleteProjectFiles(s, Path("ein.dat")), -1);
  EXPECT_EQ(Last().title, "Confirm Deletion");
  EXPECT_TRUE(std::filesystem::exists(Path("ein.dat")));
  ts.sink.answer = kOk;
  EXPECT_EQ(DeleteProjectFiles(s, Path("ein.dat")), 4);
  for (const char* name : {"einx.dat", "other.dat"}) EXPECT_TRUE(std::filesystem::exists(Path(name))) << name;
  EXPECT_FALSE(std::filesystem::exists(Path("ein.nat")));
}

TEST_F(ProjectOpsTest, CacheDateCheckRemovesOlderCaches) {
  auto namer = [](const std::string& dat, int coordinate, int type) {
    return dat.substr(0, dat.size() - 4) + (coordinate == 1 ? ".g" : ".h") + std::to_string(type);
  };
  const std::string dat = Path("c.dat");
  auto stamp = [](const std::string& path, int year, int month, int day) {
    WriteBytes(path, "cache");
    std::tm t{};
    t.tm_year = year - 1900;
    t.tm_mon = month - 1;
    t.tm_mday = day;
    t.tm_hour = 12;
    t.tm_isdst = -1;
    timeval times[2] = {{std::mktime(&t), 0}, {std::mktime(&t), 0}};
    ::utimes(path.c_str(), times);
  };
  stamp(Path("c.g0"), 2026, 11, 21);
  stamp(Path("c.h3"), 2026, 11, 21);
  stamp(Path("c.g1"), 2026, 11, 22);
  EXPECT_EQ(CheckPositionCacheDates(s, dat, namer), 2);  // the key is today, 22 November 2026
  EXPECT_EQ(GetPreferenceText(s, kCacheDateKey, ""), "2026-11-22");
  EXPECT_FALSE(std::filesystem::exists(Path("c.g0")));
  EXPECT_TRUE(std::filesystem::exists(Path("c.g1")));
  PutProfileText(s, "Vintar", kCacheDateKey, "not a date");
  stamp(Path("c.g2"), 2000, 1, 1);
  EXPECT_EQ(CheckPositionCacheDates(s, dat, namer), 0);
}

TEST_F(ProjectOpsTest, TitleNewAndAProjectWithoutNat) {
  Load({Rec("x", 1900, 1, 1)});
  const std::string dat = Save("solo.dat");
  std::filesystem::remove(NatPathFor(dat));
  bool failed = false;
  s.MergeActive = 0;
  ASSERT_TRUE(OpenProject(s, dat, failed));
  EXPECT_EQ(p.Header.Title, "New Project");
  EXPECT_FALSE(EditProjectTitle(s, "  ", failed));
  EXPECT_EQ(Last().title, "Error in Name");
  ASSERT_TRUE(EditProjectTitle(s, "Solo", failed));
  EXPECT_FALSE(failed);
  EXPECT_EQ(ProjectTitlePreview(dat), "Solo");  // the save gave it a .nat
  EXPECT_EQ(s.TitlePanel, "Current Project: Solo");

  EXPECT_FALSE(NewProject(s, std::nullopt));
  EXPECT_EQ(p.ProjectPath, "");
  ASSERT_TRUE(NewProject(s, std::string("Fresh")));
  EXPECT_EQ(p.Header.Title, "Fresh");
  EXPECT_EQ(p.Header.RecordCount, 0);
}

}  // namespace
}  // namespace vintar
