// The print screens of the reports. PrintGraph gathers a subtitle and
// whether the list of enabled records follows, shows the report's pages as
// they will print, prints them or saves them as a PDF. PrintEvents prints
// the list of all, enabled or disabled records.
#pragma once

#include <QDialog>
#include <QImage>

#include <functional>
#include <memory>
#include <vector>

#include "output/rectify_reports.h"
#include "screens/common/workbench.h"

class QCheckBox;
class QLabel;
class QLineEdit;
class QPrinter;
class QPushButton;
class QRadioButton;
class QScrollArea;

namespace vintar {

class DrawingView;

// The page preview shared by both screens: one page at a time with
// previous and next buttons.
class ReportPagesView : public QWidget {
  Q_OBJECT
 public:
  explicit ReportPagesView(QWidget* parent = nullptr);
  void SetPages(std::vector<QImage> pages);
  int PageCount() const { return static_cast<int>(pages_.size()); }
  int CurrentPage() const { return current_; }  // from 1, 0 without pages
  void ShowPage(int page);

 private:
  void Update();
  std::vector<QImage> pages_;
  int current_ = 0;
  DrawingView* view_;
  QLabel* pageLabel_;
  QPushButton* prev_;
  QPushButton* next_;
};

// The captions for which the list of enabled records is not offered: the
// research graphs and tables, and the search results.
bool IsResearchPrintCaption(const QString& caption);

// What both print screens share: the preview of the report's pages, the
// printer with its setup dialog, printing and saving as a PDF. A screen
// gives the report through Build.
class ReportScreen : public QDialog {
  Q_OBJECT
 public:
  ReportScreen(Workbench& wb, QWidget* parent);
  ~ReportScreen() override;

  // Rebuilds the preview from the fields.
  void Refresh();
  // Prints on `printer`; a failure shows "Printing Error". Returns success.
  bool PrintTo(QPrinter& printer);
  // Saves the pages as a PDF; a failure is told. Returns success.
  bool SavePdf(const QString& path);
  QPrinter& Printer();
  ReportPagesView* Pages() const { return pages_; }

 public slots:
  void Print();
  void Setup();
  void SaveAsPdf();

 protected:
  virtual void Build(ReportDocument& doc) = 0;
  Workbench& wb_;
  ReportPagesView* pages_ = nullptr;

 private:
  std::unique_ptr<QPrinter> printer_;
};

class PrintGraph : public ReportScreen {
  Q_OBJECT
 public:
  PrintGraph(Workbench& wb, QWidget* parent, const QString& caption, ReportBuilder build);
  ~PrintGraph() override;

  ReportOptions Options() const;

 protected:
  void Build(ReportDocument& doc) override;

 private:
  QString caption_;
  ReportBuilder build_;
  QLineEdit* subTitle_;
  QCheckBox* checkEvents_;
};

class PrintEvents : public ReportScreen {
  Q_OBJECT
 public:
  PrintEvents(Workbench& wb, QWidget* parent);
  ~PrintEvents() override;

  int Kind() const;  // 0 all, 1 enabled, 2 disabled
  ReportOptions Options() const;

 protected:
  void Build(ReportDocument& doc) override;

 private:
  QLineEdit* subTitle_;
  QRadioButton* all_;
  QRadioButton* enabled_;
  QRadioButton* disabled_;
};

// Shows the print screen of a report modally.
void RunPrintGraph(Workbench& wb, QWidget* parent, const QString& caption, ReportBuilder build);
void RunPrintEvents(Workbench& wb, QWidget* parent);

// The tour's picture of the report preview (the record list of the open
// project).
void ScreenshotTourReports(Workbench& wb, QWidget* parent,
                           const std::function<void(QWidget*, const QString&)>& shoot);

}  // namespace vintar
