// A program that knows nothing of the development assertion, and reads behind the end of a buffer.

#include <stdio.h>
#include <string.h>

#include "TqBuffer.h"
#include "TqHooks.h"

__attribute__((noinline, visibility("default"))) int ReadBehindTheEnd(const TqBuffer& buffer) {
    return buffer[buffer.length] + 1;
}

static void OwnHook(const char* file, int) {
    printf("own hook: %s\n", file);
}

int main(int argc, char** argv) {
    const bool hasHook = argc > 1 && strcmp(argv[1], "own") == 0;
    if (hasHook && TqRegisterAssertCb(OwnHook) != nullptr) return 2;
    const TqBuffer buffer;
    printf("%d\n", ReadBehindTheEnd(buffer));
    return hasHook && TqUnRegisterAssertCb() != OwnHook ? 2 : 0;
}
