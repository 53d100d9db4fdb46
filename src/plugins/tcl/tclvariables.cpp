#include "plugins/tcl/tclvariables.h"

#include <QSet>
#include <algorithm>

#include "interpreter/language/languagedebugger.h"
#include "interpreter/language/valuepath.h"
#include "interpreter/language/valuetexts.h"
#include "plugins/tcl/containers.h"
#include "plugins/tcl/conversion.h"
#include "plugins/tcl/tclargument.h"
#include "plugins/tcl/tclinterpreter.h"
#include "plugins/tcl/valuetype.h"

namespace Tamrix::TclPlugin {

namespace {

QString keyPart(Tcl_Obj* key) {
    return QLatin1Char('[') + pathPart(textOf(key), "[]") + QLatin1Char(']');
}

/// A value may be large: only as much of it is written as is shown.
QString beginningOf(Tcl_Obj* value) {
    constexpr std::size_t mostElements = ValueTexts::longest / 2;
    if (typeOf(value) == ValueType::List) {
        if (const auto elements = elementsOf(value); elements.size() > mostElements)
            return TclPlugin::textOf(TclRef(Tcl_NewListObj(mostElements, elements.data())).get()) +
                   QStringLiteral(" ...");
    }
    // A character has four bytes at most.
    constexpr std::size_t most = 4 * (std::size_t(ValueTexts::longest) + 1);
    return fromTclBytes(bytesOf(value).substr(0, most));
}

}  // namespace

QString shownText(const TclArgument& value) {
    return ValueTexts::cut(value.isObject() ? value.toString() : beginningOf(value.value()));
}

LanguageVariables::Value TclVariables::argument(Tcl_Obj* value) {
    return new TclArgument(m_tcl, TclRef(value));
}

std::vector<LanguageVariables::Member> TclVariables::variablesOf(int level) {
    std::vector<Member> variables;
    const std::optional<ScriptFrame> frame = codeFrame(level);
    if (!frame)
        return variables;
    const int own = std::any_cast<int>(frame->own);
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
    std::vector<std::pair<QString, Tcl_Obj*>> all;
    if (typeOf(valueOf(value)) == ValueType::Dictionary) {
        const auto entries = entriesOf(valueOf(value));
        all.reserve(entries.size());
        for (const auto& [key, entry] : entries)
            all.emplace_back(keyPart(key), entry);
    } else if (typeOf(valueOf(value)) == ValueType::List) {
        const auto elements = elementsOf(valueOf(value));
        all.reserve(elements.size());
        for (Tcl_Obj* const element : elements)
            all.emplace_back(QString::number(all.size()), element);
    }
    Members members;
    members.count = static_cast<int>(all.size());
    for (int index = first; index < members.count && index - first < limit; ++index) {
        const auto& [name, member] = all[static_cast<std::size_t>(index)];
        members.page.push_back({name, argument(member)});
    }
    return members;
}

QString TclVariables::textOf(const Value& value) {
    return shownText(static_cast<const TclArgument&>(*value));
}

}  // namespace Tamrix::TclPlugin
