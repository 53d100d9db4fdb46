#pragma once

#include <QProcess>
#include <QString>
#include <QTemporaryDir>

namespace Tamrix {

/// An Xvfb display without window manager, or for the platform "wayland" a Weston compositor
/// without screen, for the time of the object. Nothing for other platforms.
class TestDisplay {
public:
    /// `options` are more arguments of Xvfb.
    explicit TestDisplay(const QString& platform,
                         const QString& screen = QStringLiteral("1280x1024x24"),
                         const QStringList& options = {});
    ~TestDisplay();
    TestDisplay(const TestDisplay&) = delete;
    TestDisplay& operator=(const TestDisplay&) = delete;

    /// Ends the server as a crash would.
    void kill();
    /// ":99", for a compositor the path of its socket; empty when it did not start.
    QString name() const { return m_name; }

private:
    /// Ends with the test, however that ends.
    class Server : public QProcess {
    protected:
        void setupChildProcess() override;
    };

    void startXvfb(const QString& screen, const QStringList& options);
    void startWeston();

    QTemporaryDir m_folder;
    Server m_server;
    QString m_name;
};

}  // namespace Tamrix
