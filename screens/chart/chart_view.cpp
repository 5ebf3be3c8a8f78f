#include "screens/chart/chart_view.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMouseEvent>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>

#include <cmath>

#include "core/calendar.h"
#include "core/record_edit.h"
#include "screens/chart/chart_adjust_screen.h"
#include "screens/chart/chart_opt.h"
#include "screens/chart/keyword_edit.h"
#include "screens/common/drawing_view.h"
#include "screens/common/qt_text.h"

namespace vintar {
namespace {

constexpr int kPlayMilliseconds = 200;
constexpr double kDragPixelsPerStep = 8.0;

QString Utf8(const std::vector<std::string>& table, int index) {
  return index >= 0 && index < static_cast<int>(table.size()) ? QString::fromUtf8(table[index]) : QString();
}

int RecordCount(const Session& s) {
  return std::min<int>(s.project.Header.RecordCount, static_cast<int>(s.project.Events.size()) - 1);
}

QToolButton* PlayButton(QWidget* parent, const char* name, const QString& text, const QString& tip,
                        const QKeySequence& keys = {}) {
  auto* b = new QToolButton(parent);
  b->setObjectName(name);
  b->setText(text);
  b->setToolTip(keys.isEmpty() ? tip : tip + " (" + keys.toString(QKeySequence::NativeText) + ")");
  if (!keys.isEmpty()) b->setShortcut(keys);
  b->setToolButtonStyle(Qt::ToolButtonTextOnly);
  b->setMinimumWidth(34);
  return b;
}

}  // namespace

WheelData ChartWheelData(const Session& s, const DynamicChartState& state, const std::vector<ChartAspect>& aspects) {
  WheelData d;
  const auto& lon = s.charts.Longitude[kGeocentric];
  const auto& speed = s.charts.LongSpeed[kGeocentric];
  const ChartSlot& radix = s.charts.Slots[kChartRadixSlot];
  const DynOptions& record = state.Options.Records[std::clamp(state.DynamicType, 0, kDynOptionTypes - 1)];

  d.HasHouses = true;
  d.Cusps = radix.Cusps;
  d.Ascendant = lon[kChartRadixSlot][kAscendant];
  d.Midheaven = lon[kChartRadixSlot][kMidheaven];
  for (int sign = 1; sign <= 12; ++sign) d.SignGlyphs[sign] = Utf8(s.vocab.UnicodeSignGlyph, sign);

  auto point = [&](int slot, int p) {
    WheelPoint w;
    w.Point = p;
    w.Longitude = lon[slot][p];
    w.Glyph = Utf8(s.vocab.UnicodePointGlyph, p);
    if (w.Glyph.isEmpty()) w.Glyph = Q(s.vocab.PointShort.size() > size_t(p) ? s.vocab.PointShort[p] : "");
    w.Retrograde = p < kAscendant && speed[slot][p] < 0.0;
    return w;
  };
  // Inside: the planets and the live node, and whatever else is aspected.
  for (int p = 1; p <= kPoints; ++p) {
    const bool planet = (p == kMoon || (p >= kSun && p <= kChiron) || p == s.vocab.NodePoint);
    const bool aspected = record.RadixPoints[p] && p != kAscendant && p != kMidheaven;
    if ((planet || aspected) && lon[kChartRadixSlot][p] >= 0.0) d.Inner.push_back(point(kChartRadixSlot, p));
  }
  // Outside: the moving points of the options.
  for (int p = 1; p <= kPoints; ++p)
    if (record.DynamicPoints[p] && lon[kChartDynamicSlot][p] >= 0.0) d.Outer.push_back(point(kChartDynamicSlot, p));
  for (const ChartAspect& a : aspects)
    d.Aspects.push_back({lon[kChartDynamicSlot][a.Moving], lon[kChartRadixSlot][a.Radix], a.Angle, a.Orb});
  d.OrbLimit = record.Orb;

  const int type = std::clamp(state.DynamicType, 0, 3);
  const std::string typeName = type < static_cast<int>(s.vocab.DynamicMethodName.size())
                                   ? s.vocab.DynamicMethodName[type]
                                   : std::string();
  d.Title = Q(radix.ChartName) + "\n" + Q(typeName) + "\n" + Q(ChartDateText(s, state.JD));
  d.Caption = "Age " + Q(ChartAgeText(state.JD, radix.ChartJD));
  return d;
}

ChartView::ChartView(Workbench& wb, QWidget* parent, const ChartAdjustState& radix, std::optional<RadixLabel> label)
    : QWidget(parent), wb_(wb), radix_(radix), label_(std::move(label)) {
  setObjectName("ChartView");
  Session& s = wb_.session;
  setWindowTitle(tr("Dynamic Chart - %1").arg(Q(label_ ? label_->Name : s.project.Header.Name)));
  keywords_ = LoadKeywords(s);
  state_.Options = LoadChartOptions(s);
  state_.Method = s.prefs.Progressions;
  state_.Harmonic = DefaultChartHarmonic(state_.Options.Records[kTransits]);
  CastOwnRadix();

  auto* outer = new QHBoxLayout(this);

  // The wheel with its drag handle.
  auto* left = new QVBoxLayout;
  wheel_ = new DrawingView(this, &s);
  wheel_->setObjectName("ChartWheel");
  wheel_->SetPreferredSize(QSizeF(640, 640));
  wheel_->SetSaveName("chart.png");
  wheel_->setMinimumSize(360, 360);
  wheel_->installEventFilter(this);
  left->addWidget(wheel_, 1);
  drag_ = new QLabel(tr("\u25C0  Drag here (or on the wheel) to move the date  \u25B6"), this);
  drag_->setObjectName("lblDrag");
  drag_->setAlignment(Qt::AlignCenter);
  drag_->setFrameShape(QFrame::StyledPanel);
  drag_->setCursor(Qt::SizeHorCursor);
  drag_->installEventFilter(this);
  left->addWidget(drag_);
  outer->addLayout(left, 3);

  auto* right = new QVBoxLayout;
  auto* dateBox = new QGroupBox(tr("Date"), this);
  auto* dateForm = new QFormLayout(dateBox);
  date_ = new QLineEdit(dateBox);
  date_->setObjectName("StartDate");
  dateForm->addRow(tr("&Date:"), date_);
  age_ = new QLabel(dateBox);
  age_->setObjectName("lblAge");
  dateForm->addRow(tr("Age:"), age_);
  auto* controls = new QHBoxLayout;
  controls->setSpacing(2);
  QToolButton* fastBack = PlayButton(dateBox, "FastBackButton", "\u25C0\u25C0", tr("Ten steps back"),
                                     QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Left));
  QToolButton* stepBack =
      PlayButton(dateBox, "StepBackButton", "\u25C0", tr("One step back"), QKeySequence(Qt::CTRL | Qt::Key_Left));
  QToolButton* playBack = PlayButton(dateBox, "PlayBackButton", tr("Play &Back"), tr("Step back until stopped"));
  QToolButton* stop = PlayButton(dateBox, "StopButton", tr("&Stop"), tr("Stop playing"));
  QToolButton* play = PlayButton(dateBox, "PlayButton", tr("&Play"), tr("Step forward until stopped"));
  QToolButton* stepForward = PlayButton(dateBox, "StepForwardButton", "\u25B6", tr("One step forward"),
                                        QKeySequence(Qt::CTRL | Qt::Key_Right));
  QToolButton* fastForward = PlayButton(dateBox, "FastForwardButton", "\u25B6\u25B6", tr("Ten steps forward"),
                                        QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Right));
  for (QToolButton* b : {fastBack, stepBack, playBack, stop, play, stepForward, fastForward}) controls->addWidget(b);
  dateForm->addRow(controls);
  right->addWidget(dateBox);

  auto* kindForm = new QFormLayout;
  method_ = new QComboBox(this);
  method_->setObjectName("DynMethod");
  for (int t = 0; t < kDynOptionTypes; ++t)
    method_->addItem(t < static_cast<int>(s.vocab.DynamicMethodName.size()) ? Q(s.vocab.DynamicMethodName[t])
                                                                             : QString::number(t));
  kindForm->addRow(tr("&Moving chart:"), method_);
  harmonic_ = new QComboBox(this);
  harmonic_->setObjectName("AspectHarmonic");
  for (const HarmonicChoice& c : ChartHarmonicChoices()) harmonic_->addItem(c.Name, c.Harmonic);
  harmonic_->setCurrentIndex(std::max(0, harmonic_->findData(state_.Harmonic)));
  kindForm->addRow(tr("As&pects:"), harmonic_);
  right->addLayout(kindForm);

  aspectList_ = new QListWidget(this);
  aspectList_->setObjectName("AspectTable");
  aspectList_->setMinimumHeight(90);
  right->addWidget(new QLabel(tr("Aspects between the wheels:"), this));
  right->addWidget(aspectList_, 1);
  keyBox_ = new QLabel(this);
  keyBox_->setObjectName("KeyBox");
  keyBox_->setWordWrap(true);
  keyBox_->setFrameShape(QFrame::StyledPanel);
  keyBox_->setAlignment(Qt::AlignLeft | Qt::AlignTop);
  keyBox_->setMinimumHeight(56);
  right->addWidget(keyBox_);

  auto* eventsLabel = new QLabel(tr("&Events:"), this);
  events_ = new QListWidget(this);
  events_->setObjectName("EventList");
  eventsLabel->setBuddy(events_);
  right->addWidget(eventsLabel);
  right->addWidget(events_, 2);
  enabled_ = new QCheckBox(tr("E&nabled"), this);
  enabled_->setObjectName("chkEnabled");
  right->addWidget(enabled_);

  auto* buttons = new QHBoxLayout;
  auto* adjust = new QPushButton(tr("&Adjust..."), this);
  adjust->setObjectName("AdjustButton");
  auto* options = new QPushButton(tr("&Options..."), this);
  options->setObjectName("btnOptions");
  auto* keywords = new QPushButton(tr("&Keywords..."), this);
  keywords->setObjectName("btnKeywords");
  auto* close = new QPushButton(tr("&Close"), this);
  close->setObjectName("CloseButton");
  if (label_) {
    adjust->setEnabled(false);
    adjust->setToolTip(tr("Only the project's birth chart is adjusted here."));
  }
  for (QPushButton* b : {adjust, options, keywords, close}) {
    b->setAutoDefault(false);
    buttons->addWidget(b);
  }
  right->addLayout(buttons);
  auto* rightPanel = new QWidget(this);
  rightPanel->setLayout(right);
  rightPanel->setMinimumWidth(330);
  rightPanel->setMaximumWidth(440);
  outer->addWidget(rightPanel, 1);

  connect(fastBack, &QToolButton::clicked, this, [this] { Step(-1, true); });
  connect(stepBack, &QToolButton::clicked, this, [this] { Step(-1); });
  connect(playBack, &QToolButton::clicked, this, [this] { Play(-1); });
  connect(stop, &QToolButton::clicked, this, &ChartView::Stop);
  connect(play, &QToolButton::clicked, this, [this] { Play(1); });
  connect(stepForward, &QToolButton::clicked, this, [this] { Step(1); });
  connect(fastForward, &QToolButton::clicked, this, [this] { Step(1, true); });
  connect(&timer_, &QTimer::timeout, this, [this] { Step(playDirection_); });
  connect(date_, &QLineEdit::editingFinished, this, &ChartView::DateTyped);
  connect(method_, &QComboBox::currentIndexChanged, this, [this](int index) {
    state_.DynamicType = index;
    Recompute();
  });
  connect(harmonic_, &QComboBox::currentIndexChanged, this, [this](int index) {
    state_.Harmonic = harmonic_->itemData(index).toInt();
    Recompute();
  });
  connect(aspectList_, &QListWidget::currentRowChanged, this, [this] { ShowKeywords(); });
  connect(events_, &QListWidget::currentRowChanged, this, &ChartView::EventChosen);
  connect(enabled_, &QCheckBox::clicked, this, &ChartView::EnabledClicked);
  connect(adjust, &QPushButton::clicked, this, &ChartView::OpenAdjust);
  connect(options, &QPushButton::clicked, this, &ChartView::OpenOptions);
  connect(keywords, &QPushButton::clicked, this, &ChartView::OpenKeywords);
  connect(close, &QPushButton::clicked, this, &QWidget::close);
  timer_.setInterval(kPlayMilliseconds);

  wheel_->SetPaint([this](QPainter& painter, const QRectF& area) {
    PaintChartWheel(painter, area, wheelData_);
  });

  FillEvents();
  // Open at the first enabled event, else today. A record's chart opens at
  // the first one after the day of its birth (its own event is skipped).
  double start = JulDay(s.clock.Day, s.clock.Month, s.clock.Year) + 0.5;
  const double after = label_ ? s.charts.Slots[kChartRadixSlot].ChartJD + 1.0 : -1e300;
  for (int n = 1; n <= RecordCount(s); ++n)
    if (s.project.Events[n].Enabled && s.project.Events[n].JulianDay > after) {
      start = s.project.Events[n].JulianDay;
      break;
    }
  SetDate(start);
  resize(1060, 720);
}

