#include "platform/objectmodel/display/windowsnapshot.h"

#include <memory>

#include "platform/objectmodel/display/windowclass.h"
#include "shared/uiabstraction/uielement.h"

namespace Tamrix::Display {

namespace {

std::unique_ptr<UIAbstraction::UIElement> elementOf(const WindowFacts& window,
                                                    const WindowList& all) {
    auto element = std::make_unique<UIAbstraction::UIElement>(
        windowClass()->name(), UIAbstraction::StandardType(), window.title);
    element->setWindowNode(true);
    element->setGeometry(UIAbstraction::ElementGeometry(window.geometry, false));
    element->setRealName(realNameOf(window, all));
    for (int index = 0; index < windowClass()->numProperties(); ++index) {
        const QString name = windowClass()->property(index)->name();
        element->setConcreteProperty(name, propertyText(window, name));
    }
    for (const char* const name : {"type", "class", "role"}) {
        const QString text = propertyText(window, QLatin1String(name));
        if (!text.isEmpty())
            element->setIdentifyingProperty(QLatin1String(name), text);
    }
    return element;
}

}  // namespace

QByteArray windowSnapshot(const WindowList& windows, const WindowList& all,
                          const std::function<QImage(const WindowFacts&)>& pictureOf) {
    std::vector<std::unique_ptr<UIAbstraction::UIElement>> elements;
    QList<const UIAbstraction::UIElement*> list;
    for (const WindowFacts& window : windows) {
        elements.push_back(elementOf(window, all));
        elements.back()->setImage(pictureOf(window));
        list.append(elements.back().get());
    }
    return UIAbstraction::UIElement::elementsToByteArray(list);
}

}  // namespace Tamrix::Display
