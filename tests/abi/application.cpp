// An application as devices have them: compiled once, run with every later library. It derives
// from the library's classes, is called back by it, and prints what it sees.

#include <cstdio>
#include <typeinfo>

#include "TqBaseRef.h"
#include "TqBaseRefList.h"
#include "TqBoolean.h"
#include "TqBuffer.h"
#include "TqCallbackChain.h"
#include "TqClassRegistry.h"
#include "TqCounter.h"
#include "TqFunctionCb.h"
#include "TqHooks.h"
#include "TqString.h"

namespace {

int alive = 0;

void PrintReport(const char* file, int) {
    std::printf("report: %s\n", file);
}

}  // namespace

class Port : public TqBaseObject {
    TQ_DECLARE_CLASS(Port)
public:
    Port() : speed(100) { ++alive; }
    ~Port() override { --alive; }
    TqBaseObject* Clone() const override { return new Port; }

    TqNumber speed;
};

class OpticalPort : public Port {
    TQ_DECLARE_CLASS(OpticalPort)
public:
    OpticalPort() : wavelength("1310") {}

    TqString wavelength;
};

TQ_IMPLEMENT_CLASS(Port, TqBaseObject)
TQ_IMPLEMENT_CLASS(OpticalPort, Port)

namespace {

// A value type of the application's own, beside those of the library.
class Celsius : public TqNumber {
public:
    short TypeId() const override {
        TqDataType::NextId(&typeId);
        return typeId;
    }
    TqDataType* Clone() const override { return new Celsius(*this); }
    void ToString(TqString& out) const override {
        TqNumber::ToString(out);
        out += " C";
    }

    static short typeId;
};

short Celsius::typeId = 0;

void Register(TqClassInfo* info) {
    TqClassRegistry* registry = TqClassRegistry::GetRegistry();
    registry->classList.InsertSlot(registry->classList.count + 1, info);
}

void Objects() {
    Register(Port::PortInitInfo());
    Register(OpticalPort::OpticalPortInitInfo());
    TqClassRegistry* registry = TqClassRegistry::GetRegistry();
    registry->Dump();
    std::fflush(stdout);

    TqRef<Port> held(static_cast<Port*>(registry->NewObject("OpticalPort")));
    OpticalPort* optical = dynamic_cast<OpticalPort*>(held.object);
    std::printf("made %s, %s, a Port: %d\n", optical->wavelength.data,
                typeid(*held.object) == typeid(OpticalPort) ? "itself" : "another",
                held.object->IsA("Port"));
    TqRefList<Port> ports;
    ports.InsertSlot(1, held.object);
    ports.InsertSlot(1, new Port);
    std::printf("references %d, alive %d\n", held.object->refCount, alive);
    held = nullptr;
    std::printf("alive %d\n", alive);
    ports.RemoveAllItems();
    std::printf("alive %d\n", alive);
}

void Values() {
    TqBuffer buffer;
    const Celsius warm = [] {
        Celsius value;
        value.FromString("-21");
        return value;
    }();
    warm.ToBuffer(buffer);
    TqCounter(4000000000u).ToBuffer(buffer);
    TqBoolean("On").ToBuffer(buffer);
    TqString bytes;
    buffer.ToString(bytes);
    std::printf("%s, id %d, %u of %u\n", bytes.data, warm.TypeId(), buffer.length, buffer.capacity);
    TqDataType* copy = warm.Clone();
    std::printf("clone equals: %d\n", copy->Equals(&warm));
    delete copy;
    std::printf("a plain number equals: %d\n", TqNumber(-21).Equals(&warm));
}

void Tell(TqFunctionCb* callback, TqBaseObject* source, TqCallbackData* data) {
    std::printf("told %s, %d, %d\n", static_cast<const char*>(callback->UserData()),
                source != nullptr, data != nullptr);
}

class Printing : public TqCallback {
public:
    Printing() : TqCallback(nullptr) {}
    void Invoke(TqBaseObject* source, TqCallbackData*) override {
        std::printf("printing, callback: %d\n", source->IsA(TqCallbackInitInfo()));
    }
};

void Callbacks() {
    char first[] = "first";
    TqFunctionCb plain(Tell, first);
    Printing own;
    TqCallbackData data;
    TqCallbackChain chain;
    chain.InsertSlot(1, static_cast<TqCallback*>(&plain));
    chain.InsertSlot(2, static_cast<TqCallback*>(&own));
    chain.Invoke(&plain, &data);
    std::printf("removed: %d\n", chain.RemoveItem(&own) == &own);
}

}  // namespace

int main() {
    TqRegisterAssertCb(PrintReport);
    Objects();
    Values();
    Callbacks();
    std::puts("done");
}