void ChartView::CastOwnRadix() {
  if (label_) CastRadix(wb_.session, radix_, *label_);
  else CastRadix(wb_.session, radix_);
}

void ChartView::Recompute() {
  Session& s = wb_.session;
  // Several charts may be open at once, all sharing the radix slot.
  CastOwnRadix();
  DynamicChart(s, state_, state_.JD);
  aspects_ = ChartAspects(s, state_);
  wheelData_ = ChartWheelData(s, state_, aspects_);
  rejectedDate_.clear();
  date_->setText(Q(ChartDateText(s, state_.JD)));
  age_->setText(Q(ChartAgeText(state_.JD, s.charts.Slots[kChartRadixSlot].ChartJD)));
  ShowAspects();
  wheel_->update();
}

void ChartView::ShowAspects() {
  const int row = aspectList_->currentRow();
  {
    QSignalBlocker block(aspectList_);
    aspectList_->clear();
    for (const ChartAspect& a : aspects_) aspectList_->addItem(Q(ChartAspectLine(wb_.session, a)));
    if (!aspects_.empty()) aspectList_->setCurrentRow(std::clamp(row, 0, static_cast<int>(aspects_.size()) - 1));
  }
  ShowKeywords();
}

void ChartView::ShowKeywords() {
  const int row = aspectList_->currentRow();
  if (row < 0 || row >= static_cast<int>(aspects_.size())) {
    keyBox_->setText(aspects_.empty() ? tr("No aspects within the orb.") : QString());
    return;
  }
  QStringList lines;
  for (const std::string& line : HitKeywordLines(wb_.session, keywords_, aspects_[row])) lines << Q(line);
  keyBox_->setText(lines.isEmpty() ? Q(ChartAspectLine(wb_.session, aspects_[row])) : lines.join('\n'));
}

