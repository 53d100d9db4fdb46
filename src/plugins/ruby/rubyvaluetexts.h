#pragma once

#include "interpreter/language/valuetexts.h"
#include "plugins/ruby/rubyapi.h"

namespace Tamrix::RubyPlugin {

/// Writes values of Ruby as a person looks at them while a script stands still.
class RubyValueTexts final : public ValueTexts {
public:
    /// As `inspect` gives it, or in <> what there is instead. Never raises.
    QString textOf(VALUE value) { return cut(bounded(value, 0)); }

private:
    QString bounded(VALUE value, int depth);
    QString inspected(VALUE value);
};

}  // namespace Tamrix::RubyPlugin
