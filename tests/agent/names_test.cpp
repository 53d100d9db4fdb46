// Names that the agent makes find what they were made for.

#include <gtest/gtest.h>

#include <QSet>
#include <QTemporaryDir>
#include <memory>
#include <utility>

#include "platform/objectmodel/objectname.h"
#include "shared/uiabstraction/uielement.h"
#include "support/agentclient.h"
#include "support/printqt.h"
#include "support/qtversions.h"

namespace Tamrix {

namespace {

using UIAbstraction::UIElement;

/// A real name as it travels.
Wire::Query toQuery(const QString& realName) {
    Wire::Query query;
    QMap<QString, PropertyValue> properties;
    QString error;
    EXPECT_TRUE(parseNameByProperties(realName, &properties, &error))
        << realName.toStdString() << ": " << error.toStdString();
    for (auto it = properties.cbegin(); it != properties.cend(); ++it) {
        Wire::Criterion criterion;
        criterion.property = it.key();
        criterion.text = it->text();
        criterion.modifier = it->modifiers();
        if (it->isRealName())
            criterion.object = std::make_shared<Wire::Query>(toQuery(it->text()));
        if (it.key() == "occurrence")
            query.occurrence = it->text().toInt();
        else
            query.criteria.append(criterion);
    }
    return query;
}

QList<UIElement*> snapshot(AgentClient* client) {
    const auto value = client->request<Wire::Value>(Wire::MessageType::Snapshot, Wire::Snapshot());
    return UIElement::elementsFromByteArray(value.value.toByteArray());
}

/// How often a tree that changes between two questions is asked again.
constexpr int rounds = 20;

Wire::ObjectInfo lookUp(AgentClient* client, const QString& name) {
    Wire::LookUp lookUp;
    lookUp.query = toQuery(name);
    return client->request<Wire::LookUpResult>(Wire::MessageType::LookUp, lookUp).object;
}

/// The children of an object, all windows for none.
Wire::ObjectInfoList children(AgentClient* client, Wire::ObjectHandle parent) {
    return parent.handle == 0
               ? client->request<Wire::ObjectInfoList>(Wire::MessageType::TopLevelObjects)
               : client->request<Wire::ObjectInfoList>(Wire::MessageType::Children, parent);
}

/// The object's name must find this very one. A program that still builds its windows may change
/// the tree between the two requests: then the object has another name afterwards, and that one
/// counts. False when the object is gone, and its parent does not have it any more.
bool checkName(AgentClient* client, const Wire::ObjectInfo& object, Wire::ObjectHandle parent) {
    const Wire::ObjectHandle handle{object.handle};
    QString name;
    Wire::ObjectInfo found;
    for (int round = 0; round < rounds; ++round) {
        const QString before = std::exchange(
            name, client->request<Wire::Text>(Wire::MessageType::RealName, handle).text);
        if (client->lastKind() == FailureKind::Gone) {
            for (const Wire::ObjectInfo& child : children(client, parent))
                EXPECT_NE(child.handle, object.handle) << object.className.toStdString();
            return false;
        }
        const bool isSameName = name == before;
        found = name.isEmpty() ? Wire::ObjectInfo() : lookUp(client, name);
        if (found.handle == object.handle)
            return true;
        if (isSameName)
            break;
    }
    ADD_FAILURE() << name.toStdString() << " of a " << object.className.toStdString() << " finds a "
                  << found.className.toStdString();
    return true;
}

/// Checks the name of each object below a parent. Counts the objects.
int checkNames(AgentClient* client, Wire::ObjectHandle parent, QSet<quint64>* seen) {
    int count = 0;
    for (const Wire::ObjectInfo& object : children(client, parent)) {
        if (seen->contains(object.handle))
            continue;
        seen->insert(object.handle);
        if (checkName(client, object, parent))
            count += 1 + checkNames(client, {object.handle}, seen);
    }
    return count;
}

/// The lines of a listing, made from the tree.
void appendLines(const QList<UIElement*>& elements, int depth, QStringList* lines) {
    for (const UIElement* element : elements) {
        const QHash<QString, QString> properties = element->concreteProperties();
        lines->append(QStringList{QString::number(depth), element->concreteType(), element->text(),
                                  element->realName(), properties["visible"], properties["enabled"]}
                          .join('|'));
        appendLines(element->children(), depth + 1, lines);
    }
}

QStringList listing(AgentClient* client) {
    const auto listing = client->request<Wire::ObjectListing>(Wire::MessageType::ListObjects);
    QStringList lines;
    for (const Wire::ListedObject& object : listing.objects) {
        const auto flag = [&](int bit) { return object.state & bit ? "true" : "false"; };
        lines.append(QStringList{QString::number(object.depth), listing.types.at(object.type),
                                 object.text, object.name, flag(Wire::ListedObject::Visible),
                                 flag(Wire::ListedObject::Enabled)}
                         .join('|'));
    }
    return lines;
}

/// Targets for each version of Qt, programs of Debian as they are.
std::vector<QString> programs() {
    std::vector<QString> list = {"/usr/bin/speedcrunch",
                                 "widgets/calculator/calculator",
                                 "widgets/lineedits/lineedits",
                                 "widgets/styles/styles",
                                 "layouts/basiclayouts/basiclayouts",
                                 "itemviews/simpletreemodel/simpletreemodel",
                                 "itemviews/spreadsheet/spreadsheet",
                                 "graphicsview/diagramscene/diagramscene",
                                 "richtext/textedit/textedit",
                                 "mainwindows/mainwindow/mainwindow",
                                 "mainwindows/mdi/mdi",
                                 "gestures/imagegestures/imagegestures",
                                 "dialogs/tabdialog/tabdialog"};
    for (const int version : qtVersions()) {
        for (const char* target : {"widgets_target", "input_target", "parts_target"})
            list.push_back(forQt(target, version));
        if (version == 6)
            list.insert(list.end(), {"/usr/bin/focuswriter", "/usr/lib/qt6/bin/designer"});
    }
    return list;
}

class NamesTest : public testing::TestWithParam<QString> {};

TEST_P(NamesTest, EveryNameOfATreeFindsItsObject) {
    QString program = GetParam();
    if (program.contains('/') && !program.startsWith('/'))
        program.prepend("/usr/lib/x86_64-linux-gnu/qt5/examples/widgets/");
    // Programs that run once for each folder of temporary files would hand over to another test's.
    const QTemporaryDir folder;
    AgentClient client(program, {}, WayIn::Plugin, {{"TMPDIR", folder.path()}});
    ASSERT_TRUE(client.accept()) << client.errorOutput().toStdString();
    QSet<quint64> seen;
    EXPECT_GT(checkNames(&client, {}, &seen), 5);
    // Both ways to see the whole tree show the same, as soon as it stays the same meanwhile.
    QStringList lines;
    QStringList tree;
    QStringList after = listing(&client);
    for (int round = 0; round < rounds && (round == 0 || lines != after); ++round) {
        lines = std::exchange(after, {});
        const QList<UIElement*> elements = snapshot(&client);
        tree.clear();
        appendLines(elements, 0, &tree);
        qDeleteAll(elements);
        after = listing(&client);
    }
    EXPECT_EQ(lines, tree);
}

TEST(TopLevelObjects, ComeInTheSameOrderInEachRun) {
    // Menus that were never opened have no window; Qt keeps them in a set.
    for (int run = 0; run < 2; ++run) {
        AgentClient client(
            "/usr/lib/x86_64-linux-gnu/qt5/examples/widgets/mainwindows/dockwidgets/dockwidgets");
        ASSERT_TRUE(client.accept()) << client.errorOutput().toStdString();
        QStringList titles;
        for (const Wire::ObjectInfo& each :
             client.request<Wire::ObjectInfoList>(Wire::MessageType::TopLevelObjects)) {
            if (each.className == "QMenu")
                titles.append(client.read(each, "title").toString());
        }
        titles.removeAll("");
        EXPECT_EQ(titles, QStringList({"&File", "&Edit", "&View", "&Help"}));
    }
}

INSTANTIATE_TEST_SUITE_P(, NamesTest, testing::ValuesIn(programs()));

using NamesOfOneProgramTest = QtTest;
TAMRIX_FOR_EACH_QT(NamesOfOneProgramTest);

TEST_P(NamesOfOneProgramTest, AreAsShortAsTheyCanBe) {
    AgentClient client(forQt("widgets_target", GetParam()));
    ASSERT_TRUE(client.accept());
    const struct {
        QStringList criteria;
        int occurrence;
        QString name;
    } cases[] = {
        {{"text=Targets"}, 1, "{type='Window'}"},
        {{"text=Off"}, 1, "{text='Off' type='QPushButton'}"},
        {{"name=check"}, 1, "{name='check' type='QCheckBox'}"},
        {{"type=QLineEdit", "buddy=Name:"}, 1, "{buddy='Name:' type='QLineEdit'}"},
        {{"text=Twin"}, 2, "{occurrence='2' text='Twin' type='QPushButton'}"},
        {{"text=Twin", "visible=0"}, 1, "{text='Twin' type='QPushButton' visible='false'}"},
        {{"text=Inside", "container=Group"},
         1,
         "{container={text='Group' type='QGroupBox'} text='Inside' type='QPushButton'}"},
    };
    for (const auto& each : cases) {
        const Wire::ObjectHandle handle{client.find(each.criteria, each.occurrence).handle};
        EXPECT_EQ(client.request<Wire::Text>(Wire::MessageType::RealName, handle).text, each.name);
    }
}

}  // namespace

}  // namespace Tamrix
