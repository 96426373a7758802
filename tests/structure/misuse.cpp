// misuse [abort]
//
// Makes a mistake on purpose, so that what the development assertion prints can be seen and tested.

#include <stdio.h>

#include "TqBuffer.h"
#include "TqDevelopmentAssert.h"

// A program's own function, not inlined so that it has a frame.
__attribute__((noinline, visibility("default"))) int ReadBehindTheEnd(const TqBuffer& buffer) {
    return buffer[buffer.length] + 1;
}

int main(int argc, char**) {
    TqDevelopmentAssert::Install(argc > 1 ? TqDevelopmentAssert::abortProgram
                                          : TqDevelopmentAssert::goOn);
    const TqBuffer buffer;
    printf("%d\n", ReadBehindTheEnd(buffer));
    return TqDevelopmentAssert::Count() == 1 ? 0 : 1;
}
