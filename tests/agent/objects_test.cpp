// Properties, classes and methods of objects.

#include <gtest/gtest.h>

#include "support/agentclient.h"
#include "support/printqt.h"
#include "support/qtversions.h"

namespace Tamrix {

namespace {

class ObjectsTest : public QtTest {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_client.accept()) << m_client.errorOutput().toStdString();
        m_window = m_client.find({"text=Targets"});
    }

    bool write(const QStringList& criteria, const QString& name, const QVariant& value) {
        return m_client.tell(Wire::MessageType::WriteProperty,
                             Wire::PropertyAccess{m_client.find(criteria).handle, name, value});
    }
    Wire::ClassInfo describe(const QString& name) {
        return m_client.request<Wire::ClassInfo>(Wire::MessageType::DescribeClass,
                                                 Wire::Text{name});
    }

    AgentClient m_client{forQt("widgets_target", GetParam())};
    Wire::ObjectInfo m_window;
};

TAMRIX_FOR_EACH_QT(ObjectsTest);

TEST_P(ObjectsTest, PropertiesAreReadAsTestersKnowThem) {
    const Wire::ObjectInfo box = m_client.find({"name=check"});
    EXPECT_EQ(m_client.read(box, "text"), "Check");
    EXPECT_EQ(m_client.read(box, "type"), "QCheckBox");
    EXPECT_EQ(m_client.read(box, "checked"), false);
    EXPECT_EQ(m_client.read(box, "window").value<Wire::ObjectInfo>().handle, m_window.handle);
    EXPECT_EQ(m_client.read(m_client.find({"type=QComboBox"}), "currentText"), "red");
    EXPECT_FALSE(m_client.read(box, "nonsense").isValid());
    EXPECT_EQ(m_client.lastKind(), FailureKind::Refused);
    EXPECT_EQ(m_client.lastError(), "QCheckBox 'Check' has no property 'nonsense'");
    const QVariantMap all =
        m_client
            .request<Wire::Value>(Wire::MessageType::ReadProperties, Wire::ObjectHandle{box.handle})
            .value.toMap();
    for (const char* name : {"type", "text", "visible", "x", "width", "checked", "toolTip"})
        EXPECT_TRUE(all.contains(name)) << name;
}

TEST_P(ObjectsTest, PropertiesAreWrittenOrRefused) {
    EXPECT_TRUE(write({"type=QSpinBox"}, "value", "7"));
    EXPECT_EQ(m_client.read(m_client.find({"type=QSpinBox"}), "value"), 7);
    EXPECT_TRUE(write({"buddy=Name:"}, "text", "new"));
    EXPECT_EQ(m_client.read(m_client.find({"buddy=Name:"}), "text"), "new");
    EXPECT_TRUE(write({"type=QGroupBox"}, "alignment", "AlignHCenter"));

    EXPECT_FALSE(write({"type=QSpinBox"}, "value", "many"));
    EXPECT_EQ(m_client.lastKind(), FailureKind::BadArgument);
    EXPECT_TRUE(m_client.lastError().contains("is of type int and can't be 'many'"));
    EXPECT_FALSE(write({"type=QSpinBox"}, "visibleRegion", 1));
    EXPECT_EQ(m_client.lastKind(), FailureKind::Refused);
    EXPECT_FALSE(write({"type=QSpinBox"}, "type", "x"));
    EXPECT_EQ(m_client.lastKind(), FailureKind::Refused);
    EXPECT_FALSE(write({"type=QListViewItem"}, "text", "x"));
    EXPECT_EQ(m_client.lastKind(), FailureKind::Refused);
}

TEST_P(ObjectsTest, MethodsAreCalledByTheTypesOfTheirArguments) {
    const struct {
        QVariantList arguments;
        QVariant sum;
    } overloads[] = {
        {{1, 2}, 3},
        {{"a", "b"}, "ab"},
        {{2.0, 3}, 5},
        {{true, 1}, 2},
        {{1, "b"}, "1b"},
        // No number is cut for an overload: it is better taken as a text.
        {{2.5, 1}, "2.51"},
    };
    for (const auto& each : overloads)
        EXPECT_EQ(m_client.invoke(m_window, "add", each.arguments), each.sum);
    // Types that are registered when they are asked for, and one that can't be.
    EXPECT_EQ(m_client.invoke(m_window, "spread", {"Wide", 2}), "widewide");
    EXPECT_EQ(m_client.invoke(m_window, "spread", {0, 1}), "narrow");
    const QVariant same = m_client.invoke(m_window, "echo", {QVariant::fromValue(m_window)});
    EXPECT_EQ(same.value<Wire::ObjectInfo>().handle, m_window.handle);

    const struct {
        QString method;
        QVariantList arguments;
        FailureKind kind;
        QString text;
    } cases[] = {
        {"subtract", {}, FailureKind::Refused, "has no method 'subtract'"},
        {"add", {1}, FailureKind::BadArgument, "add(int,int), add(QString,QString)"},
        {"add", {1, QVariantList{}}, FailureKind::BadArgument, "argument 2 of add("},
        {"echo", {"text"}, FailureKind::BadArgument, "argument 1 of echo(QObject*)"},
        {"weigh", {1, 2}, FailureKind::BadArgument, "argument 2 of weigh(int,Window::Odd)"},
        {"fail", {}, FailureKind::Failed, "exception"},
    };
    for (const auto& each : cases) {
        EXPECT_FALSE(m_client.invoke(m_window, each.method, each.arguments).isValid());
        EXPECT_EQ(m_client.lastKind(), each.kind) << each.method.toStdString();
        EXPECT_TRUE(m_client.lastError().contains(each.text)) << m_client.lastError().toStdString();
    }
}

