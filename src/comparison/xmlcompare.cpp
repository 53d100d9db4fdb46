#include "comparison/xmlcompare.h"

#include <algorithm>
#include <set>
#include <vector>

#include "comparison/xmldocument.h"

namespace Tamrix {

namespace {

/// The element of the first document that has no match, and why.
struct Failure {
    const TiXmlNode* node = nullptr;
    QString reason;
};

/// The nodes of the second document that have been matched; none may match twice.
class VerifiedNodes {
public:
    bool contains(const TiXmlNode* node) const { return m_nodes.count(node) > 0; }
    void insert(const TiXmlNode* node) {
        if (m_nodes.insert(node).second)
            m_order.push_back(node);
    }
    std::size_t count() const { return m_order.size(); }
    /// Forgets all but the first ones: what matched inside an element that did not is free again.
    void shrink(std::size_t count) {
        for (; m_order.size() > count; m_order.pop_back())
            m_nodes.erase(m_order.back());
    }

private:
    std::set<const TiXmlNode*> m_nodes;
    std::vector<const TiXmlNode*> m_order;
};

std::string prepared(const std::string& text, const WhitespaceHandling& handling) {
    if (!handling.normalize && !handling.trim)
        return text;
    const QString decoded = QString::fromStdString(text);
    return (handling.normalize ? decoded.simplified() : decoded.trimmed()).toStdString();
}

/// The text in front of an element's first child that counts.
struct DirectText {
    std::string text;
    /// Whether it is CDATA, for each stretch of it that differs from the one before.
    std::vector<bool> cdata;
    bool exists() const { return !cdata.empty(); }
};

class XmlComparison {
public:
    XmlComparison(const XmlCompareFunctions& functions, const XmlCompareOptions& options)
        : m_functions(functions), m_options(options) {}

    const Failure& failure() const { return m_failure; }

    int relevantSiblingCount(const TiXmlNode* node) const {
        int count = 0;
        for (node = relevant(node); node; node = relevant(node->NextSibling()))
            ++count;
        return count;
    }

    /// Compares the node and its next siblings with those of the other document.
    bool compareXmlNodes(const TiXmlNode* a, const TiXmlNode* b) {
        for (a = relevant(a); a; a = relevant(a->NextSibling())) {
            // With any order the first one that is left, else the one behind the last match.
            b = m_options.ignoreNodeOrder ? unverified(relevant(b)) : relevant(b);
            if (!compareNode(a, b))
                return false;
            if (!m_options.ignoreNodeOrder)
                b = b->NextSibling();
        }
        return true;
    }

private:
    bool counts(const TiXmlNode* node) const {
        switch (node->Type()) {
            case TiXmlNode::TINYXML_ELEMENT:
                return m_options.filteredElements.count(node->ValueStr()) == 0;
            case TiXmlNode::TINYXML_COMMENT:
                return !m_options.ignoreComments;
            case TiXmlNode::TINYXML_DOCUMENT:
            case TiXmlNode::TINYXML_UNKNOWN:
            case TiXmlNode::TINYXML_DECLARATION:
                return m_options.matchSpecialTags;
            default:
                // Texts are compared with their elements.
                return false;
        }
    }

    /// The node itself or its first sibling behind it that counts, null when there is none.
    const TiXmlNode* relevant(const TiXmlNode* node) const {
        while (node && !counts(node))
            node = node->NextSibling();
        return node;
    }

    const TiXmlNode* unverified(const TiXmlNode* node) const {
        while (node && m_verified.contains(node))
            node = relevant(node->NextSibling());
        return node;
    }

    const TiXmlNode* nextUnverifiedSibling(const TiXmlNode* node, const std::string& value) const {
        do
            node = unverified(relevant(node->NextSibling()));
        while (node && node->ValueStr() != value);
        return node;
    }

    bool fail(const TiXmlNode* node, const char* reason) {
        m_failure = {node, QString::fromLatin1(reason)};
        return false;
    }

