#pragma once

#include <tinyxml.h>

#include <QByteArray>
#include <QString>

namespace Tamrix {

/// Parses a document with TinyXML, all white space of its texts kept but for texts that are nothing
/// else. Bytes that are not UTF-8 are taken for Latin-1. False with the reason and the row of it in
/// `*error`. TinyXML is kept from what it can't take, see checkForTinyXml().
bool parseXmlDocument(const QByteArray& bytes, TiXmlDocument* document, QString* error);

}  // namespace Tamrix
