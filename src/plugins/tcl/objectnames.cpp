#include "plugins/tcl/objectnames.h"

#include <QFileInfo>
#include <QRegularExpression>

#include "plugins/tcl/containers.h"
#include "plugins/tcl/conversion.h"
#include "plugins/tcl/literal.h"
#include "plugins/tcl/tclargument.h"
#include "plugins/tcl/tclinterpreter.h"
#include "plugins/tcl/valuetype.h"

namespace Tamrix::TclPlugin {

namespace {

/// "names" for names.tcl.
QString namespaceOf(const QString& path) {
    static const QRegularExpression s_other(QStringLiteral("\\W"));
    return QFileInfo(path).completeBaseName().replace(s_other, QStringLiteral("_"));
}

ScriptNotation notationFor(const QString& space) {
    return {.statement = QStringLiteral("set %1::%2").arg(space, QStringLiteral("%1 %2")),
            .reference = QStringLiteral("$%1::%2").arg(space, QStringLiteral("%1")),
            .qualifier = space + "::",
            .open = "[dict create ",
            .afterPropertyName = " ",
            .betweenProperties = " ",
            .close = "]",
            .heading = QStringLiteral("# Names of objects, for scripts: source [findFile scripts "
                                      "%1.tcl]\nnamespace eval %1 {}\n")
                           .arg(space),
            .literal = tclWord,
            .continuation = " \\"};
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
    : GenericScriptedObjectMap(path, "tcl", notationFor(namespaceOf(path))) {}

ScriptArgument::Map TclObjectMap::scriptVariables() {
    ScriptArgument::Map variables;
    Tcl_Interp* const tcl = TclInterpreter::active()->tcl();
    const QString prefix = "::" + notation().qualifier;
    const TclRef query = toTcl(QStringList({"info", "vars", prefix + '*'}));
    Tcl_EvalObjEx(tcl, query.get(), TCL_EVAL_GLOBAL);
    const TclRef paths(Tcl_GetObjResult(tcl));
    for (Tcl_Obj* const path : elementsOf(paths.get())) {
        Tcl_Obj* const value = Tcl_ObjGetVar2(tcl, path, nullptr, TCL_GLOBAL_ONLY);
        // An array has no value.
        if (const TclRef dictionary = value ? nameDictionary(value) : TclRef())
            variables[textOf(path).mid(prefix.size())] = new NamePart(dictionary.get());
    }
    return variables;
}

}  // namespace Tamrix::TclPlugin
