#include "Configuration.h"

#include <cstdio>

static TqRef<Port> Made(const char* line) {
    char type[32], name[32], speed[32];
    if (std::sscanf(line, "%31s%31s%31s", type, name, speed) != 3) return nullptr;
    TqCounter parsed;
    if (!TqParse(speed, parsed)) return nullptr;
    const TqRef<Port> port(TqCast<Port>(TqClassRegistry::GetRegistry()->NewObject(type)));
    if (!port) return nullptr;
    port->name = name;
    port->speed = parsed;
    return port;
}

void Load(const char* path, TqRefList<Port>& ports) {
    TqFile file;
    if (!file.Open(path, TqFile::read)) return;
    while (const char* line = file.NextLine()) {
        if (const TqRef<Port> port = Made(line)) {
            ports.Append(port.Get());
        } else {
            std::printf("refused: %s", line);
        }
    }
    file.Close();
}
