#include "runner/names/namecheck.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "runner/names/unusednames.h"
#include "support/files.h"
#include "support/inmemorymodel.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

using namespace Test;

/// A model that also answers what names match.
class AnsweringModel : public InMemoryModel {
public:
    Outcome<NameMatches> matchesOf(const ObjectName& name) override {
        NameMatches matches;
        ObjectName each = name;
        const auto lookAt = [&](int number) {
            each.setProperty("occurrence", QString::number(number));
            return findObject(each);
        };
        while (lookAt(matches.count + 1))
            ++matches.count;
        return matches;
    }
    Outcome<QList<CheckedName>> namesOf(const SharedPtr<Object>& object) override {
        return QList<CheckedName>{{"{name='" + object->objectName() + "'}", 1}};
    }
    Outcome<QList<NearMiss>> nearMissesOf(const ObjectName& name) override {
        if (name.qualifiedName().contains("far"))
            return QList<NearMiss>();
        return QList<NearMiss>{{"Button 'ok'", 3, {{"name", "no", "ok"}}}};
    }
};

TEST(NameCheck, TellsWhatNamesFind) {
    const QTemporaryDir folder;
    const QString path = folder.filePath("names.tsv");
    ASSERT_TRUE(writeFile(path,
                          ":main\t{type='Window' name='main'}\n"
                          ":ok\t{name='ok'}\n"
                          ":ok_again\t{window=':main' name='ok'}\n"
                          ":buttons\t{type='Button'}\n"
                          ":second\t{type='Button' occurrence='2'}\n"
                          ":third\t{type='Button' occurrence='3'}\n"
                          ":far\t{name='far'}\n"));
    AnsweringModel model;
    const SharedPtr<InMemoryObject> main = model.addObject("Window", "main", nullptr);
    model.addObject("Button", "ok", main);
    model.addObject("Button", "cancel", main);
    ObjectMap map;
    ASSERT_TRUE(map.load(path));
    const Outcome<NameCheck> check = checkNames(model, map);
    ASSERT_TRUE(check);
    EXPECT_EQ(check->findings.join('\n'),
              ":buttons  finds 2 objects; the first is meant\n"
              ":far  finds nothing\n"
              ":main  has a shorter form: {name='main'}\n"
              ":ok_again  finds the same object as :ok\n"
              ":ok_again  has a shorter form: {name='ok'}\n"
              ":second  has a shorter form: {name='cancel'}\n"
              ":third  finds nothing. Nearest: Button 'ok': name is 'ok', wanted 'no'");
    EXPECT_EQ(check->names, 7);
    EXPECT_EQ(check->unique, 4);
    EXPECT_EQ(check->hints, 4);
    EXPECT_FALSE(check->isGood());
    model.close("The application has ended");
    EXPECT_TRUE(checkNames(model, map)) << "answers in memory";
}

TEST(UnusedNames, AreMentionedNowhere) {
    const QTemporaryDir folder;
    const auto write = [&](const char* name, const QByteArray& content) {
        ASSERT_TRUE(writeFile(folder.filePath(name), content));
    };
    write("shared/objectnames.tsv",
          ":main\t{type='W'}\n:save\t{in=':main'}\n:save it\t{a='1'}\n:open\t{a='2'}\n"
          ":dialog\t{a='3'}\n:close\t{in=':dialog'}\n:point\t{a='4'}\n");
    write("case/test.py", "click(':save')\nclick(':save its')\nclick(':opened')\n");
    write("case/data.bin", QByteArray(":open\0", 6));
    write("shared/verificationPoints/point", "{\"object\": \":point\"}");
    write(".git/objects", ":open");
    ObjectMap map;
    ASSERT_TRUE(map.load(folder.filePath("shared/objectnames.tsv")));
    EXPECT_EQ(*unusedNames(folder.path(), map),
              (QStringList{":close", ":dialog", ":open", ":save it"}));
    write("case/test.rb", "click(':save it')\nclick(':close', ':open')\n");
    EXPECT_EQ(*unusedNames(folder.path(), map), QStringList());
}

}  // namespace
}  // namespace Tamrix
