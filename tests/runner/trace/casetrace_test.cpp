#include "runner/trace/casetrace.h"

#include <gtest/gtest.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QPainter>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <thread>
#include <utility>

#include "runner/trace/tracedobjects.h"
#include "runner/trace/tracefolder.h"
#include "support/files.h"
#include "support/printqt.h"
#include "support/recordingreport.h"

namespace Tamrix {
namespace {

using namespace Test;

QStringList tilesIn(const QString& folder) {
    return QDir(folder).entryList({"*"}, QDir::Files);
}

/// What the calls of a function in a file were given.
QList<QJsonObject> callsIn(const QString& file, const QByteArray& function) {
    QList<QJsonObject> calls;
    for (const QByteArray& line : readFile(file).split('\n')) {
        if (!line.startsWith(function + '('))
            continue;
        EXPECT_TRUE(line.endsWith(");"));
        const int begin = function.size() + 1;
        calls.append(QJsonDocument::fromJson(line.mid(begin, line.size() - begin - 2)).object());
    }
    return calls;
}

// Tiles

/// The picture that a page draws.
QImage drawn(const TileStore& store, const QString& folder) {
    QImage picture(store.size(), QImage::Format_RGB32);
    QPainter painter(&picture);
    const int columns = (picture.width() + TileStore::tileSize - 1) / TileStore::tileSize;
    int index = 0;
    for (const Tile& tile : store.tiles()) {
        const QPoint place(index % columns * TileStore::tileSize,
                           index / columns * TileStore::tileSize);
        ++index;
        for (const QString& name : {tile.base, tile.change}) {
            const QImage file(QStringLiteral("%1/%2.png").arg(folder, name));
            EXPECT_EQ(file.isNull(), name.isEmpty()) << name.toStdString();
            painter.drawImage(place, file);
        }
    }
    return picture;
}

/// Rows of stripes of so many colours, which a list of texts is like.
void drawRows(QImage* picture, int colours) {
    for (int y = 0; y < picture->height(); ++y) {
        for (int x = 0; x < picture->width(); ++x)
            picture->setPixel(x, y, qRgb((x * 7 + y) % colours, y % 20, 200));
    }
}

TEST(TileStore, KeepsWhatDiffers) {
    const QTemporaryDir folder;
    TileStore store(folder.path());
    QImage picture(300, 200, QImage::Format_RGB32);
    picture.fill(Qt::gray);
    auto changes = store.add(picture);
    ASSERT_TRUE(changes);
    EXPECT_EQ(changes->size(), 6U);
    // Three columns and two rows, of which those at the edges are of other sizes.
    EXPECT_EQ(tilesIn(folder.path()).size(), 4);
    EXPECT_EQ(store.tiles()[0], store.tiles()[1]);
    EXPECT_FALSE(store.tiles()[1] == store.tiles()[2]);

    const std::vector<Tile> before = store.tiles();
    EXPECT_TRUE(store.add(picture)->empty());
    QPainter(&picture).fillRect(130, 5, 4, 4, Qt::red);
    changes = store.add(picture);
    ASSERT_EQ(changes->size(), 1U);
    EXPECT_EQ(changes->front().index, 1);
    EXPECT_EQ(drawn(store, folder.path()), picture);
    // What it was before is there already.
    QPainter(&picture).fillRect(130, 5, 4, 4, Qt::gray);
    EXPECT_EQ(store.add(picture)->front().tile, before[1]);
    EXPECT_EQ(tilesIn(folder.path()).size(), 5);

    // Another size is another picture.
    EXPECT_EQ(store.add(picture.copy(0, 0, 128, 128))->size(), 1U);
    EXPECT_EQ(store.size(), QSize(128, 128));
}

TEST(TileStore, KeepsLittleChangesAlone) {
    // As many colours as a table has, and more.
    for (const int colours : {10, 255}) {
        const QTemporaryDir folder;
        TileStore store(folder.path());
        QImage picture(200, 100, QImage::Format_RGB32);
        drawRows(&picture, colours);
        ASSERT_TRUE(store.add(picture));
        const std::vector<Tile> first = store.tiles();
        const auto draw = [&](const QRect& place, QRgb colour) {
            for (int x = place.left(); x <= place.right(); ++x) {
                for (int y = place.top(); y <= place.bottom(); ++y)
                    picture.setPixel(x, y, colour + static_cast<QRgb>(x % 4));
            }
            EXPECT_TRUE(store.add(picture));
            EXPECT_EQ(drawn(store, folder.path()), picture);
        };
        // 1. Little of a tile, and then more of it: each lies on what was there first.
        const qint64 whole = QFileInfo(folder.filePath(first[0].base + ".png")).size();
        for (const int width : {5, 20}) {
            draw(QRect(40, 30, width, 20), qRgb(9, 9, 9));
            const Tile tile = store.tiles()[0];
            EXPECT_EQ(tile.base, first[0].base);
            ASSERT_FALSE(tile.change.isEmpty());
            EXPECT_LT(QFileInfo(folder.filePath(tile.change + ".png")).size(), whole / 2);
        }
        EXPECT_EQ(store.tiles()[1], first[1]);
        // 2. Most of it: that is a new one, on which the next change lies.
        draw(QRect(0, 0, 128, 90), qRgb(70, 80, 90));
        const Tile second = store.tiles()[0];
        EXPECT_TRUE(second.change.isEmpty());
        draw(QRect(1, 1, 3, 1), qRgb(1, 2, 3));
        EXPECT_EQ(store.tiles()[0].base, second.base);
        // 3. A tile that comes again, without further files.
        const int files = tilesIn(folder.path()).size();
        drawRows(&picture, colours);
        EXPECT_EQ(store.add(picture)->front().tile, first[0]);
        draw(QRect(40, 30, 5, 20), qRgb(9, 9, 9));
        EXPECT_EQ(tilesIn(folder.path()).size(), files);
        // 4. One that lies on another base than what was there last, and a change of it.
        drawRows(&picture, colours);
        draw(QRect(0, 0, 128, 90), qRgb(70, 80, 90));
        drawRows(&picture, colours);
        draw(QRect(40, 30, 5, 20), qRgb(9, 9, 9));
        EXPECT_EQ(tilesIn(folder.path()).size(), files);
        draw(QRect(90, 10, 2, 2), qRgb(8, 8, 8));
    }
}

TEST(TileStore, KeepsGreysWithoutATable) {
    const QTemporaryDir folder;
    TileStore store(folder.path());
    QImage picture(128, 128, QImage::Format_RGB32);
    for (const int greys : {20, 200}) {
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x) {
                const int grey = (x * 31 + y * y * 17) % greys;
                picture.setPixel(x, y, qRgb(grey, grey, grey));
            }
        }
        ASSERT_TRUE(store.add(picture));
        EXPECT_EQ(drawn(store, folder.path()), picture);
        const QImage file(folder.filePath(store.tiles()[0].base + ".png"));
        EXPECT_EQ(file.format() == QImage::Format_Grayscale8, greys == 200) << file.format();
    }
}

