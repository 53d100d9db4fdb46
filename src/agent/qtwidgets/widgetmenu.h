#pragma once

#include <QPointer>
#include <QWidget>

#include "agent/core/contract/items.h"

namespace Tamrix::Agent {

/// A QMenu or QMenuBar. Its entries are the actions in it that are shown.
class WidgetMenu : public Menu {
public:
    explicit WidgetMenu(QWidget* widget);

    State state() const override;
    QVector<MenuEntry> entries() const override;
    QString label() const override;

private:
    QPointer<QWidget> m_widget;
};

}  // namespace Tamrix::Agent
