// no_emulator -L FOLDER PROGRAM [ARGUMENT...]
//
// Stands in for the user mode emulator where there is nothing to emulate: runs the program.

#include <stdio.h>
#include <unistd.h>

int main(int argc, char** argv) {
    if (argc < 4) return 2;
    execv(argv[3], argv + 3);
    perror(argv[3]);
    return 127;
}
