#include "screens/rectify/graph_options.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSpinBox>
#include <QTabBar>
#include <QVBoxLayout>

#include <algorithm>

#include "core/parse.h"
#include "screens/common/qt_text.h"
#include "screens/rectify/rectify_support.h"

namespace vintar {

namespace {

QDialogButtonBox* OkCancel(QDialog* dialog) {
  auto* box = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, dialog);
  box->button(QDialogButtonBox::Ok)->setObjectName("OKButton");
  box->button(QDialogButtonBox::Cancel)->setObjectName("CancelButton");
  QObject::connect(box, &QDialogButtonBox::accepted, dialog, &QDialog::accept);
  QObject::connect(box, &QDialogButtonBox::rejected, dialog, &QDialog::reject);
  return box;
}

}  // namespace

// ---------------------------------------------------------------- RectOpt

RectOpt::RectOpt(Workbench& wb, QWidget* parent, const QString& title)
    : QDialog(parent), wb_(wb), options_(BeginGraphOptions(wb.rect.graphs)) {
  setObjectName("RectOpt");
  setWindowTitle(title);
  const Session& s = wb.session;
  auto* layout = new QVBoxLayout(this);

  graph_ = new QTabBar(this);
  graph_->setObjectName("Graph");
  for (int g = 1; g <= kShownGraphs; ++g) graph_->addTab(QStringLiteral("Graph &%1").arg(g));
  layout->addWidget(graph_);

  auto* settings = new QFormLayout;
  coords_ = new QComboBox(this);
  coords_->setObjectName("cmbCoords");
  for (int c = kGeocentric; c <= kHeliocentric; ++c)
    coords_->addItem(c < static_cast<int>(s.vocab.CoordName.size()) ? Q(s.vocab.CoordName[c]) : QString::number(c));
  dynType_ = new QComboBox(this);
  dynType_->setObjectName("cmbDynType");
  for (int t = kTransits; t <= kSolarArc; ++t)
    dynType_->addItem(t < static_cast<int>(s.vocab.DynamicMethodName.size()) ? Q(s.vocab.DynamicMethodName[t])
                                                                               : QString::number(t));
  method_ = new QLabel(this);
  method_->setObjectName("lblMethod");
  settings->addRow(tr("&Coordinates:"), coords_);
  settings->addRow(tr("&Dynamic type:"), dynType_);
  settings->addRow(tr("Method:"), method_);
  layout->addLayout(settings);

  auto* pointsBox = new QGroupBox(tr("Points"), this);
  auto* grid = new QGridLayout(pointsBox);
  const int otherNode = s.prefs.NodePoint() == kTrueNode ? kMeanNode : kTrueNode;
  int shown = 0;
  for (int p = 1; p <= kPoints; ++p) {
    planet_[p] = new QCheckBox(PointLabel(s, p), pointsBox);
    planet_[p]->setObjectName(ArrayName("Planet", p));
    if (p == otherNode) {
      planet_[p]->hide();
      continue;
    }
    grid->addWidget(planet_[p], shown % 8, shown / 8);
    ++shown;
  }
  layout->addWidget(pointsBox);

  auto* allRow = new QHBoxLayout;
  auto* allOn = new QPushButton(QStringLiteral("All  &On"), this);
  allOn->setObjectName("AllOn");
  auto* allOff = new QPushButton(QStringLiteral("All  O&ff"), this);
  allOff->setObjectName("AllOff");
  allRow->addWidget(allOn);
  allRow->addWidget(allOff);
  allRow->addStretch();
  layout->addLayout(allRow);
  layout->addWidget(OkCancel(this));

  auto setAll = [this](bool on) {
    Store();
    SetAllPoints(options_.Selection, Coordinate(), shown_, wb_.session.prefs, on);
    Load();
  };
  connect(allOn, &QPushButton::clicked, this, [setAll] { setAll(true); });
  connect(allOff, &QPushButton::clicked, this, [setAll] { setAll(false); });
  connect(graph_, &QTabBar::currentChanged, this, [this](int index) {
    Store();
    shown_ = index + 1;
    Load();
  });
  // A change of frame shows the points chosen in that frame.
  connect(coords_, &QComboBox::activated, this, [this](int index) {
    options_.Graph[shown_].Coordinate = static_cast<int16_t>(index + kGeocentric);
    Load();
  });
  connect(dynType_, &QComboBox::activated, this, [this](int index) {
    SetGraphDynamicType(wb_.session, options_.Graph[shown_], index);
    ShowMethod();
  });

  shown_ = std::clamp<int>(options_.OptionShowing, 0, kShownGraphs - 1) + 1;
  graph_->blockSignals(true);
  graph_->setCurrentIndex(shown_ - 1);
  graph_->blockSignals(false);
  Load();
}

