// A program that makes other processes, for the tests of the ways in. The argument names what it
// does once its event loop runs:
//
//     fork    a child that goes on with the event loop, until its parent ends
//     child   starts itself without argument
//     shell   starts itself through a shell
//     twice   ends its application object and makes another

#include <sys/prctl.h>
#include <unistd.h>

#include <QApplication>
#include <QLabel>
#include <QProcess>
#include <QTimer>
#include <csignal>

namespace {

void act(const QString& what) {
    const QString program = QCoreApplication::applicationFilePath();
    const bool isForked = what == "fork" && ::fork() == 0;
    if (isForked || what == "follow")
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    else if (what == "child")
        (new QProcess(qApp))->start(program, {"follow"});
    else if (what == "shell")
        (new QProcess(qApp))->start("/bin/sh", {"-c", "'" + program + "' follow; true"});
}

int run(int argc, char** argv, const QString& what) {
    QApplication application(argc, argv);
    QLabel label("label of " + what);
    label.show();
    if (what == "twice")
        QTimer::singleShot(300, &application, &QCoreApplication::quit);
    else
        QTimer::singleShot(200, [what] { act(what); });
    return QApplication::exec();
}

}  // namespace

int main(int argc, char** argv) {
    const QString what = argc > 1 ? QString::fromLocal8Bit(argv[1]) : QString();
    const int status = run(argc, argv, what);
    return what == "twice" ? run(argc, argv, "second") : status;
}
