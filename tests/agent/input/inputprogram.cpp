#include "agent/input/inputprogram.h"

#include <sys/wait.h>

#include "support/waituntil.h"

namespace Tamrix {

namespace {

QMap<QString, QString> withDisplay(QMap<QString, QString> environment, const QString& platform,
                                   const QString& display) {
    environment.insert("QT_QPA_PLATFORM", platform);
    environment.insert(platform == "wayland" ? "WAYLAND_DISPLAY" : "DISPLAY", display);
    // Qt 6.4 crashes on a field's focus where a compositor has no seat and it is to write through
    // it.
    environment.insert("QT_IM_MODULE", "compose");
    environment.insert("LC_ALL", "C.UTF-8");
    environment.insert("QT_QUICK_BACKEND", "software");
    return environment;
}

}  // namespace

InputProgram::InputProgram(const QString& program, const QString& platform, const QString& display,
                           const QStringList& arguments, const QMap<QString, QString>& environment)
    : m_client(program, arguments, WayIn::Plugin, withDisplay(environment, platform, display)),
      m_isOnWayland(platform == "wayland") {
    m_client.accept();
    sync();
}

Wire::ObjectInfo InputProgram::object(const QString& name) {
    return m_client.find({QStringLiteral("name=") + name});
}

Wire::ObjectInfo InputProgram::item(const QString& view, const QString& text) {
    Wire::FindItem request;
    request.handle = object(view).handle;
    request.item.text = text;
    return m_client.request<Wire::LookUpResult>(Wire::MessageType::FindItem, request).object;
}

QVariant InputProgram::read(const QString& name, const QString& property) {
    return m_client.read(object(name), property);
}

void InputProgram::write(const QString& name, const QString& property, const QVariant& value) {
    m_client.tell(Wire::MessageType::WriteProperty,
                  Wire::PropertyAccess{object(name).handle, property, value});
}

QString InputProgram::call(const QString& function, const Wire::ObjectInfo& object,
                           const QVariantList& arguments, int timeout) {
    Wire::Invoke request;
    request.method = function;
    request.arguments = arguments;
    request.arguments.prepend(QVariant::fromValue(object));
    request.timeout = timeout;
    m_client.request<Wire::Value>(Wire::MessageType::Invoke, request);
    const QString error = m_client.lastError();
    if (m_client.channel().isOpen())
        sync();
    return error;
}

QString InputProgram::call(const QString& function, const QString& name,
                           const QVariantList& arguments, int timeout) {
    return call(function, object(name), arguments, timeout);
}

void InputProgram::sync() {
    m_client.exchange(Wire::MessageType::Sync);
}

bool InputProgram::endsWith(int exitCode) {
    constexpr int patienceWithQt = 10'000;
    while (m_client.nextFrame()) {
    }
    const bool hasLeftItsLoop = !m_client.channel().isOpen();
    const bool mayHang = m_isOnWayland && m_client.hello().qtVersion.startsWith('6');
    const int status = mayHang ? m_client.waitForEnd(patienceWithQt) : m_client.waitForEnd();
    if (mayHang && status == -1)
        return hasLeftItsLoop;
    return status != -1 && WIFEXITED(status) && WEXITSTATUS(status) == exitCode;
}

QString InputProgram::takeLog() {
    const QString log = read("main", "log").toString();
    write("main", "log", QString());
    return log;
}

QString InputProgram::waitForLog() {
    QString log;
    Test::waitUntil([&] {
        log = takeLog();
        return !log.isEmpty();
    });
    return log;
}

}  // namespace Tamrix
