#include "shared/uiabstraction/xmlexporter.h"

#include <gtest/gtest.h>

#include <QBuffer>
#include <QFile>
#include <QTemporaryDir>
#include <memory>

#include "shared/uiabstraction/uielement.h"
#include "support/files.h"
#include "support/printqt.h"

namespace Tamrix::UIAbstraction {
namespace {

/// An element of which the document shows no more than it must.
std::unique_ptr<UIElement> makeElement(const char* type) {
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setVersion(12);
    stream << QString::fromLatin1(type).toLower() << QString() << QString::fromLatin1(type);
    QDataStream reading(bytes);
    reading.setVersion(12);
    return std::unique_ptr<UIElement>(UIElement::deserialize(&reading));
}

UIElement* addChild(UIElement* parent, const char* type) {
    UIElement* child = makeElement(type).release();
    parent->addChild(child);
    return child;
}

QString toXml(XmlExporter& exporter) {
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    EXPECT_TRUE(exporter.toXml(&buffer));
    return QString::fromUtf8(buffer.data());
}

/// The names of the elements in the document, nested by brackets: "A(B C)".
QString outline(XmlExporter& exporter) {
    QString result;
    for (const QString& line : toXml(exporter).split('\n')) {
        const QString text = line.trimmed();
        if (text.startsWith("<element "))
            result += text.section('"', 3, 3) + ' ';
        else if (text == "<children>")
            result += "( ";
        else if (text == "</children>")
            result += ") ";
        else if (text == "<children/>")
            result += "() ";
    }
    return result.trimmed();
}

TEST(XmlExporterTest, WritesNoStateWithoutElements) {
    XmlExporter exporter(QList<const UIElement*>{});
    EXPECT_EQ(toXml(exporter),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
              "<ui version=\"1.0\">\n"
              "  <execution/>\n"
              "</ui>\n");
}

TEST(XmlExporterTest, WritesAllOfAnElement) {
    const auto window = makeElement("Window");
    window->setStandardType(StandardType("window"));
    window->setSimplifiedType("Main");
    window->setNameSpace("Qt");
    window->setRealName("{name='W'}");
    window->setSymbolicName(":W");
    window->setSuperTypes({"QWidget", "QObject"});
    window->setWindowNode(true);
    window->setGeometry(ElementGeometry(QRect(1, 2, 30, 40), false));
    window->setText(QString("a<b\x01"));
    window->registerEvent(UIEvent("pressed"));
    window->addUsage(UIEvent("clicked"));
    window->setConcreteProperty("title", "W");
    window->setConcreteProperty("name", "");
    window->setIdentifyingProperty("name", "W");
    addChild(window.get(), "Plain");

    XmlExporter exporter({window.get()});
    EXPECT_EQ(toXml(exporter), R"(<?xml version="1.0" encoding="UTF-8"?>
<ui version="1.0">
  <execution>
    <state>
      <element id="window" type="window" class="Window" simplifiedType="Main" namespace="Qt">
        <realname>{name='W'}</realname>
        <symbolicname>:W</symbolicname>
        <superclass>
          <class>QWidget</class>
          <class>QObject</class>
        </superclass>
        <abstractProperties>
          <visual isTopLevel="1"/>
          <geometry isRelative="0">
            <x>1</x>
            <y>2</y>
            <height>40</height>
            <width>30</width>
          </geometry>
          <text>a&lt;b\x01</text>
        </abstractProperties>
        <coveragedata>
          <coverage name="clicked">1</coverage>
          <coverage name="pressed">0</coverage>
        </coveragedata>
        <properties>
          <property name="name"/>
          <property name="title">
            <string>W</string>
          </property>
        </properties>
        <identifyingProperties>
          <property name="name">
            <string>W</string>
          </property>
        </identifyingProperties>
        <children>
          <element id="plain" class="Plain">
            <superclass/>
            <abstractProperties>
              <visual isTopLevel="0"/>
            </abstractProperties>
          </element>
        </children>
      </element>
    </state>
  </execution>
</ui>
)");
}

TEST(XmlExporterTest, WritesImagesAsPng) {
    const auto element = makeElement("Picture");
    QImage image(2, 3, QImage::Format_RGB32);
    image.fill(Qt::blue);
    element->setImage(image);
    XmlExporter exporter({element.get()});
    const QString text =
        toXml(exporter).section("<image type=\"PNG\">", 1).section("</image>", 0, 0);
    EXPECT_EQ(QImage::fromData(QByteArray::fromBase64(text.toLatin1()), "PNG"), image);
    exporter.setIncludeImages(false);
    EXPECT_FALSE(toXml(exporter).contains("<image"));
}

TEST(XmlExporterTest, LeavesOutWhatIsTransparent) {
    const auto top = makeElement("Top");
    UIElement* middle = addChild(top.get(), "Middle");
    addChild(middle, "One");
    addChild(middle, "Two");
    addChild(top.get(), "Last");
    XmlExporter exporter({top.get()});
    EXPECT_EQ(outline(exporter), "Top ( Middle ( One Two ) Last )");
    middle->setTransparentNode(true);
    EXPECT_EQ(outline(exporter), "Top ( One Two Last )");
    top->setTransparentNode(true);
    EXPECT_EQ(outline(exporter), "One Two Last");
    exporter.setSkipTransparentNodes(false);
    middle->setSubgraphTransparent(true);
    EXPECT_EQ(outline(exporter), "Top ( Middle Last )");

    const auto parent = makeElement("Parent");
    addChild(parent.get(), "Hidden")->setTransparentNode(true);
    XmlExporter second({parent.get()});
    EXPECT_EQ(outline(second), "Parent ()");
}

TEST(XmlExporterTest, TellsWhyItFailed) {
    XmlExporter exporter(UIElement::elementsToByteArray({}));
    EXPECT_TRUE(exporter.errorMessage().isNull());
    QBuffer buffer;
    EXPECT_FALSE(exporter.toXml(&buffer));
    EXPECT_EQ(exporter.errorMessage(), "Device is not open!");
    buffer.open(QIODevice::ReadOnly);
    EXPECT_FALSE(exporter.toXml(&buffer));
    EXPECT_EQ(exporter.errorMessage(), "Device is not writable!");

    QFile full("/dev/full");
    ASSERT_TRUE(full.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    EXPECT_FALSE(exporter.toXml(&full));
    EXPECT_EQ(exporter.errorMessage(), "Failed to write: No space left on device");

    const QTemporaryDir folder;
    const QString missing = folder.filePath("none/a.xml");
    EXPECT_FALSE(exporter.toXml(missing));
    EXPECT_EQ(exporter.errorMessage(),
              "Failed to open file '" + missing + "': No such file or directory");
    EXPECT_TRUE(exporter.toXml(folder.filePath("a.xml")));
    EXPECT_TRUE(Tamrix::Test::readFile(folder.filePath("a.xml")).startsWith("<?xml"));
}

}  // namespace
}  // namespace Tamrix::UIAbstraction
