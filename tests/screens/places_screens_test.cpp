// The places, atlas and exchange screens: the entry screens' atlas pick and
// its candidate list, the zone table, the place database, the import that
// opens its project, the export, and the look-up screens' pictures.
#include <QComboBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalSpy>
#include <QTreeWidget>
#include <QtTest>

#include "core/file_io.h"
#include "core/project_ops.h"
#include "places/zone_list.h"
#include "qt_support/qt_test_support.h"
#include "screens/common/qt_text.h"
#include "screens/places/acs_data.h"
#include "screens/places/atlas_pick.h"
#include "screens/places/export_screen.h"
#include "screens/places/import_screen.h"
#include "screens/places/place_db_screen.h"
#include "screens/places/places_menu.h"
#include "screens/places/time_zones.h"

using namespace vintar;

namespace {

void Click(QWidget* screen, const char* name) {
  auto* button = screen->findChild<QAbstractButton*>(name);
  QVERIFY2(button, name);
  button->click();
}

void SetText(QWidget* screen, const char* name, const QString& text) {
  auto* edit = screen->findChild<QLineEdit*>(name);
  QVERIFY2(edit, name);
  edit->setText(text);
}

QString Text(QWidget* screen, const char* name) {
  if (auto* edit = screen->findChild<QLineEdit*>(name)) return edit->text();
  if (auto* label = screen->findChild<QLabel*>(name)) return label->text();
  return QStringLiteral("<no %1>").arg(name);
}

std::string LastTitle(const testing::DesktopFixture& fx) {
  return fx.sink.messages.empty() ? std::string() : fx.sink.messages.back().title;
}

std::string ReadText(const std::string& path) {
  std::string bytes;
  return ReadFileBytes(path, bytes, kMaxSmallFileBytes) == 0 ? bytes : std::string();
}

void WriteText(const std::string& path, const std::string& bytes) {
  std::string error;
  QVERIFY2(WriteFileAtomically(path, bytes, error), error.c_str());
}

bool OpenSample(testing::DesktopFixture& fx) {
  bool failed = false;
  return OpenProject(fx.session, fx.CopySample(), failed);
}

}  // namespace

class PlacesScreensTest : public QObject {
  Q_OBJECT
 private slots:
  void cleanup() { SetCandidateRunner({}); }

  // One exact match fills the fields at once; several or a similar spelling
  // go through the candidate list; nothing found gives the atlas's message.
  void atlasPick() {
    struct Case {
      const char* typed;
      int pickRow;             // the row the candidate list takes, -1 cancels
      bool listShown;          // the candidate list was offered
      const char* title;       // its title
      bool filled;
      const char* zoneTime;    // when filled and known
      const char* message;     // the message when not filled and not cancelled
    } cases[] = {
        {"Ulm, Germany", 0, false, "", true, "-0:39:57", ""},
        {"Springfield", 2, true, "Select Country or State", true, "", ""},
        {"Olm, Germany", -1, true, "Select Place in Germany", false, "", ""},
        {"Xqzzy, Germany", 0, false, "", false, "", "City not found"},
        {"   ", 0, false, "", false, "", "The placename is not recognised."},
    };
    for (const Case& c : cases) {
      testing::DesktopFixture fx;
      int shown = 0;
      QString title, pickedLatitude;
      SetCandidateRunner([&](ACSPlace& list) {
        ++shown;
        title = list.windowTitle();
        if (c.pickRow < 0) {
          Click(&list, "CancelButton");
          return list.result();
        }
        list.SelectIndex(c.pickRow);
        pickedLatitude = list.List()->topLevelItem(c.pickRow)->text(3);
        Click(&list, "OKButton");
        return list.result();
      });
      AtlasEntryFields out;
      const bool filled = PickAtlasPlace(*fx.wb, nullptr, c.typed, 1879, 3, 14, 11, 30, out);
      QCOMPARE(filled, c.filled);
      QCOMPARE(shown, c.listShown ? 1 : 0);
      if (c.listShown) QCOMPARE(title, QString(c.title));
      if (c.filled && *c.zoneTime) QCOMPARE(out.ZoneTime, std::string(c.zoneTime));
      if (c.filled && c.pickRow > 0) QCOMPARE(Q(out.Latitude), pickedLatitude);  // the row chosen, not the first
      if (*c.message) {
        QCOMPARE(fx.sink.messages.size(), size_t(1));
        QCOMPARE(fx.sink.messages[0].text, std::string(c.message));
      } else if (!c.filled) {
        QVERIFY(fx.sink.messages.empty());  // a cancel says nothing
      }
    }
  }

