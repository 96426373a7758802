// Makes a mistake on purpose, so that what the development hook prints can be seen and tested.

#include <stdio.h>

#include "DevelopmentAssert.h"
#include "TqBuffer.h"

// A program's own function, not inlined so that it has a frame.
__attribute__((noinline, visibility("default"))) int ReadBehindTheEnd(const TqBuffer& buffer) {
    return buffer[buffer.length] + 1;
}

int main() {
    InstallDevelopmentAssert();
    const TqBuffer buffer;
    printf("%d\n", ReadBehindTheEnd(buffer));
    return DevelopmentAssertCount() == 1 ? 0 : 1;
}
