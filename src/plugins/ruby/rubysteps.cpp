#include "plugins/ruby/rubysteps.h"

#include "plugins/ruby/conversion.h"
#include "plugins/ruby/protection.h"
#include "plugins/ruby/rubyargument.h"
#include "plugins/ruby/rubyinterpreter.h"
#include "plugins/ruby/rubyruntime.h"
#include "plugins/ruby/scripterrors.h"
#include "plugins/ruby/stepfunctions.h"

namespace Tamrix::RubyPlugin {

namespace {

VALUE rowOf(const std::vector<Gherkin::TableCell>& cells) {
    const VALUE row = protect([] { return rb_ary_new(); });
    for (const Gherkin::TableCell& cell : cells) {
        const VALUE text = toRuby(cell.text);
        protect([=] { return rb_ary_push(row, text); });
    }
    return row;
}

}  // namespace

RubySteps::RubySteps(RubyInterpreter& interpreter) : StepLanguage(interpreter) {}

std::optional<ScriptError> RubySteps::loadFile(const QString& path, const QString& text) {
    try {
        RubyRuntime::self().run(text, path);
        RubyRuntime::self().noteFeature(path);
        return std::nullopt;
    } catch (const ScriptErrorSet&) {
        if (!isOrdinaryError())
            throw;
    }
    return takeScriptError();
}

bool RubySteps::isLoaded(const QString& path) {
    return RubyRuntime::self().hasFeature(path);
}

RubySteps::Value RubySteps::contextValue() {
    return new RubyArgument(stepContext());
}

RubySteps::Value RubySteps::tableValue(const Gherkin::Step& step) {
    const VALUE rows = protect([] { return rb_ary_new(); });
    for (const std::vector<Gherkin::TableCell>& cells : step.table) {
        const VALUE row = rowOf(cells);
        protect([=] { return rb_ary_push(rows, row); });
    }
    return new RubyArgument(callMethod(rb_path2class("Tamrix::Table"), "new", rows));
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

}  // namespace Tamrix::RubyPlugin
