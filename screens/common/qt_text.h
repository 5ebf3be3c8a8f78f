// Text between the engine and the widgets. The project files and the engine
// hold single-byte Latin-1 text; widgets hold Unicode. File names are the
// system's own bytes and go through the local 8-bit encoding instead.
#pragma once

#include <QFile>
#include <QString>

#include <string>

namespace vintar {

inline QString Q(const std::string& latin1) { return QString::fromLatin1(latin1.data(), qsizetype(latin1.size())); }
// Characters outside Latin-1 become '?'.
inline std::string L(const QString& text) { return text.toLatin1().toStdString(); }

inline QString QPath(const std::string& path) { return QFile::decodeName(path.c_str()); }
inline std::string PathOf(const QString& path) { return QFile::encodeName(path).toStdString(); }

}  // namespace vintar
