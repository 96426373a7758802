#ifndef PORT_H
#define PORT_H

#include <Tq.h>

/// What the steps from the third on are about: a port of the device, with a class that has a name.
class Port : public TqBaseObject {
    TQ_DECLARE_CLASS(Port)
public:
    ~Port() override;

    virtual const char* Kind() const { return "port"; }

    TqString name;
    TqCounter speed;
    TqBoolean isUp;
};

class FibrePort : public Port {
    TQ_DECLARE_CLASS(FibrePort)
public:
    const char* Kind() const override { return "fibre"; }
};

/// To be called once, before the first port is made by name.
void RegisterPorts();

#endif
