#include "output/report_page.h"

#include <QFile>
#include <QFontMetricsF>
#include <QPageLayout>
#include <QPageSize>
#include <QPdfWriter>

#include <algorithm>
#include <filesystem>

#include "core/parse.h"
#include "core/preferences.h"
#include "core/text.h"

namespace vintar {
namespace {

// The frame's lines, in LineHeight units from the page's top.
constexpr double kTitleY = 0.6;
constexpr double kTitleScale = 1.3;
constexpr double kGeneratedY = 2.2;
constexpr double kDateY = kGeneratedY + 1.0 + 0.5;
constexpr double kPageY = kDateY + 0.5;
constexpr double kHeadBottom = kPageY + 1.3;  // the head's box ends here
constexpr double kBodyY = kPageY + 2.0;       // the line after the page number, plus one
constexpr double kOuterCorner = 0.8;
constexpr double kInnerCorner = 0.7;
constexpr double kInset = 0.2;
// The reserve a table keeps below its last line for the closing line.
constexpr double kFootReserve = 0.5;

std::string DefaultUserName(const Session& session) {
  std::string name = Trim(GetPreferenceText(session, "UserName", ""));
  if (!name.empty()) return name;
  for (const char* var : {"USER", "LOGNAME", "USERNAME"}) {
    const QString v = qEnvironmentVariable(var);
    if (!v.isEmpty()) return v.toLatin1().toStdString();
  }
  return "Vintar User";
}

std::string ReportFontName(const Session& session) {
  std::string name = Trim(GetPreferenceText(session, "ReportFontName", ""));
  return name.empty() ? kDefaultReportFont : name;
}

}  // namespace

ReportDocument::ReportDocument(Session& session, QPagedPaintDevice& device) : session_(session), device_(&device) {
  open_ = painter_.begin(device_);
  if (open_) area_ = QRectF(0, 0, device_->width(), device_->height());
  Setup();
}

ReportDocument::ReportDocument(Session& session, QSize pageSize, double dpi, double marginInches)
    : session_(session), imageSize_(pageSize), dpi_(dpi), margin_(std::max(0.0, marginInches) * dpi) {
  StartSheet();
  open_ = true;
  Setup();
}

std::unique_ptr<ReportDocument> ReportDocument::A4Images(Session& session, double dpi) {
  const QSizeF mm = QPageSize(QPageSize::A4).size(QPageSize::Millimeter);
  const QSize pixels(int(mm.width() / 25.4 * dpi + 0.5), int(mm.height() / 25.4 * dpi + 0.5));
  return std::make_unique<ReportDocument>(session, pixels, dpi);
}

ReportDocument::~ReportDocument() {
  if (!ended_) End();
}

void ReportDocument::Setup() {
  sheets_ = 1;
  fontName_ = ReportFontName(session_);
  userName_ = DefaultUserName(session_);
  boxes_ = session_.DrawRects != 0;
  shade_ = session_.FillRects != 0;
  if (!open_) return;
  painter_.setRenderHint(QPainter::Antialiasing);
  painter_.setRenderHint(QPainter::TextAntialiasing);
  SetFont(false, 1.0);
  lineHeight_ = std::max(1.0, QFontMetricsF(font_, painter_.device()).height());
}

void ReportDocument::StartSheet() {
  // An image page: white, with the printable area inside its margins.
  current_ = QImage(imageSize_, QImage::Format_ARGB32_Premultiplied);
  const int dpm = int(dpi_ / 0.0254 + 0.5);
  current_.setDotsPerMeterX(dpm);
  current_.setDotsPerMeterY(dpm);
  current_.fill(Qt::white);
  painter_.begin(&current_);
  painter_.translate(margin_, margin_);
  area_ = QRectF(0, 0, imageSize_.width() - 2 * margin_, imageSize_.height() - 2 * margin_);
  painter_.setClipRect(area_.adjusted(-1, -1, 1, 1));
  painter_.setRenderHint(QPainter::Antialiasing);
  painter_.setRenderHint(QPainter::TextAntialiasing);
}

void ReportDocument::CloseSheet() {
  if (device_) return;
  painter_.end();
  images_.push_back(current_);
  current_ = QImage();
}

QString ReportDocument::Text(const std::string& latin1) const {
  return QString::fromLatin1(latin1.data(), qsizetype(latin1.size()));
}

void ReportDocument::SetFont(bool bold, double scale) {
  font_ = QFont(QString::fromLatin1(fontName_.c_str()));
  font_.setPointSizeF(kBaseFontPoints * scale);
  font_.setBold(bold);
  if (painter_.isActive()) painter_.setFont(font_);
}

double ReportDocument::TextWidth(const std::string& text) const {
  return QFontMetricsF(font_, painter_.device()).horizontalAdvance(Text(text));
}

void ReportDocument::Record(const std::string& text, int alignment) {
  lines_.push_back(ReportLine{sheets_, page_, y_ / lineHeight_, alignment, font_.bold(), text});
  sheetUsed_ = true;
}

void ReportDocument::BeginReport(const std::string& title) {
  if (!open_) return;
  if (sheetUsed_) {
    if (device_) {
      device_->newPage();
    } else {
      CloseSheet();
      StartSheet();
    }
    ++sheets_;
    sheetUsed_ = false;
  }
  StartReportPage(title, 1);
}

void ReportDocument::StartReportPage(const std::string& title, int pageNumber) {
  if (!open_) return;
  title_ = title;
  page_ = pageNumber;
  SetFont(false, 1.0);
  const double lh = lineHeight_;

  // The boxes first, so that the head's text stands on them.
  if (boxes_) {
    const QRectF outer(0, 0, area_.width(), kHeadBottom * lh);
    painter_.save();
    painter_.setPen(QPen(Qt::black, std::max(1.0, 0.08 * lh)));
    painter_.setBrush(shade_ ? QBrush(QColor(205, 205, 205)) : Qt::NoBrush);
    painter_.drawRoundedRect(outer, kOuterCorner * lh, kOuterCorner * lh);
    if (shade_) {
      painter_.setBrush(Qt::white);
      painter_.drawRoundedRect(outer.adjusted(kInset * lh, kInset * lh, -kInset * lh, -kInset * lh),
                               kInnerCorner * lh, kInnerCorner * lh);
    }
    painter_.restore();
  }

  const std::string date = FormatDate(session_, session_.clock.Day, session_.clock.Month, session_.clock.Year);
  SetFont(true, kTitleScale);
  y_ = kTitleY * lh;
  PrintAligned(std::string(kProgramName) + " " + kProgramVersion + " - " + title, kAlignCentre);
  SetFont(false, 1.0);
  y_ = kGeneratedY * lh;
  PrintAligned("Generated by " + userName_, kAlignCentre);
  y_ = kDateY * lh;
  PrintAligned("  " + date, kAlignLeft);
  y_ = kPageY * lh;
  PrintAligned("Page " + std::to_string(pageNumber) + "  ", kAlignRight);
  y_ = kBodyY * lh;
}

void ReportDocument::PrintAligned(const std::string& text, int alignment, double x) {
  if (!open_) return;
  const QString q = Text(text);
  const QFontMetricsF metrics(font_, painter_.device());
  const double width = metrics.horizontalAdvance(q);
  double left = x;
  if (alignment == kAlignRight) {
    left = (x <= 0 ? area_.width() : x) - width;
  } else if (alignment == kAlignCentre) {
    left = (x <= 0 ? area_.width() / 2 : x) - width / 2;
  }
  painter_.setFont(font_);
  painter_.setPen(Qt::black);
  painter_.drawText(QPointF(left, y_ + metrics.ascent()), q);
  Record(text, alignment);
}

void ReportDocument::PrintLine(const std::string& text, double x) {
  if (!text.empty()) PrintAligned(text, kAlignLeft, x);
  NextLine();
}

void ReportDocument::PrintLabelled(const std::string& label, const std::string& value, double valueX) {
  if (valueX <= 0) valueX = std::max(TextWidth("  Dynamic Points:  "), TextWidth(label) + 0.5 * lineHeight_);
  PrintAligned(label, kAlignLeft, 0);
  PrintAligned(value, kAlignLeft, valueX);
  NextLine();
}

void ReportDocument::NextLine(double lines) { y_ += lines * lineHeight_; }

void ReportDocument::PrintSectionHead(const std::string& text, double relativeY) {
  if (!open_) return;
  const double lh = lineHeight_;
  y_ += relativeY * lh;
  const bool wasBold = font_.bold();
  SetFont(true, 1.0);
  const double width = TextWidth(text) + 0.5 * lh;
  const QRectF box(area_.width() / 2 - width / 2, y_ - 0.15 * lh, width, 1.3 * lh);
  if (boxes_) {
    painter_.save();
    painter_.setPen(QPen(Qt::black, std::max(1.0, 0.06 * lh)));
    painter_.setBrush(shade_ ? QBrush(QColor(225, 225, 225)) : Qt::NoBrush);
    painter_.drawRect(box);
    painter_.restore();
  }
  PrintAligned(text, kAlignCentre);
  SetFont(wasBold, 1.0);
  y_ += 1.6 * lh;
}

void ReportDocument::NewPage(const std::string& title) {
  if (!open_) return;
  if (boxes_) {
    const double foot = area_.height() - 0.25 * lineHeight_;
    painter_.save();
    painter_.setPen(QPen(Qt::black, std::max(1.0, 0.08 * lineHeight_)));
    painter_.drawLine(QPointF(0, foot), QPointF(area_.width(), foot));
    painter_.restore();
  }
  if (device_) {
    device_->newPage();
  } else {
    CloseSheet();
    StartSheet();
  }
  ++sheets_;
  sheetUsed_ = false;
  StartReportPage(title, page_ + 1);
}

bool ReportDocument::EnsureRoom(const std::string& title, const std::string& continuation, double linesNeeded) {
  if (!open_) return false;
  if (RoomLeft() >= lineHeight_ * (linesNeeded + kFootReserve)) return false;
  const bool bold = font_.bold();
  NewPage(title);
  if (!continuation.empty()) PrintSectionHead(continuation + " (Continued...)");
  SetFont(bold, 1.0);
  return true;
}

bool ReportDocument::End() {
  if (ended_) return open_;
  ended_ = true;
  if (!open_) return false;
  if (device_) return painter_.end();
  CloseSheet();
  return true;
}

std::vector<std::string> ReportDocument::SheetTexts(int sheet) const {
  std::vector<std::string> texts;
  for (const ReportLine& line : lines_)
    if (line.sheet == sheet) texts.push_back(line.text);
  return texts;
}

bool SaveReportPdf(Session& session, const std::string& path, const std::function<void(ReportDocument&)>& build,
                   std::string* error) {
  auto fail = [&](const std::string& why) {
    if (error) *error = why;
    return false;
  };
  const QString target = QFile::decodeName(path.c_str());
  const QString temp = target + ".part";
  QFile::remove(temp);
  bool ok = false;
  {
    QPdfWriter pdf(temp);
    pdf.setResolution(300);
    pdf.setPageLayout(QPageLayout(QPageSize(QPageSize::A4), QPageLayout::Portrait, QMarginsF(15, 15, 15, 15),
                                  QPageLayout::Millimeter));
    pdf.setCreator(kProgramName);
    ReportDocument doc(session, pdf);
    if (doc.IsOpen()) {
      build(doc);
      ok = doc.End();
    }
  }
  if (!ok || QFile(temp).size() == 0) {
    QFile::remove(temp);
    return fail("The report could not be written to " + path + ".");
  }
  std::error_code ec;
  std::filesystem::rename(QFile::encodeName(temp).toStdString(), path, ec);
  if (ec) {
    QFile::remove(temp);
    return fail("The report could not be written to " + path + ": " + ec.message());
  }
  return true;
}

}  // namespace vintar