TEST(TileStore, FailuresAreToldAndTilesMove) {
    const QTemporaryDir folder;
    QImage picture(10, 10, QImage::Format_RGB32);
    picture.fill(Qt::blue);
    TileStore lost(folder.filePath("none"));
    const auto failed = lost.add(picture);
    ASSERT_FALSE(failed);
    EXPECT_TRUE(failed.error().text.startsWith("'" + folder.filePath("none/")));
    EXPECT_TRUE(lost.tiles().empty());

    for (const char* const name : {"own", "all"})
        ASSERT_TRUE(QDir(folder.path()).mkdir(name));
    TileStore store(folder.filePath("own"));
    ASSERT_TRUE(store.add(picture));
    EXPECT_TRUE(store.moveTo(folder.filePath("all")));
    EXPECT_EQ(tilesIn(folder.filePath("all")).size(), 1);
    EXPECT_EQ(tilesIn(folder.filePath("own")).size(), 0);
}

// Objects

// What the page does with what it is told.

TracedObject like(const TracedObject& model, const QJsonObject& told) {
    TracedObject object = model;
    object.depth = told["depth"].toInt(model.depth);
    object.type = told["type"].toString(model.type);
    object.text = told["text"].toString(model.text);
    object.state = told["state"].toInt(model.state);
    if (told.contains("place")) {
        const QJsonArray place = told["place"].toArray();
        object.place =
            QRect(place[0].toInt(), place[1].toInt(), place[2].toInt(), place[3].toInt());
    }
    if (!model.text.isEmpty())
        object.name.replace(model.text, object.text);
    if (told.contains("name")) {
        const QJsonArray name = told["name"].toArray();
        object.name = object.name.left(name[0].toInt()) + name[2].toString() +
                      object.name.right(name[1].toInt());
    }
    return object;
}

