#include "screens/rectify/peak_options.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "screens/common/qt_text.h"
#include "screens/rectify/rectify_support.h"

namespace vintar {

PeakOpt::PeakOpt(Workbench& wb, QWidget* parent) : QDialog(parent), wb_(wb) {
  setObjectName("PeakOpt");
  setWindowTitle(QStringLiteral("Peak Options"));
  const char* const labels[kPeakOptFields] = {
      QT_TR_NOOP("Minimum peak &width (bars):"),       QT_TR_NOOP("Peak &SD factor:"),
      QT_TR_NOOP("&Forced peak SD factor:"),            QT_TR_NOOP("&Peaks kept per graph:"),
      QT_TR_NOOP("Largest &gap in common peaks (bars):"), QT_TR_NOOP("Bars &added to common peaks:")};
  const PeakOptTexts texts = PeakOptFieldTexts(wb.session.prefs);
  auto* layout = new QVBoxLayout(this);
  auto* form = new QFormLayout;
  for (int i = 0; i < kPeakOptFields; ++i) {
    text1_[i] = new QLineEdit(Q(texts[i]), this);
    text1_[i]->setObjectName(ArrayName("Text1", i));
    form->addRow(tr(labels[i]), text1_[i]);
  }
  layout->addLayout(form);
  auto* box = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
  box->button(QDialogButtonBox::Ok)->setObjectName("OKButton");
  box->button(QDialogButtonBox::Cancel)->setObjectName("CancelButton");
  connect(box, &QDialogButtonBox::accepted, this, &PeakOpt::accept);
  connect(box, &QDialogButtonBox::rejected, this, &PeakOpt::reject);
  layout->addWidget(box);
}

PeakOptTexts PeakOpt::Texts() const {
  PeakOptTexts texts;
  for (int i = 0; i < kPeakOptFields; ++i) texts[i] = L(text1_[i]->text().trimmed());
  return texts;
}

void PeakOpt::accept() {
  const PeakOptTexts texts = Texts();
  const int bad = CheckPeakOpt(wb_.session, texts);
  if (bad >= 0) {
    text1_[bad]->setFocus();
    text1_[bad]->selectAll();
    return;
  }
  ApplyPeakOpt(wb_.session, texts);
  QDialog::accept();
}

}  // namespace vintar
