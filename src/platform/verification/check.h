#pragma once

#include <QImage>
#include <QString>
#include <QStringList>
#include <functional>

#include "base/outcome.h"
#include "platform/objectmodel/object.h"
#include "platform/verification/verificationpoint.h"

namespace Tamrix {

/// Expected, actual and where they differ; null where there is nothing to show.
struct ComparedPictures {
    QImage expected;
    QImage actual;
    QImage difference;
};

/// What one look at the application has shown.
struct Findings {
    /// How many things were compared, and what they are: "properties".
    int compared = 0;
    QString things;
    /// Whole sentences without full stop: what differs, and of that what a renewal mends...
    QStringList renewable;
    /// ...and what it does not: objects that are missing, patterns that do not match.
    QStringList lasting;
    /// Whether an object was not found: it has been waited for.
    bool isObjectMissing = false;
    /// The point with what was observed in place of the values that differ.
    VerificationPoint renewed;
    ComparedPictures pictures;

    bool isAsExpected() const { return renewable.isEmpty() && lasting.isEmpty(); }
    QStringList differences() const { return lasting + renewable; }
};

/// Finds the object of a name.
using FindObject = std::function<Outcome<SharedPtr<Object>>(const QString& name)>;

// Look once and compare. Script thread only.
Findings check(const PropertiesPoint& point, const FindObject& findObject);
Findings check(const TablePoint& point, const FindObject& findObject);
Findings check(const VisualPoint& point, const FindObject& findObject);

/// Compares two trees with their pictures; `observed` needs neither name nor rules.
Findings compareVisuals(const VisualPoint& expected, const VisualPoint& observed);

}  // namespace Tamrix
