#include <gtest/gtest.h>
#include <json/json.h>

#include "shared/ocr/genericresult.h"
#include "shared/ocr/nearestphrase.h"
#include "shared/ocr/tesseract/rawresult.h"
#include "shared/ocr/throwntext.h"
#include "shared/ocr/typedexception.h"
#include "support/printqt.h"

namespace Tamrix::OCR {
namespace {

using Tesseract::RawResult;
using Vision::SearchRegion;

const SearchRegion everywhere(QRect(0, 0, 1000, 1000));

/// The words of a text in a row from a point on, ten pixels for each character and each blank, ten
/// high, of the size 10.
GenericResult::Line lineAt(const QString& text, int x, int y) {
    GenericResult::Line line;
    for (const QString& word : text.split(' ')) {
        line.append({word, QRect(x, y, word.size() * 10, 10), 10});
        x += word.size() * 10 + 10;
    }
    return line;
}

/// The characters of a text in a row, ten pixels wide and high.
RawResult::Line symbolsAt(const QString& text, int x, int y) {
    QList<RawResult::Symbol> symbols;
    for (const QChar character : text) {
        symbols.append({character, QRect(x, y, 10, 10)});
        x += 10;
    }
    return RawResult::Line(symbols);
}

/// Matches as text: their words, each with the left top corner of its place.
QString written(const QList<Match>& matches) {
    QStringList texts;
    for (const Match& match : matches) {
        QStringList words;
        for (const Word& word : match)
            words.append(QStringLiteral("%1@%2,%3")
                             .arg(word.text, QString::number(word.rect.x()),
                                  QString::number(word.rect.y())));
        texts.append(words.join(' '));
    }
    return texts.join(" | ");
}

TEST(OcrGenericResult, FindsPhrasesByWordsAndGeometry) {
    using Lines = QList<GenericResult::Line>;
    const struct {
        const char* what;
        Lines lines;
        const char* phrase;
        const char* found;
    } rows[] = {
        {"any case", {lineAt("save File", 0, 0)}, "SAVE", "save@0,0"},
        {"whole words", {lineAt("saved", 0, 0)}, "save", ""},
        {"blanks of any kind", {lineAt("a b", 0, 0)}, " a\t\nb ", "a@0,0 b@20,0"},
        {"no words", {lineAt("a", 0, 0)}, " \t", ""},
        {"several, without overlap", {lineAt("a a a", 0, 0)}, "a a", "a@0,0 a@20,0"},
        {"behind a run that began like it",
         {lineAt("a b a b c", 0, 0)},
         "a b c",
         "a@40,0 b@60,0 c@80,0"},
        // The gap between the boxes is counted from last to first pixel.
        {"words at twice their size",
         {lineAt("a", 0, 0) + lineAt("b", 29, 0)},
         "a b",
         "a@0,0 b@29,0"},
        {"words further apart", {lineAt("a", 0, 0) + lineAt("b", 30, 0)}, "a b", ""},
        {"in the next line",
         {lineAt("one two", 0, 0), lineAt("three four", 0, 25)},
         "one two three",
         "one@0,0 two@40,0 three@0,25"},
        {"a line too far away", {lineAt("aaa", 0, 0), lineAt("bbb", 0, 40)}, "aaa bbb", ""},
        {"a line that lies aside",
         {lineAt("aaaaa", 0, 0), lineAt("bbbbb", 20, 12)},
         "aaaaa bbbbb",
         ""},
        {"a line that lies aside a little",
         {lineAt("aaaaa", 0, 0), lineAt("bbbbb", 10, 12)},
         "aaaaa bbbbb",
         "aaaaa@0,0 bbbbb@10,12"},
        {"other text between",
         {lineAt("aaa", 0, 0), lineAt("xxx", 0, 12), lineAt("bbb", 0, 24)},
         "aaa bbb",
         "aaa@0,0 bbb@0,24"},
        {"over three lines",
         {lineAt("aaa", 0, 0), lineAt("bbb", 0, 12), lineAt("ccc", 0, 24)},
         "aaa bbb ccc",
         "aaa@0,0 bbb@0,12 ccc@0,24"},
        {"matches that share their first word",
         {lineAt("aaa", 0, 0), lineAt("bbb", 0, 12), lineAt("bbb", 0, 24)},
         "aaa bbb",
         "aaa@0,0 bbb@0,12 | aaa@0,0 bbb@0,24"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        const GenericResult result(everywhere, row.lines);
        EXPECT_EQ(written(result.getTextLocations(row.phrase)), row.found);
    }
}

TEST(OcrGenericResult, OnlyWhatLiesInTheRegionExists) {
    GenericResult result(everywhere, {lineAt("a bb c", 0, 0), lineAt("d", 0, 20)});
    EXPECT_EQ(result.getText(), "a bb c\nd");
    // The middle word crosses the border; those that touch it from inside count.
    result.setSearchRegion(SearchRegion(QList<QRect>{QRect(0, 0, 30, 10), QRect(50, 0, 10, 10)}));
    EXPECT_EQ(result.getText(), "a\nc");
    EXPECT_EQ(written({result.getAllWords()}), "a@0,0 c@50,0");
    EXPECT_EQ(written(result.getTextLocations("bb")), "");
    result.setSearchRegion(SearchRegion());
    EXPECT_EQ(result.getText(), "");
}

TEST(OcrGenericResult, OccurrencesAndPlaces) {
    GenericResult result(everywhere, {lineAt("a b a", 0, 0), lineAt("a", 500, 40)});
    EXPECT_EQ(written({result.getTextLocation("A", 3)}), "a@500,40");
    EXPECT_TRUE(result.getTextLocation("a", 4).isEmpty());
    for (const int occurrence : {0, -1})
        EXPECT_EQ(thrownText<InvalidInputs>([&] { result.getTextLocation("a", occurrence); }),
                  "The occurrence index must be higher than zero");
    EXPECT_EQ(result.occurrenceAt(result.getTextLocation("a", 2)), 2);
    EXPECT_EQ(result.occurrenceAt(Match{{"a", QRect(1, 2, 3, 4), 5}}), 0);
    EXPECT_EQ(result.occurrenceAt(Match()), 0);

    EXPECT_EQ(written(result.matchesAt(QRect(0, 0, 1000, 1000))), "a@0,0 b@20,0 a@40,0 | a@500,40");
    EXPECT_EQ(written(result.matchesAt(QRect(15, 0, 20, 10))), "b@20,0");
    const GenericResult gap(everywhere, {lineAt("a", 0, 0) + lineAt("b", 100, 0)});
    EXPECT_EQ(written(gap.matchesAt(QRect(0, 0, 1000, 1000))), "a@0,0 | b@100,0");
}

TEST(OcrRawResult, FindsPhrasesByCharacters) {
    RawResult result({symbolsAt("aaa b", 0, 0), symbolsAt("B", 0, 20)}, everywhere);
    EXPECT_EQ(result.getText(), "aaa b\nB\n");
    EXPECT_EQ(written(result.getTextLocations("aa")), "aa@0,0 | aa@10,0");
    EXPECT_EQ(written(result.getTextLocations("a b")), "a b@20,0");
    EXPECT_EQ(written(result.getTextLocations("B")), "B@0,20");
    EXPECT_EQ(written(result.getTextLocations("bB")), "");
    EXPECT_EQ(written(result.getTextLocations("")), "");
    const Match second = result.getTextLocation("aa", 2);
    EXPECT_EQ(second.value(0).pointSize, 10);
    EXPECT_EQ(second.boundingBox(), QRect(10, 0, 20, 10));
    EXPECT_EQ(result.occurrenceAt(second), 2);
    EXPECT_TRUE(result.getTextLocation("aa", 3).isEmpty());
    EXPECT_EQ(thrownText<InvalidInputs>([&] { result.getTextLocation("a", 0); }),
              "The occurrence index must be higher than zero");

    // A region cuts the line in two.
    result.setSearchRegion(SearchRegion(QList<QRect>{QRect(0, 0, 10, 30), QRect(20, 0, 900, 30)}));
    EXPECT_EQ(result.getText(), "a\na b\nB\n");
    EXPECT_EQ(written({result.getAllWords()}), "a@0,0 a b@20,0 B@0,20");
    EXPECT_EQ(written(result.matchesAt(QRect(0, 0, 30, 10))), "a@0,0 | a@20,0");
    EXPECT_EQ(result.occurrenceAt(second), 0);
    result.setSearchRegion(SearchRegion());
    EXPECT_EQ(result.getText(), "");
}

TEST(OcrResults, MatchesInJson) {
    const Match match({{"a", QRect(1, 2, 3, 4), 5}});
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    EXPECT_EQ(Json::writeString(builder, match.toJson()),
              R"({"words":[{"location":{"height":4,"width":3,"x":1,"y":2},)"
              R"("pointSize":5,"text":"a"}]})");
    // Size is not compared, all else is.
    EXPECT_EQ(match, Match({{"a", QRect(1, 2, 3, 4), 9}}));
    EXPECT_FALSE(match == Match({{"a", QRect(1, 2, 3, 5), 5}}));

    Json::Value words(Json::objectValue);
    words["words"]["any"] = match.toJson()["words"][0];
    EXPECT_EQ(Match(words), match);

    const struct {
        const char* json;
        const char* message;
    } rows[] = {
        {"{}", "words entry missing"},
        {R"({"words": []})", "words entry is not an object"},
        {R"({"words": {"a": 1}})", "Word descriptor must be an object"},
        {R"({"words": {"a": {}}})", "text entry missing"},
        {R"({"words": {"a": {"text": 1}}})", "text entry is not a string"},
        {R"({"words": {"a": {"text": "", "location": 1}}})", "location entry is not an object"},
        {R"({"words": {"a": {"text": "", "location": {}}}})", "height entry missing"},
        {R"({"words": {"a": {"text": "", "pointSize": "",
             "location": {"height": 1, "width": 1, "x": 0, "y": 0}}}})",
         "pointSize entry is not an integer"},
    };
    for (const auto& row : rows) {
        Json::Value value;
        std::istringstream(row.json) >> value;
        EXPECT_EQ(thrownText<std::runtime_error>([&] { Match{value}; }), row.message) << row.json;
    }
}

