#include "plugins/tcl/tclvariables.h"

#include <QSet>
#include <algorithm>

#include "interpreter/language/languagedebugger.h"
#include "interpreter/language/valuepath.h"
#include "interpreter/language/valuetexts.h"
#include "plugins/tcl/conversion.h"
#include "plugins/tcl/dictionary.h"
#include "plugins/tcl/tclargument.h"
#include "plugins/tcl/tclinterpreter.h"
#include "plugins/tcl/valuetype.h"

namespace Tamrix::TclPlugin {

namespace {

Tcl_Obj* valueOf(const SharedPtr<ScriptArgument>& argument) {
    return static_cast<const TclArgument*>(argument.get())->value();
}

QString keyPart(Tcl_Obj* key) {
    return QLatin1Char('[') + pathPart(textOf(key), "[]") + QLatin1Char(']');
}

/// A value may be large: only as much of it is written as is shown.
QString beginningOf(Tcl_Obj* value) {
    constexpr int mostElements = ValueTexts::longest / 2;
    int count = 0;
    Tcl_Obj** elements = nullptr;
    if (typeOf(value) == ValueType::List &&
        Tcl_ListObjGetElements(nullptr, value, &count, &elements) == TCL_OK && count > mostElements)
        return TclPlugin::textOf(TclRef(Tcl_NewListObj(mostElements, elements)).get()) +
               QStringLiteral(" ...");
    // A character has four bytes at most.
    constexpr std::size_t most = 4 * (std::size_t(ValueTexts::longest) + 1);
    return fromTclBytes(bytesOf(value).substr(0, most));
}

}  // namespace

LanguageVariables::Value TclVariables::argument(Tcl_Obj* value) {
    return new TclArgument(m_tcl, TclRef(value));
}

void TclVariables::startListing() {
    // No code of the script writes values.
}

std::vector<LanguageVariables::Member> TclVariables::variablesOf(int level) {
    std::vector<Member> variables;
    const std::vector<ScriptFrame> frames = debugger().frames();
    if (level >= static_cast<int>(frames.size()) ||
        !frames[static_cast<std::size_t>(level)].isOfLanguage())
        return variables;
    const int own = std::any_cast<int>(frames[static_cast<std::size_t>(level)].own);
    QSet<QString> known;
    for (const int each : {own, 0}) {
        for (const auto& [name, value] : m_tcl.variablesAt(each)) {
            if (known.contains(name) || m_tcl.isSelfDefinedVariableName(name))
                continue;
            known.insert(name);
            variables.push_back({pathPart(name), argument(value.get())});
        }
        if (own == 0)
            break;
    }
    return variables;
}

LanguageVariables::Members TclVariables::membersOf(const Value& value, int first, int limit) {
    Members members;
    Tcl_Obj* const own = valueOf(value);
    if (typeOf(own) == ValueType::Dictionary) {
        const auto entries = entriesOf(own);
        members.count = static_cast<int>(entries.size());
        for (int index = first; index < std::min(members.count, first + limit); ++index) {
            const auto& [key, entry] = entries[static_cast<std::size_t>(index)];
            members.page.push_back({keyPart(key), argument(entry)});
        }
    } else if (typeOf(own) == ValueType::List) {
        Tcl_Obj** elements = nullptr;
        Tcl_ListObjGetElements(nullptr, own, &members.count, &elements);
        for (int index = first; index < std::min(members.count, first + limit); ++index)
            members.page.push_back({QString::number(index), argument(elements[index])});
    }
    return members;
}

LanguageVariables::Value TclVariables::memberNamed(const Value& value, const QString& name) {
    Tcl_Obj* const own = valueOf(value);
    if (typeOf(own) == ValueType::Dictionary) {
        for (const auto& [key, entry] : entriesOf(own)) {
            if (keyPart(key) == name)
                return argument(entry);
        }
        return {};
    }
    bool isNumber = false;
    const int index = name.toInt(&isNumber);
    int count = 0;
    Tcl_Obj** elements = nullptr;
    if (!isNumber || typeOf(own) != ValueType::List ||
        Tcl_ListObjGetElements(nullptr, own, &count, &elements) != TCL_OK || index < 0 ||
        index >= count)
        return {};
    return argument(elements[index]);
}

QString TclVariables::textOf(const Value& value) {
    if (value->isObject())
        return ValueTexts::cut(value->toString());
    return ValueTexts::cut(beginningOf(valueOf(value)));
}

}  // namespace Tamrix::TclPlugin
