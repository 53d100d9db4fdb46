#include "plugins/perl/objectnames.h"

#include <QFileInfo>

#include "plugins/perl/caseinterpreter.h"
#include "plugins/perl/conversion.h"
#include "plugins/perl/literal.h"
#include "plugins/perl/perlargument.h"

namespace Tamrix::PerlPlugin {

namespace {

/// Of the file's variables, by its name: "names".
QString packageOf(const QString& path) {
    const QString name = QFileInfo(path).completeBaseName();
    return isPlainIdentifier(name) ? name : QStringLiteral("names");
}

}  // namespace

PerlObjectMap::PerlObjectMap(const QString& path)
    : GenericScriptedObjectMap(
          path, "pl",
          {.statement = "our $%1 = %2;",
           .reference = "$%1",
           .qualifier = '$' + packageOf(path) + "::",
           .afterPropertyName = " => ",
           .heading = QStringLiteral("# Names of objects, for scripts: require '%1'\n"
                                     "package %2;\nuse strict;\nuse utf8;\n")
                          .arg(QFileInfo(path).fileName(), packageOf(path)),
           .ending = "1;\n",
           .literal = literal,
           // Perl has these for itself, in whatever package they stand.
           .reserved = "_ a b ENV INC ARGV ARGVOUT STDIN STDOUT STDERR",
           .hasBareProperties = true}) {}

ScriptArgument::Map PerlObjectMap::scriptVariables() {
    pTHX = CaseInterpreter::active()->perl();
    ScriptArgument::Map variables;
    // A file may leave its variables in the package where it begins.
    for (const QString& package : {QStringLiteral("main"), packageOf(path())}) {
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
    setLiteral(content.contains("use utf8") ? literal : asciiLiteral);
    return GenericScriptedObjectMap::contentWith(content, key, name);
}

}  // namespace Tamrix::PerlPlugin
