#include "plugins/ruby/rubysteps.h"

#include "plugins/ruby/conversion.h"
#include "plugins/ruby/protection.h"
#include "plugins/ruby/rubyargument.h"
#include "plugins/ruby/rubyinterpreter.h"
#include "plugins/ruby/rubyruntime.h"

namespace Tamrix::RubyPlugin {

namespace {

VALUE constantOf(const char* path, const char* name) {
    return protect([=] { return rb_const_get(rb_path2class(path), rb_intern(name)); });
}

}  // namespace

RubySteps::RubySteps(RubyInterpreter& interpreter)
    : StepLanguage(interpreter), m_ruby(interpreter) {}

std::optional<ScriptError> RubySteps::loadFile(const QString& path, const QString& text) {
    return m_ruby.attempt([&] {
        RubyRuntime::self().run(text, path);
        RubyRuntime::self().noteFeature(path);
    });
}

bool RubySteps::isLoaded(const QString& path) {
    return RubyRuntime::self().hasFeature(path);
}

RubySteps::Value RubySteps::contextValue() {
    return new RubyArgument(constantOf("Tamrix::StepContext", "CURRENT"));
}

RubySteps::Value RubySteps::tableValue(const Value& rows) {
    return new RubyArgument(callMethod(rb_path2class("Tamrix::Table"), "new", rubyValue(rows)));
}

RubySteps::Value RubySteps::bigInteger(const QString& text) {
    return new RubyArgument(callMethod(toRuby(text), "to_i"));
}

RubySteps::Value RubySteps::bigDecimal(const QString& text) {
    // A Rational has all digits, and is there without a library.
    return new RubyArgument(callMethod(toRuby(text), "to_r"));
}

QString RubySteps::snippetText(const StepSnippet& snippet) {
    const QString keyword = snippet.keyword.left(1).toUpper() + snippet.keyword.mid(1);
    const QStringList parameters = QStringList(QStringLiteral("context")) + snippet.parameters;
    return QStringLiteral("%1(%2) do |%3|\n  pending\nend\n")
        .arg(keyword, rubyLiteral(snippet.expression), parameters.join(QLatin1String(", ")));
}

bool isPendingStep(VALUE exception) {
    return rb_obj_is_kind_of(exception, constantOf("Tamrix", "PendingStepError")) == Qtrue;
}

}  // namespace Tamrix::RubyPlugin
