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
    /// Runs the text of a file as its module.
    void load(const QString& text, const QString& path) { run(ObjectRoot(add(text, path))); }
    /// Forgets the module of a file, which is loaded anew then.
    void forget(const QString& path) { m_modules.remove(path); }
    bool isLoaded(const QString& path) const { return m_modules.contains(path); }

private:
    static JSObject* resolve(JSContext* context, JS::HandleValue importer,
                             JS::HandleObject request);
    static bool importLater(JSContext* context, JS::HandleValue importer, JS::HandleObject request,
                            JS::HandleObject promise);
    static bool describe(JSContext* context, JS::HandleValue file, JS::HandleObject meta);

    /// What a module or a script asks for.
    struct Import {
        QString name;
        /// The file that asks; may be empty.
        QString importer;
        /// Where it stands, when that is in no running code.
        LineInfo place;
    };
    JSObject* moduleOf(const Import& import);
    JSObject* add(const QString& text, const QString& path);
    /// Where a module asks for another one; invalid when that can't be told.
    LineInfo placeOf(const Import& import) const;
    QString find(const Import& import) const;

    QStringList m_folders;
    QHash<QString, ObjectRoot> m_modules;
    /// What run() has run last.
    ObjectRoot m_outermost;
};

}  // namespace Tamrix::JavaScriptPlugin
