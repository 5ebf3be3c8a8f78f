// The value parsers and formatters: the date grammar with its marks, the
// century rule and the 1582 reform, the time, angle, latitude, longitude and
// zone grammars with every fixed message, the formatters, the list splits and
// the stable index sorts.

#include "core/parse.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "core/records.h"
#include "support/test_support.h"

namespace vintar {
namespace {

const std::string E_DMY = "\r\nPlease re-enter a valid date e.g.\r\n31 Dec 2009  or  31/12/2009";
const std::string E_MDY = "\r\nPlease re-enter a valid date e.g.\r\nDec 31 2009  or  12/31/2009";
const std::string F = "The format of the date is not recognized.";
const std::string T = "The format of the time is not recognised.\r\n";
const std::string kAngleMessage =
    "The format of the angle is not recognised.\r\nExamples of valid angles are 10 11'59\"; 16Ar25; 27 PISCES; "
    "etc... Please re-enter the angle.";

class ParseTest : public ::testing::Test {
 protected:
  testing::TestSession ts;
  Session& session = ts.session;

  // The one message the last call showed, checked for icon and title.
  // Clears the sink either way, so that one wrong case does not spill over.
  std::string Message(const std::string& title) {
    auto all = ts.sink.messages;
    ts.sink.Clear();
    if (all.size() != 1) return "<" + std::to_string(all.size()) + " messages>";
    auto m = all[0];
    EXPECT_EQ(m.flags, kIconStop);
    EXPECT_EQ(m.title, title);
    return m.text;
  }
};

struct DateCase {
  const char* text;
  int day, month, year;
  std::string message;  // empty: accepted
};

TEST_F(ParseTest, DatesDayFirst) {
  const DateCase cases[] = {
      {"1950", 1, 1, 1950, ""}, {"31", 31, 1, 2026, ""}, {"12", 12, 1, 2026, ""}, {"may", 1, 5, 2026, ""},
      {"12JAN1950", 12, 1, 1950, ""}, {"August 3rd 1990", 3, 8, 1990, ""}, {"31/12/2009", 31, 12, 2009, ""},
      {"Dec. 25, 1066", 25, 12, 1066, ""}, {"31 December 2009 AD", 31, 12, 2009, ""},
      {"15 Jan 100 BC", 15, 1, -99, ""}, {"1 Jan 1 B.C.", 1, 1, 0, ""}, {"3 Mar 5 BCE", 3, 3, -4, ""},
      {"1 Mar -50", 1, 3, -50, ""}, {"29 Feb 1500", 29, 2, 1500, ""}, {"4 Oct 1582", 4, 10, 1582, ""},
      {"5 Oct 1582", 15, 10, 1582, ""}, {"15 Oct 1582", 15, 10, 1582, ""}, {"1 Feb 1600 OS", 11, 2, 1600, ""},
      {"20 Oct 1582 O.S.", 30, 10, 1582, ""}, {"12 Jan 1752 NS", 12, 1, 1752, ""},
      {"1 Jan 1500 N.S.", 23, 12, 1499, ""},
      {"12/31/2009", 0, 0, 0, "This date is not a valid calendar date." + E_DMY},
      {"29 Feb 1900", 0, 0, 0, "This date is not a valid calendar date." + E_DMY},
      {"10 FEB", 0, 0, 0, F + E_DMY}, {"1 0 2000", 0, 0, 0, F + E_DMY}, {"1 2 3 4", 0, 0, 0, F + E_DMY},
      {"1 Jan 40000", 0, 0, 0, F + E_DMY}, {"August 1st 1990", 0, 0, 0, F + E_DMY}, {"", 0, 0, 0, F + E_DMY},
      {"1 Jan 100 BC AD", 0, 0, 0,
       F + "\r\nSpecify BC for years prior to year one, and AD (or nothing) for years one and after."},
  };
  for (const DateCase& c : cases) {
    int16_t d = -7, m = -7, y = -7;
    bool failed = false;
    ParseDate(session, c.text, d, m, y, true, failed);
    EXPECT_EQ(failed, !c.message.empty()) << c.text;
    if (c.message.empty()) {
      EXPECT_EQ(Message(""), "<0 messages>") << c.text;
      EXPECT_EQ(d * 10000000 + m * 100000 + y, c.day * 10000000 + c.month * 100000 + c.year)
          << c.text << " gave " << d << "/" << m << "/" << y;
    } else {
      EXPECT_EQ(Message("Error in Date"), c.message) << c.text;
    }
  }
}

TEST_F(ParseTest, DatesMonthFirstAndQuiet) {
  session.prefs.MonthFirst = kTrue;
  int16_t d = 0, m = 0, y = 0;
  bool failed = false;
  ParseDate(session, "12/31/2009", d, m, y, true, failed);
  EXPECT_FALSE(failed);
  EXPECT_EQ(d, 31);
  EXPECT_EQ(m, 12);
  ParseDate(session, "12", d, m, y, true, failed);  // month 12, day 1
  EXPECT_EQ(d, 1);
  EXPECT_EQ(m, 12);
  ParseDate(session, "12 Xyz 2000", d, m, y, true, failed);
  EXPECT_TRUE(failed);
  EXPECT_EQ(Message("Error in Date"), F + E_MDY);
  ParseDate(session, "12 Xyz 2000", d, m, y, false, failed);
  EXPECT_TRUE(failed);
  EXPECT_TRUE(ts.sink.messages.empty());
}

TEST_F(ParseTest, TwoDigitYearsFollowTheCenturyBase) {
  const struct {
    int base;
    const char* text;
    int year;
  } cases[] = {
      {1900, "1 1 50", 1950}, {1900, "1 1 0", 1900},  {1930, "1 1 29", 2029}, {1930, "1 1 30", 1930},
      {2000, "1 1 05", 2005}, {1930, "1 1 050", 50}, {1930, "1 1 29 BC", -28},
  };
  for (const auto& c : cases) {
    session.CenturyBase = static_cast<int16_t>(c.base);
    int16_t d = 0, m = 0, y = 0;
    bool failed = true;
    ParseDate(session, c.text, d, m, y, true, failed);
    EXPECT_FALSE(failed) << c.text;
    EXPECT_EQ(y, c.year) << c.base << " " << c.text;
  }
}

TEST_F(ParseTest, TimesAndTheirMessages) {
  const std::string am = "Please use a valid format e.g. 11:59:59 AM";
  const std::string pm = "\r\nPlease use a valid format e.g. 11:59:59 PM";
  const struct {
    const char* text;
    int h, m, s;
    std::vector<std::string> messages;
  } cases[] = {
      {"", 0, 0, 0, {}},        {"12 PM", 12, 0, 0, {}},         {"12 AM", 0, 0, 0, {}},
      {"0 pm", 12, 0, 0, {}},   {"11:45:30 pm", 23, 45, 30, {}}, {"7.05", 7, 5, 0, {}},
      {"23-59-59", 23, 59, 59, {}},
      {"25:61", 25, 61, 0, {T + "Hours must be in the range 0 to 23.\r\nPlease use a valid format e.g. 23:59:59",
                            T + "Minutes must be in the range 0 to 59." + pm}},
      {"13 AM", 13, 0, 0, {T + "Hours must be in the range 0 to 12 if AM is specified.\r\n" + am}},
      {"13 PM", 13, 0, 0, {T + "Hours must be in the range 0 to 12 if PM is specified." + pm}},
      {"007", 7, 0, 0, {T + "Hours must be in the range 0 to 12 if AM is specified.\r\n" + am}},
      {"1:2:60", 1, 2, 60, {T + "Seconds must be in the range 0 to 59." + pm}},
      {"1:2:3:4", 1, 2, 3, {T + "Please use a valid format e.g. 10:45 PM"}},
      {"1:2X", 1, 0, 0, {T + "Please use numbers separated by colons e.g. 11:45 PM"}},
      {"1 AM PM", 1, 0, 0,
       {T + "Specify AM for morning, PM for afternoon, or neither for the 24 hour clock.\r\n" + am}},
  };
  for (const auto& c : cases) {
    int16_t h = -1, m = -1, s = -1;
    bool failed = false;
    ParseTime(session, c.text, h, m, s, true, failed);
    EXPECT_EQ(failed, !c.messages.empty()) << c.text;
    EXPECT_EQ(h * 10000 + m * 100 + s, c.h * 10000 + c.m * 100 + c.s) << c.text;
    ASSERT_EQ(ts.sink.messages.size(), c.messages.size()) << c.text;
    for (size_t i = 0; i < c.messages.size(); ++i) {
      EXPECT_EQ(ts.sink.messages[i].text, c.messages[i]) << c.text;
      EXPECT_EQ(ts.sink.messages[i].title, "Error in Time");
    }
    ts.sink.Clear();
  }
}

TEST_F(ParseTest, Angles) {
  const double tenth = 0.1 / 3600.0;
  const struct {
    const char* text;
    double angle;  // < 0: rejected
  } cases[] = {
      {"16Ar25", 16 + 25 / 60.0 + tenth}, {"27 PISCES", 357 + tenth}, {"10\xB0" "30'", 10.5 + tenth},
      {"10 11'59\"", 10 + 11 / 60.0 + 59 / 3600.0 + tenth}, {"5 leo 30.5", 125 + 30.5 / 60.0 + tenth},
      {"3sag", 243 + tenth}, {"370", 10 + tenth}, {"", tenth}, {"1A2R", -1}, {"12 A", -1}, {"12 Xy", -1},
      {"-5", -1}, {"10 60", -1}, {"10 5 60", -1},
  };
  for (const auto& c : cases) {
    float angle = -1;
    bool failed = false;
    ParseAngle(session, c.text, angle, failed);
    EXPECT_EQ(failed, c.angle < 0) << c.text;
    if (c.angle >= 0) {
      EXPECT_NEAR(angle, c.angle, 1e-5) << c.text;
      EXPECT_EQ(Message(""), "<0 messages>") << c.text;
    } else {
      EXPECT_EQ(Message("Error in Angle"), kAngleMessage) << c.text;
    }
  }
}

TEST_F(ParseTest, LatitudesAndLongitudes) {
  const std::string latLetter =
      "The format of the latitude is not recognised.\r\nSpecify N for northern hemisphere latitudes\r\n"
      "or S for southern hemisphere latitudes.\r\nPlease use a valid format e.g. 35S55";
  const std::string latRange =
      "The format of the latitude is not recognised.\r\nDegrees must be in the range 0 to 90.\r\n"
      "Minutes or seconds must be in the range 0 to 59.\r\nPlease use a valid format e.g. 35S55";
  const std::string lonLetter =
      "The format of the longitude is not recognised.\r\nSpecify E for eastern hemisphere longitudes\r\n"
      "or W for western hemisphere longitudes.\r\nPlease use a valid format e.g. 138E34";
  const std::string lonRange =
      "The format of the longitude is not recognised.\r\nDegrees must be in the range 0 to 180.\r\n"
      "Minutes or seconds must be in the range 0 to 59.\r\nPlease use a valid format e.g. 138E34";
  const struct {
    bool latitude;
    const char* text;
    double value;
    std::string message;
  } cases[] = {
      {true, "35.5", 35 + 5 / 60.0, ""},          {true, "35S55", -(35 + 55 / 60.0), ""},
      {true, "-35 55", -(35 + 55 / 60.0), ""},    {true, "33n52 15", 33 + 52 / 60.0 + 15 / 3600.0, ""},
      {true, "90N0", 90, ""},                     {true, "", 0, ""},
      {true, "1 2 3 4", 1 + 2 / 60.0 + 3 / 3600.0, ""},
      {true, "90N1", 0, latRange},                {true, "91", 0, latRange},
      {true, "45 60", 0, latRange},               {true, "35S10N", 0, latLetter},
      {true, "-35N", 0, latLetter},               {true, "35E10", 0, latLetter},
      {false, "138E34", -(138 + 34 / 60.0), ""},  {false, "180w0", 180, ""},
      {false, "151 13 30 W", 151.225, ""},        {false, "181", 0, lonRange},
      {false, "180 0 1", 0, lonRange},            {false, "10N5", 0, lonLetter},
  };
  for (const auto& c : cases) {
    double value = -999;
    bool failed = false;
    if (c.latitude) {
      ParseLatitude(session, c.text, value, true, failed);
    } else {
      ParseLongitude(session, c.text, value, true, failed);
    }
    EXPECT_EQ(failed, !c.message.empty()) << c.text;
    if (c.message.empty()) {
      EXPECT_NEAR(value, c.value, 1e-9) << c.text;
      EXPECT_EQ(Message(""), "<0 messages>") << c.text;
    } else {
      EXPECT_EQ(Message(c.latitude ? "Error in Latitude" : "Error in Longitude"), c.message) << c.text;
    }
  }
}

TEST_F(ParseTest, ZonesFromTableAndText) {
  ZoneTable& z = session.zones;
  z.ZoneCount = 3;
  z.ZoneMnemonic[1] = "GMT";
  z.ZoneOffset[1] = "0:00";
  z.ZoneMnemonic[2] = "AEST";
  z.ZoneOffset[2] = "-10:00";
  z.ZoneMnemonic[3] = "BAD";
  z.ZoneOffset[3] = "5h";
  const std::string z1 =
      "The format of the Time Zone is not recognised.\r\nPlease use a valid mnemonic (e.g. GMT) or a time.\r\n"
      "This may be selected from a list by clicking on the Zone button.\r\nIf entering time, please use hours "
      "minutes and seconds separated by colons e.g. -10:30";
  const std::string z2 =
      "The format of the Time Zone mnemonic has been recognised as valid,\r\nbut the corresponding time value is "
      "not valid: 5h\r\nYou must edit the time zone file after exiting from this program.\r\nEnsure that you use "
      "hours, minutes and seconds separated by colons e.g. -10:30";
  const struct {
    const char* text;
    double hours;
    const char* mnemonic;
    std::string message;
  } cases[] = {
      {"gmt", 0, "GMT", ""},          {"aest", -10, "AEST", ""},      {"-10:30", -10.5, "", ""},
      {"EST -5", -5, "EST", ""},      {"-0:30", -0.5, "", ""},        {"+5:30:36", 5.51, "", ""},
      {"5-", -5, "", ""},             {"13", 13, "", ""},             {"14:00", 0, "", z1},
      {"5:60", 0, "", z1},            {"1:2:3:4", 0, "", z1},         {"5h", 0, "", z1},
      {"bad", 0, "BAD", z2},
  };
  for (const auto& c : cases) {
    float hours = 99;
    std::string mnemonic = "old";
    bool failed = false;
    ParseZone(session, c.text, hours, mnemonic, true, failed);
    EXPECT_EQ(failed, !c.message.empty()) << c.text;
    EXPECT_EQ(mnemonic, c.mnemonic) << c.text;
    if (c.message.empty()) {
      EXPECT_NEAR(hours, c.hours, 1e-6) << c.text;
      EXPECT_EQ(Message(""), "<0 messages>") << c.text;
    } else {
      EXPECT_EQ(Message("Error in Time Zone"), c.message) << c.text;
    }
  }
}

TEST_F(ParseTest, Formatters) {
  EXPECT_EQ(FormatDate(session, 31, 12, 2009), "31 Dec 2009");
  EXPECT_EQ(FormatDate(session, 5, 3, 33), "5 Mar 0033");
  EXPECT_EQ(FormatDate(session, 1, 1, 0), "1 Jan 0001 BC OS");
  EXPECT_EQ(FormatDate(session, 15, 1, -99), "15 Jan 0100 BC");
  EXPECT_EQ(FormatDate(session, 40, 13, 2000), "31 Dec 2000");
  session.prefs.MonthFirst = kTrue;
  EXPECT_EQ(FormatDate(session, 31, 12, 2009), "Dec 31 2009");

  EXPECT_EQ(FormatTime(0, 0, 0, true), "0:00 am");
  EXPECT_EQ(FormatTime(17, 7, 9, true), "5:07:09 pm");
  EXPECT_EQ(FormatTime(12, 30, 0, true), "12:30 pm");
  EXPECT_EQ(FormatTime(17, 7, 0, false), "17:07");

  EXPECT_EQ(FormatZone(10.5), "+10:30");
  EXPECT_EQ(FormatZone(-5), "-5:00");
  EXPECT_EQ(FormatZone(0), "+0:00");
  EXPECT_EQ(FormatZone(5 + 20 / 60.0), "+5:20");
  EXPECT_EQ(FormatZone(-(1 + 2 / 60.0 + 3 / 3600.0)), "-1:02:03");

  EXPECT_EQ(FormatLatitude(-(33 + 52 / 60.0)), "33S52");
  EXPECT_EQ(FormatLatitude(33 + 52 / 60.0 + 15 / 3600.0), "33N52 15");
  EXPECT_EQ(FormatLatitude(5), "05N00");
  EXPECT_EQ(FormatLongitude(-(151 + 13 / 60.0)), "151E13");
  EXPECT_EQ(FormatLongitude(0.5), "000W30");
  // Values only a damaged file holds still format, at the limit.
  EXPECT_EQ(FormatZone(3e38), "+2562047788015215:30:07");
  EXPECT_EQ(FormatZone(std::nan("")), "+0:00");
  EXPECT_EQ(FormatLatitude(1e30), "9223372036854775807N00");
  EXPECT_EQ(FormatLongitude(-std::numeric_limits<double>::infinity()), "9223372036854775807E00");
  EXPECT_EQ(FormatDate(session, 1, 1, -2147483647 - 1), "Jan 1 2147483649 BC");

  const std::pair<int, const char*> ordinals[] = {{1, "1st"},   {2, "2nd"},   {3, "3rd"},    {4, "4th"},
                                                  {11, "11th"}, {12, "12th"}, {13, "13th"},  {21, "21st"},
                                                  {22, "22nd"}, {0, "0th"},   {111, "111th"}, {103, "103rd"}};
  for (const auto& [n, text] : ordinals) EXPECT_EQ(FormatOrdinal(n), text);

  EXPECT_EQ(ShortenPath("/home/ann/charts/smith.dat"), "...charts/smith.dat");
  EXPECT_EQ(ShortenPath("C:\\Data\\Clients\\smith.dat"), "...Clients\\smith.dat");
  EXPECT_EQ(ShortenPath("charts/smith.dat"), "charts/smith.dat");
  EXPECT_EQ(ShortenPath("smith.dat"), "smith.dat");
}

TEST_F(ParseTest, FormattedValuesParseBack) {
  for (double v : {-(33 + 52 / 60.0), 12 + 1 / 60.0 + 59 / 3600.0, 0.0, 89.99}) {
    double back = 0;
    bool failed = true;
    ParseLatitude(session, FormatLatitude(v), back, true, failed);
    EXPECT_FALSE(failed);
    EXPECT_NEAR(back, v, 1.0 / 3600.0) << FormatLatitude(v);
    ParseLongitude(session, FormatLongitude(v * 2), back, true, failed);
    EXPECT_FALSE(failed);
    EXPECT_NEAR(back, v * 2, 1.0 / 3600.0) << FormatLongitude(v * 2);
  }
}

TEST_F(ParseTest, SmallHelpers) {
  EXPECT_TRUE(IsAllDigits(""));
  EXPECT_TRUE(IsAllDigits(" 12 "));
  EXPECT_FALSE(IsAllDigits("-1"));
  EXPECT_FALSE(IsAllDigits("1a"));
  EXPECT_TRUE(IsGregorian(15, 10, 1582));
  EXPECT_FALSE(IsGregorian(14, 10, 1582));
  EXPECT_EQ(ClampInteger(40, 1, 31), 31);
  EXPECT_EQ(ClampInteger(-4, 1, 31), 1);

  using V = std::vector<std::string>;
  EXPECT_EQ(SplitOnAny("VINTAR 2", " ,", 2), (V{"VINTAR", "2"}));
  EXPECT_EQ(SplitOnAny(" a,,  b, c", ",", 2), (V{"a", "b"}));
  EXPECT_EQ(SplitOnText("Married |1900 |", "|", 10), (V{"Married ", "1900 "}));
  EXPECT_EQ(SplitOnText(" |x", "|", 10), (V{" ", "x"}));
  EXPECT_EQ(SplitOnText("a|b|c|", "|", 2), (V{"a", "b"}));
  EXPECT_EQ(SplitOnText("", "|", 10), V{});
}

TEST_F(ParseTest, IndexSortsAreStable) {
  // Records 1..6; equal keys must keep their record order both ways.
  std::vector<double> d = {0, 3.0, 1.0, 3.0, 2.0, 1.0, 0.5};
  std::vector<int32_t> index = {0, 1, 2, 3, 4, 5, 6};
  IndexSortDouble(d, index, 6, false);
  EXPECT_EQ(index, (std::vector<int32_t>{0, 6, 2, 5, 4, 1, 3}));
  index = {0, 1, 2, 3, 4, 5, 6};
  IndexSortDouble(d, index, 6, true);
  EXPECT_EQ(index, (std::vector<int32_t>{0, 1, 3, 4, 2, 5, 6}));

  std::vector<int16_t> i16 = {0, -5, 7, -5, 7};
  index = {0, 4, 3, 2, 1};
  IndexSortInt16(i16, index, 4, false);
  EXPECT_EQ(index, (std::vector<int32_t>{0, 3, 1, 4, 2}));

  std::vector<float> f = {0, 2.5f, 2.5f, -1.0f};
  index = {0, 1, 2, 3};
  IndexSortFloat(f, index, 2, true);  // only the first two take part
  EXPECT_EQ(index, (std::vector<int32_t>{0, 1, 2, 3}));

  std::vector<std::string> t = {"", "beta", "Alpha", "ALPHA", "gamma"};
  index = {0, 1, 2, 3, 4};
  IndexSortText(t, index, 4, false);
  EXPECT_EQ(index, (std::vector<int32_t>{0, 2, 3, 1, 4}));
  index = {0, 1, 2, 3, 4};
  IndexSortText(t, index, 4, true);
  EXPECT_EQ(index, (std::vector<int32_t>{0, 4, 1, 2, 3}));
}

TEST_F(ParseTest, RecordWrappersStayQuiet) {
  EventRecord r;
  r.Day = 9;
  r.Month = 9;
  r.Year = 1999;
  SetRecordDate(session, r, "5 Oct 1582");
  EXPECT_EQ(r.Day, 15);
  EXPECT_EQ(r.Month, 10);
  EXPECT_EQ(r.Year, 1582);
  SetRecordDate(session, r, "1 2 3 4");  // rejected before any value is read
  EXPECT_EQ(r.Day, 15);
  SetRecordTime(session, r, "5:07:09 pm");
  EXPECT_EQ(r.Hour * 10000 + r.Minute * 100 + r.Second, 170709);
  SetRecordZone(session, r, "-10:30");
  EXPECT_FLOAT_EQ(r.ZoneHours, -10.5f);
  SetRecordLatitude(session, r, "33S52");
  SetRecordLongitude(session, r, "151E13");
  EXPECT_NEAR(r.Latitude, -(33 + 52 / 60.0), 1e-5);
  EXPECT_NEAR(r.Longitude, -(151 + 13 / 60.0), 1e-5);
  SetRecordLongitude(session, r, "999");
  EXPECT_TRUE(ts.sink.messages.empty());
}

}  // namespace
}  // namespace vintar
