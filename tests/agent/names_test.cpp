// Names that the agent makes find what they were made for.

#include <gtest/gtest.h>

#include <QSet>
#include <QTemporaryDir>
#include <memory>

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

/// Looks the name of each object up, which must find this very one. Counts the objects.
int checkNames(AgentClient* client, const Wire::ObjectInfoList& objects, QSet<quint64>* seen) {
    int count = 0;
    for (const Wire::ObjectInfo& object : objects) {
        if (seen->contains(object.handle))
            continue;
        seen->insert(object.handle);
        ++count;
        const Wire::ObjectHandle handle{object.handle};
        const QString name = client->request<Wire::Text>(Wire::MessageType::RealName, handle).text;
        EXPECT_FALSE(name.isEmpty()) << object.className.toStdString();
        Wire::LookUp lookUp;
        lookUp.query = toQuery(name);
        const Wire::ObjectInfo found =
            client->request<Wire::LookUpResult>(Wire::MessageType::LookUp, lookUp).object;
        EXPECT_EQ(found.handle, object.handle)
            << name.toStdString() << " of a " << object.className.toStdString() << " finds a "
            << found.className.toStdString();
        count += checkNames(
            client, client->request<Wire::ObjectInfoList>(Wire::MessageType::Children, handle),
            seen);
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
    EXPECT_GT(
        checkNames(&client,
                   client.request<Wire::ObjectInfoList>(Wire::MessageType::TopLevelObjects), &seen),
        5);
    const QList<UIElement*> elements = snapshot(&client);
    QStringList lines;
    appendLines(elements, 0, &lines);
    EXPECT_EQ(listing(&client), lines);
    qDeleteAll(elements);
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
