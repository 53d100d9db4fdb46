#pragma once

#include "platform/objectmodel/inspector.h"
#include "support/fakecalls.h"

namespace Tamrix::Test {

/// Waits that end at once and input that goes nowhere; both fail by default, with the text in
/// lookupError as the inspector's error.
class FakeObjects : public virtual FakeCalls {
public:
    /// What all waits for objects give.
    SharedPtr<Object> found;
    QString lookupError = "it is not there";
    /// What objectNotFound() was told of, "NAME in FUNCTION: why" each.
    QStringList misses;
    /// After how many of them it wants another look, and what that gives.
    int furtherLooks = 0;
    SharedPtr<Object> foundLater;
    /// What waitForObjectByName() gives instead when it is set.
    SharedPtr<Object> foundByName;
    bool takesInput = false;
    QString highlightError;
    SharedPtr<Object> bounds;
    /// Components of objects, by their remote ids.
    QMap<int, QStringList> components;

    SharedPtr<Object> waitForObjectByName(const QString& realName, bool, int timeout) override {
        const SharedPtr<Object> object = lookUp("wait for " + realName, timeout);
        return foundByName ? foundByName : object;
    }
    SharedPtr<Object> waitForObject(SharedPtr<Object> object, bool, int timeout) override {
        return lookUp("wait for object " + object->realName(), timeout);
    }
    SharedPtr<Object> waitForObjectExists(const QString& realName, bool, int timeout) override {
        return lookUp("wait until exists " + realName, timeout);
    }
    SharedPtr<Object> waitForObjectItem(SharedPtr<Object>, const QString& item, int row, int column,
                                        int timeout) override {
        return lookUp(QString("wait for item '%1' row %2 column %3").arg(item).arg(row).arg(column),
                      timeout);
    }
    SharedPtr<Object> waitForProperties(SharedPtr<Object> object, const QString& realName,
                                        const ObjectName& properties, int timeout) override {
        return lookUp(QString("wait until %1 has %2")
                          .arg(object ? object->realName() : realName, properties.qualifiedName()),
                      timeout);
    }
    bool objectHasComponents(int remoteId) override { return components.contains(remoteId); }
    QStringList fetchObjectComponents(int remoteId) override { return components.value(remoteId); }
    bool keyEvent(const QString& key, bool press) override {
        calls.append((press ? "press " : "release ") + key);
        return takesInput || refuse();
    }
    bool mouseEvent(SharedPtr<Object> target, int mask, int x, int y, int button, int modifiers,
                    bool buttonChange, bool press) override {
        calls.append(QString("mouse %1 mask %2 at %3,%4 button %5 modifiers %6 change %7 press %8")
                         .arg(target ? target->objectName() : "-")
                         .arg(mask)
                         .arg(x)
                         .arg(y)
                         .arg(button)
                         .arg(modifiers)
                         .arg(buttonChange)
                         .arg(press));
        return takesInput || refuse();
    }
    QString highlightObject(SharedPtr<Object> object, int milliseconds) override {
        calls.append(QString("highlight %1 for %2").arg(object->objectName()).arg(milliseconds));
        return highlightError;
    }
    void stopHighlight() override { calls.append("stop highlight"); }
    SharedPtr<Object> objectGlobalBounds(SharedPtr<Object>) override {
        if (!bounds)
            refuse();
        return bounds;
    }
    void objectNotFound(const QString& name, const QString& function, QString* error) override {
        misses.append(name + " in " + function + ": " + *error);
        if (furtherLooks == 0)
            return;
        --furtherLooks;
        found = foundLater;
        error->clear();
    }

private:
    SharedPtr<Object> lookUp(const QString& what, int timeout) {
        calls.append(what + " for " + QString::number(timeout) + " ms");
        if (!found)
            refuse();
        return found;
    }
    bool refuse() const {
        Inspector::self()->keep(Failure{FailureKind::NotFound, lookupError});
        return false;
    }
};

}  // namespace Tamrix::Test
