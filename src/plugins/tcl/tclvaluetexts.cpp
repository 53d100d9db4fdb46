#include "plugins/tcl/tclvaluetexts.h"

#include "plugins/tcl/containers.h"
#include "plugins/tcl/conversion.h"
#include "plugins/tcl/tclinterpreter.h"
#include "plugins/tcl/valuetype.h"

namespace Tamrix::TclPlugin {

namespace {

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

TclValueTexts::Parts TclValueTexts::partsOf(const Value& value, int, int) {
    Tcl_Obj* const own = valueOf(value);
    if (typeOf(own) == ValueType::Dictionary) {
        const auto entries = entriesOf(own);
        return {
            static_cast<int>(entries.size()), [this, entries](int index) {
                const auto& [key, entry] = entries.at(static_cast<std::size_t>(index));
                return Part{keyName(TclPlugin::textOf(key)), new TclArgument(m_tcl, TclRef(entry))};
            }};
    }
    if (typeOf(own) != ValueType::List)
        return {};
    const auto elements = elementsOf(own);
    return {static_cast<int>(elements.size()), [this, elements](int index) {
                return Part{
                    QString::number(index),
                    new TclArgument(m_tcl, TclRef(elements[static_cast<std::size_t>(index)]))};
            }};
}

QString TclValueTexts::text(const Value& value, int) {
    return value->isObject() ? value->toString() : beginningOf(valueOf(value));
}

}  // namespace Tamrix::TclPlugin