  // The zone chosen is the row's own in every order.
  void zoneTableReturnsTheChosenRow() {
    for (const char* option : {"OptionMnem", "OptionTime", "OptionFull"}) {
      testing::DesktopFixture fx;
      TimeZones screen(*fx.wb, nullptr);
      Click(&screen, option);
      QTreeWidget* list = screen.List();
      QCOMPARE(list->topLevelItemCount(), fx.session.zones.ZoneCount);
      const auto found = list->findItems("BST", Qt::MatchExactly, list->headerItem()->text(0) == "Mnemonic" ? 0 : 1);
      QCOMPARE(found.size(), 1);
      list->setCurrentItem(found[0]);
      Click(&screen, "OKButton");
      QCOMPARE(screen.result(), int(QDialog::Accepted));
      QCOMPARE(screen.Mnemonic(), std::string("BST"));
      QCOMPARE(screen.Offset(), std::string("-1:00"));
    }
  }

  // Add, select, find and delete a place; a wrong or blank entry keeps the
  // screen where it is.
  void placeDatabase() {
    testing::DesktopFixture fx;
    PlaceDB screen(*fx.wb, nullptr);
    QSignalSpy closed(&screen, &QDialog::rejected);
    const int shipped = screen.List()->count();
    QVERIFY(shipped > 0);
    QVERIFY(!Text(&screen, "PlaceName").isEmpty());  // the first place is shown

    // A blank new place cannot be left for another, but can be dropped.
    Click(&screen, "btnAdd");
    screen.List()->setCurrentRow(0);
    QCOMPARE(LastTitle(fx), std::string("No Place Name"));
    QVERIFY(screen.State().PlaceNew);
    screen.reject();
    QCOMPARE(closed.count(), 1);

    PlaceDB again(*fx.wb, nullptr);
    QSignalSpy closedAgain(&again, &QDialog::rejected);
    Click(&again, "btnAdd");
    SetText(&again, "PlaceName", "Hobbiton");
    SetText(&again, "Latitude", "51N00");
    SetText(&again, "Longitude", "1Q30");  // wrong: the close stops once
    again.reject();
    QCOMPARE(closedAgain.count(), 0);
    SetText(&again, "Longitude", "1W30");
    fx.sink.answer = kOk;
    Click(&again, "OKButton");  // Select saves the new place first
    QCOMPARE(LastTitle(fx), std::string("Save Changes?"));
    QCOMPARE(again.result(), int(QDialog::Accepted));
    QCOMPARE(again.Selection().Name, std::string("Hobbiton"));
    QCOMPARE(again.Selection().Longitude, std::string("001W30"));  // as the database stores it

    PlaceDB third(*fx.wb, nullptr);
    QCOMPARE(third.List()->count(), shipped + 1);
    third.askFindText = [](QString& text) {
      text = "hobbit";
      return true;
    };
    Click(&third, "btnFind");
    QCOMPARE(Text(&third, "PlaceName"), QString("Hobbiton"));
    third.List()->clearSelection();
    third.List()->currentItem()->setSelected(true);
    fx.sink.answer = kYes;
    Click(&third, "btnDelete");
    QCOMPARE(third.List()->count(), shipped);
    QVERIFY(third.List()->findItems("Hobbiton", Qt::MatchExactly).isEmpty());
  }

  // An events list or an AAF file becomes a project that is then open; bad
  // names and missing sources stop with their messages and make nothing.
  void importMakesAndOpensProject() {
    struct Case {
      ImportKind kind;
      const char* file;
      const char* content;
      const char* name;      // typed destination name, empty for the proposed one
      const char* failTitle; // empty when the import succeeds
      int records;
    } cases[] = {
        {ImportKind::EventsList, "life.txt", "\"Wedding\"\r\n12 JUN 1990\r\n\r\n\"Move\"\r\nMAY 1992\r\n", "", "", 2},
        {ImportKind::Aaf, "charts.aaf",
         "#A93:Einstein,Albert,m,14.3.1879g,11:30,Ulm,D\r\n#B93:*,48n24,9e59,0e39:56,L\r\n", "", "", 1},
        {ImportKind::EventsList, "life.txt", "\"Wedding\"\r\n12 JUN 1990\r\n", "x.txt", "Invalid Extension", 0},
        {ImportKind::EventsList, "", "", "mine", "No Source Files displayed", 0},
    };
    for (const Case& c : cases) {
      testing::DesktopFixture fx;
      int changed = 0;
      fx.wb->projectChanged = [&] { ++changed; };
      Import screen(*fx.wb, nullptr);
      screen.SetKind(c.kind);
      QString source;
      if (*c.file) {
        source = QString::fromStdString(fx.TempPath(c.file));
        WriteText(PathOf(source), c.content);
      }
      screen.ChooseSource(source);
      if (*c.file) QCOMPARE(Text(&screen, "txtDestName"), QString::fromStdString(ProposedImportName(c.file)));
      if (*c.name) SetText(&screen, "txtDestName", c.name);
      SetText(&screen, "txtDestDir", QString::fromStdString(fx.TempPath("")));
      Click(&screen, "TransferButton");
      if (*c.failTitle) {
        QCOMPARE(LastTitle(fx), std::string(c.failTitle));
        QVERIFY(screen.ImportedPath().empty());
        QVERIFY(!fx.session.project.Open);
        QCOMPARE(changed, 0);
        continue;
      }
      const std::string dat = fx.TempPath(ProposedImportName(c.file));
      QCOMPARE(screen.ImportedPath(), dat);
      QCOMPARE(fx.session.project.ProjectPath, dat);
      QCOMPARE(int(fx.session.project.Header.RecordCount), c.records);
      QCOMPARE(changed, 1);
      QCOMPARE(screen.result(), int(QDialog::Accepted));
      QCOMPARE(LoadImportSettings(fx.session).FromFile, std::string(c.file));  // remembered at close
    }
  }

