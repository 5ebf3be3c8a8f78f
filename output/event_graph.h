// One event graph as a picture: the 120 smoothed bars of a graph across its
// harmonic segment, the bars of selected peaks filled, the lines of the mean
// and of the mean plus one standard deviation, an axis labelled in degrees
// (and signs when the segment spans them), and a caption with the graph's
// settings and statistics. The layout depends on the area only, so that a
// click can be mapped back to its bar without the graph.
#pragma once

#include <QPainter>
#include <QPointF>
#include <QRectF>

#include <string>

#include "core/session.h"
#include "rectify/rectification.h"

namespace vintar {

// Paints graph `graph` (1 to 5) of the rectification into `area`.
void PaintEventGraph(QPainter& painter, const QRectF& area, const Session& session, const Rectification& rect,
                     int graph);

// The bar (1 to 120) under a point of the area, 0 outside the plot.
int EventGraphBarAt(const QRectF& area, QPointF point);

// The plot of the bars within `area`.
QRectF EventGraphPlotRect(const QRectF& area);

// The caption's two lines: "Graph 1: Geocentric Transits, Harmonic 12" and
// the points; and the statistics "Mean 1.25  SD 0.80  Quality 12.50 ...".
std::string EventGraphTitle(const Session& session, const GraphState& graphs, int graph);
std::string EventGraphPoints(const Session& session, const GraphState& graphs, int graph);
std::string EventGraphStatistics(const GraphState& graphs, int graph);

}  // namespace vintar
