// The place database and the zone list, over files built byte by byte in a
// temporary user folder.
#include <gtest/gtest.h>

#include <filesystem>

#include "core/text.h"
#include "places/place_db.h"
#include "places/zone_list.h"
#include "support/test_support.h"

namespace vintar {
namespace {

using testing::ReadBytes;
using testing::TestSession;
using testing::WriteBytes;

std::string Rec(const std::string& name, const std::string& lat, const std::string& lon) {
  return EncodePlaceRecord({name, lat, lon});
}

const std::string kLondon = Rec("London", "51N30", "000W07 30");
const std::string kParis = Rec("Paris", "48N51 24", "002E21 07");
const std::string kBerlin = Rec("berlin", "52N31 28", "013E24 18");
const std::string kZurich = Rec("Zurich", "47N22", "008E33");
const std::string kTail = "Half a rec";  // a partial record at the end

class PlaceDbTest : public ::testing::Test {
 protected:
  void SetUp() override { std::filesystem::create_directories(ts.session.paths.FolderTable[1]); }
  void Write(const std::string& bytes) { WriteBytes(path(), bytes); }
  std::string path() const { return PlaceFilePath(ts.session); }
  std::string OnDisk() const { return ReadBytes(path()); }
  std::vector<std::string> Titles() const {
    std::vector<std::string> out;
    for (const auto& m : ts.sink.messages) out.push_back(m.title);
    return out;
  }
  TestSession ts;
  PlaceScreen screen;
};

TEST_F(PlaceDbTest, RecordIsThirtySevenBytesWithFieldsCutAndPadded) {
  std::string bytes = Rec("ABCDEFGHIJKLMNOPQRSTU", "51N30", "000W07 30");  // a 21-character name
  ASSERT_EQ(bytes.size(), 37u);
  EXPECT_EQ(bytes, "ABCDEFGHIJKLMNOPQRST51N30   000W07 30");
  EXPECT_EQ(DecodePlaceRecord(bytes).Name, "ABCDEFGHIJKLMNOPQRST");
  EXPECT_EQ(DecodePlaceRecord("Oslo").Name, "Oslo");  // short input reads as blanks
  EXPECT_EQ(DecodePlaceRecord("Oslo").Longitude, "");
}

TEST_F(PlaceDbTest, LoadSortsNamesAndKeepsAnyTailOnDisk) {
  struct Case {
    std::string bytes;
    int count;
    std::vector<std::string> list;
    std::vector<int16_t> index;
  };
  const Case cases[] = {
      {"", 0, {}, {}},
      {kTail, 0, {}, {}},
      {kLondon + kParis + kBerlin + kTail, 3, {"berlin", "London", "Paris"}, {3, 1, 2}},
      {std::string(37 * 2, '\0') + "\xff\xfe", 2, {std::string(20, '\0'), std::string(20, '\0')}, {1, 2}},
  };
  for (const auto& c : cases) {
    Write(c.bytes);
    LoadPlaces(ts.session, screen);
    EXPECT_EQ(screen.PlaceCount, c.count);
    EXPECT_EQ(screen.PlaceList, c.list);
    EXPECT_EQ(screen.PlaceIndex, c.index);
    EXPECT_EQ(screen.CurrentPlace, c.index.empty() ? 0 : c.index.front());
    if (c.count == 0) {
      EXPECT_EQ(screen.Name + screen.Latitude + screen.Longitude, "");
    }
    EXPECT_EQ(OnDisk(), c.bytes);
  }
  Write(kLondon + kBerlin);
  LoadPlaces(ts.session, screen);
  EXPECT_EQ(screen.Name, "berlin");
  EXPECT_EQ(screen.Latitude, "52N31 28");
  EXPECT_EQ(screen.Longitude, "013E24 18");
  EXPECT_TRUE(ts.sink.messages.empty());
}

TEST_F(PlaceDbTest, UnreadableFileGivesAnEmptyListQuietly) {
  std::filesystem::create_directories(path());  // a folder where the file should be
  LoadPlaces(ts.session, screen);
  EXPECT_EQ(screen.PlaceCount, 0);
  EXPECT_EQ(screen.CurrentPlace, 0);
  EXPECT_TRUE(ts.sink.messages.empty());
}

TEST_F(PlaceDbTest, StoreHoldsAtMost32767Places) {
  std::string full;
  for (int i = 0; i < 32768; ++i) full += kParis;  // one record more than the list addresses
  Write(full);
  LoadPlaces(ts.session, screen);
  EXPECT_EQ(screen.PlaceCount, 32767);
  EXPECT_EQ(screen.PlaceIndex.back(), 32767);
  ts.sink.answer = kNo;  // not the Paris already there: a new record
  EXPECT_EQ(PutPlace(ts.session, "Paris", "1N", "1E"), 0);
  EXPECT_EQ(ts.sink.messages.back().text, "The place database is full: it holds at most 32767 places.");
  EXPECT_EQ(OnDisk(), full);
}

TEST_F(PlaceDbTest, FindTakesFirstEntryNotBelowTheTextElseTheLast) {
  Write(kLondon + kParis + kBerlin + kZurich);  // listed berlin, London, Paris, Zurich
  LoadPlaces(ts.session, screen);
  const std::pair<std::string, int> cases[] = {
      {"", 0}, {"b", 0}, {"BERLIN", 0}, {"c", 1}, {"lon", 1}, {"LONDONX", 2}, {"m", 2}, {"zu", 3}, {"zz", 3}, {"\xff", 3},
  };
  for (const auto& [text, position] : cases) EXPECT_EQ(FindPlacePosition(screen, text), position) << text;
  EXPECT_EQ(FindPlace(ts.session, screen, "p"), 2);
  EXPECT_EQ(screen.CurrentPlace, 2);
  EXPECT_EQ(screen.Name, "Paris");
  screen = PlaceScreen{};
  EXPECT_EQ(FindPlacePosition(screen, "a"), -1);
}

TEST_F(PlaceDbTest, SaveEditsAsksAndWritesOrStops) {
  const std::string kSaveNew = std::string("Do you wish to save the new record that") + kLineEnd + "you have just entered?";
  const std::string kSaveChanged = std::string("Do you wish to save the changes that") + kLineEnd + "you made to the record?";
  struct Case {
    bool add;
    std::string name, lat, lon;
    int answer;
    bool goesOn;
    std::vector<std::string> titles;
    std::string text;  // of the last message
    std::string disk;
  };
  const std::string base = kLondon + kParis + kTail;
  const Case cases[] = {
      {true, "  ", "10N00", "010W00", kOk, false, {"No Place Name"}, "You must enter a place name.", base},
      {true, "Oslo", "59X55", "010E45", kOk, false, {"Error in Latitude"}, "", base},
      {true, "Oslo", "59N55", "010Q45", kOk, false, {"Error in Longitude"}, "", base},
      {true, "Oslo", "59N55", "010E45", kCancel, true, {"Save Changes?"}, kSaveNew, base},
      {true, "Oslo", "59n55", "10e45", kOk, true, {"Save Changes?"}, kSaveNew,
       kLondon + kParis + Rec("Oslo", "59N55", "010E45")},  // the tail gives way to record 3
      {false, "Lyon", "45N45", "004E51", kCancel, true, {"Save Changes?"}, kSaveChanged, base},
      {false, "Lyon", "45N45", "004E51", kOk, true, {"Save Changes?"}, kSaveChanged,
       Rec("Lyon", "45N45", "004E51") + kParis + kTail},
  };
  for (const auto& c : cases) {
    Write(base);
    LoadPlaces(ts.session, screen);  // London current
    ts.sink.Clear();
    ts.sink.answer = c.answer;
    if (c.add) AddPlace(screen);
    EditPlaceField(screen, PlaceField::Name, c.name);
    EditPlaceField(screen, PlaceField::Latitude, c.lat);
    EditPlaceField(screen, PlaceField::Longitude, c.lon);
    EXPECT_EQ(SavePlaceEdits(ts.session, screen), c.goesOn) << c.name << c.lat << c.lon;
    EXPECT_EQ(Titles(), c.titles) << c.name << c.lat << c.lon;
    if (!c.text.empty()) {
      EXPECT_EQ(ts.sink.messages.back().text, c.text);
    }
    EXPECT_EQ(OnDisk(), c.disk) << c.name << c.lat << c.lon;
    if (c.goesOn) {
      EXPECT_FALSE(screen.PlaceNew || screen.PlaceEdited);
    }
    if (c.goesOn && c.answer == kCancel) {
      EXPECT_EQ(screen.Name, "London");  // the last record stays current
    }
    if (c.goesOn && c.answer == kOk) {
      EXPECT_EQ(screen.Name, c.name);
    }
  }
}

TEST_F(PlaceDbTest, PutAddsOrReplacesByName) {
  const std::string exists = std::string("This place name already exists on the place database. Do you wish to "
                                         "replace this record?") +
                             kLineEnd + kLineEnd + "Paris" + kLineEnd + "48N51 24 002E21 07";
  struct Case {
    std::string name, lat, lon;
    int answer;
    int16_t record;
    std::string message;
    std::string disk;
  };
  const std::string base = kLondon + kParis;
  const Case cases[] = {
      {" ", "1N", "1W", kYes, 0, "Place Name must not be blank. Please enter a place name.", base},
      {"Oslo", "1N", "bad", kYes, 0, "", base},
      {"ABCDEFGHIJKLMNOPQRSTU", "1n", "1w", kYes, 3, "", base + Rec("ABCDEFGHIJKLMNOPQRST", "01N00", "001W00")},
      {" paris ", "48N52", "2e20", kYes, 2, exists, kLondon + Rec("paris", "48N52", "002E20")},
      {"PARIS", "48N52", "2e20", kNo, 3, exists, base + Rec("PARIS", "48N52", "002E20")},
      {"Par", "1N", "1E", kYes, 2, "", kLondon + Rec("Par", "01N00", "001E00")},  // first letters of Paris
  };
  for (const auto& c : cases) {
    Write(base);
    ts.sink.Clear();
    ts.sink.answer = c.answer;
    EXPECT_EQ(PutPlace(ts.session, c.name, c.lat, c.lon), c.record) << c.name;
    if (!c.message.empty()) {
      ASSERT_FALSE(ts.sink.messages.empty());
    }
    if (!c.message.empty()) {
      EXPECT_EQ(ts.sink.messages.front().text, c.message);
    }
    EXPECT_EQ(OnDisk(), c.disk) << c.name;
  }
  EXPECT_EQ(ts.sink.messages.front().title, "Vintar");
}

TEST_F(PlaceDbTest, FirstWriteStartsFromTheShippedFile) {
  std::string shipped = ReadBytes(ts.session.paths.FolderTable[0] + "places.fil");
  ASSERT_GT(shipped.size(), 37u * 300);
  ASSERT_EQ(shipped.size() % 37, 0u);
  std::filesystem::remove_all(ts.session.paths.FolderTable[1]);  // a new user: no folder yet
  LoadPlaces(ts.session, screen);
  EXPECT_EQ(screen.PlaceCount, int(shipped.size() / 37));
  EXPECT_FALSE(std::filesystem::exists(path()));
  EXPECT_EQ(PutPlace(ts.session, "Hebden Bridge", "53N44", "2W01"), int16_t(shipped.size() / 37 + 1));
  EXPECT_EQ(OnDisk(), shipped + Rec("Hebden Bridge", "53N44", "002W01"));
}

TEST_F(PlaceDbTest, DeleteKeepsExactlyTheRecordsNotConfirmed) {
  const std::string base = kLondon + kParis + kBerlin + kZurich + kTail;  // listed berlin, London, Paris, Zurich
  struct Case {
    std::vector<int> marked;
    int answer;
    std::string disk;
  };
  const Case cases[] = {
      {{0, 2, 2, 9}, kYes, kLondon + kZurich},  // repeated and unknown marks count once or not at all
      {{0, 2}, kNo, base},
      {{1, 0, 2, 3}, kYes, ""},
  };
  for (const auto& c : cases) {
    Write(base);
    LoadPlaces(ts.session, screen);
    ts.sink.Clear();
    ts.sink.answer = c.answer;
    EXPECT_TRUE(DeletePlaces(ts.session, screen, c.marked));
    EXPECT_EQ(OnDisk(), c.disk);
    EXPECT_FALSE(std::filesystem::exists(PlaceTempPath(ts.session)));
    EXPECT_EQ(screen.PlaceCount, int(c.disk.size() / 37));
  }
  EXPECT_EQ(ts.sink.messages.front().text, std::string("Delete this place record?") + kLineEnd + kLineEnd + "London");
  EXPECT_EQ(ts.sink.messages.front().title, "Confirm Deletion");
}

TEST_F(PlaceDbTest, DeleteThatCannotStageChangesNothing) {
  const std::string base = kLondon + kParis + kTail;
  Write(base);
  std::filesystem::create_directories(PlaceTempPath(ts.session) + "/x");  // places.tmp cannot be written
  LoadPlaces(ts.session, screen);
  ts.sink.answer = kYes;
  EXPECT_FALSE(DeletePlaces(ts.session, screen, {0}));
  EXPECT_EQ(OnDisk(), base);
  EXPECT_EQ(ts.sink.messages.size(), 2u);  // the question, then why it failed
  EXPECT_EQ(screen.PlaceCount, 2);
}

TEST_F(PlaceDbTest, SelectReturnsTrimmedNameAfterSavingEdits) {
  Write(Rec("  Leeds", "53N48", "001W33"));
  LoadPlaces(ts.session, screen);
  PlaceSelection s = SelectPlace(ts.session, screen);
  EXPECT_FALSE(s.failed);
  EXPECT_EQ(s.Name + "|" + s.Latitude + "|" + s.Longitude, "Leeds|53N48|001W33");
  AddPlace(screen);
  EXPECT_TRUE(SelectPlace(ts.session, screen).failed);  // blank name stops it
}

TEST_F(PlaceDbTest, ZoneListInThreeOrders) {
  ZoneTable& z = ts.session.zones;
  z = ZoneTable{};
  const char* rows[][3] = {{"EST", "Eastern Standard Time", "5:00"},
                           {"CET", "Central European Time", "-1:00"},
                           {"IST", "Indian Standard Time", "-5:30"},
                           {"ES", "Spain", "-10:00"}};
  for (const auto& r : rows) {
    ++z.ZoneCount;
    z.ZoneMnemonic[z.ZoneCount] = r[0];
    z.ZoneName[z.ZoneCount] = r[1];
    z.ZoneOffset[z.ZoneCount] = r[2];
  }
  const std::pair<ZoneSort, std::vector<std::string>> cases[] = {
      {ZoneSort::Mnemonic, {"CET", "ES", "EST", "IST"}},
      {ZoneSort::Time, {"ES", "CET", "IST", "EST"}},  // "-10:00" < "-1:00" < "-5:30" < "5:00" as text
      {ZoneSort::Name, {"CET", "EST", "IST", "ES"}},
  };
  for (const auto& [sort, mnemonics] : cases) {
    std::vector<ZoneListRow> list = ZoneList(ts.session, sort);
    std::vector<std::string> got;
    for (const auto& row : list) got.push_back(row.Mnemonic);
    EXPECT_EQ(got, mnemonics);
  }
  EXPECT_EQ(ZoneList(ts.session, ZoneSort::Time)[2].Line, "-5:30\tIST\tIndian Standard Time");
  EXPECT_EQ(ZoneList(ts.session, ZoneSort::Name)[3].Line, "Spain\tES\t-10:00");
  EXPECT_EQ(ZoneList(ts.session, ZoneSort::Name)[3].Offset, "-10:00");
  EXPECT_EQ(ZoneListMeasures(ZoneSort::Time), (std::vector<std::string>{"XXXXXX", "XXXXX", std::string(30, 'X')}));
}

}  // namespace
}  // namespace vintar
