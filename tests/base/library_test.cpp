#include "base/library.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <QTemporaryDir>
#include <stdexcept>

#include "support/files.h"

namespace Tamrix {
namespace {

using Test::writeFile;

std::string errorOfInit(Library::Module& module, const std::string& name,
                        const std::string& directory) {
    try {
        module.init("Test", name, directory, RTLD_LOCAL);
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return {};
}

TEST(Library, LocatesPlainNameBeforeNameWithLib) {
    QTemporaryDir folder;
    const std::string directory = folder.path().toStdString();
    EXPECT_EQ(Library::locate("thing", directory), "");

    ASSERT_TRUE(writeFile(folder.filePath("libthing.so")));
    EXPECT_EQ(Library::locate("thing", directory), directory + "/libthing.so");
    EXPECT_EQ(Library::locate("thing", directory + "/"), directory + "/libthing.so");

    ASSERT_TRUE(writeFile(folder.filePath("thing.so")));
    EXPECT_EQ(Library::locate("thing", directory), directory + "/thing.so");

    ASSERT_TRUE(QDir(folder.path()).mkdir("other.so"));
    EXPECT_EQ(Library::locate("other", directory), "") << "a folder is no library";
}

TEST(Library, TellsWhyItCanNotOpen) {
    QTemporaryDir folder;
    const std::string path = folder.filePath("broken.so").toStdString();
    ASSERT_TRUE(writeFile(folder.filePath("broken.so"), "no library"));

    EXPECT_EQ(Library::open(path, 0), nullptr);
    EXPECT_NE(Library::lastErrorMessage().find("broken.so"), std::string::npos);
    EXPECT_EQ(Library::lastErrorMessage(), "") << "reading the message clears it";
}

TEST(LibraryModule, BindsFunctions) {
    Library::Module module;
    int (*answer)(int) = nullptr;
    EXPECT_FALSE(module.resolve("testLibraryAnswer", &answer)) << "nothing is open yet";

    EXPECT_NE(module.init("Test", "testlibrary", TEST_LIBRARIES, RTLD_LOCAL), nullptr);
    ASSERT_TRUE(module.resolve("testLibraryAnswer", &answer));
    EXPECT_EQ(answer(41), 42);
    EXPECT_FALSE(module.resolve("noSuchFunction", &answer));
    EXPECT_EQ(answer, nullptr);
}

TEST(LibraryModule, ThrowsWithNameAndPlace) {
    QTemporaryDir folder;
    const std::string directory = folder.path().toStdString();
    Library::Module module;
    EXPECT_EQ(errorOfInit(module, "missing", directory),
              "Cannot find the Test library in " + directory);

    ASSERT_TRUE(writeFile(folder.filePath("libbroken.so"), "no library"));
    const std::string text = errorOfInit(module, "broken", directory);
    EXPECT_EQ(text.find("Error loading the '" + directory + "/libbroken.so' library: "), 0u)
        << text;
    EXPECT_NE(text.back(), ' ') << "the system's reason stands behind it";
}

}  // namespace
}  // namespace Tamrix
