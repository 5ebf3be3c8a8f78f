// The keyboard of the entry screens. With the Nova keyboard (the CUAKeys
// preference off) Enter and the down arrow move to the next entry field and
// the up arrow to the previous one; with CUA keys they do what they always
// do (Enter presses the default button).
#pragma once

#include <QObject>

#include <vector>

class QWidget;

namespace vintar {

class Session;

class EntryKeys : public QObject {
  Q_OBJECT
 public:
  EntryKeys(Session& session, QObject* parent);
  // The fields in their order; hidden and disabled ones are skipped.
  void SetFields(const std::vector<QWidget*>& fields);
  // Moves the focus from `from` by +1 or -1 field; false when it stays.
  bool Move(QWidget* from, int step);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  int IndexOf(QObject* watched) const;
  Session& session_;
  std::vector<QWidget*> fields_;
};

}  // namespace vintar
