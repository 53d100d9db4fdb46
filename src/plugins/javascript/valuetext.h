#pragma once

#include <QString>
#include <limits>

#include "interpreter/language/valuetexts.h"
#include "plugins/javascript/engine.h"

namespace Tamrix::JavaScriptPlugin {

/// Writes values, and tells what they consist of: elements of an array or a Set, entries of a Map,
/// properties of any other object, in their order. Lists and objects are written with what is in
/// them, an error with its name, everything else as the language writes it.
///
/// For a person who looks at a script that stands still it runs no code of the script. Whole, as
/// in results, it does for an object that has a `toString` of its own; what that throws shows as
/// "<unprintable NAME object>", and what ends the script passes as ScriptErrorSet.
class JavaScriptValueTexts final : public ValueTexts {
public:
    enum class Extent { Limited, Whole };
    explicit JavaScriptValueTexts(Extent extent = Extent::Limited)
        : ValueTexts(extent == Extent::Whole ? withoutLimits : Limits()),
          m_isWhole(extent == Extent::Whole) {}
    /// Without limits.
    QString wholeText(const Value& value) { return text(value, 0); }

    Parts partsOf(const Value& value, int end, int depth = 0) override;

protected:
    QString text(const Value& own, int depth) override;

private:
    QString objectText(const Value& own, JS::HandleObject object, int depth);
    Parts propertiesOf(JS::HandleObject object);

    /// But of containers in containers.
    static constexpr Limits withoutLimits{.length = std::numeric_limits<int>::max(), .depth = 50};
    bool m_isWhole;
    /// The objects that are being written whole, the outermost first.
    JS::PersistentRootedVector<JSObject*> m_holders{engineContext()};
};

/// A value as results and `console.log` show it: a text itself, all others whole.
QString textOf(JS::HandleValue value);

/// The language's name of the value's type: that of `typeof`, "null", or the class of an object.
QString typeNameOf(JS::HandleValue value);

/// A text as code has it, in single quotes.
QString quoted(const QString& text);

}  // namespace Tamrix::JavaScriptPlugin
