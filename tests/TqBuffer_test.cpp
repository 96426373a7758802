#include "TqBuffer.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>

#include "Reports.h"
#include "SystemCalls.h"
#include "TqNumber.h"
#include "TqString.h"
#include "Values.h"

namespace {

// A buffer that an application made a type of its own.
class Packet : public TqBuffer {
public:
    explicit Packet(const std::string& bytes)
        : TqBuffer(AsBytes(bytes), static_cast<unsigned int>(bytes.size())) {}
    short TypeId() const override { return 77; }
};

void Append(TqBuffer& buffer, const std::string& bytes) {
    buffer.Append(AsBytes(bytes), static_cast<unsigned int>(bytes.size()));
}

void Insert(TqBuffer& buffer, const std::string& bytes, unsigned int position) {
    buffer.Insert(AsBytes(bytes), static_cast<unsigned int>(bytes.size()), position);
}

// All of the internal area, whatever is held where.
std::string Inside(const TqBuffer& buffer) {
    return std::string(reinterpret_cast<const char*>(buffer.internalData), 64);
}

std::string Zeroes(unsigned int count) {
    return std::string(count, '\0');
}

// Construction, copy, destruction.

TEST(TqBuffer, StartsEmptyAndZeroed) {
    alignas(TqBuffer) unsigned char room[sizeof(TqBuffer)];
    std::memset(room, 0xA5, sizeof room);
    TqBuffer* b = new (room) TqBuffer;
    EXPECT_EQ(Held(*b), BytesInside(""));
    EXPECT_EQ(Inside(*b), Zeroes(64));
    b->~TqBuffer();
}

TEST(TqBuffer, UpTo64BytesAreHeldInside) {
    for (unsigned int count : {0u, 1u, 63u, 64u}) {
        const TqBuffer b = BufferOf(Letters(count));
        EXPECT_EQ(Held(b), BytesInside(Letters(count)));
        EXPECT_EQ(Inside(b), Letters(count) + Zeroes(64 - count));
    }
    EXPECT_EQ(Held(TqBuffer(nullptr, 0)), BytesInside(""));
}

TEST(TqBuffer, MoreBytesTakeABlockOfExactlyTheirNumber) {
    for (unsigned int count : {65u, 66u, 200u, 70000u}) {
        const TqBuffer b(AsBytes(Letters(count)), count);
        EXPECT_EQ(Held(b), BytesInBlock(count, Letters(count)));
        EXPECT_EQ(Inside(b), Zeroes(64));
    }
}

TEST(TqBuffer, ACopyOfAnInsideBufferTakesAllOfTheStorage) {
    TqBuffer original = BufferOf(Letters(10));
    original.TruncateAfter(4);
    original.AdvanceReadContext(3);
    const TqBuffer copy(original);
    EXPECT_EQ(Held(copy), BytesInside("abcd", 3));
    EXPECT_EQ(Inside(copy), Letters(10) + Zeroes(54));
}

TEST(TqBuffer, ACopyOfABlockIsAsLargeAsItsContents) {
    TqBuffer original = BufferOf(Letters(100));
    original.AdvanceReadContext(7);
    EXPECT_EQ(Held(TqBuffer(original)), BytesInBlock(100, Letters(100), 7));
    original.TruncateAfter(70);
    const TqBuffer copy(original);
    EXPECT_EQ(Held(original), BytesInBlock(100, Letters(70)));
    EXPECT_EQ(Held(copy), BytesInBlock(70, Letters(70)));
    EXPECT_EQ(Inside(copy), Zeroes(64));
}

TEST(TqBuffer, ACopyOfABlockIsABlockHoweverShort) {
    TqBuffer original = BufferOf(Letters(100));
    original.TruncateAfter(10);
    TqBuffer copy(original);
    EXPECT_EQ(Held(copy), BytesInBlock(10, Letters(10)));
    Append(copy, "#");
    EXPECT_EQ(Held(copy), BytesInBlock(11, Letters(10) + "#"));
    original.TruncateAfter(0);
    EXPECT_EQ(Held(TqBuffer(original)), BytesInBlock(0, ""));
}

TEST(TqBuffer, ACopyIsIndependent) {
    for (unsigned int count : {10u, 100u}) {
        TqBuffer original = BufferOf(Letters(count));
        const TqBuffer copy(original);
        original.PutAt(0, '#');
        EXPECT_EQ(Bytes(copy), Letters(count));
    }
}

TEST(TqBuffer, AssigningIsCopying) {
    TqBuffer longer = BufferOf(Letters(100)), shorter = BufferOf(Letters(10));
    longer.AdvanceReadContext(7);
    shorter.AdvanceReadContext(2);
    TqBuffer b;
    EXPECT_EQ(&(b = longer), &b);
    EXPECT_EQ(Held(b), BytesInBlock(100, Letters(100), 7));
    b = BufferOf(Letters(80));
    EXPECT_EQ(Held(b), BytesInBlock(80, Letters(80)));
    EXPECT_EQ(Inside(b), Zeroes(64));
    b = shorter;
    EXPECT_EQ(Held(b), BytesInside(Letters(10), 2));
    b = TqBuffer();
    EXPECT_EQ(Held(b), BytesInside(""));
}

TEST(TqBuffer, AssigningATruncatedBlockGivesABlockOfItsLength) {
    TqBuffer truncated = BufferOf(Letters(100));
    truncated.TruncateAfter(30);
    TqBuffer b = BufferOf(Letters(90));
    b = truncated;
    EXPECT_EQ(Held(b), BytesInBlock(30, Letters(30)));
}

TEST(TqBuffer, AssignmentIsAssigningAndDoesNotCheckTheType) {
    TqBuffer b = BufferOf(Letters(90));
    b.Assignment(BufferOf("abc"));
    EXPECT_EQ(Held(b), BytesInside("abc"));
    b.Assignment(Packet(Letters(70)));
    EXPECT_EQ(Held(b), BytesInBlock(70, Letters(70)));
}

TEST(TqBuffer, ABufferCanBeAssignedToItself) {
    TqBuffer inside = BufferOf(Letters(10)), block = BufferOf(Letters(100));
    for (TqBuffer* b : {&inside, &block}) {
        b->AdvanceReadContext(3);
        const std::string before = Held(*b);
        *b = static_cast<const TqBuffer&>(*b);
        EXPECT_EQ(Held(*b), before);
        b->Assignment(*b);
        EXPECT_EQ(Held(*b), before);
    }
}

TEST(TqBuffer, DestructionForgetsTheBlock) {
    alignas(TqBuffer) unsigned char room[sizeof(TqBuffer)];
    TqBuffer* b = new (room) TqBuffer(AsBytes(Letters(65)), 65);
    const std::ptrdiff_t offset = reinterpret_cast<unsigned char*>(&b->data) - room;
    b->~TqBuffer();
    unsigned char* left;
    std::memcpy(&left, room + offset, sizeof left);
    EXPECT_EQ(left, nullptr);
}

TEST(TqBuffer, GivesEveryBlockBack) {
    const unsigned char bytes[100] = {};
    const int blocks = LiveBlocks();
    {
        TqBuffer buffer(bytes, 100);
        buffer.Insert(bytes, 1, 0);
        buffer = TqBuffer(bytes, 70);
        buffer.Clear();
        buffer.Append(bytes, 100);
    }
    EXPECT_EQ(LiveBlocks(), blocks);
}

TEST(TqBuffer, ClearGivesTheBlockBack) {
    TqBuffer b = BufferOf(Letters(100));
    b.AdvanceReadContext(10);
    b.Clear();
    EXPECT_EQ(Held(b), BytesInside(""));
    EXPECT_EQ(Inside(b), Zeroes(64));
}

TEST(TqBuffer, ClearZeroesTheInside) {
    TqBuffer b = BufferOf(Letters(64));
    b.AdvanceReadContext(10);
    b.Clear();
    EXPECT_EQ(Held(b), BytesInside(""));
    EXPECT_EQ(Inside(b), Zeroes(64));
}

// A block of exactly 64 bytes.

// The mode is told by the capacity alone: a block of 64 bytes is taken as the internal area. It is
// then never freed, which these tests do in the buffer's place.

TqBuffer BlockOf64() {
    TqBuffer longer = BufferOf(Letters(100));
    longer.TruncateAfter(64);
    return TqBuffer(longer);
}

TEST(TqBufferBlockOf64, IsTakenAsInside) {
    const TqBuffer b = BlockOf64();
    EXPECT_EQ(Held(b), BytesInBlock(64, Letters(64)));
    const TqBuffer copy(b);
    EXPECT_EQ(Held(copy), BytesInside(Letters(64)));
    std::free(b.data);
}

TEST(TqBufferBlockOf64, ReadsAndIsWrittenWell) {
    TqBuffer b = BlockOf64();
    b.PutAt(63, '#');
    EXPECT_EQ(b[63], '#');
    unsigned char first[2];
    EXPECT_TRUE(b.Read(first, 2, 0));
    EXPECT_EQ(first[1], 'b');
    EXPECT_EQ(Bytes(b), Letters(63) + "#");
    std::free(b.data);
}

TEST(TqBufferBlockOf64, IsNotFreedByClearOrAssigning) {
    TqBuffer cleared = BlockOf64();
    unsigned char* block = cleared.data;
    cleared.Clear();
    EXPECT_EQ(Held(cleared), BytesInside(""));
    EXPECT_EQ(block[0], 'a');
    std::free(block);
    TqBuffer assigned = BlockOf64();
    block = assigned.data;
    assigned = BufferOf("abc");
    EXPECT_EQ(Held(assigned), BytesInside("abc"));
    EXPECT_EQ(block[0], 'a');
    std::free(block);
}

TEST(TqBufferBlockOf64, LosesItsContentsWhenItGrows) {
    TqBuffer b = BlockOf64();
    unsigned char* block = b.data;
    Append(b, "#");
    EXPECT_EQ(Held(b), BytesInBlock(65, Zeroes(64) + "#"));
    std::free(block);
}

TEST(TqBufferBlockOf64, ArisesFromAShortCopyThatGrows) {
    TqBuffer longer = BufferOf(Letters(100));
    longer.TruncateAfter(60);
    TqBuffer b(longer);
    Append(b, "1234");
    EXPECT_EQ(Held(b), BytesInBlock(64, Letters(60) + "1234"));
    unsigned char* block = b.data;
    b.Clear();
    EXPECT_EQ(Held(b), BytesInside(""));
    std::free(block);
}

// Append.

TEST(TqBuffer, AppendStaysInsideUpTo64Bytes) {
    TqBuffer b;
    Append(b, Letters(60));
    Append(b, "1234");
    EXPECT_EQ(Held(b), BytesInside(Letters(60) + "1234"));
    TqBuffer atOnce;
    Append(atOnce, Letters(64));
    EXPECT_EQ(Held(atOnce), BytesInside(Letters(64)));
}

TEST(TqBuffer, AppendBeyondTheCapacityTakesExactlyWhatIsNeeded) {
    TqBuffer b;
    Append(b, Letters(65));
    EXPECT_EQ(Held(b), BytesInBlock(65, Letters(65)));
    Append(b, "#");
    EXPECT_EQ(Held(b), BytesInBlock(66, Letters(65) + "#"));
    Append(b, Letters(10));
    EXPECT_EQ(Held(b), BytesInBlock(76, Letters(65) + "#" + Letters(10)));
}

TEST(TqBuffer, AppendThatMovesOutZeroesTheInside) {
    TqBuffer b = BufferOf(Letters(64));
    Append(b, "#");
    EXPECT_EQ(Held(b), BytesInBlock(65, Letters(64) + "#"));
    EXPECT_EQ(Inside(b), Zeroes(64));
}

TEST(TqBuffer, AppendUsesTheRoomOfATruncatedBlock) {
    TqBuffer b = BufferOf(Letters(100));
    unsigned char* block = b.data;
    b.TruncateAfter(10);
    Append(b, Letters(90));
    EXPECT_EQ(Held(b), BytesInBlock(100, Letters(10) + Letters(90)));
    EXPECT_EQ(b.data, block);
    b.TruncateAfter(10);
    Append(b, Letters(91));
    EXPECT_EQ(Held(b), BytesInBlock(101, Letters(10) + Letters(91)));
}

TEST(TqBuffer, AppendLeavesTheReadPosition) {
    TqBuffer b = BufferOf(Letters(64));
    b.AdvanceReadContext(9);
    Append(b, "#");
    Append(b, "#");
    EXPECT_EQ(b.readPosition, 9u);
}

TEST(TqBuffer, AppendOfNullIsReportedAndDoesNothing) {
    TqBuffer b = BufferOf("abc");
    b.Append(nullptr, 3);
    EXPECT_EQ(TakeReports(), Reports({"TqBuffer"}));
    b.Append(nullptr, 0);
    EXPECT_EQ(TakeReports(), Reports({"TqBuffer"}));
    EXPECT_EQ(Held(b), BytesInside("abc"));
}

TEST(TqBuffer, AppendOfNoBytesChangesNothing) {
    TqBuffer full = BufferOf(Letters(64)), block = BufferOf(Letters(100));
    Append(full, "");
    Append(block, "");
    EXPECT_EQ(Held(full), BytesInside(Letters(64)));
    EXPECT_EQ(Held(block), BytesInBlock(100, Letters(100)));
}

TEST(TqBuffer, AppendTakesItsOwnBytes) {
    TqBuffer b = BufferOf(Letters(24));
    b.Append(b.data, b.length);
    EXPECT_EQ(Held(b), BytesInside(Letters(24) + Letters(24)));
    b.Append(b.data + 8, 24);
    const std::string moved = Letters(24) + Letters(24) + (Letters(24) + Letters(24)).substr(8, 24);
    EXPECT_EQ(Held(b), BytesInBlock(72, moved));
    b.Append(b.data, b.length);
    EXPECT_EQ(Held(b), BytesInBlock(144, moved + moved));
    b.Append(b.data + 143, 1);
    EXPECT_EQ(Held(b), BytesInBlock(145, moved + moved + moved.substr(71)));
}

TEST(TqBuffer, AppendTakesItsOwnBytesWhereverTheBlockMoves) {
    TqBuffer b = BufferOf("x");
    for (unsigned int length = 1; length < 200000; length *= 2) {
        EXPECT_EQ(Bytes(b), std::string(length, 'x'));
        b.Append(b.data, b.length);
    }
}

TEST(TqBuffer, AppendTakesItsOwnBytesCountedOrNot) {
    TqBuffer inside = BufferOf(Letters(64)), block = BufferOf(Letters(100));
    inside.TruncateAfter(60);
    inside.Append(inside.data + 2, 62);
    EXPECT_EQ(Held(inside), BytesInBlock(122, Letters(60) + Letters(64).substr(2)));
    block.TruncateAfter(60);
    block.Append(block.data + 2, 98);
    EXPECT_EQ(Held(block), BytesInBlock(158, Letters(60) + Letters(100).substr(2)));
}

TEST(TqBuffer, AppendTakesTheByteThatWasPutBehindTheOthers) {
    TqBuffer b = BufferOf(Letters(100));
    b.PutAt(100, '#');
    EXPECT_EQ(TakeReports(), Reports({"TqBuffer"}));
    b.Append(b.data + 100, 1);
    EXPECT_EQ(Held(b), BytesInBlock(101, Letters(100) + "#"));
}

TEST(TqBuffer, AppendTakesBytesRightBehindTheBuffer) {
    struct {
        TqBuffer full;
        unsigned char behind[4];
    } both = {BufferOf(Letters(64)), {'1', '2', '3', '4'}};
    both.full.Append(both.behind, 4);
    EXPECT_EQ(Held(both.full), BytesInBlock(68, Letters(64) + "1234"));
}

// Insert.

TEST(TqBuffer, InsertPutsTheBytesBeforeThePosition) {
    for (unsigned int position = 0; position <= 4; ++position) {
        TqBuffer b = BufferOf("abcd");
        Insert(b, "123", position);
        const std::string expected =
            std::string("abcd").substr(0, position) + "123" + std::string("abcd").substr(position);
        EXPECT_EQ(Held(b), BytesInside(expected));
    }
}

TEST(TqBuffer, InsertBeforeTheEndResetsTheReadPosition) {
    for (unsigned int position : {0u, 1u, 3u}) {
        TqBuffer b = BufferOf("abcd");
        b.AdvanceReadContext(2);
        Insert(b, "1", position);
        EXPECT_EQ(b.readPosition, 0u);
    }
}

TEST(TqBuffer, InsertAtOrBeyondTheEndAppends) {
    for (unsigned int position : {4u, 5u, 1000u, 0xFFFFFFFFu}) {
        TqBuffer b = BufferOf("abcd");
        b.AdvanceReadContext(2);
        Insert(b, "1", position);
        EXPECT_EQ(Held(b), BytesInside("abcd1", 2));
    }
}

TEST(TqBuffer, InsertIntoAnEmptyBufferAppends) {
    TqBuffer b;
    Insert(b, Letters(70), 0);
    EXPECT_EQ(Held(b), BytesInBlock(70, Letters(70)));
    b.TruncateAfter(0);
    Insert(b, "abc", 5);
    EXPECT_EQ(Held(b), BytesInBlock(70, "abc"));
}

TEST(TqBuffer, InsertBeforeTheEndChoosesTheStorageAnew) {
    TqBuffer b = BufferOf(Letters(100));
    b.TruncateAfter(63);
    Insert(b, "#", 0);
    EXPECT_EQ(Held(b), BytesInside("#" + Letters(63)));
    Insert(b, "#", 0);
    EXPECT_EQ(Held(b), BytesInBlock(65, "##" + Letters(63)));
    Insert(b, "12", 64);
    EXPECT_EQ(Held(b), BytesInBlock(67, "##" + Letters(62) + "12" + Letters(63).substr(62)));
}

TEST(TqBuffer, InsertOfNullIsReportedAndDoesNothing) {
    TqBuffer b = BufferOf("abcd");
    b.AdvanceReadContext(2);
    b.Insert(nullptr, 3, 1);
    EXPECT_EQ(TakeReports(), Reports({"TqBuffer"}));
    b.Insert(nullptr, 0, 1);
    EXPECT_EQ(TakeReports(), Reports({"TqBuffer"}));
    EXPECT_EQ(Held(b), BytesInside("abcd", 2));
}

TEST(TqBuffer, InsertOfNoBytesDoesNothing) {
    TqBuffer b = BufferOf("abcd");
    b.AdvanceReadContext(2);
    Insert(b, "", 1);
    EXPECT_EQ(Held(b), BytesInside("abcd", 2));
}

TEST(TqBuffer, InsertTakesItsOwnBytes) {
    TqBuffer b = BufferOf("abcd");
    b.Insert(b.data + 1, 3, 2);
    EXPECT_EQ(Held(b), BytesInside("abbcdcd"));
    b.Insert(b.data, 7, 7);
    EXPECT_EQ(Held(b), BytesInside("abbcdcdabbcdcd"));
    TqBuffer block = BufferOf(Letters(100));
    block.Insert(block.data + 50, 50, 1);
    EXPECT_EQ(Held(block),
              BytesInBlock(150, "a" + Letters(100).substr(50) + Letters(100).substr(1)));
}

// Access by index.

TEST(TqBuffer, IndexGivesTheByte) {
    const TqBuffer b = BufferOf(Exactly("a\0\xFF"));
    EXPECT_EQ(b[0], 'a');
    EXPECT_EQ(b[1], 0);
    EXPECT_EQ(b[2], 0xFF);
    EXPECT_EQ(BufferOf(Letters(100))[99], Letters(100)[99]);
}

TEST(TqBuffer, IndexNotBelowTheLengthIsReportedAndGivesZero) {
    TqBuffer b = BufferOf("abcd");
    b.TruncateAfter(2);
    for (unsigned int index : {2u, 3u, 64u, 0xFFFFFFFFu}) {
        EXPECT_EQ(b[index], 0);
        EXPECT_EQ(TakeReports(), Reports({"TqBuffer"}));
    }
}

TEST(TqBuffer, PutAtStoresTheByte) {
    TqBuffer b = BufferOf("abcd");
    b.AdvanceReadContext(2);
    b.PutAt(0, '1');
    b.PutAt(3, '4');
    EXPECT_EQ(Held(b), BytesInside("1bc4", 2));
}

TEST(TqBuffer, PutAtTheLengthIsReportedAndStoresBehindTheCountedBytes) {
    TqBuffer b = BufferOf("abcd");
    b.PutAt(4, 'x');
    EXPECT_EQ(TakeReports(), Reports({"TqBuffer"}));
    EXPECT_EQ(Held(b), BytesInside("abcd"));
    EXPECT_EQ(b.data[4], 'x');
    TqBuffer empty;
    empty.PutAt(0, 'x');
    EXPECT_EQ(TakeReports(), Reports({"TqBuffer"}));
    EXPECT_EQ(Held(empty), BytesInside(""));
    EXPECT_EQ(empty.data[0], 'x');
}

TEST(TqBuffer, PutAtBeyondTheLengthIsReportedAndStoresNothing) {
    TqBuffer b = BufferOf("abcd");
    for (unsigned int index : {5u, 63u, 64u, 0xFFFFFFFFu}) {
        b.PutAt(index, 'x');
        EXPECT_EQ(TakeReports(), Reports({"TqBuffer"}));
    }
    EXPECT_EQ(Inside(b), "abcd" + Zeroes(60));
}

TEST(TqBuffer, PutAtTheLengthOfAFullBlockStoresInTheBlock) {
    TqBuffer constructed = BufferOf(Letters(100)), copied(constructed), appended, grown;
    Append(appended, Letters(100));
    Append(grown, Letters(99));
    Append(grown, Letters(100).substr(99));
    for (TqBuffer* b : {&constructed, &copied, &appended, &grown}) {
        b->PutAt(100, 'x');
        EXPECT_EQ(TakeReports(), Reports({"TqBuffer"}));
        EXPECT_EQ(Held(*b), BytesInBlock(100, Letters(100)));
        EXPECT_EQ(b->data[100], 'x');
    }
}

TEST(TqBuffer, ABlockHasOneByteMoreThanItsCapacityForPutAt) {
    const unsigned char bytes[100] = {};
    WatchMemory(101);
    const TqBuffer constructed(bytes, 100), copied(constructed);
    TqBuffer appended;
    appended.Append(bytes, 100);
    if (heapIsWatched) {
        EXPECT_EQ(WatchedBlocks(), 3);
    }
    WatchMemory(0);
}

TEST(TqBuffer, PutAtTheLengthOfAFullInsideStoresNothing) {
    struct {
        TqBuffer full;
        unsigned char behind[8];
    } both = {BufferOf(Letters(64)), {1, 2, 3, 4, 5, 6, 7, 8}};
    both.full.PutAt(64, 'x');
    EXPECT_EQ(TakeReports(), Reports({"TqBuffer"}));
    EXPECT_EQ(Held(both.full), BytesInside(Letters(64)));
    for (unsigned char i = 0; i < 8; ++i) EXPECT_EQ(both.behind[i], i + 1);
}

TEST(TqBuffer, WriteOverwritesTheBytes) {
    TqBuffer b = BufferOf("abcdef");
    b.AdvanceReadContext(1);
    EXPECT_TRUE(b.Write(AsBytes("12"), 2, 0));
    EXPECT_TRUE(b.Write(AsBytes("4"), 1, 3));
    EXPECT_EQ(Held(b), BytesInside("12c4ef", 1));
}

TEST(TqBuffer, WriteThatEndsAtTheLengthSucceedsAndIsReported) {
    TqBuffer b = BufferOf("abcd");
    EXPECT_TRUE(b.Write(AsBytes("12"), 2, 2));
    EXPECT_EQ(TakeReports(), Reports({"TqBuffer"}));
    EXPECT_EQ(Held(b), BytesInside("ab12"));
    EXPECT_TRUE(b.Write(AsBytes("wxyz"), 4, 0));
    EXPECT_EQ(TakeReports(), Reports({"TqBuffer"}));
    EXPECT_EQ(Held(b), BytesInside("wxyz"));
    EXPECT_TRUE(b.Write(AsBytes("-"), 0, 4));
    EXPECT_EQ(TakeReports(), Reports({"TqBuffer"}));
    EXPECT_TRUE(TqBuffer().Write(AsBytes("-"), 0, 0));
    EXPECT_EQ(TakeReports(), Reports({"TqBuffer"}));
}

TEST(TqBuffer, WriteThatEndsBeyondTheLengthIsReportedAndWritesNothing) {
    struct {
        unsigned int count, position;
    } const cases[] = {{2, 3}, {5, 0}, {1, 4}, {0, 5}, {60, 5}};
    TqBuffer b = BufferOf("abcd");
    for (const auto& c : cases) {
        EXPECT_FALSE(b.Write(AsBytes(Letters(64)), c.count, c.position));
        EXPECT_EQ(TakeReports(), Reports({"TqBuffer"}));
    }
    EXPECT_EQ(Inside(b), "abcd" + Zeroes(60));
}

TEST(TqBuffer, ReadCopiesTheBytes) {
    TqBuffer b = BufferOf("abcdef");
    b.AdvanceReadContext(1);
    unsigned char read[8] = "-------";
    EXPECT_TRUE(b.Read(read, 3, 1));
    EXPECT_STREQ(reinterpret_cast<char*>(read), "bcd----");
    EXPECT_TRUE(b.Read(read, 0, 2));
    EXPECT_EQ(Held(b), BytesInside("abcdef", 1));
}

TEST(TqBuffer, ReadThatEndsAtTheLengthIsNotReported) {
    const TqBuffer b = BufferOf("abcd");
    unsigned char read[8] = "-------";
    EXPECT_TRUE(b.Read(read, 2, 2));
    EXPECT_STREQ(reinterpret_cast<char*>(read), "cd-----");
    EXPECT_TRUE(b.Read(read, 4, 0));
    EXPECT_STREQ(reinterpret_cast<char*>(read), "abcd---");
    EXPECT_TRUE(b.Read(read, 0, 4));
}

TEST(TqBuffer, ReadThatEndsBeyondTheLengthIsReportedAndCopiesNothing) {
    struct {
        unsigned int count, position;
    } const cases[] = {{2, 3}, {5, 0}, {1, 4}, {0, 5}, {60, 5}};
    const TqBuffer b = BufferOf("abcd");
    unsigned char read[8] = "-------";
    for (const auto& c : cases) {
        EXPECT_FALSE(b.Read(read, c.count, c.position));
        EXPECT_EQ(TakeReports(), Reports({"TqBuffer"}));
    }
    EXPECT_STREQ(reinterpret_cast<char*>(read), "-------");
}

// Position and count that come to a small number when their sum wraps around at 32 bits.
TEST(TqBuffer, AnEndBeyondAllNumbersIsRefused) {
    struct {
        unsigned int count, position;
    } const cases[] = {{2, 0xFFFFFFFF}, {0xFFFFFFFF, 2},          {0xFFFFFFFF, 1},
                       {1, 0xFFFFFFFF}, {0x80000000, 0x80000000}, {0xFFFFFFFF, 0xFFFFFFFF}};
    TqBuffer b = BufferOf("abcd");
    unsigned char bytes[8] = "-------";
    for (const auto& c : cases) {
        EXPECT_FALSE(b.Write(bytes, c.count, c.position));
        EXPECT_EQ(TakeReports(), Reports({"TqBuffer"}));
        EXPECT_FALSE(b.Read(bytes, c.count, c.position));
        EXPECT_EQ(TakeReports(), Reports({"TqBuffer"}));
    }
    EXPECT_EQ(Inside(b), "abcd" + Zeroes(60));
    EXPECT_STREQ(reinterpret_cast<char*>(bytes), "-------");
}

TEST(TqBuffer, WriteAndReadTakeItsOwnBytes) {
    TqBuffer b = BufferOf("abcdefgh");
    EXPECT_TRUE(b.Write(b.data, 4, 2));
    EXPECT_EQ(Bytes(b), "ababcdgh");
    EXPECT_TRUE(b.Read(b.data, 5, 1));
    EXPECT_EQ(Bytes(b), "babcddgh");
}

TEST(TqBuffer, TruncateSetsTheLengthAndKeepsTheStorage) {
    TqBuffer inside = BufferOf("abcd"), block = BufferOf(Letters(100));
    const unsigned char* storage = block.data;
    inside.TruncateAfter(2);
    block.TruncateAfter(3);
    EXPECT_EQ(Held(inside), BytesInside("ab"));
    EXPECT_EQ(Held(block), BytesInBlock(100, "abc"));
    EXPECT_EQ(block.data, storage);
    block.TruncateAfter(0);
    EXPECT_EQ(Held(block), BytesInBlock(100, ""));
}

TEST(TqBuffer, TruncateBeyondTheLengthKeepsTheLength) {
    TqBuffer b = BufferOf("abcd");
    for (unsigned int count : {4u, 5u, 0xFFFFFFFFu}) {
        b.TruncateAfter(count);
        EXPECT_EQ(Held(b), BytesInside("abcd"));
    }
}

TEST(TqBuffer, TruncateAlwaysResetsTheReadPosition) {
    for (unsigned int count : {0u, 2u, 4u, 5u}) {
        TqBuffer b = BufferOf("abcd");
        b.AdvanceReadContext(2);
        b.TruncateAfter(count);
        EXPECT_EQ(b.readPosition, 0u);
    }
}

TEST(TqBuffer, AdvanceMovesTheReadPositionAndPointsThere) {
    TqBuffer b = BufferOf("abcd");
    EXPECT_EQ(b.AdvanceReadContext(0), b.data);
    EXPECT_EQ(b.AdvanceReadContext(1), b.data + 1);
    EXPECT_EQ(b.readPosition, 1u);
    EXPECT_EQ(b.AdvanceReadContext(0), b.data + 1);
    EXPECT_EQ(b.AdvanceReadContext(3), b.data + 4);
    EXPECT_EQ(b.readPosition, 4u);
    EXPECT_EQ(b.AdvanceReadContext(0), b.data + 4);
}

TEST(TqBuffer, AdvanceBeyondTheLengthIsReportedAndStays) {
    TqBuffer b = BufferOf("abcd");
    b.AdvanceReadContext(2);
    for (unsigned int count : {3u, 4u, 0xFFFFFFFFu, 0xFFFFFFFEu, 0x80000000u}) {
        EXPECT_EQ(b.AdvanceReadContext(count), nullptr);
        EXPECT_EQ(TakeReports(), Reports({"TqBuffer"}));
        EXPECT_EQ(b.readPosition, 2u);
    }
    EXPECT_EQ(TqBuffer().AdvanceReadContext(1), nullptr);
    EXPECT_EQ(TakeReports(), Reports({"TqBuffer"}));
}

// Comparing.

int SignOf(int number) {
    return (number > 0) - (number < 0);
}

int CompareBytes(const std::string& a, const std::string& b) {
    return SignOf(BufferOf(a).Compare(BufferOf(b)));
}

TEST(TqBuffer, CompareOrdersAsMemcmp) {
    EXPECT_EQ(CompareBytes("abc", "abc"), 0);
    EXPECT_EQ(CompareBytes("abc", "abd"), -1);
    EXPECT_EQ(CompareBytes("b", "abc"), 1);
    EXPECT_EQ(CompareBytes("\x7F", "\x80"), -1);
    EXPECT_EQ(CompareBytes(Exactly("a\0b"), Exactly("a\0c")), -1);
    EXPECT_EQ(CompareBytes("", ""), 0);
}

TEST(TqBuffer, CompareTakesTheShorterOfEqualBeginningsAsSmaller) {
    const TqBuffer shorter = BufferOf("\x01\x02"), longer = BufferOf("\x01\x02\x03"), empty;
    EXPECT_EQ(shorter.Compare(longer), -1);
    EXPECT_EQ(longer.Compare(shorter), 1);
    EXPECT_EQ(longer.Compare(longer), 0);
    EXPECT_EQ(empty.Compare(shorter), -1);
    EXPECT_EQ(shorter.Compare(empty), 1);
}

TEST(TqBuffer, CompareReportsAnotherTypeAndGivesMinusOne) {
    const TqBuffer b = BufferOf("abc");
    EXPECT_EQ(b.Compare(Packet("abc")), -1);
    EXPECT_EQ(TakeReports(), Reports({"TqBuffer"}));
    EXPECT_EQ(b.Compare(Packet("")), -1);
    EXPECT_EQ(TakeReports(), Reports({"TqBuffer"}));
    EXPECT_EQ(b.Compare(TqNumber(1)), -1);
    EXPECT_EQ(TakeReports(), Reports({"TqBuffer"}));
    EXPECT_EQ(Packet("abc").Compare(b), -1);
    EXPECT_EQ(TakeReports(), Reports({"TqBuffer"}));
    EXPECT_EQ(Packet("abc").Compare(Packet("abc")), 0);
}

TEST(TqBuffer, EqualsComparesAllBytes) {
    TqBuffer abc = BufferOf("abc");
    const TqBuffer again = BufferOf("abc"), abd = BufferOf("abd"), ab = BufferOf("ab"), empty;
    EXPECT_TRUE(abc.Equals(&abc));
    EXPECT_TRUE(abc.Equals(&again));
    EXPECT_FALSE(abc.Equals(&abd));
    EXPECT_FALSE(abc.Equals(&ab));
    EXPECT_FALSE(ab.Equals(&abc));
    EXPECT_FALSE(empty.Equals(&ab));
    EXPECT_TRUE(empty.Equals(&empty));
    const TqBuffer x = BufferOf(Exactly("a\0x")), y = BufferOf(Exactly("a\0y"));
    EXPECT_FALSE(x.Equals(&y));
    EXPECT_TRUE(x.DoesNotEqual(&y));
}

TEST(TqBuffer, EqualsDoesNotCareForReadPositionOrStorage) {
    TqBuffer inside = BufferOf("abc"), block = BufferOf(Letters(100));
    block.TruncateAfter(3);
    inside.AdvanceReadContext(2);
    EXPECT_TRUE(inside.Equals(&block));
    EXPECT_TRUE(block.Equals(&inside));
    EXPECT_EQ(inside.Compare(block), 0);
}

TEST(TqBuffer, NullAndOtherTypesAreReportedAndEqualNothing) {
    const TqBuffer b = BufferOf("abc");
    const Packet same("abc");
    const TqNumber number(1);
    const TqDataType* const others[] = {nullptr, &same, &number};
    for (const TqDataType* other : others) {
        EXPECT_FALSE(b.Equals(other));
        EXPECT_EQ(TakeReports(), Reports({"TqBuffer"}));
        EXPECT_TRUE(b.DoesNotEqual(other));
        EXPECT_EQ(TakeReports(), Reports({"TqBuffer"}));
    }
    EXPECT_FALSE(same.Equals(&b));
    EXPECT_EQ(TakeReports(), Reports({"TqBuffer"}));
    EXPECT_TRUE(same.Equals(&same));
}

// Conversions.

TEST(TqBuffer, ToStringAppendsToWhatIsThere) {
    TqString out("x");
    BufferOf(Exactly("\x41\x00\x42")).ToString(out);
    EXPECT_EQ(Counted(out), "xA*B");
    TqBuffer().ToString(out);
    EXPECT_EQ(Counted(out), "xA*B");
}

TEST(TqBuffer, ToStringShowsWhatIsPrintable) {
    std::string bytes, expected;
    for (unsigned int byte = 0; byte < 256; ++byte) {
        bytes += static_cast<char>(byte);
        expected += byte >= 0x20 && byte <= 0x7E ? static_cast<char>(byte) : '*';
    }
    TqString out;
    BufferOf(bytes).ToString(out);
    EXPECT_EQ(Counted(out), expected);
}

TEST(TqBuffer, FromStringIsReportedAndChangesNothing) {
    TqBuffer b = BufferOf("abc");
    b.AdvanceReadContext(1);
    b.FromString("xyz");
    EXPECT_EQ(TakeReports(), Reports({"TqBuffer"}));
    b.FromString(nullptr);
    EXPECT_EQ(TakeReports(), Reports({"TqBuffer"}));
    EXPECT_EQ(Held(b), BytesInside("abc", 1));
}

TEST(TqBuffer, ToBufferAppendsTheItem) {
    EXPECT_EQ(ItemOf(BufferOf(Exactly("\x01\0\xFF"))), Exactly("00003\x01\0\xFF"));
    EXPECT_EQ(ItemOf(TqBuffer()), "00000");
    EXPECT_EQ(ItemOf(BufferOf(Letters(1234))), "01234" + Letters(1234));
    TqBuffer out = BufferOf("before");
    TqBuffer b = BufferOf("abc");
    b.AdvanceReadContext(2);
    b.ToBuffer(out);
    EXPECT_EQ(Held(out), BytesInside("before00003abc"));
    EXPECT_EQ(Held(b), BytesInside("abc", 2));
}

TEST(TqBuffer, ToBufferTakesExactlyTheRoomItNeeds) {
    TqBuffer inside, block;
    BufferOf(Letters(59)).ToBuffer(inside);
    EXPECT_EQ(Held(inside), BytesInside("00059" + Letters(59)));
    BufferOf(Letters(60)).ToBuffer(block);
    EXPECT_EQ(Held(block), BytesInBlock(65, "00060" + Letters(60)));
    BufferOf("x").ToBuffer(block);
    EXPECT_EQ(Held(block), BytesInBlock(71, "00060" + Letters(60) + "00001x"));
}

TEST(TqBuffer, AnItemBehindAShortBlockKeepsWhatIsThere) {
    for (unsigned int length = 50; length < 64; ++length) {
        TqBuffer longer = BufferOf(Letters(100));
        longer.TruncateAfter(length);
        TqBuffer out(longer);
        TqString(Letters(20).c_str()).ToBuffer(out);
        EXPECT_EQ(Held(out), BytesInBlock(length + 25, Letters(length) + "00020" + Letters(20)));
    }
}

TEST(TqBuffer, ABufferCanBeWrittenIntoItself) {
    TqBuffer inside = BufferOf("abc"), block = BufferOf(Letters(100));
    inside.ToBuffer(inside);
    EXPECT_EQ(Held(inside), BytesInside("abc00003abc"));
    TqBuffer moving = BufferOf(Letters(40));
    moving.ToBuffer(moving);
    EXPECT_EQ(Held(moving), BytesInBlock(85, Letters(40) + "00040" + Letters(40)));
    block.ToBuffer(block);
    EXPECT_EQ(Held(block), BytesInBlock(205, Letters(100) + "00100" + Letters(100)));
}

TEST(TqBuffer, FromBufferClearsAndTakesTheItem) {
    TqBuffer in = BufferOf(Exactly("00003\x01\0\xFF") + "0000000066" + Letters(66));
    TqBuffer b = BufferOf(Letters(100));
    b.AdvanceReadContext(9);
    b.FromBuffer(in);
    EXPECT_EQ(Held(b), BytesInside(Exactly("\x01\0\xFF")));
    EXPECT_EQ(in.readPosition, 8u);
    b.FromBuffer(in);
    EXPECT_EQ(Held(b), BytesInside(""));
    EXPECT_EQ(in.readPosition, 13u);
    b.FromBuffer(in);
    EXPECT_EQ(Held(b), BytesInBlock(66, Letters(66)));
    EXPECT_EQ(in.readPosition, 84u);
}

TEST(TqBuffer, ABufferReadFromItselfIsClearedFirst) {
    TqBuffer b = BufferOf("00003abc");
    b.FromBuffer(b);
    EXPECT_EQ(TakeReports(), Reports({"TqBuffer"}));
    EXPECT_EQ(Held(b), BytesInside(""));
}

TEST(TqBuffer, CloneIsACopy) {
    TqBuffer b = BufferOf(Letters(100));
    b.TruncateAfter(70);
    b.AdvanceReadContext(5);
    const std::unique_ptr<TqDataType> clone(b.Clone());
    EXPECT_EQ(Held(static_cast<TqBuffer&>(*clone)), BytesInBlock(70, Letters(70), 5));
    EXPECT_EQ(clone->TypeId(), 6);
}

}  // namespace
