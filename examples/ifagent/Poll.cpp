#include "Poll.h"

#include <string.h>

#include "Complaints.h"
#include "Kernel.h"
#include "LineReader.h"
#include "ProcNetDev.h"

namespace {

// The sorted list counts with 16 bits as it sorts.
const unsigned int mostInterfaces = 65535;

}  // namespace

bool Poll::Read(const char* path) {
    LineReader reader;
    if (!reader.Open(path)) return false;

    TqString line;
    TqString complaint;
    while (reader.NextLine(line)) {
        if (IsProcNetDevHeading(line.data, reader.LineNumber())) continue;
        if (!AppendLine(line.data, complaint)) reader.Complain(complaint.data);
    }
    if (interfaces.count == 0) Complain("%s: no interfaces", path);
    if (strcmp(path, procNetDev) == 0) AskKernel(*this);
    return interfaces.count > 0;
}

bool Poll::AppendLine(const char* line, TqString& complaint) {
    TqRef<Interface> interface(new Interface);
    Interface* row = static_cast<Interface*>(interface.object);
    if (!ParseProcNetDevLine(line, *row, complaint)) return false;
    if (Find(row->name.data) != nullptr) {
        complaint = TqString("a second line for ") + row->name.data;
        return false;
    }
    if (interfaces.count == mostInterfaces) {
        complaint = "too many interfaces";
        return false;
    }
    row->index = TqNumber(static_cast<int>(interfaces.count + 1));
    interfaces.InsertSlot(interfaces.count + 1, interface.object);
    names.Add(&row->name);
    return true;
}

void Poll::Send(TqBuffer& buffer) const {
    enabled.ToBuffer(buffer);
    TqCounter(interfaces.count).ToBuffer(buffer);
    for (unsigned int i = 1; i <= interfaces.count; ++i) {
        const Interface* interface = ItemOf(interfaces, i);
        for (unsigned int v = 0; v < interfaceValueCount; ++v) {
            interface->Value(v).ToBuffer(buffer);
        }
    }
}

void Poll::Receive(TqBuffer& buffer) {
    TqCounter count;
    enabled.FromBuffer(buffer);
    count.FromBuffer(buffer);
    for (unsigned int i = 1; i <= count.count && buffer.readPosition < buffer.length; ++i) {
        Interface* interface = new Interface;
        interfaces.InsertSlot(interfaces.count + 1, static_cast<TqBaseObject*>(interface));
        for (unsigned int v = 0; v < interfaceValueCount; ++v) {
            interface->Value(v).FromBuffer(buffer);
        }
    }
}

Interface* Poll::Find(const char* name) const {
    for (unsigned int i = 1; i <= interfaces.count; ++i) {
        if (strcmp(ItemOf(interfaces, i)->name.data, name) == 0) return ItemOf(interfaces, i);
    }
    return nullptr;
}

Interface* Poll::InOrder(unsigned int index) const {
    return Find(static_cast<TqString*>(names.slots[index])->data);
}
