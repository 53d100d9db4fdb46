#pragma once

#include <memory>

#include "interpreter/language/languagevariables.h"
#include "plugins/ruby/rubyvaluetexts.h"

namespace Tamrix::RubyPlugin {

/// Lists the variables of a Ruby script that stands still: those of the method or block, `self`
/// and its instance variables, and the global ones that scripts have made.
class RubyVariables final : public LanguageVariables {
public:
    explicit RubyVariables(LanguageDebugger& debugger)
        : LanguageVariables(debugger, std::make_unique<RubyValueTexts>()) {}

protected:
    std::vector<Member> variablesOf(int level) override;
};

}  // namespace Tamrix::RubyPlugin
