#pragma once

#include <QImage>
#include <QJsonValue>
#include <QRect>
#include <QString>
#include <optional>
#include <variant>
#include <vector>

#include "shared/testdata/tablerange.h"

namespace Tamrix {

// What a verification point expects, as plain values. Its file is read and written by
// verificationpointfile.h; docs/verificationpoints.md describes it.

/// A value that stands for itself: bool, number, text, null, or a list of these.
struct PlainValue {
    QJsonValue value;
    /// By how much a number may be off.
    double tolerance = 0;

    bool operator==(const PlainValue&) const = default;
};

/// A text with "*" for any characters, "?" for any one, "[a-z]" for one of a set.
struct WildcardText {
    QString text;

    bool operator==(const WildcardText&) const = default;
};

/// A regular expression that matches anywhere.
struct PatternText {
    QString text;

    bool operator==(const PatternText&) const = default;
};

/// What a record of test data has in this column; a number may be off by the tolerance.
struct ColumnValue {
    QString name;
    double tolerance = 0;
    /// What the record has; not part of the file. See withRecord().
    QString text = {};

    bool operator==(const ColumnValue&) const = default;
};

/// What a property or the text of a cell is to be.
using ExpectedValue = std::variant<PlainValue, WildcardText, PatternText, ColumnValue>;

struct ExpectedProperty {
    /// "text", or what a value has: "geometry.width".
    QString name;
    ExpectedValue expected;

    bool operator==(const ExpectedProperty&) const = default;
};

struct ExpectedObject {
    QString name;
    std::vector<ExpectedProperty> properties;

    bool operator==(const ExpectedObject&) const = default;
};

struct PropertiesPoint {
    std::vector<ExpectedObject> objects;

    bool operator==(const PropertiesPoint&) const = default;
};

struct ExpectedCell {
    ExpectedValue text;
    /// Not compared without one.
    std::optional<CellColor> background;

    bool operator==(const ExpectedCell&) const = default;
};

/// A part of an item view's cells, or all of them. Rows and columns count from 0.
struct ExpectedTable {
    QString name;
    int firstRow = 0;
    int firstColumn = 0;
    /// Whether the view ends where the cells do: a row or column behind them is a difference.
    bool isWhole = true;
    /// All rows are of one length.
    std::vector<std::vector<ExpectedCell>> rows;

    bool operator==(const ExpectedTable&) const = default;
};

struct TablePoint {
    std::vector<ExpectedTable> tables;

    bool operator==(const TablePoint&) const = default;
};

/// One visible element of an object's tree.
struct VisualElement {
    QString type;
    /// In the program; may be empty.
    QString name;
    QString text;
    /// Relative to the place of the whole object.
    QRect place;
    std::vector<VisualElement> children;

    bool operator==(const VisualElement&) const = default;
};

/// What of the elements is compared, and how exactly.
struct VisualRules {
    bool compareTexts = true;
    bool comparePlaces = true;
    bool comparePictures = true;
    /// By how many pixels each edge of a place may be off.
    int placeTolerance = 0;
    /// By how much each channel of a pixel may be off, up to 255.
    int colorTolerance = 8;
    /// How many of an element's own pixels may differ, in percent.
    double pixelTolerance = 0.1;

    bool operator==(const VisualRules&) const = default;
};

struct VisualPoint {
    QString name;
    VisualRules rules;
    VisualElement root;
    /// Of the whole object. A file of its own beside that of the point, of this name; both are null
    /// without one.
    QImage picture;
    QString pictureFile;

    bool operator==(const VisualPoint&) const = default;
};

using VerificationPoint = std::variant<PropertiesPoint, TablePoint, VisualPoint>;

}  // namespace Tamrix
