// Interpretation files: the addressing of every table form worked by hand,
// the header checks, the two placeholders, a full round trip from source
// to file and back, damaged files, the source parser's errors, and the
// shipped sources when they are present.
#include <gtest/gtest.h>

#include <filesystem>
#include <random>

#include "groups/interpretation.h"
#include "groups/interpretation_source.h"
#include "support/test_support.h"

namespace vintar {
namespace {

using testing::TempDir;
using testing::TestSession;

InterpretationHeader HandHeader(int version, int depth) {
  InterpretationHeader h;
  h.Version = static_cast<int16_t>(version);
  h.PairDepth = static_cast<int16_t>(depth);
  for (int t = 1; t <= 20; ++t) h.TableOffset[t] = 100 * t;
  h.TableOffset[7] = 0;
  return h;
}

TEST(Interpretation, EntryPositionOfEveryTableForm) {
  const int64_t base = 207 + 12 * 2;
  struct Case {
    int version, table, a, b, c;
    int64_t expected;  // relative to base, or the markers below
  };
  constexpr int64_t kOut = -1, kAbsent = -1000000;
  const Case cases[] = {
      {200, 3, 9, 9, 9, 300},          {200, 20, 5, 5, 5, 2000},       {200, 4, 5, 0, 0, 400 + 4 * 6},
      {200, 15, 36, 0, 0, 1500 + 210}, {200, 15, 37, 0, 0, kOut},      {199, 15, 26, 0, 0, 1500 + 150},
      {199, 15, 27, 0, 0, kOut},       {200, 13, 2, 2, 0, 1300 + 30},  {200, 7, 1, 0, 0, kAbsent},
      {200, 16, 2, 3, 0, 1600 + 84},   {200, 17, 37, 1, 0, kOut},      {200, 18, 37, 1, 0, 1800 + 432 * 6},
      // Square: ((a-1)*36 + c-1)*depth + b-1, with a and c exchanged when c < a.
      {200, 19, 3, 1, 5, 1900 + 152 * 6}, {200, 19, 5, 1, 3, 1900 + 152 * 6}, {200, 19, 3, 2, 5, 1900 + 153 * 6},
      {200, 19, 1, 1, 37, kOut},       {299, 19, 36, 2, 36, 1900 + 2591 * 6},
      // Triangle of 26: row a holds the pairs (a, a..26).
      {199, 19, 3, 2, 5, 1900 + 107 * 6}, {199, 19, 5, 2, 3, 1900 + 107 * 6}, {199, 19, 2, 1, 2, 1900 + 52 * 6},
      {199, 19, 26, 2, 26, 1900 + 701 * 6}, {199, 19, 1, 1, 27, kOut},
  };
  for (const Case& k : cases) {
    const int64_t want = k.expected == kAbsent ? 0 : k.expected == kOut ? base - 1 : base + k.expected;
    EXPECT_EQ(EntryPosition(HandHeader(k.version, 2), base, k.table, k.a, k.b, k.c), want)
        << "version " << k.version << " table " << k.table << " (" << k.a << "," << k.b << "," << k.c << ")";
  }
  EXPECT_EQ(InterpretationPointCount(HandHeader(199, 1)), 26);
  EXPECT_EQ(InterpretationPointCount(HandHeader(200, 1)), 36);
}

TEST(Interpretation, IndexOfChartPoints) {
  const int expected[26] = {0,  1,  2,  3,  5,  6,  7,  8,  9,  10, 11, 12, 13,
                            14, 15, 16, 17, 18, 19, 20, 20, 22, 23, 24, 25, 21};
  for (int p = 0; p <= 25; ++p) EXPECT_EQ(InterpretationIndex(p), expected[p]) << p;
  EXPECT_EQ(InterpretationIndex(26), 0);
}

// A file with a text in each of tables 3, 4 and 19, of the given version.
std::string SmallFile(int version) {
  InterpretationSource s;
  s.Version = version;
  s.PairDepth = 2;
  s.Entries = {{3, 0, 0, 0, "Intro"}, {4, 2, 0, 0, "Two"}, {19, 3, 2, 1, "Sun and Moon"}};
  return BuildInterpretationFile(s);
}

TEST(Interpretation, VersionsAndShortFiles) {
  TestSession t;
  for (int version : {199, 200, 299, 300}) {
    t.sink.Clear();
    const std::string path = t.dir.file("v.int");
    testing::WriteBytes(path, SmallFile(version));
    InterpretationFile file;
    const bool opened = OpenInterpretation(t.session, path, file);
    EXPECT_EQ(opened, version < 300) << version;
    if (version < 300) {
      EXPECT_TRUE(t.sink.messages.empty());
      EXPECT_EQ(file.Base, 207 + 24);
      std::string text;
      EXPECT_TRUE(ReadInterpretation(file, 19, 1, 2, 3, text)) << version;
      EXPECT_EQ(text, "Sun and Moon");
    } else {
      ASSERT_EQ(t.sink.messages.size(), 1u);
      EXPECT_EQ(t.sink.messages[0].title, "Version Number Error");
      EXPECT_EQ(t.sink.messages[0].text,
                "Interpretation file was created by an incompatible version of the interpretation compiler.");
    }
  }
  t.sink.Clear();
  InterpretationFile file;
  testing::WriteBytes(t.dir.file("short.int"), SmallFile(200).substr(0, 153));
  EXPECT_FALSE(OpenInterpretation(t.session, t.dir.file("short.int"), file));
  ASSERT_EQ(t.sink.messages.size(), 1u);
  EXPECT_EQ(t.sink.messages[0].title, "Interpretation File Error");
  t.sink.Clear();
  EXPECT_FALSE(OpenInterpretation(t.session, t.dir.file("missing.int"), file));
  EXPECT_FALSE(OpenInterpretation(t.session, t.dir.path().string(), file));
  EXPECT_TRUE(t.sink.messages.empty());
}

TEST(Interpretation, PlaceholdersAndEntriesOutsideTheFile) {
  InterpretationFile file;
  file.Path = "memory";
  file.Bytes = SmallFile(200);
  ASSERT_TRUE(DecodeInterpretationHeader(file.Bytes, file.Header));
  file.Base = 207 + 24;
  auto patch32 = [&file](int64_t position, uint32_t v) {
    for (int k = 0; k < 4; ++k) file.Bytes[position - 1 + k] = static_cast<char>(v >> (8 * k));
  };
  std::string text;
  EXPECT_FALSE(ReadInterpretation(file, 5, 1, 0, 0, text));  // table absent
  EXPECT_EQ(text, kNoTextOfThisType);
  EXPECT_FALSE(ReadInterpretation(file, 4, 1, 0, 0, text));  // a row left empty
  EXPECT_EQ(text, kNoTextForTopic);
  EXPECT_FALSE(ReadInterpretation(file, 4, 3, 0, 0, text));  // past the table: the next table's empty row
  EXPECT_FALSE(ReadInterpretation(file, 4, 30000, 0, 0, text));  // past the end of the file
  EXPECT_EQ(text, kNoTextOfThisType);
  const int64_t row = EntryPosition(file.Header, file.Base, 4, 2, 0, 0);
  for (uint32_t position : {0xFFFFFFFFu, 0x7FFFFFFFu, static_cast<uint32_t>(file.Bytes.size())}) {
    patch32(row, position);
    EXPECT_FALSE(ReadInterpretation(file, 4, 2, 0, 0, text)) << position;
    EXPECT_EQ(text, kNoTextOfThisType);
  }
  EXPECT_FALSE(ReadInterpretation(InterpretationFile{}, 3, 0, 0, 0, text));
}

TEST(Interpretation, DamagedFilesNeverReadOutside) {
  TestSession t;
  const std::string good = SmallFile(200);
  std::mt19937 random(12345);
  std::vector<std::string> inputs;
  for (size_t cut : {154u, 160u, 240u, static_cast<unsigned>(good.size() - 1)}) inputs.push_back(good.substr(0, cut));
  for (int n = 0; n < 40; ++n) {
    std::string bytes = good;
    for (int k = 0; k < 8; ++k) bytes[random() % bytes.size()] = static_cast<char>(random());
    inputs.push_back(bytes);
  }
  for (const std::string& bytes : inputs) {
    testing::WriteBytes(t.dir.file("d.int"), bytes);
    InterpretationFile file;
    OpenInterpretation(t.session, t.dir.file("d.int"), file);
    std::string text;
    for (int table = 0; table <= 21; ++table)
      for (int a : {-32768, 0, 1, 3, 36, 32767})
        for (int c : {0, 1, 36}) {
          if (ReadInterpretation(file, table, a, 2, c, text)) {
            EXPECT_LE(text.size(), bytes.size());
          }
        }
  }
}

TEST(Interpretation, SourceRoundTripWithPairsFromAnotherFile) {
  TempDir dir;
  testing::WriteBytes(dir.file("common.txt"), "@version 200\n[pair Sun Moon]\nCommon pair.\n");
  testing::WriteBytes(dir.file("common_pairs.txt"), "[pair Mars Venus]\nFrom the companion.\n[text 1]\nNot a pair.\n");
  const std::string source =
      "# A comment line\r\n@version 199\r\n@pairdepth 2\r\n@pairs common.txt\r\n\r\n"
      "[Introduction]\r\n\r\n  First line\r\nsecond line.\r\n\r\n\r\nNext paragraph.\r\n# inside\r\n\r\n"
      "[text 104]\nOne.\n[harmonic 7]\nSeven.\n[house 12]\nTwelfth.\n[sign pisces]\nFish.\n"
      "[point Midheaven]\nMC.\n[pair Moon Sun]\nOwn pair, \\ { } kept.\n[table 16 2 12]\nRaw, last of twelve.\n"
      "[table 20 0]\nLast table.\n";
  InterpretationSource parsed;
  std::string error;
  ASSERT_TRUE(ParseInterpretationSource(source, dir.path().string(), parsed, error, "main.txt")) << error;
  EXPECT_EQ(parsed.Version, 199);
  EXPECT_EQ(parsed.PairDepth, 2);
  struct Want {
    int table, a, b, c;
    const char* text;
  } wants[] = {
      {3, 0, 0, 0, "First line second line.\r\nNext paragraph."},
      {4, 104, 0, 0, "One."}, {5, 7, 0, 0, "Seven."}, {13, 12, 2, 0, "Twelfth."}, {14, 12, 2, 0, "Fish."},
      {15, 23, 0, 0, "MC."}, {19, 3, 1, 1, "Own pair, \\ { } kept."}, {19, 1, 1, 3, "Own pair, \\ { } kept."},
      {19, 6, 1, 7, "From the companion."}, {16, 2, 12, 0, "Raw, last of twelve."}, {20, 0, 0, 0, "Last table."},
  };
  EXPECT_EQ(parsed.Entries.size(), 10u);  // the companion's [text 1] is not a pair and stays out
  TestSession t;
  testing::WriteBytes(t.dir.file("main.int"), BuildInterpretationFile(parsed));
  InterpretationFile file;
  ASSERT_TRUE(OpenInterpretation(t.session, t.dir.file("main.int"), file));
  for (const Want& w : wants) {
    std::string text;
    EXPECT_TRUE(ReadInterpretation(file, w.table, w.a, w.b, w.c, text)) << w.table << " " << w.a;
    EXPECT_EQ(text, w.text);
  }
  std::string text;
  EXPECT_FALSE(ReadInterpretation(file, 4, 1, 0, 0, text));
  EXPECT_EQ(text, kNoTextForTopic);

  // A UTF-8 source is taken as such and stored in Latin-1.
  ASSERT_TRUE(ParseInterpretationSource("[text 1]\nM\xC3\xBCller\n", "", parsed, error)) << error;
  EXPECT_EQ(parsed.Entries.at(0).Text, "M\xFCller");
  ASSERT_TRUE(ParseInterpretationSource("[text 1]\nM\xFCller\n", "", parsed, error)) << error;
  EXPECT_EQ(parsed.Entries.at(0).Text, "M\xFCller");
}

TEST(Interpretation, SourceErrorsNameTheLine) {
  struct Case {
    const char* source;
    const char* where;
    const char* what;
  } cases[] = {
      {"[text 1]\nA.\n[colour red]\nB.\n", "f.txt:3:", "unknown head"},
      {"[point Sol]\nA.\n", "f.txt:1:", "unknown point name Sol"},
      {"[sign Ophiuchus]\nA.\n", "f.txt:1:", "unknown sign name"},
      {"[pair Sun Moon]\nA.\n\n[pair Moon Sun]\nB.\n", "f.txt:4:", "already given at f.txt:1"},
      {"[house 13]\nA.\n", "f.txt:1:", "out of range"},
      {"[text 0]\nA.\n", "f.txt:1:", "out of range"},
      {"@version 300\n", "f.txt:1:", "out of range"},
      {"@version 199\n[point EastPoint]\nA.\n[table 15 27]\nB.\n", "f.txt:4:", "out of range"},
      {"[table 21 1]\nA.\n", "f.txt:1:", "out of range"},
      {"[table 13 1 3]\nA.\n", "f.txt:1:", "second selector"},
      {"[text 1]\nA.\n@pairdepth 2\n", "f.txt:3:", "before the first entry"},
      {"Stray text\n[text 1]\nA.\n", "f.txt:1:", "text before the first entry"},
      {"@colour 3\n", "f.txt:1:", "unknown directive"},
      {"[text 1\nA.\n", "f.txt:1:", "must end with ']'"},
      {"[text 1]\n\n# only a comment\n[text 2]\nB.\n", "f.txt:1:", "no text"},
      {"[text 1]\n\xE2\x80\x99quoted\xE2\x80\x99\n", "f.txt:2:", "U+2019"},
      {"@pairs nowhere.txt\n[text 1]\nA.\n", "f.txt:1:", "cannot read"},
  };
  for (const Case& c : cases) {
    InterpretationSource out;
    std::string error;
    EXPECT_FALSE(ParseInterpretationSource(c.source, "/nonexistent", out, error, "f.txt")) << c.source;
    EXPECT_EQ(error.rfind(c.where, 0), 0u) << error;
    EXPECT_NE(error.find(c.what), std::string::npos) << error;
    EXPECT_TRUE(out.Entries.empty());
  }
  std::string big = "[text 1]\n" + std::string(kMaxInterpretationText, 'x') + " y\n";
  InterpretationSource out;
  std::string error;
  EXPECT_FALSE(ParseInterpretationSource(big, "", out, error, "f.txt"));
  EXPECT_NE(error.find("over the limit"), std::string::npos) << error;
}

TEST(Interpretation, FoundInTheUserFolderFirstAndTheShortDescriptions) {
  TestSession t;
  TempDir system;
  t.session.paths.SystemDataPath = system.path().string();
  t.session.paths.UserDataPath = t.dir.file("user");
  std::filesystem::create_directories(t.session.paths.UserDataPath);
  EXPECT_EQ(FindInterpretationFile(t.session, "general.int"), "");
  EXPECT_EQ(GroupTypeDescriptions(t.session)[5], kNoTextOfThisType);

  InterpretationSource s;
  for (int i = 0; i < 6; ++i) s.Entries.push_back({4, 11 + i, 0, 0, "Type " + std::to_string(i)});
  testing::WriteBytes(system.file("general.int"), BuildInterpretationFile(s));
  EXPECT_EQ(FindInterpretationFile(t.session, "general.int"), system.file("general.int"));
  testing::WriteBytes(t.dir.file("user/general.int"), BuildInterpretationFile(s));
  EXPECT_EQ(FindInterpretationFile(t.session, "general.int"), t.dir.file("user/general.int"));
  const auto texts = GroupTypeDescriptions(t.session);
  for (int i = 0; i < 6; ++i) EXPECT_EQ(texts[i], "Type " + std::to_string(i));
}

// The shipped sources: each compiles, every text reads back, and each holds
// every text the report asks for.
class ShippedSource : public ::testing::TestWithParam<const char*> {};

TEST_P(ShippedSource, CompilesAndHoldsWhatTheReportReads) {
  const std::string folder = std::string(VINTAR_SOURCE_DATA_DIR) + "/interp/";
  const std::string name = GetParam();
  if (!FileExists(folder + name + ".txt")) GTEST_SKIP() << name << ".txt is not written yet";
  std::string text, error;
  InterpretationSource parsed;
  ASSERT_TRUE(ReadInterpretationSourceFile(folder + name + ".txt", text, error)) << error;
  ASSERT_TRUE(ParseInterpretationSource(text, folder, parsed, error, name + ".txt")) << error;
  TestSession t;
  testing::WriteBytes(t.dir.file("x.int"), BuildInterpretationFile(parsed));
  InterpretationFile file;
  ASSERT_TRUE(OpenInterpretation(t.session, t.dir.file("x.int"), file));
  for (const InterpretationEntry& e : parsed.Entries) {
    std::string back;
    EXPECT_TRUE(ReadInterpretation(file, e.Table, e.A, e.B, e.C, back)) << e.Table << " " << e.A;
    EXPECT_EQ(back, e.Text);
  }
  const int primary[] = {1, 3, 5, 6, 7, 8, 9, 10, 11, 12, 20, 22, 23};
  std::vector<std::array<int, 4>> wanted;
  if (name == "general") {
    wanted.push_back({3, 0, 0, 0});
    for (int a : {1, 2, 3, 4, 5, 6, 11, 12, 13, 14, 15, 16, 100, 101, 102, 103, 104, 105, 106, 198, 199})
      wanted.push_back({4, a, 0, 0});
    for (int h = 1; h <= 16; ++h) wanted.push_back({5, h, 0, 0});
  } else {
    for (int k = 1; k <= 12; ++k) wanted.insert(wanted.end(), {{13, k, 2, 0}, {14, k, 2, 0}});
    for (int p : primary) wanted.push_back({15, p, 0, 0});
  }
  for (size_t i = 0; i < std::size(primary); ++i)
    for (size_t j = i + 1; j < std::size(primary); ++j) wanted.push_back({19, primary[i], 1, primary[j]});
  for (const auto& w : wanted) {
    std::string back;
    EXPECT_TRUE(ReadInterpretation(file, w[0], w[1], w[2], w[3], back))
        << name << " lacks table " << w[0] << " (" << w[1] << "," << w[2] << "," << w[3] << "): " << back;
  }
}

INSTANTIATE_TEST_SUITE_P(Interpretation, ShippedSource,
                         ::testing::Values("general", "Family", "Hunt", "Gather", "Play", "Tribe", "Other"));

}  // namespace
}  // namespace vintar
