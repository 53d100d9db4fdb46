#include "wire/sharedbytes.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <QDir>
#include <vector>

namespace Tamrix::Wire {
namespace {

bool write(const QString& path, const QByteArray& bytes) {
    return writeSharedBytes(path, reinterpret_cast<const uchar*>(bytes.constData()), bytes.size());
}

QByteArray text(const SharedBytes::Load& load, int size) {
    return load ? QByteArray(reinterpret_cast<const char*>(load.get()), size) : QByteArray();
}

TEST(SharedBytes, GoFromOneToTheOther) {
    SharedBytes memory;
    EXPECT_FALSE(memory.take(1));
    const QString path = memory.path();
    ASSERT_FALSE(path.isEmpty());
    EXPECT_EQ(memory.path(), path);
    EXPECT_TRUE(write(path, "first load"));
    EXPECT_FALSE(memory.take(0));
    EXPECT_FALSE(memory.take(11)) << "so much was not written";
    SharedBytes::Load first = memory.take(10);
    EXPECT_EQ(text(first, 10), "first load");
    EXPECT_FALSE(memory.take(10)) << "nothing was written since";

    // What is held is not written over, and what is not is used again.
    EXPECT_NE(memory.path(), path);
    EXPECT_TRUE(write(memory.path(), "2nd"));
    EXPECT_EQ(text(memory.take(3), 3), "2nd");
    EXPECT_EQ(text(first, 10), "first load");
    first.reset();
    EXPECT_EQ(memory.path(), path);
    const QByteArray large(100000, 'x');
    EXPECT_TRUE(write(path, large));
    EXPECT_EQ(text(memory.take(large.size()), large.size()), large);

    EXPECT_FALSE(write(path + "0", "x"));
    EXPECT_FALSE(write("/nowhere/x", "x"));
}

TEST(SharedBytes, CanNotBeTakenAwayFromTheirReader) {
    SharedBytes memory;
    const QString path = memory.path();
    EXPECT_TRUE(write(path, "load"));
    const SharedBytes::Load load = memory.take(4);
    ASSERT_TRUE(load);
    EXPECT_NE(::truncate(path.toLocal8Bit().constData(), 0), 0);
    EXPECT_EQ(text(load, 4), "load");
}

TEST(SharedBytes, ManyLoadsTakeFewDescriptors) {
    const auto descriptors = [] { return QDir("/proc/self/fd").entryList(QDir::Files).size(); };
    SharedBytes memory;
    std::vector<SharedBytes::Load> loads;
    for (int index = 0; index < 20; ++index) {
        EXPECT_TRUE(write(memory.path(), QByteArray::number(1000 + index)));
        loads.push_back(memory.take(4));
    }
    const int many = descriptors();
    for (int index = 0; index < 20; ++index) {
        EXPECT_EQ(text(loads[static_cast<std::size_t>(index)], 4),
                  QByteArray::number(1000 + index));
        EXPECT_TRUE(write(memory.path(), "more"));
        EXPECT_TRUE(memory.take(4));
    }
    EXPECT_LE(descriptors(), many + 1);
}

}  // namespace
}  // namespace Tamrix::Wire
