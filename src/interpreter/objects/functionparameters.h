#pragma once

#include <QString>
#include <QStringList>
#include <vector>

#include "base/export.h"
#include "interpreter/objects/objectcall.h"
#include "interpreter/objects/objecterror.h"

namespace Tamrix {

/// The parameters of a global function, "object[, x, y][, button][, modifiers]": those in brackets
/// may be left out, all of a bracket together.
class TAMRIX_EXPORT FunctionParameters {
public:
    /// Those of this text, read once in the process.
    static const FunctionParameters& of(const QString& text);

    /// Whether the first one is an object, which may be given by its name.
    bool startWithObject() const;

    /// The arguments in the order in which the application takes them: named ones at their places,
    /// such as are left out or the language's null not at all. Modifiers without a button get the
    /// first button. An error names the function and what is wrong.
    ObjectResult<ScriptArgument::List> ordered(ScriptContext& context, const QString& function,
                                               const CallArguments& arguments) const;

private:
    explicit FunctionParameters(const QString& text);

    /// Parameters that are given together or not at all.
    struct Group {
        QStringList names;
        bool isOptional = false;
    };
    /// Arguments by the names of their parameters, and what was wrong with them.
    class Slots;

    QString m_text;
    std::vector<Group> m_groups;
};

}  // namespace Tamrix
