// What the manual's pictures are recorded from: each function is one picture.
#include <Tq.h>

#include <cstring>

class Monitor : public TqBaseObject {
    TQ_DECLARE_CLASS(Monitor)
public:
    ~Monitor() override {}
};
TQ_IMPLEMENT_CLASS(Monitor, TqBaseObject)

// The recorder stops at these two. What lies between them is in the picture.
extern "C" __attribute__((noinline)) void RecordFrom(const char*) {
    asm volatile("");
}
extern "C" __attribute__((noinline)) void RecordEnd() {
    asm volatile("");
}

static void Value() {
    TqNumber sent(42);
    TqBuffer packet;
    TqNumber received;
    RecordFrom("value: TqNumber sent, TqBuffer packet, TqNumber received");
    sent.ToBuffer(packet);
    received.FromBuffer(packet);
    RecordEnd();
}

static void Object() {
    TqRegisterClass<Monitor>();
    TqClassRegistry* const registry = TqClassRegistry::GetRegistry();
    TqRef<Monitor> handle;
    RecordFrom("object: TqRef handle, TqClassRegistry registry");
    handle.AssignNewObject(registry->NewObject("Monitor"));
    handle.AssignNewObject(nullptr);
    RecordEnd();
}

static void Locks() {
    TqRefList<Monitor> list;
    Monitor* const object = new Monitor;
    TqRef<Monitor> handle;
    RecordFrom("locks: TqRefList list, Monitor object, TqRef handle");
    list.Append(object);
    handle.AssignNewObject(object);
    list.RemoveSlot(1);
    handle.AssignNewObject(nullptr);
    RecordEnd();
}

int main() {
    Value();
    Object();
    Locks();
}
