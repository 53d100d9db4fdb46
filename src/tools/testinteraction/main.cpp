// Shows a dialog to the person at the machine, for scripts. The command line says what, the exit
// code and standard output what was answered.

#include <QApplication>
#include <cstdio>

#include "tools/testinteraction/dialogs.h"
#include "tools/testinteraction/notice.h"

int main(int argc, char** argv) {
    using namespace Tamrix;
    // Texts may look like options of Qt.
    int countForQt = 1;
    const QApplication application(countForQt, argv);
    QStringList arguments;
    for (int index = 1; index < argc; ++index)
        arguments.append(QString::fromLocal8Bit(argv[index]));
    const Outcome<Request> request = parseRequest(arguments);
    if (!request) {
        std::fprintf(stderr, "testinteraction: %s\n", qUtf8Printable(request.error().text));
        return static_cast<int>(Answer::WrongUsage);
    }
    const Answer answer =
        std::visit([&request](const auto& content) { return showDialog(request->title, content); },
                   request->content);
    return static_cast<int>(answer);
}
