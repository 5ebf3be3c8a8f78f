// The File menu's screens and the entry screens, driven as a user would:
// the title of a new project, the save dialogue's name rules, the record
// screen's field checks with add, delete and cancel, the natal details, a
// project opened and saved again through the dialogues, and pictures of the
// two entry screens.
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>
#include <QTreeWidget>
#include <QtTest>

#include <deque>
#include <functional>

#include "core/file_io.h"
#include "core/parse.h"
#include "core/preferences.h"
#include "core/project_file.h"
#include "core/project_ops.h"
#include "core/text.h"
#include "screens/common/qt_text.h"
#include "qt_support/qt_test_support.h"
#include "screens/project/data_entry.h"
#include "screens/project/file_dialogs.h"
#include "screens/project/file_menu.h"
#include "screens/project/natal_entry.h"
#include "screens/project/preferences_screen.h"
#include "screens/project/project_dialogs.h"

using namespace vintar;

namespace {

// Plays the modal screens that a command opens, one step per screen: each
// step is given the modal screen that is up when the event loop next runs.
class ModalScript : public QObject {
 public:
  using Step = std::function<void(QWidget*)>;
  explicit ModalScript(std::deque<Step> steps) : steps_(std::move(steps)) { Arm(); }
  bool Done() const { return steps_.empty(); }

 private:
  void Arm() { QTimer::singleShot(0, this, [this] { Next(); }); }
  void Next() {
    if (steps_.empty()) return;
    QWidget* modal = QApplication::activeModalWidget();
    if (!modal || !modal->isVisible()) {
      Arm();
      return;
    }
    Step step = std::move(steps_.front());
    steps_.pop_front();
    step(modal);
    if (!steps_.empty()) Arm();
  }
  std::deque<Step> steps_;
};

template <typename T>
T* Child(QWidget* parent, const char* name) {
  T* child = parent->findChild<T*>(name);
  if (!child) qFatal("no %s", name);
  return child;
}

void Click(QWidget* parent, const char* name) { Child<QPushButton>(parent, name)->click(); }

// Types into a field and leaves it.
void Type(QWidget* parent, const char* name, const QString& text) {
  if (auto* combo = parent->findChild<QComboBox*>(name)) {
    combo->setEditText(text);
    emit combo->lineEdit()->editingFinished();
    return;
  }
  auto* edit = Child<QLineEdit>(parent, name);
  edit->setText(text);
  emit edit->editingFinished();
}

bool Said(const CapturingSink& sink, const std::string& title) {
  for (const auto& m : sink.messages)
    if (m.title == title) return true;
  return false;
}

std::vector<std::string> RecordLines(const Session& s) {
  std::vector<std::string> lines;
  for (int32_t i = 1; i <= s.project.Header.RecordCount; ++i) lines.push_back(FormatDataRecord(s.project.Events[i]));
  return lines;
}

bool OpenSample(testing::DesktopFixture& fx) {
  const std::string path = fx.CopySample("einstein");
  fx.session.MergeActive = 0;
  bool failed = false;
  return OpenProject(fx.session, path, failed);
}

std::string ReadAll(const std::string& path) {
  std::string bytes;
  ReadFilePrefix(path, bytes, 1 << 20);
  return bytes;
}

}  // namespace

class ProjectScreensTest : public QObject {
  Q_OBJECT
 private slots:
  void newProjectAsksForATitle() {
    struct Case {
      const char* name;
      QStringList titles;  // typed in turn, each followed by OK; empty: Cancel
      int nameErrors;
      bool open;
    } cases[] = {
        {"blank then named", {"", "  ", "Smith family"}, 2, true},
        {"cancelled", {}, 0, false},
    };
    for (const Case& c : cases) {
      testing::DesktopFixture fx;
      std::deque<ModalScript::Step> steps;
      steps.push_back([&c](QWidget* w) {
        QVERIFY2(qobject_cast<ProjTitle*>(w), c.name);
        if (c.titles.isEmpty()) return Click(w, "CancelButton");
        for (const QString& t : c.titles) {
          Child<QLineEdit>(w, "TitleText")->setText(t);
          Click(w, "OKButton");
        }
      });
      if (c.open) steps.push_back([](QWidget* w) {
        QVERIFY(qobject_cast<DataEntry*>(w));
        Click(w, "CancelButton");
      });
      ModalScript script(steps);
      FileNew(*fx.wb, nullptr);
      QVERIFY2(script.Done(), c.name);
      int errors = 0;
      for (const auto& m : fx.sink.messages) errors += m.title == "Error in Name";
      QCOMPARE(errors, c.nameErrors);
      QCOMPARE(fx.session.project.Open, c.open);
      QCOMPARE(fx.session.project.Header.Title, std::string(c.open ? "Smith family" : ""));
      QCOMPARE(fx.session.DialogCancelled, int16_t(0));
    }
  }

