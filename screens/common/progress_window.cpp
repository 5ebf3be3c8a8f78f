#include "screens/common/progress_window.h"

#include <QApplication>
#include <QCloseEvent>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

#include "screens/common/qt_text.h"

namespace vintar {

ProgressWindow::ProgressWindow(QWidget* parent, const QString& title, const QString& buttonText)
    : QDialog(parent) {
  setObjectName("ProgressWindow");
  setWindowTitle(title.isEmpty() ? QStringLiteral("Vintar") : title);
  setWindowModality(Qt::ApplicationModal);
  auto* layout = new QVBoxLayout(this);
  caption_ = new QLabel(this);
  caption_->setObjectName("lblCaption");
  status_ = new QLabel(this);
  status_->setObjectName("lblStatus");
  status_->setMinimumWidth(360);
  bar_ = new QProgressBar(this);
  bar_->setObjectName("ProgressBar");
  bar_->setRange(0, 0);  // busy until a fraction arrives
  cancel_ = new QPushButton(buttonText, this);
  cancel_->setObjectName("CancelButton");
  connect(cancel_, &QPushButton::clicked, this, [this] { cancelled_ = true; });
  layout->addWidget(caption_);
  layout->addWidget(status_);
  layout->addWidget(bar_);
  auto* buttons = new QHBoxLayout;
  buttons->addStretch();
  buttons->addWidget(cancel_);
  layout->addLayout(buttons);
  show();
  sincePump_.start();
  Pump(true);
}

ProgressWindow::~ProgressWindow() = default;

void ProgressWindow::Caption(const std::string& text) {
  caption_->setText(Q(text));
  Pump(true);
}

void ProgressWindow::Status(const std::string& text) {
  status_->setText(Q(text));
  Pump();
}

void ProgressWindow::Fraction(double done) {
  if (bar_->maximum() == 0) bar_->setRange(0, 1000);
  bar_->setValue(int(std::clamp(done, 0.0, 1.0) * 1000));
  Pump();
}

bool ProgressWindow::Cancelled() {
  Pump();
  return cancelled_;
}

QString ProgressWindow::StatusText() const { return status_->text(); }

void ProgressWindow::closeEvent(QCloseEvent* event) {
  cancelled_ = true;
  event->ignore();  // the operation closes the window when it has stopped
}

void ProgressWindow::reject() { cancelled_ = true; }

void ProgressWindow::Pump(bool force) {
  if (!force && sincePump_.elapsed() < 40) return;
  sincePump_.restart();
  QApplication::processEvents(QEventLoop::AllEvents, 20);
}

BusyPointer::BusyPointer() { QGuiApplication::setOverrideCursor(Qt::WaitCursor); }
BusyPointer::~BusyPointer() { QGuiApplication::restoreOverrideCursor(); }

}  // namespace vintar
