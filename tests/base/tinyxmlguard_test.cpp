#include "base/tinyxmlguard.h"

#include <gtest/gtest.h>

namespace Tamrix {

namespace {

struct Case {
    QByteArray document;
    int depth;
    /// What the problem says; empty for none.
    QString problem;
    int row;
};

TEST(TinyXmlCheck, CountsWhatTheParserWillNestAndRefusesWhatItCanNotTake) {
    const Case cases[] = {
        {"", 0, "", 0},
        {"<a><b/><b c='>' d=\"</a>\"/></a><e/>", 2, "", 0},
        {"<a><!-- <b><c> --><![CDATA[<b><c>]]><?b <c?></a>", 1, "", 0},
        {"<?xml version='><a>'?><a></a></a><b></b>", 1, "", 0},
        {"<a><?xml version='></a>'?><a><?xml version='></a>'?><a>", 3, "", 0},
        {"<a b=c/><a x=>", 1, "", 0},
        {"<a\n b 'no attribute'><c><d>", 1, "", 0},
        {QByteArray("<a>\n\0</a>", 9), 0, "NUL", 2},
        {"<a>\n\n\xE9</a>", 0, "not UTF-8", 3},
        {"<a>\xC3\xA9 \xF0\x9F\x98\x80</a>", 1, "", 0},
        {"<a>\xED\xA0\x80</a>", 0, "not UTF-8", 1},
        {"\n<!-- ", 0, "A comment without an end.", 2},
        {"<a><![CDATA[</a>", 1, "A CDATA section", 1},
        {"<?xml version='1.0' ", 0, "A declaration", 1},
        {"<?xml version='&amp;'?><a/>", 0, "A declaration", 1},
        // TinyXML would take "&#</a>#65;" for one letter, and nest the elements.
        {"<a>&#</a>#65;<a>\n&#</a>#65;", 1, "A reference to a character", 1},
        {"<a b='&#9;' c=\"&#x1F600;\">&#65;&#x41;&#1;&#0;&lt;</a>", 1, "", 0},
        {"<a\nb='&#' c='#65;'/>", 1, "A reference to a character", 2},
        {"<a>&#;</a>", 1, "A reference to a character", 1},
        {"<a>&#x;</a>", 1, "A reference to a character", 1},
        {"<a>&#65 ;</a>", 1, "A reference to a character", 1},
        {"<a>&#-1;</a>", 1, "A reference to a character", 1},
        {"<a>&#xD800;</a>", 1, "A reference to a character", 1},
        {"<a>&#x110000;</a>", 1, "A reference to a character", 1},
        {"<a>&#99999999999999999999;</a>", 1, "A reference to a character", 1},
        {"<a><!-- &# & --><![CDATA[&# &]]></a>", 1, "", 0},
        {"<a b='&amp;&lt;&gt;&quot;&apos;'>&apos;&amp;</a>", 1, "", 0},
        // TinyXML would drop these.
        {"<a>AT\n&T</a>", 1, "An & that begins no reference", 2},
        {"<a>&nbsp;</a>", 1, "An & that begins no reference", 1},
        {"<a b='x &amp'/>", 1, "An & that begins no reference", 1},
        {"<a/><", 1, "Markup without an end.", 1},
    };
    for (const Case& each : cases) {
        const TinyXmlCheck found = checkForTinyXml(each.document);
        EXPECT_EQ(found.depth, each.depth) << each.document.constData();
        EXPECT_TRUE(each.problem.isEmpty() ? found.problem.isEmpty()
                                           : found.problem.contains(each.problem))
            << each.document.constData() << qPrintable(found.problem);
        EXPECT_EQ(found.row, each.row) << each.document.constData();
    }
}

TEST(TinyXmlCheck, RefusesElementsBeyondTheLimit) {
    const QByteArray deepest = QByteArray("<a>").repeated(maxXmlDepth);
    EXPECT_EQ(checkForTinyXml(deepest).problem, "");
    EXPECT_EQ(checkForTinyXml(deepest + "\n<b/>").problem, "Elements are nested deeper than 1000.");
    EXPECT_EQ(checkForTinyXml(deepest + "\n<b/>").row, 2);

    const QByteArray most = "<a" + QByteArray(" b=''").repeated(maxXmlAttributes);
    EXPECT_EQ(checkForTinyXml(most + "/>").problem, "");
    EXPECT_EQ(checkForTinyXml(most + " b=''/>").problem,
              "An element has more than 1000 attributes.");
}

TEST(TinyXmlCheck, FindsTextsOfWhiteSpaceAlone) {
    const QByteArray document =
        "<a> <b>\n\t</b> <c> <!-- --> </c><d/> <e>  x</e><f></f> <g h='>'> </g>"
        "<i>\xEF\xBB\xBF </i></a>";
    EXPECT_EQ(withBlankTexts(document, checkForTinyXml(document)),
              "<a> <b><![CDATA[\n\t]]></b> <c> <!-- --> </c><d/> <e>  x</e><f></f> "
              "<g h='>'><![CDATA[ ]]></g><i><![CDATA[\xEF\xBB\xBF ]]></i></a>");
    const QByteArray none = "<!-- <a> </a> --><![CDATA[<a> </a>]]></a> </a>";
    EXPECT_EQ(withBlankTexts(none, checkForTinyXml(none)), none);
}

}  // namespace

}  // namespace Tamrix
