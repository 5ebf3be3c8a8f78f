// Delimited text: the shipped definitions, quoting and skipped lines, each
// field's reading, bad rows reported by line, and the definitions file's
// round trip through the editor.
#include "exchange/csv_import.h"

#include <gtest/gtest.h>

#include "support/test_support.h"

namespace vintar {
namespace {

TEST(CsvImport, ShippedFormatsReadTheirRows) {
  testing::TestSession t;
  Session& s = t.session;
  s.paths.SystemDataPath = VINTAR_SOURCE_DATA_DIR "/";
  s.paths.UserDataPath = t.dir.file("user") + "/";
  const std::vector<CsvFormat> formats = LoadCsvFormats(s);
  ASSERT_EQ(formats.size(), 4u);
  std::string title;
  EXPECT_EQ(GetASCIITitle(formats, 0, title), 0);
  EXPECT_EQ(title, "Name, date, time, zone, place, lat, lon");
  EXPECT_EQ(GetASCIITitle(formats, 4, title), -1);

  const std::string text =
      "name,date,time,zone,place,lat,lon\r\n"
      "\"Einstein, Albert\",14/3/1879,11:30 am,-0:40,\"Ulm, Germany\",48N24,9E59\r\n"
      "Plain,1.7.1990,,,,,\r\n"
      "\r\n"
      "Bad date,31/2/1990,10:00,GMT,London,51N30,0W10\r\n"
      "Bad zone,1/2/1990,10:00,XYZ,London,51N30,0W10\r\n"
      "\"Quoted \"\"nick\"\"\",2/2/1990,10:00,GMT,London,51N30,0W10\r\n"
      "Short,\r\n";
  const CsvImportResult r = ReadCsv(s, text, formats[0]);
  ASSERT_EQ(r.Records.size(), 4u);
  const EventRecord& e = r.Records[1];
  EXPECT_EQ(e.Description, "Einstein, Albert");
  EXPECT_EQ((std::array<int, 6>{e.Day, e.Month, e.Year, e.Hour, e.Minute, e.DetailLevel}),
            (std::array<int, 6>{14, 3, 1879, 11, 30, 3}));
  EXPECT_EQ(e.Placename, "Ulm, Germany");
  EXPECT_NEAR(e.Longitude, -(9 + 59 / 60.0), 1e-4);
  EXPECT_NEAR(e.ZoneHours, -40 / 60.0, 1e-6);
  EXPECT_EQ(r.Records[2].DetailLevel, 0);
  EXPECT_EQ(r.Records[3].Description, "Quoted \"nick\"");
  EXPECT_EQ(r.Skipped, (std::vector<std::string>{"Line 5: the date \"31/2/1990\" is not a date",
                                                 "Line 6: the zone \"XYZ\" is not a zone",
                                                 "Line 8: too few fields"}));

  // US dates read month first.
  const CsvImportResult us = ReadCsv(s, "h\n\"X\",3/14/1879,,,,,\n", formats[1]);
  ASSERT_EQ(us.Records.size(), 2u);
  EXPECT_EQ(us.Records[1].Month, 3);
}

TEST(CsvImport, TheEditorKeepsValidDefinitionsOnly) {
  testing::TestSession t;
  Session& s = t.session;
  s.paths.UserDataPath = t.dir.file("user") + "/";
  CsvFormat f;
  f.Title = "Mine";
  f.Delimiter = '\t';
  f.Quote = 0;
  f.SkipLines = 2;
  f.Fields = {"date", "skip", "name"};
  f.DateOrder = "YMD";
  std::string error;
  ASSERT_TRUE(EditASCII(s, {f}, error)) << error;
  const std::vector<CsvFormat> back = LoadCsvFormats(s);
  ASSERT_EQ(back.size(), 1u);
  EXPECT_EQ(back[0].Delimiter, '\t');
  EXPECT_EQ(back[0].Quote, 0);
  EXPECT_EQ(back[0].SkipLines, 2);
  EXPECT_EQ(back[0].Fields, f.Fields);
  EXPECT_EQ(back[0].DateOrder, "YMD");

  CsvFormat noDate = f;
  noDate.Fields = {"name"};
  EXPECT_FALSE(EditASCII(s, {noDate}, error));
  EXPECT_EQ(error, "The format \"Mine\" needs a date field.");
  EXPECT_EQ(LoadCsvFormats(s).size(), 1u);  // the file stays as it was
}

}  // namespace
}  // namespace vintar
