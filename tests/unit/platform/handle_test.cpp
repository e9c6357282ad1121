#include "platform/handle.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <type_traits>
#include <utility>
#include <vector>

#include "platform/https.h"
#include "platform/programs.h"
#include "platform/streams.h"

namespace vorthmere::update {
namespace {

/// Handles that are numbers; 0 means none.
struct NumberTraits {
    using Type = int;
    static inline std::vector<int> closed;

    static Type none() noexcept {
        return 0;
    }
    static void close(Type handle) noexcept {
        closed.push_back(handle);
    }
};

using NumberHandle = UniqueHandle<NumberTraits>;
using Closed = std::vector<int>;

class UniqueHandleTest : public ::testing::Test {
protected:
    UniqueHandleTest() {
        NumberTraits::closed.clear();
    }
};

static_assert(!std::is_copy_constructible_v<NumberHandle> && !std::is_copy_assignable_v<NumberHandle>);

TEST_F(UniqueHandleTest, ClosesItsHandleOnceAtTheEndOfItsLife) {
    {
        const NumberHandle handle(7);
        EXPECT_TRUE(handle);
        EXPECT_EQ(handle.get(), 7);
        EXPECT_EQ(NumberTraits::closed, Closed{});
    }
    EXPECT_EQ(NumberTraits::closed, Closed{7});
}

TEST_F(UniqueHandleTest, ClosesNothingWhenItHoldsNone) {
    {
        const NumberHandle empty;
        EXPECT_FALSE(empty);
        const NumberHandle none(NumberTraits::none());
        EXPECT_FALSE(none);
    }
    EXPECT_EQ(NumberTraits::closed, Closed{});
}

TEST_F(UniqueHandleTest, EveryHandleOfThePlatformKeepsTheLastErrorWhenItCloses) {
    const auto closeWrongHandle = [](auto handle) {
        // Closing a handle that is not open sets an error.
        SetLastError(ERROR_ACCESS_DENIED);
        handle.reset(reinterpret_cast<void*>(0x123454));
        handle.reset();
        EXPECT_EQ(GetLastError(), DWORD{ERROR_ACCESS_DENIED});
    };
    closeWrongHandle(FileHandle());
    closeWrongHandle(ProcessHandle());
    closeWrongHandle(InternetHandle());
}

TEST_F(UniqueHandleTest, MoveConstructionTakesTheHandleOver) {
    NumberHandle from(7);
    {
        const NumberHandle to(std::move(from));
        EXPECT_EQ(to.get(), 7);
        EXPECT_FALSE(from);
    }
    EXPECT_EQ(NumberTraits::closed, Closed{7});
}

TEST_F(UniqueHandleTest, MoveAssignmentClosesTheHandleHeldBefore) {
    NumberHandle from(7);
    NumberHandle to(8);
    to = std::move(from);
    EXPECT_EQ(NumberTraits::closed, Closed{8});
    EXPECT_EQ(to.get(), 7);
    EXPECT_FALSE(from);
}

TEST_F(UniqueHandleTest, MoveAssignmentToItselfKeepsTheHandle) {
    NumberHandle handle(7);
    NumberHandle& same = handle;
    handle = std::move(same);
    EXPECT_EQ(handle.get(), 7);
    EXPECT_EQ(NumberTraits::closed, Closed{});
}

TEST_F(UniqueHandleTest, ResetClosesTheOldHandleAndHoldsTheNew) {
    NumberHandle handle(7);
    handle.reset(8);
    EXPECT_EQ(NumberTraits::closed, Closed{7});
    EXPECT_EQ(handle.get(), 8);
    handle.reset();
    EXPECT_EQ(NumberTraits::closed, (Closed{7, 8}));
    EXPECT_FALSE(handle);
}

TEST_F(UniqueHandleTest, ResetToItsOwnHandleKeepsItOpen) {
    NumberHandle handle(7);
    handle.reset(handle.get());
    EXPECT_EQ(handle.get(), 7);
    EXPECT_EQ(NumberTraits::closed, Closed{});
}

TEST_F(UniqueHandleTest, ReleaseGivesTheHandleAwayUnclosed) {
    {
        NumberHandle handle(7);
        EXPECT_EQ(handle.release(), 7);
        EXPECT_FALSE(handle);
    }
    EXPECT_EQ(NumberTraits::closed, Closed{});
}

TEST_F(UniqueHandleTest, ReceiveClosesTheOldHandleBeforeACallStoresANewOne) {
    NumberHandle handle(7);
    int* const place = handle.receive();
    EXPECT_EQ(NumberTraits::closed, Closed{7});
    EXPECT_EQ(*place, 0);
    *place = 8;
    EXPECT_EQ(handle.get(), 8);
}

TEST_F(UniqueHandleTest, AClosedHandleOfThePlatformIsNoLongerValid) {
    HANDLE raw = nullptr;
    DWORD flags = 0;
    {
        const ProcessHandle event(CreateEventW(nullptr, TRUE, FALSE, nullptr));
        raw = event.get();
        ASSERT_TRUE(GetHandleInformation(raw, &flags));
    }
    EXPECT_FALSE(GetHandleInformation(raw, &flags));
}

}  // namespace
}  // namespace vorthmere::update
