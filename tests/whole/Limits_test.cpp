// The limits that docs/security.md states, tried. Each row of its table is looked up here by its
// words, and one that no test looks up fails.

#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <set>
#include <string>

#include "Files.h"
#include "TqBuffer.h"
#include "TqFile.h"
#include "TqSortedStringList.h"
#include "TqString.h"
#include "TqTftp.h"

namespace {

const std::map<std::string, unsigned int> statedLimits = {
#include "StatedLimits.inc"
};

unsigned int Stated(const std::string& what) {
    const auto limit = statedLimits.find(what);
    EXPECT_NE(limit, statedLimits.end()) << what;
    return limit == statedLimits.end() ? 0 : limit->second;
}

// The length of a text of so many characters after it was an item.
unsigned int LengthReadBack(unsigned int length) {
    const TqString text(std::string(length, 'x').c_str());
    TqBuffer buffer;
    text.ToBuffer(buffer);
    TqString back;
    back.FromBuffer(buffer);
    return back.length;
}

TEST(Limits, AllThatAreStatedAreTriedHere) {
    const std::set<std::string> tried = {
        "bytes of an item's payload",          "bytes of an item's length",
        "blocks of a TFTP transfer",           "bytes of a TFTP block",
        "bytes of a file fetched by TFTP",     "strings in a sorted list",
        "characters of a line's piece",        "milliseconds of the client's first time-out",
        "milliseconds of its longest time-out"};
    std::set<std::string> stated;
    for (const auto& limit : statedLimits) stated.insert(limit.first);
    EXPECT_EQ(stated, tried);
}

TEST(Limits, AnItemHoldsSoManyBytesAndNoMore) {
    const unsigned int most = Stated("bytes of an item's payload");
    EXPECT_EQ(LengthReadBack(most), most);
    EXPECT_LT(LengthReadBack(most + 1), most);
}

TEST(Limits, AnItemWithoutBytesIsItsLengthAlone) {
    TqBuffer buffer;
    TqString().ToBuffer(buffer);
    EXPECT_EQ(buffer.length, Stated("bytes of an item's length"));
}

// The client is given such a file, and one that is larger, by the servers of TqTftp's tests.
TEST(Limits, TheLargestFileEndsWithAShortBlock) {
    const unsigned int blocks = Stated("blocks of a TFTP transfer");
    EXPECT_EQ(Stated("bytes of a file fetched by TFTP"),
              blocks * Stated("bytes of a TFTP block") - 1);
    EXPECT_EQ(blocks, 0xFFFFu);
}

TEST(Limits, ASortedListTakesSoManyStrings) {
    const unsigned int most = Stated("strings in a sorted list");
    TqString early("a");
    TqString late("b");
    TqSortedStringList list;
    list.PreAlloc(most + 1);
    while (list.count < most - 1) list.InsertSlot(list.count + 1, &early);
    list.Add(&late);
    EXPECT_EQ(list.count, most);
    EXPECT_EQ(list.Last(), &late);
}

TEST(Limits, ALongLineComesInPiecesOfSoManyCharacters) {
    const unsigned int most = Stated("characters of a line's piece");
    const TemporaryDirectory directory;
    WriteFile(directory.Path("long"), std::string(most + 1, 'x'));
    TqFile file;
    ASSERT_EQ(file.Open(directory.Path("long").c_str(), TqFile::read), 1);
    EXPECT_EQ(std::strlen(file.NextLine()), most);
    EXPECT_EQ(std::strlen(file.NextLine()), 1u);
    file.Close();
}

TEST(Limits, TheTimeoutBeginsAndEndsThere) {
    const unsigned int first = Stated("milliseconds of the client's first time-out");
    const unsigned int longest = Stated("milliseconds of its longest time-out");
    TFTP_TO_STRUCT to;
    EXPECT_EQ(TFTP_timeout_init(&to), first);
    unsigned int last = first;
    for (int i = 0; i < 10; ++i) {
        to.startTime -= to.timeout;
        last = TFTP_timeout_left(&to, nullptr);
    }
    EXPECT_EQ(last, longest);
}

}  // namespace
