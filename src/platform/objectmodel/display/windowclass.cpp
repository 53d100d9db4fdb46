#include "platform/objectmodel/display/windowclass.h"

#include "wire/applicationfunctions.h"

namespace Tamrix::Display {

namespace {

struct WindowProperty {
    const char* name;
    const char* typeName;
    QVariant (*read)(const WindowFacts& facts);
};

constexpr WindowProperty properties[] = {
    {"title", "QString", [](const WindowFacts& facts) { return QVariant(facts.title); }},
    {"class", "QString", [](const WindowFacts& facts) { return QVariant(facts.windowClass); }},
    {"instance", "QString", [](const WindowFacts& facts) { return QVariant(facts.instance); }},
    {"role", "QString", [](const WindowFacts& facts) { return QVariant(facts.role); }},
    {"windowType", "QString", [](const WindowFacts& facts) { return QVariant(facts.type); }},
    {"pid", "int", [](const WindowFacts& facts) { return QVariant(static_cast<int>(facts.pid)); }},
    {"x", "int", [](const WindowFacts& facts) { return QVariant(facts.geometry.x()); }},
    {"y", "int", [](const WindowFacts& facts) { return QVariant(facts.geometry.y()); }},
    {"width", "int", [](const WindowFacts& facts) { return QVariant(facts.geometry.width()); }},
    {"height", "int", [](const WindowFacts& facts) { return QVariant(facts.geometry.height()); }},
    {"visible", "bool", [](const WindowFacts& facts) { return QVariant(facts.isVisible); }},
    {"popup", "bool", [](const WindowFacts& facts) { return QVariant(facts.isPopup); }},
    {"modal", "bool", [](const WindowFacts& facts) { return QVariant(facts.isModal); }},
};

constexpr const char* methods[] = {"activate", "close"};

}  // namespace

const Class* windowClass() {
    static const std::unique_ptr<const Class> s_class = [] {
        auto made = std::make_unique<Class>(QStringLiteral("Window"));
        for (const WindowProperty& property : properties)
            made->addProperty(QLatin1String(property.name), QLatin1String(property.typeName));
        for (const char* const method : methods)
            made->addMethod(QLatin1String(method), Signature());
        return made;
    }();
    return s_class.get();
}

const Class* globalClass() {
    static const std::unique_ptr<const Class> s_class = [] {
        auto made = std::make_unique<Class>(QStringLiteral("Global"));
        for (const Wire::ApplicationFunction& function : Wire::applicationFunctions) {
            made->addMethod(QLatin1String(function.name), Signature())
                .describe(QLatin1String(function.parameters), QLatin1String(function.description));
        }
        return made;
    }();
    return s_class.get();
}

QVariant propertyOf(const WindowFacts& facts, const QString& name) {
    for (const WindowProperty& property : properties) {
        if (name == QLatin1String(property.name))
            return property.read(facts);
    }
    return {};
}

QString propertyText(const WindowFacts& facts, const QString& name) {
    const QVariant value =
        name == QLatin1String("type") ? windowClass()->name() : propertyOf(facts, name);
    if (!value.isValid())
        return {};
    const QString text = value.toString();
    return text.isNull() ? QStringLiteral("") : text;
}

}  // namespace Tamrix::Display
