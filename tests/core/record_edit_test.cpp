// Editing a project by hand: the data list line, year markers and the range
// rule, category value rules, adding and deleting records, cancel restoring
// the copy, the natal entry checks and the category screen's rebuild.
#include "core/record_edit.h"

#include <gtest/gtest.h>

#include "core/parse.h"
#include "core/project_file.h"
#include "core/session.h"
#include "support/test_support.h"

namespace vintar {
namespace {

class RecordEditTest : public ::testing::Test {
 protected:
  void SetUp() override {
    session.project = ProjectState{};
    ProjectHeader& h = session.project.Header;
    SetCategoryDefinition(h, 1, "Kind", 0);
    SetCategoryDefinition(h, 2, "Age", 1);
    SetCategoryDefinition(h, 3, "Notes", 2);
    const char* lists[] = {"Move |31 |a |", "Job |40 |b |", "move |52 |c |"};
    for (const char* list : lists) {
      int32_t n = AddRecord(session.project);
      EventRecord& r = session.project.Events[n];
      r.Description = "Event " + std::to_string(n);
      r.Day = 1, r.Month = 6, r.Year = static_cast<int16_t>(1980 + n);
      r.Categories = list;
    }
    session.project.Status = CurStatus{};
    RebuildCategoryIndex(session, h, session.project.Events, session.project.Categories, nullptr);
  }
  const std::vector<std::string>& Titles() {
    titles.clear();
    for (const auto& m : ts.sink.messages) titles.push_back(m.title);
    return titles;
  }

