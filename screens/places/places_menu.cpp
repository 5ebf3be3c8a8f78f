#include "screens/places/places_menu.h"

#include <QApplication>
#include <QLineEdit>
#include <QPushButton>

#include "exchange/aaf.h"
#include "screens/common/qt_text.h"
#include "screens/places/acs_data.h"
#include "screens/places/export_screen.h"
#include "screens/places/import_screen.h"
#include "screens/places/place_db_screen.h"
#include "screens/places/time_zones.h"

namespace vintar {

void ShowZoneTable(Workbench& wb, QWidget* parent) {
  TimeZones screen(wb, parent, false);
  screen.exec();
}

void ShowPlaces(Workbench& wb, QWidget* parent) {
  PlaceDB screen(wb, parent, false);
  screen.exec();
}

void ShowAtlas(Workbench& wb, QWidget* parent) {
  ACSData screen(wb, parent);
  screen.exec();
}

void FileImport(Workbench& wb, QWidget* parent) {
  Import screen(wb, parent);
  screen.exec();
}

void FileExport(Workbench& wb, QWidget* parent) {
  if (!ProjectOpenForExport(wb.session)) return;
  ExportChart screen(wb, parent);
  screen.exec();
}

bool PickZone(Workbench& wb, QWidget* parent, std::string& mnemonic, std::string& offset) {
  TimeZones screen(wb, parent, true);
  if (screen.exec() != QDialog::Accepted || screen.Mnemonic().empty()) return false;
  mnemonic = screen.Mnemonic();
  offset = screen.Offset();
  return true;
}

bool PickPlace(Workbench& wb, QWidget* parent, PlaceSelection& place) {
  PlaceDB screen(wb, parent, true);
  if (screen.exec() != QDialog::Accepted || screen.Selection().failed) return false;
  place = screen.Selection();
  return true;
}

namespace {

void Shoot(QWidget* screen, const QString& name, const std::function<void(QWidget*, const QString&)>& shoot) {
  screen->show();
  QApplication::processEvents();
  shoot(screen, name);
  screen->close();
}

}  // namespace

void ScreenshotTourPlaces(Workbench& wb, QWidget* parent,
                          const std::function<void(QWidget*, const QString&)>& shoot) {
  {
    TimeZones screen(wb, parent, true);
    screen.SetSort(ZoneSort::Time);
    Shoot(&screen, "zones", shoot);
  }
  {
    PlaceDB screen(wb, parent, true);
    Shoot(&screen, "places", shoot);
  }
  {
    // The look-up of the project's birth place, passing through the
    // candidate list of a similar spelling on the way.
    const ProjectHeader& h = wb.session.project.Header;
    ACSData screen(wb, parent);
    SetCandidateRunner([&](ACSPlace& candidates) {
      Shoot(&candidates, "atlas_candidates", shoot);
      return int(QDialog::Accepted);
    });
    screen.findChild<QLineEdit*>("txtPlace")->setText(QStringLiteral("Olm, Germany"));
    screen.LookUp();
    // The project's own place may have several candidates too: the tour
    // takes the first rather than wait for a choice.
    SetCandidateRunner([](ACSPlace&) { return int(QDialog::Accepted); });
    if (!h.Place.empty()) screen.findChild<QLineEdit*>("txtPlace")->setText(Q(h.Place));
    if (!h.Date.empty()) screen.findChild<QLineEdit*>("txtDate")->setText(Q(h.Date));
    screen.LookUp();
    SetCandidateRunner({});
    Shoot(&screen, "atlas", shoot);
    if (screen.Found()) {
      ACSZones zones(wb, parent, screen.Place().zone, 1850, 1950);
      Shoot(&zones, "atlas_zones", shoot);
    }
  }
  {
    Import screen(wb, parent);
    Shoot(&screen, "import", shoot);
    AsciiFormatEditor editor(wb, parent);
    Shoot(&editor, "ascii_formats", shoot);
  }
  if (wb.session.project.Open) {
    ExportChart screen(wb, parent);
    Shoot(&screen, "export", shoot);
  }
}

}  // namespace vintar
