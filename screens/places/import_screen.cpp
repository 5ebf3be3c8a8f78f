#include "screens/places/import_screen.h"

#include <QButtonGroup>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFontDatabase>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include "core/messages.h"
#include "exchange/csv_import.h"
#include "screens/common/progress_window.h"
#include "screens/common/qt_text.h"

namespace vintar {
namespace {

const char* OptionName(ImportKind kind) {
  switch (kind) {
    case ImportKind::Aaf: return "OptionAAF";
    case ImportKind::Csv: return "OptionASCII";
    case ImportKind::EventsList: return "OptionSimpleEventsList";
  }
  return "";
}

// "*.aaf;*.txt" under its label as the file dialog wants it.
QString DialogFilter(const ImportKindInfo& info) {
  QString label = QString::fromLatin1(info.Label).remove(QLatin1Char('&'));
  const QString patterns = QString::fromLatin1(info.Filter).replace(QLatin1Char(';'), QLatin1Char(' '));
  return label + QStringLiteral(" (") + patterns + QStringLiteral(")");
}

}  // namespace

Import::Import(Workbench& wb, QWidget* parent) : QDialog(parent), wb_(wb) {
  setObjectName("Import");
  setWindowTitle(tr("Import Data"));
  settings_ = LoadImportSettings(wb_.session);
  auto* layout = new QVBoxLayout(this);

  auto* sourceBox = new QGroupBox(tr("Source"), this);
  auto* sourceLayout = new QVBoxLayout(sourceBox);
  kinds_ = new QButtonGroup(this);
  for (const ImportKindInfo& info : ImportKinds()) {
    auto* option = new QRadioButton(QString::fromLatin1(info.Label), sourceBox);
    option->setObjectName(OptionName(info.Kind));
    kinds_->addButton(option, int(info.Kind));
    if (info.Kind != ImportKind::Csv) {
      sourceLayout->addWidget(option);
      continue;
    }
    // The ASCII option carries its format list.
    auto* row = new QHBoxLayout;
    row->addWidget(option);
    ascii_ = new QComboBox(sourceBox);
    ascii_->setObjectName("cmbASCII");
    ascii_->setMinimumContentsLength(24);
    edit_ = new QPushButton(tr("&Edit format..."), sourceBox);
    edit_->setObjectName("btnEdit");
    edit_->setAutoDefault(false);
    row->addWidget(ascii_, 1);
    row->addWidget(edit_);
    sourceLayout->addLayout(row);
  }
  auto* fileRow = new QHBoxLayout;
  source_ = new QLineEdit(sourceBox);
  source_->setObjectName("txtSource");
  source_->setMinimumWidth(360);
  if (!settings_.FromFile.empty()) source_->setText(QPath(EnsureBackslash(settings_.FromDir) + settings_.FromFile));
  auto* browseSource = new QPushButton(tr("&Browse..."), sourceBox);
  browseSource->setObjectName("btnSource");
  browseSource->setAutoDefault(false);
  fileRow->addWidget(source_, 1);
  fileRow->addWidget(browseSource);
  auto* sourceForm = new QFormLayout;
  auto* fileLabel = new QLabel(tr("&File:"), sourceBox);
  fileLabel->setBuddy(source_);
  sourceForm->addRow(fileLabel, fileRow);
  sourceLayout->addLayout(sourceForm);
  layout->addWidget(sourceBox);

  auto* destBox = new QGroupBox(tr("New Vintar project"), this);
  auto* destForm = new QFormLayout(destBox);
  auto* dirRow = new QHBoxLayout;
  destDir_ = new QLineEdit(QPath(settings_.ToDir), destBox);
  destDir_->setObjectName("txtDestDir");
  auto* browseDest = new QPushButton(tr("B&rowse..."), destBox);
  browseDest->setObjectName("btnDestDir");
  browseDest->setAutoDefault(false);
  dirRow->addWidget(destDir_, 1);
  dirRow->addWidget(browseDest);
  destName_ = new QLineEdit(Q(settings_.ToFile), destBox);
  destName_->setObjectName("txtDestName");
  auto* dirLabel = new QLabel(tr("F&older:"), destBox);
  dirLabel->setBuddy(destDir_);
  destForm->addRow(dirLabel, dirRow);
  destForm->addRow(tr("&Name:"), destName_);
  layout->addWidget(destBox);

  auto* buttons = new QDialogButtonBox(this);
  transfer_ = buttons->addButton(tr("&Transfer"), QDialogButtonBox::ActionRole);
  transfer_->setObjectName("TransferButton");
  transfer_->setDefault(true);
  quit_ = buttons->addButton(tr("&Quit"), QDialogButtonBox::RejectRole);
  quit_->setObjectName("QuitButton");
  quit_->setAutoDefault(false);
  layout->addWidget(buttons);

  connect(transfer_, &QPushButton::clicked, this, [this] { Transfer(); });
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  connect(browseSource, &QPushButton::clicked, this, &Import::BrowseSource);
  connect(browseDest, &QPushButton::clicked, this, &Import::BrowseDestination);
  connect(edit_, &QPushButton::clicked, this, &Import::EditFormats);
  connect(kinds_, &QButtonGroup::idToggled, this, [this](int, bool on) {
    if (on) KindChanged();
  });

  FillAsciiFormats();
  SetKind(ImportKinds().front().Kind);
  source_->setFocus();
}

void Import::SetKind(ImportKind kind) {
  if (QAbstractButton* option = kinds_->button(int(kind))) option->setChecked(true);
  KindChanged();
}

ImportKind Import::Kind() const {
  const int id = kinds_->checkedId();
  return id < 0 ? ImportKinds().front().Kind : ImportKind(id);
}

void Import::KindChanged() {
  const bool ascii = Kind() == ImportKind::Csv;
  ascii_->setEnabled(ascii && formatsAvailable_);
  edit_->setEnabled(ascii);
}

void Import::FillAsciiFormats() {
  const int kept = ascii_->currentIndex();
  ascii_->clear();
  const std::vector<CsvFormat> formats = LoadCsvFormats(wb_.session);
  std::string title;
  for (int i = 0; GetASCIITitle(formats, i, title) == 0; ++i) ascii_->addItem(Q(title));
  formatsAvailable_ = ascii_->count() > 0;
  if (!formatsAvailable_) ascii_->addItem(Q(kNoAsciiFormats));
  ascii_->setCurrentIndex(kept >= 0 && kept < ascii_->count() ? kept : 0);
  KindChanged();
}

void Import::ChooseSource(const QString& path) {
  source_->setText(path);
  destName_->setText(Q(ProposedImportName(PathOf(path))));
}

void Import::BrowseSource() {
  const ImportKind kind = Kind();
  QString filter;
  for (const ImportKindInfo& info : ImportKinds())
    if (info.Kind == kind) filter = DialogFilter(info);
  filter += QStringLiteral(";;") + tr("All files (*)");
  const QString start = source_->text().isEmpty() ? QPath(settings_.FromDir) : source_->text();
  const QString path = QFileDialog::getOpenFileName(this, tr("Select Source File"), start, filter);
  if (!path.isEmpty()) ChooseSource(path);
}

void Import::BrowseDestination() {
  const QString dir = QFileDialog::getExistingDirectory(this, tr("Folder of the New Project"), destDir_->text());
  if (!dir.isEmpty()) destDir_->setText(dir);
}

void Import::EditFormats() {
  AsciiFormatEditor editor(wb_, this);
  editor.exec();
  FillAsciiFormats();
}

bool Import::Transfer() {
  Session& s = wb_.session;
  const std::string source = PathOf(source_->text().trimmed());
  const bool listed = !source.empty() && FolderExists(PathFolder(source));
  const bool chosen = listed && FileExists(source) && !FolderExists(source);
  std::string name = L(destName_->text());
  if (!CheckImportTransfer(s, name, listed, chosen)) return false;
  destName_->setText(Q(name));
  const std::string datPath = EnsureBackslash(PathOf(destDir_->text().trimmed())) + name;
  const int format = ascii_->currentIndex() + 1;

  transfer_->setEnabled(false);
  quit_->setEnabled(false);
  std::string made;
  {
    // Cancel stops the reading of the source; the project is written only
    // once all of it is read, so a cancel leaves nothing behind.
    ProgressWindow progress(this, tr("Import Data"));
    progress.Caption("Importing from " + PathFileName(source));
    BusyPointer busy;
    made = RunImport(s, Kind(), source, datPath, format, &progress);
    progress.hide();
  }
  transfer_->setEnabled(true);
  quit_->setEnabled(true);
  if (made.empty()) return false;
  imported_ = made;
  // The new project replaces the open one and the screen closes; without
  // its .nat (nothing was written) the screen stays.
  if (!FileExists(ReplaceExtension(made, ".nat"))) return true;
  accept();
  if (OpenImportedProject(s, made, wb_.recent)) wb_.Changed();
  return true;
}

void Import::done(int result) {
  const std::string source = PathOf(source_->text().trimmed());
  if (!source.empty()) {
    settings_.FromDir = PathFolder(source);
    settings_.FromFile = PathFileName(source);
  }
  settings_.ToDir = PathOf(destDir_->text().trimmed());
  settings_.ToFile = L(destName_->text().trimmed());
  SaveImportSettings(wb_.session, settings_);
  QDialog::done(result);
}

AsciiFormatEditor::AsciiFormatEditor(Workbench& wb, QWidget* parent) : QDialog(parent), wb_(wb) {
  setObjectName("AsciiFormatEditor");
  setWindowTitle(tr("ASCII Formats"));
  auto* layout = new QVBoxLayout(this);
  text_ = new QPlainTextEdit(this);
  text_->setObjectName("txtFormats");
  text_->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  text_->setLineWrapMode(QPlainTextEdit::NoWrap);
  text_->setPlainText(Q(FormatCsvFormats(LoadCsvFormats(wb_.session))));
  text_->setMinimumSize(560, 360);
  layout->addWidget(text_);
  auto* buttons = new QDialogButtonBox(this);
  QPushButton* ok = buttons->addButton(tr("&OK"), QDialogButtonBox::AcceptRole);
  ok->setObjectName("OKButton");
  QPushButton* cancel = buttons->addButton(tr("&Cancel"), QDialogButtonBox::RejectRole);
  cancel->setObjectName("CancelButton");
  layout->addWidget(buttons);
  connect(buttons, &QDialogButtonBox::accepted, this, [this] {
    if (Store()) accept();
  });
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

bool AsciiFormatEditor::Store() {
  std::string text = L(text_->toPlainText());
  std::string error;
  if (EditASCII(wb_.session, ParseCsvFormats(text), error)) return true;
  wb_.session.ShowMessage(error, kIconExclamation, "Import Data");
  return false;
}

}  // namespace vintar
