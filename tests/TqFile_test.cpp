#include "TqFile.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/capability.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <new>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "Child.h"
#include "Random.h"
#include "Reports.h"
#include "SystemCalls.h"
#include "TqClassInfo.h"
#include "Values.h"

namespace {

// Read before any test, and so any operation, has run.
TqClassInfo* const infoAtLoad = TqFile::TqFileInfo;

using Lines = std::vector<std::string>;

// Has a directory of its own, which goes with the test.
class TqFileTest : public testing::Test {
protected:
    TqFileTest() {
        std::string name = testing::TempDir() + "tqfile.XXXXXX";
        directory = mkdtemp(&name[0]);
    }
    ~TqFileTest() override { std::filesystem::remove_all(directory); }

    std::string Path(const char* name) const { return directory + "/" + name; }

    std::string Make(const std::string& content) const {
        std::ofstream(Path("file"), std::ios::binary) << content;
        return Path("file");
    }

    std::string Content() const {
        std::ostringstream content;
        content << std::ifstream(Path("file"), std::ios::binary).rdbuf();
        return content.str();
    }

    std::string directory;
};

using TqFileDeathTest = TqFileTest;

int Open(TqFile& file, const std::string& path, int mode = TqFile::read) {
    return file.Open(path.c_str(), mode);
}

// All lines that are left.
Lines LinesOf(TqFile& file) {
    Lines lines;
    while (const char* line = file.NextLine()) lines.push_back(line);
    return lines;
}

TEST_F(TqFileTest, HasTheDocumentedModesAndStates) {
    const int* const constants[] = {&TqFile::read,     &TqFile::write,      &TqFile::readWrite,
                                    &TqFile::append,   &TqFile::readAppend, &TqFile::fileUnknown,
                                    &TqFile::fileOpen, &TqFile::fileAtEnd,  &TqFile::fileClosed};
    const int values[] = {1, 2, 3, 4, 5, 0, 1, 2, 3};
    for (int i = 0; i < 9; ++i) EXPECT_EQ(*constants[i], values[i]);
}

TEST_F(TqFileTest, IsNotOpenAtFirst) {
    const TqFile file;
    EXPECT_EQ(Held(file.fileName), HeldInside(""));
    EXPECT_EQ(file.openMode, -1);
    EXPECT_EQ(file.stream, nullptr);
    EXPECT_EQ(file.fileState, TqFile::fileUnknown);
}

void ExpectIsACopy(const TqFile& copy) {
    EXPECT_EQ(Counted(copy.fileName), "");
    EXPECT_EQ(copy.openMode, -1);
    EXPECT_EQ(copy.stream, nullptr);
    EXPECT_EQ(copy.fileState, -1);
    EXPECT_EQ(copy.refCount, 0);
}

TEST_F(TqFileTest, CopyIsReportedAndTakesNothing) {
    TqFile file;
    Open(file, Make("ab\n"));
    const TqFile copy(file);
    EXPECT_EQ(TakeReports(), Reports({"TqFile"}));
    ExpectIsACopy(copy);
    EXPECT_EQ(LinesOf(file), Lines({"ab\n"}));
    file.Close();
}

TEST_F(TqFileTest, CopyOfAFileThatIsBeingDestroyedIsReportedByTheBaseToo) {
    TqFile file;
    file.destroying = 1;
    const TqFile copy(file);
    EXPECT_EQ(TakeReports(), Reports({"TqBaseObject", "TqFile"}));
    file.destroying = 0;
}

TEST_F(TqFileTest, CloneIsACopy) {
    TqFile file;
    Open(file, Make("ab\n"));
    const std::unique_ptr<TqBaseObject> clone(file.Clone());
    EXPECT_EQ(TakeReports(), Reports({"TqFile"}));
    EXPECT_EQ(clone->ClassInfo(), TqFile::TqFileInitInfo());
    ExpectIsACopy(static_cast<TqFile&>(*clone));
    file.Close();
}

TEST_F(TqFileTest, AssignmentIsReportedAndChangesNothing) {
    TqFile file;
    Open(file, Make("ab\n"));
    const FILE* const stream = file.stream;
    EXPECT_EQ(&(file = TqFile()), &file);
    EXPECT_EQ(TakeReports(), Reports({"TqFile"}));
    EXPECT_EQ(Counted(file.fileName), Path("file"));
    EXPECT_EQ(file.openMode, TqFile::read);
    EXPECT_EQ(file.stream, stream);
    EXPECT_EQ(file.fileState, TqFile::fileOpen);
    file.Close();
}

TEST_F(TqFileTest, StaysOpenWhenItCannotBeClosed) {
    TqFile file;
    Open(file, Make("ab\n"));
    FILE* const stream = file.stream;
    close(fileno(stream));
    EXPECT_EQ(file.Close(), 0);
    EXPECT_EQ(file.fileState, TqFile::fileOpen);
    EXPECT_EQ(file.stream, stream);
}

TEST_F(TqFileTest, DestructorSetsTheStateAndLeavesTheStreamOpen) {
    alignas(TqFile) unsigned char storage[sizeof(TqFile)];
    TqFile* file = new (storage) TqFile;
    Open(*file, Make("ab\ncd\n"));
    FILE* const stream = file->stream;
    const volatile int* state = &file->fileState;
    file->~TqFile();
    EXPECT_EQ(*state, TqFile::fileUnknown);
    char line[10];
    EXPECT_STREQ(std::fgets(line, sizeof line, stream), "ab\n");
    EXPECT_EQ(std::fclose(stream), 0);
}

TEST_F(TqFileTest, HasADescriptorFromItsFirstUseOn) {
    EXPECT_EQ(infoAtLoad, nullptr);
    TqClassInfo* const info = TqFile::TqFileInitInfo();
    EXPECT_EQ(TqFile::TqFileInfo, info);
    EXPECT_EQ(TqFile::TqFileInitInfo(), info);
    EXPECT_EQ(TqFile().ClassInfo(), info);
    EXPECT_EQ(Counted(info->name), "TqFile");
    EXPECT_EQ(info->parent, TqBaseObject::TqBaseObjectInitInfo());
    EXPECT_EQ(info->createFunc, &TqFileNewFunc);
}

TEST_F(TqFileTest, IsAFileAndABaseObject) {
    const TqFile file;
    EXPECT_EQ(file.IsA(TqFile::TqFileInitInfo()), 1);
    EXPECT_EQ(file.IsA(TqBaseObject::TqBaseObjectInitInfo()), 1);
    EXPECT_EQ(TqBaseObject().IsA(TqFile::TqFileInitInfo()), 0);
}

TEST_F(TqFileTest, IsMadeByTheFactory) {
    const std::unique_ptr<TqBaseObject> made[] = {
        std::unique_ptr<TqBaseObject>(TqFileNewFunc()),
        std::unique_ptr<TqBaseObject>(TqFile().NewInstance()),
        std::unique_ptr<TqBaseObject>(TqFile::TqFileInitInfo()->NewObject())};
    for (const std::unique_ptr<TqBaseObject>& object : made) {
        EXPECT_EQ(object->ClassInfo(), TqFile::TqFileInfo);
        EXPECT_EQ(static_cast<TqFile&>(*object).fileState, TqFile::fileUnknown);
    }
}

TEST_F(TqFileTest, OpensForReading) {
    TqFile file;
    EXPECT_EQ(Open(file, Make("ab\n")), 1);
    EXPECT_EQ(Counted(file.fileName), Path("file"));
    EXPECT_EQ(file.openMode, 1);
    EXPECT_NE(file.stream, nullptr);
    EXPECT_EQ(file.fileState, TqFile::fileOpen);
    EXPECT_LT(std::fputs("x", file.stream), 0);
    EXPECT_EQ(file.Close(), 1);
    EXPECT_EQ(Content(), "ab\n");
}

// Almost all of the file is a hole that takes no room.
TEST_F(TqFileTest, OpensAFileAboveTwoGibibytesAndReadsItsLastLine) {
    Make("first\n");
    const off_t end = (off_t(1) << 31) + 4096;
    const int descriptor = open(Path("file").c_str(), O_WRONLY);
    if (pwrite(descriptor, "\nlast\n", 6, end) != 6) {
        close(descriptor);
        GTEST_SKIP() << "no file so large here: " << std::strerror(errno);
    }
    close(descriptor);
    TqFile file;
    ASSERT_EQ(Open(file, Path("file")), 1) << std::strerror(errno);
    EXPECT_STREQ(file.NextLine(), "first\n");
    ASSERT_EQ(fseeko(file.stream, end + 1, SEEK_SET), 0);
    EXPECT_EQ(LinesOf(file), Lines({"last\n"}));
    EXPECT_EQ(file.Close(), 1);
}

TEST_F(TqFileTest, OpensForWritingATruncatedOrNewFile) {
    TqFile file;
    EXPECT_EQ(Open(file, Make("long old content\n"), TqFile::write), 1);
    EXPECT_GE(std::fputs("new\n", file.stream), 0);
    EXPECT_EQ(file.Close(), 1);
    EXPECT_EQ(Content(), "new\n");
    EXPECT_EQ(Open(file, Path("other"), TqFile::write), 1);
    EXPECT_EQ(file.openMode, 2);
    EXPECT_EQ(file.Close(), 1);
    EXPECT_TRUE(std::filesystem::exists(Path("other")));
}

TEST_F(TqFileTest, OpensAnExistingFileForReadingAndWriting) {
    TqFile file;
    EXPECT_EQ(Open(file, Make("ab\ncd\n"), TqFile::readWrite), 1);
    EXPECT_STREQ(file.NextLine(), "ab\n");
    std::fseek(file.stream, 0, SEEK_SET);
    EXPECT_GE(std::fputs("xy", file.stream), 0);
    EXPECT_EQ(file.Close(), 1);
    EXPECT_EQ(Content(), "xy\ncd\n");
    EXPECT_EQ(Open(file, Path("other"), TqFile::readWrite), 0);
    EXPECT_FALSE(std::filesystem::exists(Path("other")));
}

TEST_F(TqFileTest, OpensForAppending) {
    TqFile file;
    EXPECT_EQ(Open(file, Make("ab\n"), TqFile::append), 1);
    std::fseek(file.stream, 0, SEEK_SET);
    EXPECT_EQ(file.NextLine(), nullptr);
    EXPECT_GE(std::fputs("cd\n", file.stream), 0);
    EXPECT_EQ(file.Close(), 1);
    EXPECT_EQ(Content(), "ab\ncd\n");
    EXPECT_EQ(Open(file, Path("other"), TqFile::append), 1);
    EXPECT_EQ(file.Close(), 1);
    EXPECT_TRUE(std::filesystem::exists(Path("other")));
}

TEST_F(TqFileTest, OpensForReadingAndAppending) {
    TqFile file;
    EXPECT_EQ(Open(file, Make("ab\n"), TqFile::readAppend), 1);
    EXPECT_STREQ(file.NextLine(), "ab\n");
    std::fseek(file.stream, 0, SEEK_SET);
    EXPECT_GE(std::fputs("cd\n", file.stream), 0);
    EXPECT_EQ(file.Close(), 1);
    EXPECT_EQ(Content(), "ab\ncd\n");
    EXPECT_EQ(Open(file, Path("other"), TqFile::readAppend), 1);
    EXPECT_EQ(file.Close(), 1);
    EXPECT_TRUE(std::filesystem::exists(Path("other")));
}

void ExpectNotOpened(TqFile& file, int error) {
    EXPECT_EQ(errno, error);
    EXPECT_EQ(file.stream, nullptr);
    EXPECT_EQ(file.fileState, TqFile::fileUnknown);
    EXPECT_EQ(file.NextLine(), nullptr);
    EXPECT_EQ(file.fileState, TqFile::fileUnknown);
    EXPECT_EQ(file.Close(), 1);
    EXPECT_EQ(file.fileState, TqFile::fileUnknown);
}

TEST_F(TqFileTest, DoesNotOpenAMissingFile) {
    TqFile file;
    EXPECT_EQ(Open(file, Path("missing")), 0);
    ExpectNotOpened(file, ENOENT);
    EXPECT_EQ(Counted(file.fileName), Path("missing"));
    EXPECT_EQ(file.openMode, TqFile::read);
}

TEST_F(TqFileTest, DoesNotOpenInAnUnknownMode) {
    for (int mode : {0, 6, -1, 7, 256 + 1, INT_MIN, INT_MAX}) {
        TqFile file;
        EXPECT_EQ(Open(file, Make("ab\n"), mode), 0) << mode;
        ExpectNotOpened(file, EINVAL);
        EXPECT_EQ(file.openMode, mode);
        EXPECT_EQ(Counted(file.fileName), Path("file"));
        EXPECT_EQ(Open(file, Path("other"), mode), 0) << mode;
        EXPECT_FALSE(std::filesystem::exists(Path("other")));
    }
    EXPECT_EQ(Content(), "ab\n");
}

TEST_F(TqFileTest, ReportsAnEmptyNameAndDoesNotOpen) {
    for (int mode = 1; mode <= 5; ++mode) {
        TqFile file;
        EXPECT_EQ(file.Open("", mode), 0);
        EXPECT_EQ(TakeReports(), Reports({"TqFile"}));
        ExpectNotOpened(file, ENOENT);
    }
    TqFile file;
    EXPECT_EQ(file.Open("", 0), 0);
    EXPECT_EQ(TakeReports(), Reports({"TqFile"}));
    ExpectNotOpened(file, EINVAL);
}

TEST_F(TqFileTest, TakesANullNameAsAnEmptyOne) {
    TqFile file;
    file.fileName = "old";
    EXPECT_EQ(file.Open(nullptr, TqFile::read), 0);
    EXPECT_EQ(TakeReports(), Reports({"TqFile"}));
    EXPECT_EQ(Counted(file.fileName), "");
    ExpectNotOpened(file, ENOENT);
}

TEST_F(TqFileTest, OpensItsOwnNameAgain) {
    TqFile file;
    Open(file, Make("ab\n"));
    file.Close();
    EXPECT_EQ(file.Open(file.fileName.data, TqFile::read), 1);
    EXPECT_EQ(Counted(file.fileName), Path("file"));
    EXPECT_STREQ(file.NextLine(), "ab\n");
    file.Close();
}

TEST_F(TqFileTest, DoesNotCloseAnEarlierStreamWhenOpenedAgain) {
    TqFile file;
    Open(file, Make("ab\ncd\n"));
    FILE* const earlier = file.stream;
    EXPECT_STREQ(file.NextLine(), "ab\n");
    EXPECT_EQ(Open(file, Path("file")), 1);
    EXPECT_NE(file.stream, earlier);
    EXPECT_STREQ(file.NextLine(), "ab\n");
    char line[10];
    EXPECT_STREQ(std::fgets(line, sizeof line, earlier), "cd\n");
    EXPECT_EQ(std::fclose(earlier), 0);
    file.Close();
}

TEST_F(TqFileTest, AFailedOpenForgetsAnEarlierStream) {
    TqFile file;
    Open(file, Make("ab\n"));
    FILE* const earlier = file.stream;
    EXPECT_EQ(Open(file, Path("missing")), 0);
    ExpectNotOpened(file, ENOENT);
    EXPECT_EQ(std::fclose(earlier), 0);
}

TEST_F(TqFileTest, ReadsLinesWithTheirNewlines) {
    TqFile file;
    Open(file, Make("ab\ncd"));
    EXPECT_STREQ(file.NextLine(), "ab\n");
    EXPECT_EQ(file.fileState, TqFile::fileOpen);
    EXPECT_STREQ(file.NextLine(), "cd");
    EXPECT_EQ(file.fileState, TqFile::fileOpen);
    EXPECT_EQ(file.NextLine(), nullptr);
    EXPECT_EQ(file.fileState, TqFile::fileAtEnd);
    EXPECT_EQ(file.NextLine(), nullptr);
    EXPECT_EQ(file.fileState, TqFile::fileAtEnd);
    file.Close();
}

TEST_F(TqFileTest, ReadsEmptyLinesAndOtherLineEndsAsTheyAre) {
    TqFile file;
    Open(file, Make("\n\na\r\n\r \n"));
    EXPECT_EQ(LinesOf(file), Lines({"\n", "\n", "a\r\n", "\r \n"}));
    file.Close();
}

TEST_F(TqFileTest, AnEmptyFileIsAtItsEnd) {
    TqFile file;
    Open(file, Make(""));
    EXPECT_EQ(file.NextLine(), nullptr);
    EXPECT_EQ(file.fileState, TqFile::fileAtEnd);
    file.Close();
}

TEST_F(TqFileTest, ReadsALongLineInPiecesIntoTheSameBuffer) {
    TqFile file;
    Open(file, Make(Letters(2000) + "\nz\n"));
    const char* const first = file.NextLine();
    EXPECT_EQ(first, Letters(1023));
    const char* const second = file.NextLine();
    EXPECT_EQ(second, Letters(2000).substr(1023) + "\n");
    EXPECT_EQ(std::strlen(second), 978u);
    EXPECT_EQ(first, second);
    EXPECT_STREQ(file.NextLine(), "z\n");
    file.Close();
}

TEST_F(TqFileTest, ReadsLinesAroundTheSizeOfTheBuffer) {
    for (unsigned int length : {1021u, 1022u, 1023u, 1024u, 2045u, 2046u, 2047u}) {
        const std::string line = Letters(length) + "\n";
        Lines pieces;
        for (std::size_t at = 0; at < line.size(); at += 1023) {
            pieces.push_back(line.substr(at, 1023));
        }
        TqFile file;
        Open(file, Make(line));
        EXPECT_EQ(LinesOf(file), pieces) << length;
        file.Close();
        Open(file, Make(Letters(length)));
        EXPECT_EQ(LinesOf(file).size(), (length + 1022) / 1023) << length;
        file.Close();
    }
}

TEST_F(TqFileTest, LeavesNulsInTheLine) {
    const std::string content("a\0b\nc\n", 6);
    TqFile file;
    Open(file, Make(content));
    EXPECT_EQ(std::memcmp(file.NextLine(), "a\0b\n", 5), 0);
    EXPECT_STREQ(file.NextLine(), "c\n");
    file.Close();
}

TEST_F(TqFileTest, TwoFilesOverwriteEachOthersLastLine) {
    TqFile a, b;
    Open(a, Make("of a\n"));
    std::ofstream(Path("b")) << "of b\n";
    Open(b, Path("b"));
    const char* const lineOfA = a.NextLine();
    EXPECT_STREQ(lineOfA, "of a\n");
    EXPECT_EQ(b.NextLine(), lineOfA);
    EXPECT_STREQ(lineOfA, "of b\n");
    a.Close();
    b.Close();
}

TEST_F(TqFileTest, AFileThatWasNotOpenedHasNoLines) {
    TqFile file;
    EXPECT_EQ(file.NextLine(), nullptr);
    EXPECT_EQ(file.fileState, TqFile::fileUnknown);
}

TEST_F(TqFileTest, AReadErrorIsAnEnd) {
    TqFile file;
    Open(file, Make("ab\n"), TqFile::write);
    EXPECT_EQ(file.NextLine(), nullptr);
    EXPECT_EQ(file.fileState, TqFile::fileAtEnd);
    file.Close();
}

TEST_F(TqFileTest, CloseKeepsTheStreamPointer) {
    TqFile file;
    Open(file, Make("ab\n"));
    const FILE* const stream = file.stream;
    EXPECT_EQ(file.Close(), 1);
    EXPECT_EQ(file.fileState, TqFile::fileClosed);
    EXPECT_EQ(file.stream, stream);
    EXPECT_EQ(Counted(file.fileName), Path("file"));
    EXPECT_EQ(file.openMode, TqFile::read);
}

TEST_F(TqFileTest, CloseReallyCloses) {
    TqFile file;
    Open(file, Make("ab\n"));
    const int descriptor = fileno(file.stream);
    file.Close();
    EXPECT_EQ(fcntl(descriptor, F_GETFD), -1);
}

TEST_F(TqFileTest, ClosesAtTheEndToo) {
    TqFile file;
    Open(file, Make("ab\n"));
    EXPECT_EQ(LinesOf(file), Lines({"ab\n"}));
    EXPECT_EQ(file.Close(), 1);
    EXPECT_EQ(file.fileState, TqFile::fileClosed);
}

TEST_F(TqFileTest, CloseOfAFileThatWasNotOpenedDoesNothing) {
    TqFile file;
    EXPECT_EQ(file.Close(), 1);
    EXPECT_EQ(file.fileState, TqFile::fileUnknown);
}

TEST_F(TqFileTest, OpensAgainAfterAClose) {
    TqFile file;
    Open(file, Make("ab\n"));
    LinesOf(file);
    file.Close();
    EXPECT_EQ(Open(file, Path("file")), 1);
    EXPECT_EQ(file.fileState, TqFile::fileOpen);
    EXPECT_EQ(LinesOf(file), Lines({"ab\n"}));
    file.Close();
}

TEST_F(TqFileTest, CloseOfAFileThatMayNotGrowFailsAndLeavesTheState) {
    // Nothing of the test's own process is to be limited.
    Child child([this] {
        signal(SIGXFSZ, SIG_IGN);
        const rlimit none = {0, 0};
        setrlimit(RLIMIT_FSIZE, &none);
        TqFile file;
        const bool failed = Open(file, Path("full"), TqFile::write) == 1 &&
                            std::fputs("x", file.stream) >= 0 && file.Close() == 0;
        _exit(failed && errno == EFBIG && file.fileState == TqFile::fileOpen ? 0 : 1);
    });
    int status = 1;
    EXPECT_TRUE(child.Wait(60000, status));
    EXPECT_EQ(status, 0);
}

TEST_F(TqFileTest, ADirectoryOpensForReadingAndHasNoLines) {
    TqFile file;
    EXPECT_EQ(Open(file, directory), 1);
    EXPECT_EQ(file.NextLine(), nullptr);
    EXPECT_EQ(file.fileState, TqFile::fileAtEnd);
    EXPECT_EQ(file.Close(), 1);
    EXPECT_EQ(Open(file, directory, TqFile::write), 0);
    ExpectNotOpened(file, EISDIR);
}

// The superuser may read everything: another user tries.
// Root may open any file; afterwards only what its mode allows. Returns whether that worked.
bool DropPrivileges() {
    __user_cap_header_struct header = {_LINUX_CAPABILITY_VERSION_3, 0};
    const __user_cap_data_struct none[_LINUX_CAPABILITY_U32S_3] = {};
    return syscall(SYS_capset, &header, none) == 0;
}

TEST_F(TqFileDeathTest, DoesNotOpenAnUnreadableFile) {
    const std::string path = Make("ab\n");
    chmod(path.c_str(), 0);
    const auto tryToOpen = [&path] {
        if (!DropPrivileges()) _exit(1);
        TqFile file;
        const bool opened = Open(file, path) != 0;
        _exit(!opened && errno == EACCES && file.stream == nullptr ? 0 : 2);
    };
    EXPECT_EXIT(tryToOpen(), testing::ExitedWithCode(0), "");
}

TEST_F(TqFileTest, ReadsLinesFromAPipeAsTheyCome) {
    ASSERT_EQ(mkfifo(Path("pipe").c_str(), 0600), 0);
    std::thread writer([this] {
        std::ofstream pipe(Path("pipe"));
        pipe << "one\ntw" << std::flush;
        usleep(20000);
        pipe << "o\nthree";
    });
    TqFile file;
    EXPECT_EQ(Open(file, Path("pipe")), 1);
    EXPECT_EQ(LinesOf(file), Lines({"one\n", "two\n", "three"}));
    EXPECT_EQ(file.fileState, TqFile::fileAtEnd);
    EXPECT_EQ(file.Close(), 1);
    writer.join();
}

void Append(const std::string& path, const char* text) {
    std::ofstream(path, std::ios::app) << text;
}

TEST_F(TqFileTest, ReadsWhatAFileGrewByBeforeItsEndWasRead) {
    // More than the stream reads at once, so that the end is not known yet.
    const std::string head = Letters(1000000) + "\n";
    TqFile file;
    Open(file, Make(head));
    std::string read = file.NextLine();
    Append(Path("file"), "more\n");
    while (const char* line = file.NextLine()) read += line;
    EXPECT_EQ(read, head + "more\n");
    file.Close();
}

TEST_F(TqFileTest, ReadingOnBehindTheEndLeavesTheState) {
    TqFile file;
    Open(file, Make("ab\n"));
    EXPECT_EQ(LinesOf(file), Lines({"ab\n"}));
    Append(Path("file"), "more\n");
    std::clearerr(file.stream);
    EXPECT_STREQ(file.NextLine(), "more\n");
    EXPECT_EQ(file.fileState, TqFile::fileAtEnd);
    file.Close();
}

// Lines of all lengths, longer than the line buffer now and then, of this many bytes in all.
std::string ManyLines(std::size_t bytes) {
    Random random(1);
    const std::string letters = Letters(5000);
    std::string lines;
    lines.reserve(bytes + letters.size());
    while (lines.size() < bytes) {
        lines.append(letters, 0, random.Below(50) != 0 ? random.Below(150) : random.Below(5000));
        lines += '\n';
    }
    lines.resize(bytes);
    return lines;
}

TEST_F(TqFileTest, ReadsALargeFileByteForByteWithoutAllocating) {
    const std::string content = ManyLines(100000000);
    TqFile file;
    Open(file, Make(content));
    std::size_t read = 0;
    bool same = true;
    unsigned int heapCalls = 0;
    while (const char* line = file.NextLine()) {
        // The stream has its buffer from the first line on.
        if (read == 0) heapCalls = HeapCalls();
        const std::size_t length = std::strlen(line);
        same = same && content.compare(read, length, line) == 0;
        read += length;
    }
    EXPECT_EQ(HeapCalls(), heapCalls);
    EXPECT_TRUE(same);
    EXPECT_EQ(read, content.size());
    file.Close();
}

}  // namespace