void append(const QJsonArray& told, TracedObjects* objects) {
    for (const auto& each : told)
        objects->push_back(
            like(objects->empty() ? TracedObject() : objects->back(), each.toObject()));
}

TracedObjects told(const QByteArray& json) {
    TracedObjects objects;
    append(QJsonDocument::fromJson(json).array(), &objects);
    return objects;
}

TracedObjects changed(const TracedObjects& before, const QByteArray& json) {
    TracedObjects objects;
    auto next = before.begin();
    const QJsonArray changes = QJsonDocument::fromJson(json).array();
    for (const auto& change : changes) {
        if (change.isArray())
            append(change.toArray(), &objects);
        else if (change.toObject().contains("moved")) {
            const QJsonArray moved = change.toObject()["moved"].toArray();
            for (int count = moved[0].toInt(); count > 0; --count) {
                objects.push_back(*next++);
                objects.back().place.translate(moved[1].toInt(), moved[2].toInt());
            }
        } else if (change.isObject())
            objects.push_back(like(*next++, change.toObject()));
        else if (change.toInt() < 0)
            next -= change.toInt();
        else
            for (int count = change.toInt(); count > 0; --count)
                objects.push_back(*next++);
    }
    EXPECT_EQ(next, before.end());
    return objects;
}

Wire::ObjectListing listing(const QStringList& texts) {
    Wire::ObjectListing result{{"QLabel"}, {}};
    for (const QString& text : texts)
        result.objects.append({0, 0, 3, QRect(1, 2, 3, 4), text, "{text='" + text + "'}"});
    return result;
}

TEST(TracedObjects, AreToldByTheirDifferences) {
    const auto same = [](const QString& text) { return text; };
    TracedObjects moments[] = {{}, {}, {}, {}, {}, {}};
    const QStringList texts[] = {{},
                                 {"a"},
                                 {"a", "b", "c"},
                                 {"a", "x", "c", "\"ü\n"},
                                 {"c", "a"},
                                 {"\U0001F600", "\U0001F601", "e", ""}};
    for (size_t index = 0; index < std::size(texts); ++index)
        moments[index] = tracedObjects(listing(texts[index]), same);
    // Names that are not made of texts, and whose characters have halves in common.
    moments[3][1] = {2, "QItem", "x", "{occurrence='2' text='x'}", QRect(-5, 6, 7, 8), 1};
    moments[4][0].name = "{name='\U0001F600'}";
    moments[4][1].name = "{name='\U0001F601'}";
    for (const TracedObjects& from : moments) {
        EXPECT_EQ(told(allObjects(from)), from);
        for (const TracedObjects& to : moments) {
            const QByteArray changes = objectChanges(from, to);
            if (from == to)
                EXPECT_TRUE(changes.isEmpty());
            else
                EXPECT_EQ(changed(from, changes), to) << changes.constData();
        }
    }
    EXPECT_EQ(
        tracedObjects(listing({"secret"}), [](QString t) { return t.replace("secret", "***"); }),
        tracedObjects(listing({"***"}), same));
}

