#include "screens/research/tab_results.h"

#include <QApplication>
#include <QClipboard>
#include <QCloseEvent>
#include <QComboBox>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QImage>
#include <QLabel>
#include <QMenuBar>
#include <QPainter>
#include <QPushButton>
#include <QStackedWidget>
#include <QTableWidget>
#include <QToolTip>
#include <QVBoxLayout>

#include <algorithm>

#include "core/preferences.h"
#include "output/research_graphs.h"
#include "output/research_reports.h"
#include "research/results.h"
#include "screens/common/drawing_view.h"
#include "screens/common/qt_text.h"
#include "screens/common/report_preview.h"
#include "screens/research/extract_screen.h"
#include "screens/research/tab_support.h"

namespace vintar {

namespace {

constexpr const char* kSettingsSection = "Settings";
constexpr const char* kDataFilter = "Data Files (*.dat)|*.dat|All Files (*.*)|*.*";
constexpr const char* kGraphicFilter =
    "PNG Files (*.png)|*.png|BMP Files (*.bmp)|*.bmp|SVG Files (*.svg)|*.svg|PDF Files (*.pdf)|*.pdf";
constexpr QSizeF kPictureSize{760, 520};

const char* PrintCaption(int display) {
  switch (display) {
    case kBarGraph: return "Print Bar Graph";
    case kPolarGraph: return "Print Polar Graph";
    default: return "Print Table";
  }
}

}  // namespace

TabulationWindow::TabulationWindow(Workbench& wb, TabulationRun run, QWidget* parent)
    : QWidget(parent), wb_(wb), run_(std::move(run)) {
  setObjectName("Tabulation");
  setWindowTitle(QStringLiteral("Results Tabulation"));
  Session& s = wb_.session;

  auto* layout = new QVBoxLayout(this);
  auto* menus = new QMenuBar(this);
  layout->setMenuBar(menus);
  QMenu* file = menus->addMenu(tr("&File"));
  auto action = [this](QMenu* menu, const char* name, const QString& caption, auto slot) {
    QAction* a = menu->addAction(caption, this, slot);
    a->setObjectName(name);
    return a;
  };
  action(file, "mnuSaveData", tr("Save &Data..."), &TabulationWindow::SaveData);
  action(file, "mnuSaveGraphic", tr("Save &Graphic..."), &TabulationWindow::SaveGraphic);
  file->addSeparator();
  action(file, "mnuPrint", tr("&Print..."), &TabulationWindow::Print);
  file->addSeparator();
  action(file, "mnuClose", tr("&Close"), &QWidget::close);
  QMenu* edit = menus->addMenu(tr("&Edit"));
  action(edit, "mnuCopyData", tr("Copy &Data"), &TabulationWindow::CopyData);
  action(edit, "mnuCopyGraphic", tr("Copy &Graphic"), &TabulationWindow::CopyGraphic);

  auto* choices = new QHBoxLayout;
  auto combo = [&](const char* name, const QString& caption) {
    auto* label = new QLabel(caption, this);
    auto* box = new QComboBox(this);
    box->setObjectName(name);
    label->setBuddy(box);
    choices->addWidget(label);
    choices->addWidget(box);
    return box;
  };
  display_ = combo("DisplayStyles", tr("&Display:"));
  for (const char* name : kDisplayStyleNames) display_->addItem(QString::fromLatin1(name));
  style_ = combo("TabStyles", tr("&Values:"));
  for (const char* name : kTabStyleNames) style_->addItem(QString::fromLatin1(name));
  column_ = combo("DisplayPoints", tr("P&oint:"));
  for (const std::string& name : DisplayPoints(run_, "All Points")) column_->addItem(Q(name));
  choices->addStretch();
  layout->addLayout(choices);

  stack_ = new QStackedWidget(this);
  graph_ = new DrawingView(stack_, &s);
  graph_->setObjectName("picGraph");
  graph_->setMouseTracking(true);
  graph_->SetPreferredSize(kPictureSize);
  graph_->SetSaveName(QStringLiteral("VT_Image.png"));
  graph_->SetPaint([this](QPainter& painter, const QRectF& area) {
    ResearchGraphRequest request;
    request.Column = Column();
    request.Style = Style();
    request.Display = Display() == kPolarGraph ? kPolarGraph : kBarGraph;
    PaintResearchGraph(painter, area, wb_.session, run_, request);
  });
  stack_->addWidget(graph_);
  table_ = new QTableWidget(stack_);
  table_->setObjectName("grdTable");
  table_->setEditTriggers(QAbstractItemView::NoEditTriggers);
  table_->setSelectionMode(QAbstractItemView::ContiguousSelection);
  stack_->addWidget(table_);
  layout->addWidget(stack_, 1);

  stats_ = new QLabel(this);
  stats_->setObjectName("lblStatistics");
  stats_->setTextInteractionFlags(Qt::TextSelectableByMouse);
  layout->addWidget(stats_);
  pointer_ = new QLabel(this);
  pointer_->setObjectName("lblPointer");
  layout->addWidget(pointer_);

  auto* buttons = new QHBoxLayout;
  extract_ = new QPushButton(QStringLiteral("Filter Selected Records into New Project"), this);
  extract_->setObjectName("ExtractButton");
  auto* print = new QPushButton(tr("&Print..."), this);
  print->setObjectName("PrintButton");
  auto* close = new QPushButton(tr("&Close"), this);
  close->setObjectName("CloseButton");
  buttons->addWidget(extract_);
  buttons->addStretch();
  buttons->addWidget(print);
  buttons->addWidget(close);
  layout->addLayout(buttons);

  ResultsSettings settings;
  settings.TabulateStyle = static_cast<int>(GetProfileNumber(s, kSettingsSection, "TabulateStyle", 0));
  settings.LastGraphType = static_cast<int>(GetProfileNumber(s, kSettingsSection, "LastGraphType", 0));
  settings.Clamp();
  display_->setCurrentIndex(settings.LastGraphType);
  style_->setCurrentIndex(settings.TabulateStyle);
  // The total of all points when there are several, else the only one.
  column_->setCurrentIndex(run_.ColumnCount > 1 ? column_->count() - 1 : 0);
  FillTable();
  Refresh();

  connect(display_, &QComboBox::currentIndexChanged, this, &TabulationWindow::Refresh);
  connect(style_, &QComboBox::currentIndexChanged, this, [this] {
    FillTable();
    Refresh();
  });
  connect(column_, &QComboBox::currentIndexChanged, this, &TabulationWindow::Refresh);
  connect(graph_, &DrawingView::hovered, this, &TabulationWindow::Hovered);
  connect(extract_, &QPushButton::clicked, this, &TabulationWindow::FilterSelected);
  connect(print, &QPushButton::clicked, this, &TabulationWindow::Print);
  connect(close, &QPushButton::clicked, this, &QWidget::close);
  setMinimumSize(600, 400);
  resize(820, 620);
}

TabulationWindow::~TabulationWindow() = default;

void TabulationWindow::SetDisplay(int display) { display_->setCurrentIndex(std::clamp(display, 0, 2)); }
int TabulationWindow::Display() const { return std::max(0, display_->currentIndex()); }
void TabulationWindow::SetStyle(int style) { style_->setCurrentIndex(std::clamp(style, 0, kTabStyles - 1)); }
int TabulationWindow::Style() const { return std::max(0, style_->currentIndex()); }
void TabulationWindow::SetColumn(int column) { column_->setCurrentIndex(std::clamp(column - 1, 0, column_->count() - 1)); }
int TabulationWindow::Column() const { return std::max(0, column_->currentIndex()) + 1; }

void TabulationWindow::FillTable() {
  const Session& s = wb_.session;
  const int columns = run_.ColumnCount + 1, rows = run_.CellCount + 1;
  std::vector<std::string> heads = DisplayPoints(run_);
  heads.resize(columns);
  heads[columns - 1] = "TOTAL ";
  table_->clear();
  table_->setColumnCount(columns);
  table_->setRowCount(rows);
  QStringList columnHeads, rowHeads;
  for (const std::string& h : heads) columnHeads << Q(h);
  for (int cell = 1; cell < rows; ++cell) rowHeads << Q(CellName(s, run_, cell, false));
  rowHeads << QStringLiteral("TOTAL");
  table_->setHorizontalHeaderLabels(columnHeads);
  table_->setVerticalHeaderLabels(rowHeads);
  const int style = Style();
  for (int cell = 1; cell <= rows; ++cell)
    for (int c = 1; c <= columns; ++c) {
      auto* item = new QTableWidgetItem(Q(FormatStyled(run_, cell, c, style)));
      item->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
      table_->setItem(cell - 1, c - 1, item);
    }
  table_->resizeColumnsToContents();
}

void TabulationWindow::Refresh() {
  const int display = Display();
  stack_->setCurrentWidget(display == kTabulationDisplay ? static_cast<QWidget*>(table_) : graph_);
  const std::vector<std::string> block = StatisticsBlock(wb_.session, run_, Column());
  QStringList lines;
  for (const std::string& line : block) lines << Q(line);
  QString text = column_->currentText() + QStringLiteral(":   ") +
                 (lines.isEmpty() ? QStringLiteral("-") : lines.join(QStringLiteral("   ")));
  // Beside the one-cell test, the fit of the whole column to an even spread.
  const std::string fit = EvenSpreadText(run_, Column());
  if (!fit.empty()) text += QLatin1Char('\n') + Q(fit);
  stats_->setText(text);
  stats_->setVisible(display == kTabulationDisplay);
  pointer_->clear();
  graph_->update();
}

QString TabulationWindow::PointerText(QPointF point) const {
  if (Display() == kTabulationDisplay) return {};
  const int cell = ResearchGraphCellAt(run_, Display(), QRectF(graph_->rect()), point);
  QStringList lines;
  for (const std::string& line : CellPointerLabel(wb_.session, run_, cell, Column())) lines << Q(line);
  return lines.join(QLatin1Char('\n'));
}

void TabulationWindow::Hovered(QPointF point, QRectF) {
  const QString text = PointerText(point);
  pointer_->setText(QString(text).replace(QLatin1Char('\n'), QStringLiteral("   ")));
  if (text.isEmpty()) QToolTip::hideText();
  else QToolTip::showText(graph_->mapToGlobal(point.toPoint()), text, graph_);
}

std::string TabulationWindow::DataText() const { return TabulationText(wb_.session, run_, Style()); }

bool TabulationWindow::SaveDataTo(const std::string& path) { return SaveTabulation(wb_.session, run_, Style(), path); }

void TabulationWindow::CopyData() { QApplication::clipboard()->setText(Q(DataText())); }

void TabulationWindow::SaveData() {
  const QString path = AskSavePath(this, wb_.session, QStringLiteral("Save Tabulation to File..."), kDataFilter,
                                   QStringLiteral("VT_Data"), QStringLiteral(".dat"));
  if (!path.isEmpty()) SaveDataTo(PathOf(path));
}

QImage TabulationWindow::Picture() const {
  if (Display() == kTabulationDisplay) return table_->grab().toImage();
  QImage image(kPictureSize.toSize(), QImage::Format_RGB32);
  image.fill(Qt::white);
  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing);
  ResearchGraphRequest request{Column(), Style(), Display(), {}};
  PaintResearchGraph(painter, QRectF(QPointF(0, 0), kPictureSize), wb_.session, run_, request);
  return image;
}

