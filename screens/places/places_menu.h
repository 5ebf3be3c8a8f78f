// The places, zones, atlas and exchange commands of the main window's menus,
// the choices the entry screens make through the zone table and the place
// database, and the screenshot tour of these screens.
#pragma once

#include <QString>
#include <QWidget>

#include <functional>
#include <string>

#include "places/place_db.h"
#include "screens/common/workbench.h"
#include "screens/places/atlas_pick.h"

namespace vintar {

// The zone table, only shown.
void ShowZoneTable(Workbench& wb, QWidget* parent);
// The place database, kept: add, find, change, delete.
void ShowPlaces(Workbench& wb, QWidget* parent);
// The atlas look-up on its own: find a place, see its zone.
void ShowAtlas(Workbench& wb, QWidget* parent);
// AAF, CSV, events list into a project, then open it.
void FileImport(Workbench& wb, QWidget* parent);
// AAF / the sibling program's chart file.
void FileExport(Workbench& wb, QWidget* parent);

// The entry screens' choices: a zone of the zone table (its mnemonic and
// offset text), a place of the place database (name, latitude, longitude).
// False when cancelled.
bool PickZone(Workbench& wb, QWidget* parent, std::string& mnemonic, std::string& offset);
bool PickPlace(Workbench& wb, QWidget* parent, PlaceSelection& place);

// Opens each screen of this menu filled with the open project's data,
// without waiting for input, and hands it to `shoot` with its short name.
void ScreenshotTourPlaces(Workbench& wb, QWidget* parent,
                          const std::function<void(QWidget*, const QString&)>& shoot);

}  // namespace vintar
