#pragma once

#include <QHash>
#include <QString>
#include <QStringList>

#include "platform/testresult/lineinfo.h"
#include "plugins/javascript/roots.h"

namespace Tamrix::JavaScriptPlugin {

/// The modules of one script, each loaded once. "./name" and "../name" are files beside the one
/// that imports, other names are looked for in the folders for modules; a suffix may be left out.
class Modules {
public:
    /// Lets the engine ask the modules of the current realm; once for the process.
    static void install();

    QStringList& folders() { return m_folders; }

    /// Compiles the text of a file as a module, whose imports are those of the file. Throws
    /// ScriptErrorSet.
    JSObject* compile(const QString& text, const QString& path);
    /// Runs a module and those that it imports, until it has waited for all that it waits for.
    /// Throws ScriptErrorSet.
    void run(JS::HandleObject module);
    /// The module that a file asks for, which may have no name itself. `isRunning` tells that it
    /// does so by code that runs.
    JSObject* imported(const QString& name, const QString& importer, bool isRunning);
    /// Runs the text of a file as its module.
    void load(const QString& text, const QString& path) { run(ObjectRoot(add(text, path))); }
    /// Forgets the module of a file, which is loaded anew then.
    void forget(const QString& path) { m_modules.remove(path); }
    bool isLoaded(const QString& path) const { return m_modules.contains(path); }

private:
    JSObject* add(const QString& text, const QString& path);
    /// Where a module asks for another one; invalid when that can't be told.
    LineInfo placeOf(const QString& name, const QString& importer) const;

    QStringList m_folders;
    QHash<QString, ObjectRoot> m_modules;
    /// What run() has run last.
    ObjectRoot m_outermost;
};

}  // namespace Tamrix::JavaScriptPlugin