  void saveDialogChecksTheName() {
    enum Outcome { Accepted, StaysOpen, Declined };
    struct Case {
      QString name;
      int answer;
      Outcome outcome;
      const char* title;  // the box shown, "" for none
      const char* file;   // the path's file name when accepted
    } cases[] = {
        {QString(81, 'a'), 0, StaysOpen, "File Error", ""},
        {"   ", 0, StaysOpen, "File Error", ""},
        {QString(80, 'b'), 0, Accepted, "", ""},
        {"fresh.dat", 0, Accepted, "", "fresh.dat"},
        {"einstein", kCancel, StaysOpen, "File Exists", ""},
        {"einstein", kNo, Declined, "File Exists", ""},
        {"einstein", kYes, Accepted, "File Exists", "einstein.dat"},
    };
    for (const Case& c : cases) {
      testing::DesktopFixture fx;
      fx.CopySample("einstein");
      fx.sink.answer = c.answer;
      SaveFile dialog(*fx.wb, nullptr);
      dialog.setDirectory(QString::fromStdString(fx.TempPath("")));
      dialog.selectFile(c.name);
      dialog.accept();
      const QByteArray what = c.name.left(12).toUtf8();
      QCOMPARE(Said(fx.sink, c.title), std::string(c.title) != "");
      QCOMPARE(dialog.result() == QDialog::Accepted, c.outcome == Accepted);
      QCOMPARE(fx.session.DialogCancelled != 0, c.outcome == Declined);
      if (c.outcome == Accepted) {
        QVERIFY2(EndsWithIgnoreCase(dialog.Path(), ".dat"), what.data());
        if (*c.file) QCOMPARE(PathFileName(dialog.Path()), std::string(c.file));
        QCOMPARE(fx.session.project.ProjectPath, dialog.Path());
      } else {
        QVERIFY2(dialog.Path().empty(), what.data());
      }
    }
  }

