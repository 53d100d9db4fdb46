#pragma once

#include <QString>
#include <QStringList>
#include <set>
#include <string>
#include <vector>

#include "base/export.h"

namespace Tamrix {

/// What white space counts in a comparison.
struct WhitespaceHandling {
    bool normalize = false;
    bool trim = false;
};

/// What counts when XML documents are compared.
struct XmlCompareOptions {
    bool ignoreNodeOrder = false;
    bool ignoreAttributeOrder = true;
    bool ignoreComments = true;
    bool ignoreCDATA = true;
    /// Whether declarations and markup that TinyXML doesn't know have to match.
    bool matchSpecialTags = false;
    WhitespaceHandling text = {true, false};
    WhitespaceHandling values;
    std::set<std::string> filteredAttributes;
    std::set<std::string> filteredElements;
};

/// One option as users name it: exactly one of the members is set.
struct XmlOptionDescription {
    QString name;
    bool XmlCompareOptions::*flag = nullptr;
    WhitespaceHandling XmlCompareOptions::*whitespace = nullptr;
    std::set<std::string> XmlCompareOptions::*names = nullptr;
    /// For `whitespace`: the value that takes the place of an unknown one.
    QString defaultValue = {};
};

/// All options.
TAMRIX_EXPORT const std::vector<XmlOptionDescription>& xmlCompareOptionDescriptions();

/// The only option of a comparison of texts.
inline const QString strictLineEndingsOption = QStringLiteral("strictLineEndings");

/// Reads "preserve", "normalize" or "trim"; false, and nothing is set, for anything else.
TAMRIX_EXPORT bool readWhitespaceHandling(const QString& value, bool* normalize, bool* trim);

}  // namespace Tamrix