bool TabulationWindow::SaveGraphicTo(const QString& path) {
  Session& s = wb_.session;
  const QString kind = QFileInfo(path).suffix().toLower();
  std::string error;
  bool saved = false;
  if (Display() == kTabulationDisplay || kind == QLatin1String("bmp") || kind == QLatin1String("png")) {
    saved = Picture().save(path);
    if (!saved) error = "The picture could not be written.";
  } else {
    ResearchGraphRequest request{Column(), Style(), Display(), {}};
    saved = SaveResearchGraph(PathOf(path), kPictureSize, s, run_, request, &error);
  }
  if (!saved) s.ShowMessage("Unable to save file: " + PathOf(path) + "\r\nReason: " + error, kIconExclamation, "Error");
  return saved;
}

void TabulationWindow::CopyGraphic() { QApplication::clipboard()->setImage(Picture()); }

void TabulationWindow::SaveGraphic() {
  const QString path = AskSavePath(this, wb_.session, QStringLiteral("Save Image to File As..."), kGraphicFilter,
                                   QStringLiteral("VT_Image"), QStringLiteral(".png"));
  if (!path.isEmpty()) SaveGraphicTo(path);
}

void TabulationWindow::Print() {
  Session& s = wb_.session;
  const int display = Display(), column = Column(), style = Style();
  const TabulationRun& run = run_;
  RunPrintGraph(wb_, this, QString::fromLatin1(PrintCaption(display)),
                [&s, &run, display, column, style](ReportDocument& doc, const ReportOptions& options) {
                  ResearchResultsReport(doc, s, run, display, column, style, options);
                });
}

