#include "screens/groups/strips_window.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QMouseEvent>
#include <QPainter>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QSpinBox>
#include <QVBoxLayout>

#include <algorithm>

#include "core/text.h"
#include "output/group_reports.h"
#include "output/group_strips.h"
#include "screens/chart/chart_menu.h"
#include "screens/common/drawing_view.h"
#include "screens/common/progress_window.h"
#include "screens/common/qt_text.h"
#include "screens/common/report_preview.h"
#include "screens/common/tool_window.h"

namespace vintar {

namespace {

QString EntryText(const StripListEntry& e) {
  return e.Point == 0 ? Q(e.Name) : QString::fromStdString(e.Glyph) + QStringLiteral("  ") + Q(e.Name);
}

constexpr int kZooms[] = {100, 150, 200, 300, 400};

}  // namespace

Groups::Groups(Workbench& wb, QWidget* parent) : QWidget(parent), wb_(wb) {
  setObjectName("Groups");
  setWindowTitle(tr("Group/Family Comparisons"));
  Session& s = wb.session;

  auto* layout = new QHBoxLayout(this);
  auto* side = new QVBoxLayout;
  auto* chartsLabel = new QLabel(tr("C&harts (at most 10):"), this);
  side->addWidget(chartsLabel);
  chartList_ = new QListWidget(this);
  chartList_->setObjectName("lstCharts");
  chartsLabel->setBuddy(chartList_);
  side->addWidget(chartList_, 2);
  connect(chartList_, &QListWidget::itemChanged, this, &Groups::ChartsChanged);

  auto* pointsLabel = new QLabel(tr("&Points shown:"), this);
  side->addWidget(pointsLabel);
  displayList_ = new QListWidget(this);
  displayList_->setObjectName("DisplayList");
  displayList_->setSelectionMode(QAbstractItemView::MultiSelection);
  pointsLabel->setBuddy(displayList_);
  for (const StripListEntry& e : DisplayListEntries(s)) {
    auto* item = new QListWidgetItem(EntryText(e), displayList_);
    item->setData(Qt::UserRole, e.Point);
  }
  side->addWidget(displayList_, 3);
  connect(displayList_, &QListWidget::itemSelectionChanged, this, &Groups::Refresh);

  auto* grid = new QGridLayout;
  highList_ = new QComboBox(this);
  highList_->setObjectName("HighList");
  for (const StripListEntry& e : HighListEntries(s)) highList_->addItem(EntryText(e), e.Point);
  auto* highLabel = new QLabel(tr("&Colour:"), this);
  highLabel->setBuddy(highList_);
  grid->addWidget(highLabel, 0, 0);
  grid->addWidget(highList_, 0, 1);
  checkMidPoints_ = new QCheckBox(tr("&Midpoints of"), this);
  checkMidPoints_->setObjectName("CheckMidPoints");
  midPointList_ = new QComboBox(this);
  midPointList_->setObjectName("MidPointList");
  for (const StripListEntry& e : MidPointListEntries(s)) midPointList_->addItem(EntryText(e), e.Point);
  grid->addWidget(checkMidPoints_, 1, 0);
  grid->addWidget(midPointList_, 1, 1);
  side->addLayout(grid);
  connect(highList_, &QComboBox::currentIndexChanged, this, &Groups::Refresh);
  connect(checkMidPoints_, &QCheckBox::toggled, this, &Groups::Refresh);
  connect(midPointList_, &QComboBox::currentIndexChanged, this, &Groups::Refresh);
  layout->addLayout(side);

  auto* main = new QVBoxLayout;
  auto* scale = new QHBoxLayout;
  plotModulus_ = new QSpinBox(this);
  plotModulus_->setObjectName("PlotModulus");
  plotModulus_->setRange(1, 360);
  auto* harmonicLabel = new QLabel(tr("H&armonic:"), this);
  harmonicLabel->setBuddy(plotModulus_);
  modulus_ = new QLabel(this);
  modulus_->setObjectName("lblModulus");
  zoom_ = new QComboBox(this);
  zoom_->setObjectName("cmbZoom");
  for (int z : kZooms) zoom_->addItem(QStringLiteral("%1%").arg(z), z);
  auto* zoomLabel = new QLabel(tr("&Zoom:"), this);
  zoomLabel->setBuddy(zoom_);
  scale->addWidget(harmonicLabel);
  scale->addWidget(plotModulus_);
  scale->addWidget(modulus_);
  scale->addSpacing(16);
  scale->addWidget(zoomLabel);
  scale->addWidget(zoom_);
  scale->addStretch();
  main->addLayout(scale);
  connect(plotModulus_, &QSpinBox::valueChanged, this, &Groups::Refresh);
  connect(zoom_, &QComboBox::currentIndexChanged, this, &Groups::ApplyZoom);

  scroll_ = new QScrollArea(this);
  scroll_->setObjectName("VScroll");
  scroll_->setWidgetResizable(true);
  scroll_->setBackgroundRole(QPalette::Base);
  view_ = new DrawingView(scroll_, &s);
  view_->setObjectName("picStrips");
  view_->SetSaveName(QStringLiteral("strips.png"));
  view_->setToolTip(tr("Double-click a strip to open its chart."));
  view_->installEventFilter(this);
  view_->SetPaint([this](QPainter& painter, const QRectF& area) {
    painter.fillRect(area, Qt::white);
    PaintGroupStrips(painter, area, wb_.session, wb_.strips);
  });
  scroll_->setWidget(view_);
  main->addWidget(scroll_, 1);

  auto* buttons = new QHBoxLayout;
  auto button = [&](const char* name, const QString& caption) {
    auto* b = new QPushButton(caption, this);
    b->setObjectName(name);
    b->setAutoDefault(false);
    buttons->addWidget(b);
    return b;
  };
  connect(button("PrintButton", tr("&Print...")), &QPushButton::clicked, this, &Groups::Print);
  connect(button("SaveButton", tr("&Save Picture...")), &QPushButton::clicked, this, &Groups::SavePicture);
  buttons->addStretch();
  connect(button("QuitButton", tr("&Quit")), &QPushButton::clicked, this, &QWidget::close);
  main->addLayout(buttons);
  layout->addLayout(main, 1);

  resize(1040, 700);
  Reload();
}

void Groups::Reload() {
  const Session& s = wb_.session;
  StripTable& table = wb_.strips;
  filling_ = true;
  // Every chart a search takes in, those in the strips ticked (and, when a
  // strip holds a chart outside that list, that chart too).
  charts_ = GroupSearchCharts(s);
  for (int strip = 1; strip <= kStripCount; ++strip)
    if (table.Used(strip) && std::find(charts_.begin(), charts_.end(), table.StripRecord[strip]) == charts_.end())
      charts_.push_back(table.StripRecord[strip]);
  chartList_->clear();
  const auto& events = s.project.Events;
  for (int record : charts_) {
    const std::string name = record < static_cast<int>(events.size()) ? Trim(events[record].Description) : "";
    auto* item = new QListWidgetItem(QStringLiteral("%1. ").arg(record) + Q(name), chartList_);
    const bool in = std::find(table.StripRecord.begin() + 1, table.StripRecord.end(), record) != table.StripRecord.end();
    item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
    item->setCheckState(in ? Qt::Checked : Qt::Unchecked);
  }
  // No points chosen yet: all of them.
  if (table.Shown.empty())
    for (const StripListEntry& e : DisplayListEntries(s)) table.Shown.push_back(e.Point);
  for (int row = 0; row < displayList_->count(); ++row) {
    QListWidgetItem* item = displayList_->item(row);
    const int point = item->data(Qt::UserRole).toInt();
    item->setSelected(std::find(table.Shown.begin(), table.Shown.end(), point) != table.Shown.end());
  }
  highList_->setCurrentIndex(std::max(0, highList_->findData(table.HighlightPoint)));
  checkMidPoints_->setChecked(table.MidpointPartner > 0);
  if (table.MidpointPartner > 0) midPointList_->setCurrentIndex(std::max(0, midPointList_->findData(table.MidpointPartner)));
  plotModulus_->setValue(ClampPlotModulus(table.PlotModulus));
  filling_ = false;
  Refresh();
}

void Groups::ChartsChanged() {
  if (filling_) return;
  std::vector<int> records;
  for (int row = 0; row < chartList_->count(); ++row)
    if (chartList_->item(row)->checkState() == Qt::Checked) records.push_back(charts_[row]);
  if (!CheckStripChartCount(wb_.session, static_cast<int>(records.size()))) {
    Reload();
    return;
  }
  SetStripRecords(wb_.strips, records);
  Refresh();
}

bool Groups::Refresh() {
  if (filling_) return true;
  Session& s = wb_.session;
  StripTable& table = wb_.strips;
  table.Shown.clear();
  for (int row = 0; row < displayList_->count(); ++row)
    if (displayList_->item(row)->isSelected()) table.Shown.push_back(displayList_->item(row)->data(Qt::UserRole).toInt());
  table.HighlightPoint = highList_->currentData().toInt();
  table.MidpointPartner = checkMidPoints_->isChecked() ? midPointList_->currentData().toInt() : 0;
  midPointList_->setEnabled(checkMidPoints_->isChecked());
  table.PlotModulus = ClampPlotModulus(plotModulus_->value());
  modulus_->setText(tr("Modulus: ") + Q(GroupDegMin(table.Modulus())));

  bool loading = false;
  for (int strip = 1; strip <= kStripCount; ++strip)
    if (table.Used(strip) && table.StripLoaded[strip] != table.StripRecord[strip]) loading = true;
  bool read = true;
  if (loading) {
    BusyPointer busy;
    ProgressWindow progress(this, windowTitle());
    progress.Caption("Reading chart positions...");
    read = RefreshStrips(s, table, &progress);
  } else {
    ComputeStripPlaces(table);
  }
  if (!read)
    s.ShowMessage("The positions of the charts could not be read from the position file.", kIconStop,
                  "Chart Strips");
  const QSizeF size = StripsPictureSize(table);
  view_->SetPreferredSize(size);
  view_->setMinimumHeight(static_cast<int>(size.height() * 0.75));
  ApplyZoom();
  view_->update();
  return read;
}

void Groups::ApplyZoom() {
  const int percent = zoom_->currentData().toInt();
  const int width = scroll_->viewport()->width();
  view_->setMinimumWidth(percent > 100 ? width * percent / 100 : 1);
}

void Groups::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  ApplyZoom();
}

