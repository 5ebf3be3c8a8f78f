#include "core/form_places.h"

#include "core/preferences.h"

namespace vintar {

namespace {

std::string SectionOf(const std::string& form) { return "Form " + form; }

}  // namespace

FormPlace LoadFormPlace(const Session& session, const std::string& form) {
  const std::string& file = session.paths.DesktopFile;
  const std::string section = SectionOf(form);
  FormPlace place;
  auto number = [&](const char* key, int& out) {
    const std::string text = GetProfileText(session, section, key, "", file);
    if (text.empty()) return false;
    out = static_cast<int>(GetProfileNumber(session, section, key, 0, file));
    return true;
  };
  number("State", place.State);
  if (place.State < kFormNormal || place.State > kFormMaximised) place.State = kFormNormal;
  place.HasPosition = number("Left", place.Left) && number("Top", place.Top);
  place.HasSize = number("Width", place.Width) && number("Height", place.Height) && place.Width > 0 &&
                  place.Height > 0;
  return place;
}

bool SaveFormPlace(const Session& session, const std::string& form, const FormPlace& place) {
  const std::string& file = session.paths.DesktopFile;
  const std::string section = SectionOf(form);
  bool ok = PutProfileNumber(session, section, "State", place.State, file);
  if (place.State != kFormMinimised) {
    ok = PutProfileNumber(session, section, "Left", place.Left, file) && ok;
    ok = PutProfileNumber(session, section, "Top", place.Top, file) && ok;
    if (place.State != kFormMaximised) {
      ok = PutProfileNumber(session, section, "Width", place.Width, file) && ok;
      ok = PutProfileNumber(session, section, "Height", place.Height, file) && ok;
    }
  }
  return ok;
}

}  // namespace vintar
