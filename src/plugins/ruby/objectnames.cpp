#include "plugins/ruby/objectnames.h"

#include <QFileInfo>
#include <QRegularExpression>

#include "plugins/ruby/conversion.h"
#include "plugins/ruby/rubyargument.h"
#include "plugins/ruby/rubyruntime.h"

namespace Tamrix::RubyPlugin {

namespace {

/// Ruby's own constants in capitals: no names of objects.
constexpr const char* reservedWords =
    "ARGF ARGV BEGIN DATA END ENV RUBY_COPYRIGHT RUBY_DESCRIPTION RUBY_ENGINE RUBY_PLATFORM "
    "RUBY_REVISION RUBY_VERSION STDERR STDIN STDOUT TOPLEVEL_BINDING";

}  // namespace

QString moduleOfFile(const QString& path) {
    static const QRegularExpression s_other(QStringLiteral("[^A-Za-z0-9]+"));
    QString module;
    for (const QString& word : QFileInfo(path).completeBaseName().split(s_other))
        module += word.left(1).toUpper() + word.mid(1);
    const bool isFree =
        isVariable({.words = ScriptNotation::Words::Capitals, .reserved = reservedWords}, module);
    return isFree ? module : QStringLiteral("Names");
}

RubyObjectMap::RubyObjectMap(const QString& path)
    : GenericScriptedObjectMap(
          path, "rb",
          {.qualifier = moduleOfFile(path) + "::",
           .open = "{ ",
           .close = " }",
           .heading = QStringLiteral("# Names of objects, for scripts: require '%1'\nmodule %2\n")
                          .arg(QFileInfo(path).completeBaseName(), moduleOfFile(path)),
           .ending = "end\n",
           .words = ScriptNotation::Words::Capitals,
           .literal = rubyLiteral,
           .reserved = reservedWords,
           .hasBareProperties = true,
           .indent = "  "}) {}

ScriptArgument::Map RubyObjectMap::scriptVariables() {
    return RubyArgument(RubyRuntime::self().scriptHashes(moduleOfFile(path()))).toMap();
}

}  // namespace Tamrix::RubyPlugin
