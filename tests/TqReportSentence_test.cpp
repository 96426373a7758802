#include "TqReportSentence.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include "TqBuffer.h"
#include "TqFloat.h"
#include "TqHooks.h"
#include "TqReportTable.h"
#include "TqSnmpOid.h"
#include "TqString.h"

namespace {

using Key = std::vector<std::string>;

template <class T>
Key KeyOf(const T& one) {
    return {one.file, one.function, one.condition};
}

std::set<Key> KeysOfTable() {
    std::set<Key> keys;
    for (const TqReportRow& row : tqReportTable) keys.insert(KeyOf(row));
    return keys;
}

std::set<Key> KeysOfSources() {
    std::set<Key> keys;
    for (const TqReportSite& site : tqReportSites) keys.insert(KeyOf(site));
    return keys;
}

std::string Shown(const Key& key) {
    return key[0] + ": " + key[1] + "(): " + key[2];
}

// Counts what looks like a report in a file of the library, in the simplest way.
unsigned int ReportsIn(const std::string& path) {
    static const std::regex report(
        "^ .*(TQ_REPORT_IF\\(|(TqCallAssert|Report[A-Za-z]*)\\([^)]*__LINE__\\))");
    std::ifstream file(path);
    std::string line;
    unsigned int count = 0;
    while (std::getline(file, line)) count += std::regex_search(line, report) ? 1u : 0u;
    return count;
}

TEST(TqReportTable, EveryReportHasItsSentence) {
    const std::set<Key> table = KeysOfTable();
    for (const Key& key : KeysOfSources()) EXPECT_EQ(table.count(key), 1u) << Shown(key);
}

TEST(TqReportTable, EverySentenceHasItsReport) {
    const std::set<Key> sources = KeysOfSources();
    for (const Key& key : KeysOfTable()) EXPECT_EQ(sources.count(key), 1u) << Shown(key);
}

TEST(TqReportTable, NoSentenceStandsThereTwice) {
    EXPECT_EQ(KeysOfTable().size(), sizeof tqReportTable / sizeof *tqReportTable);
}

TEST(TqReportTable, NoReportOfTheSourcesWasOverlooked) {
    namespace fs = std::filesystem;
    if (!fs::is_directory(TQ_COMMON_FOLDER)) GTEST_SKIP() << "the sources are not here";
    std::size_t count = 0;
    for (const fs::directory_entry& file : fs::directory_iterator(TQ_COMMON_FOLDER)) {
        if (file.is_regular_file()) count += ReportsIn(file.path().string());
    }
    EXPECT_EQ(count, sizeof tqReportSites / sizeof *tqReportSites);
}

TEST(TqReportTable, SentencesNameTheirClassAndHaveNoFullStop) {
    for (const TqReportRow& row : tqReportTable) {
        const std::string sentence = row.sentence;
        EXPECT_EQ(sentence.substr(0, 2), "Tq") << sentence;
        EXPECT_NE(sentence.find(": "), std::string::npos) << sentence;
        EXPECT_NE(sentence.back(), '.') << sentence;
        EXPECT_EQ(std::count(sentence.begin(), sentence.end(), '`') % 2, 0) << sentence;
        const std::string function = row.function;
        if (function.find("::operator") != std::string::npos) {
            EXPECT_EQ(sentence.find(function), 0u) << sentence;
        }
    }
}

std::string told;

// What the next report says.
void Tell(const char* file, int line) {
    const char* const sentence = TqReportSentence(file, line);
    told = sentence != nullptr ? sentence : "";
}

class TqReportSentenceOf : public testing::Test {
protected:
    void SetUp() override {
        before = TqRegisterAssertCb(Tell);
        told.clear();
    }
    void TearDown() override { TqRegisterAssertCb(before); }

    TqAssertCb before = nullptr;
};

TEST_F(TqReportSentenceOf, AReportSaysWhatWasWrong) {
    TqBuffer buffer;
    buffer.Append(nullptr, 1);
    EXPECT_EQ(told, "TqBuffer::Append: `bytes` is null; nothing is appended");
    TqString string;
    string.AppendFloat(1, 100);
    EXPECT_EQ(told, "TqString::AppendFloat: `precision` is above 99");
    const TqSnmpOid oid("1.a.3");
    EXPECT_EQ(told,
              "TqSnmpOid: something other than a point stands between two numbers of an "
              "identifier's text");
}

TEST_F(TqReportSentenceOf, AReportOfAHeaderToo) {
    const TqFloat number(1);
    number.Equals(&static_cast<const TqDataType&>(TqString("x")));
    EXPECT_EQ(told, "TqFloat::Equals: `other` is no float; it is read as one all the same");
}

TEST_F(TqReportSentenceOf, NobodyElsesReportHasOne) {
    EXPECT_EQ(TqReportSentence("MyProgram", 12), nullptr);
    EXPECT_EQ(TqReportSentence("TqBuffer", 1), nullptr);
    EXPECT_EQ(TqReportSentence(nullptr, 1), nullptr);
}

}  // namespace
