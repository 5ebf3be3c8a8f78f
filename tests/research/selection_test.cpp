// Record selection: conditions on every record field and on categories of
// each type, value normalisation, brackets and Not, and the run with its
// "Selection Finished" box.
#include <gtest/gtest.h>

#include "core/project_file.h"
#include "research/selection.h"
#include "support/test_support.h"

namespace vintar {
namespace {

EventRecord Record(const std::string& description, int year, int month, int day, int hour, float zone,
                   const std::string& place, float latitude, float longitude, const std::string& categories) {
  EventRecord e;
  e.Description = description;
  e.Year = static_cast<int16_t>(year), e.Month = static_cast<uint8_t>(month), e.Day = static_cast<uint8_t>(day);
  e.Hour = static_cast<uint8_t>(hour), e.Minute = 30, e.DetailLevel = 3, e.DayRange = 12;
  e.ZoneAbbr = "CET", e.ZoneHours = zone, e.Placename = place;
  e.Latitude = latitude, e.Longitude = longitude, e.Categories = categories;
  return e;
}

class Selection : public ::testing::Test {
 protected:
  void SetUp() override {
    ProjectState& p = t.session.project;
    p.Header.CategoryNames = "Sport |Wins |Notes |";
    p.Header.CategoryTypes = "0 |1 |2 |";
    p.Header.CategoryCount = 3;
    p.Events.assign(4, EventRecord{});
    p.Events[1] =
        Record("Alard Pierre", 1937, 9, 17, 17, -1, "Bordeaux", 44.83333f, -0.56667f, "Athletics |12 |fast |");
    p.Events[2] = Record("Andre Georges", 1889, 8, 13, 12, 0, "Paris", 48.83333f, -2.33333f, "Rugby |3 |Olympian |");
    p.Events[3] = Record("Arifon Jean", 1926, 11, 16, 6, 0, "Marseille", 43.3f, -5.36667f, "Athletics |40 | |");
    p.Header.RecordCount = 3;
  }
  std::string Passing(const SelectionList& list) {
    const PreparedSelection prepared = PrepareSelection(t.session, list);
    std::string out;
    for (int i = 1; i <= 3; ++i)
      out += EvaluateSelection(t.session, list, prepared, t.session.project.Events[i], 1, list.Count()) ? "1" : "0";
    return out;
  }
  testing::TestSession t;
};

TEST_F(Selection, ConditionsOnEveryFieldAndCategoryType) {
  struct Case { int field, condition; std::string value, expected; };
  const std::vector<Case> cases = {
      {0, 7, "GEORGES", "010"},           // contains, case ignored
      {0, 8, "Ar", "001"},                // starts with
      {0, 8, "Arifon Jean Baptiste", "000"},  // longer than the record's text
      {0, 6, "alard pierre", "100"},
      {1, 3, "1 Jan 1926", "101"},        // dates as numbers
      {1, 4, "16 Nov 1926", "010"},
      {2, 0, "12", "111"},
      {3, 1, "3", "000"},
      {4, 0, "cet", "111"},
      {5, 0, "-1:00", "100"},             // zone hours
      {6, 4, "12:30", "001"},             // time of day
      {7, 1, "Paris", "000"},             // a record field under conditions 0-5 compares as numbers: 0 = 0
      {8, 2, "44N00", "110"},             // latitude north positive
      {9, 0, "0E34", "100"},              // longitude to the second
      {2, 7, "2", "111"},                 // contains on a numeric field: its text
      {10, 0, "athletics", "101"},        // list category as text
      {10, 2, "B", "000"},                // text category: no ordering
      {11, 2, "5", "101"},                // numeric category by value, not text ("12" > "5")
      {11, 8, "1", "100"},
      {12, 0, "", "001"},                 // free text, empty element
      {12, 1, "", "110"},
  };
  for (const Case& c : cases) {
    SelectionList list;
    AddSelCriterion(list, c.field, c.condition, NormaliseSelValue(t.session, c.field, c.value));
    EXPECT_EQ(Passing(list), c.expected) << "field " << c.field << " condition " << c.condition << " " << c.value;
  }
}

TEST_F(Selection, ConnectivesNotAndBrackets) {
  SelectionList list;
  AddSelCriterion(list, 10, 0, "Rugby");        // B
  AddSelCriterion(list, 0, 8, "Al");            // A
  AddSelCriterion(list, 0, 8, "Ar");            // C
  SetSelConnective(list, {1, 2}, 1);            // the first keeps And
  EXPECT_EQ(list.Items[1].Connective, 0);
  SetSelConnective(list, {3}, 0);
  // Rugby Or Al And Ar, left to right: false for all.
  EXPECT_EQ(Passing(list), "000");
  ASSERT_TRUE(ToggleSelBrackets(t.session, list, 2, 3));
  EXPECT_EQ(Passing(list), "010");              // Rugby Or (Al And Ar)
  ToggleSelNegated(list, {3});
  EXPECT_EQ(Passing(list), "110");              // Rugby Or (Al And Not Ar)
  EXPECT_EQ(SelCriterionText(t.session, list, 2), "Or  ( Description starts with characters \"Al\"");
  EXPECT_EQ(SelCriterionText(t.session, list, 3), "And   Not Description starts with characters \"Ar\" )");
  EXPECT_FALSE(ToggleSelBrackets(t.session, list, 1, 3));
  ASSERT_EQ(t.sink.messages.size(), 1u);
  EXPECT_EQ(t.sink.messages[0].text, "Cannot apply brackets because all records are selected.");
}

TEST_F(Selection, ValuesNormalisedOrDefaulted) {
  struct Case { int field; std::string typed, expected; };
  const std::vector<Case> cases = {
      {1, "nonsense", "1 Jan 1999"}, {8, "north", "00N00"}, {9, "west", "00W00"},
      {5, "-x", "-0:00"}, {5, "zz", "+0:00"}, {5, "-5", "-5:00"},
      {0, "  padded  ", "padded"}, {0, std::string(100, 'a'), std::string(80, 'a')},
  };
  for (const Case& c : cases) EXPECT_EQ(NormaliseSelValue(t.session, c.field, c.typed), c.expected) << c.typed;
  EXPECT_TRUE(t.sink.messages.empty());  // the parsers stay silent
}

TEST_F(Selection, RunAndTheFinishedBox) {
  SelectionList list;
  AddSelCriterion(list, 10, 0, "Athletics");
  t.session.project.Events[3].Enabled = kFalse;
  struct Case { int answer; std::vector<int16_t> enabled; };
  for (const Case& c : {Case{kCancel, {kTrue, kTrue, kFalse}}, Case{kOk, {kTrue, kFalse, kFalse}}}) {
    t.session.project.Events[1].Enabled = t.session.project.Events[2].Enabled = kTrue;
    t.sink.Clear();
    t.sink.answer = c.answer;
    bool applied = false;
    const SelectionRun run = SelectRecords(t.session, list, applied);
    EXPECT_EQ(run.Enabled, 2);
    EXPECT_EQ(run.Passed, 1);
    ASSERT_EQ(t.sink.messages.size(), 1u);
    EXPECT_EQ(t.sink.messages[0].title, "Selection Finished");
    EXPECT_EQ(t.sink.messages[0].text.substr(0, 43), "1 records were selected from a possible 2\r\n");
    EXPECT_EQ(applied, c.answer == kOk);
    for (int i = 1; i <= 3; ++i) EXPECT_EQ(t.session.project.Events[i].Enabled, c.enabled[i - 1]) << i;
  }
  // No enabled records: nothing passes, 0 of 0.
  for (int i = 1; i <= 3; ++i) t.session.project.Events[i].Enabled = kFalse;
  t.sink.Clear();
  bool applied = false;
  SelectRecords(t.session, list, applied);
  EXPECT_EQ(t.sink.messages[0].text.substr(0, 41), "0 records were selected from a possible 0");
}

}  // namespace
}  // namespace vintar
