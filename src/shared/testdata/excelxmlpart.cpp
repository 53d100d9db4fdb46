#include "shared/testdata/excelxmlpart.h"

#include <tinyxml.h>

#include <algorithm>
#include <stdexcept>
#include <string>

#include "base/tinyxmlguard.h"

namespace Tamrix {

namespace {

using Path = ExcelXmlPart::Path;

std::string_view viewOf(const QByteArray& bytes) {
    return {bytes.constData(), static_cast<std::size_t>(bytes.size())};
}

[[noreturn]] void failAt(std::string_view text, std::size_t position, const std::string& problem) {
    const auto end = text.begin() + static_cast<std::ptrdiff_t>(position);
    throw std::runtime_error("line " + std::to_string(1 + std::count(text.begin(), end, '\n')) +
                             ": " + problem);
}

std::string limitText(const char* what, std::ptrdiff_t limit, const char* unit) {
    return std::string(what) + ' ' + std::to_string(limit) + ' ' + unit;
}

/// A name without the prefix, which has its colon or is empty.
std::string_view withoutPrefix(std::string_view name, std::string_view prefix) {
    return name.starts_with(prefix) ? name.substr(prefix.size()) : name;
}

/// Takes the prefix from all names of the tree, without recursion.
void removePrefix(TiXmlElement* root, const std::string& prefix) {
    if (prefix.empty())
        return;
    TiXmlNode* node = root;
    while (node) {
        if (node->ToElement())
            node->SetValue(std::string(withoutPrefix(node->ValueStr(), prefix)));
        if (node->FirstChild()) {
            node = node->FirstChild();
            continue;
        }
        while (node != root && !node->NextSibling())
            node = node->Parent();
        node = node == root ? nullptr : node->NextSibling();
    }
}

/// Walks over a document without making anything of it, and finds the elements at a path.
class Walker {
public:
    /// Gets the text of an element, its place in the document and the root element's prefix.
    using Handler = std::function<void(std::string_view, std::size_t, std::string_view)>;

    Walker(std::string_view text, const Path& path, const Handler& handler)
        : m_text(text), m_path(path), m_handler(handler) {}

    void walk() {
        while (goTo('<')) {
            if (startsWith("<!--"))
                goBehind("-->", 4, "a comment");
            else if (startsWith("<![CDATA["))
                goBehind("]]>", 9, "a CDATA section");
            else if (startsWith("<?"))
                goBehind("?>", 2, "a declaration");
            else if (startsWith("<!"))
                fail("a document type, which is not allowed");
            else if (startsWith("</"))
                readEndTag();
            else
                readStartTag();
        }
        if (!m_names.empty())
            fail("element " + std::string(m_names.back()) + " has no end");
    }

private:
    [[noreturn]] void fail(const std::string& problem) const {
        failAt(m_text, m_position, problem);
    }

    static bool isSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

    bool startsWith(std::string_view word) const {
        return m_text.substr(m_position, word.size()) == word;
    }

    bool goTo(char c) {
        m_position = std::min(m_text.find(c, m_position), m_text.size());
        return m_position < m_text.size();
    }

    /// Goes behind the end of what begins here with `beginSize` characters.
    void goBehind(std::string_view end, std::size_t beginSize, const char* what) {
        const std::size_t found = m_text.find(end, m_position + beginSize);
        if (found == std::string_view::npos)
            fail((std::string(what) += " has no end"));
        m_position = found + end.size();
    }

    char current() const {
        if (m_position >= m_text.size())
            fail("a tag has no end");
        return m_text[m_position];
    }

    void skipSpace() {
        while (isSpace(current()))
            ++m_position;
    }

    std::string_view readName() {
        const std::size_t begin = m_position;
        while (!isSpace(current()) &&
               std::string_view("<>/='\"").find(current()) == std::string_view::npos)
            ++m_position;
        if (m_position == begin)
            fail("a name is missing");
        return m_text.substr(begin, m_position - begin);
    }

    void readEndTag() {
        m_position += 2;
        const std::string_view name = readName();
        skipSpace();
        if (current() != '>' || m_names.empty() || m_names.back() != name)
            fail("an end tag of " + std::string(name) + " that ends nothing");
        ++m_position;
        leave();
    }

