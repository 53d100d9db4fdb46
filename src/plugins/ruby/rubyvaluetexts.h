#pragma once

#include "interpreter/language/valuetexts.h"
#include "plugins/ruby/rubyargument.h"

namespace Tamrix::RubyPlugin {

/// Writes values of Ruby as `inspect` gives them, or in <> what there is instead. Their parts are
/// elements, entries, the members of a Struct, instance variables.
class RubyValueTexts final : public ValueTexts {
public:
    using ValueTexts::textOf;
    QString textOf(VALUE value) { return textOf(Value(new RubyArgument(value))); }

    /// The instance variables of an object; of a Struct its members, too.
    static std::vector<Part> attributesOf(VALUE value);

    Parts partsOf(const Value& value, int end, int depth = 0) override;

protected:
    QString text(const Value& value, int depth) override;

private:
    Parts entriesOfHash(VALUE hash, int end, int depth);
    QString inspected(VALUE value);
};

}  // namespace Tamrix::RubyPlugin
