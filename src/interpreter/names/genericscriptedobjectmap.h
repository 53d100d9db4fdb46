#pragma once

#include <QDateTime>
#include <QMap>
#include <QString>

#include "base/export.h"
#include "base/outcome.h"
#include "interpreter/bridge/scriptargument.h"
#include "platform/objectmodel/scriptedobjectmap.h"

namespace Tamrix {

/// An object map whose names are variables of a script, for all languages. It reads no script
/// itself: the program objectmaptool runs it, once for each state of the files. A plug-in derives
/// from it and brings what is its language's:
///
///     extern "C" TAMRIX_EXPORT Tamrix::ScriptedObjectMap* createScriptedObjectMap(const QString&);
///
/// whose argument is the path of the script. In the process of objectmaptool the same class runs
/// the script, in the interpreter that is Interpreter::self(), and tells its variables. Script
/// thread only.
class TAMRIX_EXPORT GenericScriptedObjectMap : public ScriptedObjectMap {
public:
    /// The script's path, and how its language writes it.
    GenericScriptedObjectMap(const QString& path, const QString& suffix, ScriptNotation notation);

    const ScriptNotation& notation() const override { return m_notation; }
    /// ":save_button" for what a script writes behind the notation's qualifier. Also takes
    /// "names.save_button" in every language, and the key itself.
    QString scriptedNameKey(const ScriptedSymbolicName& name) const override;
    /// The other way round.
    QString toSymbolicName(const QString& key) const override;

    // By what the tool has told.
    QString toLegacyRepresentation(QString* error) override;
    QString getRealName(const ScriptedSymbolicName& name) override;
    QString getNestedScriptedRealName(const ScriptedSymbolicName& name) override;
    QString semiQualifiedSymbolicName(const ScriptedSymbolicName& name) override;
    QString existingSymbolicName(const ObjectName& name) override;
    QStringList existingSymbolicNames() override;
    bool variableNameExists(const ScriptedSymbolicName& name) override;

    /// Key and real name, in which references are keys, of all entries as the files have them now.
    /// A failure stays until they change.
    Outcome<QMap<QString, QString>> getRealNameMapping();
    /// Empty on failure, which is told on standard error.
    QMap<QString, QString> getRealNameMappingIgnoreError();
    /// Runs the tool, however that was before, and takes what it tells.
    Outcome<> fetchRealNameMapping();

    // In the process of the tool.
    /// Runs this text as the script, and gives its names with their whole real names. Fails with
    /// what is wrong with them, with file and line, or with the error that the script raised.
    Outcome<QMap<QString, ObjectName>> getObjectMapping(const QString& text);
    /// The same as texts.
    Outcome<QMap<QString, QString>> toRealNameMapping(const QString& text);
    /// The real names of values of a script, under their keys.
    static QMap<QString, QString> toRealNameMapping(const ScriptArgument::Map& values);
    /// Names nested in others as references to the entries that they are.
    static QMap<QString, QString> toSimplifiedRealNameMapping(
        const QMap<QString, QString>& realNames);

    // The file is read as the script that it is: these don't read it, and keep its path.
    Outcome<> load(const QString& path) override;
    /// Fails once for each faulty state of the files.
    Outcome<> loadIfChanged(const QString& path) override;

    /// How long the tool may run, in milliseconds.
    static constexpr int toolTimeout = 30000;

protected:
    /// The variables of the script that Interpreter::self() has run, by name: at least those that
    /// hold maps, whoever defined them; those of the language and the library may be left out.
    virtual ScriptArgument::Map scriptVariables() = 0;
    /// Runs the text as the script. By default as a test script of its file is evaluated.
    virtual bool runScript(const QString& text);

    Outcome<> update() override;
    QString keyOf(const QString& name) const override;
    QString newKey(const ObjectName& name) override;
    Outcome<QByteArray> contentWith(const QByteArray& content, const QString& key,
                                    const ObjectName& name) override;
    /// How texts are written from now on.
    void setLiteral(QString (*literal)(const QString& text)) { m_notation.literal = literal; }

private:
    /// What the name of a script and a point are: "names.".
    QString pointQualifier() const;

    ScriptNotation m_notation;
    QDateTime m_cacheTime;
    /// Made when it is asked for.
    QMap<QString, QString> m_cachedMapping;
    QString m_cacheError;
    bool m_isErrorTold = false;
};

}  // namespace Tamrix
