#include "TqWrite.h"

#include <gtest/gtest.h>

#include "Reports.h"
#include "TqFloat.h"
#include "Values.h"

namespace {

TEST(TqWrite, AppendsTheItemsOfItsValuesInOrder) {
    const TqString name("eth0");
    const TqCounter octets(4000000000u);
    TqBuffer buffer;
    TqWrite(buffer, name, octets, TqBoolean(0));
    EXPECT_EQ(Bytes(buffer), "00004eth0000104000000000" + std::string("00005False"));
    TqWrite(buffer, TqNumber(-1));
    EXPECT_EQ(Bytes(buffer), "00004eth000010400000000000005False00002-1");
}

TEST(TqWrite, TakesPlainVariablesAndLiterals) {
    const char* const text = "up";
    char array[] = "to";
    TqBuffer buffer;
    TqWrite(buffer, "eth0", text, array, 42, -7, 3000000000u, true, false);
    EXPECT_EQ(Bytes(buffer),
              "00004eth000002up00002to000024200002-700010300000000000004True00005False");
}

TEST(TqWrite, WritesAValueThroughItsBase) {
    const TqNumber number(5);
    const TqDataType& value = number;
    TqBuffer buffer;
    TqWrite(buffer, value);
    EXPECT_EQ(Bytes(buffer), "000015");
}

TEST(TqWrite, WritesABufferAsOneItem) {
    TqBuffer packet;
    TqWrite(packet, BufferOf(Exactly("a\0b")));
    EXPECT_EQ(Bytes(packet), Exactly("00003a\0b"));
}

TEST(TqWrite, WritesNothingWhenThereIsNothing) {
    TqBuffer buffer;
    TqWrite(buffer);
    EXPECT_EQ(buffer.length, 0u);
}

TEST(TqWrite, ComesWithTheReportsOfTheValues) {
    TqBuffer buffer;
    TqWrite(buffer, TqFloat(1.5f));
    EXPECT_EQ(Bytes(buffer), "000021.");
    EXPECT_EQ(TakeReports(), Reports({"TqFloat"}));
}

}  // namespace
