// Category lists of a project: setting and deleting values and definitions,
// the value index with its order of first appearance, growing it, renumbering
// on merge, and categories found only in the records.
#include <gtest/gtest.h>

#include "core/project_file.h"
#include "core/session.h"
#include "support/test_support.h"

namespace vintar {
namespace {

class CategoryTest : public ::testing::Test {
 protected:
  testing::TestSession ts;
  Session& session = ts.session;

  // A header of list categories and records holding the given lists.
  ProjectHeader header;
  std::vector<EventRecord> records{1};
  void Records(std::initializer_list<const char*> lists) {
    records.assign(1, EventRecord{});
    for (const char* list : lists) records.push_back(EventRecord{}), records.back().Categories = list;
    header.RecordCount = static_cast<int32_t>(lists.size());
  }
};

TEST(CategoryList, SetValue) {
  struct Case {
    const char* list;
    int category;
    const char* text;
    int count;
    const char* expected;
  } cases[] = {
      {"A |B |C |", 2, "  x ", 3, "A |x |C |"},
      {"A |", 3, "z", 3, "A | |z |"},
      {"", 1, "v", 2, "v | |"},
      {"A|  B", 1, "q", 2, "q |B |"},
      {"A |B |C |", 2, kDeleteCategory, 3, "A |C |"},
      {"A |B |C |", 3, kDeleteCategory, 3, "A |B |"},
      {"A |B |", 3, "late", 2, "A |B |"},
      {"A |B |", 1, "", 2, " |B |"},
  };
  for (const auto& c : cases) {
    std::string list = c.list;
    SetCategoryValue(list, c.category, c.text, c.count);
    EXPECT_EQ(list, c.expected) << c.list << " / " << c.category << " / " << c.text;
  }
  EXPECT_EQ(CategoryElementCount("Married |1900 | |"), 3);
}

TEST(CategoryList, Definitions) {
  ProjectHeader h;
  SetCategoryDefinition(h, 1, "Kin", 0);
  SetCategoryDefinition(h, 2, " Age ", 1);
  SetCategoryDefinition(h, 3, "Notes", 2);
  EXPECT_EQ(h.CategoryNames, "Kin |Age |Notes |");
  EXPECT_EQ(h.CategoryTypes, "0 |1 |2 |");
  std::string name;
  int type = -1;
  GetCategoryDefinition(h, 2, name, type);
  EXPECT_EQ(name, "Age ") << "the name comes back untrimmed";
  EXPECT_EQ(type, 1);
  GetCategoryDefinition(h, 7, name, type);
  EXPECT_EQ(name, "");
  EXPECT_EQ(type, 0);

  SetCategoryDefinition(h, 2, kDeleteCategory, 0);
  EXPECT_EQ(h.CategoryCount, 2);
  EXPECT_EQ(h.CategoryNames, "Kin |Notes |");
  EXPECT_EQ(h.CategoryTypes, "0 |2 |");

  SetCategoryDefinition(h, 4, "Far", 1);
  EXPECT_EQ(h.CategoryCount, 4);
  EXPECT_EQ(h.CategoryNames, "Kin |Notes | |Far |");
  EXPECT_EQ(h.CategoryTypes, "0 |2 | |1 |");
}

TEST_F(CategoryTest, FillGathersDistinctValuesInOrderOfFirstAppearance) {
  SetCategoryDefinition(header, 1, "Status", 0);
  SetCategoryDefinition(header, 2, "Kin", 0);
  Records({"Married |Son |", "single |", "MARRIED |Son |", " |Father |", "", "Single | |"});
  std::vector<std::string> values{"", "keep"};
  int32_t length = -1;
  bool failed = true;
  FillCategoryList(session, 1, header, records, values, 2, length, failed);
  EXPECT_FALSE(failed);
  EXPECT_EQ(length, 3);
  EXPECT_EQ(values, (std::vector<std::string>{"", "keep", "Married", "single", ""}));

  CategoryIndex index;
  RebuildCategoryIndex(session, header, records, index, nullptr);
  EXPECT_EQ(index.CategoryValues, (std::vector<std::string>{"", "Married", "single", "", "Son", "Father", ""}));
  EXPECT_EQ(index.CategoryStart, (std::vector<int32_t>{0, 1, 4}));
  EXPECT_EQ(index.CategoryLength, (std::vector<int32_t>{0, 3, 3}));

  FillCategoryList(session, 3, header, records, values, 1, length, failed);
  EXPECT_TRUE(failed);
  ASSERT_EQ(ts.sink.messages.size(), 1u);
  EXPECT_EQ(ts.sink.messages[0].text,
            "FillCategoryList Error - Invalid Category Number: ' + Format(Category%), vbOKOnly");
}

TEST_F(CategoryTest, ExpandAppendsToTheLastBlockAndMovesAnyOther) {
  SetCategoryDefinition(header, 1, "A", 0);
  SetCategoryDefinition(header, 2, "B", 0);
  Records({"a1 |b1 |", "a2 |b2 |"});
  CategoryIndex index;
  RebuildCategoryIndex(session, header, records, index, nullptr);
  bool failed = true;

  ExpandCategoryList(session, 2, header, "b3", index, failed);
  EXPECT_FALSE(failed);
  EXPECT_EQ(index.CategoryValues, (std::vector<std::string>{"", "a1", "a2", "b1", "b2", "b3"}));
  EXPECT_EQ(index.CategoryStart[2], 3);

  ExpandCategoryList(session, 1, header, "a3", index, failed);
  EXPECT_EQ(index.CategoryValues,
            (std::vector<std::string>{"", "a1", "a2", "b1", "b2", "b3", "a1", "a2", "a3"}));
  EXPECT_EQ(index.CategoryStart[1], 6);
  EXPECT_EQ(index.CategoryLength[1], 3);

  ExpandCategoryList(session, 1, header, "a4", index, failed);
  EXPECT_EQ(index.CategoryValues.size(), 10u) << "now the last block: no second move";
  EXPECT_EQ(index.CategoryValues[9], "a4");

  // A later category without values starts further on: the first one moves.
  SetCategoryDefinition(header, 3, "C", 0);
  RebuildCategoryIndex(session, header, records, index, nullptr);
  ExpandCategoryList(session, 2, header, "b3", index, failed);
  EXPECT_EQ(index.CategoryStart[2], 5);
  EXPECT_EQ(index.CategoryValues.size(), 8u);

  ExpandCategoryList(session, 0, header, "x", index, failed);
  EXPECT_TRUE(failed);
  EXPECT_EQ(ts.sink.messages.back().text,
            "ExpandCategoryList Error - Invalid Category Number: ' + Format(Category%), vbOKOnly");
}

TEST(CategoryList, MapElementsForAMerge) {
  struct Case {
    const char* list;
    std::vector<int> map;  // 1-based
    const char* expected;
  } cases[] = {
      {"A |B |", {0, 3, 1}, "B  | |A  |"},
      {"A |B |C |", {0, 2}, " |A  |"},
      {"A |B |", {}, "A |B |"},
      {"A |B |", {0, 0, 0}, "A |B |"},
  };
  for (const auto& c : cases) {
    std::string list = c.list;
    MapCategoryElements(list, c.map);
    EXPECT_EQ(list, c.expected) << c.list;
  }
}

TEST_F(CategoryTest, MergeAddsRecordsBehindAndRenumbersTheirCategories) {
  testing::WriteBytes(ts.dir.file("m.dat"),
                      "\"M\",1990,1,2,3,4,5,0,3,\"UT\",0,\"P\",0,0,-1,0,\"Cousin |7 |\"\r\n");
  SetCategoryDefinition(header, 1, "Age", 1);
  SetCategoryDefinition(header, 2, "Kin", 0);
  Records({"40 |Son |"});
  CategoryIndex index;
  session.MergeActive = kTrue;
  ASSERT_TRUE(ReadDataFile(session, ts.dir.file("m.dat"), header, records, index, nullptr, {0, 2, 1}, false));
  EXPECT_EQ(header.RecordCount, 2);
  EXPECT_EQ(records[1].Categories, "40 |Son |");
  EXPECT_EQ(records[2].Categories, "7  |Cousin  |");
  EXPECT_EQ(index.CategoryValues, (std::vector<std::string>{"", "Son", "Cousin"}));
}

TEST_F(CategoryTest, CategoriesOnlyInTheRecordsBecomeUntitledFreeText) {
  testing::WriteBytes(ts.dir.file("u.nat"), "VINTAR 2\r\n\"U\",\"\",\"\",\"\",\"\",\"\",\"\",\"\",\"\",\"\",\"\"\r\n"
                                            "\"Kin |\",\"0 |\"\r\n");
  testing::WriteBytes(ts.dir.file("u.dat"), "\"R\",1990,1,2,3,4,5,0,3,\"UT\",0,\"P\",0,0,-1,0,\"Son |x |y |\"\r\n");
  ASSERT_TRUE(OpenProjectFiles(session, ts.dir.file("u.dat"), nullptr));
  const ProjectState& p = session.project;
  EXPECT_EQ(p.Header.CategoryCount, 3);
  EXPECT_EQ(p.Header.CategoryNames, "Kin |Untitled2 |Untitled3 |");
  EXPECT_EQ(p.Header.CategoryTypes, "0 |2 |2 |");
  EXPECT_EQ(p.Categories.CategoryStart.size(), 4u);
}

// Category counts a file can claim: the most a project holds opens (in time
// that grows with the file, so this test would hang were it quadratic), and
// one more is refused with a message, whether the .nat or a record claims it.
TEST_F(CategoryTest, CategoryCountsAtAndPastTheLimit) {
  auto bars = [](int n, const char* text) {
    std::string list;
    for (int i = 0; i < n; ++i) list += std::string(text) + " |";
    return list;
  };
  auto nat = [&](int n) {
    return "VINTAR 2\r\n\"U\",\"\",\"\",\"\",\"\",\"\",\"\",\"\",\"\",\"\",\"\"\r\n\"" + bars(n, "C") + "\",\"" +
           bars(n, "0") + "\"\r\n";
  };
  auto dat = [&](const std::string& categories, int records) {
    std::string out;
    for (int i = 0; i < records; ++i)
      out += "\"R\",1990,1,2,3,4,5,0,3,\"UT\",0,\"P\",0,0,-1,0,\"" + categories + std::to_string(i) + " |\"\r\n";
    return out;
  };
  const std::string tooMany = ": a project holds at most 32767.";
  struct Case {
    const char* name;
    int declared;
    std::string records;
    std::string message;  // empty: the project opens
  } cases[] = {
      {"the most categories, each with values", 32767, dat(bars(32766, "v"), 50), ""},
      {"one category too many in the .nat", 32768, dat("", 1), "Too many categories (32768)" + tooMany},
      {"a record with too many bars", 1, dat(bars(99999, ""), 1), "Record 1\r\n\r\nToo many categories (100000)" + tooMany},
  };
  for (const auto& c : cases) {
    ts.sink.Clear();
    testing::WriteBytes(ts.dir.file("m.nat"), nat(c.declared));
    testing::WriteBytes(ts.dir.file("m.dat"), c.records);
    const bool opened = OpenProjectFiles(session, ts.dir.file("m.dat"), nullptr);
    EXPECT_EQ(opened, c.message.empty()) << c.name;
    if (opened) {
      const CategoryIndex& index = session.project.Categories;
      EXPECT_EQ(index.CategoryLength[1], 1) << "v";
      EXPECT_EQ(index.CategoryLength[32767], 50) << "one value a record";
      EXPECT_EQ(index.CategoryStart[32767], 32767);
      EXPECT_EQ(index.CategoryValues.size(), 32767u + 50u);
    } else {
      ASSERT_EQ(ts.sink.messages.size(), 1u) << c.name;
      const std::string& text = ts.sink.messages[0].text;
      EXPECT_EQ(text.substr(text.size() - c.message.size()), c.message) << c.name;
    }
  }
}

}  // namespace
}  // namespace vintar