TEST(TracedObjects, TakeFewBytes) {
    const auto row = [](int number, const char* occurrence) {
        const QString text = QStringLiteral("file %1").arg(number);
        return TracedObject{1,
                            "QTreeViewItem",
                            text,
                            "{" + QString(occurrence) + "text='" + text + "' type='QTreeViewItem'}",
                            QRect(0, 20 * (number % 2), 100, 20),
                            3};
    };
    const TracedObjects before = {row(1, ""), row(2, ""), row(3, "")};
    EXPECT_EQ(allObjects(before),
              R"([{"depth":1,"name":[0,0,"{text='file 1' type='QTreeViewItem'}"],)"
              R"("place":[0,20,100,20],"state":3,"text":"file 1","type":"QTreeViewItem"},)"
              R"({"place":[0,0,100,20],"text":"file 2"},)"
              R"({"place":[0,20,100,20],"text":"file 3"}])");
    EXPECT_EQ(
        objectChanges(before, {row(5, ""), row(2, ""), row(7, "occurrence='2' "), row(9, "")}),
        R"([{"text":"file 5"},1,{"name":[1,35,"occurrence='2' "],"text":"file 7"},)"
        R"([{"name":[1,35,""],"text":"file 9"}]])");
    EXPECT_EQ(objectChanges(before, {row(2, "")}), "[-1,1,-1]");
    // What is scrolled moves together.
    TracedObjects scrolled = before;
    for (TracedObject& object : scrolled)
        object.place.translate(0, -40);
    scrolled.push_back(row(4, ""));
    const QByteArray changes = objectChanges(before, scrolled);
    EXPECT_TRUE(changes.startsWith("[{\"moved\":[3,0,-40]},[{")) << changes.constData();
    EXPECT_EQ(changed(before, changes), scrolled);
}

// The folder

TEST(TraceFolder, ReplacesATraceAndNothingElse) {
    const QTemporaryDir folder;
    const QString trace = folder.filePath("results/trace");
    ASSERT_TRUE(createTraceFolder(trace));
    EXPECT_EQ(*createCaseFolder(trace), "case-0001");
    EXPECT_EQ(*createCaseFolder(trace), "case-0002");
    EXPECT_TRUE(readFile(trace + "/index.html").contains("trace.js"));
    ASSERT_TRUE(createTraceFolder(trace));
    EXPECT_FALSE(QFile::exists(trace + "/case-0001"));

    writeFile(folder.filePath("mine/notes.txt"), "x");
    const Outcome<> refused = createTraceFolder(folder.filePath("mine"));
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error().text,
              "'" + folder.filePath("mine") + "' is no trace and holds files: it is not replaced");
    EXPECT_EQ(readFile(folder.filePath("mine/notes.txt")), "x");
}

TEST(TraceFolder, LinesOfSeveralAuthorsStayWhole) {
    const QTemporaryDir folder;
    const QString file = folder.filePath("cases.js");
    constexpr int count = 4;
    std::vector<std::thread> authors;
    authors.reserve(count);
    for (int author = 0; author < count; ++author) {
        authors.emplace_back([&file] {
            for (int line = 0; line < 50; ++line)
                EXPECT_TRUE(
                    appendCall(file, "traceCase", "{\"a\":\"" + QByteArray(9999, 'x') + "\"}"));
        });
    }
    for (std::thread& author : authors)
        author.join();
    EXPECT_EQ(callsIn(file, "traceCase").size(), 200);
}

// Cases

class CaseTraceTest : public testing::Test {
protected:
    CaseTraceTest() {
        EXPECT_TRUE(createTraceFolder(trace));
        screen.fill(Qt::white);
        view.answers = [this] {
            ++questions;
            return isThere;
        };
        view.picture = [this] { return Screenshot(screen, QTransform::fromTranslate(10, 20)); };
        view.objects = [this] { return std::optional(listing(objects)); };
        view.lastPress = [] { return std::optional(QPoint(15, 27)); };
        view.output = [this] {
            return QMap<QString, QByteArray>{{"faulty-stdout", std::exchange(written, {})}};
        };
    }

    void start(TraceMode mode) {
        generator = std::make_unique<CaseTrace>(mode, trace, view, &report);
        const Secrets secrets({"hunter2", "", "hunter2000", "it's"});
        generator->setSecrets(secrets);
        filter = std::make_unique<SecretsFilter>(generator.get());
        filter->setSecrets(secrets);
    }

