#pragma once

#include <gtest/gtest.h>

#include <QImage>

#include "platform/objectmodel/inspector.h"
#include "platform/verification/objectnameresolverinterface.h"
#include "shared/uiabstraction/uielement.h"
#include "support/inmemorymodel.h"
#include "support/printqt.h"

namespace Tamrix::Test {

/// Finds objects of the model by their real names.
class ModelResolver : public ObjectNameResolverInterface {
public:
    explicit ModelResolver(InMemoryModel& model) : m_model(model) {}

    bool canResolveMultiple = true;
    /// Called before each look, with its number from 1.
    std::function<void(int look)> onLook;

    SharedPtr<Object> resolveObjectName(QString* name, QString* error) override {
        if (onLook)
            onLook(++m_looks);
        SharedPtr<Object> object = m_model.findObject(*name);
        if (!canResolveMultiple && m_looks > 1)
            object.reset();
        if (!object)
            *error = "Object '" + *name + "' is not there";
        return object;
    }
    bool canResolveMultipleObjects() const override { return canResolveMultiple; }

private:
    InMemoryModel& m_model;
    int m_looks = 0;
};

/// A model with an object "field" and what it tells of its cells and its looks.
class VerificationTest : public testing::Test {
protected:
    VerificationTest() {
        Inspector::self()->setModel(&model);
        field->setProperty("text", "12.50");
        field->setProperty("enabled", true);
        field->setProperty("width", 120);
        field->setProperty("ratio", 0.5);
        field->setProperty("geometry", QRect(1, 2, 30, 40));
        field->setProperty("words", QStringList{"a", "b"});
        field->setProperty("partner", SharedPtr<Object>(other));
        model.onNativeRequest = [this](const QString& name,
                                       const QVariantList& arguments) -> Outcome<QVariant> {
            requests.append(name);
            for (const QVariant& argument : arguments.mid(1))
                requests.last() += ' ' + argument.toString();
            return cells;
        };
    }
    ~VerificationTest() override {
        Inspector::self()->setModel(nullptr);
        Inspector::self()->setLastError(QString());
    }

    static QVariantMap cellsOf(int rows, int columns, int told, const QStringList& texts) {
        return {{"rowCount", rows},
                {"columnCount", columns},
                {"columns", told},
                {"texts", texts},
                {"backgrounds", QByteArray(texts.size() * 4, 0)}};
    }

    /// A window with a button of that text, and a picture in one colour.
    static QByteArray snapshotOf(const QString& text, Qt::GlobalColor colour) {
        using UIAbstraction::UIElement;
        UIElement window("Window", {}, "Title");
        window.setGeometry({QRect(100, 200, 40, 30), false});
        window.setRealName("{name='field' type='Field'}");
        QImage picture(40, 30, QImage::Format_RGB32);
        picture.fill(colour);
        window.setImage(picture);
        auto* const inner = new UIElement("Viewport");
        inner->setTransparentNode(true);
        inner->setGeometry({QRect(100, 200, 40, 30), false});
        window.addChild(inner);
        auto* const button = new UIElement("Button", {}, text);
        button->setIdentifyingProperty("name", "ok");
        button->setGeometry({QRect(110, 210, 20, 10), false});
        inner->addChild(button);
        auto* const hidden = new UIElement("Button", {}, "hidden");
        hidden->setConcreteProperty("visible", "false");
        hidden->setGeometry({QRect(110, 210, 20, 10), false});
        window.addChild(hidden);
        return UIElement::elementsToByteArray({&window});
    }

    InMemoryModel model;
    SharedPtr<InMemoryObject> other = model.addObject("Label", "other");
    SharedPtr<InMemoryObject> field = model.addObject("Field", "field");
    QString name = field->realName();
    QString otherName = other->realName();
    QVariantMap cells = cellsOf(2, 2, 2, {"a", "b", "c", "d"});
    QStringList requests;
};

}  // namespace Tamrix::Test
