// Calls LookHere with a value of each kind in hand, for the debugger to show.

#include "TqBaseRef.h"
#include "TqBaseRefList.h"
#include "TqBoolean.h"
#include "TqBuffer.h"
#include "TqCallback.h"
#include "TqClassInfo.h"
#include "TqCounter.h"
#include "TqString.h"

void LookHere();

void LookHere() {}

int main() {
    const TqString name("GigabitEthernet0/1 to the north west");
    const TqNumber number(-42);
    const TqCounter counter(3000000000u);
    const TqBoolean flag("On");
    TqBuffer buffer;
    number.ToBuffer(buffer);
    buffer.PutAt(0, 7);

    const TqRef<TqBaseObject> handle(new TqBaseObject);
    const TqRef<TqBaseObject> nobody;
    TqRefList<TqBaseObject> list;
    list.InsertSlot(1, handle.object);
    ++list.walkDepth;
    const TqClassInfo& descriptor = *TqCallback::TqCallbackInitInfo();

    LookHere();
    --list.walkDepth;
    return descriptor.parent == nullptr;
}
