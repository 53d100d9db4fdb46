#pragma once

#include <QByteArray>
#include <QString>
#include <vector>

#include "base/export.h"

namespace Tamrix {

/// What the bytes of an XML document tell before TinyXML gets them. Plain data.
struct TinyXmlCheck {
    /// The greatest number of elements inside each other, as far as the document was read.
    int depth = 0;
    /// Why TinyXML must not get the document, in words behind which a row can stand; empty when it
    /// may.
    QString problem;
    /// The line of the problem, from 1.
    int row = 0;

    struct Span {
        int position;
        int length;
    };
    /// The texts of white space alone, marks of byte order included, that are all what their
    /// element has, in bytes.
    std::vector<Span> blankTexts;
};

/// How deep elements may lie inside each other for checkForTinyXml().
constexpr int maxXmlDepth = 1000;
/// How many attributes an element may have for checkForTinyXml().
constexpr int maxXmlAttributes = 1000;

/// Looks for what TinyXML can't cope with: elements nested deeper than maxXmlDepth (its parser and
/// all that walks its tree recurse), more than maxXmlAttributes of one element (it compares each
/// with each), a NUL byte (it stops there), bytes that are not UTF-8 (it reads past the end of the
/// text, and loops on some), references to characters that are none (it takes what follows for a
/// part of them), an & that begins no reference (it drops it), and comments, CDATA sections,
/// declarations and other markup without an end (it takes some for complete and fails an assertion
/// on others). Everything else that is wrong with a document is left for the parser to tell. Any
/// thread.
TAMRIX_EXPORT TinyXmlCheck checkForTinyXml(const QByteArray& document);

/// The document with the texts of TinyXmlCheck::blankTexts as CDATA sections: TinyXML drops them
/// otherwise, whatever it is told about white space. Rows stay the same. Any thread.
TAMRIX_EXPORT QByteArray withBlankTexts(const QByteArray& document, const TinyXmlCheck& check);

}  // namespace Tamrix