  void dataEntryChecksEachField() {
    struct Case {
      const char* field;
      QString text;
      int answer;
      const char* title;  // the box expected, "" for none
      std::function<void(const EventRecord&, DataEntry&)> check;
    } cases[] = {
        {"EDate", "1950", kYes, "Year Marker?",
         [](const EventRecord& r, DataEntry& d) {
           QCOMPARE(int(r.DayRange), kYearMarkerRange);
           QCOMPARE(Child<QLineEdit>(&d, "ERange")->text(), QString("182"));
           QCOMPARE(Child<QTreeWidget>(&d, "DataList")->topLevelItem(0)->text(1), QString("Year 1950"));
         }},
        {"ERange", "20", 0, "Date Range Error",
         [](const EventRecord& r, DataEntry& d) {
           QCOMPARE(int(r.DayRange), 20);
           QVERIFY(Child<QTreeWidget>(&d, "DataList")->topLevelItem(0)->text(2).endsWith("X"));
         }},
        {"ERange", "", 0, "Blank field", [](const EventRecord& r, DataEntry&) { QCOMPARE(int(r.DayRange), 0); }},
        {"ETime", "27:75", 0, "*", [](const EventRecord& r, DataEntry&) { QCOMPARE(int(r.Hour), 12); }},
        {"Latitude", "north", 0, "*", [](const EventRecord& r, DataEntry&) { QCOMPARE(r.Latitude, 0.0f); }},
        {"ETZMnemonic", "bst", 0, "",
         [](const EventRecord& r, DataEntry& d) {
           QCOMPARE(r.ZoneAbbr, std::string("BST"));
           QCOMPARE(r.ZoneHours, -1.0f);
           QCOMPARE(Child<QLineEdit>(&d, "ETZTime")->text(), Q(FormatZone(-1.0)));
         }},
        {"cmbValue1", "Travel", kOk, "New List Item",
         [](const EventRecord& r, DataEntry& d) {
           QCOMPARE(r.Categories, std::string("Travel |"));
           QVERIFY(Child<QComboBox>(&d, "cmbValue1")->findText("Travel") >= 0);
         }},
        {"cmbValue1", "Travel", kCancel, "New List Item",
         [](const EventRecord& r, DataEntry& d) {
           QCOMPARE(r.Categories, std::string("Family |"));
           QCOMPARE(Child<QComboBox>(&d, "cmbValue1")->currentText(), QString());
         }},
        {"cmbValue1", "career", 0, "",
         [](const EventRecord& r, DataEntry&) { QCOMPARE(r.Categories, std::string("Career |")); }},
    };
    for (const Case& c : cases) {
      testing::DesktopFixture fx;
      QVERIFY(OpenSample(fx));
      fx.sink.answer = c.answer;
      DataEntry entry(*fx.wb, nullptr);
      QVERIFY(entry.Opened());
      QCOMPARE(entry.CurrentRecord(), 1);
      Type(&entry, c.field, c.text);
      const std::string title = c.title;
      if (title == "*")
        QVERIFY2(!fx.sink.messages.empty(), c.field);
      else if (title.empty())
        QVERIFY2(fx.sink.messages.empty(), c.field);
      else
        QVERIFY2(Said(fx.sink, title), c.field);
      c.check(fx.session.project.Events[1], entry);
    }
  }

  void addDeleteAndCancel() {
    struct Case {
      const char* name;
      int answer;      // for every box: Verify Delete takes OK unless Cancel
      bool viaOk;      // OK instead of Cancel
      bool restored;
    } cases[] = {
        {"cancel, discard", kNo, false, true},
        {"cancel, keep", kYes, false, false},
        {"ok", kYes, true, false},
    };
    for (const Case& c : cases) {
      testing::DesktopFixture fx;
      QVERIFY(OpenSample(fx));
      Session& s = fx.session;
      const std::vector<std::string> before = RecordLines(s);
      fx.sink.answer = c.answer;
      DataEntry entry(*fx.wb, nullptr);
      auto* list = Child<QTreeWidget>(&entry, "DataList");
      Click(&entry, "AddButton");
      const int32_t added = int32_t(before.size()) + 1;
      QCOMPARE(s.project.Header.RecordCount, added);
      QCOMPARE(entry.CurrentRecord(), added);
      Type(&entry, "EventText", "Nobel Prize");
      Type(&entry, "EDate", "10 Dec 1922");
      QVERIFY(list->topLevelItem(added - 1)->text(0).contains("Nobel Prize"));
      entry.SelectRecord(2);
      Click(&entry, "DeleteButton");
      QVERIFY(Said(fx.sink, "Verify Delete"));
      QCOMPARE(s.project.Header.RecordCount, added - 1);
      QCOMPARE(list->topLevelItemCount(), int(added - 1));
      Click(&entry, c.viaOk ? "OKButton" : "CancelButton");
      QCOMPARE(Said(fx.sink, "Retain Changes?"), !c.viaOk);
      QCOMPARE(RecordLines(s) == before, c.restored);
      QCOMPARE(s.project.Status.DataChanged != 0, !c.restored);
      QCOMPARE(s.project.Status.EventsBackedUp, int16_t(0));
      if (!c.restored) {
        const EventRecord& r = s.project.Events[size_t(s.project.Header.RecordCount)];
        QCOMPARE(r.Description, std::string("Nobel Prize"));
        if (c.viaOk) QVERIFY(r.JulianDay > 2423000.0 && r.Validated);
      }
    }
  }

  void editingOneFieldMarksTheData() {
    testing::DesktopFixture fx;
    QVERIFY(OpenSample(fx));
    DataEntry entry(*fx.wb, nullptr);
    Type(&entry, "EventText", "Sister Maja is born");
    Click(&entry, "OKButton");
    QCOMPARE(entry.result(), int(QDialog::Accepted));
    QVERIFY(fx.session.project.Status.DataChanged);
    QVERIFY(fx.session.project.Status.CacheDirty);
    QVERIFY(fx.session.WindowTitle.find("[Modified]") != std::string::npos);
  }

