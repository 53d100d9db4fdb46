#include "plugins/ruby/rubyvariables.h"

#include <utility>

#include "interpreter/language/languagedebugger.h"
#include "interpreter/language/valuepath.h"
#include "plugins/ruby/conversion.h"
#include "plugins/ruby/frames.h"
#include "plugins/ruby/protection.h"
#include "plugins/ruby/rubyruntime.h"

namespace Tamrix::RubyPlugin {

std::vector<RubyVariables::Member> RubyVariables::variablesOf(int level) {
    std::vector<Member> variables;
    const std::optional<ScriptFrame> frame = codeFrame(level);
    if (!frame)
        return variables;
    const VALUE binding = bindingOf(*frame);
    const auto add = [&](const QString& name, VALUE value) {
        variables.push_back({name, new RubyArgument(value)});
    };
    try {
        for (const VALUE name : itemsOf(callMethod(binding, "local_variables")))
            add(pathPart(fromRuby(name)), callMethod(binding, "local_variable_get", name));
        const VALUE self = callMethod(binding, "receiver");
        if (self != RubyRuntime::self().main())
            add(QStringLiteral("self"), self);
        for (Member& attribute : RubyValueTexts::attributesOf(self))
            variables.push_back(std::move(attribute));
        for (const VALUE each : itemsOf(RubyRuntime::self().scriptGlobals())) {
            const QString name = fromRuby(each);
            const VALUE value = rb_gv_get(name.toUtf8().constData());
            // One that an earlier case has made is there for ever.
            if (!NIL_P(value))
                add(name, value);
        }
    } catch (const ScriptErrorSet&) {
        // Ruby has no memory left for its own lists.
        takeException();
    }
    return variables;
}

}  // namespace Tamrix::RubyPlugin
