#include "platform/objectmodel/display/windowobject.h"

#include "platform/objectmodel/display/windowclass.h"
#include "platform/objectmodel/inspector.h"
#include "platform/objectmodel/valueobject.h"

namespace Tamrix::Display {

namespace {

/// Handles of all applications differ: above the window's number stands that of the session, with a
/// mark that no connection to an agent has.
constexpr int sessionShift = 48;
constexpr quint64 displayMark = 1ULL << 47;

quint64 handleOf(const Session& session, const WindowFacts& facts) {
    return static_cast<quint64>(session.number()) << sessionShift | displayMark | facts.id;
}

}  // namespace

WindowObject::WindowObject(std::shared_ptr<Session> session, const WindowFacts& facts)
    : RemoteObjectBase(handleOf(*session, facts), windowClass()),
      m_session(std::move(session)),
      m_facts(facts) {}

WindowObject::~WindowObject() = default;

Outcome<WindowFacts> WindowObject::facts() const {
    const Outcome<WindowFacts> known = m_session->window(m_facts.id);
    if (!known && known.error().kind == FailureKind::Gone)
        return fail(FailureKind::Gone, QStringLiteral("%1 is gone").arg(describe(m_facts)));
    return known;
}

QString WindowObject::realName() const {
    const Outcome<WindowFacts> now = facts();
    const Outcome<WindowList> all = now ? m_session->windows() : fail(now.error());
    if (!all) {
        Inspector::self()->keep(all.error());
        return {};
    }
    return realNameOf(*now, *all);
}

Outcome<SharedPtr<Object>> WindowObject::readProperty(const Property& property) const {
    const Outcome<WindowFacts> now = facts();
    if (!now)
        return fail(now.error());
    const QVariant value = propertyOf(*now, property.name());
    if (!value.isValid())
        return Object::readProperty(property);
    return SharedPtr<Object>(new ValueObject(value));
}

Outcome<PropertyList> WindowObject::readProperties() const {
    const Outcome<WindowFacts> now = facts();
    if (!now)
        return fail(now.error());
    PropertyList list;
    for (int index = 0; index < windowClass()->numProperties(); ++index) {
        const QString name = windowClass()->property(index)->name();
        list.emplace_back(name, new ValueObject(propertyOf(*now, name)));
    }
    return list;
}

Outcome<SharedPtr<Object>> WindowObject::invokeMethod(const Method& method,
                                                      const ObjectList& arguments) const {
    if (!arguments.empty())
        return fail(FailureKind::BadArgument,
                    QStringLiteral("%1() of a window takes no arguments").arg(method.name()));
    const Outcome<WindowFacts> now = facts();
    if (!now)
        return fail(now.error());
    const Outcome<> done = method.name() == QLatin1String("close") ? m_session->askToClose(*now)
                                                                   : m_session->activate(*now);
    if (!done)
        return fail(done.error());
    return SharedPtr<Object>(new ValueObject(QVariant()));
}

}  // namespace Tamrix::Display
