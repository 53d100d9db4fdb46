// "tamrixrunner record": writes a script of what a person does in a program.

#include "runner/recording/recording.h"

#include "base/textescape.h"
#include "runner/commands/command.h"
#include "runner/commands/displayoption.h"
#include "runner/processes/interrupt.h"
#include "runner/processes/terminal.h"

namespace Tamrix {

namespace {

Outcome<> readHook(const QStringList& values, RecordingSettings& settings) {
    settings.launcher = Launcher::find(values.constLast());
    if (settings.launcher && settings.launcher->bringsAgent())
        return {};
    return wrongUsage(
        QStringLiteral("--hook takes plugin or preload, not '%1'").arg(values.constLast()));
}

Outcome<> readArguments(const CommandArguments& arguments, RecordingSettings& settings) {
    settings.program = arguments.own;
    if (settings.suite.isEmpty() != settings.caseName.isEmpty())
        return wrongUsage(QStringLiteral("--suite and --case go together"));
    if (settings.caseName.contains(u'/') || settings.caseName == QLatin1String("..") ||
        settings.caseName == QLatin1String("."))
        return wrongUsage(
            QStringLiteral("--case takes the name of a folder, not '%1'").arg(settings.caseName));
    return {};
}

int recordProgram(const RecordingSettings& settings) {
    Interrupt::install();
    const Outcome<> recorded = record(settings, [](const QString& text) {
        // Line feeds are the script's own: it writes those of texts as "\n".
        for (const QString& line : text.split(u'\n', Qt::SkipEmptyParts))
            writeBytes(stdout, escapedForTerminal(line).toLocal8Bit() + '\n');
    });
    if (!recorded)
        return failWith(recorded.error().text);
    // Ctrl-C is one way to end a recording; other signals end this process.
    const int signal = Interrupt::signalNumber();
    return signal == 0 || signal == SIGINT ? ExitSuccess : Interrupt::exitCode(signal);
}

}  // namespace

Command recordCommand() {
    return makeCommand<RecordingSettings>(
        {{"record", "PROGRAM [ARGUMENT...]",
          "Starts a program and writes a script of what is done in it, until it ends or Ctrl-C.", 1,
          CommandSyntax::anyNumber, CommandTail::Program},
         {displayOption(&RecordingSettings::display),
          {"case", "NAME", "Writes the script of this new case of the suite.", nullptr,
           textTo(&RecordingSettings::caseName)},
          {"hook", "NAME", "How the program is reached, as in config.xml: %1 or preload.", "plugin",
           readHook},
          {"language", "NAME", "The language of the script; %1 unless given.", "python",
           textTo(&RecordingSettings::language)},
          {"suite", "SUITE", "The folder of the case's suite, which is made if there is none.",
           nullptr, textTo(&RecordingSettings::suite)},
          {"verify-keys", "KEYS",
           "The keys that switch between acting and verifying in the program; %1 unless given.",
           "Ctrl+F12", textTo(&RecordingSettings::verifyKeys)}},
         {},
         readArguments,
         recordProgram});
}

}  // namespace Tamrix
