// How the example writes dates.

#include "Text.h"

#include <gtest/gtest.h>

namespace {

// Six hours, seven minutes and eight seconds into that day.
tm At(int year, int month, int day) {
    tm time = tm();
    time.tm_year = year - 1900;
    time.tm_mon = month - 1;
    time.tm_mday = day;
    time.tm_hour = 6;
    time.tm_min = 7;
    time.tm_sec = 8;
    return time;
}

TEST(TimeTextTest, ADateIsShownAsPeopleWriteIt) {
    tm time = At(2024, 3, 5);
    EXPECT_STREQ(TimeText(TqDateTime(&time)).data, "2024-03-05 06:07:08");
    time = At(2031, 12, 31);
    EXPECT_STREQ(TimeText(TqDateTime(&time)).data, "2031-12-31 06:07:08");
}

TEST(TimeTextTest, ADateInJanuaryIsShownWhole) {
    const tm time = At(2024, 1, 5);
    EXPECT_STREQ(TimeText(TqDateTime(&time)).data, "2024-01-05 06:07:08");
}

TEST(TimeTextTest, TheLibrarysTextIsExplained) {
    const tm time = At(2024, 3, 5);
    EXPECT_STREQ(LibraryTimeText(TqDateTime(&time)).data,
                 "\"02/05/0124 06:07:08\", counting months from 0 and years from 1900");
}

TEST(TimeTextTest, TheLibrarysTextIsExplainedInJanuaryToo) {
    const tm time = At(2024, 1, 5);
    EXPECT_STREQ(LibraryTimeText(TqDateTime(&time)).data,
                 "\"06:07:08\", without the date, since January is month 0");
}

}  // namespace

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
