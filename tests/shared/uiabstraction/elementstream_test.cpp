#include <gtest/gtest.h>

#include <QBuffer>
#include <QDataStream>
#include <QtEndian>
#include <memory>

#include "shared/uiabstraction/elementreader.h"
#include "shared/uiabstraction/uielement.h"
#include "support/printqt.h"
#include "support/warningrecorder.h"

namespace Tamrix::UIAbstraction {
namespace {

/// The elements of a stream, deleted at the end.
class Elements {
public:
    explicit Elements(const QByteArray& bytes) : m_list(UIElement::elementsFromByteArray(bytes)) {}
    ~Elements() { qDeleteAll(m_list); }
    Elements(const Elements&) = delete;
    Elements& operator=(const Elements&) = delete;

    int count() const { return m_list.size(); }
    const UIElement* operator[](int index) const { return m_list.at(index); }

private:
    QList<UIElement*> m_list;
};

QImage redImage() {
    QImage image(3, 2, QImage::Format_RGB32);
    image.fill(Qt::red);
    return image;
}

/// A window with every field set and a button in it.
std::unique_ptr<UIElement> makeWindow() {
    auto window = std::make_unique<UIElement>(
        QStringLiteral("QMainWindow"), StandardType(QStringLiteral("window")), QStringLiteral("W"));
    window->setSimplifiedType(QStringLiteral("Main"));
    window->setNameSpace(QStringLiteral("Qt"));
    window->setSuperTypes({QStringLiteral("QWidget"), QStringLiteral("QObject")});
    window->setTransparentNode(true);
    window->setSubgraphTransparent(true);
    window->setWindowNode(true);
    window->setGeometry(ElementGeometry(QRect(-5, 6, 70, 80), true));
    window->setImage(redImage());
    window->setRealName(QStringLiteral("{name='W'}"));
    window->setSymbolicName(QStringLiteral(":W"));
    window->setConcreteProperty(QStringLiteral("title"), QStringLiteral("W"));
    window->setIdentifyingProperty(QStringLiteral("name"), QString());
    window->setUsage(UIEvent(QStringLiteral("clicked")), 7);
    window->addChild(new UIElement(QStringLiteral("QPushButton"), StandardType(), QString()));
    return window;
}

QByteArray bytesOfWindow() {
    const Tamrix::Test::WarningRecorder recorder;
    const auto window = makeWindow();
    return UIElement::elementsToByteArray({window.get()});
}

TEST(ElementStreamTest, RestoresATree) {
    const Tamrix::Test::WarningRecorder recorder;
    const auto window = makeWindow();
    const UIElement second;
    const Elements read(UIElement::elementsToByteArray({window.get(), &second}));
    ASSERT_EQ(read.count(), 2);
    EXPECT_EQ(read[1]->id(), second.id());

    const UIElement* copy = read[0];
    EXPECT_TRUE(copy->isSimilarTo(window.get(), true));
    EXPECT_EQ(copy->id(), window->id());
    EXPECT_EQ(copy->children().first()->id(), window->children().first()->id());
    EXPECT_EQ(copy->children().first()->parentElement(), copy);
    EXPECT_EQ(copy->superTypes(), window->superTypes());
    EXPECT_EQ(copy->image(), window->image());
    EXPECT_EQ(copy->realName(), window->realName());
    EXPECT_EQ(copy->symbolicName(), window->symbolicName());
    EXPECT_EQ(copy->concreteProperties(), window->concreteProperties());
    EXPECT_EQ(copy->identifyingProperties(), window->identifyingProperties());
    EXPECT_EQ(copy->usageMap(), window->usageMap());
}

TEST(ElementStreamTest, ReadsTheDocumentedForm) {
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setVersion(12);
    const QHash<QString, QString> properties{{"a", "b"}};
    stream << 1 << QString("id") << QString("button") << QString("C") << QString() << QString("")
           << QStringList{"S"} << true << false << true << QString("text") << QRect(1, 2, 3, 4)
           << true << redImage() << QString("real") << QString("symbolic") << properties
           << QHash<QString, QString>() << 1 << QString("clicked") << 3 << 0;
    const Elements read(bytes);
    ASSERT_EQ(read.count(), 1);
    EXPECT_EQ(read[0]->id(), "id");
    EXPECT_EQ(read[0]->standardType().toString(), "button");
    EXPECT_TRUE(read[0]->simplifiedType().isNull());
    EXPECT_FALSE(read[0]->nameSpace().isNull());
    EXPECT_TRUE(read[0]->isTransparentNode());
    EXPECT_FALSE(read[0]->isSubgraphTransparent());
    EXPECT_TRUE(read[0]->isWindowNode());
    EXPECT_EQ(read[0]->geometry(), ElementGeometry(QRect(1, 2, 3, 4), true));
    EXPECT_EQ(read[0]->image(), redImage());
    EXPECT_EQ(read[0]->symbolicName(), "symbolic");
    EXPECT_EQ(read[0]->concreteProperties(), properties);
    EXPECT_EQ(read[0]->usage(UIEvent("clicked")), 3);
    EXPECT_EQ(UIElement::elementsToByteArray({read[0]}), bytes);
}

TEST(ElementStreamTest, EndsWithDefaultsWhereverTheStreamEnds) {
    const QByteArray bytes = bytesOfWindow();
    for (int size = 0; size < bytes.size(); ++size) {
        const Elements read(bytes.left(size));
        ASSERT_LE(read.count(), 1);
        ASSERT_EQ(read.count(), size > 4 ? 1 : 0) << size;
    }
    const Elements cut(bytes.left(4 + 4 + 2 * 38 + 2));
    EXPECT_FALSE(cut[0]->standardType().isKnown());
    EXPECT_EQ(cut[0]->concreteType(), "unknown");
    EXPECT_EQ(cut[0]->id().size(), 38);
}

/// One element up to its image, then what is given.
QByteArray elementWithImage(const QByteArray& image) {
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setVersion(12);
    stream << 1 << QString("id") << QString() << QString("C") << QString() << QString()
           << QStringList() << false << false << false << QString() << QRect() << false << 1;
    bytes += image;
    QByteArray rest;
    QDataStream restStream(&rest, QIODevice::WriteOnly);
    restStream << QString("real") << QString() << 0 << 0 << 0 << 0;
    return bytes + rest;
}

TEST(ElementStreamTest, DoesNotDecodeWhatAnImageOnlyClaims) {
    const Tamrix::Test::WarningRecorder recorder;
    QByteArray png;
    QBuffer buffer(&png);
    buffer.open(QIODevice::WriteOnly);
    ASSERT_TRUE(redImage().save(&buffer, "PNG"));
    const auto withSize = [&png](quint32 width, quint32 height) {
        QByteArray changed = png;
        qToBigEndian(width, changed.data() + 16);
        qToBigEndian(height, changed.data() + 20);
        return changed;
    };
    struct Case {
        const char* what;
        QByteArray image;
        bool isImage;
        bool goesOn;
    };
    const Case cases[] = {
        {"as it is", png, true, true},
        {"gigabytes", withSize(100'000, 100'000), false, true},
        {"beyond int", withSize(0xffffffff, 0xffffffff), false, true},
        {"no pixels", withSize(0, 5), false, true},
        {"no PNG", QByteArray(100, 'x'), false, false},
        {"endless", png.left(png.size() - 12), false, false},
    };
    for (const Case& test : cases) {
        const Elements read(elementWithImage(test.image));
        ASSERT_EQ(read.count(), 1) << test.what;
        EXPECT_EQ(read[0]->isImageSet(), test.isImage) << test.what;
        EXPECT_EQ(read[0]->realName() == "real", test.goesOn) << test.what;
    }
}

TEST(ElementStreamTest, BelievesNoCountOrLength) {
    // Damaged images are told as warnings.
    const Tamrix::Test::WarningRecorder recorder;
    const QByteArray element = bytesOfWindow().mid(4);
    const QByteArray huge("\x7f\xff\xff\xff", 4);
    const QByteArray negative("\xff\xff\xff\xfe", 4);
    EXPECT_EQ(Elements(huge).count(), 0);
    EXPECT_EQ(Elements(huge + element).count(), 1);
    EXPECT_EQ(Elements(negative + element).count(), 0);
    EXPECT_EQ(Elements(QByteArray("\0\0\0\1", 4) + negative).count(), 1);

    // Every four bytes of the stream become a count or length that can't be true.
    const QByteArray bytes = bytesOfWindow();
    for (int at = 4; at + 4 <= bytes.size(); ++at) {
        for (const QByteArray& count : {huge, negative})
            EXPECT_LE(Elements(QByteArray(bytes).replace(at, 4, count)).count(), 1);
    }
}

TEST(ElementStreamTest, LimitsDepth) {
    auto top = std::make_unique<UIElement>();
    UIElement* last = top.get();
    for (int depth = 1; depth < ElementReader::maxDepth + 10; ++depth) {
        auto* child = new UIElement;
        last->addChild(child);
        last = child;
    }
    const Elements read(UIElement::elementsToByteArray({top.get()}));
    int depth = 0;
    for (const UIElement* element = read[0]; element;
         element = element->children().value(0, nullptr))
        ++depth;
    EXPECT_EQ(depth, ElementReader::maxDepth);
}

TEST(ElementStreamTest, LeavesOutGeometryThatOverflows) {
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::ReadWrite);
    stream << qint32(-2'000'000'000) << 0 << qint32(2'000'000'000) << 10 << true;
    stream.device()->seek(0);
    ElementGeometry geometry(QRect(1, 2, 3, 4), true);
    stream >> geometry;
    EXPECT_EQ(geometry, ElementGeometry());
    EXPECT_EQ(stream.status(), QDataStream::Ok);
}

}  // namespace
}  // namespace Tamrix::UIAbstraction
