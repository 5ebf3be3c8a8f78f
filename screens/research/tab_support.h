// Small helpers the tabulation screens share: the file dialogues of the
// point lists, the tabulation text and the graphics, with their filters
// written the way the engine names them ("Points Files (*.vpt)|*.vpt").
#pragma once

#include <QString>
#include <QWidget>

#include <string>

#include "core/session.h"

namespace vintar {

// "Name (*.a)|*.a|Other (*.b)|*.b" as a Qt filter list "Name (*.a);;Other (*.b)".
QString QtFilter(const std::string& filter);
// The folder the dialogues start in: the open project's, else the user's data folder.
QString StartFolder(const Session& session);
// Asks for a file to open or to save; empty when cancelled. A saved name
// without an extension takes `extension` (".vpt").
QString AskOpenPath(QWidget* parent, const Session& session, const QString& title, const std::string& filter);
QString AskSavePath(QWidget* parent, const Session& session, const QString& title, const std::string& filter,
                    const QString& defaultName, const QString& extension);

}  // namespace vintar
