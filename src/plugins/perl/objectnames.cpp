#include "plugins/perl/objectnames.h"

#include <QFileInfo>
#include <algorithm>

#include "interpreter/language/literals.h"
#include "plugins/perl/caseinterpreter.h"
#include "plugins/perl/conversion.h"
#include "plugins/perl/literal.h"
#include "plugins/perl/perlargument.h"

namespace Tamrix::PerlPlugin {

namespace {

/// Names that Perl has for variables of its own, in whatever package they stand.
constexpr const char* perlVariables[] = {"_",    "a",       "b",     "ENV",    "INC",
                                         "ARGV", "ARGVOUT", "STDIN", "STDOUT", "STDERR"};

bool isNameVariable(const QString& name) {
    return isPlainIdentifier(name) &&
           std::none_of(std::begin(perlVariables), std::end(perlVariables),
                        [&](const char* own) { return name == QLatin1String(own); });
}

/// In front of "=>".
QString hashKey(const QString& name) {
    return isPlainIdentifier(name) ? name : literal(name);
}

}  // namespace

PerlObjectMap::PerlObjectMap(const QString& path)
    : GenericScriptedObjectMap(path, "pl"), m_package(QFileInfo(path).completeBaseName()) {
    if (!isPlainIdentifier(m_package))
        m_package = QStringLiteral("names");
    m_notation.statement = QStringLiteral("our $%1 = %2;");
    m_notation.reference = QStringLiteral("$%1");
    m_notation.open = QStringLiteral("{");
    m_notation.afterPropertyName = QStringLiteral(" => ");
    m_notation.betweenProperties = QStringLiteral(", ");
    m_notation.close = QStringLiteral("}");
    m_notation.comment = QStringLiteral("# ");
    m_notation.heading = QStringLiteral(
                             "# Names of objects, for scripts: require '%1'\n"
                             "package %2;\nuse strict;\nuse utf8;\n")
                             .arg(QFileInfo(path).fileName(), m_package);
    m_notation.ending = QStringLiteral("1;\n");
    m_notation.literal = literal;
    m_notation.isVariable = isNameVariable;
    m_notation.propertyName = hashKey;
}

QString PerlObjectMap::scriptedNameKey(const ScriptedSymbolicName& name) const {
    const QString start = '$' + m_package + "::";
    return name.text().startsWith(start) ? keyOfVariable(name.text().mid(start.size()))
                                         : GenericScriptedObjectMap::scriptedNameKey(name);
}

QString PerlObjectMap::toSymbolicName(const QString& key) const {
    return '$' + m_package + "::" + variableOfKey(key);
}

ScriptArgument::Map PerlObjectMap::scriptVariables() {
    pTHX = CaseInterpreter::active()->perl();
    ScriptArgument::Map variables;
    // A file may leave its variables in the package where it begins.
    for (const QString& package : {QStringLiteral("main"), m_package}) {
        HV* const stash = gv_stashpv(package.toUtf8().constData(), 0);
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
    // Otherwise scripts that require the file have its bytes for characters.
    m_notation.literal = content.contains("use utf8") ? literal : asciiLiteral;
    return GenericScriptedObjectMap::contentWith(content, key, name);
}

}  // namespace Tamrix::PerlPlugin
