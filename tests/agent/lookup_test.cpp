// What the agent finds and what it tells of it.

#include <gtest/gtest.h>

#include <QMap>
#include <QRect>

#include "support/agentclient.h"
#include "support/printqt.h"
#include "support/qtversions.h"

namespace Tamrix {

namespace {

class LookUpTest : public QtTest {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_client.accept()) << m_client.errorOutput().toStdString();
    }

    /// Shows the tab with the views.
    void showViews() {
        m_client.invoke(m_client.find({"type=QTabWidget"}), "setCurrentIndex", {1});
    }
    Wire::LookUpResult findItem(const QStringList& view, const QString& text, int row = -1,
                                int column = -1) {
        Wire::FindItem request;
        request.handle = m_client.find(view).handle;
        request.item.text = text;
        request.item.row = row;
        request.item.column = column;
        return m_client.request<Wire::LookUpResult>(Wire::MessageType::FindItem, request);
    }
    QRect bounds(const Wire::ObjectInfo& object) {
        Wire::ObjectHandle request{object.handle};
        return m_client.request<Wire::Value>(Wire::MessageType::GlobalBounds, request)
            .value.toRect();
    }

    AgentClient m_client{forQt("widgets_target", GetParam())};
};

TAMRIX_FOR_EACH_QT(LookUpTest);

TEST_P(LookUpTest, NamesFindWhatTheySay) {
    const struct {
        QStringList criteria;
        QString type;
    } cases[] = {
        {{"text=Off"}, "QPushButton"},
        {{"text=Off", "enabled=0"}, "QPushButton"},
        {{"text=Off", "enabled=True"}, ""},
        {{"name=check"}, "QCheckBox"},
        {{"objectName=check", "checked=false"}, "QCheckBox"},
        {{"text=Check"}, "QCheckBox"},
        {{"text*=?he*"}, "QCheckBox"},
        {{"text~=^Ch"}, "QCheckBox"},
        {{"type=QLineEdit", "buddy=Name:"}, "QLineEdit"},
        {{"text=Inside", "container=Group"}, "QPushButton"},
        {{"text=Twin", "visible=false"}, "QPushButton"},
        {{"type=QMainWindow"}, ""},
        {{"type~=Window$", "text=Targets"}, "Window"},
        {{"type=QTimer"}, ""},
        {{"type=QSpinBox", "maximum=50"}, "QSpinBox"},
        {{"type=QAction", "text=File"}, "QAction"},
        {{"type=QAction", "text=Open..."}, "QAction"},
        {{"type=QTabBarItem", "text=Views"}, "QTabBarItem"},
        {{"text=Off", "window=Targets"}, "QPushButton"},
        {{"text=Off", "window=Other"}, ""},
    };
    for (const auto& each : cases) {
        const Wire::ObjectInfo found = m_client.find(each.criteria);
        EXPECT_TRUE(each.type.isEmpty() ? found.handle == 0 : found.className.endsWith(each.type))
            << each.criteria.join(' ').toStdString() << ": " << found.className.toStdString();
    }
}

TEST_P(LookUpTest, OrderIsThatOfTheScreenAndHiddenOnesComeLast) {
    const Wire::ObjectInfo first = m_client.find({"text=Twin"});
    const Wire::ObjectInfo second = m_client.find({"text=Twin"}, 2);
    ASSERT_NE(second.handle, 0U);
    EXPECT_LT(bounds(first).x(), bounds(second).x());
    EXPECT_EQ(m_client.find({"text=Twin"}, 3).handle, 0U);
    const Wire::ObjectInfo hidden = m_client.find({"text=Twin", "visible=false"});
    EXPECT_NE(hidden.handle, 0U);
    EXPECT_TRUE(bounds(hidden).isNull());
    // With no visible match the hidden one is meant.
    EXPECT_NE(m_client.find({"type=QAction", "text=a.txt"}).handle, 0U);
}

