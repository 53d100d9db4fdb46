#include "platform/objectmodel/objectmap.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

#include "platform/objectmodel/inspector.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

class ObjectMapTest : public testing::Test {
protected:
    void SetUp() override {
        Inspector::self()->reset();
        map->clear();
    }
    void TearDown() override { map->clear(); }

    bool load(const QByteArray& content) {
        QFile file(path());
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        file.close();
        return Inspector::self()->take(map->load(path()));
    }
    QString path() const { return m_folder.filePath("objectnames.tsv"); }
    QString lastError() const { return Inspector::self()->lastError(); }

    ObjectMap* map = ObjectMap::self();

private:
    QTemporaryDir m_folder;
};

TEST_F(ObjectMapTest, ResolvesReferencesWhereverTheyStand) {
    ASSERT_TRUE(
        load("# names\n\n:Main\t{type='W'}\r\n"
             ":Box\t{window=':Main'}\n"
             ":Save\t{container={in=':Box' text=':Main'} text*=':Main'}\n"));
    EXPECT_EQ(*map->symbolicNames(), (QStringList{":Box", ":Main", ":Save"}));
    // Texts and patterns are no references.
    EXPECT_EQ(map->realName(":Save"),
              "{container={in={window={type='W'}} text=':Main'} text*=':Main'}");
    EXPECT_EQ(map->realName("{window=':Main'}"), "{window={type='W'}}");
    EXPECT_EQ(map->symbolicName("{window=':Main'}"), ":Box");
    EXPECT_EQ(map->symbolicName("{window={type='W'}}"), ":Box");

    EXPECT_EQ(map->symbolicName("{text='OK' type='B'}"), "");
    EXPECT_EQ(map->symbolicName("{text='OK' type='B'}", true), ":OK_B");
    EXPECT_EQ(map->symbolicName("{a='1' text='OK' type='B'}", true), ":OK_B_2");
    EXPECT_EQ(map->realName(":OK_B_2"), "{a='1' text='OK' type='B'}");

    EXPECT_FALSE(map->objectName("{window=':None'}").isValid());
    EXPECT_EQ(lastError(), "The object map has no name ':None'");
    EXPECT_EQ(map->realName("Save"), "");
    EXPECT_EQ(lastError().left(40), "'Save' is neither a symbolic name, such ");
}

TEST_F(ObjectMapTest, FaultsNameFileAndLine) {
    const struct {
        const char* content;
        const char* fault;
    } rows[] = {
        {":A\t{a='1'}\n:B {a='1'}\n", "line 2: there is no tab between symbolic and real name"},
        {"A\t{a='1'}\n", "line 1: the symbolic name 'A' does not start with ':'"},
        {":A\t{a='1'}\n\n:A\t{a='2'}\n", "line 3: the symbolic name ':A' stands in line 1 already"},
        {":%2\t{a='1'}\n:%2\t{a='2'}\n",
         "line 2: the symbolic name ':%2' stands in line 1 already"},
        {":A\t{a=1}\n",
         "line 1: the real name of ':A' is malformed: expected \"'\" or '{' for the value of 'a' "
         "at character 4"},
        {"#\n:A\t{a='\xff'}\n", "line 2: no UTF-8 text"},
        {":A\t{in=':B'}\n:B\t{a='1' b={in=':A'}}\n",
         "line 1: The symbolic name ':A' refers to itself: :A -> :B -> :A"},
        {":A\t{in=':C'}\n", "line 1: The object map has no name ':C', which ':A' refers to"},
    };
    for (const auto& row : rows) {
        EXPECT_FALSE(load(row.content));
        EXPECT_EQ(lastError().section('\n', 0, 0), path() + ", " + row.fault);
        EXPECT_TRUE(map->symbolicNames()->isEmpty());
    }
    EXPECT_FALSE(Inspector::self()->take(map->load("/nowhere")));
    EXPECT_EQ(lastError(), "The object map '/nowhere' can't be read: No such file or directory");

    // Each name doubles the one before: the whole would have 2^16 parts.
    QByteArray doubling = ":N0\t{a='1'}\n";
    for (int number = 1; number < 16; ++number) {
        const QByteArray below = QByteArray::number(number - 1);
        doubling +=
            ":N" + QByteArray::number(number) + "\t{a=':N" + below + "' b=':N" + below + "'}\n";
    }
    EXPECT_FALSE(load(doubling));
    EXPECT_TRUE(lastError().contains("has more than 1000 references"));
}

TEST_F(ObjectMapTest, SerializedFormKeepsEveryText) {
    const QString realName = "{text='tab\t line\n back\\\\ quote\\''}";
    const QString line =
        ObjectMap::escapeForSerialize(":A\tB") + '\t' + ObjectMap::escapeForSerialize(realName);
    QString error;
    const auto names = ObjectMap::parseSerializedMap(line + "\nbroken", &error);
    EXPECT_EQ(names.value(":A\tB").qualifiedName(), realName);
    EXPECT_EQ(names.size(), 1);
    EXPECT_EQ(error, "line 2: there is no tab between symbolic and real name");
}

}  // namespace
}  // namespace Tamrix
