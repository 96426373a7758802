#include "Port.h"

#include <cstdio>

TQ_IMPLEMENT_CLASS(Port, TqBaseObject)
TQ_IMPLEMENT_CLASS(FibrePort, Port)

Port::~Port() {
    std::printf("%s is gone\n", name.data);
}

void RegisterPorts() {
    TqRegisterClass<Port>();
    TqRegisterClass<FibrePort>();
}
