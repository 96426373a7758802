#include "TqTftpText.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "TqDownload.h"
#include "TqTftp.h"

namespace {

std::string Text(unsigned int result, const char* words = nullptr, unsigned int seconds = 0) {
    return TqTftpText(result, words, seconds).data;
}

TEST(TqTftpText, EveryResultHasASentenceOfItsOwn) {
    const unsigned int results[] = {TFTP_NOT_OPEN,
                                    TFTP_NO_SOCKET,
                                    TFTP_NO_MEMORY,
                                    TFTP_NOT_SENT,
                                    TFTP_SERVER_ERROR + 0,
                                    TFTP_SERVER_ERROR + 1,
                                    TFTP_SERVER_ERROR + 2,
                                    TFTP_SERVER_ERROR + 3,
                                    TFTP_SERVER_ERROR + 4,
                                    TFTP_SERVER_ERROR + 5,
                                    TFTP_SERVER_ERROR + 6,
                                    TFTP_SERVER_ERROR + 7,
                                    TFTP_SERVER_ERROR + 8,
                                    TqDownload::cancelled,
                                    TqDownload::late,
                                    TqDownload::silent,
                                    TqDownload::tooLarge,
                                    TqDownload::tooMany,
                                    TqDownload::refused,
                                    TqDownload::noServer,
                                    TqDownload::noThread,
                                    TqDownload::nested,
                                    ~0u};
    std::set<std::string> sentences;
    for (const unsigned int result : results) {
        const std::string sentence = Text(result);
        EXPECT_NE(sentence, "") << result;
        EXPECT_TRUE(sentences.insert(sentence).second) << sentence;
    }
}

TEST(TqTftpText, SuccessNeedsNoWords) {
    EXPECT_EQ(Text(0), "");
    EXPECT_EQ(Text(0, "Success", 5), "");
}

TEST(TqTftpText, TheServersCodeAndWordsStandBehindItsErrors) {
    EXPECT_EQ(Text(0x811), "the server has no such file (error 1)");
    EXPECT_EQ(Text(0x811, ""), "the server has no such file (error 1)");
    EXPECT_EQ(Text(0x811, "Not here"), "the server has no such file (error 1: Not here)");
    EXPECT_EQ(Text(0x810 + 65535, "odd"),
              "the server reports an error of its own (error 65535: odd)");
}

TEST(TqTftpText, TheSystemsReasonStandsBehindFailuresOfThisMachine) {
    EXPECT_EQ(Text(TFTP_NO_SOCKET, "Too many open files"),
              "the socket could not be created (Too many open files)");
    EXPECT_EQ(Text(~0u, "Address already in use"),
              "the socket could not be bound to a port (Address already in use)");
    EXPECT_EQ(Text(TqDownload::refused, "No space left on device"),
              "what came could not be stored (No space left on device)");
    EXPECT_EQ(Text(TqDownload::noServer, "Name or service not known"), "Name or service not known");
}

TEST(TqTftpText, TimesAreSaidWhereTheyAreKnown) {
    EXPECT_EQ(Text(TqDownload::silent), "no new block in time");
    EXPECT_EQ(Text(TqDownload::silent, nullptr, 1), "no new block for 1 second");
    EXPECT_EQ(Text(TqDownload::late, "", 60), "not complete after 60 seconds");
    EXPECT_EQ(Text(TqDownload::late), "not complete in time");
}

}  // namespace