    bool compareNode(const TiXmlNode* a, const TiXmlNode* b) {
        switch (a->Type()) {
            case TiXmlNode::TINYXML_COMMENT:
                return matchNode(a, b, &XmlComparison::sameValue) ||
                       fail(a, "No matching comment found.");
            case TiXmlNode::TINYXML_DECLARATION:
                return matchNode(a, b, &XmlComparison::sameDeclaration) ||
                       fail(a, "No matching declaration found.");
            case TiXmlNode::TINYXML_UNKNOWN:
            case TiXmlNode::TINYXML_DOCUMENT:
                return matchNode(a, b, &XmlComparison::sameValue) ||
                       fail(a, "No matching element found.");
            case TiXmlNode::TINYXML_ELEMENT:
                return b ? compareXmlElementNodes(a->ToElement(), b)
                         : fail(a, "No matching Element found.");
            default:
                return fail(a, "No matching node found.");
        }
    }

    static bool sameValue(const TiXmlNode* a, const TiXmlNode* b) {
        return a->Type() == b->Type() && a->ValueStr() == b->ValueStr();
    }

    static bool sameDeclaration(const TiXmlNode* a, const TiXmlNode* b) {
        const TiXmlDeclaration* const one = a->ToDeclaration();
        const TiXmlDeclaration* const other = b->ToDeclaration();
        return one && other && std::string(one->Version()) == other->Version() &&
               std::string(one->Encoding()) == other->Encoding() &&
               std::string(one->Standalone()) == other->Standalone();
    }

    /// Takes b as the match of a, or with any order the first sibling behind b that is one.
    bool matchNode(const TiXmlNode* a, const TiXmlNode* b,
                   bool (*isSame)(const TiXmlNode*, const TiXmlNode*)) {
        for (; b; b = unverified(relevant(b->NextSibling()))) {
            if (isSame(a, b)) {
                m_verified.insert(b);
                return true;
            }
            if (!m_options.ignoreNodeOrder)
                break;
        }
        return false;
    }

    /// Matches an element; with any order all that may fit are tried, and the reason of the last
    /// one's failure is told.
    bool compareXmlElementNodes(const TiXmlElement* a, const TiXmlNode* b) {
        // 1. Elements only. With any order, others are left for their like. (2. Filtered ones were
        // passed over.)
        if (!b->ToElement()) {
            if (!m_options.ignoreNodeOrder)
                return fail(a, "No matching node type found.");
            b = nextUnverifiedSibling(b, a->ValueStr());
            while (b && !b->ToElement())
                b = nextUnverifiedSibling(b, a->ValueStr());
            if (!b)
                return fail(a, "No match found.");
        }
        while (b) {
            const std::size_t verifiedBefore = m_verified.count();
            if (b->ToElement() && compareElements(a, b->ToElement())) {
                m_verified.insert(b);
                return true;
            }
            m_verified.shrink(verifiedBefore);
            if (!m_options.ignoreNodeOrder)
                break;
            b = nextUnverifiedSibling(b, a->ValueStr());
        }
        return false;
    }

    bool compareElements(const TiXmlElement* a, const TiXmlElement* b) {
        // 3. Names.
        if (a->ValueStr() != b->ValueStr())
            return fail(a, "No matching tag name found.");
        // 4. Attributes.
        if (!attributesMatch(a, b))
            return fail(a, "Attributes do not match.");
        // 5. Text.
        const DirectText one = directText(a);
        const DirectText other = directText(b);
        if (one.exists() != other.exists())
            return fail(a, "Text does not match (only one has text).");
        if (!textsMatch(a->ValueStr(), one, other))
            return fail(a, "Text does not match.");
        // 6. Children.
        if (relevantSiblingCount(a->FirstChild()) != relevantSiblingCount(b->FirstChild()))
            return fail(a, "Child count does not match.");
        // 7. One by one.
        return compareXmlNodes(a->FirstChild(), b->FirstChild());
    }

