#pragma once

#include <memory>

#include "interpreter/language/languagevariables.h"
#include "plugins/ruby/rubyapi.h"

namespace Tamrix::RubyPlugin {

class RubyValueTexts;

/// Lists the variables of a Ruby script that stands still: those of the method or block, `self`
/// and its instance variables, and the global ones that scripts have made.
class RubyVariables final : public LanguageVariables {
public:
    explicit RubyVariables(LanguageDebugger& debugger);
    ~RubyVariables() override;

protected:
    void startListing() override;
    std::vector<Member> variablesOf(int level) override;
    Members membersOf(const Value& value, int first, int limit) override;
    QString textOf(const Value& value) override;

private:
    QString nameOfKey(VALUE key);

    std::unique_ptr<RubyValueTexts> m_texts;
};

}  // namespace Tamrix::RubyPlugin
