#include "platform/objectmodel/passwordfields.h"
#include "platform/objectmodel/valueobject.h"
#include "runner/mcp/screen/viewtext.h"
#include "runner/mcp/tools/acting.h"

namespace Tamrix::Mcp {

namespace {

QString valueText(const SharedPtr<Object>& object) {
    if (!object || object->isNull())
        return {};
    const auto* const value = dynamic_cast<const ValueObject*>(object.get());
    if (!value)
        return QStringLiteral("%1 %2").arg(object->className(), quotedText(object->objectName()));
    const QVariant variant = value->toVariant();
    switch (static_cast<int>(variant.type())) {
        case QMetaType::QString:
            return quotedText(variant.toString());
        case QMetaType::Bool:
        case QMetaType::Int:
        case QMetaType::UInt:
        case QMetaType::LongLong:
        case QMetaType::ULongLong:
        case QMetaType::Double:
            return variant.toString();
        default: {
            const QString text = quotedText(value->text());
            return text.mid(1, text.size() - 2);
        }
    }
}

Outcome<ToolAnswer> properties(Session& session, const Arguments& arguments) {
    const Outcome<Meant> meant = session.meant(arguments.text("target"));
    if (!meant)
        return fail(meant.error());
    const Outcome<SharedPtr<Object>> object =
        meant->object ? meant->object
                      : meant->application->access().findObject(ObjectName(meant->name));
    if (!object)
        return fail(object.error());
    const Outcome<PropertyList> list = (*object)->readProperties();
    if (!list)
        return fail(list.error());
    const QStringList hiddenNames = hiddenProperties(*object);
    // Whatever else tells the same, too.
    QStringList hiddenTexts;
    for (const auto& [name, value] : *list) {
        if (hiddenNames.contains(name))
            hiddenTexts.append(valueText(value));
    }
    hiddenTexts.removeAll(quotedText({}));
    const QString find = arguments.text("find");
    QString text;
    int left = 0;
    for (const auto& [name, value] : *list) {
        if (!find.isEmpty() && !name.contains(find, Qt::CaseInsensitive))
            continue;
        QString shown = valueText(value);
        if (shown.isEmpty())
            continue;
        if (hiddenNames.contains(name) || hiddenTexts.contains(shown))
            shown = QStringLiteral("(hidden)");
        const QString line = QStringLiteral("%1 = %2\n").arg(name, shown);
        if (text.size() + line.size() > longestViewText)
            ++left;
        else
            text += line;
    }
    if (left > 0)
        text += QStringLiteral("... %1 more: ask for less with find\n").arg(left);
    return ToolAnswer{text.isEmpty() ? QStringLiteral("no such property\n") : text};
}

}  // namespace

Tool propertiesTool() {
    return {"properties",
            "An object's properties",
            {targetParameter,
             {"find", ParameterType::Text, Parameter::Optional, "part of their names"}},
            properties};
}

}  // namespace Tamrix::Mcp
