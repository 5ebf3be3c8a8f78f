#include "screens/groups/grp_auto.h"

#include <QApplication>
#include <QCloseEvent>
#include <QFileDialog>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include "core/preferences.h"
#include "core/text.h"
#include "groups/interpretation.h"
#include "screens/common/progress_window.h"
#include "screens/common/qt_text.h"
#include "screens/groups/group_search_screen.h"

namespace vintar {

namespace {

// The report's two status lines go to the screen's labels as well as to the
// status window, whose Stop button (or the screen's own flag) ends the run.
class ReportProgress : public Progress {
 public:
  ReportProgress(ProgressWindow& window, QLabel* main, QLabel* step, const bool& stop)
      : window_(window), main_(main), step_(step), stop_(stop) {}
  void Caption(const std::string& text) override {
    main_->setText(Q(text));
    window_.Caption(text);
  }
  void Status(const std::string& text) override {
    step_->setText(Q(text));
    window_.Status(text);
  }
  void Fraction(double done) override { window_.Fraction(done); }
  bool Cancelled() override { return window_.Cancelled() || stop_; }

 private:
  ProgressWindow& window_;
  QLabel* main_;
  QLabel* step_;
  const bool& stop_;
};

QString Paragraphs(const std::string& text) {
  QString q = Q(text);
  q.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
  return q.trimmed();
}

}  // namespace

GrpAuto::GrpAuto(Workbench& wb, QWidget* parent, int selectedMatch)
    : QWidget(parent), wb_(wb), selectedMatch_(selectedMatch) {
  setObjectName("GrpAuto");
  setWindowTitle(Q(kGroupReportCaption));
  Session& s = wb.session;
  descriptions_ = GroupTypeDescriptions(s);

  auto* layout = new QVBoxLayout(this);
  if (selectedMatch_ > 0) {
    auto* which = new QLabel(tr("Report on match %1 of the search").arg(selectedMatch_), this);
    which->setObjectName("lblMatch");
    layout->addWidget(which);
  }
  auto* typeBox = new QGroupBox(tr("Group type"), this);
  typeBox->setObjectName("optType");
  auto* typeRow = new QHBoxLayout(typeBox);
  auto* typeColumn = new QVBoxLayout;
  for (int i = 0; i < kGroupTypes; ++i) {
    types_[i] = new QRadioButton(QString::fromLatin1(GroupTypes()[i].Option), typeBox);
    types_[i]->setObjectName(QStringLiteral("optType_%1").arg(i));
    typeColumn->addWidget(types_[i]);
    connect(types_[i], &QRadioButton::toggled, this, [this](bool on) {
      if (on) TypeChanged();
    });
  }
  typeColumn->addStretch();
  typeRow->addLayout(typeColumn);
  description_ = new QLabel(typeBox);
  description_->setObjectName("lblDescription");
  description_->setWordWrap(true);
  description_->setAlignment(Qt::AlignTop | Qt::AlignLeft);
  description_->setMinimumWidth(340);
  typeRow->addWidget(description_, 1);
  layout->addWidget(typeBox, 1);

  auto* wpBox = new QGroupBox(tr("Word processor"), this);
  wpBox->setObjectName("optWP");
  auto* wpGrid = new QVBoxLayout(wpBox);
  wordPad_ = new QRadioButton(tr("&Default for RTF documents"), wpBox);
  wordPad_->setObjectName("optWP_0");
  otherWP_ = new QRadioButton(tr("O&ther:"), wpBox);
  otherWP_->setObjectName("optWP_1");
  path_ = new QLineEdit(wpBox);
  path_->setObjectName("txtPath");
  browse_ = new QPushButton(tr("&Browse..."), wpBox);
  browse_->setObjectName("btnBrowse");
  browse_->setAutoDefault(false);
  connect(browse_, &QPushButton::clicked, this, &GrpAuto::Browse);
  auto* otherRow = new QHBoxLayout;
  otherRow->addWidget(otherWP_);
  otherRow->addWidget(path_, 1);
  otherRow->addWidget(browse_);
  wpGrid->addWidget(wordPad_);
  wpGrid->addLayout(otherRow);
  layout->addWidget(wpBox);

  mainLine_ = new QLabel(this);
  mainLine_->setObjectName("lblStatus_1");
  stepLine_ = new QLabel(this);
  stepLine_->setObjectName("lblStatus_0");
  layout->addWidget(mainLine_);
  layout->addWidget(stepLine_);

  auto* buttons = new QHBoxLayout;
  report_ = new QPushButton(tr("Start Pattern Search and View Report"), this);
  report_->setObjectName("btnReport");
  report_->setDefault(true);
  stopButton_ = new QPushButton(tr("&Stop"), this);
  stopButton_->setObjectName("btnStop");
  stopButton_->setEnabled(false);
  quit_ = new QPushButton(tr("&Quit"), this);
  quit_->setObjectName("btnQuit");
  for (QPushButton* b : {report_, stopButton_, quit_}) {
    b->setAutoDefault(false);
    buttons->addWidget(b);
  }
  buttons->insertStretch(1);
  connect(report_, &QPushButton::clicked, this, &GrpAuto::Report);
  connect(stopButton_, &QPushButton::clicked, this, &GrpAuto::Stop);
  connect(quit_, &QPushButton::clicked, this, &QWidget::close);
  layout->addLayout(buttons);

  const WordProcessorChoice choice = LoadWordProcessorChoice(s);
  path_->setText(Q(choice.Path));
  (choice.UseOther ? otherWP_ : wordPad_)->setChecked(true);
  types_[0]->setChecked(true);
  resize(640, 460);
}

int GrpAuto::GroupType() const {
  for (int i = 0; i < kGroupTypes; ++i)
    if (types_[i]->isChecked()) return i;
  return 0;
}

void GrpAuto::TypeChanged() { description_->setText(Paragraphs(descriptions_[GroupType()])); }

void GrpAuto::Browse() {
  const QString file = QFileDialog::getOpenFileName(this, QString::fromLatin1(kWordProcessorDialogTitle),
                                                    path_->text(), QString::fromLatin1(kWordProcessorFilter));
  if (file.isEmpty()) return;
  path_->setText(file);
  otherWP_->setChecked(true);
}

bool GrpAuto::Report() {
  if (running_) return false;
  Session& s = wb_.session;
  ApplyWordProcessorChoice(s, otherWP_->isChecked(), L(path_->text()));
  GroupReportOptions options;
  options.GroupType = GroupType();
  options.SelectedMatch = selectedMatch_;
  options.UserName = Trim(GetPreferenceText(s, "UserName", ""));
  if (options.UserName.empty()) options.UserName = "Vintar User";
  options.OpenWordProcessor = true;
  options.Launch = wb_.notepad.launch;

  stop_ = false;
  running_ = true;
  for (QWidget* w : {static_cast<QWidget*>(report_), static_cast<QWidget*>(quit_), static_cast<QWidget*>(browse_)})
    w->setEnabled(false);
  stopButton_->setEnabled(true);
  {
    BusyPointer busy;
    ProgressWindow window(this, Q(kGroupReportCaption), tr("&Stop"));
    ReportProgress progress(window, mainLine_, stepLine_, stop_);
    outcome_ = WriteGroupReport(s, wb_.group, options, &progress);
  }
  running_ = false;
  stop_ = false;
  for (QWidget* w : {static_cast<QWidget*>(report_), static_cast<QWidget*>(quit_), static_cast<QWidget*>(browse_)})
    w->setEnabled(true);
  stopButton_->setEnabled(false);
  // The full report ran its own searches: an open search screen shows them.
  if (selectedMatch_ == 0)
    for (QWidget* w : QApplication::topLevelWidgets())
      if (auto* search = qobject_cast<GroupSearch*>(w)) search->ShowState(wb_.group.LastParams);
  mainLine_->setText(Q(outcome_.MainLine));
  stepLine_->setText(Q(outcome_.StepLine));
  if (outcome_.Result == GroupReportResult::NoFile)
    s.ShowMessage("The interpretation files (general.int and " + std::string(GroupTypes()[options.GroupType].File) +
                      ") or the position file of the project could not be read.",
                  kIconStop, "Cannot Write Report");
  return outcome_.Result == GroupReportResult::Written;
}

void GrpAuto::Stop() { stop_ = true; }

void GrpAuto::closeEvent(QCloseEvent* event) {
  if (running_) {
    stop_ = true;
    event->ignore();
    return;
  }
  QWidget::closeEvent(event);
}

}  // namespace vintar
