// The natal details of the project (NatalEntry): the person's name, birth
// date, time (or "Unknown" with the two limits of the rectification
// window), zone and place. OK checks every field and stores them in the
// project's header.
#pragma once

#include <QDialog>

#include "core/record_edit.h"
#include "screens/common/workbench.h"

class QLineEdit;

namespace vintar {

class EntryKeys;

class NatalEntry : public QDialog {
  Q_OBJECT
 public:
  NatalEntry(Workbench& wb, QWidget* parent);

  // The fields as typed.
  NatalFields Fields() const;
  void SetFields(const NatalFields& fields);
  // Looks the place up in the atlas and fills place, coordinates and the
  // zone in force at the birth date and time (noon when it is unknown).
  void LookUpPlace();

 public slots:
  void accept() override;  // OKButton
  void reject() override;  // CancelButton

 private:
  QLineEdit* AddEdit(const char* name);
  void LeaveZoneMnemonic();
  void MarkEdited();

  Workbench& wb_;
  NatalFields loaded_;
  int16_t editedAtOpen_ = 0;
  QLineEdit* name_;
  QLineEdit* date_;
  QLineEdit* time_;
  QLineEdit* zoneMnemonic_;
  QLineEdit* zoneTime_;
  QLineEdit* place_;
  QLineEdit* latitude_;
  QLineEdit* longitude_;
  QLineEdit* earliest_;
  QLineEdit* latest_;
  EntryKeys* keys_;
};

}  // namespace vintar
