#pragma once

#include <QString>

#include "plugins/javascript/values.h"

namespace Tamrix::JavaScriptPlugin {

// The engine is given the names of files in UTF-8, and tells its scripts and debuggers a character
// for each byte of them.

inline QString fileFromEngine(JSString* text) {
    return QString::fromUtf8(fromJsString(text).toLatin1());
}

inline QString fileForEngine(const QString& file) {
    return QString::fromLatin1(file.toUtf8());
}

}  // namespace Tamrix::JavaScriptPlugin
