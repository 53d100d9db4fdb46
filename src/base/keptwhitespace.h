#pragma once

#include <tinyxml.h>

namespace Tamrix {

/// Lets TinyXML keep white space in texts, which it makes one blank of otherwise, until the end of
/// the scope, and then do as before. The setting is one of the whole process: script thread only.
class KeptWhiteSpace {
public:
    KeptWhiteSpace() { TiXmlBase::SetCondenseWhiteSpace(false); }
    ~KeptWhiteSpace() { TiXmlBase::SetCondenseWhiteSpace(m_before); }
    KeptWhiteSpace(const KeptWhiteSpace&) = delete;
    KeptWhiteSpace& operator=(const KeptWhiteSpace&) = delete;

private:
    bool m_before = TiXmlBase::IsWhiteSpaceCondensed();
};

}  // namespace Tamrix
