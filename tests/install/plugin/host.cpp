// host PREFIX SCRIPT: runs a script with the plug-in of its language, without a runner.

#include <QFile>
#include <cstdio>
#include <memory>

#include "base/environment.h"
#include "interpreter/bridge/scriptlanguage.h"
#include "platform/testresult/reportgenerator.h"
#include "platform/testresult/testresult.h"

namespace {

class PrintingReport : public Tamrix::ReportGenerator {
public:
    void add(const Tamrix::ReportEntry& entry) override {
        if (const auto* result = Tamrix::eventOf<Tamrix::ResultAdded>(entry))
            std::printf("%s\n", qPrintable(result->message));
    }
};

int fail(const QString& text) {
    std::fprintf(stderr, "%s\n", qPrintable(text));
    return 1;
}

}  // namespace

int main(int argc, char* argv[]) {
    if (argc != 3)
        return fail("usage: host PREFIX SCRIPT");
    Tamrix::Environment::setVariable(Tamrix::prefixVariable, argv[1]);

    QFile script(argv[2]);
    if (!script.open(QIODevice::ReadOnly))
        return fail(script.errorString());
    const auto* language = Tamrix::ScriptLanguageInformation::forFile(QFileInfo(script));
    if (!language)
        return fail("unknown language");
    const Tamrix::ScriptLanguagePlugin plugin(language->pluginName);
    if (!plugin.lastErrorMessage().isEmpty())
        return fail(plugin.lastErrorMessage());

    const std::unique_ptr<Tamrix::Interpreter> interpreter(plugin.interpreter(nullptr));
    if (!interpreter)
        return fail("no interpreter");
    PrintingReport report;
    Tamrix::TestResult result(&report);
    interpreter->initTestFunctions(&result);
    if (!interpreter->evaluate(QString::fromUtf8(script.readAll()), script.fileName()))
        return fail(QString("%1:%2: %3")
                        .arg(interpreter->errorFile(QString()))
                        .arg(interpreter->errorLine())
                        .arg(interpreter->errorMessage()));
    return 0;
}
