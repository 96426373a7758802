// tftp_client SERVER NAME FILE
//
// Fetches NAME by TFTP into FILE, and nothing else.

#include <arpa/inet.h>

#include <cstdio>

#include "TqTftp.h"

int main(int argc, char** argv) {
    in_addr server;
    if (argc != 4 || inet_pton(AF_INET, argv[1], &server) != 1) return 2;
    std::FILE* file = std::fopen(argv[3], "wb");
    if (file == nullptr) return 2;
    TFTP_OPEN_STRUCT request = {server.s_addr, argv[2], "octet"};
    if (TFTP_open(&request) != 0) return 1;
    while (TFTP_eof() == 0) {
        unsigned int length;
        const unsigned char* block = TFTP_read(&length);
        if (block == nullptr) return 1;
        std::fwrite(block, 1, length, file);
    }
    TFTP_close();
    return std::fclose(file) == 0 ? 0 : 1;
}
