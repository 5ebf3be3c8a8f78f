// The status window of a long operation (cache builds, graphs, searches,
// Auto Rectify, imports). The operation runs on the window's thread and calls
// the Progress functions; each call pumps the event loop now and then, so the
// window repaints and its Cancel button works. Cancel only sets a flag that
// the operation polls. While it is shown the other windows take no input.
#pragma once

#include <QDialog>
#include <QElapsedTimer>

#include "core/progress.h"

class QLabel;
class QProgressBar;
class QPushButton;

namespace vintar {

class ProgressWindow : public QDialog, public Progress {
  Q_OBJECT
 public:
  // `buttonText` is the caption of the cancel button ("&Cancel", "&Stop").
  explicit ProgressWindow(QWidget* parent, const QString& title = QString(),
                          const QString& buttonText = QStringLiteral("&Cancel"));
  ~ProgressWindow() override;

  void Caption(const std::string& text) override;
  void Status(const std::string& text) override;
  void Fraction(double done) override;
  bool Cancelled() override;

  // Sets the flag as the button does (for tests).
  void RequestCancel() { cancelled_ = true; }
  QString StatusText() const;

 protected:
  void closeEvent(QCloseEvent* event) override;
  void reject() override;

 private:
  void Pump(bool force = false);
  QLabel* caption_;
  QLabel* status_;
  QProgressBar* bar_;
  QPushButton* cancel_;
  QElapsedTimer sincePump_;
  bool cancelled_ = false;
};

// Sets the busy pointer for its lifetime.
class BusyPointer {
 public:
  BusyPointer();
  ~BusyPointer();
  BusyPointer(const BusyPointer&) = delete;
  BusyPointer& operator=(const BusyPointer&) = delete;
};

}  // namespace vintar
