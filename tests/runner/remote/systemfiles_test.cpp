#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "base/nativebytes.h"
#include "runner/remote/systemoperations.h"
#include "runner/remote/systems.h"
#include "support/files.h"
#include "support/filesizelimit.h"

namespace Tamrix {
namespace {

using namespace Test;

using SystemFiles = SystemTest;
TAMRIX_FOR_ALL_SYSTEMS(SystemFiles);

QByteArray manyBytes(int size) {
    QByteArray bytes(size, Qt::Uninitialized);
    quint32 state = 1;
    for (char& byte : bytes) {
        state = state * 1664525 + 1013904223;
        byte = static_cast<char>(state >> 24);
    }
    return bytes;
}

const QStringList& difficultNames() {
    static const QStringList s_names = {"with blank",
                                        "quote's \" and \\",
                                        "line\nbreak\ttab",
                                        "üñ日本\U0001F600",
                                        "-rf",
                                        "$HOME `id` *",
                                        "~",
                                        "#c;d&e|f",
                                        fromNativeBytes("no \xff utf-8")};
    return s_names;
}

TEST_P(SystemFiles, TransfersKeepBytesRightsAndTimes) {
    const QByteArray bytes = manyBytes(3 * 1024 * 1024 + 17);
    ASSERT_TRUE(writeFile(path("source"), bytes));
    ASSERT_EQ(::chmod(path("source").toLocal8Bit(), 0751), 0);
    const timespec times[2] = {{1000000000, 0}, {1234567890, 0}};
    ASSERT_EQ(::utimensat(AT_FDCWD, path("source").toLocal8Bit(), times, 0), 0);

    EXPECT_EQ(errorOf(system->upload(path("source"), path("there"))), "");
    EXPECT_EQ(errorOf(system->download(path("there"), path("back"))), "");
    for (const char* name : {"there", "back"}) {
        EXPECT_TRUE(readFile(path(name)) == bytes) << name;
        const Outcome<PathFacts> facts = system->facts(path(name));
        ASSERT_TRUE(facts);
        EXPECT_EQ(facts->permissions, 0751U) << name;
        EXPECT_EQ(facts->lastModified.toSecsSinceEpoch(), 1234567890) << name;
        EXPECT_EQ(facts->size, static_cast<quint64>(bytes.size()));
    }
    EXPECT_EQ(names(), (QStringList{"back", "source", "there"}));
}

TEST_P(SystemFiles, FilesReplaceFilesAndKeepTheirRights) {
    ASSERT_TRUE(writeFile(path("new"), "new"));
    for (const char* name : {"there", "back"})
        ASSERT_TRUE(writeFile(path(name), "a longer old text"));
    ASSERT_EQ(::chmod(path("there").toLocal8Bit(), 0600), 0);
    ASSERT_TRUE(QFile::link("there", path("link")));

    EXPECT_EQ(errorOf(system->writeFile(path("link"), "written")), "");
    EXPECT_EQ(readFile(path("there")), "written");
    EXPECT_TRUE(QFileInfo(path("link")).isSymLink());
    EXPECT_EQ(QFile::permissions(path("there")) & 0x77, 0);

    EXPECT_EQ(errorOf(system->upload(path("new"), path("link"))), "");
    EXPECT_EQ(errorOf(system->download(path("link"), path("back"))), "");
    EXPECT_EQ(readFile(path("back")), "new");
    EXPECT_EQ(errorOf(system->writeFile(path("empty"), "")), "");
    EXPECT_TRUE(QFileInfo::exists(path("empty")));
}

TEST_P(SystemFiles, SizesBeyondFourGigabytes) {
    // The files have holes, so that they take no room; the bytes at the end tell.
    constexpr qint64 size = (qint64{4} << 30) + 5;
    QFile file(path("huge"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_TRUE(file.resize(size));
    file.close();
    const Outcome<QVariant> told = pathProperty(*system, path("huge"), "size");
    ASSERT_TRUE(told);
    EXPECT_EQ(told->toLongLong(), size);
}

TEST_P(SystemFiles, NamesOfAllKinds) {
    ASSERT_TRUE(writeFile(path("source"), "x"));
    ASSERT_EQ(errorOf(createPath(*system, path("there"), Recursion::No)), "");
    for (const QString& name : difficultNames()) {
        const QString file = path("there") + '/' + name;
        EXPECT_EQ(errorOf(system->upload(path("source"), file)), "") << name.toStdString();
        EXPECT_EQ(errorOf(copyPath(*system, file, file + "2")), "") << name.toStdString();
        EXPECT_EQ(errorOf(system->rename(file + "2", file + "3")), "") << name.toStdString();
        EXPECT_EQ(errorOf(system->removeFile(file + "3")), "") << name.toStdString();
        EXPECT_EQ(errorOf(createPath(*system, file + "d/e", Recursion::Yes)), "");
        EXPECT_EQ(errorOf(deletePath(*system, file + "d", Recursion::Yes)), "");
    }
    Outcome<QStringList> found = system->entries(path("there"));
    ASSERT_TRUE(found);
    QStringList wanted = difficultNames();
    wanted.sort();
    found->sort();
    EXPECT_EQ(*found, wanted);
}

TEST_P(SystemFiles, LinksAreWhatTheyLeadTo) {
    ASSERT_TRUE(writeFile(path("file"), "abc"));
    ASSERT_TRUE(QDir().mkdir(path("folder")));
    ASSERT_TRUE(writeFile(path("folder/kept"), "x"));
    ASSERT_TRUE(QFile::link("file", path("tofile")));
    ASSERT_TRUE(QFile::link("folder", path("tofolder")));
    ASSERT_TRUE(QFile::link("nowhere", path("dangling")));

    const Outcome<PathFacts> file = system->facts(path("tofile"));
    ASSERT_TRUE(file);
    EXPECT_TRUE(file->isLink && file->kind == PathFacts::Kind::File && file->size == 3);
    const Outcome<PathFacts> dangling = system->facts(path("dangling"));
    ASSERT_TRUE(dangling);
    EXPECT_EQ(dangling->kind, PathFacts::Kind::Link);
    EXPECT_EQ(system->linkTarget(path("dangling")).value_or(""), "nowhere");
    EXPECT_TRUE(*pathExists(*system, path("dangling")));
    EXPECT_EQ(errorOf(system->writeFile(path("dangling"), "x")),
              QString("'%1' is a link that leads nowhere").arg(path("dangling")));

    // What a link leads to stays.
    EXPECT_EQ(errorOf(deletePath(*system, path("tofolder"), Recursion::Yes)), "");
    EXPECT_TRUE(QFileInfo::exists(path("folder/kept")));
    EXPECT_EQ(errorOf(copyPath(*system, path("tofile"), path("copied"))), "");
    EXPECT_TRUE(QFileInfo(path("copied")).isSymLink());
}

TEST_P(SystemFiles, FoldersOfManyEntries) {
    ASSERT_TRUE(QDir().mkdir(path("many")));
    constexpr int count = 10000;
    for (int number = 0; number < count; ++number)
        ASSERT_TRUE(QFile(path("many/file number %1").arg(number)).open(QIODevice::WriteOnly));
    Outcome<QStringList> found = system->entries(path("many"));
    ASSERT_TRUE(found);
    EXPECT_EQ(found->removeDuplicates(), 0);
    EXPECT_EQ(found->size(), count);
    EXPECT_EQ(errorOf(copyPath(*system, path("many"), path("copy"))), "");
    EXPECT_EQ(QDir(path("copy")).count(), static_cast<uint>(count) + 2);
    EXPECT_EQ(errorOf(deletePath(*system, path("many"), Recursion::Yes)), "");
    EXPECT_EQ(names(), QStringList{"copy"});
}

TEST_P(SystemFiles, RefusesWithPathAndReason) {
    ASSERT_TRUE(writeFile(path("file"), "x"));
    ASSERT_TRUE(writeFile(path("full/file"), "x"));
    ASSERT_EQ(::mkfifo(path("pipe").toLocal8Bit(), 0600), 0);
    const QString file = path("file");
    const QString full = path("full");
    const QString none = path("none");
    const QString below = path("none/below");
    const QString pipe = path("pipe");
    struct Row {
        QString error;
        QString wanted;
    };
    const Row rows[] = {
        {errorOf(system->facts(none)), "'%1' does not exist"},
        {errorOf(system->entries(none)), "'%1' does not exist"},
        {errorOf(system->removeFile(none)), "'%1' does not exist"},
        {errorOf(system->removeDirectory(none)), "'%1' does not exist"},
        {errorOf(system->download(none, path("here"))), "'%1' does not exist"},
        {errorOf(system->upload(none, path("here"))), "'%1' does not exist"},
        {errorOf(system->rename(none, path("here"))), "'%1' does not exist"},
        {errorOf(copyPath(*system, none, path("here"))), "'%1' does not exist"},
        {errorOf(deletePath(*system, none, Recursion::Yes)), "'%1' does not exist"},
        {errorOf(system->writeFile(below, "x")), "the folder of '%2' does not exist"},
        {errorOf(system->upload(file, below)), "the folder of '%2' does not exist"},
        {errorOf(system->download(file, below)), "the folder of '%2' does not exist"},
        {errorOf(system->rename(file, below)), "the folder of '%2' does not exist"},
        {errorOf(createPath(*system, below, Recursion::No)), "the folder of '%2' does not exist"},
        {errorOf(createPath(*system, file, Recursion::No)), "'%3' exists already"},
        {errorOf(createPath(*system, file, Recursion::Yes)), "'%3' exists already"},
        {errorOf(system->rename(file, full)), "'%4' exists already"},
        {errorOf(system->rename(full, file)), "'%3' exists already"},
        {errorOf(copyPath(*system, full, file)), "'%3' exists already"},
        {errorOf(deletePath(*system, full, Recursion::No)), "the folder '%4' is not empty"},
        {errorOf(system->removeFile(full)), "'%4' is a folder"},
        {errorOf(system->writeFile(full, "x")), "'%4' is a folder"},
        {errorOf(system->upload(full, path("here"))), "'%4' is a folder"},
        {errorOf(system->download(full, path("here"))), "'%4' is a folder"},
        {errorOf(system->entries(file)), "'%3' is not in a folder, or is none"},
        {errorOf(system->removeDirectory(file)), "'%3' is not in a folder, or is none"},
        {errorOf(system->linkTarget(file)), "'%3' is no link"},
        {errorOf(system->download(pipe, path("here"))), "'%5' is no file"},
        {errorOf(system->upload(pipe, path("here"))), "'%5' is no file"},
        {errorOf(system->writeFile(pipe, "x")), "'%5' is no file"},
        {errorOf(system->facts("")), "the path is empty"},
        {errorOf(system->writeFile(QString("a%1b").arg(QChar(0)), "x")),
         "the path holds a NUL: 'a'"},
        {errorOf(pathProperty(*system, file, "colour")),
         "there is no property 'colour'; there are groupId, isDirectory, isFile, isLink, "
         "lastAccessed, lastModified, linkTarget, ownerId, permissions, size"},
    };
    for (const Row& row : rows) {
        QString wanted = row.wanted;
        const QStringList paths{none, below, file, full, pipe};
        for (int number = 0; number < paths.size(); ++number)
            wanted.replace(QString("%%1").arg(number + 1), paths[number]);
        EXPECT_EQ(row.error, wanted);
    }
    EXPECT_EQ(names(), (QStringList{"file", "full", "pipe"}));
    EXPECT_FALSE(*pathExists(*system, below));
    EXPECT_FALSE(*pathExists(*system, file + "/below"));
}

TEST_P(SystemFiles, NoPlaceHereLeavesNothingHalf) {
    ASSERT_TRUE(writeFile(path("source"), manyBytes(2 * 1024 * 1024)));
    ASSERT_TRUE(writeFile(path("target"), "old"));
    const FileSizeLimit limit(1024 * 1024);
    const QString error = errorOf(system->download(path("source"), path("target")));
    EXPECT_EQ(error, QString("'%1': File too large").arg(path("target")));
    EXPECT_EQ(readFile(path("target")), "old");
    EXPECT_EQ(names(), (QStringList{"source", "target"}));
}

TEST_P(SystemFiles, PropertiesByTheirTypes) {
    ASSERT_TRUE(writeFile(path("file"), "abc"));
    ASSERT_EQ(::chmod(path("file").toLocal8Bit(), 0640), 0);
    const auto property = [&](const QString& name) {
        return pathProperty(*system, path("file"), name).value_or(QVariant());
    };
    EXPECT_EQ(property("isFile"), QVariant(true));
    EXPECT_EQ(property("isDirectory"), QVariant(false));
    EXPECT_EQ(property("permissions"), QVariant("rw-r-----"));
    EXPECT_EQ(property("ownerId"), QVariant(static_cast<int>(::getuid())));
    EXPECT_LT(property("lastModified").toDateTime().secsTo(QDateTime::currentDateTime()), 60);
}

}  // namespace
}  // namespace Tamrix