    std::vector<const TiXmlAttribute*> relevantAttributes(const TiXmlElement* element) const {
        std::vector<const TiXmlAttribute*> attributes;
        for (const TiXmlAttribute* each = element->FirstAttribute(); each; each = each->Next()) {
            if (m_options.filteredAttributes.count(each->NameTStr()) == 0)
                attributes.push_back(each);
        }
        return attributes;
    }

    bool equal(const std::string& tag, const TiXmlAttribute* a, const TiXmlAttribute* b) const {
        return a->NameTStr() == b->NameTStr() &&
               m_functions.compareXmlAttribute(tag, a->NameTStr(),
                                               {prepared(a->ValueStr(), m_options.values),
                                                prepared(b->ValueStr(), m_options.values)});
    }

    bool attributesMatch(const TiXmlElement* a, const TiXmlElement* b) const {
        const auto one = relevantAttributes(a);
        const auto other = relevantAttributes(b);
        if (one.size() != other.size())
            return false;
        const std::string& tag = a->ValueStr();
        if (!m_options.ignoreAttributeOrder) {
            return std::equal(
                one.begin(), one.end(), other.begin(),
                [&](const auto* left, const auto* right) { return equal(tag, left, right); });
        }
        return std::all_of(one.begin(), one.end(), [&](const auto* left) {
            return std::any_of(other.begin(), other.end(),
                               [&](const auto* right) { return equal(tag, left, right); });
        });
    }

    DirectText directText(const TiXmlElement* element) const {
        DirectText direct;
        for (const TiXmlNode* node = element->FirstChild(); node && !counts(node);
             node = node->NextSibling()) {
            const TiXmlText* const text = node->ToText();
            if (!text)
                continue;
            direct.text += text->ValueStr();
            if (direct.cdata.empty() || direct.cdata.back() != text->CDATA())
                direct.cdata.push_back(text->CDATA());
        }
        return direct;
    }

    bool textsMatch(const std::string& tag, const DirectText& one, const DirectText& other) const {
        if (!one.exists())
            return true;
        if (!m_options.ignoreCDATA && one.cdata != other.cdata)
            return false;
        return m_functions.compareXmlElementText(
            tag, {prepared(one.text, m_options.text), prepared(other.text, m_options.text)});
    }

    const XmlCompareFunctions& m_functions;
    const XmlCompareOptions& m_options;
    VerifiedNodes m_verified;
    Failure m_failure;
};

}  // namespace

bool compareXml(const std::pair<QByteArray, QByteArray>& documents,
                const XmlCompareFunctions& functions, const XmlCompareOptions& options,
                XmlCompareError* error) {
    // 1., 2. The documents.
    TiXmlDocument a;
    TiXmlDocument b;
    QString problem;
    if (!parseXmlDocument(documents.first, &a, &problem)) {
        error->message = QStringLiteral("Document A %1").arg(problem);
        return false;
    }
    if (!parseXmlDocument(documents.second, &b, &problem)) {
        error->message = QStringLiteral("Document B %1").arg(problem);
        return false;
    }
    // 3. As many nodes at the top.
    XmlComparison comparison(functions, options);
    if (comparison.relevantSiblingCount(a.FirstChild()) !=
        comparison.relevantSiblingCount(b.FirstChild())) {
        error->message =
            QStringLiteral("Sibling count differs. Row: %1").arg(a.FirstChild()->Row());
        return false;
    }
    // 4. And the same ones.
    if (comparison.compareXmlNodes(a.FirstChild(), b.FirstChild()))
        return true;
    const Failure& failure = comparison.failure();
    error->message = QStringLiteral("Unable to find matching element: \"%1\", Row: %2. Reason: %3")
                         .arg(QString::fromStdString(failure.node->ValueStr()),
                              QString::number(failure.node->Row()), failure.reason);
    return false;
}

}  // namespace Tamrix
