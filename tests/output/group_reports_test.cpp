// The group reports read back from their recorded lines (parameters, the
// matches over page breaks, the charts in match), and the strips painted:
// a report page and pictures that are not blank, an empty strip that is.
#include <QDir>
#include <QFile>
#include <QImage>
#include <QtTest>

#include <algorithm>

#include "output/report_lines.h"
#include "output/drawing.h"
#include "output/group_reports.h"
#include "output/group_strips.h"
#include "qt_support/qt_test_support.h"

using namespace vintar;

namespace {

using testing::Has;
using testing::Texts;

// Whether any pixel of `rect` in `image` is not white.
bool Inked(const QImage& image, const QRect& rect) {
  for (int y = std::max(0, rect.top()); y <= std::min(image.height() - 1, rect.bottom()); ++y)
    for (int x = std::max(0, rect.left()); x <= std::min(image.width() - 1, rect.right()); ++x)
      if (image.pixel(x, y) != qRgb(255, 255, 255)) return true;
  return false;
}

// Three records; strips 1 and 3 hold charts 1 and 3, strip 2 is empty.
StripTable SampleStrips(Session& session) {
  ProjectState& p = session.project;
  p.Header.Title = "Three Generations";
  p.Events.assign(4, EventRecord{});
  for (int n = 1; n <= 3; ++n) {
    p.Events[n].Description = "Member " + std::to_string(n);
    p.Events[n].Day = 1, p.Events[n].Month = 6, p.Events[n].Year = static_cast<int16_t>(1920 + 25 * n);
  }
  p.Header.RecordCount = 3;
  StripTable t;
  SetStripRecords(t, {1, 0, 3});
  for (int s : {1, 3})
    for (int point = 1; point <= kPoints; ++point) t.StripLongitude[point][s] = std::fmod(point * 37.0 + s * 11.0, 360.0);
  t.Shown = SelectablePoints(session);
  t.PlotModulus = 5;
  t.HighlightPoint = kSun;
  ComputeStripPlaces(t);
  return t;
}

}  // namespace

class GroupReportsTest : public QObject {
  Q_OBJECT
 private slots:
  void searchReportLines() {
    struct Case {
      const char* name;
      bool specified, combination;
      int matches, selected;
      std::vector<std::string> expected, absent;
    };
    const std::vector<Case> cases = {
        {"many matches over pages", false, true, 150, 0,
         {"  Search Pts:", "Sun  Mon  Sun/Mon", "  Harmonics:", "5 to 12 - 1st Harmonic Orb = 10\xB0" "00'", "Any",
          "3+   To Any Combination of Search Points", "Matches Found", "Matches Found (Continued...)",
          "Charts in Match", "No charts found"},
         {"Selected Match", "  No matches found"}},
        {"a selected match in detail", true, false, 3, 2,
         {"5 to 5 - Scan Orb = 10\xB0" "00'", "Selected Match", "  5th Hm - 4 Hits - match 2", "3+   To Same Search Point Only",
          "Chart 7 - Sun at 1\xB0" "00' (11 Ar 00) Member 7"},
         {"Matches Found", "  5th Hm - 4 Hits - match 1", "No charts found"}},
        {"nothing found", false, true, 0, 0, {"  No matches found", "No charts found"}, {}},
    };
    for (const Case& c : cases) {
      testing::DesktopFixture fx;
      GroupSearchState state;
      for (auto [a, b] : {std::pair{kSun, kSun}, {kMoon, kMoon}, {kSun, kMoon}}) AddSearchPair(fx.session, state, a, b);
      for (int k = 1; k <= c.matches; ++k) state.MatchesList.push_back("5th Hm - 4 Hits - match " + std::to_string(k));
      state.MatchCount = c.matches;
      state.Matches.resize(c.matches + 1);
      if (c.matches > 0) {
        std::string longLine = "5th Hm - 90 Hits - 30 Charts - 1\xB0" "00' \xB1" "2\xB0" "00' -";
        for (int r = 0; r < 90; ++r) longLine += " " + std::to_string(100 + r);
        state.MatchesList[0] = longLine;
      }
      if (c.selected) state.SecondaryList = {"Chart 7 - Sun at 1\xB0" "00' (11 Ar 00) Member 7"};
      GroupSearchParams p;
      p.FromHarmonic = 5;
      p.ToHarmonic = c.specified ? 5 : 12;
      p.Orb = 10.0f;
      p.Position = 12.5f;
      p.SpecifiedPosition = c.specified;
      p.Combination = c.combination;
      auto doc = ReportDocument::A4Images(fx.session);
      GroupSearchReport(*doc, fx.session, state, p, c.selected, {});
      doc->End();
      const std::vector<std::string> texts = Texts(*doc);
      QVERIFY2(Has(texts, std::string("Vintar ") + kProgramVersion + " - Family/Group Search Report"), c.name);
      QVERIFY2(Has(texts, "  Tropical Zodiac - Geocentric Coordinates - Mean Node"), c.name);
      for (const std::string& e : c.expected)
        QVERIFY2(Has(texts, e), qPrintable(QString(c.name) + ": " + QString::fromLatin1(e.c_str())));
      for (const std::string& e : c.absent)
        QVERIFY2(!Has(texts, e), qPrintable(QString(c.name) + ": " + QString::fromLatin1(e.c_str())));
      if (c.specified) QVERIFY(Has(texts, "12\xB0" "30'"));
      // Every line fits the page; every match line is there once, in order.
      int next = 2;
      for (const ReportLine& line : doc->Lines()) {
        QVERIFY2(doc->TextWidth(line.text) <= doc->PageWidth() + 1.0, line.text.c_str());
        if (c.matches && !c.selected && line.text == "  5th Hm - 4 Hits - match " + std::to_string(next)) ++next;
      }
      if (c.matches && !c.selected) QCOMPARE(next, c.matches + 1);
      if (c.matches > 100) {
        // The continued heading stands at the top of the second sheet.
        const std::vector<std::string> second = Texts(*doc, 2);
        QVERIFY(doc->SheetCount() >= 3);
        QVERIFY(Has(second, "Matches Found (Continued...)"));
        QVERIFY(!Has(second, "Matches Found"));
      }
    }
  }

