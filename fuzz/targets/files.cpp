// Files of arbitrary bytes opened in any mode and read line by line.

#include "../Fuzz.h"
#include "../Values.h"
#include "TqFile.h"

namespace Files {

/// The lines that are to come, in the pieces in which they do.
class Lines {
public:
    explicit Lines(const std::string& itsContent) : content(itsContent) {}

    bool AreLeft() const { return at < content.size(); }
    std::string Next() {
        std::size_t end = content.find('\n', at);
        end = end == std::string::npos ? content.size() : end + 1;
        if (end - at > 1023) end = at + 1023;
        const std::string line = content.substr(at, end - at);
        at = end;
        return line;
    }

private:
    const std::string content;
    std::size_t at = 0;
};

bool IsReadable(int mode) {
    return mode == TqFile::read || mode == TqFile::readWrite || mode == TqFile::readAppend;
}

void ReadLine(TqFile& file, Lines& lines) {
    const bool isLeft = lines.AreLeft();
    const int state = file.fileState;
    char* const line = file.NextLine();
    MUST((line != nullptr) == isLeft);
    if (!isLeft) {
        MUST(file.fileState == TqFile::fileAtEnd);
        return;
    }
    const std::string expected = lines.Next();
    MUST(std::memcmp(line, expected.c_str(), expected.size() + 1) == 0);
    MUST(file.fileState == state);
}

void Open(TqFile& file, const char* name, int mode) {
    const bool isMode = mode >= 1 && mode <= 5;
    MUST(file.Open(name, mode) == (isMode ? 1 : 0));
    MUST(file.fileState == (isMode ? TqFile::fileOpen : TqFile::fileUnknown));
    MUST((file.stream != nullptr) == isMode && file.openMode == mode);
    MUST(Counted(file.fileName) == name);
}

void Close(TqFile& file) {
    const bool isOpen = file.stream != nullptr;
    const int state = file.fileState;
    MUST(file.Close() == 1);
    MUST(file.fileState == (isOpen ? TqFile::fileClosed : state));
}

void OpenNothing(TqFile& file) {
    MUST(file.NextLine() == nullptr && file.Close() == 1);
    MUST(file.fileState == TqFile::fileUnknown);
    MUST(file.Open("", TqFile::read) == 0 && TakeReports() == 1);
    MUST(file.Open("/nowhere/at all", TqFile::write) == 0 && file.stream == nullptr);
}

// What is said thrice over makes the long lines that nobody would guess.
std::string AnyContent(Input& input) {
    const unsigned int times = input.Below(8) == 0 ? 1 + input.Byte() : 1;
    const std::string piece = input.Bytes(40);
    std::string content;
    for (unsigned int i = 0; i < times; ++i) content += piece;
    return content + input.Rest();
}

void Fuzz(Input& input) {
    const int mode = static_cast<int>(input.Below(8)) - 1;
    const unsigned int pattern = input.Byte();
    const std::string content = AnyContent(input);
    TqFile files[2];
    if (pattern % 16 == 0) OpenNothing(files[0]);
    const char* const name = FileOf(content);
    Open(files[0], name, mode);
    Open(files[1], name, TqFile::read);
    // Two streams take turns at one line buffer.
    Lines lines[] = {Lines(IsReadable(mode) ? content : ""),
                     Lines(mode == TqFile::write ? "" : content)};
    for (unsigned int turn = 0; turn < 300; ++turn) {
        const unsigned int which = pattern >> (turn % 8) & 1;
        if (files[which].stream == nullptr) {
            MUST(files[which].NextLine() == nullptr);
            if (mode < 1 || mode > 5) break;
            continue;
        }
        const bool areLeft = lines[which].AreLeft();
        ReadLine(files[which], lines[which]);
        Tell(areLeft ? 1 : 0);
        if (!areLeft) break;
    }
    Close(files[0]);
    Close(files[1]);
    MUST(TakeReports() == 0);
}

const Target target("files", Fuzz);

}  // namespace Files