Extract* TabulationWindow::FilterSelected() {
  int firstCell = 0, lastCell = 0, firstColumn = 0, lastColumn = 0;
  const QList<QTableWidgetSelectionRange> ranges = table_->selectedRanges();
  if (!ranges.isEmpty()) {
    firstCell = ranges.first().topRow() + 1, lastCell = ranges.first().bottomRow() + 1;
    firstColumn = ranges.first().leftColumn() + 1, lastColumn = ranges.first().rightColumn() + 1;
  }
  // With no cells selected the table counts as not shown: the same message
  // asks for a view as a tabulation and a range of cells.
  const int display = ranges.isEmpty() ? kBarGraph : Display();
  FilterBlock block;
  if (!FilterBlockFor(wb_.session, run_, display, firstCell, lastCell, firstColumn, lastColumn, block))
    return nullptr;
  auto* screen = new Extract(wb_, run_, block, this);
  screen->setAttribute(Qt::WA_DeleteOnClose);
  screen->open();
  return screen;
}

void TabulationWindow::closeEvent(QCloseEvent* event) {
  if (remember_) {
    Session& s = wb_.session;
    PutProfileNumber(s, kSettingsSection, "TabulateStyle", Style());
    PutProfileNumber(s, kSettingsSection, "LastGraphType", Display());
  }
  QWidget::closeEvent(event);
}

}  // namespace vintar
