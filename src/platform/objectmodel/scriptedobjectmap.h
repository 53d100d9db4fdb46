#pragma once

#include <QDateTime>
#include <QString>
#include <QStringList>

#include "base/export.h"
#include "platform/objectmodel/objectmap.h"
#include "platform/objectmodel/scriptnotation.h"

namespace Tamrix {

/// A symbolic name as a script writes it, "names.save_button", or the key of its entry,
/// ":save_button".
class ScriptedSymbolicName {
public:
    explicit ScriptedSymbolicName(const QString& text) : m_text(text) {}
    QString text() const { return m_text; }

private:
    QString m_text;
};

/// An object map whose names are variables in a script of the suite. Its keys are ":save_button"
/// for the variable save_button, so that a name may also be written as in a plain map. Script
/// thread only.
class TAMRIX_EXPORT ScriptedObjectMap : public ObjectMap {
public:
    /// `path` is the script's file, `suffix` that of its language.
    ScriptedObjectMap(const QString& path, const QString& suffix);

    /// The map in the form of a plain one; empty with `*error` set on failure.
    virtual QString toLegacyRepresentation(QString* error) = 0;
    /// The real name, in which references are kept; empty for an unknown name.
    virtual QString getRealName(const ScriptedSymbolicName& name) = 0;
    /// The name's value as a script writes it, with variables for references; empty for an unknown
    /// name.
    virtual QString getNestedScriptedRealName(const ScriptedSymbolicName& name) = 0;
    /// The name as scripts write it that import the map: "names.save_button".
    virtual QString semiQualifiedSymbolicName(const ScriptedSymbolicName& name) = 0;
    /// The key of a real name, empty when the map has none.
    virtual QString existingSymbolicName(const ObjectName& name) = 0;
    /// All keys, sorted.
    virtual QStringList existingSymbolicNames() = 0;
    virtual bool variableNameExists(const ScriptedSymbolicName& name) = 0;
    /// The key of a name, empty for a text that is none.
    virtual QString scriptedNameKey(const ScriptedSymbolicName& name) const = 0;
    /// The name of a key as it is written in a script.
    virtual QString toSymbolicName(const QString& key) const = 0;
    /// How the language writes names.
    virtual const ScriptNotation& notation() const = 0;

    /// A name as a script writes it. `withReferences` puts variables of the map in the place of the
    /// names that they stand for.
    QString createScriptedRealName(const ObjectName& name, bool onSeveralLines,
                                   bool withReferences);
    /// The newest modification of a file of these patterns in the folder of the script and below;
    /// invalid without one.
    QDateTime lastScriptModification(const QStringList& patterns) const;
    QString suffix() const { return m_suffix; }

private:
    QString m_suffix;
};

}  // namespace Tamrix
