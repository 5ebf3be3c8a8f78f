#include "screens/research/extract_screen.h"

#include <QFormLayout>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QVBoxLayout>

#include "screens/common/dialog_buttons.h"
#include "screens/common/progress_window.h"
#include "screens/common/qt_text.h"
#include "screens/project/file_dialogs.h"

namespace vintar {

Extract::Extract(Workbench& wb, const TabulationRun& run, const FilterBlock& block, QWidget* parent)
    : QDialog(parent), wb_(wb), params_(run.Params), block_(block) {
  setObjectName("Extract");
  setWindowTitle(QStringLiteral("Filter Charts from Current Project"));
  const ExtractScreen shown = ExtractScreenFor(wb_.session, run, block_);

  auto* layout = new QVBoxLayout(this);
  auto* lists = new QGridLayout;
  lists->addWidget(new QLabel(QStringLiteral("Selected Points"), this), 0, 0);
  lists->addWidget(new QLabel(QStringLiteral("Selected Divisions"), this), 0, 1);
  points_ = new QListWidget(this);
  points_->setObjectName("List1");
  for (const std::string& name : shown.Points) points_->addItem(Q(name));
  divisions_ = new QListWidget(this);
  divisions_->setObjectName("List2");
  for (const std::string& name : shown.Divisions) divisions_->addItem(Q(name));
  lists->addWidget(points_, 1, 0);
  lists->addWidget(divisions_, 1, 1);
  layout->addLayout(lists, 1);

  auto* form = new QFormLayout;
  title_ = new QLineEdit(Q(shown.Title), this);
  title_->setObjectName("TitleText");
  form->addRow(QStringLiteral("New Project &Title"), title_);
  layout->addLayout(form);
  layout->addWidget(OkCancelButtons(this));
  resize(480, 340);
}

FilterResult Extract::RunTo(const std::string& path) {
  BusyPointer busy;
  ProgressWindow window(this, QStringLiteral("Extraction Status"), QStringLiteral("&Stop"));
  return FilterToProject(wb_.session, wb_.research, params_, block_, path, L(title_->text().trimmed()),
                         /*overwrite=*/true, &window);
}

void Extract::accept() {
  Session& s = wb_.session;
  // The save dialogue asks before an existing file is replaced.
  SaveFile target(wb_, this, SaveFile::Purpose::SplitTarget);
  target.setWindowTitle(tr("Save Filtered Records As"));
  target.selectFile(QStringLiteral("filtered"));
  if (target.exec() != QDialog::Accepted) {
    s.DialogCancelled = kFalse;
    return;
  }
  if (RunTo(target.Path()).Done) QDialog::accept();
}

}  // namespace vintar
