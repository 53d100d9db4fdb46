#include "plugins/ruby/rubyvariables.h"

#include <algorithm>

#include "interpreter/language/languagedebugger.h"
#include "interpreter/language/valuepath.h"
#include "plugins/ruby/conversion.h"
#include "plugins/ruby/frames.h"
#include "plugins/ruby/protection.h"
#include "plugins/ruby/rubyargument.h"
#include "plugins/ruby/rubyruntime.h"
#include "plugins/ruby/rubyvaluetexts.h"

namespace Tamrix::RubyPlugin {

namespace {

/// A value with its name as it stands in a path.
struct Named {
    QString name;
    RubyRef value;
};

bool isWrittenAsCode(VALUE key) {
    return RB_TYPE_P(key, T_STRING) || RB_SPECIAL_CONST_P(key) || RB_SYMBOL_P(key) ||
           RB_INTEGER_TYPE_P(key) || RB_FLOAT_TYPE_P(key);
}

/// The instance variables of an object; of a Struct its members, too.
std::vector<Named> attributesOf(VALUE value) {
    std::vector<Named> attributes;
    if (RB_TYPE_P(value, T_STRUCT)) {
        const VALUE members = rb_struct_members(value);
        for (long index = 0; index < RARRAY_LEN(members); ++index)
            attributes.push_back({pathPart(fromRuby(rb_ary_entry(members, index))),
                                  RubyRef(rb_struct_aref(value, LONG2FIX(index)))});
    }
    for (const VALUE symbol : itemsOf(protect([=] { return rb_obj_instance_variables(value); }))) {
        const QString name = fromRuby(symbol);
        // Without the mark of names that begin in this way: "@" and a letter is no "@N".
        attributes.push_back(
            {"@" + pathPart(name.mid(1)), RubyRef(rb_ivar_get(value, SYM2ID(symbol)))});
    }
    return attributes;
}

bool hasAttributes(VALUE value) {
    return !RB_SPECIAL_CONST_P(value) && !RB_TYPE_P(value, T_STRING);
}

}  // namespace

RubyVariables::RubyVariables(LanguageDebugger& debugger)
    : LanguageVariables(debugger), m_texts(std::make_unique<RubyValueTexts>()) {}

RubyVariables::~RubyVariables() = default;

void RubyVariables::startListing() {
    m_texts = std::make_unique<RubyValueTexts>();
}

QString RubyVariables::textOf(const Value& value) {
    return m_texts->textOf(rubyValue(value));
}

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
        if (hasAttributes(self)) {
            for (const Named& each : attributesOf(self))
                add(each.name, each.value.get());
        }
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

QString RubyVariables::nameOfKey(VALUE key) {
    const QString text = m_texts->textOf(key);
    if (isWrittenAsCode(key) && !ValueTexts::isCut(text))
        // Blanks behind one another would not come back.
        return "[" + QString(text).replace("  ", " \\x20") + "]";
    return "[" + pathPart(text, QByteArrayLiteral("[]()'\"")) + "]";
}

RubyVariables::Members RubyVariables::membersOf(const Value& value, int first, int limit) {
    const VALUE own = rubyValue(value);
    Members members;
    const auto isOnPage = [&](long index) {
        return index >= first && static_cast<int>(members.page.size()) < limit;
    };
    if (RB_TYPE_P(own, T_ARRAY)) {
        members.count = static_cast<int>(RARRAY_LEN(own));
        for (long index = first; index < members.count && isOnPage(index); ++index)
            members.page.push_back(
                {QString::number(index), new RubyArgument(rb_ary_entry(own, index))});
    } else if (RB_TYPE_P(own, T_HASH)) {
        for (const auto& [key, each] : entriesOf(own)) {
            if (isOnPage(members.count))
                members.page.push_back({nameOfKey(key), new RubyArgument(each)});
            ++members.count;
        }
    } else if (hasAttributes(own)) {
        for (const Named& each : attributesOf(own)) {
            if (isOnPage(members.count))
                members.page.push_back({each.name, new RubyArgument(each.value.get())});
            ++members.count;
        }
    }
    return members;
}

}  // namespace Tamrix::RubyPlugin
