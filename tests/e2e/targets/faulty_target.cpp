// A program that does what goes wrong with programs under test. Its window has a button for each
// fault that a click brings about; the arguments name faults of the start.

#include <unistd.h>

#include <QApplication>
#include <QCloseEvent>
#include <QDialog>
#include <QLabel>
#include <QProcess>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>
#include <csignal>
#include <cstdio>
#include <cstdlib>

#include "wire/framechannel.h"
#include "wire/messages.h"

namespace {

using namespace Tamrix;

/// Connects where an agent does and says something else. Then waits to be ended.
int sayToRunner(const QString& what) {
    const int descriptor =
        Wire::connectLocalSocket(QString::fromLocal8Bit(qgetenv(Wire::connectVariable)))
            .value_or(-1);
    if (what == "garbage") {
        const QByteArray bytes = QByteArray("GET / HTTP/1.1\r\n").repeated(1000);
        [[maybe_unused]] const ssize_t written =
            ::write(descriptor, bytes.constData(), static_cast<size_t>(bytes.size()));
        ::pause();
    }
    Wire::FrameChannel channel(descriptor);
    Wire::Hello hello;
    hello.token = what == "token" ? "wrong" : QString::fromLocal8Bit(qgetenv(Wire::tokenVariable));
    hello.pid = ::getpid();
    if (what == "version")
        hello.version = 99;
    channel.sendBody(0, Wire::MessageType::Hello, hello);
    if (what == "leaves") {
        ::sleep(1);
        channel.close();
    }
    ::pause();
    return 0;
}

void writeMuch() {
    const QByteArray line = QByteArray(999, 'x') + '\n';
    for (int count = 0; count < 3000; ++count)
        std::fwrite(line.constData(), 1, static_cast<size_t>(line.size()), stdout);
    std::printf("the end\n");
    std::fflush(stdout);
}

/// Goes on in a session of its own, behind the program.
void leaveChildBehind() {
    if (::fork() == 0) {
        ::setsid();
        ::signal(SIGTERM, SIG_IGN);
        while (true)
            ::pause();
    }
}

/// Leaves a process that has nothing of this one: no parent, session or environment. It is known by
/// the seconds that it sleeps.
void leaveDaemonBehind() {
    if (::fork() != 0)
        return;
    ::setsid();
    if (::fork() != 0)
        ::_exit(0);
    char* const none[] = {nullptr};
    char name[] = "sleep";
    char* const arguments[] = {name, std::getenv("FAULTY_DAEMON_SLEEP"), nullptr};
    ::execve("/bin/sleep", arguments, none);
    ::_exit(1);
}

void openDialog(QWidget* parent) {
    QDialog dialog(parent);
    dialog.setWindowTitle("Modal");
    QPushButton button("Close it", &dialog);
    QObject::connect(&button, &QPushButton::clicked, &dialog, &QDialog::accept);
    dialog.exec();
}

/// A window that does on closing what the program's argument names.
class Window : public QWidget {
public:
    explicit Window(const QString& what) : m_what(what) {}

protected:
    void closeEvent(QCloseEvent* event) override {
        if (m_what == "stubborn")
            event->ignore();
        else if (m_what == "crashes-at-close")
            ::raise(SIGSEGV);
        else if (m_what == "exits-at-close")
            ::_exit(5);
    }

private:
    QString m_what;
};

}  // namespace

int main(int argc, char** argv) {
    const QString what = argc > 1 ? QString::fromLocal8Bit(argv[1]) : QString();
    std::fprintf(stderr, "about to start\n");
    ::signal(SIGUSR1, [](int) { ::_exit(3); });
    if (what == "early") {
        std::fprintf(stderr, "no configuration\n");
        return 7;
    }
    const QStringList liars = {"version", "token", "garbage", "mute", "leaves"};
    if (liars.contains(what))
        return sayToRunner(what);
    if (what == "silent")
        return ::pause();
    if (what == "deaf")
        qunsetenv("QT_QPA_GENERIC_PLUGINS");
    QApplication application(argc, argv);
    if (what == "busy")
        ::pause();
    if (what == "much")
        writeMuch();
    if (what == "stubborn")
        ::signal(SIGTERM, SIG_IGN);

    Window window(what);
    auto* const layout = new QVBoxLayout(&window);
    const auto add = [&](const char* text, auto act) {
        auto* const button = new QPushButton(text);
        layout->addWidget(button);
        QObject::connect(button, &QPushButton::clicked, act);
        return button;
    };
    add("Crash", [] { ::raise(SIGSEGV); });
    add("Exit", [] { ::_exit(3); });
    add("Hang", [] {
        while (true)
            ::pause();
    });
    add("Modal", [&] { openDialog(&window); });
    add("Fork", [] { leaveChildBehind(); });
    add("Daemon", [] { leaveDaemonBehind(); });
    add("Child", [argv] { QProcess::startDetached(argv[0], {"child"}); });
    add("Disabled", [] {})->setEnabled(false);
    auto* const label = new QLabel("label of " + what);
    layout->addWidget(label);
    const auto later = [label](auto act) { QTimer::singleShot(400, label, act); };
    add("Rename later", [=] { later([label] { label->setText("renamed"); }); });
    add("Remove later", [=] { later([label] { delete label; }); });
    window.show();
    return QApplication::exec();
}
