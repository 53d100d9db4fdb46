#pragma once

#include "interpreter/bridge/runnerinterface.h"
#include "runner/services/runstate.h"

namespace Tamrix {

/// The input of the runner to applications, and what it shows of their objects.
class ApplicationInput : public virtual RunnerInterface {
public:
    explicit ApplicationInput(RunState& state) : m_state(state) {}

    bool objectHasComponents(int remoteId) override;
    QStringList fetchObjectComponents(int remoteId) override;
    bool keyEvent(const QString& key, bool press) override;
    bool mouseEvent(SharedPtr<Object> target, int mask, int x, int y, int button, int modifiers,
                    bool buttonChange, bool press) override;
    QString highlightObject(SharedPtr<Object> object, int milliseconds) override;
    void stopHighlight() override;
    FunctionCallResult<QSharedPointer<BackgroundTask>> startVideoCapture(
        SharedPtr<ApplicationContext> context, QIODevice* device) override;
    SharedPtr<Object> objectGlobalBounds(SharedPtr<Object> object) override;

private:
    /// The access to the object's application, of the current one for null; a failure when there is
    /// none or it ended.
    Outcome<Access*> accessOf(const SharedPtr<Object>& object);
    PropertyList components(int remoteId);

    RunState& m_state;
};

}  // namespace Tamrix
