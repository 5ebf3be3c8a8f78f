#include "screens/rectify/val_rep.h"

#include <QFontDatabase>
#include <QHBoxLayout>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "output/rectify_reports.h"
#include "rectify/viability.h"
#include "screens/common/qt_text.h"
#include "screens/common/report_preview.h"
#include "screens/rectify/rectify_support.h"

namespace vintar {

ValRep::ValRep(Workbench& wb, QWidget* parent, bool beforeGraphs) : QDialog(parent), wb_(wb) {
  setObjectName("ValRep");
  setWindowTitle(QStringLiteral("Events Validation Report"));
  auto* layout = new QVBoxLayout(this);
  rep_ = new QPlainTextEdit(this);
  rep_->setObjectName("Rep");
  rep_->setReadOnly(true);
  rep_->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  rep_->setMinimumSize(520, 420);
  layout->addWidget(rep_);

  auto* row = new QHBoxLayout;
  auto button = [&](const char* name, const QString& caption) {
    auto* b = new QPushButton(caption, this);
    b->setObjectName(name);
    b->setAutoDefault(false);
    row->addWidget(b);
    return b;
  };
  auto* print = button("PrintButton", tr("&Print..."));
  auto* edit = button("EditButton", tr("&Edit Events..."));
  row->addStretch();
  auto* cancel = button("CancelButton", beforeGraphs ? QStringLiteral("C&ontinue...") : tr("&Cancel"));
  auto* quit = button("QuitButton", QStringLiteral("&Quit"));
  layout->addLayout(row);
  cancel->setDefault(true);

  connect(print, &QPushButton::clicked, this, &ValRep::Print);
  connect(edit, &QPushButton::clicked, this, &ValRep::EditEvents);
  connect(quit, &QPushButton::clicked, this, &ValRep::reject);
  if (beforeGraphs) {
    connect(cancel, &QPushButton::clicked, this, [this] {
      emit continued();
      accept();
    });
  } else {
    connect(cancel, &QPushButton::clicked, this, &ValRep::reject);
  }
  Refresh();
}

void ValRep::Refresh() {
  std::string text;
  problems_ = false;
  vintar::ViabilityReport(wb_.session, text, problems_);
  QString shown = Q(text);
  shown.remove(QLatin1Char('\r'));
  rep_->setPlainText(shown);
}

QString ValRep::ReportText() const { return rep_->toPlainText(); }

void ValRep::Print() {
  Session& s = wb_.session;
  RunPrintGraph(wb_, this, QStringLiteral("Events Validation Report"),
                [&s](ReportDocument& doc, const ReportOptions& options) { vintar::ViabilityReport(doc, s, options); });
}

void ValRep::EditEvents() {
  OpenEventsEditor(wb_, this);
  Refresh();
}

}  // namespace vintar