bool Groups::eventFilter(QObject* watched, QEvent* event) {
  if (watched == view_ && event->type() == QEvent::MouseButtonDblClick) {
    auto* mouse = static_cast<QMouseEvent*>(event);
    if (mouse->button() == Qt::LeftButton) {
      OpenStripChart(mouse->position());
      return true;
    }
  }
  return QWidget::eventFilter(watched, event);
}

void Groups::OpenStripChart(QPointF point) {
  const StripTable& table = wb_.strips;
  const int strip = StripRowAt(QRectF(view_->rect()), table, point);
  if (strip < 1 || !table.Used(strip)) return;
  ShowRecordChart(wb_, this, table.StripRecord[strip]);
}

void Groups::Print() {
  Session& s = wb_.session;
  const StripTable& table = wb_.strips;
  RunPrintGraph(wb_, this, tr("Print Family/Group Display"),
                [&s, &table](ReportDocument& doc, const ReportOptions& options) {
                  GroupDisplayReport(doc, s, table, options);
                });
}

void Groups::SavePicture() { view_->SavePicture(); }

void OpenStripsWindow(Workbench& wb, QWidget* parent) {
  for (QWidget* w : QApplication::topLevelWidgets()) {
    if (auto* open = qobject_cast<Groups*>(w); open && open->isVisible()) {
      open->Reload();
      open->raise();
      open->activateWindow();
      return;
    }
  }
  ShowToolWindow(new Groups(wb, parent), &wb.session);
}

}  // namespace vintar
