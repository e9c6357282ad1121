#include "updater/posted_record.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "tests/support/heap_use.h"

namespace vorthmere::update {
namespace {

/// A record that counts how many of its kind exist.
struct CountedRecord {
    static constexpr UINT kMessage = WM_APP + 3;
    static inline std::atomic<int> living = 0;

    explicit CountedRecord(int givenNumber) : number(givenNumber) {
        ++living;
    }
    CountedRecord(const CountedRecord&) = delete;
    CountedRecord& operator=(const CountedRecord&) = delete;
    ~CountedRecord() {
        number = -1;
        --living;
    }

    int number;
};

/// A record in a message that Windows sends but does not post.
struct UnpostableRecord : CountedRecord {
    static constexpr UINT kMessage = WM_COPYDATA;
    static inline int received = 0;

    using CountedRecord::CountedRecord;

    /// A window procedure that counts these messages.
    static LRESULT CALLBACK count(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
        if (message != kMessage) return DefWindowProcW(window, message, wParam, lParam);
        ++received;
        return 0;
    }
};

/// A window whose messages wait until the test takes them.
class PostedRecordTest : public ::testing::Test {
protected:
    void SetUp() override {
        window = CreateWindowExW(0, L"STATIC", nullptr, 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
        ASSERT_TRUE(window);
    }
    void TearDown() override {
        DestroyWindow(window);
        EXPECT_EQ(CountedRecord::living, 0);
    }

    [[nodiscard]] MSG nextMessage() const {
        MSG message{};
        EXPECT_GT(GetMessageW(&message, window, 0, 0), 0);
        return message;
    }
    [[nodiscard]] bool hasMessage() const {
        MSG message{};
        return PeekMessageW(&message, window, 0, 0, PM_NOREMOVE) != FALSE;
    }

    HWND window = nullptr;
};

TEST_F(PostedRecordTest, ProgressArrivesAsTheFirstPrivateMessage) {
    ASSERT_TRUE(postRecord(window, std::make_unique<ProgressRecord>(ProgressRecord{L"Unpacking...", 81})));
    const MSG message = nextMessage();
    EXPECT_EQ(message.message, 0x8001u);
    EXPECT_EQ(message.wParam, 0u);
    const auto record = receiveRecord<ProgressRecord>(message.lParam);
    ASSERT_TRUE(record);
    EXPECT_EQ(record->text, L"Unpacking...");
    EXPECT_EQ(record->percent, 81u);
}

TEST_F(PostedRecordTest, OutcomeArrivesAsTheSecondPrivateMessage) {
    ASSERT_TRUE(postRecord(window, std::make_unique<OutcomeRecord>(OutcomeRecord{27, L"It broke."})));
    const MSG message = nextMessage();
    EXPECT_EQ(message.message, 0x8002u);
    EXPECT_EQ(message.wParam, 0u);
    const auto record = receiveRecord<OutcomeRecord>(message.lParam);
    ASSERT_TRUE(record);
    EXPECT_EQ(record->code, 27);
    EXPECT_EQ(record->text, L"It broke.");
}

TEST_F(PostedRecordTest, RecordLivesFromPostingUntilTheReceiverIsDone) {
    ASSERT_TRUE(postRecord(window, std::make_unique<CountedRecord>(1)));
    EXPECT_EQ(CountedRecord::living, 1);
    {
        const auto record = receiveRecord<CountedRecord>(nextMessage().lParam);
        EXPECT_EQ(CountedRecord::living, 1);
        EXPECT_EQ(record->number, 1);
    }
    EXPECT_EQ(CountedRecord::living, 0);
}

TEST_F(PostedRecordTest, RecordIsFreedAtOnceWhenThereIsNoWindow) {
    DestroyWindow(window);
    EXPECT_FALSE(postRecord(window, std::make_unique<CountedRecord>(1)));
    EXPECT_EQ(CountedRecord::living, 0);
}

TEST_F(PostedRecordTest, ARecordThatCannotBePostedIsFreedAndNotSentInstead) {
    SetWindowLongPtrW(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&UnpostableRecord::count));
    EXPECT_FALSE(postRecord(window, std::make_unique<UnpostableRecord>(1)));
    EXPECT_EQ(UnpostableRecord::received, 0);
    EXPECT_EQ(CountedRecord::living, 0);
}

TEST_F(PostedRecordTest, MessageWithoutRecordGivesNone) {
    EXPECT_FALSE(receiveRecord<ProgressRecord>(0));
    EXPECT_FALSE(receiveRecord<OutcomeRecord>(0));
}

TEST_F(PostedRecordTest, RecordsOfAnotherThreadArriveCompleteAndInOrder) {
    constexpr int kCount = 5000;
    std::thread poster([this] {
        for (int i = 0; i < kCount; ++i)
            EXPECT_TRUE(postRecord(window, std::make_unique<CountedRecord>(i)));
    });
    for (int i = 0; i < kCount; ++i)
        ASSERT_EQ(receiveRecord<CountedRecord>(nextMessage().lParam)->number, i);
    poster.join();
    EXPECT_FALSE(hasMessage());
}

TEST_F(PostedRecordTest, FailedPostsLeaveNothingOnTheHeap) {
    DestroyWindow(window);
    const std::wstring text(1000, L'x');
    const auto post = [&] {
        EXPECT_FALSE(postRecord(window, std::make_unique<OutcomeRecord>(OutcomeRecord{1, text})));
    };
    post();
    const std::size_t before = testing::heapInUse();
    for (int i = 0; i < 1000; ++i)
        post();
    EXPECT_EQ(testing::heapInUse(), before);
}

}  // namespace
}  // namespace vorthmere::update
