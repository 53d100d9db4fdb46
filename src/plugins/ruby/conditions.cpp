#include "plugins/ruby/conditions.h"

#include <QStringList>

#include "plugins/ruby/conversion.h"
#include "plugins/ruby/rubyvaluetexts.h"

namespace Tamrix::RubyPlugin {

QString explainCall(const char* parameter) {
    const VALUE name = ID2SYM(rb_frame_callee());
    const VALUE parameterName = toRuby(QString::fromLatin1(parameter));
    try {
        const VALUE binding = protect([] { return rb_binding_new(); });
        const VALUE told =
            callMethod(rb_path2class("Tamrix::Condition"), "explain", binding, name, parameterName);
        if (NIL_P(told))
            return {};
        QStringList lines(fromRuby(rb_ary_entry(told, 0)));
        const VALUE values = rb_ary_entry(told, 1);
        RubyValueTexts texts;
        for (long index = 0; index < RARRAY_LEN(values); ++index) {
            const VALUE row = rb_ary_entry(values, index);
            lines.append(fromRuby(rb_ary_entry(row, 0)) + ": " +
                         texts.textOf(rb_ary_entry(row, 1)));
        }
        return lines.join('\n');
    } catch (const ScriptErrorSet&) {
        if (!isOrdinaryError())
            throw;
        takeException();
    }
    return {};
}

}  // namespace Tamrix::RubyPlugin