void ChartView::FillEvents() {
  const Session& s = wb_.session;
  QSignalBlocker block(events_);
  events_->clear();
  for (int n = 1; n <= RecordCount(s); ++n) {
    auto* item = new QListWidgetItem(Q(EventListLine(s, n)), events_);
    if (!s.project.Events[n].Enabled) item->setForeground(palette().color(QPalette::Disabled, QPalette::Text));
  }
  enabled_->setEnabled(events_->count() > 0);
}

void ChartView::SetDate(double jd) {
  if (!std::isfinite(jd)) return;
  state_.JD = jd;
  Recompute();
  SelectNearestEvent();
}

void ChartView::SelectNearestEvent() {
  const int nearest = EventNearestDate(wb_.session, state_.JD);
  syncing_ = true;
  events_->setCurrentRow(nearest - 1);
  syncing_ = false;
  const int n = events_->currentRow() + 1;
  QSignalBlocker block(enabled_);
  enabled_->setChecked(n >= 1 && wb_.session.project.Events[n].Enabled);
}

void ChartView::EventChosen(int row) {
  const Session& s = wb_.session;
  const int n = row + 1;
  if (n < 1 || n > RecordCount(s)) return;
  {
    QSignalBlocker block(enabled_);
    enabled_->setChecked(s.project.Events[n].Enabled != 0);
  }
  if (syncing_) return;
  state_.JD = s.project.Events[n].JulianDay;
  Recompute();
}