TEST_P(LookUpTest, TheSameObjectHasTheSameHandleUntilItIsGone) {
    const Wire::ObjectInfo list = m_client.find({"type=QListWidget"});
    EXPECT_EQ(m_client.find({"type=QListWidget"}).handle, list.handle);
    const Wire::ObjectInfo item = findItem({"type=QListWidget"}, "one").object;
    EXPECT_EQ(findItem({"type=QListWidget"}, {}, 0, 0).object.handle, item.handle);
    const Wire::ObjectInfo window = m_client.find({"text=Targets"});
    m_client.invoke(window, "moveFirstRow");
    EXPECT_EQ(m_client.read(findItem({"type=QListWidget"}, "one").object, "row"), 2);
    m_client.invoke(window, "insertBeforeFirst");
    const Wire::ObjectInfo two = findItem({"type=QListWidget"}, "two").object;
    EXPECT_EQ(m_client.read(two, "row"), 1);
    EXPECT_EQ(m_client.read(two, "checked"), true);
    m_client.invoke(window, "removeList");
    for (const Wire::ObjectInfo& gone : {list, two}) {
        EXPECT_FALSE(m_client.read(gone, "text").isValid());
        EXPECT_EQ(m_client.lastKind(), FailureKind::Gone);
    }
    EXPECT_EQ(m_client.lastError(), "the QListViewItem does not exist any more");
}

TEST_P(LookUpTest, NearMissesNameWhatDiffers) {
    Wire::LookUp request;
    request.query = makeQuery({"type=QPushButton", "text=off"});
    request.wantNearMisses = true;
    const auto result = m_client.request<Wire::LookUpResult>(Wire::MessageType::LookUp, request);
    ASSERT_FALSE(result.nearMisses.isEmpty());
    EXPECT_LE(result.nearMisses.size(), 3);
    EXPECT_EQ(result.nearMisses[0].object, "QPushButton 'Off'");
    EXPECT_EQ(result.nearMisses[0].handle, m_client.find({"text=Off"}).handle);
    ASSERT_EQ(result.nearMisses[0].differences.size(), 1);
    const NearMiss::Difference& difference = result.nearMisses[0].differences[0];
    EXPECT_EQ(difference.property, "text");
    EXPECT_EQ(difference.wanted, "off");
    EXPECT_EQ(difference.actual, "Off");
    // Near is what is of the type, or shares half of what the name says of the object itself.
    const struct {
        QStringList criteria;
        QString nearest;
    } cases[] = {
        {{"type=QToolButton", "text=Off"}, "QPushButton 'Off'"},
        {{"type=QCheckBox", "text=Off"}, "QPushButton 'Off'"},
        {{"type=QCheckBox", "text=Of"}, "QCheckBox 'Check'"},
        {{"text=Nothing at all"}, ""},
        {{"text=Nothing at all", "window=Targets"}, ""},
        {{"text=Nothing at all", "visible=true", "enabled=true"}, ""},
        {{"text=Off", "window=Other"}, "QPushButton 'Off'"},
    };
    for (const auto& row : cases) {
        request.query = makeQuery(row.criteria);
        const QList<NearMiss> misses =
            m_client.request<Wire::LookUpResult>(Wire::MessageType::LookUp, request).nearMisses;
        EXPECT_EQ(misses.isEmpty() ? QString() : misses.first().object, row.nearest)
            << row.criteria.join(' ').toStdString();
    }
    EXPECT_EQ(m_client.find({"text~=("}).handle, 0U);
    EXPECT_EQ(m_client.lastKind(), FailureKind::BadArgument);
}

TEST_P(LookUpTest, ExpectationsTellWhatAnObjectHasOtherwise) {
    const struct {
        QStringList expected;
        QStringList differences;
    } rows[] = {
        {{"enabled=false", "text~=^O.f$", "type=QPushButton"}, {}},
        {{"enabled=True", "text*=o*", "window=Targets"},
         {"text is Off, wanted o*", "enabled is false, wanted True"}},
        {{"colour=red", "toolTip=x"}, {"colour is (none), wanted red", "toolTip is , wanted x"}},
    };
    const quint64 off = m_client.find({"text=Off"}).handle;
    for (const auto& row : rows) {
        // By name, and the same by handle.
        for (const quint64 handle : {quint64(0), off}) {
            Wire::Expect request;
            request.handle = handle;
            if (handle == 0)
                request.query = makeQuery({"type=QPushButton", "text=Off"});
            request.properties = makeQuery(row.expected);
            const auto result =
                m_client.request<Wire::LookUpResult>(Wire::MessageType::Expect, request);
            EXPECT_EQ(result.object.handle, off);
            QStringList differences;
            EXPECT_EQ(result.nearMisses.isEmpty(), row.differences.isEmpty());
            for (const NearMiss& miss : result.nearMisses) {
                EXPECT_EQ(miss.object, "QPushButton 'Off'");
                EXPECT_EQ(miss.handle, off);
                for (const auto& each : miss.differences)
                    differences.append(QString("%1 is %2, wanted %3")
                                           .arg(each.property,
                                                each.actual.isNull() ? "(none)" : each.actual,
                                                each.wanted));
            }
            EXPECT_EQ(differences, row.differences);
        }
    }
    Wire::Expect missing;
    missing.query = makeQuery({"type=QPushButton", "text=off"});
    missing.properties = makeQuery({"enabled=true"});
    missing.wantNearMisses = true;
    const auto none = m_client.request<Wire::LookUpResult>(Wire::MessageType::Expect, missing);
    EXPECT_EQ(none.object.handle, 0U);
    EXPECT_FALSE(none.nearMisses.isEmpty());
}

