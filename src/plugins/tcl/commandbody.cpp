#include "plugins/tcl/commandbody.h"

#include "interpreter/objects/nearestnames.h"
#include "plugins/tcl/conversion.h"

namespace Tamrix::TclPlugin {

QString optionOf(Tcl_Obj* word) {
    const QString text = textOf(word);
    return text.startsWith(QLatin1Char('-')) ? text.mid(1) : QString();
}

int wrongWords(TclInterpreter& interpreter, const QString& usage) {
    return interpreter.fail(
        badArgument(QStringLiteral("wrong # args: should be \"%1\"").arg(usage)));
}

ScriptFailure noMember(const QString& text) {
    return {ScriptFailure::Kind::NoMember, text, false, {}};
}

ScriptFailure noSuch(const char* kind, const QString& name, const QString& owner,
                     const QStringList& known) {
    QString text = QStringLiteral("%1 has no %2 \"%3\"").arg(owner, QLatin1String(kind), name);
    const QStringList nearest = nearestNames(name, known);
    if (!nearest.isEmpty())
        text += QStringLiteral("; the nearest: \"%1\"").arg(nearest.join("\", \""));
    return noMember(text);
}

}  // namespace Tamrix::TclPlugin
