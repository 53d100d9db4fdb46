#include "shared/uiabstraction/uielement.h"

#include <gtest/gtest.h>

#include <QMetaMethod>
#include <functional>
#include <limits>
#include <memory>

#include "support/printqt.h"
#include "support/warningrecorder.h"

namespace Tamrix::UIAbstraction {
namespace {

const UIEvent clicked(QStringLiteral("clicked"));
const StandardType button(QStringLiteral("button"));

/// Counts the emissions of every signal of an element, by name.
class SignalCounter : public QObject {
public:
    explicit SignalCounter(UIElement* element) {
        QObject::connect(element, &UIElement::childAdded, this, [this] { ++m_childAdded; });
        QObject::connect(element, &UIElement::eventRegistered, this, [this] { ++m_registered; });
        QObject::connect(element, &UIElement::usageIncreased, this,
                         [this](const UIElement*, const UIEvent&, int usage) {
                             ++m_increased;
                             m_usage = usage;
                         });
        const auto countChange = [this] { ++m_changes; };
        QObject::connect(element, &UIElement::geometryChanged, this, countChange);
        QObject::connect(element, &UIElement::imageChanged, this, countChange);
        QObject::connect(element, &UIElement::standardTypeChanged, this, countChange);
        QObject::connect(element, &UIElement::subgraphTransparentChanged, this, countChange);
        QObject::connect(element, &UIElement::textChanged, this, countChange);
        QObject::connect(element, &UIElement::transparentNodeChanged, this, countChange);
        QObject::connect(element, &UIElement::windowNodeChanged, this, countChange);
    }

