#include "Interface.h"

const InterfaceCounterName interfaceCounterNames[interfaceCounterCount] = {
    {10, "ifInOctets", "bytes"},         {11, "ifInUcastPkts", "unicast"},
    {12, "ifInNUcastPkts", "multicast"}, {13, "ifInDiscards", "dropped"},
    {14, "ifInErrors", "errors"},        {16, "ifOutOctets", "bytes"},
    {17, "ifOutUcastPkts", "packets"},   {19, "ifOutDiscards", "dropped"},
    {20, "ifOutErrors", "errors"},
};

Interface::Interface() : upIsKnown(false) {
    for (bool& flag : wrapped) flag = false;
}

TqDataType& Interface::Value(unsigned int i) {
    switch (i) {
        case 0:
            return name;
        case 1:
            return index;
        case 2:
            return up;
        default:
            return counters[i - 3];
    }
}

const TqDataType& Interface::Value(unsigned int i) const {
    return const_cast<Interface*>(this)->Value(i);
}

void Interface::SetCounter(InterfaceCounter counter, unsigned long long count) {
    counters[counter] = TqCounter(static_cast<unsigned int>(count));
    wrapped[counter] = count > 0xFFFFFFFFU;
}
