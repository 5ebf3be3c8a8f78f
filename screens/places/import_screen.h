// The import screen: a source file of one of the import kinds (charts in
// the exchange format, delimited text by one of the ASCII formats, a simple
// events list), the new project's folder and name, and the transfer, after
// which the new project is opened. The folders and names are remembered
// between runs.
#pragma once

#include <QDialog>

#include <string>

#include "exchange/import_screen.h"
#include "screens/common/workbench.h"

class QButtonGroup;
class QComboBox;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;
class QRadioButton;

namespace vintar {

class Import : public QDialog {
  Q_OBJECT
 public:
  Import(Workbench& wb, QWidget* parent);

  void SetKind(ImportKind kind);
  ImportKind Kind() const;
  // A source file chosen: it goes into the source field and its name, as a
  // project name, into the destination name.
  void ChooseSource(const QString& path);
  // The Transfer button: the checks, the run, and the new project opened.
  // False when a check failed or nothing was made (message shown).
  bool Transfer();
  // The project made by the last transfer (empty when none).
  const std::string& ImportedPath() const { return imported_; }
  // Fills the ASCII format list afresh from the format definitions.
  void FillAsciiFormats();
  QComboBox* AsciiFormats() const { return ascii_; }

 public slots:
  void done(int result) override;

 private:
  void BrowseSource();
  void BrowseDestination();
  void EditFormats();
  void KindChanged();

  Workbench& wb_;
  ImportSettings settings_;
  QButtonGroup* kinds_;
  QComboBox* ascii_;
  QPushButton* edit_;
  QLineEdit* source_;
  QLineEdit* destDir_;
  QLineEdit* destName_;
  QPushButton* transfer_;
  QPushButton* quit_;
  bool formatsAvailable_ = false;
  std::string imported_;
};

// The editor of the ASCII formats: the definitions as text, stored when
// every one of them is valid.
class AsciiFormatEditor : public QDialog {
  Q_OBJECT
 public:
  AsciiFormatEditor(Workbench& wb, QWidget* parent);
  QPlainTextEdit* Text() const { return text_; }
  // The OK button: stores the definitions; false (message shown, the
  // editor stays open) when one is not valid or the file cannot be written.
  bool Store();

 private:
  Workbench& wb_;
  QPlainTextEdit* text_;
};

}  // namespace vintar