  void natalEntryChecksOnOk() {
    struct Case {
      const char* field;
      QString text;
      const char* title;  // "" accepted
    } cases[] = {
        {"ChartName", "  ", "Error in Name"},
        {"PlaceName", "", "Error in Place"},
        {"ChartDate", "31 Feb", "*"},
        {"TimeLimit1", "noon-ish", "*"},
        {"ChartTime", "11:30 am", ""},
    };
    for (const Case& c : cases) {
      testing::DesktopFixture fx;
      QVERIFY(OpenSample(fx));
      const ProjectHeader before = fx.session.project.Header;
      NatalEntry natal(*fx.wb, nullptr);
      QCOMPARE(Child<QLineEdit>(&natal, "ChartName")->text(), QString("Albert Einstein"));
      Child<QLineEdit>(&natal, c.field)->setText(c.text);
      Click(&natal, "OKButton");
      const std::string title = c.title;
      const bool accepted = title.empty();
      QCOMPARE(natal.result() == QDialog::Accepted, accepted);
      QCOMPARE(fx.session.project.Status.NatChanged != 0, accepted);
      if (title == "*") QVERIFY2(!fx.sink.messages.empty(), c.field);
      if (!accepted && title != "*") QVERIFY2(Said(fx.sink, title), c.field);
      if (accepted) {
        QCOMPARE(fx.session.project.Header.Time, std::string("11:30 am"));
        QVERIFY(fx.session.project.Status.NatalValid);
      } else {
        QCOMPARE(FormatNatFile(fx.session.project.Header), FormatNatFile(before));
      }
    }
  }

  void openAndSaveTheSample() {
    testing::DesktopFixture fx;
    const std::string path = fx.CopySample("einstein");
    const std::string copy = fx.TempPath("copy.dat");
    {
      OpenFile preview(*fx.wb, nullptr);
      preview.ShowTitleOf(QString::fromStdString(path));
      QCOMPARE(preview.TitleText(), QString("Albert Einstein: birth time from life events"));
      preview.ShowTitleOf(QString::fromStdString(fx.TempPath("config")));
      QCOMPARE(preview.TitleText(), QString());
    }
    ModalScript open({[&](QWidget* w) {
      auto* dialog = qobject_cast<OpenFile*>(w);
      QVERIFY(dialog);
      QCOMPARE(dialog->windowTitle(), QString("Open Project"));
      dialog->selectFile(QString::fromStdString(path));
      dialog->accept();
    }});
    FileOpen(*fx.wb, nullptr);
    QVERIFY(open.Done());
    Session& s = fx.session;
    QVERIFY(s.project.Open);
    QCOMPARE(s.project.Header.RecordCount, 31);
    QVERIFY(Said(fx.sink, "Open Notepad?"));
    QCOMPARE(fx.wb->recent.Captions[1], "&1 " + s.project.ProjectFolder + "einstein.dat");

    ModalScript save({[&](QWidget* w) {
      auto* dialog = qobject_cast<SaveFile*>(w);
      QVERIFY(dialog);
      dialog->setDirectory(QString::fromStdString(fx.TempPath("")));
      dialog->selectFile("copy");
      dialog->accept();
    }});
    FileSaveAs(*fx.wb, nullptr);
    QVERIFY(save.Done());
    QCOMPARE(s.project.ProjectPath, copy);
    QCOMPARE(ReadAll(copy), ReadAll(path));
    QCOMPARE(ReadAll(NatPathFor(copy)), ReadAll(NatPathFor(path)));

    // Deleting from the open dialogue takes every file of that project only.
    fx.sink.answer = kOk;
    OpenFile dialog(*fx.wb, nullptr);
    QCOMPARE(dialog.DeleteProject(QString::fromStdString(copy)), 2);
    QVERIFY(Said(fx.sink, "Confirm Deletion"));
    QVERIFY(!FileExists(copy) && FileExists(path));
  }

