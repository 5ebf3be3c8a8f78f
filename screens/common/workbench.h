// What every screen of the desktop is given: the session, the rectification
// state beside it, the recent files of the File menu, the atlas lookup that
// the entry screens share, and a way to tell the main window that the open
// project changed. The main window owns one; a test makes its own with a
// capturing message sink.
#pragma once

#include <functional>

#include "core/project_ops.h"
#include "core/session.h"
#include "groups/group_search.h"
#include "groups/strips.h"
#include "places/atlas_entry.h"
#include "rectify/rectification.h"
#include "research/criteria.h"
#include "research/points.h"
#include "research/selection.h"
#include "research/tabulate.h"

class QWidget;

namespace vintar {

struct Workbench {
  explicit Workbench(Session& s) : session(s) {}
  Session& session;
  Rectification rect;
  RecentFilesMenu recent;
  AtlasLookupState atlas;
  NotepadHooks notepad = SystemNotepadHooks();
  // The Research menu: the point list, the last tabulation's parameters,
  // the criteria list and the record selection stay as the user left them
  // until the program ends.
  ResearchState research;
  TabulateParams tabulate;
  CriteriaList criteria;
  SelectionList selection;
  // The Family menu: the search points, the last search and its matches,
  // and the charts of the strips window.
  GroupSearchState group;
  GroupSearchParams groupParams;
  StripTable strips;
  // Called after anything that changes the open project, its title or its
  // records, so that the main window redraws its summary and menus.
  std::function<void()> projectChanged = [] {};
  // Screens of one menu that a screen of a lower one opens, set by the main
  // window: the record editor (the rectification screens' Events buttons)
  // and the record selection of the editor's Select button, which returns
  // true when it switched records off.
  std::function<void(Workbench&, QWidget*)> editEvents;
  std::function<bool(Workbench&, QWidget*)> selectRecords;
  void Changed() const { projectChanged(); }
};

}  // namespace vintar
