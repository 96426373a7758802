// A program that has the comforts from the installed package.
#include <TqBuffer.h>
#include <TqDevelopmentAssert.h>
#include <TqDownload.h>

#include <cstdio>

int main() {
    TqDevelopmentAssert::Install();
    TqDownload download("192.0.2.1", "nothing");
    download.Cancel();
    TqBuffer content;
    std::puts(download.ToBuffer(content) == TqDownload::cancelled ? "42" : "no");
    return 0;
}
