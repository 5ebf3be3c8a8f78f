// The preference screens: the settings of the whole program on one tabbed
// screen (PreferencesScreen: general, charts, places, rectification,
// reports, folders, and the symbol-font keys kept for older files) with the "Save Preferences" and "Restore
// Preferences" commands, the century and user ayanamsa screen (CenturyDef)
// and the house point selection of the user house system (HousePoint).
#pragma once

#include <QDialog>

#include "screens/common/workbench.h"

class QCheckBox;
class QComboBox;
class QDoubleSpinBox;
class QLabel;
class QLineEdit;
class QRadioButton;
class QSpinBox;

namespace vintar {

class PreferencesScreen : public QDialog {
  Q_OBJECT
 public:
  PreferencesScreen(Workbench& wb, QWidget* parent);

  // The widgets from the session's preferences, and back. Apply returns
  // false, after the message, when a value is refused.
  void Load();
  bool Apply();

 public slots:
  void accept() override;  // OKButton: Apply and close

 private:
  void SavePreferencesClicked();
  void RestorePreferencesClicked();

  Workbench& wb_;
  QCheckBox* saveOnExit_;
  QCheckBox* sound_;
  QCheckBox* prompt_;
  QCheckBox* monthFirst_;
  QCheckBox* autoAtlas_;
  QCheckBox* useACS_;
  QCheckBox* illinois_;
  QCheckBox* useOtherWP_;
  QLineEdit* userName_;
  QComboBox* reportFont_;
  QDoubleSpinBox* autoGraphMinWeight_;
  QComboBox* autoScoreMode_;
  QLineEdit* swissEph_;
  QRadioButton* cuaKeys_;
  QRadioButton* novaKeys_;
  QRadioButton* ampm_;
  QRadioButton* clock24_;
  QLineEdit* wordProc_;
  QComboBox* houses_;
  QComboBox* zodiac_;
  QComboBox* progressions_;
  QRadioButton* trueNode_;
  QRadioButton* meanNode_;
  QComboBox* pointOnCusp_;
  QSpinBox* whichCusp_;
  QLineEdit* userAyan_;
  QLineEdit* systemData_;
  QLineEdit* userData_;
  QSpinBox* minPeakWidth_;
  QDoubleSpinBox* peakSD_;
  QDoubleSpinBox* forcePeakSD_;
  QSpinBox* maxPeaks_;
  QSpinBox* maxGapBars_;
  QSpinBox* addCommonBars_;
  QDoubleSpinBox* dynInterval_;
  QSpinBox* dynStepDays_;
};

// One value on a small screen: the century of two-digit years ("Century
// Selection") or the Sidereal Vernal Point of the user ayanamsa ("Sidereal
// Ayanamsa"). OK stores it; a refused value keeps the screen open.
class CenturyDef : public QDialog {
  Q_OBJECT
 public:
  enum class Mode { Century, Ayanamsa };
  CenturyDef(Workbench& wb, QWidget* parent, Mode mode);
  QLineEdit* Value() const { return value_; }

 public slots:
  void accept() override;
  void reject() override;

 private:
  Workbench& wb_;
  Mode mode_;
  QLineEdit* value_;
};

// The point and the cusp it falls on of the user house system.
class HousePoint : public QDialog {
  Q_OBJECT
 public:
  HousePoint(Workbench& wb, QWidget* parent);
  void Choose(int point, int cusp);

 public slots:
  void accept() override;
  void reject() override;

 private:
  void ShowName();
  Workbench& wb_;
  QComboBox* point_;
  QSpinBox* cusp_;
  QLabel* name_;
};

}  // namespace vintar
