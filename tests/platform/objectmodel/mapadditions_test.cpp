// New entries in the file of a plain map.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <QFile>
#include <QTemporaryDir>
#include <thread>

#include "platform/objectmodel/inspector.h"
#include "platform/objectmodel/objectmap.h"
#include "support/files.h"
#include "support/namedobject.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

using namespace Test;

class MapAdditions : public testing::Test {
protected:
    MapAdditions() { Inspector::self()->reset(); }

    void start(const QByteArray& content) {
        ASSERT_TRUE(writeFile(path, content));
        map.clear();
        ASSERT_TRUE(map.load(path));
    }
    /// The new key, or the error.
    QString add(const QString& realName) {
        const Outcome<QString> key = map.add(SharedPtr<Object>(new NamedObject(realName)));
        return key ? *key : key.error().text;
    }

    QTemporaryDir folder;
    QString path = folder.filePath("shared/objectnames.tsv");
    ObjectMap map;
};

TEST_F(MapAdditions, TheFileStaysAsPeopleWroteIt) {
    const struct {
        QByteArray before;
        QByteArray added;
    } rows[] = {
        {"# mine\n\n:B\t{b='1'}\n# between\n:A\t{a='1'}\n", ":OK_B\t{text='OK' type='B'}\n"},
        {":A\t{a='1'}", "\n:OK_B\t{text='OK' type='B'}\n"},
        {"# one\r\n:A\t{a='1'}\r\n", ":OK_B\t{text='OK' type='B'}\r\n"},
        {"\xef\xbb\xbf:A\t{a='1'}\n", ":OK_B\t{text='OK' type='B'}\n"},
        {"", ":OK_B\t{text='OK' type='B'}\n"},
    };
    for (const auto& row : rows) {
        start(row.before);
        EXPECT_EQ(add("{text='OK' type='B'}"), ":OK_B");
        EXPECT_EQ(readFile(path), row.before + row.added);
        // A second time there is nothing to write.
        EXPECT_EQ(add("{type='B' text='OK'}"), ":OK_B");
        EXPECT_EQ(readFile(path), row.before + row.added);
    }
}

TEST_F(MapAdditions, NamesAreNewAndReferToThoseOfTheFile) {
    start(":Main\t{type='W'}\n:OK_B\t{a='2'}\n");
    EXPECT_EQ(map.symbolicName("{type='Other'}", true), ":Other") << "stands in no file";
    EXPECT_EQ(add("{text='OK' type='B' window={type='W'}}"), ":OK_B_2");
    EXPECT_EQ(add("{text='a\tb\nc' type='B' container={type='X' window={type='W'}}}"), ":a b c_B");
    EXPECT_EQ(add("{type='B' window={type='Other'}}"), ":B");
    EXPECT_EQ(readFile(path).split('\n').mid(2).join('\n'),
              ":OK_B_2\t{text='OK' type='B' window=':Main'}\n"
              ":a b c_B\t{container={type='X' window=':Main'} text='a\\tb\\nc' type='B'}\n"
              ":B\t{type='B' window={type='Other'}}\n");
    // What was made beside the file is written as it is called.
    EXPECT_EQ(add("{type='Other'}"), ":Other");
    ObjectMap fresh;
    ASSERT_TRUE(fresh.load(path));
    EXPECT_EQ(fresh.realName(":a b c_B"),
              "{container={type='X' window={type='W'}} text='a\tb\nc' type='B'}");
    EXPECT_EQ(fresh.symbolicName("{type='Other'}"), ":Other");
}

TEST_F(MapAdditions, WhatOthersWroteMeanwhileStays) {
    start(":Main\t{type='W'}\n");
    ASSERT_TRUE(writeFile(path, ":Main\t{type='W'}\n:Theirs\t{text='OK' type='B'}\n"));
    EXPECT_EQ(add("{text='OK' type='B'}"), ":Theirs");
    EXPECT_EQ(add("{text='No' type='B'}"), ":No_B");
    EXPECT_TRUE(readFile(path).contains(":Theirs"));

    // Several at once lose nothing.
    const auto addSome = [this](const QString& text) {
        ObjectMap own;
        own.setPath(path);
        for (int number = 0; number < 20; ++number) {
            EXPECT_TRUE(own.add(SharedPtr<Object>(
                new NamedObject(QString("{text='%1 %2'}").arg(text).arg(number)))));
        }
    };
    std::thread other([&] { addSome("left"); });
    addSome("right");
    other.join();
    ASSERT_TRUE(map.loadIfChanged(path));
    EXPECT_EQ(map.symbolicNames()->size(), 43);
}

TEST_F(MapAdditions, FailuresLeaveTheFileAndTheNamesAlone) {
    EXPECT_EQ(add("{type='B'}"), "There is no object map in use to which a name can be added");
    // A map that is not there yet is made.
    map.setPath(folder.filePath("new/objectnames.tsv"));
    EXPECT_EQ(add("{type='B'}"), ":B");
    EXPECT_EQ(readFile(map.path()), ":B\t{type='B'}\n");

    start(":Main\t{type='W'}\n");
    EXPECT_EQ(add("no name").left(23), "'no name' is neither a ");
    ASSERT_TRUE(writeFile(path, ":Main\t{type='W'}\nnonsense\n"));
    EXPECT_EQ(add("{type='B'}"), path + ", line 2: there is no tab between symbolic and real name");
    EXPECT_EQ(readFile(path), ":Main\t{type='W'}\nnonsense\n");

    // A folder in the place of the file, as nothing else keeps root from writing.
    map.clear();
    map.setPath(folder.path());
    EXPECT_FALSE(map.add(SharedPtr<Object>(new NamedObject("{type='B'}"))));
    EXPECT_EQ(map.symbolicName("{type='B'}"), "");
}

TEST_F(MapAdditions, TheFileKeepsItsRightsAndItsLink) {
    start(":Main\t{type='W'}\n");
    ASSERT_EQ(::chmod(path.toLocal8Bit().constData(), 0640), 0);
    const QString link = folder.filePath("link.tsv");
    ASSERT_TRUE(QFile::link(path, link));
    ASSERT_TRUE(map.load(link));
    EXPECT_EQ(add("{type='B'}"), ":B");
    EXPECT_TRUE(QFileInfo(link).isSymLink());
    EXPECT_TRUE(readFile(path).contains(":B\t"));
    struct stat state = {};
    ASSERT_EQ(::stat(path.toLocal8Bit().constData(), &state), 0);
    EXPECT_EQ(state.st_mode & 07777U, 0640U);
}

}  // namespace
}  // namespace Tamrix
