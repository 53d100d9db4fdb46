#include "comparison/xmlcompare.h"

#include <gtest/gtest.h>

#include "support/printqt.h"

namespace Tamrix {

namespace {

using Change = void (*)(XmlCompareOptions&);

void none(XmlCompareOptions& /*options*/) {}
void anyOrder(XmlCompareOptions& options) {
    options.ignoreNodeOrder = true;
}
void attributesInOrder(XmlCompareOptions& options) {
    options.ignoreAttributeOrder = false;
}
void withComments(XmlCompareOptions& options) {
    options.ignoreComments = false;
}
void withCommentsInAnyOrder(XmlCompareOptions& options) {
    options.ignoreComments = false;
    options.ignoreNodeOrder = true;
}
void withCdata(XmlCompareOptions& options) {
    options.ignoreCDATA = false;
}
void withSpecialTags(XmlCompareOptions& options) {
    options.matchSpecialTags = true;
}
void preserveText(XmlCompareOptions& options) {
    options.text = {};
}
void trimAll(XmlCompareOptions& options) {
    options.text = {false, true};
    options.values = {false, true};
}
void normalizeValues(XmlCompareOptions& options) {
    options.values = {true, false};
}
void filtered(XmlCompareOptions& options) {
    options.filteredAttributes = {"id"};
    options.filteredElements = {"f"};
}

struct Case {
    Change options;
    QByteArray expected;
    QByteArray actual;
    /// How the message ends; empty for equal documents.
    const char* message;
};

void expectOutcomes(const std::vector<Case>& cases) {
    for (const Case& each : cases) {
        XmlCompareOptions options;
        each.options(options);
        XmlCompareError error;
        const bool equal = compareXml({each.expected, each.actual}, {}, options, &error);
        const std::string documents = (each.expected + "  " + each.actual).toStdString();
        EXPECT_EQ(equal, !*each.message) << documents << qPrintable(error.message);
        EXPECT_TRUE(equal || error.message.endsWith(each.message))
            << documents << ": " << qPrintable(error.message);
    }
}

TEST(XmlCompare, ElementsAttributesAndTexts) {
    expectOutcomes({
        {none, "<a x='1' y='2'/>", "<a y='2' x='1'></a>", ""},
        {attributesInOrder, "<a x='1' y='2'/>", "<a y='2' x='1'/>", "Attributes do not match."},
        {none, "<a x='1'/>", "<a x='2'/>", "Attributes do not match."},
        {none, "<a x='1'/>", "<a x='1' y=''/>", "Attributes do not match."},
        {none, "<a x='a  b'/>", "<a x='a b'/>", "Attributes do not match."},
        {normalizeValues, "<a x='a  b'/>", "<a x=' a b'/>", ""},
        {trimAll, "<a x='a b'>c  d</a>", "<a x=' a b '>\n c  d</a>", ""},
        {trimAll, "<a>c  d</a>", "<a>c d</a>", "Text does not match."},
        {none, "<a>x</a>", "<a>x</a>", ""},
        {none, "<a>a  b</a>", "<a>a b </a>", ""},
        {preserveText, "<a>a  b</a>", "<a>a b</a>", "Text does not match."},
        {none, "<a/>", "<a>x</a>", "Reason: Text does not match (only one has text)."},
        {none, "<a>\n<b>x</b>\n</a>", "<a><b>y</b></a>",
         "Unable to find matching element: \"b\", Row: 2. Reason: Text does not match."},
        {none, "<a>&#0;b</a>", "<a>&#0;c</a>", "Text does not match."},
        {none, "<a><b/><c/></a>", "<a><b/></a>",
         "element: \"a\", Row: 1. Reason: Child count does not match."},
        {none, "<a><b/><c/></a>", "<a><c/><b/></a>",
         "\"b\", Row: 1. Reason: No matching tag name "
         "found."},
        {none, "<a/>", "<a/><b/>", "Sibling count differs. Row: 1"},
    });
}

TEST(XmlCompare, WhatOnlyCountsByOption) {
    expectOutcomes({
        {none, "<!-- 1 --><a><!-- 2 -->x<!-- 3 -->y<b/></a>", "<a>xy<b/><!-- 4 --></a>", ""},
        {withComments, "<a><!--1--><b/></a>", "<a><!--1--><b/></a>", ""},
        {withComments, "<a><!--1--></a>", "<a><!--2--></a>",
         "\"1\", Row: 1. Reason: No matching comment found."},
        {withComments, "<a><b/></a>", "<a><!--b--></a>", "No matching node type found."},
        {none, "<a>x<![CDATA[y]]></a>", "<a>xy</a>", ""},
        {withCdata, "<a><![CDATA[x]]></a>", "<a>x</a>", "Text does not match."},
        {withCdata, "<a>x<![CDATA[y]]></a>", "<a>x<![CDATA[y]]></a>", ""},
        {none, "<?xml version='1.0'?><!DOCTYPE a><a/>", "<a/>", ""},
        {withSpecialTags, "<?xml version='1.0'?><a/>", "<?xml version='1.1'?><a/>",
         "No matching declaration found."},
        {withSpecialTags, "<!DOCTYPE a><a/>", "<!DOCTYPE b><a/>", "No matching element found."},
        {filtered, "<a id='1'><f>1</f><b/></a>", "<a><b/><f/><f/></a>", ""},
        {filtered, "<f/><a/>", "<a/>", ""},
        {filtered, "<a><f/></a>", "<a><b/></a>", "Child count does not match."},
    });
}

TEST(XmlCompare, AnyOrderOfNodes) {
    expectOutcomes({
        {anyOrder, "<a><x/><y/><x>1</x></a>", "<a><x>1</x><x/><y/></a>", ""},
        {anyOrder, "<a><x/><x/></a>", "<a><x/><y/></a>", "No matching tag name found."},
        {anyOrder, "<a><x/><x/></a>", "<a><x/><x>1</x></a>", "(only one has text)."},
        {anyOrder, "<x><y>1</y></x><x><y>2</y></x>", "<x><y>2</y></x><x><y>1</y></x>", ""},
        {anyOrder, "<x><y>1</y></x>", "<x><y>2</y></x>",
         "\"y\", Row: 1. Reason: Text does not match."},
        // What matched inside a candidate that failed is free for the next one.
        {anyOrder, "<a><x><y/><z/></x><x><y/><w/></x></a>", "<a><x><y/><w/></x><x><y/><z/></x></a>",
         ""},
        {withCommentsInAnyOrder, "<a><b/><!--b--></a>", "<a><!--b--><b/></a>", ""},
        {withCommentsInAnyOrder, "<a><b/><!--b--></a>", "<a><!--b--><!--b--></a>",
         "No match found."},
        {withCommentsInAnyOrder, "<a><!--1--><!--1--></a>", "<a><!--1--><!--2--></a>",
         "No matching comment found."},
    });
}

TEST(XmlCompare, TellsWhatIsWrongWithADocument) {
    const QByteArray deep = QByteArray("<a>").repeated(100000);
    expectOutcomes({
        {none, "<a>\n<b></a>", "<a/>", "Row: 2"},
        {none, "", "<a/>", "Document A Error document empty. Row: 0"},
        {none, "<a/>", "<a", "Document B Failed to read Element name Row: 1"},
        {none, "<a/>\njunk", "<a/>", "Document A Text outside of the document's elements. Row: 2"},
        {none, "<a/>", deep, "Document B Elements are nested deeper than 1000. Row: 1"},
        {none, "<a/><!-- ", "<a/>", "Document A A comment without an end. Row: 1"},
        {none, QByteArray("<a/>\0<b/>", 9), "<a/>", "only UTF-8 can be read). Row: 1"},
    });
    const QByteArray deepest = QByteArray("<a>").repeated(1000) + QByteArray("</a>").repeated(1000);
    expectOutcomes({{none, deepest, deepest, ""}});
}

TEST(XmlCompare, BytesThatAreNotUtf8AreLatin1) {
    expectOutcomes({
        {none, "<a>\xE4</a>", "<a>\xE4</a>", ""},
        {none, "<a>\xE4</a>", "<a>\xF6</a>", "Text does not match."},
        {none, "<\xE4/>", "<\xC3\xA4/>", ""},
        {none, "<a>\xE4</a>\xE4</a>", "<a/>", "Text outside of the document's elements. Row: 1"},
    });
}

TEST(XmlCompare, AnotherRuleForValues) {
    XmlCompareFunctions functions;
    functions.compareXmlAttribute = [](const std::string& tag, const std::string& name,
                                       const XmlCompareFunctions::Texts& values) {
        return tag == "a" && name == "x" && values.first.size() == values.second.size();
    };
    functions.compareXmlElementText = [](const std::string& tag,
                                         const XmlCompareFunctions::Texts& texts) {
        return tag == "a" && texts.first == "1" && texts.second == "one";
    };
    XmlCompareError error;
    EXPECT_TRUE(compareXml({"<a x='12'>1</a>", "<a x='21'>one</a>"}, functions, {}, &error));
    EXPECT_FALSE(compareXml({"<a x='1'>1</a>", "<a x='21'>one</a>"}, functions, {}, &error));
}

}  // namespace

}  // namespace Tamrix
