#pragma once

#include <QStringList>
#include <QtGlobal>

namespace Tamrix::Test {

/// Collects Qt's messages instead of printing them, until the end of the scope. One at a time.
class WarningRecorder {
public:
    WarningRecorder() : m_before(qInstallMessageHandler(record)) { s_messages.clear(); }
    ~WarningRecorder() { qInstallMessageHandler(m_before); }
    WarningRecorder(const WarningRecorder&) = delete;
    WarningRecorder& operator=(const WarningRecorder&) = delete;

    QStringList messages() const { return s_messages; }

private:
    static void record(QtMsgType, const QMessageLogContext&, const QString& text) {
        s_messages.append(text);
    }

    inline static QStringList s_messages;
    QtMessageHandler m_before;
};

}  // namespace Tamrix::Test