  testing::TestSession ts;
  Session& session = ts.session;
  std::vector<std::string> titles;
};

TEST_F(RecordEditTest, ListLineShowsRangesMarkersAndFlags) {
  struct Case {
    const char* description;
    int day, range, detail;
    bool enabled;
    const char* expected;
  } cases[] = {
      {"Wedding", 3, 0, 0, true,
       "7) Wedding\t3 Aug 1990\t\xB1"
       "00 Days "},
      {"Move", 3, 7, 2, true,
       "7) Move\t3 Aug 1990\t\xB1"
       "07 Days *"},
      {"Fall", 3, 16, 0, true,
       "7) Fall\t3 Aug 1990\t\xB1"
       "16 Days X"},
      {"Off", 3, 2, 3, false,
       "7) Off\t3 Aug 1990\t\xB1"
       "02 Days *X"},
      {"School", 1, 182, 0, true, "7) School\tYear 1990\tMarker X"},
      {"", 3, 0, 0, true,
       "7) \t3 Aug 1990\t\xB1"
       "00 Days "},
      {"", 0, 0, 0, true, ""},
  };
  for (const auto& c : cases) {
    EventRecord r;
    r.Description = c.description;
    r.Day = static_cast<uint8_t>(c.day), r.Month = 8, r.Year = 1990;
    r.DayRange = static_cast<uint8_t>(c.range), r.DetailLevel = static_cast<uint8_t>(c.detail);
    r.Enabled = c.enabled ? kTrue : kFalse;
    EXPECT_EQ(RecordListLine(session, r, 7), c.expected) << c.description << " " << c.range;
  }
  EventRecord longOne;
  longOne.Description = std::string(60, 'a');
  longOne.Day = 1, longOne.Month = 1, longOne.Year = 2000;
  EXPECT_EQ(RecordListLine(session, longOne, 1).find('\t'), 3u + 50u) << "description cut to 50";
}

TEST_F(RecordEditTest, YearMarkerQuestionAndRangeRule) {
  struct Case {
    const char* date;
    int answer;
    const char* shownDate;
    int range;
    bool asked;
  } cases[] = {
      {"1990", kYes, "1 Jul 1990", 182, true},
      {"1990", kNo, "1 Jan 1990", 5, true},
      {" 3 Aug 1990 ", kYes, "3 Aug 1990", 5, false},
      {"31 Feb 1990", kYes, "", 5, false},  // refused by the parser with its message
  };
  for (const auto& c : cases) {
    ts.sink.Clear();
    ts.sink.answer = c.answer;
    EventRecord r;
    r.DayRange = 5;
    std::string date = c.date, range = "5";
    bool ok = LeaveDateField(session, r, date, range);
    EXPECT_EQ(ok, *c.shownDate != '\0') << c.date;
    if (ok) {
      EXPECT_EQ(date, c.shownDate);
    }
    EXPECT_EQ(r.DayRange, c.range) << c.date;
    EXPECT_EQ(range, c.range == 182 ? "182" : "5");
    EXPECT_EQ(!ts.sink.messages.empty() && ts.sink.messages[0].title == "Year Marker?", c.asked) << c.date;
  }

  struct RangeCase {
    const char* text;
    bool ok;
    int stored;
    const char* title;
  } ranges[] = {{"15", true, 15, nullptr},
                {"16", true, 16, "Date Range Error"},
                {"180", true, 180, "Date Range Error"},
                {"181", true, 181, nullptr},
                {"99999", true, 255, nullptr},
                {"", false, 0, "Blank field"},
                {"ten", false, 0, "Date Range Error"}};
  for (const auto& c : ranges) {
    ts.sink.Clear();
    EventRecord r;
    EXPECT_EQ(LeaveRangeField(session, r, c.text), c.ok) << c.text;
    EXPECT_EQ(r.DayRange, c.stored) << c.text;
    ASSERT_EQ(ts.sink.messages.size(), c.title ? 1u : 0u) << c.text;
    if (c.title) {
      EXPECT_EQ(ts.sink.messages[0].title, c.title);
    }
  }
  ts.sink.Clear();
  EventRecord r;
  LeaveRangeField(session, r, "16");
  EXPECT_EQ(ts.sink.messages[0].text,
            "Date range of 16 days is too large to be used. This event will be disabled if you choose the OK button.");
}

TEST_F(RecordEditTest, ZoneFieldsAndLocalMeanTime) {
  EventRecord r;
  std::string mnemonic = " est", zone;
  LeaveZoneMnemonicField(session, r, mnemonic, zone);
  EXPECT_EQ(mnemonic, "EST");
  EXPECT_EQ(zone, "+5:00");
  EXPECT_FLOAT_EQ(r.ZoneHours, 5.0f);

  mnemonic = "LMT";
  LeaveZoneMnemonicField(session, r, mnemonic, zone);
  std::string longitude = "9E59";
  ASSERT_TRUE(LeaveLongitudeField(session, r, longitude, mnemonic, zone));
  EXPECT_EQ(zone, "-0:39:56");
  EXPECT_NEAR(r.ZoneHours, -(9 + 59 / 60.0) / 15.0, 1e-6);

  std::string bad = "25:00";
  EXPECT_FALSE(LeaveZoneTimeField(session, r, bad));
  EXPECT_EQ(ts.sink.messages.back().title, "Error in Time Zone");

  const DetailFields none = FieldsForDetail(0), all = FieldsForDetail(3), exact = FieldsForDetail(2);
  EXPECT_FALSE(none.zone || none.time || none.place);
  EXPECT_TRUE(all.zone && all.time && all.place);
  EXPECT_TRUE(exact.zone && exact.time && !exact.place);
  r.Validated = kTrue;
  SetDetailLevel(r, 9);
  EXPECT_EQ(r.DetailLevel, 3);
  EXPECT_EQ(r.Validated, kFalse);

  session.prefs.CUAKeys = 0;
  EXPECT_EQ(EntryKeyMove(session, EntryKey::Enter), 1);
  EXPECT_EQ(EntryKeyMove(session, EntryKey::Up), -1);
  session.prefs.CUAKeys = kTrue;
  EXPECT_EQ(EntryKeyMove(session, EntryKey::Down), 0);
}

TEST_F(RecordEditTest, CategoryValueRules) {
  struct Case {
    int category;
    const char* text;
    int answer;
    bool ok;
    const char* stored;  // the record's list afterwards
    const char* title;
  } cases[] = {
      {2, "12.5", 0, true, "Move |12.5 |a |", nullptr},
      {2, "twelve", 0, false, "Move |31 |a |", "Non-Numeric Value"},
      {1, "JOB", 0, true, "Job |31 |a |", nullptr},  // the list's spelling
      {1, "Divorce", kOk, true, "Divorce |31 |a |", "New List Item"},
      {1, "Divorce", kCancel, false, "Move |31 |a |", "New List Item"},
      {3, "anything at all", 0, true, "Move |31 |anything at all |", nullptr},
      {1, "a|b", 0, false, "Move |31 |a |", "Vintar"},
  };
  for (const auto& c : cases) {
    SetUp();
    ts.sink.Clear();
    ts.sink.answer = c.answer;
    std::string text = c.text;
    EXPECT_EQ(SetRecordCategory(session, session.project, 1, c.category, text), c.ok) << c.text;
    EXPECT_EQ(session.project.Events[1].Categories, c.stored) << c.text;
    EXPECT_EQ(Titles(), c.title ? std::vector<std::string>{c.title} : std::vector<std::string>{}) << c.text;
    if (!c.ok) {
      EXPECT_EQ(text, "") << "a refused entry clears the field";
    }
  }
  // After OK the new item is on the list: a second entry asks nothing.
  SetUp();
  ts.sink.Clear();
  ts.sink.answer = kOk;
  std::string text = "Divorce";
  SetRecordCategory(session, session.project, 1, 1, text);
  text = "divorce";
  EXPECT_TRUE(SetRecordCategory(session, session.project, 2, 1, text));
  EXPECT_EQ(text, "Divorce");
  EXPECT_EQ(ts.sink.messages.size(), 1u);
  EXPECT_FALSE(SetRecordCategory(session, session.project, 9, 1, text)) << "no such record";
}

TEST_F(RecordEditTest, AddDeleteEnableAndCancelRestoresTheCopy) {
  RecordEditCopy copy;
  ASSERT_TRUE(BeginRecordEdit(session, copy));
  EXPECT_EQ(session.project.Status.EventsBackedUp, kTrue);

  RecordFields fields;
  fields.description = "Graduation";
  fields.date = "12 Jun 1999";
  fields.time = "3:00 pm";
  fields.zone = "EST";
  fields.detail = 2;
  fields.categories = {{2, "19"}};
  int32_t n = AddRecord(session.project);
  ASSERT_EQ(n, 4);
  ASSERT_TRUE(ApplyRecordFields(session, session.project, n, fields));
  const EventRecord& added = session.project.Events[4];
  EXPECT_EQ(added.Hour, 15);
  EXPECT_FLOAT_EQ(added.ZoneHours, 5.0f);
  EXPECT_EQ(added.Categories, " |19 | |");

  fields = {};
  fields.detail = 3;
  EXPECT_FALSE(ApplyRecordFields(session, session.project, n, fields)) << "time and place needs a place";
  EXPECT_EQ(ts.sink.messages.back().title, "Blank field");
  EXPECT_EQ(ts.sink.messages.back().text, "Item must not be left blank.");

  ts.sink.answer = kCancel;
  EXPECT_FALSE(DeleteRecord(session, session.project, 2));
  EXPECT_EQ(ts.sink.messages.back().title, "Verify Delete");
  ts.sink.answer = kOk;
  EXPECT_TRUE(DeleteRecord(session, session.project, 2));
  EXPECT_EQ(session.project.Header.RecordCount, 3);
  EXPECT_EQ(session.project.Events[2].Description, "Event 3");
  EXPECT_EQ(session.project.Events[3].Description, "Graduation");

  SetAllRecordsEnabled(session.project, false);
  EXPECT_TRUE(SetRecordEnabled(session.project, 3, true));
  EXPECT_FALSE(SetRecordEnabled(session.project, 4, true));
  EXPECT_EQ(session.project.Events[1].Enabled, kFalse);
  EXPECT_EQ(session.project.Events[3].Enabled, kTrue);

  ts.sink.answer = kNo;
  EXPECT_FALSE(CancelRecordEdit(session, copy));
  EXPECT_EQ(ts.sink.messages.back().title, "Retain Changes?");
  EXPECT_EQ(session.project.Header.RecordCount, 3);
  EXPECT_EQ(session.project.Events[2].Description, "Event 2");
  EXPECT_EQ(session.project.Events[1].Enabled, kTrue);
  EXPECT_EQ(session.project.Status.DataChanged, kFalse);
  EXPECT_EQ(session.project.Status.EventsBackedUp, kFalse);
}

TEST_F(RecordEditTest, OkDropsTheLastEmptyRecordAndDisablesWideRanges) {
  RecordEditCopy copy;
  ASSERT_TRUE(BeginRecordEdit(session, copy));
  session.project.Events[1].DayRange = 30;
  session.project.Events[2].DayRange = 182;
  AddRecord(session.project);
  int32_t bad = -1;
  ASSERT_TRUE(FinishRecordEdit(session, copy, bad));
  EXPECT_EQ(session.project.Header.RecordCount, 3);
  EXPECT_EQ(session.project.Events[1].Enabled, kFalse);
  EXPECT_EQ(session.project.Events[2].Enabled, kTrue) << "a marker stays enabled";
  EXPECT_GT(session.project.Events[3].JulianDay, 2440000.0);
  EXPECT_EQ(session.project.Status.CacheDirty, kTrue);

  // A record without a date is refused on OK.
  ASSERT_TRUE(BeginRecordEdit(session, copy));
  session.project.Events[2].Day = 0;
  session.project.Events[2].Validated = kFalse;
  EXPECT_FALSE(FinishRecordEdit(session, copy, bad));
  EXPECT_EQ(bad, 2);

  session.project.Header.RecordCount = 32001;
  ts.sink.Clear();
  RecordEditCopy big;
  EXPECT_FALSE(BeginRecordEdit(session, big));
  ASSERT_EQ(Titles(), std::vector<std::string>{"Too Many Records"});
  EXPECT_NE(ts.sink.messages[0].text.find("This project has 32001 records."), std::string::npos);
}

TEST_F(RecordEditTest, NatalEntryChecks) {
  const NatalFields good{"Ann", "14 Mar 1879", "Unknown", "LMT", "", "Ulm", "48N24", "9E59", "8:00 am", "3:00 pm"};
  struct Case {
    const char* what;
    NatalFields fields;
    const char* title;
  } cases[] = {
      {"name", {" ", good.Date, good.Time, "", "1:00", "Ulm", "48N24", "9E59", "8:00 am", "3:00 pm"}, "Error in Name"},
      {"place", {"Ann", good.Date, good.Time, "", "1:00", "", "48N24", "9E59", "8:00 am", "3:00 pm"}, "Error in Place"},
      {"date", {"Ann", "31 Feb", good.Time, "", "1:00", "Ulm", "48N24", "9E59", "8:00 am", "3:00 pm"}, nullptr},
      {"limit", {"Ann", good.Date, good.Time, "", "1:00", "Ulm", "48N24", "9E59", "25:00", "3:00 pm"}, nullptr},
  };
  for (const auto& c : cases) {
    ts.sink.Clear();
    EXPECT_FALSE(ApplyNatalEntry(session, c.fields)) << c.what;
    ASSERT_EQ(ts.sink.messages.size(), 1u) << c.what;
    if (c.title) {
      EXPECT_EQ(ts.sink.messages[0].title, c.title);
    }
    EXPECT_EQ(session.project.Status.NatChanged, kFalse) << c.what;
  }
  ASSERT_TRUE(ApplyNatalEntry(session, good));
  const ProjectHeader& h = session.project.Header;
  EXPECT_EQ(h.Time, "Unknown");
  EXPECT_EQ(h.ZoneTime, "-0:39:56");
  EXPECT_EQ(h.Latitude, FormatLatitude(48.4));
  EXPECT_EQ(session.project.Status.NatChanged, kTrue);
  EXPECT_EQ(session.project.Status.NatalValid, kTrue);
  EXPECT_GT(h.LatestJulianDay, h.EarliestJulianDay);
}

TEST_F(RecordEditTest, CategoryScreenRebuildsEveryRecord) {
  CategoryEditor editor = LoadCategoryEditor(session.project.Header);
  ASSERT_EQ(editor.entries.size(), 3u);
  EXPECT_EQ(CategoryListLine(editor.entries[1]), "Age\tNumeric");
  EXPECT_TRUE(MoveCategory(editor, 2, -1));  // Kind, Notes, Age
  EXPECT_FALSE(MoveCategory(editor, 0, -1));
  EXPECT_TRUE(RenameCategory(editor, 1, " Remarks "));
  EXPECT_FALSE(RenameCategory(editor, 1, "a|b"));
  EXPECT_FALSE(RenameCategory(editor, 1, "  "));
  EXPECT_EQ(editor.entries[AddCategory(editor, 1)].name, "Category 4");
  EXPECT_TRUE(DeleteCategory(editor, 0));  // Kind goes

  ts.sink.answer = kCancel;
  EXPECT_FALSE(SaveCategories(session, editor));
  EXPECT_EQ(ts.sink.messages.back().title, "Confirm Deletion");
  EXPECT_EQ(ts.sink.messages.back().flags, 49);
  EXPECT_EQ(session.project.Events[1].Categories, "Move |31 |a |") << "cancel changes nothing";

  ts.sink.answer = kOk;
  ASSERT_TRUE(SaveCategories(session, editor));
  const ProjectState& p = session.project;
  EXPECT_EQ(p.Header.CategoryNames, "Remarks |Age |Category 4 |");
  EXPECT_EQ(p.Header.CategoryTypes, "2 |1 |1 |");
  EXPECT_EQ(p.Header.CategoryCount, 3);
  const char* expected[] = {"", "a |31 | |", "b |40 | |", "c |52 | |"};
  for (int i = 1; i <= 3; ++i) EXPECT_EQ(p.Events[i].Categories, expected[i]) << i;
  EXPECT_EQ(p.Categories.CategoryLength[1], 0) << "no list category is left";
  EXPECT_EQ(p.Status.DataChanged, kTrue);
  EXPECT_EQ(p.Status.NatChanged, kTrue);

  // Saving what is already there changes nothing.
  session.project.Status = CurStatus{};
  EXPECT_TRUE(SaveCategories(session, LoadCategoryEditor(p.Header)));
  EXPECT_EQ(p.Status.DataChanged, kFalse);
}

}  // namespace
}  // namespace vintar