  void optionScreensKeepTheirValues() {
    struct Case {
      CenturyDef::Mode mode;
      QString text;
      bool accepted;
    } cases[] = {
        {CenturyDef::Mode::Century, "1800", true},
        {CenturyDef::Mode::Century, "1850", false},
        {CenturyDef::Mode::Ayanamsa, "336.5", true},
        {CenturyDef::Mode::Ayanamsa, "400", false},
        {CenturyDef::Mode::Ayanamsa, "west", false},
    };
    for (const Case& c : cases) {
      testing::DesktopFixture fx;
      CenturyDef screen(*fx.wb, nullptr, c.mode);
      screen.Value()->setText(c.text);
      Click(&screen, "OKButton");
      QCOMPARE(screen.result() == QDialog::Accepted, c.accepted);
      QCOMPARE(fx.sink.messages.empty(), c.accepted);
      if (c.mode == CenturyDef::Mode::Century)
        QCOMPARE(int(fx.session.CenturyBase), c.accepted ? c.text.toInt() : 1900);
      else
        QCOMPARE(double(fx.session.prefs.UserAyan), c.accepted ? c.text.toDouble() : 0.0);
    }
    testing::DesktopFixture fx;
    HousePoint houses(*fx.wb, nullptr);
    houses.Choose(3, 10);
    Click(&houses, "OKButton");
    QCOMPARE(fx.session.vocab.HouseSystemName[kUserHouseSystem], std::string("Sun on 10th"));

    // The preferences that the reports and Auto Rectify read come back
    // from the screen into the session and the preference file.
    PreferencesScreen prefs(*fx.wb, nullptr);
    Child<QCheckBox>(&prefs, "chkUseOtherWP")->setChecked(true);
    Child<QComboBox>(&prefs, "cmbAutoScoreMode")->setCurrentIndex(1);
    Type(&prefs, "txtUserName", "A. Astrologer");
    Child<QComboBox>(&prefs, "cmbReportFont")->setCurrentText("DejaVu Serif");
    Click(&prefs, "OKButton");
    QCOMPARE(prefs.result(), int(QDialog::Accepted));
    QCOMPARE(fx.session.prefs.UseOtherWP, kTrue);
    QCOMPARE(fx.session.prefs.AutoScoreMode, int16_t(1));
    QCOMPARE(GetPreferenceText(fx.session, "UserName", ""), std::string("A. Astrologer"));
    QCOMPARE(GetPreferenceText(fx.session, "ReportFontName", ""), std::string("DejaVu Serif"));
    QVERIFY(testing::GrabNotBlank(&prefs, "preferences"));
  }

  void entryScreensAreDrawn() {
    testing::DesktopFixture fx;
    QVERIFY(OpenSample(fx));
    // The Select button hands over to the record selection and redraws the
    // lines of the records it switched off.
    fx.wb->selectRecords = [](Workbench& wb, QWidget*) {
      wb.session.project.Events[1].Enabled = kFalse;
      return true;
    };
    DataEntry entry(*fx.wb, nullptr);
    entry.SelectRecord(3);
    entry.show();
    auto* line = entry.findChild<QTreeWidget*>()->topLevelItem(0);
    const QString before = line->text(0) + line->text(1) + line->text(2);
    Click(&entry, "btnSel");
    QVERIFY(line->text(0) + line->text(1) + line->text(2) != before);
    QVERIFY(testing::GrabNotBlank(&entry, "data_entry"));
    entry.reject();  // asks whether to keep the change
    fx.sink.Clear();
    NatalEntry natal(*fx.wb, nullptr);
    natal.show();
    QVERIFY(testing::GrabNotBlank(&natal, "natal_entry"));
    natal.reject();
    // The tour never waits on a screen or a box.
    QStringList shot;
    ScreenshotTourProject(*fx.wb, nullptr, [&shot](QWidget* w, const QString& name) {
      QVERIFY2(testing::GrabNotBlank(w, "tour_" + name), qPrintable(name));
      shot << name;
    });
    QCOMPARE(shot.size(), 11);
    QVERIFY(fx.sink.messages.empty());
    QCOMPARE(fx.session.project.Status.EventsBackedUp, int16_t(0));
  }
};

QTEST_MAIN(ProjectScreensTest)
#include "project_screens_test.moc"
