#pragma once

#include <QProcess>
#include <QString>

namespace Tamrix {

/// An Xvfb display without window manager, for the time of the object.
class TestDisplay {
public:
    TestDisplay();
    ~TestDisplay();
    TestDisplay(const TestDisplay&) = delete;
    TestDisplay& operator=(const TestDisplay&) = delete;

    /// ":99"; empty when it did not start.
    QString name() const { return m_name; }

private:
    /// Ends with the test, however that ends.
    class Server : public QProcess {
    protected:
        void setupChildProcess() override;
    };

    Server m_server;
    QString m_name;
};

}  // namespace Tamrix
