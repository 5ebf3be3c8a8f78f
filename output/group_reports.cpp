#include "output/group_reports.h"

#include <algorithm>
#include <cmath>

#include "core/text.h"
#include "output/group_strips.h"

namespace vintar {
namespace {

// Splits `text` at blanks into pieces no wider than `width`; the pieces
// after the first start with `indent`. A word wider than the line stands
// alone.
std::vector<std::string> WrapToWidth(const ReportDocument& doc, const std::string& text, double width,
                                     const std::string& indent) {
  std::vector<std::string> lines;
  if (doc.TextWidth(text) <= width) return {text};
  std::string line;
  size_t at = 0;
  while (at < text.size()) {
    size_t next = text.find(' ', at + 1);
    if (next == std::string::npos) next = text.size();
    const std::string word = text.substr(at, next - at);
    const std::string tried = line + word;
    if (!line.empty() && doc.TextWidth(tried) > width && Trim(line) != Trim(indent)) {
      lines.push_back(line);
      line = indent + LTrim(word);
    } else {
      line = tried;
    }
    at = next;
  }
  if (!Trim(line).empty()) lines.push_back(line);
  return lines;
}

// Lines of a table: each keeps room for itself, a page break repeats the
// section's heading with "(Continued...)".
void TableLine(ReportDocument& doc, const std::string& title, const std::string& section, const std::string& text) {
  for (const std::string& piece : WrapToWidth(doc, text, doc.PageWidth() - doc.LineHeight() * 0.5, "        ")) {
    doc.EnsureRoom(title, section, 1.0);
    doc.PrintLine(piece);
  }
}

void ReportHead(ReportDocument& doc, const Session& session, const ReportOptions& options) {
  doc.PrintLabelled("  Project Title:", session.project.Header.Title);
  if (!options.SubTitle.empty()) doc.PrintLabelled("  SubTitle:", options.SubTitle);
}

// A section heading that does not stand alone at the foot of a page.
void Section(ReportDocument& doc, const std::string& title, const std::string& text) {
  doc.EnsureRoom(title, "", 3.0);
  doc.PrintSectionHead(text);
}

}  // namespace

std::string GroupDegMin(double degrees) {
  if (!std::isfinite(degrees)) degrees = 0.0;
  const long minutes = std::lround(std::fabs(degrees) * 60.0);
  const std::string sign = degrees < 0 && minutes > 0 ? "-" : "";
  const long m = minutes % 60;
  return sign + std::to_string(minutes / 60) + "\xB0" + (m < 10 ? "0" : "") + std::to_string(m) + "'";
}

std::string GroupFrameLine(const Session& session) {
  const Vocabulary& v = session.vocab;
  std::string line = "  ";
  const int z = session.prefs.Zodiac - 1;
  if (z >= 0 && z < static_cast<int>(v.ZodiacName.size())) line += v.ZodiacName[z];
  line += " Zodiac - ";
  const int c = session.cache.Coordinate == kHeliocentric ? kHeliocentric : kGeocentric;
  if (c < static_cast<int>(v.CoordName.size())) line += v.CoordName[c];
  line += " Coordinates - ";
  line += std::string(v.NodePoint == kTrueNode ? "True" : "Mean") + " Node";
  return line;
}

void GroupDisplayReport(ReportDocument& doc, Session& session, const StripTable& table,
                        const ReportOptions& options) {
  const std::string title = kGroupDisplayReportTitle;
  doc.BeginReport(title);
  ReportHead(doc, session, options);
  doc.PrintLine(GroupFrameLine(session));
  doc.PrintLabelled("  Harmonic:", std::to_string(ClampPlotModulus(table.PlotModulus)));
  doc.PrintLabelled("  Modulus:", GroupDegMin(360.0 / ClampPlotModulus(table.PlotModulus)));

  // The strips below the head, on a page of their own when little is left.
  const double lh = doc.LineHeight();
  const double width = doc.PageWidth();
  const int rows = StripRowsShown(table);
  const double wanted = width * (0.14 + 0.085 * rows);
  doc.EnsureRoom(title, "", std::min(wanted, width * 0.6) / lh + 1.0);
  doc.NextLine(0.5);
  const double height = std::max(lh * 4.0, std::min(wanted, doc.RoomLeft() - lh));
  PaintGroupStrips(doc.Painter(), QRectF(0, doc.Y(), width, height), session, table);
  doc.NextLine(height / lh + 0.5);
}

void GroupSearchReport(ReportDocument& doc, Session& session, const GroupSearchState& state,
                       const GroupSearchParams& params, int selectedMatch, const ReportOptions& options) {
  const std::string title = kGroupSearchReportTitle;
  doc.BeginReport(title);
  ReportHead(doc, session, options);
  doc.PrintLine(GroupFrameLine(session));

  // The search points, as many to a line as fit.
  const std::string pointsLabel = "  Search Pts:";
  const double valueX =
      std::max(doc.TextWidth("  Dynamic Points:  "), doc.TextWidth(pointsLabel) + 0.5 * doc.LineHeight());
  const double room = doc.PageWidth() - valueX - doc.LineHeight() * 0.5;
  std::vector<std::string> pointLines;
  std::string line;
  for (const SearchPair& pair : state.SearchPoints) {
    const std::string glyphs = SearchPairGlyphs(session, pair);
    const std::string tried = line.empty() ? glyphs : line + "  " + glyphs;
    if (!line.empty() && doc.TextWidth(tried) > room) {
      pointLines.push_back(line);
      line = glyphs;
    } else {
      line = tried;
    }
  }
  pointLines.push_back(line);
  for (size_t i = 0; i < pointLines.size(); ++i) {
    doc.EnsureRoom(title, "", 1.0);
    doc.PrintLabelled(i == 0 ? pointsLabel : "", pointLines[i], valueX);
  }

  doc.PrintLabelled("  Harmonics:", std::to_string(params.FromHarmonic) + " to " +
                                        std::to_string(params.ToHarmonic) +
                                        (params.SpecifiedPosition ? " - Scan Orb = " : " - 1st Harmonic Orb = ") +
                                        GroupDegMin(params.Orb),
                    valueX);
  doc.PrintLabelled("  Position:", params.SpecifiedPosition ? GroupDegMin(params.Position) : "Any", valueX);
  doc.PrintLabelled("  Matches:", std::to_string(params.MinMatches) + "+   " +
                                      (params.Combination ? "To Any Combination of Search Points"
                                                          : "To Same Search Point Only"),
                    valueX);

  const bool selected = selectedMatch >= 1 && selectedMatch <= state.MatchCount &&
                        selectedMatch <= static_cast<int>(state.MatchesList.size());
  const std::string matches = selected ? "Selected Match" : "Matches Found";
  Section(doc, title, matches);
  if (selected) {
    TableLine(doc, title, matches, "  " + state.MatchesList[selectedMatch - 1]);
  } else if (state.MatchesList.empty()) {
    TableLine(doc, title, matches, "  No matches found");
  } else {
    for (const std::string& text : state.MatchesList) TableLine(doc, title, matches, "  " + text);
  }

  const std::string charts = "Charts in Match";
  doc.NextLine(0.5);
  Section(doc, title, charts);
  if (state.SecondaryList.empty()) TableLine(doc, title, charts, "No charts found");
  for (const std::string& text : state.SecondaryList) TableLine(doc, title, charts, text);
}

}  // namespace vintar