  void importRefusesAnExistingProject() {
    testing::DesktopFixture fx;
    const std::string sample = fx.CopySample();
    const std::string before = ReadText(sample);
    Import screen(*fx.wb, nullptr);
    screen.SetKind(ImportKind::EventsList);
    const std::string source = fx.TempPath("life.txt");
    WriteText(source, "\"Wedding\"\r\n12 JUN 1990\r\n");
    screen.ChooseSource(QString::fromStdString(source));
    SetText(&screen, "txtDestName", "einstein.dat");
    SetText(&screen, "txtDestDir", QString::fromStdString(fx.TempPath("")));
    Click(&screen, "TransferButton");
    QVERIFY(screen.ImportedPath().empty());
    QVERIFY(!fx.sink.messages.empty());
    QCOMPARE(ReadText(sample), before);
  }

  void exportWritesTheChartFile() {
    testing::DesktopFixture fx;
    FileExport(*fx.wb, nullptr);  // nothing open: a message, no screen
    QCOMPARE(fx.sink.messages.back().text, std::string("There is no project open to export."));
    QVERIFY(OpenSample(fx));
    for (const char* option : {"OptionAAF", "OptionSendSF"}) {
      ExportChart screen(*fx.wb, nullptr);
      screen.SetDocumentsFolder(fx.TempPath("docs"));
      SetText(&screen, "txtFile", QString::fromStdString(fx.TempPath("out.aaf")));
      Click(&screen, option);
      Click(&screen, "OKButton");
      QCOMPARE(screen.result(), int(QDialog::Accepted));
      const std::string path = std::string(option) == "OptionAAF"
                                   ? fx.TempPath("out.aaf")
                                   : fx.TempPath("docs") + "/Halcyra User Files/Charts/VTTemp.aaf";
      QVERIFY(ReadText(path).rfind("#A93:", 0) == 0);
    }
  }

  // The atlas look-up on its own, its zone changes, and every screen of the
  // tour drawn.
  void atlasScreenAndTour() {
    testing::DesktopFixture fx;
    ACSData screen(*fx.wb, nullptr);
    SetText(&screen, "txtPlace", "Ulm, Germany");
    SetText(&screen, "txtDate", "14 Mar 1879");
    SetText(&screen, "txtTime", "11:30");
    Click(&screen, "btnLookup");
    QVERIFY(screen.Found());
    QVERIFY(Text(&screen, "lblZone").endsWith("-0:39:57"));
    QCOMPARE(Text(&screen, "lblZoneName"), QString("Europe/Berlin"));
    screen.resize(screen.sizeHint());
    QVERIFY(testing::GrabNotBlank(&screen, "atlas_lookup"));

    SetText(&screen, "txtDate", "31 Feb 1879");  // a wrong date keeps the last result
    Click(&screen, "btnLookup");
    QCOMPARE(Text(&screen, "lblZoneName"), QString("Europe/Berlin"));
    QVERIFY(!fx.sink.messages.empty());

    ACSZones zones(*fx.wb, nullptr, "Europe/Berlin", 1890, 1950);
    QVERIFY(zones.List()->topLevelItemCount() > 10);  // standard time of 1893, the wars' summer times
    ACSZones unknown(*fx.wb, nullptr, "Nowhere/Atall", 1890, 1950);
    QCOMPARE(unknown.List()->topLevelItemCount(), 0);

    QVERIFY(OpenSample(fx));
    QStringList shots;
    ScreenshotTourPlaces(*fx.wb, nullptr, [&](QWidget* w, const QString& name) {
      shots << name;
      QVERIFY2(testing::GrabNotBlank(w, "tour_" + name), qPrintable(name));
    });
    QCOMPARE(shots, QStringList({"zones", "places", "atlas_candidates", "atlas", "atlas_zones", "import",
                                 "ascii_formats", "export"}));
  }
};

QTEST_MAIN(PlacesScreensTest)
#include "places_screens_test.moc"
