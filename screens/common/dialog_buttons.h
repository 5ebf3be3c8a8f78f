// The OK and Cancel buttons of a modal screen: named OKButton and
// CancelButton for tests, with accelerators, OK the default (Enter) and
// Cancel on Esc, wired to the dialog's accept and reject.
#pragma once

#include <QDialog>
#include <QDialogButtonBox>
#include <QPushButton>

namespace vintar {

inline QDialogButtonBox* OkCancelButtons(QDialog* dialog) {
  auto* box = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, dialog);
  QPushButton* ok = box->button(QDialogButtonBox::Ok);
  ok->setObjectName("OKButton");
  ok->setText(QObject::tr("&OK"));
  ok->setDefault(true);
  QPushButton* cancel = box->button(QDialogButtonBox::Cancel);
  cancel->setObjectName("CancelButton");
  cancel->setText(QObject::tr("&Cancel"));
  QObject::connect(box, &QDialogButtonBox::accepted, dialog, &QDialog::accept);
  QObject::connect(box, &QDialogButtonBox::rejected, dialog, &QDialog::reject);
  return box;
}

}  // namespace vintar
