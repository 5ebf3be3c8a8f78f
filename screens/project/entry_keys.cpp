#include "screens/project/entry_keys.h"

#include <QComboBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QWidget>

#include "core/record_edit.h"
#include "core/session.h"

namespace vintar {

EntryKeys::EntryKeys(Session& session, QObject* parent) : QObject(parent), session_(session) {}

void EntryKeys::SetFields(const std::vector<QWidget*>& fields) {
  for (QWidget* w : fields_) {
    w->removeEventFilter(this);
    if (auto* combo = qobject_cast<QComboBox*>(w); combo && combo->lineEdit())
      combo->lineEdit()->removeEventFilter(this);
  }
  fields_ = fields;
  for (QWidget* w : fields_) {
    w->installEventFilter(this);
    if (auto* combo = qobject_cast<QComboBox*>(w); combo && combo->lineEdit())
      combo->lineEdit()->installEventFilter(this);
  }
}

int EntryKeys::IndexOf(QObject* watched) const {
  for (size_t i = 0; i < fields_.size(); ++i) {
    QWidget* w = fields_[i];
    if (w == watched) return int(i);
    if (auto* combo = qobject_cast<QComboBox*>(w); combo && combo->lineEdit() == watched) return int(i);
  }
  return -1;
}

bool EntryKeys::Move(QWidget* from, int step) {
  const int count = int(fields_.size());
  const int start = IndexOf(from);
  if (start < 0 || step == 0 || count == 0) return false;
  for (int k = 1; k < count; ++k) {
    QWidget* next = fields_[size_t(((start + step * k) % count + count) % count)];
    if (!next->isVisibleTo(next->window()) || !next->isEnabled()) continue;
    next->setFocus(step > 0 ? Qt::TabFocusReason : Qt::BacktabFocusReason);
    if (auto* edit = qobject_cast<QLineEdit*>(next)) edit->selectAll();
    if (auto* combo = qobject_cast<QComboBox*>(next); combo && combo->lineEdit()) combo->lineEdit()->selectAll();
    return true;
  }
  return false;
}

bool EntryKeys::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() != QEvent::KeyPress) return false;
  auto* key = static_cast<QKeyEvent*>(event);
  if (key->modifiers() & (Qt::ControlModifier | Qt::AltModifier)) return false;
  EntryKey which = EntryKey::Other;
  switch (key->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter: which = EntryKey::Enter; break;
    case Qt::Key_Down: which = EntryKey::Down; break;
    case Qt::Key_Up: which = EntryKey::Up; break;
    default: return false;
  }
  const int step = EntryKeyMove(session_, which);
  if (step == 0) return false;
  const int index = IndexOf(watched);
  if (index < 0) return false;
  // The focus leaving the field runs its check, as a click elsewhere does.
  Move(fields_[size_t(index)], step);
  return true;
}

}  // namespace vintar
