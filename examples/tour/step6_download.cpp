// A configuration fetched by TFTP, and the ports that it asks for.
#include <TqDownload.h>

#include <cstdio>

#include "Configuration.h"

static bool Fetch(const char* server, const char* name, const char* path) {
    TqDownload download(server, name);
    download.deadline = 60;  // seconds; a fetch always ends
    if (download.ToFile(path) == TqDownload::complete) {
        std::printf("%s: %llu bytes\n", name, download.bytes);
        return true;
    }
    TqString reason;
    download.AppendText(reason);
    std::printf("%s: %s\n", name, reason.data);
    return false;
}

int main(int, char** arguments) {
    const char* const server = arguments[1];
    const char* const path = arguments[2];
    Fetch(server, "missing.txt", path);
    if (!Fetch(server, "ports.txt", path)) return 1;

    RegisterPorts();
    TqRefList<Port> ports;
    Load(path, ports);
    for (const Port* port : ports) {
        std::printf("%s %s, %u Mbit/s\n", port->Kind(), port->name.data, port->speed.count);
    }
}
