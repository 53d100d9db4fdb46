#pragma once

#include <QString>

namespace Tamrix::JavaScriptPlugin {

// The engine is given the names of files in UTF-8, and tells its scripts and debuggers a character
// for each byte of them.

inline QString fileFromEngine(const QString& text) {
    return QString::fromUtf8(text.toLatin1());
}

inline QString fileForEngine(const QString& file) {
    return QString::fromLatin1(file.toUtf8());
}

}  // namespace Tamrix::JavaScriptPlugin