TEST_P(ObjectsTest, ValuesAreNeverCutForAType) {
    const struct {
        QString method;
        QVariant value;
        /// Null where it is refused.
        QString shown;
    } cases[] = {
        {"showFloat", 0.1, "0.1"},        {"showFloat", 1e300, {}},
        {"showShort", "7", "7"},          {"showShort", 7.0, "7"},
        {"showShort", 1.5, {}},           {"showShort", "70000", {}},
        {"showCharacter", "ä", "ä"},      {"showCharacter", "ab", {}},
        {"showKeys", "Ctrl+A", "Ctrl+A"}, {"showKeys", "Nonsense+A", {}},
    };
    for (const auto& each : cases)
        EXPECT_EQ(m_client.invoke(m_window, each.method, {each.value}).toString(), each.shown)
            << each.method.toStdString() << ' ' << m_client.lastError().toStdString();
    EXPECT_FALSE(write({"type=QGroupBox"}, "alignment", 1.5));
    EXPECT_TRUE(m_client.lastError().contains("can't be 1.5"));
    EXPECT_FALSE(m_client.read(m_window, "palette").isValid());
    EXPECT_TRUE(m_client.lastError().contains("is of type QPalette, whose values can't be"));
}

TEST_P(ObjectsTest, AMethodThatOpensADialogIsAnsweredWhileItRuns) {
    EXPECT_FALSE(m_client.invoke(m_window, "openDialog").isValid());
    EXPECT_EQ(m_client.lastError(), "");
    const Wire::ObjectInfo button = m_client.find({"text=Close it"});
    ASSERT_NE(button.handle, 0U);
    m_client.invoke(button, "click");
    EXPECT_EQ(m_client.find({"text=Close it"}).handle, 0U);
}

TEST_P(ObjectsTest, ClassesAreDescribed) {
    const Wire::ClassInfo box = describe("QCheckBox");
    EXPECT_EQ(box.superClasses, (QStringList{"QAbstractButton", "QWidget", "QObject"}));
    const auto has = [](const auto& list, const QString& name) {
        return std::any_of(list.begin(), list.end(),
                           [&name](const auto& each) { return each.name == name; });
    };
    EXPECT_TRUE(has(box.properties, "checked"));
    EXPECT_TRUE(has(box.properties, "text"));
    EXPECT_TRUE(has(box.methods, "click"));
    EXPECT_EQ(describe("QListViewItem").superClasses, QStringList{"QModelItem"});
    EXPECT_TRUE(has(describe("Global").methods, "click"));
    EXPECT_EQ(describe("QNothing").name, "");
    EXPECT_EQ(describe("QObject").superClasses, QStringList());
}

TEST_P(ObjectsTest, ViewsTellTheirCells) {
    const auto cells = [this](const QStringList& criteria, const QVariantList& range) {
        return m_client
            .request<Wire::Value>(
                Wire::MessageType::NativeRequest,
                Wire::NativeRequest{"viewCells",
                                    QVariantList{m_client.find(criteria).handle} + range})
            .value.toMap();
    };
    const QVariantMap list = cells({"type=QListWidget"}, {});
    EXPECT_EQ(list["texts"].toStringList(), (QStringList{"one", "two", "three"}));
    EXPECT_EQ(list["rowCount"], 3);
    EXPECT_EQ(list["columnCount"], 1);
    EXPECT_EQ(list["backgrounds"].toByteArray(),
              QByteArray(8, 0) + QByteArray("\xff\xff\xff\0", 4));

    // Also those that are far from being shown.
    const QVariantMap table = cells({"type=QTableWidget"}, {1899, 0, 2, -1});
    EXPECT_EQ(table["rowCount"], 2000);
    EXPECT_EQ(table["columns"], 2);
    EXPECT_EQ(table["texts"].toStringList(), (QStringList{"", "", "deep", ""}));
    // A range that is not there, wholly or in part.
    EXPECT_EQ(cells({"type=QTableWidget"}, {1999, 1, 5, 5})["texts"].toStringList().size(), 1);
    EXPECT_EQ(cells({"type=QTableWidget"}, {5000, 9, -1, -1})["texts"].toStringList().size(), 0);
    EXPECT_EQ(cells({"type=QTreeWidget"}, {})["texts"].toStringList(), QStringList{"top"});

    EXPECT_EQ(cells({"type=QSpinBox"}, {}), QVariantMap());
    EXPECT_EQ(m_client.lastKind(), FailureKind::Refused);
    EXPECT_EQ(m_client.lastError(), "QSpinBox '0' has no cells");
}

}  // namespace

}  // namespace Tamrix
