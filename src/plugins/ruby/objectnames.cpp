#include "plugins/ruby/objectnames.h"

#include <QFileInfo>
#include <QRegularExpression>
#include <algorithm>

#include "interpreter/language/literals.h"
#include "plugins/ruby/conversion.h"
#include "plugins/ruby/rubyargument.h"
#include "plugins/ruby/rubyruntime.h"

namespace Tamrix::RubyPlugin {

namespace {

/// Ruby's own constants in capitals: no names of objects.
constexpr const char* rubyConstants[] = {
    "ARGF",        "ARGV",          "BEGIN",          "DATA",
    "END",         "ENV",           "RUBY_COPYRIGHT", "RUBY_DESCRIPTION",
    "RUBY_ENGINE", "RUBY_PLATFORM", "RUBY_REVISION",  "RUBY_VERSION",
    "STDERR",      "STDIN",         "STDOUT",         "TOPLEVEL_BINDING"};

bool isConstant(const QString& name) {
    const auto isThis = [&](const char* word) { return name == QLatin1String(word); };
    return isPlainIdentifier(name) && name.at(0).isUpper() &&
           std::none_of(std::begin(rubyConstants), std::end(rubyConstants), isThis);
}

/// In front of a colon: `type`, or with quotes what is no word.
QString symbolOf(const QString& name) {
    return isPlainIdentifier(name) ? name : rubyLiteral(name);
}

}  // namespace

QString moduleOfFile(const QString& path) {
    static const QRegularExpression s_other(QStringLiteral("[^A-Za-z0-9]+"));
    QString module;
    for (const QString& word : QFileInfo(path).completeBaseName().split(s_other))
        module += word.left(1).toUpper() + word.mid(1);
    return isConstant(module) ? module : QStringLiteral("Names");
}

RubyObjectMap::RubyObjectMap(const QString& path)
    : GenericScriptedObjectMap(path, "rb"), m_module(moduleOfFile(path)) {
    m_notation.statement = QStringLiteral("%1 = %2");
    m_notation.reference = QStringLiteral("%1");
    m_notation.open = QStringLiteral("{ ");
    m_notation.afterPropertyName = QStringLiteral(": ");
    m_notation.betweenProperties = QStringLiteral(", ");
    m_notation.close = QStringLiteral(" }");
    m_notation.comment = QStringLiteral("# ");
    m_notation.heading =
        QStringLiteral("# Names of objects, for scripts: require '%1'\nmodule %2\n")
            .arg(QFileInfo(path).completeBaseName(), m_module);
    m_notation.ending = QStringLiteral("end\n");
    m_notation.words = ScriptNotation::Words::Capitals;
    m_notation.literal = rubyLiteral;
    m_notation.isVariable = isConstant;
    m_notation.propertyName = symbolOf;
    m_notation.indent = QStringLiteral("  ");
}

QString RubyObjectMap::scriptedNameKey(const ScriptedSymbolicName& name) const {
    const QString text = name.text();
    const QString prefix = m_module + QLatin1String("::");
    return text.startsWith(prefix) ? keyOfVariable(text.mid(prefix.size()))
                                   : GenericScriptedObjectMap::scriptedNameKey(name);
}

QString RubyObjectMap::toSymbolicName(const QString& key) const {
    return m_module + QLatin1String("::") + variableOfKey(key);
}

ScriptArgument::Map RubyObjectMap::scriptVariables() {
    return RubyArgument(RubyRuntime::self().scriptHashes(m_module)).toMap();
}

}  // namespace Tamrix::RubyPlugin
