#include "plugins/tcl/objectnames.h"

#include <QFileInfo>
#include <QRegularExpression>
#include <algorithm>

#include "interpreter/language/literals.h"
#include "plugins/tcl/containers.h"
#include "plugins/tcl/conversion.h"
#include "plugins/tcl/tclargument.h"
#include "plugins/tcl/tclinterpreter.h"
#include "plugins/tcl/valuetype.h"

namespace Tamrix::TclPlugin {

namespace {

/// As people write it: as it is, in braces, or in quotes where braces can't hold it.
QString tclWord(const QString& text) {
    static const QRegularExpression s_bare(QStringLiteral("\\A[A-Za-z0-9_.,:/*~+-]+\\z"));
    const bool fitsBraces = std::all_of(text.begin(), text.end(), [](QChar character) {
        return (character.isPrint() || character.isSurrogate()) &&
               !QStringLiteral("{}\\").contains(character);
    });
    if (s_bare.match(text).hasMatch())
        return text;
    return fitsBraces ? '{' + text + '}' : literalOf(text, {'"', "$[]{}"});
}

ScriptNotation notationFor(const QString& prefix) {
    const QString space = prefix.chopped(2);
    return {
        QStringLiteral("set %1%2").arg(prefix, QStringLiteral("%1 %2")),
        QStringLiteral("$%1%2").arg(prefix, QStringLiteral("%1")),
        QStringLiteral("[dict create "),
        QStringLiteral(" "),
        QStringLiteral(" "),
        QStringLiteral("]"),
        QStringLiteral("# "),
        QStringLiteral("# Names of objects, for scripts: source [findFile scripts %1.tcl]\n"
                       "namespace eval %1 {}\n")
            .arg(space),
        QString(),
        ScriptNotation::Words::Underscores,
        tclWord,
        isPlainIdentifier,
        nullptr,
        QString(),
        QStringLiteral(" \\"),
    };
}

/// A name, or a part of one. Any two words could be read as a dictionary: so only what was made as
/// one is the name of another object.
class NamePart final : public TclArgument {
public:
    explicit NamePart(Tcl_Obj* value) : TclArgument(*TclInterpreter::active(), TclRef(value)) {}

    bool isMap() const override { return typeOf(value()) == ValueType::Dictionary; }
    Map toMap() const override {
        Map parts;
        for (const auto& [name, part] : TclArgument::toMap())
            parts[name] = new NamePart(valueOf(part));
        return parts;
    }
};

}  // namespace

TclObjectMap::TclObjectMap(const QString& path)
    : GenericScriptedObjectMap(path, "tcl"),
      m_prefix(QFileInfo(path).completeBaseName().replace(QRegularExpression("\\W"), "_") + "::"),
      m_notation(notationFor(m_prefix)) {}

QString TclObjectMap::scriptedNameKey(const ScriptedSymbolicName& name) const {
    const QString text = name.text();
    return text.startsWith(m_prefix) ? keyOfVariable(text.mid(m_prefix.size()))
                                     : GenericScriptedObjectMap::scriptedNameKey(name);
}

QString TclObjectMap::toSymbolicName(const QString& key) const {
    return m_prefix + variableOfKey(key);
}

ScriptArgument::Map TclObjectMap::scriptVariables() {
    ScriptArgument::Map variables;
    Tcl_Interp* const tcl = TclInterpreter::active()->tcl();
    const TclRef query = toTcl(QStringList({"info", "vars", "::" + m_prefix + '*'}));
    Tcl_EvalObjEx(tcl, query.get(), TCL_EVAL_GLOBAL);
    const TclRef paths(Tcl_GetObjResult(tcl));
    for (Tcl_Obj* const path : elementsOf(paths.get())) {
        Tcl_Obj* const value = Tcl_ObjGetVar2(tcl, path, nullptr, TCL_GLOBAL_ONLY);
        // An array has no value.
        if (const TclRef dictionary = value ? nameDictionary(value) : TclRef())
            variables[textOf(path).mid(m_prefix.size() + 2)] = new NamePart(dictionary.get());
    }
    return variables;
}

}  // namespace Tamrix::TclPlugin
