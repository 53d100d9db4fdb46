#include "runner/recording/recordedprogram.h"

#include <gtest/gtest.h>
#include <xcb/xtest.h>

#include <QThread>

#include "base/environment.h"
#include "platform/objectmodel/objectname.h"
#include "platform/objectmodel/remote/namequery.h"
#include "runner/recording/recordedscript.h"

namespace Tamrix::Test {

namespace {

QMap<QString, QString> withDisplay(QMap<QString, QString> environment, const QString& display) {
    environment.insert("QT_QPA_PLATFORM", "xcb");
    environment.insert("DISPLAY", display);
    environment.insert("QT_IM_MODULE", "compose");
    environment.insert("LC_ALL", "C.UTF-8");
    environment.insert("QT_QUICK_BACKEND", "software");
    return environment;
}

}  // namespace

RecordedProgram::RecordedProgram(const QString& program, const QStringList& arguments,
                                 const QMap<QString, QString>& environment)
    : m_display("xcb") {
    Environment::setVariable("TAMRIX_PREFIX", TAMRIX_TEST_PREFIX);
    m_client = std::make_unique<AgentClient>(program, arguments, WayIn::Plugin,
                                             withDisplay(environment, m_display.name()));
    if (!m_client->accept()) {
        m_error = "no agent came: " + m_client->errorOutput();
        return;
    }
    const auto connection = Display::XConnection::open({m_display.name(), {}});
    if (!connection) {
        m_error = connection.error().text;
        return;
    }
    m_connection = *connection;
    auto input = Display::Input::open(m_connection);
    auto language = scriptWriter("python");
    if (!input || !language) {
        m_error = input ? language.error().text : input.error().text;
        return;
    }
    m_input = std::move(*input);
    m_language = std::move(*language);
    m_merger = std::make_unique<ActionMerger>(
        [this](const ScriptAction& action) {
            m_actions.append(action);
            m_lines.append(m_language->lines(action).trimmed());
        },
        [](const Wire::Query& query) { return nameOfQuery(query).qualifiedName(); });
    sync();
    if (!m_client->tell(Wire::MessageType::Record, Wire::Record{true, "Ctrl+F12", false}))
        m_error = m_client->lastError();
}

RecordedProgram::~RecordedProgram() = default;

QRect RecordedProgram::boundsOf(const QStringList& criteria) {
    const Wire::ObjectInfo object = m_client->find(criteria);
    EXPECT_NE(object.handle, 0U) << qPrintable(criteria.join(' '));
    return m_client
        ->request<Wire::Value>(Wire::MessageType::GlobalBounds, Wire::ObjectHandle{object.handle})
        .value.toRect();
}

QPoint RecordedProgram::at(const QStringList& criteria) {
    return boundsOf(criteria).center();
}

QPoint RecordedProgram::leftOf(const QStringList& criteria) {
    constexpr int inside = 8;
    const QRect bounds = boundsOf(criteria);
    return {bounds.left() + inside, bounds.center().y()};
}

QPoint RecordedProgram::itemAt(const QStringList& view, const QString& text) {
    Wire::FindItem request;
    request.handle = m_client->find(view).handle;
    request.item.text = text;
    const auto item = m_client->request<Wire::LookUpResult>(Wire::MessageType::FindItem, request);
    EXPECT_NE(item.object.handle, 0U) << qPrintable(text);
    return m_client
        ->request<Wire::Value>(Wire::MessageType::GlobalBounds,
                               Wire::ObjectHandle{item.object.handle})
        .value.toRect()
        .center();
}

void RecordedProgram::click(const QPoint& point, Qt::MouseButton button,
                            Qt::KeyboardModifiers modifiers, int count) {
    const Outcome<> done = m_input->withModifiers(modifiers, [&] {
        return m_input->click(point, Wire::MouseStyle{button, Qt::NoModifier}, count);
    });
    EXPECT_TRUE(done);
    sync();
}

void RecordedProgram::drag(const QPoint& from, const QPoint& to) {
    EXPECT_TRUE(m_input->drag(from, to, {}));
    sync();
}

void RecordedProgram::move(const QPoint& point) {
    m_input->approach(point);
    sync();
}

void RecordedProgram::wheel(const QPoint& point, bool isUp) {
    m_input->move(point);
    for (const uint8_t type : {XCB_BUTTON_PRESS, XCB_BUTTON_RELEASE})
        xcb_test_fake_input(m_connection->get(), type, isUp ? 4 : 5, XCB_CURRENT_TIME,
                            m_connection->root(), 0, 0, 0);
    m_connection->synchronize();
    sync();
}

void RecordedProgram::type(const QString& text) {
    EXPECT_TRUE(m_input->type(text));
    sync();
}

void RecordedProgram::press(const QString& keys) {
    QString error;
    EXPECT_TRUE(m_input->pressCombination(Wire::parseKeys(keys, &error)));
    EXPECT_EQ(error, QString());
    sync();
}

void RecordedProgram::closeWindow() {
    const xcb_get_input_focus_cookie_t cookie = xcb_get_input_focus(m_connection->get());
    const auto focus = m_connection->reply(cookie, xcb_get_input_focus_reply);
    const auto protocol = m_connection->atom("WM_DELETE_WINDOW");
    m_connection->sendMessage(focus->focus, focus->focus, "WM_PROTOCOLS",
                              {protocol, XCB_CURRENT_TIME, 0, 0, 0}, XCB_EVENT_MASK_NO_EVENT);
    m_connection->synchronize();
    sync();
}

void RecordedProgram::sync() {
    m_client->exchange(Wire::MessageType::Sync);
    // What was sent to the program last may still be on its way, and buttons act late.
    QThread::msleep(150);
    m_client->exchange(Wire::MessageType::Sync);
    collect();
}

void RecordedProgram::wait(int milliseconds) {
    m_now += milliseconds;
    m_merger->idle(m_now);
}

void RecordedProgram::collect() {
    for (const Wire::Observation& observation : m_client->takeObservations()) {
        if (m_merger)
            m_merger->add(observation, m_now);
    }
}

QStringList RecordedProgram::takeLines() {
    collect();
    m_merger->finish();
    return std::exchange(m_lines, {});
}

QByteArray RecordedProgram::script(const QString& commandLine, const QString& language) const {
    const auto writer = scriptWriter(language);
    EXPECT_TRUE(writer) << qPrintable(language);
    if (!writer)
        return {};
    QString text = (*writer)->header();
    text += (*writer)->lines(FunctionAction{"startApplication", {}, {commandLine}});
    for (const ScriptAction& action : m_actions)
        text += (*writer)->lines(action);
    return (text + (*writer)->footer()).toUtf8();
}

}  // namespace Tamrix::Test
