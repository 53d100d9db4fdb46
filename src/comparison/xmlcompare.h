#pragma once

#include <QByteArray>
#include <QString>
#include <functional>
#include <string>
#include <utility>

#include "base/export.h"
#include "comparison/xmlcompareoptions.h"

namespace Tamrix {

/// How texts and values are compared when the options have been applied to them; by default their
/// bytes have to be the same.
struct XmlCompareFunctions {
    using Texts = std::pair<std::string, std::string>;

    std::function<bool(const std::string& tag, const Texts& texts)> compareXmlElementText =
        [](const std::string&, const Texts& texts) { return texts.first == texts.second; };
    std::function<bool(const std::string& tag, const std::string& attribute, const Texts& values)>
        compareXmlAttribute = [](const std::string&, const std::string&, const Texts& values) {
            return values.first == values.second;
        };
};

/// Why two documents are not the same.
struct XmlCompareError {
    QString message;
};

/// Whether both documents are the same under the options; else `error` names the first element of
/// the first document that has no match, or tells what is wrong with a document: bad markup, text
/// behind it, or elements nested too deep. Bytes that are not UTF-8 are taken for Latin-1. The text
/// of an element is what stands in front of its first child that counts. Not in two threads at
/// once: TinyXML keeps how it treats white space in one place of the process.
TAMRIX_EXPORT bool compareXml(const std::pair<QByteArray, QByteArray>& documents,
                              const XmlCompareFunctions& functions,
                              const XmlCompareOptions& options, XmlCompareError* error);

}  // namespace Tamrix