int RectOpt::ShownGraph() const { return shown_; }

void RectOpt::ShowGraph(int graph) { graph_->setCurrentIndex(std::clamp(graph, 1, kShownGraphs) - 1); }

int RectOpt::Coordinate() const { return GraphCoordinate(options_.Graph[shown_]); }

void RectOpt::Store() {
  const Preferences& prefs = wb_.session.prefs;
  const int c = Coordinate();
  auto& set = options_.Selection[c][shown_];
  for (int p = 1; p <= kPoints; ++p)
    if (p != kTrueNode && p != kMeanNode) set[p] = planet_[p]->isChecked() ? kTrue : kFalse;
  SetNodeSelected(options_.Selection, c, shown_, prefs, planet_[prefs.NodePoint()]->isChecked());
}

void RectOpt::Load() {
  const GraphRecord& r = options_.Graph[shown_];
  coords_->setCurrentIndex(GraphCoordinate(r) - kGeocentric);
  dynType_->setCurrentIndex(ClampInteger(r.DynamicType, kTransits, kSolarArc));
  const auto& set = options_.Selection[Coordinate()][shown_];
  for (int p = 1; p <= kPoints; ++p) planet_[p]->setChecked(set[p] != 0);
  ShowMethod();
}

void RectOpt::ShowMethod() {
  const GraphRecord& r = options_.Graph[shown_];
  const auto& names = wb_.session.vocab.ProgressionMethodName;
  const bool progressed = r.DynamicType == kSecondary || r.DynamicType == kTertiary;
  method_->setText(progressed && r.ProgressionMethod >= 1 && r.ProgressionMethod < static_cast<int>(names.size())
                       ? Q(names[r.ProgressionMethod])
                       : QString());
}

void RectOpt::accept() {
  Store();
  options_.OptionShowing = static_cast<int16_t>(shown_ - 1);
  ApplyGraphOptions(wb_.session, wb_.rect.graphs, options_);
  QDialog::accept();
}

// ---------------------------------------------------------------- SelHarms

SelHarms::SelHarms(Workbench& wb, QWidget* parent) : QDialog(parent), wb_(wb) {
  setObjectName("SelHarms");
  setWindowTitle(QStringLiteral("Master Harmonic"));
  const GraphState& graphs = wb.rect.graphs;
  auto* layout = new QVBoxLayout(this);
  auto* form = new QFormLayout;
  auto spin = [this](const char* name, int value) {
    auto* box = new QSpinBox(this);
    box->setObjectName(name);
    box->setRange(kMinHarmonic, kMaxHarmonic);
    box->setValue(ClampHarmonic(value));
    return box;
  };
  graph2_ = spin("Graph 2", graphs.Harmonic2 != 0 ? graphs.Harmonic2 : graphs.MasterHarmonic1);
  graph3_ = spin("Graph 3", graphs.Harmonic3 != 0 ? graphs.Harmonic3 : graphs.MasterHarmonic1);
  form->addRow(tr("Graph &2:"), graph2_);
  form->addRow(tr("Graph &3:"), graph3_);
  layout->addWidget(new QLabel(tr("Master harmonic (graph 1): %1").arg(graphs.MasterHarmonic1), this));
  layout->addLayout(form);
  auto* reset = new QPushButton(tr("&Reset"), this);
  reset->setObjectName("Reset");
  connect(reset, &QPushButton::clicked, this, &SelHarms::Reset);
  auto* buttons = OkCancel(this);
  buttons->addButton(reset, QDialogButtonBox::ResetRole);
  layout->addWidget(buttons);
}

void SelHarms::Reset() {
  int h2 = 0, h3 = 0;
  ResetHarmonics(wb_.rect.graphs, h2, h3);
  graph2_->setValue(h2);
  graph3_->setValue(h3);
}

void SelHarms::accept() {
  ApplyHarmonics(wb_.session, wb_.rect.graphs, graph2_->value(), graph3_->value());
  QDialog::accept();
}

}  // namespace vintar
