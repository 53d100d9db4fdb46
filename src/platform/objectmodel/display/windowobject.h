#pragma once

#include <memory>

#include "platform/objectmodel/display/session.h"
#include "platform/objectmodel/object.h"

namespace Tamrix::Display {

/// A top-level window as scripts see it. Its properties are asked for each time; what it is called
/// in messages is from the time when it was found. Keeps the session; once the window is gone, or
/// the session has ended, what asks for something fails with a text that says so.
class WindowObject : public RemoteObjectBase {
public:
    WindowObject(std::shared_ptr<Session> session, const WindowFacts& facts);
    ~WindowObject() override;

    QString objectName() const override { return m_facts.title; }
    QString realName() const override;
    ObjectList children() const override { return {}; }
    SharedPtr<Object> parent() const override { return {}; }
    int remoteId() const override { return static_cast<int>(m_facts.id); }
    Outcome<SharedPtr<Object>> readProperty(const Property& property) const override;
    Outcome<PropertyList> readProperties() const override;
    /// "close" and "activate".
    Outcome<SharedPtr<Object>> invokeMethod(const Method& method,
                                            const ObjectList& arguments) const override;

    /// What it is now. Fails, naming it, when it is gone.
    Outcome<WindowFacts> facts() const;
    const Session* session() const { return m_session.get(); }

private:
    std::shared_ptr<Session> m_session;
    WindowFacts m_facts;
};

}  // namespace Tamrix::Display
