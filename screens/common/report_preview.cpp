#include "screens/common/report_preview.h"

#include <QApplication>
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPrintDialog>
#include <QPrinter>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include "screens/common/drawing_view.h"
#include "screens/common/progress_window.h"
#include "screens/common/qt_text.h"

namespace vintar {
namespace {

constexpr const char* kPrintErrorTitle = "Printing Error";

void TellPrintingError(Session& session, const std::string& error) {
  session.ShowMessage("Error occured during printing:\n\n" + error, kIconStop, kPrintErrorTitle);
}

// Builds the report on `printer`; a failure is told. Returns success.
bool PrintReport(Session& session, QPrinter& printer, const std::function<void(ReportDocument&)>& build) {
  BusyPointer busy;
  ReportDocument doc(session, printer);
  if (!doc.IsOpen()) {
    TellPrintingError(session, "The printer could not be started.");
    return false;
  }
  build(doc);
  if (!doc.End()) {
    TellPrintingError(session, "The printer did not accept the pages.");
    return false;
  }
  return true;
}

bool SaveReport(Session& session, const QString& path, const std::function<void(ReportDocument&)>& build) {
  BusyPointer busy;
  std::string error;
  if (SaveReportPdf(session, PathOf(path), build, &error)) return true;
  session.ShowMessage(error, kIconExclamation, "Save as PDF");
  return false;
}

// Image pages of the report for the preview.
std::vector<QImage> PreviewPages(Session& session, const std::function<void(ReportDocument&)>& build) {
  BusyPointer busy;
  auto doc = ReportDocument::A4Images(session, 110.0);
  build(*doc);
  doc->End();
  return doc->Images();
}

QString AskPdfPath(QWidget* parent, Session& session) {
  QString name = Q(session.project.ProjectStem.empty() ? std::string("report") : session.project.ProjectStem);
  if (!session.project.ProjectFolder.empty()) name = QPath(session.project.ProjectFolder) + name;
  QString path = QFileDialog::getSaveFileName(parent, QObject::tr("Save as PDF"), name + ".pdf",
                                              QObject::tr("PDF Document (*.pdf)"));
  if (!path.isEmpty() && !path.endsWith(".pdf", Qt::CaseInsensitive)) path += ".pdf";
  return path;
}

QPushButton* Button(const QString& text, const char* name) {
  auto* b = new QPushButton(text);
  b->setObjectName(name);
  b->setAutoDefault(false);
  return b;
}

}  // namespace

// ---------------------------------------------------------------- pages view

ReportPagesView::ReportPagesView(QWidget* parent) : QWidget(parent) {
  view_ = new DrawingView(this);
  view_->setObjectName("PreviewPage");
  view_->SetPreferredSize(QSizeF(460, 650));
  view_->SetPaint([this](QPainter& painter, const QRectF& area) {
    painter.fillRect(area, QColor(128, 128, 128));
    if (current_ < 1 || current_ > PageCount()) return;
    const QImage& page = pages_[current_ - 1];
    QSizeF size = page.size();
    size.scale(area.size() - QSizeF(16, 16), Qt::KeepAspectRatio);
    const QRectF target(area.center().x() - size.width() / 2, area.center().y() - size.height() / 2, size.width(),
                        size.height());
    painter.fillRect(target.translated(3, 3), QColor(60, 60, 60));
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(target, page);
  });
  prev_ = Button(tr("Pre&vious Page"), "PrevPageButton");
  next_ = Button(tr("&Next Page"), "NextPageButton");
  pageLabel_ = new QLabel(this);
  pageLabel_->setObjectName("PageLabel");
  pageLabel_->setAlignment(Qt::AlignCenter);
  connect(prev_, &QPushButton::clicked, this, [this] { ShowPage(current_ - 1); });
  connect(next_, &QPushButton::clicked, this, [this] { ShowPage(current_ + 1); });
  auto* nav = new QHBoxLayout;
  nav->addWidget(prev_);
  nav->addWidget(pageLabel_, 1);
  nav->addWidget(next_);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(view_, 1);
  layout->addLayout(nav);
  Update();
}

void ReportPagesView::SetPages(std::vector<QImage> pages) {
  pages_ = std::move(pages);
  current_ = std::clamp(current_, pages_.empty() ? 0 : 1, PageCount());
  Update();
}

void ReportPagesView::ShowPage(int page) {
  if (page < 1 || page > PageCount()) return;
  current_ = page;
  Update();
}

void ReportPagesView::Update() {
  pageLabel_->setText(PageCount() ? tr("Page %1 of %2").arg(current_).arg(PageCount()) : tr("No pages"));
  prev_->setEnabled(current_ > 1);
  next_->setEnabled(current_ < PageCount());
  view_->update();
}

bool IsResearchPrintCaption(const QString& caption) {
  // The search results list their own records.
  return caption == "Print Bar Graph" || caption == "Print Polar Graph" || caption == "Print Table" ||
         caption == "Criteria Search Results" || caption == "Data Search Results";
}

// ---------------------------------------------------------------- PrintGraph

PrintGraph::PrintGraph(Workbench& wb, QWidget* parent, const QString& caption, ReportBuilder build)
    : ReportScreen(wb, parent), caption_(caption), build_(std::move(build)) {
  setObjectName("PrintGraph");
  setWindowTitle(caption);
  subTitle_ = new QLineEdit(this);
  subTitle_->setObjectName("SubTitle");
  checkEvents_ = new QCheckBox(tr("&Also print list of enabled records"), this);
  checkEvents_->setObjectName("CheckEvents");
  checkEvents_->setVisible(!IsResearchPrintCaption(caption));
  auto* form = new QFormLayout;
  auto* subLabel = new QLabel(tr("Sub&Title:"), this);
  subLabel->setBuddy(subTitle_);
  form->addRow(subLabel, subTitle_);
  form->addRow(QString(), checkEvents_);

  pages_ = new ReportPagesView(this);
  auto* setup = Button(tr("Printer &Setup..."), "SetupButton");
  auto* pdf = Button(tr("Save as PD&F..."), "PdfButton");
  auto* print = Button(tr("&Print"), "PrintButton");
  auto* cancel = Button(tr("&Close"), "CancelButton");
  print->setDefault(true);
  print->setAutoDefault(true);
  connect(setup, &QPushButton::clicked, this, &PrintGraph::Setup);
  connect(pdf, &QPushButton::clicked, this, &PrintGraph::SaveAsPdf);
  connect(print, &QPushButton::clicked, this, &PrintGraph::Print);
  connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
  connect(subTitle_, &QLineEdit::editingFinished, this, &PrintGraph::Refresh);
  connect(checkEvents_, &QCheckBox::toggled, this, &PrintGraph::Refresh);

  auto* buttons = new QHBoxLayout;
  buttons->addWidget(setup);
  buttons->addWidget(pdf);
  buttons->addStretch(1);
  buttons->addWidget(print);
  buttons->addWidget(cancel);
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(form);
  layout->addWidget(pages_, 1);
  layout->addLayout(buttons);
  setTabOrder(subTitle_, checkEvents_);
  setTabOrder(checkEvents_, print);
  resize(620, 860);
  Refresh();
}

PrintGraph::~PrintGraph() = default;

ReportOptions PrintGraph::Options() const {
  ReportOptions options;
  options.SubTitle = L(subTitle_->text().trimmed());
  options.AlsoEnabledRecords = !IsResearchPrintCaption(caption_) && checkEvents_->isChecked();
  return options;
}

void PrintGraph::Build(ReportDocument& doc) { BuildReport(doc, wb_.session, build_, Options()); }

ReportScreen::ReportScreen(Workbench& wb, QWidget* parent) : QDialog(parent), wb_(wb) {}

ReportScreen::~ReportScreen() = default;

void ReportScreen::Refresh() {
  pages_->SetPages(PreviewPages(wb_.session, [this](ReportDocument& doc) { Build(doc); }));
}

QPrinter& ReportScreen::Printer() {
  if (!printer_) printer_ = std::make_unique<QPrinter>(QPrinter::HighResolution);
  return *printer_;
}

bool ReportScreen::PrintTo(QPrinter& printer) {
  return PrintReport(wb_.session, printer, [this](ReportDocument& doc) { Build(doc); });
}

bool ReportScreen::SavePdf(const QString& path) {
  return SaveReport(wb_.session, path, [this](ReportDocument& doc) { Build(doc); });
}

void ReportScreen::Print() {
  if (PrintTo(Printer())) accept();
}

void ReportScreen::Setup() {
  QPrintDialog dialog(&Printer(), this);
  dialog.exec();
}

void ReportScreen::SaveAsPdf() {
  const QString path = AskPdfPath(this, wb_.session);
  if (!path.isEmpty()) SavePdf(path);
}

// ---------------------------------------------------------------- PrintEvents

PrintEvents::PrintEvents(Workbench& wb, QWidget* parent) : ReportScreen(wb, parent) {
  setObjectName("PrintEvents");
  setWindowTitle(tr("Print List of Records"));
  subTitle_ = new QLineEdit(this);
  subTitle_->setObjectName("SubTitle");
  auto* subLabel = new QLabel(tr("Sub&Title:"), this);
  subLabel->setBuddy(subTitle_);
  auto* group = new QGroupBox(tr("Records"), this);
  all_ = new QRadioButton(tr("A&ll Records"), group);
  all_->setObjectName("OptionAll");
  enabled_ = new QRadioButton(tr("&Enabled Records"), group);
  enabled_->setObjectName("OptionEnabled");
  disabled_ = new QRadioButton(tr("&Disabled Records"), group);
  disabled_->setObjectName("OptionDisabled");
  all_->setChecked(true);
  auto* kinds = new QHBoxLayout(group);
  kinds->addWidget(all_);
  kinds->addWidget(enabled_);
  kinds->addWidget(disabled_);
  auto* form = new QFormLayout;
  form->addRow(subLabel, subTitle_);
  form->addRow(group);

  pages_ = new ReportPagesView(this);
  auto* setup = Button(tr("Printer &Setup..."), "SetupButton");
  auto* pdf = Button(tr("Save as PD&F..."), "PdfButton");
  auto* print = Button(tr("&Print"), "PrintButton");
  auto* cancel = Button(tr("&Close"), "CancelButton");
  print->setDefault(true);
  print->setAutoDefault(true);
  connect(setup, &QPushButton::clicked, this, &PrintEvents::Setup);
  connect(pdf, &QPushButton::clicked, this, &PrintEvents::SaveAsPdf);
  connect(print, &QPushButton::clicked, this, &PrintEvents::Print);
  connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
  connect(subTitle_, &QLineEdit::editingFinished, this, &PrintEvents::Refresh);
  for (QRadioButton* b : {all_, enabled_, disabled_})
    connect(b, &QRadioButton::toggled, this, [this](bool on) {
      if (on) Refresh();
    });

  auto* buttons = new QHBoxLayout;
  buttons->addWidget(setup);
  buttons->addWidget(pdf);
  buttons->addStretch(1);
  buttons->addWidget(print);
  buttons->addWidget(cancel);
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(form);
  layout->addWidget(pages_, 1);
  layout->addLayout(buttons);
  setTabOrder(subTitle_, all_);
  setTabOrder(all_, print);
  resize(620, 860);
  Refresh();
}

PrintEvents::~PrintEvents() = default;

int PrintEvents::Kind() const {
  if (enabled_->isChecked()) return kEnabledRecords;
  if (disabled_->isChecked()) return kDisabledRecords;
  return kAllRecords;
}

ReportOptions PrintEvents::Options() const {
  ReportOptions options;
  options.SubTitle = L(subTitle_->text().trimmed());
  if (options.SubTitle.empty()) options.SubTitle = RecordListSubTitle(Kind());
  return options;
}

void PrintEvents::Build(ReportDocument& doc) { DataReport(doc, wb_.session, Kind(), Options()); }


// ---------------------------------------------------------------- entries

void RunPrintGraph(Workbench& wb, QWidget* parent, const QString& caption, ReportBuilder build) {
  PrintGraph dialog(wb, parent, caption, std::move(build));
  dialog.exec();
}

void RunPrintEvents(Workbench& wb, QWidget* parent) {
  PrintEvents dialog(wb, parent);
  dialog.exec();
}

void ScreenshotTourReports(Workbench& wb, QWidget* parent,
                           const std::function<void(QWidget*, const QString&)>& shoot) {
  PrintEvents dialog(wb, parent);
  dialog.show();
  QApplication::processEvents();
  shoot(&dialog, "print_list_of_records");
  dialog.close();
}

}  // namespace vintar
