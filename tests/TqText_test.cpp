#include "TqText.h"

#include <gtest/gtest.h>

#include "Reports.h"
#include "TqBoolean.h"
#include "TqBuffer.h"
#include "TqCounter.h"
#include "TqDateTime.h"
#include "TqFloat.h"
#include "TqNetworkMask.h"
#include "TqSnmpOid.h"
#include "Values.h"

namespace {

TEST(TqText, IsTheTextFormOfAnyValue) {
    EXPECT_STREQ(TqText(TqString("eth0")).data, "eth0");
    EXPECT_STREQ(TqText(TqNumber(-42)).data, "-42");
    EXPECT_STREQ(TqText(TqCounter(4000000000u)).data, "4000000000");
    EXPECT_STREQ(TqText(TqBoolean(1)).data, "True");
    EXPECT_STREQ(TqText(TqSnmpOid("1.3.6")).data, "1.3.6");
    EXPECT_STREQ(TqText(BufferOf("a\n")).data, "a*");
    const tm march = {8, 7, 6, 5, 2, 124, 0, 0, 0, 0, nullptr};
    EXPECT_STREQ(TqText(TqDateTime(&march)).data, "02/05/0124 06:07:08");
    EXPECT_EQ(TakeReports(), Reports());
}

TEST(TqText, IsTheDottedFormOfAddressesAndMasks) {
    EXPECT_STREQ(TqText(TqIpAddress(0x0A000001)).data, "10.0.0.1");
    EXPECT_STREQ(TqText(TqNetworkMask(0xFFFFFF00)).data, "255.255.255.0");
    EXPECT_STREQ(TqText(TqIpAddress()).data, "0.0.0.0");
}

TEST(TqText, IsThatOfTheObjectBehindAReference) {
    const TqBoolean flag(1);
    const TqDataType& value = flag;
    EXPECT_STREQ(TqText(value).data, "True");
}

TEST(TqText, ComesWithTheReportsOfTheValue) {
    EXPECT_STREQ(TqText(TqFloat(3.75f)).data, "3.");
    EXPECT_EQ(TakeReports(), Reports({"TqFloat"}));
}

TEST(TqText, CountsWhatStandsBehindANul) {
    const TqString text("a\0b", 3);
    EXPECT_EQ(TqText(text).length, 3u);
}

}  // namespace
