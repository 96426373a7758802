// A plug-in: a shared object that registers a class when it comes and takes it out when it goes.

#include "Tq.h"

class Plugged : public TqBaseObject {
    TQ_DECLARE_CLASS(Plugged)

public:
    ~Plugged() override { ++ended; }

    TqString text;
    static int ended;
};

int Plugged::ended = 0;

TQ_IMPLEMENT_CLASS(Plugged, TqBaseObject)

extern "C" __attribute__((visibility("default"))) TqClassRegistry* Come() {
    TqRegisterClass<Plugged>();
    return TqClassRegistry::GetRegistry();
}

extern "C" __attribute__((visibility("default"))) int EndedOnes() {
    {
        const TqRef<TqBaseObject> made(TqClassRegistry::GetRegistry()->NewObject("Plugged"));
        if (made->IsA("Plugged") != 1) return 0;
    }
    return Plugged::ended;
}

extern "C" __attribute__((visibility("default"))) unsigned int Go() {
    TqClassRegistry::GetRegistry()->Remove("Plugged");
    Plugged::PluggedInfo = nullptr;
    return TqClassRegistry::GetRegistry()->classList.count;
}
