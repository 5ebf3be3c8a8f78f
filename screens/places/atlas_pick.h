// The atlas look-up of the entry screens: the typed place found in the open
// atlas (and the user's own places), the candidate list when the text names
// several places or only a similar spelling was found, and the fields of the
// chosen place on the event's local date and time (latitude, longitude, the
// zone in force and its mnemonic).
#pragma once

#include <QDialog>

#include <functional>
#include <string>
#include <vector>

#include "places/atlas_entry.h"
#include "screens/common/workbench.h"

class QLabel;
class QTreeWidget;
class QPushButton;

namespace vintar {

// The entry screens' look-up: finds the typed place in the atlas (wb.atlas,
// loaded once through PrepareAtlasLookup), shows the candidates when there
// are several or the search was fuzzy, and fills the fields for the chosen
// place on that local date and time. False when cancelled or not found
// (message shown).
bool PickAtlasPlace(Workbench& wb, QWidget* parent, const std::string& typed, int year, int month, int day, int hour,
                    int minute, AtlasEntryFields& out);

// The first half of the look-up: the place the typed text names, chosen
// from the candidates when there are several or the search was fuzzy.
// False when cancelled or not found (message shown).
bool ChooseAtlasPlace(Workbench& wb, QWidget* parent, const std::string& typed, AtlasPlace& chosen);

// The candidate list ("Select Country or State", "Select Place in ...").
// One row per place: name, state or province, country, coordinates, zone.
// The most likely place (the first) is selected; a double click or Enter
// takes the selected one.
class ACSPlace : public QDialog {
  Q_OBJECT
 public:
  ACSPlace(const AtlasCandidates& candidates, QWidget* parent);

  // The chosen place's index in the candidates, -1 when none is selected.
  int SelectedIndex() const;
  void SelectIndex(int index);
  QTreeWidget* List() const { return list_; }

 private:
  QTreeWidget* list_;
  QLabel* note_;
  QPushButton* ok_;
};

// How PickAtlasPlace runs the candidate list: by default exec(). A test sets
// a function that drives the dialog (selects, clicks) and returns the
// dialog's result code; an empty function restores the default.
using CandidateRunner = std::function<int(ACSPlace& dialog)>;
void SetCandidateRunner(CandidateRunner runner);

// A place as the screens name it: "Ulm, Baden-Wurttemberg, Germany", in the
// atlas's own spelling.
QString AtlasPlaceCaption(const AtlasPlace& place);

}  // namespace vintar
