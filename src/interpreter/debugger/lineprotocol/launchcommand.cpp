// An application is started, or connected to, while the script stands still.

#include <QMap>
#include <QUrl>

#include "interpreter/bridge/interpreter.h"
#include "interpreter/bridge/runnerinterface.h"
#include "interpreter/bridge/testsettingstype.h"
#include "interpreter/debugger/lineprotocol/commandfunctions.h"
#include "platform/objectmodel/inspector.h"
#include "platform/objectmodel/objectclass.h"

namespace Tamrix {

namespace {

using Launched = Outcome<SharedPtr<ApplicationContext>>;

/// What an operation of the runner gave, with the error text that it has set.
Launched launched(const SharedPtr<ApplicationContext>& context, const QString& error) {
    if (context)
        return context;
    return fail(Failure{FailureKind::Failed, error});
}

Launched startApplication(RunnerInterface& runner, const QString& commandLine) {
    QString error;
    const auto context = runner.startApplication(commandLine, QString(), -1, -1, &error);
    return launched(context, error);
}

Launched attachApplication(RunnerInterface& runner, const QString& name) {
    QString error;
    const auto context = runner.attachToApplication(name, QString(), -1, -1, &error);
    return launched(context, error);
}

/// "option=value;option=value". The password is told by its key.
Launched connectToVNC(RunnerInterface& runner, const QString& text) {
    QMap<QString, QString> options;
    for (const QString& part : text.split(QLatin1Char(';'), Qt::SkipEmptyParts)) {
        const int equals = part.indexOf(QLatin1Char('='));
        if (equals <= 0)
            continue;
        QString option = part.left(equals);
        QString value = part.mid(equals + 1);
        if (option == QLatin1String("VncPasswordKey")) {
            QString error;
            option = QStringLiteral("VncPassword");
            value = TestSettingsType::getPassword(value, &error);
            if (!error.isEmpty())
                return fail(Failure{FailureKind::NotFound, error});
        }
        options.insert(option, value);
    }
    QString error;
    const auto context = runner.startSpecialApplication(QStringLiteral("vncaut"), options,
                                                        QString(), -1, -1, &error);
    return launched(context, error);
}

/// Nothing is started for a kind that nobody knows.
Launched startNothing(RunnerInterface&, const QString&) {
    return launched({}, {});
}

struct LaunchKind {
    const char* name;
    Launched (*launch)(RunnerInterface& runner, const QString& argument);
};

constexpr LaunchKind launchKinds[] = {{"StartApplication", startApplication},
                                      {"AttachApplication", attachApplication},
                                      {"ConnectToVNC", connectToVNC}};

/// Lets the application open a page. The result's text, if it has one, is why it did not.
Outcome<> loadUrl(const QString& url) {
    const auto failed = [](const QString& text) {
        return fail(Failure{FailureKind::Failed, text});
    };
    Inspector* const inspector = Inspector::self();
    const Class* const global = inspector->globalClass();
    SharedPtr<Object> result;
    if (global) {
        for (const Method* method : global->methodsByName(QStringLiteral("startBrowser"))) {
            result = inspector->take(method->invoke({}, {inspector->createObject(url)}));
            if (result)
                break;
        }
    }
    if (!result)
        return failed(QStringLiteral("loadUrl invocation"));
    // A browser that has started has no text to give back.
    const Class* const nothing = inspector->classByTypeNumber(7);
    if (nothing && result->objectClass() == nothing)
        return {};
    return failed(result->toVariant().toString());
}

std::string failureText(const CommandCall& call, const Failure& failure) {
    return failure.text.isEmpty() ? "failed" : "failed: " + call.output.encoded(failure.text);
}

/// What stands behind the command's name in the answer, without a blank.
std::string launch(const CommandCall& call) {
    if (call.arguments.size() != 2)
        return "failed: not enough arguments";
    const QString kind = call.arguments.first();
    const QString argument = QUrl::fromPercentEncoding(call.arguments.at(1).toUtf8());
    if (kind == QLatin1String("LoadUrl")) {
        const Outcome<> loaded = loadUrl(argument);
        return loaded ? "running" : "failed: " + call.output.encoded(loaded.error().text);
    }
    RunnerInterface* const runner = Interpreter::currentRunner();
    if (!runner)
        return "failed";
    auto* start = startNothing;
    for (const LaunchKind& known : launchKinds) {
        if (kind == QLatin1String(known.name))
            start = known.launch;
    }
    const Launched context = start(*runner, argument);
    if (!context)
        return failureText(call, context.error());
    return runner->isRunning(*context) ? "running" : "not running";
}

}  // namespace

CommandEffect launchApplicationCommand(const CommandCall& call) {
    call.output.print("launchApplication" + launch(call));
    return CommandEffect::Stays;
}

}  // namespace Tamrix
