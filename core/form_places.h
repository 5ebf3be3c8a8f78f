// Where each window was left: VTDesktop.ini holds a section "Form <name>"
// per window with State (0 normal, 1 minimised, 2 maximised), Left, Top,
// Width and Height in screen pixels. A window that keeps its place writes
// them on closing and is put back there on opening when the place still
// lies on a screen.
#pragma once

#include <string>

#include "core/session.h"

namespace vintar {

struct FormPlace {
  int State = 0;
  int Left = 0, Top = 0, Width = 0, Height = 0;
  bool HasPosition = false;  // Left and Top were stored
  bool HasSize = false;      // Width and Height were stored
};

inline constexpr int kFormNormal = 0, kFormMinimised = 1, kFormMaximised = 2;

// The stored place of `form`; nothing stored gives HasPosition and HasSize
// false.
FormPlace LoadFormPlace(const Session& session, const std::string& form);
// State always; Left and Top unless minimised; Width and Height only when
// neither minimised nor maximised (the size of the normal window is kept).
// Returns false when the file could not be written.
bool SaveFormPlace(const Session& session, const std::string& form, const FormPlace& place);

}  // namespace vintar