    void add(const ReportEvent& event) {
        time = time.addMSecs(10);
        filter->add({time, event});
    }

    void act(const QString& function, const QString& arguments = {}) {
        add(ActionEnded{function, arguments, 5, false, {"/none/test.py", 7}});
    }

    void runCase(const QString& name, const std::function<void()>& content) {
        add(CaseStarted{name, "/none/test.py"});
        content();
        add(CaseEnded{});
    }

    static ResultAdded result(TestResult::ResultType type, const QString& message) {
        ResultAdded added;
        added.type = type;
        added.message = message;
        added.callStack = {{"/none/test.py", 9}};
        return added;
    }

    QList<QJsonObject> steps(const QString& testCase = "case-0001", int file = 1) const {
        return callsIn(QString("%1/%2/steps-000%3.js").arg(trace, testCase, QString::number(file)),
                       "traceStep");
    }

    QTemporaryDir folder;
    QString trace = folder.filePath("trace");
    QImage screen{200, 150, QImage::Format_RGB32};
    QStringList objects = {"a", "b"};
    QByteArray written;
    bool isThere = true;
    int questions = 0;
    TraceView view;
    RecordingReport report;
    std::unique_ptr<CaseTrace> generator;
    std::unique_ptr<SecretsFilter> filter;
    QDateTime time = QDateTime(QDate(2026, 5, 4), QTime(3, 2, 1));
};

TEST_F(CaseTraceTest, TellsWhatEachStepChanged) {
    start(TraceMode::On);
    runCase("one", [this] {
        act("startApplication", "\"faulty\"");
        QPainter(&screen).fillRect(0, 0, 5, 5, Qt::red);
        objects = QStringList{"a", "c"};
        written = "a line with hunter2\n";
        act("click", "\"hunter2\"");
        add(result(TestResult::Pass, "fine"));
        add(result(TestResult::Fail, "it is hunter2"));
    });
    EXPECT_EQ(report.entries.size(), 6U);
    const QList<QJsonObject> all = steps();
    ASSERT_EQ(all.size(), 4);
    EXPECT_EQ(all[0]["size"].toArray(), (QJsonArray{200, 150}));
    EXPECT_EQ(all[0]["native"].toArray(), (QJsonArray{10, 20, 210, 170}));
    EXPECT_EQ(all[0]["tiles"].toArray().size(), 4);
    EXPECT_EQ(all[0]["tree"].toArray().size(), 2);
    EXPECT_EQ(all[0]["title"].toString(), "startApplication");
    EXPECT_EQ(all[0]["line"].toInt(), 7);
    EXPECT_FALSE(all[0].contains("point"));

    EXPECT_EQ(all[1]["changed"].toObject().keys(), QStringList{"0"});
    EXPECT_EQ(all[1]["treeChanges"].toArray(), (QJsonArray{1, QJsonObject{{"text", "c"}}}));
    EXPECT_EQ(all[1]["point"].toArray(), (QJsonArray{5, 7}));
    EXPECT_EQ(all[1]["arguments"].toString(), "\"******\"");
    EXPECT_EQ(all[1]["output"].toObject()["faulty-stdout"].toString(), "a line with ******\n");
    // Nobody looks for a verdict that passed.
    EXPECT_EQ(questions, 3);
    EXPECT_EQ(all[2]["type"].toString(), "Pass");
    EXPECT_TRUE(all[3]["failed"].toBool());
    EXPECT_EQ(all[3]["title"].toString(), "it is ******");
    EXPECT_FALSE(all[3].contains("changed"));

    const QList<QJsonObject> ends = callsIn(trace + "/cases.js", "traceCaseEnds");
    ASSERT_EQ(ends.size(), 1);
    EXPECT_EQ(ends[0]["outcome"].toString(), "failed");
    for (const char* const file : {"/case-0001/steps-0001.js", "/cases.js"})
        EXPECT_FALSE(readFile(trace + file).contains("hunter2"));
}

