#include "plugins/perl/objectnames.h"

#include <QFileInfo>
#include <QRegularExpression>
#include <algorithm>

#include "plugins/perl/caseinterpreter.h"
#include "plugins/perl/conversion.h"
#include "plugins/perl/literal.h"
#include "plugins/perl/perlargument.h"

namespace Tamrix::PerlPlugin {

namespace {

/// Names that Perl has for variables of its own, in whatever package they stand.
constexpr const char* perlVariables[] = {"_",    "a",       "b",     "ENV",    "INC",
                                         "ARGV", "ARGVOUT", "STDIN", "STDOUT", "STDERR"};

bool isPerlVariable(const QString& name) {
    static const QRegularExpression s_identifier(QStringLiteral("\\A[A-Za-z_][A-Za-z0-9_]*\\z"));
    return s_identifier.match(name).hasMatch() &&
           std::none_of(std::begin(perlVariables), std::end(perlVariables),
                        [&](const char* own) { return name == QLatin1String(own); });
}

QString utf8Literal(const QString& text) {
    return literal(text, LiteralCharacters::All);
}

QString asciiLiteral(const QString& text) {
    return literal(text, LiteralCharacters::Ascii);
}

ScriptNotation notationWith(QString (*textLiteral)(const QString&)) {
    return {
        QStringLiteral("our $%1 = %2;"),
        QStringLiteral("$%1"),
        QStringLiteral("{"),
        QStringLiteral(" => "),
        QStringLiteral(", "),
        QStringLiteral("}"),
        QStringLiteral("# "),
        QStringLiteral("# Names of objects, for scripts: require 'names.pl'\n"
                       "package names;\nuse strict;\nuse utf8;\n"),
        QStringLiteral("1;\n"),
        ScriptNotation::Words::Underscores,
        textLiteral,
        isPerlVariable,
    };
}

}  // namespace

const ScriptNotation& PerlObjectMap::notation() const {
    static const ScriptNotation s_utf8 = notationWith(utf8Literal);
    static const ScriptNotation s_ascii = notationWith(asciiLiteral);
    return m_isUtf8 ? s_utf8 : s_ascii;
}

QString PerlObjectMap::package() const {
    return QFileInfo(path()).completeBaseName();
}

QString PerlObjectMap::scriptedNameKey(const ScriptedSymbolicName& name) const {
    const QString start = '$' + package() + "::";
    return name.text().startsWith(start) ? keyOfVariable(name.text().mid(start.size()))
                                         : GenericScriptedObjectMap::scriptedNameKey(name);
}

QString PerlObjectMap::toSymbolicName(const QString& key) const {
    return '$' + package() + "::" + variableOfKey(key);
}

ScriptArgument::Map PerlObjectMap::scriptVariables() {
    pTHX = CaseInterpreter::active()->perl();
    ScriptArgument::Map variables;
    // A file may leave its variables in the package where it begins.
    for (const QString& name : {QStringLiteral("main"), QStringLiteral("names"), package()}) {
        HV* const stash = gv_stashpv(name.toUtf8().constData(), 0);
        if (!stash)
            continue;
        for (const auto& [variable, glob] : entriesOf(aTHX_ stash)) {
            SV* const value = isGV_with_GP(glob) ? GvSV(reinterpret_cast<GV*>(glob)) : nullptr;
            if (value && isPlainReference(value, SVt_PVHV))
                variables[variable] = new PerlArgument(PerlArgument::kept(aTHX_ value));
        }
    }
    return variables;
}

Outcome<QByteArray> PerlObjectMap::contentWith(const QByteArray& content, const QString& key,
                                               const ObjectName& name) {
    m_isUtf8 = content.contains("use utf8");
    Outcome<QByteArray> changed = GenericScriptedObjectMap::contentWith(content, key, name);
    m_isUtf8 = true;
    return changed;
}

}  // namespace Tamrix::PerlPlugin
