#pragma once

#include <QString>

#include "base/export.h"
#include "interpreter/bridge/eventrecorder.h"
#include "interpreter/language/literals.h"

namespace Tamrix {

/// How a language writes what recordings consist of; its words as data. Each statement stands on a
/// line.
struct RecordingNotation {
    /// What stands around the statements, whole lines.
    const char* header;
    const char* footer;
    const char* indentation = "    ";
    const char* comment = "# ";
    const char* truths[2] = {"false", "true"};
    /// Of a function, %1, with arguments, %2.
    const char* call = "%1(%2)";
    const char* betweenArguments = ", ";
    /// An argument, %2, by its name, %1. Null in a language without: such arguments stand at their
    /// places, and for those that are left out...
    const char* named = "%1=%2";
    /// ...stands this.
    const char* leftOut = "";
    /// In front of a text that would be taken for the name of an argument: one that begins with
    /// "-". Null where none is.
    const char* dashMark = nullptr;
    const char* list = "[%1]";
    const char* betweenItems = ", ";
    /// The password of the key %1.
    const char* password = "testSettings.getPassword(%1)";
    /// The application that was launched last, and the one of the name %1.
    const char* launchedContext = "waitForApplicationLaunch()";
    const char* namedContext = "applicationContext(%1)";
    /// Sets the property %2 of the object %1 to %3.
    const char* assignment = "waitForObject(%1).%2 = %3";
    /// Expects of the object %1 the properties %2.
    const char* expectation = "test.expect(%1, {%2})";
    /// A property, %1, and its value, and how it is written when it is no identifier.
    const char* property = "%1: %2";
    const char* quotedProperty = "%1: %2";
    const char* betweenProperties = ", ";
    LiteralStyle quoting = {};
    /// How texts, names of objects and what stands in comments are written where texts are not
    /// simply quoted, and comments not written as they are.
    QString (*text)(const QString& text) = nullptr;
    QString (*name)(const QString& name) = nullptr;
    QString (*remark)(const QString& text) = nullptr;
    /// The header of a script that brings in the file %1, without its suffix, whose variables are
    /// names of objects...
    const char* importingHeader;
    /// ...how its variable %2 is written...
    const char* variable = "%1.%2";
    /// ...and what %1 is there, where it is not the file's own name.
    QString (*moduleOfFile)(const QString& file) = nullptr;
};

/// Writes scripts by a language's notation. Needs no runtime of the language.
class TAMRIX_EXPORT NotatedRecorder : public EventRecorder {
public:
    /// Symbolic names are variables of this module; without one they are written as texts, ":Save".
    NotatedRecorder(const RecordingNotation& notation, const QString& namesModule)
        : m_notation(notation), m_namesModule(namesModule) {}

    QString header() const override;
    QString lines(const ScriptAction& action) const override;
    QString footer() const override;

private:
    QString statement(const FunctionAction& action) const;
    QString statement(const AssignmentAction& action) const;
    QString statement(const ExpectAction& action) const;
    QString statement(const CommentAction& action) const;
    QStringList namedArguments(const FunctionAction& action) const;
    QString valueText(const ActionValue& value) const;
    QString objectText(const QString& name) const;
    QString literal(const QString& text) const;

    RecordingNotation m_notation;
    QString m_namesModule;
};

}  // namespace Tamrix
