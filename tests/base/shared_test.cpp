#include "base/shared.h"

#include <gtest/gtest.h>

namespace Tamrix {
namespace {

class Counted : public Shared {
public:
    Counted() { ++s_alive; }
    Counted(const Counted& other) : Shared(other) { ++s_alive; }
    Counted& operator=(const Counted&) = default;
    ~Counted() override { --s_alive; }

    inline static int s_alive = 0;
};

class Derived : public Counted {};
class Other : public Counted {};

TEST(SharedPtr, LastOneDeletes) {
    {
        SharedPtr<Counted> first(new Counted);
        SharedPtr<Counted> second = first;
        EXPECT_EQ(first->referenceCount(), 2);
        // A raw pointer found again joins the same count.
        SharedPtr<Counted> third(first.get());
        EXPECT_EQ(first->referenceCount(), 3);
        first.reset();
        second = nullptr;
        EXPECT_EQ(Counted::s_alive, 1);
        third = SharedPtr<Counted>(new Counted);
        EXPECT_EQ(Counted::s_alive, 1);
    }
    EXPECT_EQ(Counted::s_alive, 0);
}

TEST(SharedPtr, SurvivesAssignmentToItself) {
    SharedPtr<Counted> pointer(new Counted);
    SharedPtr<Counted>& same = pointer;
    pointer = same;
    EXPECT_EQ(pointer->referenceCount(), 1);
    pointer = std::move(same);
    ASSERT_TRUE(pointer);
    EXPECT_EQ(pointer->referenceCount(), 1);
}

TEST(SharedPtr, MovesWithoutCounting) {
    SharedPtr<Counted> from(new Counted);
    SharedPtr<Counted> to = std::move(from);
    EXPECT_EQ(from, nullptr);  // NOLINT(bugprone-use-after-move): what is tested
    EXPECT_EQ(to->referenceCount(), 1);
}

TEST(SharedPtr, ConvertsBetweenBaseAndDerived) {
    const SharedPtr<Derived> derived(new Derived);
    const SharedPtr<Counted> base = derived;
    EXPECT_EQ(base, derived);
    EXPECT_EQ(staticPointerCast<Derived>(base), derived);
    EXPECT_EQ(dynamicPointerCast<Derived>(base), derived);
    EXPECT_EQ(dynamicPointerCast<Other>(base), nullptr);
    EXPECT_EQ(dynamicPointerCast<Other>(SharedPtr<Counted>()), nullptr);
    EXPECT_EQ(derived->referenceCount(), 2);
}

TEST(Shared, CopyHasItsOwnCount) {
    const SharedPtr<Counted> original(new Counted);
    const SharedPtr<Counted> copy(new Counted(*original));
    *copy = *original;
    EXPECT_EQ(original->referenceCount(), 1);
    EXPECT_EQ(copy->referenceCount(), 1);
}

}  // namespace
}  // namespace Tamrix