void ChartView::EnabledClicked(bool enabled) {
  const int n = events_->currentRow() + 1;
  if (!SetRecordEnabled(wb_.session.project, n, enabled)) return;
  QListWidgetItem* item = events_->item(n - 1);
  item->setForeground(enabled ? palette().color(QPalette::Text) : palette().color(QPalette::Disabled, QPalette::Text));
  wb_.Changed();
}

void ChartView::DateTyped() {
  const QString text = date_->text();
  if (text == Q(ChartDateText(wb_.session, state_.JD)) || text == rejectedDate_) return;
  double jd = 0.0;
  if (!ParseChartDate(wb_.session, L(text), jd)) {
    // The text stays for correcting; the chart keeps its date.
    rejectedDate_ = text;
    return;
  }
  SetDate(jd);
}

void ChartView::Step(int direction, bool fast) {
  SetDate(StepDate(state_.JD, state_.Options.StepDays, direction, fast));
}

void ChartView::Play(int direction) {
  playDirection_ = direction > 0 ? 1 : -1;
  timer_.start();
}

void ChartView::Stop() { timer_.stop(); }

void ChartView::OpenAdjust() {
  if (label_) return;
  Stop();
  ChartAdjust dialog(wb_, this, radix_);
  if (dialog.exec() == QDialog::Accepted) radix_ = dialog.State();
  Recompute();  // recasts the radix
}

