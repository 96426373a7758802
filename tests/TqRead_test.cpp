#include "TqRead.h"

#include <gtest/gtest.h>

#include "Reports.h"
#include "TqFloat.h"
#include "Values.h"

namespace {

TEST(TqRead, ReadsBackWhatTqWriteWrote) {
    TqBuffer buffer;
    TqWrite(buffer, "eth0", TqCounter(7), -42, true, 9u, BufferOf("x"));
    TqString name;
    TqCounter octets;
    TqBuffer bytes;
    int number = 0;
    bool isUp = false;
    unsigned int speed = 0;
    EXPECT_TRUE(TqRead(buffer, name, octets, number, isUp, speed, bytes));
    EXPECT_STREQ(name.data, "eth0");
    EXPECT_EQ(octets.count, 7u);
    EXPECT_EQ(number, -42);
    EXPECT_TRUE(isUp);
    EXPECT_EQ(speed, 9u);
    EXPECT_EQ(Bytes(bytes), "x");
    EXPECT_EQ(buffer.readPosition, buffer.length);
}

TEST(TqRead, GoesOnWhereTheLastOneEnded) {
    TqBuffer buffer;
    TqWrite(buffer, 1, 2, 3);
    int first = 0, second = 0;
    EXPECT_TRUE(TqRead(buffer, first));
    EXPECT_TRUE(TqRead(buffer, first, second));
    EXPECT_EQ(first, 2);
    EXPECT_EQ(second, 3);
    EXPECT_FALSE(TqRead(buffer, first));
    EXPECT_TRUE(TqRead(buffer)) << "nothing is always there";
}

// At every length that the buffer may have been cut to.
TEST(TqRead, ChangesNothingWhenNotEverythingIsThere) {
    TqBuffer whole;
    TqWrite(whole, "ab", 17);
    for (unsigned int length = 0; length < whole.length; ++length) {
        TqBuffer cut(whole.data, length);
        TqString text("before");
        int number = -1;
        EXPECT_FALSE(TqRead(cut, text, number)) << length;
        EXPECT_STREQ(text.data, "before");
        EXPECT_EQ(number, -1);
        EXPECT_EQ(cut.readPosition, 0u);
    }
    EXPECT_EQ(TakeReports(), Reports());
}

TEST(TqRead, DoesNotTakeALengthThatIsNotFiveDigits) {
    for (const char* bytes : {" 0001x", "+0001x", "-0001x", "0x001x", "0001 x", "99999x"}) {
        TqBuffer buffer = BufferOf(bytes);
        TqString text("before");
        EXPECT_FALSE(TqRead(buffer, text)) << bytes;
        EXPECT_STREQ(text.data, "before");
    }
}

TEST(TqRead, TakesLengthsOfAllDigits) {
    for (std::size_t length : {0u, 9u, 90u, 98u, 9876u, 12345u, 90909u}) {
        const std::string written(length, 'x');
        TqBuffer buffer;
        TqWrite(buffer, written.c_str());
        TqString text("before");
        EXPECT_TRUE(TqRead(buffer, text)) << length;
        EXPECT_EQ(text.data, written);
    }
}

TEST(TqRead, DoesNotReadBehindTheEndOfABufferWhosePositionIsBeyondIt) {
    TqBuffer buffer = BufferOf("000011");
    buffer.readPosition = 7;
    int number = -1;
    EXPECT_FALSE(TqRead(buffer, number));
    EXPECT_EQ(number, -1);
}

TEST(TqRead, TakesWhatStandsInAnItemAsTheValueDoes) {
    TqBuffer buffer;
    TqWrite(buffer, "12abc", "open", "none");
    int number = 0;
    bool isOpen = false, isThere = true;
    EXPECT_TRUE(TqRead(buffer, number, isOpen, isThere));
    EXPECT_EQ(number, 12);
    EXPECT_TRUE(isOpen);
    EXPECT_FALSE(isThere);
}

}  // namespace
