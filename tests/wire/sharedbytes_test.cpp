#include "wire/sharedbytes.h"

#include <gtest/gtest.h>

namespace Tamrix::Wire {
namespace {

bool write(const QString& path, const QByteArray& bytes) {
    return writeSharedBytes(path, reinterpret_cast<const uchar*>(bytes.constData()), bytes.size());
}

TEST(SharedBytes, GoFromOneToTheOther) {
    SharedBytes memory;
    EXPECT_TRUE(memory.read(1).isEmpty());
    const QString path = memory.path();
    ASSERT_FALSE(path.isEmpty());
    EXPECT_EQ(memory.path(), path);
    EXPECT_TRUE(write(path, "first load"));
    EXPECT_EQ(memory.read(10), "first load");
    EXPECT_TRUE(write(path, "2nd"));
    EXPECT_EQ(memory.read(3), "2nd");
    EXPECT_TRUE(memory.read(11).isEmpty()) << "so much was not written";
    EXPECT_TRUE(memory.read(0).isEmpty());
    EXPECT_FALSE(write(path + "0", "x"));
    EXPECT_FALSE(write("/nowhere/x", "x"));
}

}  // namespace
}  // namespace Tamrix::Wire
