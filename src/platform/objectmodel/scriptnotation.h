#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QStringList>

#include "base/export.h"
#include "platform/objectmodel/objectname.h"

namespace Tamrix {

/// How a script language writes object names that are variables. A language fills in the fields
/// where it differs; what is written by them stands in the functions below. Data of constants, any
/// thread.
struct ScriptNotation {
    /// How the words of a new variable are put together.
    enum class Words {
        Underscores,  ///< save_button
        Camels,       ///< saveButton
        Capitals      ///< SAVE_BUTTON
    };

    /// The statement that makes a variable; %1 is its name, %2 its value.
    QString statement = QStringLiteral("%1 = %2");
    /// The variable within the value of another one: "%1", or "$%1".
    QString reference = QStringLiteral("%1");
    /// What stands in front of it elsewhere: "$names::". Empty: the name of the script and a point,
    /// "names.".
    QString qualifier = QString();
    /// Around the properties of a name, between one's name and its value, and between two. Blanks
    /// at the ends of lines are left out.
    QString open = QStringLiteral("{");
    QString afterPropertyName = QStringLiteral(": ");
    QString betweenProperties = QStringLiteral(", ");
    QString close = QStringLiteral("}");
    /// In front of a comment that goes to the end of the line.
    QString comment = QStringLiteral("# ");
    /// What a new file starts and ends with, whole lines; may be empty.
    QString heading = QString();
    QString ending = QString();
    Words words = Words::Underscores;
    /// The text as a literal of the language, on one line whatever it holds.
    QString (*literal)(const QString& text) = nullptr;
    /// Identifiers that are no names of variables, with blanks between them: keywords, and what the
    /// language or its library means something by.
    const char* reserved = "";
    /// Whether the name of a property stands without quotes when it is an identifier.
    bool hasBareProperties = false;
    /// What lines between heading and ending are set in by, and those of a name on several lines.
    QString indent = QString();
    /// What stands at the end of a line behind which a value goes on, where a line's end would end
    /// the statement.
    QString continuation = QString();
};

// Keys of a map of names are ":save_button" for the variable save_button.

/// ":save_button" for "save_button".
TAMRIX_EXPORT QString keyOfVariable(const QString& variable);
/// "save_button" for ":save_button".
TAMRIX_EXPORT QString variableOfKey(const QString& key);

/// Whether this may be a variable's name.
TAMRIX_EXPORT bool isVariable(const ScriptNotation& notation, const QString& name);
/// Letters without accents, digits and "_", with no digit in front.
TAMRIX_EXPORT bool isPlainIdentifier(const QString& text);

/// A name as the language's value. A property whose value is a reference to another name of the
/// map,
/// ":main_window", becomes that variable. `indent` is what lines of a value on several lines start
/// with; null for one line.
TAMRIX_EXPORT QString writtenName(const ScriptNotation& notation, const ObjectName& name,
                                  const QString& indent = QString());

/// The statement that makes the variable of this key, without the line's end. A long one stands on
/// several lines.
TAMRIX_EXPORT QString writtenEntry(const ScriptNotation& notation, const QString& key,
                                   const ObjectName& name);

/// Lines as they stand between heading and ending.
TAMRIX_EXPORT QString indentedLines(const ScriptNotation& notation, const QString& lines);

/// Whether variables of a script stand in the module that the heading begins: "module Names",
/// "package names". A person may have written them without one. True in languages where the file is
/// the module.
TAMRIX_EXPORT bool hasModule(const ScriptNotation& notation, const QString& script);
/// Whether this variable stands in it, in a script that has one.
TAMRIX_EXPORT bool isInModule(const ScriptNotation& notation, const QString& script,
                              const QString& variable);

/// The text of a script with an entry of whole lines behind its last one, and with the script's
/// line ends: in front of the ending, or where that ends something else than the module, in the
/// module once more, from where all variables can be seen.
TAMRIX_EXPORT QByteArray withWrittenEntry(const ScriptNotation& notation, const QByteArray& content,
                                          const QString& entry);

/// The lines of a script, from 1, whose statements make variables; of several for one the last.
TAMRIX_EXPORT QMap<QString, int> definitionLines(const ScriptNotation& notation,
                                                 const QString& script);

/// A variable for an object, from what it shows: "save_button" for a QPushButton "&Save...". Its
/// number goes up until `isFree` takes it.
template <typename IsFree>
QString newVariable(const ScriptNotation& notation, const ObjectName& name, IsFree isFree);

/// The variable nearest to a text, such as the key of a plain map.
TAMRIX_EXPORT QString variableOfText(const ScriptNotation& notation, const QString& text);

/// The words that name an object for people: {"save", "button"}; "object" when it shows nothing.
TAMRIX_EXPORT QStringList wordsOfObject(const ObjectName& name);

/// The words as a variable.
TAMRIX_EXPORT QString joinedWords(const ScriptNotation& notation, const QStringList& words);

template <typename IsFree>
QString newVariable(const ScriptNotation& notation, const ObjectName& name, IsFree isFree) {
    const QStringList words = wordsOfObject(name);
    QString variable = joinedWords(notation, words);
    for (int number = 2; !isVariable(notation, variable) || !isFree(variable); ++number)
        variable = joinedWords(notation, words + QStringList(QString::number(number)));
    return variable;
}

}  // namespace Tamrix
