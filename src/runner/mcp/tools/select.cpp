#include <optional>

#include "runner/mcp/tools/acting.h"

namespace Tamrix::Mcp {

namespace {

/// Where the target is the title of a menu: the bar, in which the title is the first step.
struct MenuTitle {
    QString bar;
    QString text;
};

std::optional<MenuTitle> menuTitleOf(const View& view, const QString& target) {
    const int index = indexOf(view, refNumber(target));
    const int around = index < 0 ? -1 : view[static_cast<size_t>(index)].parent;
    if (around < 0 || !view[static_cast<size_t>(around)].type.endsWith(QLatin1String("MenuBar")))
        return std::nullopt;
    return MenuTitle{QStringLiteral("e%1").arg(view[static_cast<size_t>(around)].ref),
                     view[static_cast<size_t>(index)].facts.text};
}

Outcome<ToolAnswer> select(Session& session, const Arguments& arguments) {
    ActArguments others;
    QString target = arguments.text("target");
    QStringList path = arguments.path("item");
    if (const std::optional<MenuTitle> title = menuTitleOf(session.view(), target)) {
        target = title->bar;
        // A path within a text stays one.
        if (path.size() == 1)
            path.first().prepend(title->text + QLatin1Char('.'));
        else
            path.prepend(title->text);
    }
    if (path.size() == 1) {
        others.add(path.first());
    } else {
        QVariantList steps;
        for (const QString& step : path)
            steps.append(step);
        others.values.append(QVariant(steps));
        others.inScript.append(ActionValue(path));
    }
    return actOn(session, session.meant(target), "selectItem", others);
}

}  // namespace

Tool selectTool() {
    return {"select",
            "Selects an item of a menu (bar), list, tree, combo box or tab bar: its text, or a "
            "list of steps",
            {targetParameter, {"item", ParameterType::Path, Parameter::Required}},
            select};
}

}  // namespace Tamrix::Mcp