TEST_F(CaseTraceTest, SecretsAreLeftOutOfAllTexts) {
    const QString script = folder.filePath("test.py");
    writeFile(script, "login('hunter2')\n");
    start(TraceMode::On);
    objects = QStringList{QString(496, 'x') + "hunter2", "it's"};
    QByteArray output;
    runCase("login", [&] {
        // Each step's part of what a program writes.
        for (const char* const part : {"hunter2000 hun", "ter", "2 \xe2\x82", "\xac h", "", "e"}) {
            written = part;
            add(ActionEnded{"type", "\"hunter2000\"", 5, false, {script, 1}});
        }
    });
    for (const QJsonObject& step : steps()) {
        EXPECT_EQ(step["arguments"].toString(), "\"******\"");
        output += step["output"].toObject()["faulty-stdout"].toString().toUtf8() + '|';
    }
    EXPECT_EQ(output, "****** ||****** |\u20ac |h|e|");
    EXPECT_EQ(steps()[0]["tree"].toArray()[1].toObject()["text"].toString(), "******");
    for (const char* const file : {"steps-0001.js", "sources.js"}) {
        const QByteArray text = readFile(trace + "/case-0001/" + file);
        EXPECT_TRUE(text.contains("******"));
        EXPECT_FALSE(text.contains("hunt")) << text.constData();
    }
}

TEST_F(CaseTraceTest, EachFileCanBeReadWithoutTheOthers) {
    start(TraceMode::On);
    runCase("long", [this] {
        for (int step = 0; step < stepsInFile; ++step)
            act("waitForObject");
        add(result(TestResult::Log, "no look"));
        act("click");
    });
    EXPECT_EQ(steps().size(), stepsInFile);
    const QList<QJsonObject> second = steps("case-0001", 2);
    ASSERT_EQ(second.size(), 2);
    EXPECT_EQ(second[0]["tiles"].toArray(), steps()[0]["tiles"].toArray());
    EXPECT_EQ(second[0]["native"].toArray(), steps()[0]["native"].toArray());
    EXPECT_EQ(second[0]["tree"].toArray(), steps()[0]["tree"].toArray());
    EXPECT_FALSE(second[1].contains("tiles"));
}

TEST_F(CaseTraceTest, OfFailedCasesOnlyLeavesNothingOfOthers) {
    start(TraceMode::Failed);
    runCase("passes", [this] { act("click"); });
    EXPECT_EQ(tilesIn(trace + "/tiles").size(), 0);
    EXPECT_FALSE(QFile::exists(trace + "/case-0001"));
    runCase("fails", [this] {
        act("click");
        EXPECT_EQ(tilesIn(trace + "/case-0002/tiles").size(), 4);
        add(result(TestResult::Error, "Script Error"));
    });
    EXPECT_EQ(tilesIn(trace + "/tiles").size(), 4);
    EXPECT_FALSE(QFile::exists(trace + "/case-0002/tiles"));
    EXPECT_EQ(steps("case-0002").size(), 2);
    // The page takes a case's name and its outcome by the number: none is given twice.
    EXPECT_EQ(callsIn(trace + "/cases.js", "traceCase")[1]["id"].toString(), "case-0002");
}

TEST_F(CaseTraceTest, ASilentApplicationIsAskedOnce) {
    start(TraceMode::On);
    isThere = false;
    runCase("frozen", [this] {
        add(ActionEnded{"click", {}, 5, true, {}});
        add(ActionEnded{"click", {}, 5, true, {}});
        EXPECT_EQ(questions, 1);
        isThere = true;
        act("click");
    });
    EXPECT_EQ(questions, 2);
    ASSERT_EQ(steps().size(), 3);
    EXPECT_FALSE(steps()[0].contains("tiles"));
    EXPECT_TRUE(steps()[2].contains("tiles"));
}

TEST_F(CaseTraceTest, EndsWhereItCanNotBeWrittenAndTheRunGoesOn) {
    start(TraceMode::On);
    runCase("one", [this] {
        act("click");
        QDir(trace).removeRecursively();
        act("click");
        act("click");
    });
    runCase("two", [this] { act("click"); });
    EXPECT_EQ(report.all<ActionEnded>().size(), 4U);
    EXPECT_FALSE(QFile::exists(trace));
}

}  // namespace
}  // namespace Tamrix
