#include "runner/applications/foreigntoolkit.h"

#include <QFile>

namespace Tamrix {

namespace {

const char ownLibrary[] = "/libQt5Core.so";

/// By how a library's file is called.
const struct {
    const char* library;
    const char* toolkit;
} foreignLibraries[] = {
    {"/libQt6Core.so", "Qt 6"},      {"/libQtCore.so.4", "Qt 4"}, {"/libgtk-4.so", "GTK 4"},
    {"/libgtk-3.so", "GTK 3"},       {"/libtk8.", "Tk"},          {"/libfltk.so", "FLTK"},
    {"/libgtk-x11-2.0.so", "GTK 2"},
};

}  // namespace

QString foreignToolkitOf(const std::vector<pid_t>& processes) {
    QString found;
    for (const pid_t process : processes) {
        QFile file(QStringLiteral("/proc/%1/maps").arg(process));
        const QByteArray maps = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
        if (maps.contains(ownLibrary))
            return {};
        for (const auto& [library, toolkit] : foreignLibraries) {
            if (found.isEmpty() && maps.contains(library))
                found = QLatin1String(toolkit);
        }
    }
    return found;
}

QString ForeignToolkitWatch::look(const std::vector<pid_t>& processes) {
    m_nextLook.setRemainingTime(lookInterval);
    const QString toolkit = foreignToolkitOf(processes);
    if (toolkit != m_seen) {
        m_seen = toolkit;
        m_sure.setRemainingTime(patience);
    }
    return m_sure.hasExpired() ? m_seen : QString();
}

}  // namespace Tamrix