    int m_childAdded = 0;
    int m_registered = 0;
    int m_increased = 0;
    int m_usage = -1;
    int m_changes = 0;
};

TEST(StandardTypeTest, NamesWhatIsNotKnown) {
    EXPECT_EQ(StandardType().toString(), "unknown");
    EXPECT_FALSE(StandardType().isKnown());
    EXPECT_TRUE(StandardType(QStringLiteral("unknown")).isKnown());
    EXPECT_NE(StandardType(), StandardType(QStringLiteral("unknown")));
}

TEST(ElementGeometryTest, BecomesRelative) {
    const QRect rect(10, 20, 30, 40);
    const ElementGeometry parent(QRect(1, 2, 100, 100), false);
    EXPECT_EQ(ElementGeometry(rect, false).relativeTo(parent),
              ElementGeometry(QRect(9, 18, 30, 40), true));
    EXPECT_EQ(ElementGeometry(rect, true).relativeTo(parent), ElementGeometry(rect, true));
    EXPECT_EQ(ElementGeometry(rect, false).relativeTo(ElementGeometry()),
              ElementGeometry(QRect(0, 0, 30, 40), true));
}

TEST(UIElementTest, SettersAlwaysEmit) {
    UIElement element;
    SignalCounter counter(&element);
    const std::vector<std::function<void()>> setters = {
        [&] { element.setText(element.text()); },
        [&] { element.setStandardType(element.standardType()); },
        [&] { element.setGeometry(element.geometry()); },
        [&] { element.setImage(element.image()); },
        [&] { element.setWindowNode(element.isWindowNode()); },
        [&] { element.setTransparentNode(element.isTransparentNode()); },
        [&] { element.setSubgraphTransparent(element.isSubgraphTransparent()); },
    };
    int changes = 0;
    for (const auto& set : setters) {
        set();
        EXPECT_EQ(counter.m_changes, ++changes);
    }
    element.setRealName(QStringLiteral("{}"));
    element.setConcreteProperty(QStringLiteral("a"), QStringLiteral("b"));
    EXPECT_EQ(counter.m_changes, changes);
}

TEST(UIElementTest, SignalsGoThroughQueuedConnections) {
    const UIElement element;
    const QMetaObject& meta = UIElement::staticMetaObject;
    int signalCount = 0;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        const QMetaMethod method = meta.method(i);
        ++signalCount;
        for (int parameter = 0; parameter < method.parameterCount(); ++parameter)
            EXPECT_NE(method.parameterType(parameter), QMetaType::UnknownType)
                << method.methodSignature().constData();
    }
    EXPECT_EQ(signalCount, 10);
}

TEST(UIElementTest, OwnsItsChildren) {
    auto parent = std::make_unique<UIElement>();
    SignalCounter counter(parent.get());
    auto* child = new UIElement(QStringLiteral("A"), button, QStringLiteral("one"));
    auto* second = new UIElement(QStringLiteral("B"), StandardType(), QStringLiteral("two"));
    parent->addChild(child);
    parent->addChild(child);
    parent->addChild(second);
    EXPECT_EQ(counter.m_childAdded, 2);
    EXPECT_EQ(child->parentId(), parent->id());
    EXPECT_TRUE(parent->parentId().isNull());

    UIElement other;
    child->setParent(&other);
    EXPECT_EQ(child->parentElement(), parent.get());

    EXPECT_EQ(parent->childByText(QStringLiteral("two")), second);
    EXPECT_EQ(parent->childByText(QStringLiteral("two"), button), nullptr);
    EXPECT_EQ(second->siblingElement(QStringLiteral("A")), child);
    EXPECT_EQ(second->siblingElement(QStringLiteral("two")), nullptr);
    EXPECT_EQ(parent->siblingElement(QStringLiteral("A")), nullptr);

    const std::unique_ptr<UIElement> taken(parent->takeFirstChild());
    EXPECT_EQ(taken.get(), child);
    EXPECT_TRUE(taken->isTopLevelElement());
    delete second;
    EXPECT_TRUE(parent->children().isEmpty());
    EXPECT_EQ(parent->takeFirstChild(), nullptr);
}

TEST(UIElementTest, CountsUsage) {
    const Tamrix::Test::WarningRecorder recorder;
    UIElement element(QStringLiteral("QPushButton"), button, QStringLiteral("OK"));
    SignalCounter counter(&element);
    EXPECT_EQ(element.usage(clicked), -1);
    element.registerEvent(clicked);
    element.registerEvent(clicked);
    EXPECT_EQ(element.usage(clicked), 0);
    EXPECT_EQ(counter.m_registered, 1);

    element.addUsage(clicked);
    EXPECT_EQ(element.usage(clicked), 1);
    element.setUsage(clicked, 5);
    element.setUsage(clicked, 3);
    EXPECT_EQ(element.usage(clicked), 3);
    EXPECT_EQ(counter.m_increased, 2);
    EXPECT_EQ(counter.m_usage, 5);

    element.addUsage(UIEvent(QStringLiteral("silent")));
    EXPECT_EQ(counter.m_registered, 1);
    EXPECT_TRUE(recorder.messages().isEmpty());
    element.setUsage(UIEvent(QStringLiteral("new")), 0);
    EXPECT_EQ(counter.m_increased, 4);
    EXPECT_EQ(recorder.messages(),
              QStringList("Unregistered event occured on { standardType='button', "
                          "concreteType='QPushButton', text='OK' }: 'new'"));

    element.setUsage(clicked, std::numeric_limits<int>::max());
    element.addUsage(clicked);
    EXPECT_EQ(element.usage(clicked), std::numeric_limits<int>::max());
}

TEST(UIElementTest, CountsUsageOfChildren) {
    UIElement parent;
    parent.setGeometry(ElementGeometry(QRect(0, 0, 10, 10), false));
    auto* child = new UIElement;
    auto* grandchild = new UIElement;
    parent.addChild(child);
    child->addChild(grandchild);
    grandchild->setGeometry(ElementGeometry(QRect(50, 50, 10, 10), false));

    parent.addUsageForChildElements(clicked);
    EXPECT_EQ(parent.usage(clicked), -1);
    EXPECT_EQ(child->usage(clicked), 1);
    EXPECT_EQ(grandchild->usage(clicked), -1);

    parent.addUsageForChildAt(clicked, QPoint(55, 55));
    EXPECT_EQ(parent.usage(clicked), -1);
    EXPECT_EQ(child->usage(clicked), 1);
    EXPECT_EQ(grandchild->usage(clicked), 1);
}

}  // namespace
}  // namespace Tamrix::UIAbstraction