void ChartView::OpenOptions() {
  Stop();
  ChartOpt dialog(wb_, this, state_.Options, state_.DynamicType);
  if (dialog.exec() != QDialog::Accepted) return;
  state_.Options = dialog.Options();
  Recompute();
}

void ChartView::OpenKeywords() {
  KeyWordEdit dialog(wb_, this);
  if (dialog.exec() != QDialog::Accepted) return;
  keywords_ = dialog.Table();
  ShowKeywords();
}

bool ChartView::eventFilter(QObject* watched, QEvent* event) {
  if (watched != wheel_ && watched != drag_) return QWidget::eventFilter(watched, event);
  switch (event->type()) {
    case QEvent::MouseButtonPress:
      if (static_cast<QMouseEvent*>(event)->button() == Qt::LeftButton) {
        Stop();
        dragging_ = true;
        dragX_ = static_cast<QMouseEvent*>(event)->position().x();
      }
      break;
    case QEvent::MouseMove:
      if (auto* mouse = static_cast<QMouseEvent*>(event); dragging_ && (mouse->buttons() & Qt::LeftButton)) {
        // Rightwards moves the date on, a step for every few pixels.
        const double moved = mouse->position().x() - dragX_;
        const int steps = static_cast<int>(moved / kDragPixelsPerStep);
        if (steps != 0) {
          dragX_ += steps * kDragPixelsPerStep;
          SetDate(state_.JD + steps * static_cast<double>(StepDaysValue(state_.Options.StepDays)));
        }
      }
      break;
    case QEvent::MouseButtonRelease:
      dragging_ = false;
      break;
    default:
      break;
  }
  return QWidget::eventFilter(watched, event);
}

void ChartView::closeEvent(QCloseEvent* event) {
  Stop();
  event->accept();
}

}  // namespace vintar
