#include "interpreter/generic/testinteraction.h"

#include <QDir>
#include <QFileInfo>
#include <QImageWriter>
#include <QTemporaryFile>
#include <algorithm>
#include <limits>

#include "interpreter/bridge/actionrecord.h"
#include "interpreter/bridge/scriptcontext.h"
#include "interpreter/generic/imageobjects.h"
#include "interpreter/generic/interactiontool.h"

namespace Tamrix {

namespace {

/// How long notices are shown, in milliseconds.
constexpr int defaultTimeout = 5000;

struct FunctionRow {
    const char* name;
    ScriptContext::Function function;
    QStringList required;
    QStringList optional;
    const char* description;
};

const FunctionRow rows[] = {
    {"choice",
     interactionChoice,
     {"message", "listItems"},
     {},
     "Lets the person choose one of the items; returns it, an empty text when nothing was chosen"},
    {"information",
     interactionInformation,
     {"text"},
     {},
     "Shows a text until the person confirms it; returns the button"},
    {"input",
     interactionInput,
     {"message"},
     {"initialText"},
     "Lets the person type a text; returns it"},
    {"isAvailable", interactionIsAvailable, {}, {}, "Whether there is a person to be asked"},
    {"notification",
     interactionNotification,
     {"text"},
     {"timeout"},
     "Shows a text for so many seconds, 5 unless given, while the script goes on"},
    {"password",
     interactionPassword,
     {"text"},
     {},
     "Lets the person type a text that is not shown; returns it"},
    {"question",
     interactionQuestion,
     {"text"},
     {},
     "Asks a question; returns the button, testInteraction.Yes or testInteraction.No"},
    {"showImage",
     interactionShowImage,
     {"image"},
     {"text", "timeout"},
     "Shows an image for so many seconds, 5 unless given, while the script goes on"},
    {"warning",
     interactionWarning,
     {"text"},
     {},
     "Shows a warning until the person confirms it; returns the button"},
};

constexpr struct {
    const char* name;
    TestInteraction::Button value;
} constants[] = {
    {"testInteraction::None", TestInteraction::None},
    {"testInteraction::Ok", TestInteraction::Ok},
    {"testInteraction::Cancel", TestInteraction::Cancel},
    {"testInteraction::Yes", TestInteraction::Yes},
    {"testInteraction::No", TestInteraction::No},
};

bool refuse(ScriptContext* context, const QString& error) {
    context->setError(error);
    return false;
}

/// Whether a person is there; false with the error set.
bool checkInteractive(ScriptContext* context) {
    return TestInteraction::isInteractive() ||
           refuse(context, QStringLiteral("testInteraction API requires tamrixrunner to be started "
                                          "with the --interactive switch"));
}

bool isText(const SharedPtr<ScriptArgument>& argument) {
    return argument && argument->isStringLike();
}

/// Whether there is one argument, a text; false with the error set. `name` is the function's, with
/// its parameter.
bool checkMessageArg(ScriptContext* context, const char* name) {
    if (context->argumentCount() != 1)
        return refuse(context, QStringLiteral("%1 expects one argument").arg(QLatin1String(name)));
    return isText(context->argument(0)) ||
           refuse(context,
                  QStringLiteral("%1 expected string as argument").arg(QLatin1String(name)));
}

QString textOf(const ScriptContext& context, int index) {
    return context.argument(index) ? context.argument(index)->toString() : QString();
}

/// Shows a dialog, and hands the answer to `take`. A dialog that could not be shown is an error.
template <typename Take>
void ask(ScriptContext* context, const QStringList& arguments, Take take) {
    const QByteArray function = "testInteraction." + arguments.constFirst().toLatin1();
    const ActionRecord record(context, function.constData());
    const Outcome<InteractionAnswer> answer = executeTestInteractionTool(arguments);
    if (answer)
        take(*answer);
    else
        context->setError(answer.error().text, ScriptContext::VerificationError);
}

/// A text that the person confirms or answers by a button.
void askForButton(ScriptContext* context, const char* name, const char* kind) {
    if (!checkInteractive(context) || !checkMessageArg(context, name))
        return;
    ask(context,
        {QString::fromLatin1(kind), messageBoxTitleFromContext(*context), textOf(*context, 0)},
        [context](const InteractionAnswer& answer) { context->setIntegerResult(answer.button); });
}

/// What the person types or chooses. That a cancelled dialog gives the text, too, is meant.
void askForText(ScriptContext* context, const QStringList& arguments) {
    ask(context, arguments,
        [context](const InteractionAnswer& answer) { context->setStringResult(answer.text); });
}

/// Shows something while the script goes on.
void showNotice(ScriptContext* context, const QStringList& arguments) {
    if (const Outcome<> started = startTestInteractionTool(arguments); started)
        context->setNullResult();
    else
        context->setError(started.error().text, ScriptContext::VerificationError);
}

/// Seconds as milliseconds, in digits.
QString timeoutText(const SharedPtr<ScriptArgument>& seconds) {
    const double wanted = seconds ? seconds->toDouble() * 1000 : 0;
    return QString::number(
        wanted > 0 ? static_cast<int>(std::min(wanted, double(std::numeric_limits<int>::max())))
                   : defaultTimeout);
}

bool isNumberOrMissing(const SharedPtr<ScriptArgument>& argument) {
    return !argument || argument->isNumber();
}

/// Writes the image for the program that shows it, which removes the file. The path, or why it
/// could not be written.
Outcome<QString> writeTemporaryImage(const QImage& image) {
    const auto failure = [](const QString& reason) {
        return fail(FailureKind::Failed,
                    QStringLiteral("Failed saving temporary image: %1").arg(reason));
    };
    QTemporaryFile file(QDir(QDir::tempPath()).filePath(QStringLiteral("interactionImageXXXXXX")));
    if (!file.open())
        return failure(file.errorString());
    QImageWriter writer(&file, "PNG");
    if (!writer.write(image))
        return failure(writer.errorString());
    if (!file.flush())
        return failure(file.errorString());
    // The program reads it when this script may have ended.
    file.setAutoRemove(false);
    return file.fileName();
}

}  // namespace

bool TestInteraction::s_isInteractive = false;

void TestInteraction::initFunctions(ScriptContext* context) {
    for (const FunctionRow& row : rows) {
        ScriptContext::describeFunction(
            QStringLiteral("testInteraction::") + QLatin1String(row.name),
            {row.required, row.optional, QString::fromLatin1(row.description)});
        context->addStaticMemberFunction(QStringLiteral("testInteraction"),
                                         QString::fromLatin1(row.name), row.function);
    }
    for (const auto& constant : constants)
        context->addConstant(QString::fromLatin1(constant.name), constant.value);
}

QString messageBoxTitleFromContext(const ScriptContext& context) {
    const LineInfo position = context.lineInfo();
    return QStringLiteral("Tamrix - %1:%2")
        .arg(QFileInfo(position.fileName()).fileName(), QString::number(position.lineNumber()));
}

void interactionChoice(ScriptContext* context) {
    // 1. The arguments. That the last text names another function is meant.
    if (!checkInteractive(context))
        return;
    const char* error = nullptr;
    if (context->argumentCount() != 2)
        error = "testInteraction.choice(message, listItems) expects two arguments";
    else if (!isText(context->argument(0)))
        error = "testInteraction.choice(message, listItems) expects a string as first argument";
    else if (!context->argument(1) || !context->argument(1)->isList())
        error = "testInteraction.list(message, listItems) expects a list as second argument";
    if (error) {
        context->setError(QString::fromLatin1(error));
        return;
    }
    // 2. The dialog.
    QStringList arguments{QStringLiteral("choice"), messageBoxTitleFromContext(*context),
                          textOf(*context, 0)};
    for (const SharedPtr<ScriptArgument>& item : context->argument(1)->toList())
        arguments.append(item->toString());
    askForText(context, arguments);
}

void interactionInformation(ScriptContext* context) {
    askForButton(context, "testInteraction::information(text)", "information");
}

void interactionQuestion(ScriptContext* context) {
    askForButton(context, "testInteraction::question(text)", "question");
}

void interactionWarning(ScriptContext* context) {
    askForButton(context, "testInteraction::warning(text)", "warning");
}

void interactionInput(ScriptContext* context) {
    // 1. The arguments.
    if (!checkInteractive(context))
        return;
    const char* error = nullptr;
    if (context->argumentCount() < 1 || context->argumentCount() > 2)
        error = "testInteraction.input(message[, initialText]) expects one or two arguments";
    else if (!isText(context->argument(0)))
        error = "testInteraction.input(message[, initialText]) expects a string as first argument";
    else if (context->argument(1) && !isText(context->argument(1)))
        error = "testInteraction.input(message[, initialText]) expects a string as second argument";
    if (error) {
        context->setError(QString::fromLatin1(error));
        return;
    }
    // 2. The dialog.
    askForText(context, {QStringLiteral("input"), messageBoxTitleFromContext(*context),
                         textOf(*context, 0), textOf(*context, 1)});
}

void interactionPassword(ScriptContext* context) {
    if (!checkInteractive(context) || !checkMessageArg(context, "testInteraction::password(text)"))
        return;
    askForText(context, {QStringLiteral("password"), messageBoxTitleFromContext(*context),
                         textOf(*context, 0)});
}

void interactionIsAvailable(ScriptContext* context) {
    context->setBoolResult(TestInteraction::isInteractive());
}

void interactionNotification(ScriptContext* context) {
    // 1. The arguments.
    if (!checkInteractive(context))
        return;
    if (context->argumentCount() > 2 || !isText(context->argument(0)) ||
        !isNumberOrMissing(context->argument(1))) {
        context->setError(
            QStringLiteral("testInteraction.notification() expects a text argument and an optional "
                           "timeout value."));
        return;
    }
    // 2. The notice.
    showNotice(context, {QStringLiteral("notification"), messageBoxTitleFromContext(*context),
                         textOf(*context, 0), timeoutText(context->argument(1))});
}

void interactionShowImage(ScriptContext* context) {
    // 1. The arguments.
    if (!checkInteractive(context))
        return;
    if (context->argumentCount() < 1) {
        context->setError(
            QStringLiteral("testInteraction::showImage(image) requires an image argument"));
        return;
    }
    if (context->argumentCount() > 3) {
        context->setError(
            QStringLiteral("testInteraction::showImage(image) takes at most three arguments"));
        return;
    }
    const SharedPtr<ScriptArgument> first = context->argument(0);
    const auto picture = first ? first->toNative<ImageScriptObject>() : nullptr;
    if (!picture) {
        context->setError(QStringLiteral("The first argument must be an Image object"));
        return;
    }
    // 2. The file.
    const Outcome<QString> path = writeTemporaryImage(picture->image);
    if (!path) {
        context->setError(path.error().text);
        return;
    }
    // 3. The notice.
    showNotice(context, {QStringLiteral("image"), messageBoxTitleFromContext(*context),
                         textOf(*context, 1), *path, timeoutText(context->argument(2))});
}

}  // namespace Tamrix