    void readStartTag() {
        const std::size_t begin = m_position++;
        enter(readName(), begin);
        for (int attributes = 0;; ++attributes) {
            skipSpace();
            if (current() == '>') {
                ++m_position;
                return;
            }
            if (startsWith("/>")) {
                m_position += 2;
                leave();
                return;
            }
            if (attributes == maxXmlAttributes)
                fail("too many attributes");
            readAttribute();
        }
    }

    void readAttribute() {
        readName();
        skipSpace();
        if (current() != '=')
            fail("an attribute without a value");
        ++m_position;
        skipSpace();
        const char quote = current();
        if (quote != '"' && quote != '\'')
            fail("an attribute's value without quotes");
        ++m_position;
        if (!goTo(quote))
            fail("an attribute's value has no end");
        ++m_position;
    }

    void enter(std::string_view name, std::size_t begin) {
        if (m_names.size() == static_cast<std::size_t>(maxXmlDepth))
            fail("elements are nested too deep");
        // The names that match are the first ones always.
        if (m_names.empty())
            m_prefix = name.substr(0, name.find(':') + 1);
        if (m_matching == m_names.size() && m_matching < m_path.size() &&
            m_path[m_matching] == withoutPrefix(name, m_prefix)) {
            if (++m_matching == m_path.size())
                m_begin = begin;
        }
        m_names.push_back(name);
    }

    void leave() {
        const bool isMatch =
            !m_path.empty() && m_matching == m_path.size() && m_names.size() == m_path.size();
        m_names.pop_back();
        m_matching = std::min(m_matching, m_names.size());
        if (isMatch)
            m_handler(m_text.substr(m_begin, m_position - m_begin), m_begin, m_prefix);
    }

    std::string_view m_text;
    const Path& m_path;
    const Handler& m_handler;
    std::size_t m_position = 0;
    /// The elements that are open, and how many of them match the path.
    std::vector<std::string_view> m_names;
    /// Of the root element, with its colon; empty for none.
    std::string_view m_prefix;
    std::size_t m_matching = 0;
    /// Where the element at the path begins.
    std::size_t m_begin = 0;
};

}  // namespace

ExcelXmlPart::ExcelXmlPart(QByteArray document) : m_document(std::move(document)) {
    // What TinyXML does with files of its own only.
    if (m_document.contains('\r'))
        m_document.replace("\r\n", "\n").replace('\r', '\n');
    const Walker::Handler none;
    Walker(viewOf(m_document), {}, none).walk();
}

bool ExcelXmlPart::has(const Path& path) const {
    bool isFound = false;
    const Walker::Handler note = [&isFound](std::string_view, std::size_t, std::string_view) {
        isFound = true;
    };
    Walker(viewOf(m_document), path, note).walk();
    return isFound;
}

void ExcelXmlPart::forEach(const Path& path,
                           const std::function<void(const TiXmlElement&)>& handle) const {
    const std::string_view text = viewOf(m_document);
    const Walker::Handler parse = [text, &handle](std::string_view element, std::size_t begin,
                                                  std::string_view prefix) {
        if (element.size() > maxElementSize)
            failAt(text, begin,
                   limitText("an element is larger than", maxElementSize >> 20, "MiB"));
        if (std::count(element.begin(), element.end(), '<') > maxElementTags)
            failAt(text, begin, limitText("an element holds more than", maxElementTags, "tags"));
        const QByteArray copy(element.data(), static_cast<int>(element.size()));
        const TinyXmlCheck check = checkForTinyXml(copy);
        if (!check.problem.isEmpty())
            failAt(text, begin, check.problem.toStdString());
        TiXmlDocument tree;
        tree.Parse(withBlankTexts(copy, check).constData(), nullptr, TIXML_ENCODING_UTF8);
        if (tree.Error() || !tree.RootElement())
            failAt(text, begin, tree.ErrorDesc());
        removePrefix(tree.RootElement(), std::string(prefix));
        handle(*tree.RootElement());
    };
    Walker(text, path, parse).walk();
}

}  // namespace Tamrix
