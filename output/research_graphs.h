// The graphs of a tabulation: one column of the tally as a bar graph (one
// bar per real cell, 1..UsedCells, left to right) or as a polar graph (one
// sector of 360 / UsedCells degrees per cell, cell 1 beginning at the top
// and the cells following clockwise), in one of the five display styles.
// Each has a title, the cells' names (sign glyphs for the signs, in DejaVu
// Sans), the expected level of an even spread (the column's average,
// dashed) and the column's statistics block beside the plot.
//
// The layout depends on the area only, so that the screen can map the
// pointer back to a cell: the polar dial stays within 0.42 of the area's
// height from its centre, which is what PolarCellAt expects. Values are
// those of StyledValue; checked by painting every style into images and
// by the printed research reports in tests/output/research_graphs_test.cpp.
#pragma once

#include <QPainter>
#include <QPointF>
#include <QRectF>
#include <QSizeF>
#include <QString>

#include <string>

#include "core/session.h"
#include "research/results.h"
#include "research/tabulate.h"

namespace vintar {

// The names of the display styles (TabStyles) and of the displays
// (DisplayStyles), in list order.
inline constexpr const char* kTabStyleNames[kTabStyles] = {"Raw Counts", "Proportion of Tot", "% of Total",
                                                            "Proportion of Avg", "% of Average"};
inline constexpr const char* kDisplayStyleNames[3] = {"Bar Graph", "Polar Graph", "Tabulation"};

// What one graph shows: a column (1..ColumnCount + 1, the last being the
// total of all points), a style (0..4) and kBarGraph or kPolarGraph. An
// empty title gives ResearchGraphTitle.
struct ResearchGraphRequest {
  int Column = 1;
  int Style = 0;
  int Display = kBarGraph;
  std::string Title;
};

// "Mars - Signs (Longitude)": the column's name, the division and the
// coordinate it divides.
std::string ResearchGraphTitle(const Session& session, const TabulationRun& run, int column);
// "Raw Counts - 120 Charts".
std::string ResearchGraphSubtitle(const TabulationRun& run, int style);

// The label of a cell on a graph: the sign's glyph for the sign divisions
// (with the decanate's range for the decanates), else the short name that
// the printed table uses.
QString ResearchCellLabel(const Session& session, const TabulationRun& run, int cell);

// The even-spread level of a column in a style (the column total over
// CellCount, styled as a cell would be); false when the code has none (the
// harmonic amplitudes and phases) or the column is empty.
bool ExpectedLevel(const TabulationRun& run, int column, int style, double& level);

// The geometry, for mapping the pointer.
QRectF ResearchBarPlotRect(const QRectF& area);
QPointF ResearchPolarCentre(const QRectF& area);
double ResearchPolarRadius(const QRectF& area);  // the sectors' full radius
// The cell under `point`, 0 for none.
int ResearchGraphCellAt(const TabulationRun& run, int display, const QRectF& area, QPointF point);

// Paints the graph into `area`. A run without cells paints only the title
// and "No data".
void PaintResearchGraph(QPainter& painter, const QRectF& area, const Session& session, const TabulationRun& run,
                        const ResearchGraphRequest& graph);

// Saves the graph as PNG, SVG or PDF by the file's extension; false with
// `error` set when it cannot.
bool SaveResearchGraph(const std::string& path, QSizeF size, const Session& session, const TabulationRun& run,
                       const ResearchGraphRequest& graph, std::string* error = nullptr);

}  // namespace vintar
