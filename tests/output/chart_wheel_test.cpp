// The chart wheel: glyph placement on crowded rings, and a wheel that paints.
#include <QImage>
#include <QtTest>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <vector>

#include "output/chart_wheel.h"
#include "output/drawing.h"

using namespace vintar;

namespace {

double Norm(double x) {
  x = std::fmod(x, 360.0);
  return x < 0 ? x + 360.0 : x;
}

// Whether the placement keeps every pair `gap` apart and the glyphs in
// their order round the ring (one turn when walked in the order of the
// true degrees).
QString PlacementFault(const std::vector<double>& truth, const std::vector<double>& shown, double gap) {
  const size_t n = truth.size();
  if (shown.size() != n) return "count";
  const double need = std::min(gap, 360.0 / n) - 1e-7;
  for (size_t i = 0; i < n; ++i)
    for (size_t j = i + 1; j < n; ++j) {
      const double d = Norm(shown[i] - shown[j]);
      if (std::min(d, 360.0 - d) < need) return QString("overlap %1 %2").arg(i).arg(j);
    }
  std::vector<size_t> order(n);
  std::iota(order.begin(), order.end(), 0);
  std::stable_sort(order.begin(), order.end(), [&](size_t a, size_t b) { return Norm(truth[a]) < Norm(truth[b]); });
  double turn = 0.0;
  for (size_t k = 0; k < n; ++k) turn += Norm(shown[order[(k + 1) % n]] - shown[order[k]]);
  if (n > 1 && std::fabs(turn - 360.0) > 1e-6) return "order";
  return {};
}

}  // namespace

class ChartWheelTest : public QObject {
  Q_OBJECT
 private slots:
  void crowdedPlacementsNeverOverlap() {
    struct Case {
      const char* name;
      std::vector<double> longitudes;
      double gap;
    };
    std::vector<Case> cases = {
        {"stellium on one degree", std::vector<double>(10, 100.0), 6.0},
        {"across 0 Aries", {358.0, 359.0, 0.0, 1.0, 2.0, 3.5}, 6.0},
        {"two clusters that meet", {10, 11, 12, 13, 30, 31, 32, 33}, 5.0},
        {"ring exactly full", std::vector<double>(60, 200.0), 6.0},
        {"more than the ring holds", std::vector<double>(80, 5.0), 6.0},
    };
    // Deterministic crowds: clusters in a few signs, the way real charts bunch.
    unsigned seed = 12345;
    auto next = [&seed] {
      seed = seed * 1103515245u + 12345u;
      return (seed >> 8) % 100000 / 100000.0;
    };
    for (int set = 0; set < 60; ++set) {
      Case c{"crowd", {}, 4.0 + next() * 4.0};
      const int n = 8 + static_cast<int>(next() * 20);
      const double centre = next() * 360.0;
      for (int i = 0; i < n; ++i) c.longitudes.push_back(Norm(centre + (next() - 0.5) * 90.0));
      cases.push_back(c);
    }
    for (const Case& c : cases) {
      const std::vector<double> shown = SpreadLongitudes(c.longitudes, c.gap);
      const QString fault = PlacementFault(c.longitudes, shown, c.gap);
      QVERIFY2(fault.isEmpty(), qPrintable(QString(c.name) + ": " + fault));
    }
  }

  void glyphsWithRoomStayOnTheirDegree() {
    const std::vector<double> truth = {100.0, 101.0, 102.0, 250.0, 20.0};
    const std::vector<double> shown = SpreadLongitudes(truth, 6.0);
    QCOMPARE(shown[3], 250.0);
    QCOMPARE(shown[4], 20.0);
    QVERIFY(std::fabs(shown[1] - 101.0) < 1e-9);  // the middle of a symmetric bunch stays
    QVERIFY(std::fabs(shown[0] - 95.0) < 1e-9);
  }

  void wheelPaints() {
    WheelData data;
    data.HasHouses = true;
    for (int c = 1; c <= 12; ++c) data.Cusps[c] = Norm(200.0 + 30.0 * (c - 1) + (c % 3) * 4.0);
    data.Ascendant = data.Cusps[1];
    data.Midheaven = data.Cusps[10];
    const char16_t* glyphs = u"\u263D\u2609\u263F\u2640\u2642\u2643\u2644\u2645\u2646\u2647";
    for (int i = 0; i < 10; ++i) {
      data.Inner.push_back({i + 1, 300.0 + i * 2.0, QString(QChar(glyphs[i])), i == 3});
      data.Outer.push_back({i + 1, 10.0 + i * 35.0, QString(QChar(glyphs[i])), false});
    }
    data.Aspects.push_back({10.0, 280.0, 90.0, 0.3});
    data.Title = "Test chart";
    const QImage image = RenderDrawing(QSizeF(500, 500), [&](QPainter& p, const QRectF& area) {
      PaintChartWheel(p, area, data);
    });
    int inked = 0;
    for (int y = 0; y < image.height(); y += 3)
      for (int x = 0; x < image.width(); x += 3)
        if (image.pixel(x, y) != qRgb(255, 255, 255)) ++inked;
    QVERIFY2(inked > 2000, qPrintable(QString::number(inked)));
    image.save(QString(VINTAR_PICTURES_DIR) + "/chart_wheel.png");

    // Nothing to show and a degenerate area: no crash.
    RenderDrawing(QSizeF(3, 2), [&](QPainter& p, const QRectF& area) { PaintChartWheel(p, area, WheelData{}); });
  }
};

QTEST_MAIN(ChartWheelTest)
#include "chart_wheel_test.moc"
