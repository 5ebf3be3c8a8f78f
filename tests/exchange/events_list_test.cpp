// The simple events list: the "when" grammar (days, months, years, ranges
// and directives, times, date orders), the locations and the default
// place, the skipped events and their messages, and the import's file.
#include "exchange/events_list.h"

#include <gtest/gtest.h>

#include "core/calendar.h"
#include "core/project_file.h"
#include "support/test_support.h"

namespace vintar {
namespace {

using testing::TestSession;

struct ListRun {
  TestSession t;
  Session& s = t.session;
  std::vector<std::string> looked;  // "city|state" of each lookup
  ListRun() { s.clock = Clock{2026, 11, 23, 12, 0, 0}; }
  EventsListResult Parse(const std::string& text) {
    EventPlaceLookup lookup = [this](const std::string& city, const std::string& state, int, int, int, int, int,
                                     FoundPlace& found) {
      looked.push_back(city + "|" + state);
      if (city != "ULM") return false;
      found.Latitude = 48.4;
      found.Longitude = -9.98;
      found.ZoneText = "-0:40";
      found.ZoneName = "LMT";
      return true;
    };
    return ParseEventsList(s, text, lookup);
  }
};

TEST(WhenTokens, NumbersWordsAndDroppedSeparators) {
  struct Case {
    const char* line;
    std::vector<std::string> tokens;
  } cases[] = {
      {"1st March 1980", {"1", "MARCH", "1980"}},
      {"3/5/85 10:30pm", {"3", "5", "85", "10", ":", "30", "PM"}},
      {"7 before+after 2-jun-1990", {"7", "BEFORE+AFTER", "2", "JUN", "1990"}},
      {"22nd\\Jan 1999 9.15 a", {"22", "JAN", "1999", "9", ".", "15", "A"}},
  };
  for (const Case& c : cases) EXPECT_EQ(WhenTokens(c.line), c.tokens) << c.line;
}

// One event per case: the stored date, half-width, time and detail level.
TEST(EventsList, WhenForms) {
  struct Case {
    const char* when;
    int day, month, year, range, hour, minute, detail;
  } cases[] = {
      {"3 MAY 1985", 3, 5, 1985, 0, 0, 0, 0},
      {"1990", 1, 7, 1990, 182, 0, 0, 0},
      {"JUN 1990", 15, 6, 1990, 15, 0, 0, 0},
      {"FEB 1990", 15, 2, 1990, 14, 0, 0, 0},
      {"JUL 1990", 16, 7, 1990, 15, 0, 0, 0},
      {"1 BEGINS 3 MAY 1985", 3, 5, 1985, 0, 0, 0, 0},  // one day: a plain day
      {"7 ENDS 10 JUN 1990", 7, 6, 1990, 3, 0, 0, 0},   // 4 to 10 June
      {"2 BEFORE 4 AFTER 10 JUN 1990", 11, 6, 1990, 3, 0, 0, 0},  // 8 to 14 June
      {"3 MAY 1985 TO 9 MAY 1985", 6, 5, 1985, 3, 0, 0, 0},
      {"3 MAY 1985 10:30 PM", 3, 5, 1985, 0, 22, 30, 2},
      {"3 MAY 1985 12 PM", 3, 5, 1985, 0, 24, 0, 2},  // twelve with PM is 24: no special case
      {"3 MAY 1985 0 AM", 3, 5, 1985, 0, 0, 0, 2},
      {"3 MAY 26", 3, 5, 2026, 0, 0, 0, 0},
  };
  for (const Case& c : cases) {
    ListRun r;
    const EventsListResult res = r.Parse(std::string("\"An event\"\n") + c.when + "\n");
    ASSERT_EQ(res.Imported, 1) << c.when << ": " << res.Message;
    const EventRecord& e = res.Records[1];
    EXPECT_EQ(e.Description, "An event");
    EXPECT_EQ((std::array<int, 7>{e.Day, e.Month, e.Year, e.DayRange, e.Hour, e.Minute, e.DetailLevel}),
              (std::array<int, 7>{c.day, c.month, c.year, c.range, c.hour, c.minute, c.detail}))
        << c.when;
  }
}

TEST(EventsList, BadWhenLinesAreSkippedWithTheirReason) {
  struct Case {
    const char* when;
    const char* reason;
  } cases[] = {
      {"BEFORE 3 MAY 1985", "The directive has no number."},
      {"3 MAY BEFORE 1985", "Invalid directive for the date."},
      {"3 MAY TO 9 MAY 1985", "the beginning date is not a proper date."},
      {"3 3 BEFORE 4 MAY 1985", "The directive must come at the beginning of the 'When' line."},
      {"2 BEFORE AFTER 4 MAY 1985", "The 'AFTER' directive has no number."},
      {"9 MAY 1985 TO 3 MAY 1985", "The end date is earlier in time than the beginning date."},
      {"30 FEB 1985", "The date is not a valid calendar date."},
      {"3 MAY 1850", "Year is not a valid year. Needs to be 1900 or later."},
      {"3 MAY 85", "Two digit year not valid. Years not in the current century need to be four digits."},
      {"3 MAY 27", "The year (27) is in the future."},
      {"3 MAYO 1985", "Invalid month word (MAYO)."},
      {"3 13 1985", "Invalid month number (13)."},
      {"5 10:30", "Any time for an event must come after a valid date."},
      {"3 MAY 1985 10:30 XYZ", "Invalid characters within or after the time."},
      {"3 MAY 1985 10:30 PM XYZ", "Invalid characters after the time."},
      {"3 BEGINS", "The date must come before the time."},
  };
  for (const Case& c : cases) {
    ListRun r;
    const EventsListResult res = r.Parse(std::string("\"One\"\n") + c.when + "\n");
    EXPECT_EQ(res.Imported, 0) << c.when;
    EXPECT_EQ(res.Message, std::string("Event no 1 skipped: 'When' type error on line 2\r\n") + c.reason) << c.when;
  }
}

TEST(EventsList, TimeWarningsKeepTheEvent) {
  ListRun r;
  const EventsListResult res = r.Parse("\"One\"\n3 MAY 1985 25:10\n\n\"Two\"\n3 MAY 1985 10:75\n");
  ASSERT_EQ(res.Imported, 2);
  EXPECT_EQ(res.Records[1].DetailLevel, 0);
  EXPECT_EQ(res.Records[2].Hour, 10);
  EXPECT_EQ(res.Records[2].Minute, 0);
  EXPECT_EQ(res.Message,
            "'When' type error on line 2\r\nInvalid hour, time not included in the event.\r\n\r\n"
            "'When' type error on line 5\r\nInvalid minutes, only the hour included in the event.");
}

// The file's grammar: comments, date orders, default places, the lines of
// an event, QUIT, and no closing empty line needed.
TEST(EventsList, FileGrammarAndPlaces) {
  ListRun r;
  const std::string text =
      "; my events\n"
      "DATEORDER YMD\n"
      "Ulm, Germany\n"                   // the default place, not an event line
      "\"Born to a new school\"\n"
      "1985 5 3\n"
      "\n"
      "'Moved\n"
      "Paris, France\n"
      "1990 6 10 9:00 AM\n"
      "\n"
      "Married\n"                        // no quote: not a What line
      "1991 1 1\n"
      "\n"
      "\"Four lines\"\n"
      "1992 1 1\n"
      "1993 1 1\n"
      "Paris, France\n"
      "\n"
      "= NOWHERE\n"
      "\"Without a place\"\n"
      "1994 2 2 10:00\n"
      "QUIT\n"
      "\"Never read\"\n"
      "1995 1 1\n";
  const EventsListResult res = r.Parse(text);
  ASSERT_EQ(res.Imported, 3) << res.Message;
  const EventRecord& born = res.Records[1];
  EXPECT_EQ(born.Placename, "ULM, GERMANY");
  EXPECT_FLOAT_EQ(born.Latitude, 48.4f);
  EXPECT_NEAR(born.ZoneHours, -40.0 / 60.0, 1e-6);
  EXPECT_EQ(born.DetailLevel, 1);  // found, no time
  EXPECT_EQ(res.Records[2].Description, "Moved");
  EXPECT_EQ(res.Records[2].DetailLevel, 2);  // not found, with a time
  EXPECT_EQ(res.Records[3].ZoneAbbr, "UT");
  EXPECT_EQ(res.Records[3].Placename, "");
  EXPECT_EQ(res.Records[3].DetailLevel, 2);  // no place: exact date and a time
  EXPECT_EQ(r.looked, (std::vector<std::string>{"ULM|GERMANY", "PARIS|FRANCE"}));
  EXPECT_NE(res.Message.find("Event no 3 skipped: General Event type error on line 11\r\nInvalid line - possibly a "
                             "'What' error (no opening quote or apostrophe character)."),
            std::string::npos)
      << res.Message;
  EXPECT_NE(res.Message.find("Event no 4 skipped: 'General error' type error on line 17\r\nEvent has more than "
                             "three lines. Duplicated 'When' information for the same event."),
            std::string::npos)
      << res.Message;
}

TEST(EventsList, CommentsOnlyAndTheImportFile) {
  ListRun r;
  testing::TempDir dir;
  const std::string source = dir.file("events.txt"), dat = dir.file("out.dat"), nat = dir.file("out.nat");
  testing::WriteBytes(source, "; nothing\r\n; at all\r\n");
  testing::WriteBytes(nat, "");
  EventsListResult res = ImportSimpleEventsList(r.s, source, nat, dat, {});
  EXPECT_EQ(res.Imported, 0);
  ASSERT_EQ(r.t.sink.messages.size(), 1u);
  EXPECT_EQ(r.t.sink.messages[0].text, "Imported 0 events.\r\n\r\n");
  EXPECT_EQ(r.t.sink.messages[0].title, "Import Simple Events List");

  testing::WriteBytes(source, "\"One\"\r\n3 MAY 1985\r\n");
  res = ImportSimpleEventsList(r.s, source, nat, dat, {});
  EXPECT_EQ(testing::ReadBytes(dat), FormatDataRecord(res.Records[1]));

  // Without the header file the data file is not left behind.
  res = ImportSimpleEventsList(r.s, source, dir.file("none.nat"), dir.file("alone.dat"), {});
  EXPECT_FALSE(FileExists(dir.file("alone.dat")));
  res = ImportSimpleEventsList(r.s, dir.file("missing.txt"), nat, dat, {});
  EXPECT_EQ(res.Error, kEventsFileError);
  EXPECT_EQ(r.t.sink.messages.back().text, "Error opening events file");
}

}  // namespace
}  // namespace vintar
