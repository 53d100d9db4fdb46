#pragma once

#include <QStringList>
#include <QVector>

#include "base/export.h"

namespace Tamrix::Agent {

/// The way to an item through what holds it: "File.Save As...", or the same as a list of steps.
///
/// A text is taken for the item's own one first; else each "." in it may part two steps, except for
/// one that is written "\.". Texts mean the same as those that are shown when they differ in "&"
/// and in "..." at the end only; of several items one with exactly the text goes first.
class TAMRIX_EXPORT ItemPath {
public:
    /// A null path: the item is named by row and column.
    ItemPath() = default;
    static ItemPath ofText(const QString& text);
    /// Not empty. The steps are texts as they are shown.
    static ItemPath ofSteps(const QStringList& steps);

    bool isNull() const { return m_parts.isEmpty(); }
    /// For messages.
    QString text() const;

    /// How an item with a text is on the way.
    struct Fit;
    Fit fit(const QString& itemText) const;

private:
    /// A first step, as it stands and as it is meant, and how many parts it has.
    struct Step {
        QString literal;
        QString text;
        int parts;
    };

    ItemPath(const QStringList& parts, bool mayJoin);
    void addStep(int parts);

    QStringList m_parts;
    /// Whether parts may belong to one step.
    bool m_mayJoin = false;
    /// What the first step can be, the longest one first.
    QVector<Step> m_steps;
};

struct ItemPath::Fit {
    /// -1: it is not. Of several items the one with the lowest rank is meant.
    int rank = -1;
    /// The way on, below the item; null when it is the one that is meant.
    ItemPath rest;

    bool isNone() const { return rank < 0; }
};

}  // namespace Tamrix::Agent