  void stripsPaintAndEmptyStripStaysBlank() {
    testing::DesktopFixture fx;
    const StripTable t = SampleStrips(fx.session);
    const QSizeF size = StripsPictureSize(t);
    const QImage image = RenderDrawing(size, [&](QPainter& p, const QRectF& area) {
      PaintGroupStrips(p, area, fx.session, t);
    });
    const QRectF area(QPointF(0, 0), size);
    QCOMPARE(StripRowsShown(t), 3);
    QVERIFY(Inked(image, StripRowRect(area, t, 1).toAlignedRect()));
    QVERIFY(!Inked(image, StripRowRect(area, t, 2).toAlignedRect().adjusted(0, 2, 0, -2)));
    QVERIFY(Inked(image, StripRowRect(area, t, 3).toAlignedRect()));

    for (const char* name : {"strips.png", "strips.svg", "strips.pdf"}) {
      const std::string path = fx.TempPath(name);
      std::string error;
      QVERIFY2(SaveStripsPicture(path, fx.session, t, "Title", &error), error.c_str());
      QVERIFY(QFile(QString::fromStdString(path)).size() > 1000);
    }
    std::string error;
    QVERIFY(!SaveStripsPicture(fx.TempPath("strips.bmp"), fx.session, t, {}, &error));
    QVERIFY(!error.empty());
  }

  void displayReportPage() {
    testing::DesktopFixture fx;
    const StripTable t = SampleStrips(fx.session);
    auto doc = ReportDocument::A4Images(fx.session);
    ReportOptions options;
    options.SubTitle = "Cousins";
    GroupDisplayReport(*doc, fx.session, t, options);
    const double stripsTop = doc->Y();
    doc->End();
    const std::vector<std::string> texts = Texts(*doc);
    QVERIFY(Has(texts, std::string("Vintar ") + kProgramVersion + " - Family/Group Display"));
    for (const char* e : {"  Project Title:", "Three Generations", "  SubTitle:",
                          "Cousins", "  Harmonic:", "5", "  Modulus:", "72\xB0" "00'"})
      QVERIFY2(Has(texts, e), e);
    QCOMPARE(doc->SheetCount(), 1);
    const QImage& page = doc->Images().front();
    QDir().mkpath(VINTAR_PICTURES_DIR);
    page.save(QString(VINTAR_PICTURES_DIR) + "/group_display.png");
    const int headBottom = int(doc->LineHeight() * 12);
    QVERIFY(stripsTop > headBottom);
    QVERIFY(Inked(page, QRect(0, headBottom, page.width(), int(stripsTop) - headBottom)));
  }
};

QTEST_MAIN(GroupReportsTest)
#include "group_reports_test.moc"
