#include "screens/places/export_screen.h"

#include <QDialogButtonBox>
#include <QFileDialog>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include "exchange/aaf.h"
#include "exchange/send_chart.h"
#include "screens/common/qt_text.h"

namespace vintar {

ExportChart::ExportChart(Workbench& wb, QWidget* parent) : QDialog(parent), wb_(wb) {
  setObjectName("ExportChart");
  setWindowTitle(tr("Export Chart"));
  const ProjectState& p = wb_.session.project;
  auto* layout = new QVBoxLayout(this);
  auto* title = new QLabel(Q(p.Header.Title), this);
  title->setObjectName("lblProject");
  layout->addWidget(title);

  auto* grid = new QGridLayout;
  optionAaf_ = new QRadioButton(tr("&AAF file (astrological exchange format)"), this);
  optionAaf_->setObjectName("OptionAAF");
  optionAaf_->setChecked(true);
  file_ = new QLineEdit(this);
  file_->setObjectName("txtFile");
  file_->setMinimumWidth(360);
  if (!p.ProjectPath.empty()) file_->setText(QPath(ReplaceExtension(p.ProjectPath, ".aaf")));
  browse_ = new QPushButton(tr("&Browse..."), this);
  browse_->setObjectName("btnBrowse");
  browse_->setAutoDefault(false);
  optionSend_ = new QRadioButton(tr("Send to &Halcyra"), this);
  optionSend_->setObjectName("OptionSendSF");
  sendFolder_ = new QLabel(this);
  sendFolder_->setObjectName("lblSendFolder");
  sendFolder_->setTextInteractionFlags(Qt::TextSelectableByMouse);
  grid->addWidget(optionAaf_, 0, 0, 1, 2);
  grid->addWidget(file_, 1, 0);
  grid->addWidget(browse_, 1, 1);
  grid->addWidget(optionSend_, 2, 0, 1, 2);
  grid->addWidget(sendFolder_, 3, 0, 1, 2);
  grid->setColumnMinimumWidth(0, 360);
  layout->addLayout(grid);

  auto* buttons = new QDialogButtonBox(this);
  QPushButton* ok = buttons->addButton(tr("&Export"), QDialogButtonBox::AcceptRole);
  ok->setObjectName("OKButton");
  ok->setDefault(true);
  QPushButton* cancel = buttons->addButton(tr("&Cancel"), QDialogButtonBox::RejectRole);
  cancel->setObjectName("CancelButton");
  layout->addWidget(buttons);

  connect(buttons, &QDialogButtonBox::accepted, this, [this] { Export(); });
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  connect(browse_, &QPushButton::clicked, this, &ExportChart::Browse);
  connect(optionAaf_, &QRadioButton::toggled, this, &ExportChart::OptionChanged);
  SetDocumentsFolder(DocumentsFolder());
  OptionChanged();
}

void ExportChart::SetDocumentsFolder(const std::string& folder) {
  documents_ = folder;
  sendFolder_->setText(QPath(EnsureBackslash(folder) + "Halcyra User Files/Charts/" + kSentChartFile));
}

void ExportChart::OptionChanged() {
  const bool aaf = optionAaf_->isChecked();
  file_->setEnabled(aaf);
  browse_->setEnabled(aaf);
  sendFolder_->setEnabled(!aaf);
}

void ExportChart::Browse() {
  const QString path = QFileDialog::getSaveFileName(this, tr("Export to AAF File"), file_->text(),
                                                    tr("AAF files (*.aaf);;All files (*)"));
  if (!path.isEmpty()) file_->setText(path);
}

std::string ExportChart::Export() {
  Session& s = wb_.session;
  std::string written;
  if (optionSend_->isChecked()) {
    written = SendChartToSibling(s, documents_);
  } else {
    const std::string path = PathOf(file_->text().trimmed());
    if (ExportAafFile(s, path)) {
      written = path;
      s.ShowMessage(AafExportSummary(s, path), kIconInformation, "Vintar");
    }
  }
  if (!written.empty()) accept();
  return written;
}

}  // namespace vintar
