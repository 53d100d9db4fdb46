// Two XML documents compared under options that the first byte chooses.

#include "comparison/xmlcompare.h"

#include <algorithm>

#include "base/tinyxmlguard.h"
#include "comparison/xmldocument.h"
#include "fuzz/compareinput.h"
#include "fuzz/fuzztarget.h"
#include "fuzz/quietqt.h"

using Tamrix::XmlCompareOptions;

namespace {

/// The greatest number of elements inside each other, without recursion.
int depthOf(const TiXmlDocument& document) {
    int depth = 0;
    int deepest = 0;
    const TiXmlNode* node = &document;
    while (node) {
        if (node->FirstChild()) {
            node = node->FirstChild();
            ++depth;
            deepest = std::max(deepest, node->ToElement() ? depth : depth - 1);
            continue;
        }
        while (node && !node->NextSibling()) {
            node = node->Parent();
            --depth;
        }
        if (node) {
            node = node->NextSibling();
            deepest = std::max(deepest, node->ToElement() ? depth : depth - 1);
        }
    }
    return deepest;
}

void checkDepth(const QByteArray& bytes) {
    const Tamrix::TinyXmlCheck check = Tamrix::checkForTinyXml(bytes);
    TiXmlDocument document;
    QString error;
    if (check.problem.isEmpty() && Tamrix::parseXmlDocument(bytes, &document, &error))
        fuzzRequire(depthOf(document) == check.depth, "the depth is the one that the parser makes");
}

bool isSame(const QByteArray& a, const QByteArray& b, const XmlCompareOptions& options) {
    Tamrix::XmlCompareError error;
    const bool equal = Tamrix::compareXml({a, b}, {}, options, &error);
    fuzzRequire(equal == error.message.isEmpty(), "a difference has a message");
    return equal;
}

}  // namespace

int fuzzTarget(const std::uint8_t* data, std::size_t size) {
    Tamrix::Fuzz::silenceQt();
    if (size == 0)
        return 0;
    const auto flag = [choice = unsigned(*data)](unsigned bit) { return (choice >> bit & 1) != 0; };
    XmlCompareOptions options;
    options.ignoreNodeOrder = flag(0);
    options.ignoreAttributeOrder = flag(1);
    options.ignoreComments = flag(2);
    options.ignoreCDATA = flag(3);
    options.matchSpecialTags = flag(4);
    options.text = {flag(5), flag(6)};
    options.values = {flag(6), flag(5)};
    if (flag(7)) {
        options.filteredElements = {"b"};
        options.filteredAttributes = {"x"};
    }
    const auto [a, b] = Tamrix::Fuzz::twoDocuments(data + 1, size - 1);
    checkDepth(a);
    checkDepth(b);
    if (isSame(a, b, options)) {
        fuzzRequire(isSame(b, a, options), "equality goes both ways");
        fuzzRequire(isSame(a, a, options), "a document equals itself");
    }
    return 0;
}
