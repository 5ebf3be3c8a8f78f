// The Search Results Report: the criteria, the counts and the record list
// in either form, read back from the recorded lines of the page images.
#include <QtTest>

#include <algorithm>

#include "core/project_ops.h"
#include "output/research_reports.h"
#include "qt_support/qt_test_support.h"

using namespace vintar;

class ResearchReportsTest : public QObject {
  Q_OBJECT
 private slots:
  void criteriaCountsAndRecords() {
    testing::DesktopFixture fx;
    bool failed = false;
    QVERIFY(OpenProject(fx.session, fx.CopySample("einstein"), failed));
    std::vector<int16_t> passed(fx.session.project.Header.RecordCount + 1, 0);
    passed[1] = passed[3] = -1;
    std::vector<std::string> criteria = {"  1)     Mars in any of 3 selected divisions of Sign: Longitude"};
    for (bool all : {true, false}) {
      // The second run's list is long enough to break the page once.
      if (!all) criteria.resize(90, "  2) And  Sun in any of 2 selected divisions of Sign: Longitude");
      auto doc = ReportDocument::A4Images(fx.session);
      SearchResultsReport(*doc, fx.session, criteria, passed, all, {});
      doc->End();
      std::vector<std::string> texts;
      for (const ReportLine& line : doc->Lines()) texts.push_back(line.text);
      auto has = [&](const std::string& t) { return std::find(texts.begin(), texts.end(), t) != texts.end(); };
      QVERIFY(has(std::string("Vintar ") + kProgramVersion + " - Search Results Report"));
      QVERIFY(has("List of Selection Criteria"));
      QVERIFY(has(criteria[0]));
      QVERIFY(has("Records which Passed Criteria : 2"));
      QVERIFY(has(all ? "List of All Records" : "List of Passed Records"));
      QCOMPARE(std::count(texts.begin(), texts.end(), "List of Selection Criteria (Continued...)"), all ? 0L : 1L);
    }
  }
};

QTEST_MAIN(ResearchReportsTest)
#include "research_reports_test.moc"
