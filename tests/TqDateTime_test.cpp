#include "TqDateTime.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <ctime>
#include <limits>
#include <memory>
#include <new>
#include <string>

#include "Reports.h"
#include "SystemCalls.h"
#include "TqBuffer.h"
#include "Values.h"

namespace {

// 5 March 2024 06:07:08, with every member set.
tm March() {
    tm t = tm();
    t.tm_sec = 8;
    t.tm_min = 7;
    t.tm_hour = 6;
    t.tm_mday = 5;
    t.tm_mon = 2;
    t.tm_year = 124;
    t.tm_wday = 2;
    t.tm_yday = 64;
    t.tm_isdst = 1;
    t.tm_gmtoff = 3600;
    t.tm_zone = "CET";
    return t;
}

bool SameFirstNine(const tm& a, const tm& b) {
    return a.tm_sec == b.tm_sec && a.tm_min == b.tm_min && a.tm_hour == b.tm_hour &&
           a.tm_mday == b.tm_mday && a.tm_mon == b.tm_mon && a.tm_year == b.tm_year &&
           a.tm_wday == b.tm_wday && a.tm_yday == b.tm_yday && a.tm_isdst == b.tm_isdst;
}

bool AllZero(const tm& t) {
    return SameFirstNine(t, tm()) && t.tm_gmtoff == 0 && t.tm_zone == nullptr;
}

std::string TextOf(const tm& t) {
    return TextOf(TqDateTime(&t));
}

time_t SecondsOf(const TqDateTime& date) {
    tm t = date.time;
    return timegm(&t);
}

// The same fields under another type id.
class Deadline : public TqDateTime {
public:
    short TypeId() const override { return 100; }
};

TEST(TqDateTime, TypeIdIsTenFromTheFirstCallOn) {
    EXPECT_EQ(TqDateTime::typeId, 10);
    EXPECT_EQ(TqDateTime().TypeId(), 10);
}

TEST(TqDateTime, TypeIdDoesNotReadTheMember) {
    TqDateTime::typeId = 50;
    EXPECT_EQ(TqDateTime().TypeId(), 10);
    TqDateTime::typeId = 10;
}

TEST(TqDateTime, IsTheCurrentTimeInUtcByDefault) {
    const time_t before = time(nullptr);
    const TqDateTime date;
    const time_t after = time(nullptr);
    EXPECT_LE(before, SecondsOf(date));
    EXPECT_GE(after, SecondsOf(date));
    EXPECT_EQ(date.time.tm_isdst, 0);
}

TEST(TqDateTime, SetNowTakesTheCurrentTimeInUtcWhateverTheZone) {
    setenv("TZ", "XYZ-9", 1);
    tzset();
    const tm march = March();
    TqDateTime date(&march);
    const time_t before = time(nullptr);
    date.SetNow();
    EXPECT_LE(before, SecondsOf(date));
    EXPECT_GE(time(nullptr), SecondsOf(date));
    unsetenv("TZ");
    tzset();
}

TEST(TqDateTime, SetNowFillsEveryOneOfTheFirstNineMembers) {
    TqDateTime date;
    time_t seconds;
    tm now;
    do {
        seconds = time(nullptr);
        date.SetNow();
        gmtime_r(&seconds, &now);
    } while (time(nullptr) != seconds);
    EXPECT_TRUE(SameFirstNine(date.time, now));
}

TEST(TqDateTime, ConstructorTakesTheFirstNineMembersAndLeavesTheOthersZero) {
    const tm march = March();
    const TqDateTime date(&march);
    EXPECT_TRUE(SameFirstNine(date.time, march));
    EXPECT_EQ(date.time.tm_gmtoff, 0);
    EXPECT_EQ(date.time.tm_zone, nullptr);
}

TEST(TqDateTime, DefaultConstructorLeavesOffsetAndZoneZero) {
    const TqDateTime date;
    EXPECT_EQ(date.time.tm_gmtoff, 0);
    EXPECT_EQ(date.time.tm_zone, nullptr);
}

TEST(TqDateTime, ConstructorsLeaveTheTextEmpty) {
    const tm march = March();
    EXPECT_STREQ(TqDateTime().text.data, "");
    EXPECT_STREQ(TqDateTime(&march).text.data, "");
}

TEST(TqDateTime, SetTimeTakesEachOfTheFirstNineMembers) {
    int tm::*const members[] = {&tm::tm_sec,  &tm::tm_min,  &tm::tm_hour, &tm::tm_mday, &tm::tm_mon,
                                &tm::tm_year, &tm::tm_wday, &tm::tm_yday, &tm::tm_isdst};
    TqDateTime date;
    for (int tm::*member : members) {
        tm t = March();
        t.*member = 29;
        date.SetTime(&t);
        EXPECT_EQ(date.time.*member, 29);
        EXPECT_TRUE(SameFirstNine(date.time, t));
    }
}

TEST(TqDateTime, SetTimeLeavesOffsetAndZoneAsTheyWere) {
    TqDateTime date;
    const tm march = March();
    date.time.tm_gmtoff = -7200;
    date.time.tm_zone = "OLD";
    date.SetTime(&march);
    EXPECT_EQ(date.time.tm_gmtoff, -7200);
    EXPECT_STREQ(date.time.tm_zone, "OLD");
}

TEST(TqDateTime, SetNowLeavesOffsetAndZoneAsTheyWere) {
    TqDateTime date;
    date.time.tm_gmtoff = -7200;
    date.time.tm_zone = "OLD";
    date.SetNow();
    EXPECT_EQ(date.time.tm_gmtoff, -7200);
    EXPECT_STREQ(date.time.tm_zone, "OLD");
}

TEST(TqDateTime, CopyIsReportedAndAllZero) {
    TqDateTime date;
    date.time = March();
    date.text = "text";
    // On storage with other contents, to see that each member is set.
    alignas(TqDateTime) unsigned char storage[sizeof(TqDateTime)];
    std::memset(storage, 0xA5, sizeof storage);
    TqDateTime* copy = new (storage) TqDateTime(date);
    EXPECT_EQ(TakeReports(), Reports({"TqDateTime"}));
    EXPECT_TRUE(AllZero(copy->time));
    EXPECT_STREQ(copy->text.data, "");
    EXPECT_EQ(TextOf(*copy), "00:00:00");
    copy->~TqDateTime();
}

TEST(TqDateTime, CloneIsReportedAndAllZero) {
    TqDateTime date;
    date.time = March();
    const std::unique_ptr<TqDataType> clone(date.Clone());
    EXPECT_EQ(TakeReports(), Reports({"TqDateTime"}));
    EXPECT_EQ(clone->TypeId(), 10);
    EXPECT_TRUE(AllZero(static_cast<TqDateTime&>(*clone).time));
    EXPECT_EQ(TextOf(static_cast<TqDateTime&>(*clone)), "00:00:00");
}

TEST(TqDateTime, AssignmentOperatorKeepsOffsetAndZone) {
    TqDateTime from;
    from.time = March();
    TqDateTime to;
    to.time.tm_gmtoff = -7200;
    to.time.tm_zone = "OLD";
    EXPECT_EQ(&(to = from), &to);
    EXPECT_TRUE(SameFirstNine(to.time, March()));
    EXPECT_EQ(to.time.tm_gmtoff, -7200);
    EXPECT_STREQ(to.time.tm_zone, "OLD");
}

TEST(TqDateTime, AssignmentTakesAllElevenMembers) {
    TqDateTime from;
    from.time = March();
    TqDateTime to;
    to.Assignment(from);
    EXPECT_TRUE(SameFirstNine(to.time, March()));
    EXPECT_EQ(to.time.tm_gmtoff, 3600);
    EXPECT_STREQ(to.time.tm_zone, "CET");
}

TEST(TqDateTime, AssigningTheTextIsNoPartOfAssignment) {
    TqDateTime from;
    from.text = "text";
    TqDateTime to;
    to.Assignment(from);
    to = from;
    EXPECT_STREQ(to.text.data, "");
}

TEST(TqDateTime, AssignmentDoesNotCheckTheType) {
    Deadline from;
    from.time = March();
    TqDateTime to;
    to.Assignment(from);
    EXPECT_TRUE(SameFirstNine(to.time, March()));
}

TEST(TqDateTime, AssigningADateToItselfChangesNothing) {
    TqDateTime date;
    date.time = March();
    TqDateTime& same = date;
    date = same;
    date.Assignment(same);
    EXPECT_TRUE(SameFirstNine(date.time, March()));
    EXPECT_EQ(date.time.tm_gmtoff, 3600);
}

TEST(TqDateTime, ShowsTheStoredMembersWithoutShiftingMonthOrYear) {
    EXPECT_EQ(TextOf(March()), "02/05/0124 06:07:08");
}

TEST(TqDateTime, ShowsTheLastSecondsOf1999) {
    tm t = tm();
    time_t seconds = 946684798;  // 31 December 1999 23:59:58
    gmtime_r(&seconds, &t);
    EXPECT_EQ(TextOf(t), "11/31/0099 23:59:58");
}

TEST(TqDateTime, ShowsOnlyTheTimeOfDayInJanuary) {
    tm t = March();
    t.tm_mon = 0;
    EXPECT_EQ(TextOf(t), "06:07:08");
}

TEST(TqDateTime, ShowsOnlyTheTimeOfDayWhenDayOrYearIsZero) {
    tm t = March();
    t.tm_mday = 0;
    EXPECT_EQ(TextOf(t), "06:07:08");
    t = March();
    t.tm_year = 0;
    EXPECT_EQ(TextOf(t), "06:07:08");
}

TEST(TqDateTime, ReplacesWhatTheStringHeld) {
    const tm march = March();
    TqString out("a text that is long enough to be held outside of the object");
    TqDateTime(&march).ToString(out);
    EXPECT_STREQ(out.data, "02/05/0124 06:07:08");
    EXPECT_EQ(out.data, out.internalData);
}

TEST(TqDateTime, ShowsNumbersOfAnySize) {
    tm t = March();
    t.tm_mon = t.tm_mday = t.tm_year = t.tm_hour = t.tm_min = t.tm_sec = INT_MIN;
    EXPECT_EQ(TextOf(t), "-2147483648/-2147483648/-2147483648 -2147483648:-2147483648:-2147483648");
    t.tm_mon = t.tm_mday = t.tm_year = t.tm_hour = t.tm_min = t.tm_sec = INT_MAX;
    EXPECT_EQ(TextOf(t), "2147483647/2147483647/2147483647 2147483647:2147483647:2147483647");
    t.tm_mon = t.tm_mday = t.tm_year = t.tm_hour = t.tm_min = t.tm_sec = -3;
    EXPECT_EQ(TextOf(t), "-03/-03/-0003 -03:-03:-03");
}

TEST(TqDateTime, FromStringIsReportedAndChangesNothing) {
    const tm march = March();
    TqDateTime date(&march);
    date.FromString("01/01/0100 01:01:01");
    EXPECT_EQ(TakeReports(), Reports({"TqDateTime"}));
    EXPECT_TRUE(SameFirstNine(date.time, march));
    EXPECT_STREQ(date.text.data, "");
}

TEST(TqDateTime, ToBufferIsReportedAndLeavesTheBufferAlone) {
    TqBuffer buffer;
    TqString("x").ToBuffer(buffer);
    TqDateTime().ToBuffer(buffer);
    EXPECT_EQ(TakeReports(), Reports({"TqDateTime"}));
    EXPECT_EQ(buffer.length, 6u);
    EXPECT_EQ(buffer.readPosition, 0u);
}

TEST(TqDateTime, FromBufferIsReportedAndReadsNothing) {
    const tm march = March();
    TqDateTime date(&march);
    TqBuffer buffer;
    TqString("x").ToBuffer(buffer);
    date.FromBuffer(buffer);
    EXPECT_EQ(TakeReports(), Reports({"TqDateTime"}));
    EXPECT_EQ(buffer.readPosition, 0u);
    EXPECT_TRUE(SameFirstNine(date.time, march));
}

TEST(TqDateTime, CompareIsReportedAndReturnsZero) {
    tm t = March();
    const TqDateTime earlier(&t);
    t.tm_year = 125;
    EXPECT_EQ(earlier.Compare(TqDateTime(&t)), 0);
    EXPECT_EQ(TqDateTime(&t).Compare(earlier), 0);
    EXPECT_EQ(TakeReports(), Reports({"TqDateTime", "TqDateTime"}));
}

TEST(TqDateTime, EqualsIsReportedAndReturnsFalse) {
    const TqDateTime date;
    EXPECT_FALSE(date.Equals(&date));
    EXPECT_EQ(TakeReports(), Reports({"TqDateTime"}));
    EXPECT_FALSE(date.Equals(nullptr));
    EXPECT_EQ(TakeReports(), Reports({"TqDateTime"}));
    EXPECT_TRUE(date.DoesNotEqual(&date));
    EXPECT_EQ(TakeReports(), Reports({"TqDateTime"}));
}

TEST(TqDateTime, SetNowLeavesTheDateAsItWasInAYearThatNoDateCanHold) {
    tm then = tm();
    then.tm_year = 7;
    TqDateTime date(&then);
    systemCalls.time = [] { return std::numeric_limits<time_t>::max(); };
    date.SetNow();
    systemCalls = SystemCalls();
    EXPECT_EQ(date.time.tm_year, 7);
}

TEST(TqDateTime, KnowsTheTimeAfterTheLastSecondOf32Bits) {
    // 19 January 2038 03:14:08, and 5 March 2106 06:07:08, by a clock that is wound on.
    systemCalls.time = [] { return static_cast<time_t>(2147483648LL); };
    const TqDateTime justAfter;
    systemCalls.time = [] { return static_cast<time_t>(4297212428LL); };
    const TqDateTime farAfter;
    systemCalls = SystemCalls();
    EXPECT_EQ(TextOf(justAfter), "03:14:08");
    EXPECT_EQ(justAfter.time.tm_year, 138);
    EXPECT_EQ(justAfter.time.tm_mday, 19);
    EXPECT_EQ(TextOf(farAfter), "02/05/0206 06:07:08");
}

}  // namespace
