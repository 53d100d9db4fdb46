#pragma once

#include <memory>
#include <optional>

#include "platform/objectmodel/access.h"
#include "platform/objectmodel/display/functions.h"
#include "platform/objectmodel/display/session.h"

namespace Tamrix {

/// An application without agent, as the X display knows it that it is shown on: its objects are its
/// top-level windows, its screen and its input are the display's. What would need to know what is
/// in a window is refused with a text that says so. The model may end before its objects.
class DisplayModel : public Access {
public:
    /// `isOwn` tells the processes of the application; `facts` has the one that stands for it, with
    /// which the model ends.
    DisplayModel(std::shared_ptr<Display::XConnection> connection,
                 const Display::ProcessTest& isOwn, ApplicationFacts facts);
    ~DisplayModel() override;

    // Access
    ApplicationFacts facts() const override { return m_facts; }
    bool isOpen() const override { return m_session->isOpen(); }
    bool takeNews() override;
    int descriptor() const override;
    void close(const QString& reason) override { m_session->close(reason); }
    QString endReason() const override { return m_session->endReason(); }
    bool owns(const SharedPtr<Object>& object) const override;
    Outcome<> ping(int timeout) override;
    void setIdleHook(const std::function<bool()>& hook) override { m_session->setIdleHook(hook); }
    void setEndText(const std::function<QString()>& text) override { m_session->setEndText(text); }
    void setReadyTimeout(int milliseconds) override { m_readyTimeout = milliseconds; }
    Outcome<TargetAnswer> lookUp(const Target& target, int answerTimeout) override;
    Outcome<TargetAnswer> expect(const Target& target, const ObjectName& properties,
                                 int answerTimeout) override;
    Outcome<SharedPtr<Object>> objectById(int remoteId) override;
    /// A target that is a screen rectangle is always there.
    Outcome<TargetAnswer> act(const QString& function, const Target& target,
                              const ObjectList& arguments, int timeout) override;
    Outcome<> mouseEvent(const Target& target, const Wire::MouseEvent& event) override;
    Outcome<> keyEvent(const QString& key, bool press) override;
    Outcome<> highlight(const Target& target, int milliseconds) override;
    Outcome<> stopHighlight() override;
    /// Asks the windows that can be asked.
    Outcome<> quit() override;
    Outcome<QByteArray> snapshotOf(const Target& target, bool withImages) override;
    Outcome<Wire::ObjectListing> listing() override;
    Outcome<Wire::ObjectOutline> outline() override;
    Outcome<SharedPtr<Object>> globalBounds(SharedPtr<Object> object) override;
    /// What the process had when it started.
    Outcome<QString> environmentVariable(const QString& name) override;
    Outcome<NameMatches> matchesOf(const ObjectName& name) override;
    Outcome<SharedPtr<Object>> objectAt(const QPoint& point) override;
    Outcome<QList<CheckedName>> namesOf(const SharedPtr<Object>& object) override;
    Outcome<QList<NearMiss>> nearMissesOf(const ObjectName& name) override;

    // ObjectModel
    Outcome<SharedPtr<Object>> findObject(const ObjectName& name) override;
    Outcome<ObjectList> topLevelObjects() override;
    Outcome<const Class*> classByName(const QString& name) override;
    Outcome<const Class*> globalClass() override;
    Outcome<SharedPtr<Object>> invokeGlobal(const QString& method,
                                            const ObjectList& arguments) override;
    Outcome<SharedPtr<Object>> construct(const Class* objectClass,
                                         const ObjectList& arguments) override;
    /// "desktopScreenshot", "grabObjectScreenshot" and "screenLayout"; pictures are local variants
    /// of Screenshot.
    Outcome<QVariant> nativeRequest(const QString& name, const QVariantList& arguments) override;
    Outcome<> installEventHandler(SharedPtr<Object> object, const QString& className,
                                  const QString& event, const QString& callback) override;
    Outcome<> uninstallEventHandler(SharedPtr<Object> object, const QString& className,
                                    const QString& event, const QString& callback) override;
    Outcome<> sendEvent(const Event* event, SharedPtr<Object> target,
                        const ObjectList& parameters) override;

private:
    /// What a target is at the moment: where something can be done, or in `answer` why not.
    struct Look {
        TargetAnswer answer;
        Display::Spot spot;
    };
    Outcome<Look> look(const Target& target);
    Outcome<Look> lookAtObject(const Target& target);
    Outcome<Look> lookForName(const Target& target);
    /// Looks again until the target is as wanted, for as long as it says.
    Outcome<Look> waitFor(const Target& target);
    Outcome<Display::Spot> spotOf(const Target& target);
    /// Why it can't be used, an empty text when it can.
    Outcome<QString> obstacleOf(const Display::WindowFacts& window, Wire::Wanted wanted);
    Outcome<Display::WindowFacts> windowOf(const SharedPtr<Object>& object);
    SharedPtr<Object> object(const Display::WindowFacts& window) const;
    Outcome<QVariant> screenshot(const QRect& rect);
    Outcome<QVariant> screenLayout();
    Outcome<QVariant> objectScreenshot(const QVariantList& arguments);

    std::shared_ptr<Display::Session> m_session;
    ApplicationFacts m_facts;
    int m_readyTimeout = 20000;
};

}  // namespace Tamrix