TEST_P(LookUpTest, OutlinesTellWhatIsSeen) {
    const auto outline = m_client.request<Wire::ObjectOutline>(Wire::MessageType::OutlineObjects);
    QMap<QString, QRect> places;
    for (const Wire::OutlinedObject& object : outline.objects)
        places.insert(object.text, object.geometry);
    EXPECT_EQ(places.value("Off"), bounds(m_client.find({"text=Off"})));
    ASSERT_TRUE(places.contains("Far"));
    EXPECT_TRUE(places.value("Far").isEmpty()) << "it is scrolled out of sight";
}

TEST_P(LookUpTest, ItemsAreFoundByTextAndPlace) {
    showViews();
    const struct {
        QStringList view;
        QString text;
        int row;
        int column;
        QString type;
        QString found;
    } cases[] = {
        {{"type=QListWidget"}, "two", -1, -1, "QListViewItem", "two"},
        {{"type=QTreeWidget"}, "top", -1, -1, "QTreeViewItem", "top"},
        {{"type=QTreeWidget"}, "top.v1\\.0", -1, -1, "QTreeViewItem", "v1.0"},
        {{"type=QTableWidget"}, {}, 0, 1, "QTableViewItem", "cell"},
        {{"type=QTableWidget"}, "deep", -1, -1, "QTableViewItem", "deep"},
        {{"type=QComboBox"}, "green", -1, -1, "QComboBoxItem", "green"},
        {{"type=QTabWidget"}, "Views", -1, -1, "QTabBarItem", "Views"},
        {{"type=QMenuBar"}, "File", -1, -1, "QAction", "File"},
        {{"type=QMenuBar"}, "File.Recent.a\\.txt", -1, -1, "QAction", "a.txt"},
        {{"name=columns"}, "second", -1, -1, "QHeaderViewItem", "second"},
    };
    for (const auto& each : cases) {
        const Wire::LookUpResult result = findItem(each.view, each.text, each.row, each.column);
        EXPECT_EQ(result.object.className, each.type) << each.text.toStdString();
        EXPECT_EQ(m_client.read(result.object, "text"), each.found);
    }
    const Wire::LookUpResult none = findItem({"type=QListWidget"}, "four");
    EXPECT_EQ(none.object.handle, 0U);
    EXPECT_EQ(none.obstacle, "QListWidget has no item 'four'");
    // Items are objects of a look-up too, those far down a long model are not.
    EXPECT_NE(m_client.find({"type=QTableViewItem", "text=cell"}).handle, 0U);
    EXPECT_EQ(m_client.find({"type=QTableViewItem", "text=deep"}).handle, 0U);
}

TEST_P(LookUpTest, GraphicsItemsAreSeen) {
    showViews();
    for (const char* type :
         {"QGraphicsRectItem", "QGraphicsSimpleTextItem", "QGraphicsProxyWidget"})
        EXPECT_NE(m_client.find({QString("type=") + type}).handle, 0U) << type;
    const Wire::ObjectInfo view = m_client.find({"type=QGraphicsView"});
    const Wire::ObjectInfo embedded = m_client.find({"type=QPushButton", "text=embedded"});
    EXPECT_TRUE(bounds(view).contains(bounds(embedded)));
    EXPECT_TRUE(bounds(view).contains(bounds(m_client.find({"text=drawn"}))));
}

}  // namespace

}  // namespace Tamrix
