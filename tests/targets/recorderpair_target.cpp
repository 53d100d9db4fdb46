// A program whose second window is another process, for the tests of recordings. Each window is one
// button at a place that is known; clicks are written, a line each, to the file that is given.

#include <QtWidgets>

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const QString journal = arguments.value(1);
    const bool isSecond = arguments.value(2) == QLatin1String("second");
    QPushButton button(isSecond ? QStringLiteral("Second") : QStringLiteral("First"));
    QProcess other;
    QObject::connect(&button, &QPushButton::clicked, [&] {
        QFile file(journal);
        if (file.open(QIODevice::WriteOnly | QIODevice::Append))
            file.write(button.text().toUtf8() + '\n');
        if (!isSecond && other.state() == QProcess::NotRunning)
            other.start(QCoreApplication::applicationFilePath(),
                        {journal, QStringLiteral("second")});
    });
    button.setGeometry(isSecond ? 400 : 40, 40, 200, 100);
    button.show();
    const int status = QApplication::exec();
    other.kill();
    other.waitForFinished();
    return status;
}
