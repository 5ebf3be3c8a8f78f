// Sending a chart: the file in the sibling program's folder, the question
// before replacing an earlier one (default No), and the two titles.
#include "exchange/send_chart.h"

#include <gtest/gtest.h>

#include "core/file_io.h"
#include "support/test_support.h"

namespace vintar {
namespace {

TEST(SendChart, WritesAsksBeforeReplacingAndKeepsBothTitles) {
  testing::TestSession t;
  Session& s = t.session;
  s.project.Header.Date = "10 Jun 1950";
  s.project.Header.Time = "2:20 pm";
  const std::string docs = t.dir.file("docs");
  const std::string path = SendChartToSibling(s, docs);
  ASSERT_EQ(path, docs + "/Halcyra User Files/Charts/VTTemp.aaf");
  EXPECT_EQ(testing::ReadBytes(path).rfind("#A93:", 0), 0u);
  EXPECT_EQ(t.sink.messages.back().title, "Send Chart to Halcyra");

  testing::WriteBytes(path, "kept");
  EXPECT_EQ(SendChartToSibling(s, docs), "");  // nobody answers: the default, No
  EXPECT_EQ(t.sink.messages.back().title, "Send chart to Halcyra");
  EXPECT_EQ(testing::ReadBytes(path), "kept");
  t.sink.answer = kYes;
  EXPECT_EQ(SendChartToSibling(s, docs), path);
  EXPECT_NE(testing::ReadBytes(path), "kept");
}

}  // namespace
}  // namespace vintar