TEST(OcrResults, NearestPhrase) {
    const GenericResult result(everywhere,
                               {lineAt("Save as draft", 0, 0), lineAt("Cance1 all", 0, 20)});
    const struct {
        const char* text;
        const char* nearest;
        int distance;
    } rows[] = {
        {"Cancel", "Cance1", 1},          {"SAVE", "Save", 0}, {"Saveas", "Save as", 1},
        {"cancel  all", "Cance1 all", 1}, {"zzzz", "", 0},     {" ", "", 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        const auto nearest = nearestPhrase(result, row.text);
        EXPECT_EQ(nearest ? nearest->text : QString(), row.nearest);
        EXPECT_EQ(nearest ? nearest->distance : 0, row.distance);
    }
    EXPECT_FALSE(nearestPhrase(GenericResult(everywhere, {}), "a"));
}

TEST(OcrExceptions, InJson) {
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    const auto json = [&](const TypedException& exception) {
        return Json::writeString(builder, exception.toJson());
    };
    EXPECT_EQ(json(OperationCancelled()), R"({"message":"Operation cancelled"})");
    EXPECT_EQ(OperationCancelled().type(), "OperationCancelled");
    EXPECT_EQ(ConnectionError("x").type(), "ConnectionError");
    EXPECT_EQ(json(InvalidResponse("no")),
              R"({"message":"no","responseBytes":"","responseFormat":""})");
    EXPECT_EQ(json(InvalidResponse("no", "{}", "json")),
              R"({"message":"no","responseBytes":"e30=","responseFormat":"json"})");
}

}  // namespace
}  // namespace Tamrix::OCR
