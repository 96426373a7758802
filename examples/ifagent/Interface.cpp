#include "Interface.h"

const char interfaceTableEntry[] = "1.3.6.1.2.1.2.2.1";

const InterfaceValueName interfaceValueNames[interfaceValueCount] = {
    {2, "ifDescr", "interface"},      {1, "ifIndex", "index"},
    {8, "ifOperStatus", "up"},        {10, "ifInOctets", "bytes"},
    {11, "ifInUcastPkts", "unicast"}, {12, "ifInNUcastPkts", "multicast"},
    {13, "ifInDiscards", "dropped"},  {14, "ifInErrors", "errors"},
    {16, "ifOutOctets", "bytes"},     {17, "ifOutUcastPkts", "packets"},
    {19, "ifOutDiscards", "dropped"}, {20, "ifOutErrors", "errors"},
};

Interface::Interface() : watched(1), upIsKnown(false) {
    for (bool& flag : wrapped) flag = false;
}

TqDataType& Interface::Value(unsigned int i) {
    if (i == nameValue) return name;
    if (i == indexValue) return index;
    if (i == upValue) return up;
    return counters[i - firstCounter];
}

const TqDataType& Interface::Value(unsigned int i) const {
    return const_cast<Interface*>(this)->Value(i);
}

TqSnmpOid Interface::Oid(unsigned int i) const {
    TqSnmpOid oid(interfaceTableEntry);
    oid.Append(interfaceValueNames[i].column);
    oid.Append(index.value);
    return oid;
}

void Interface::SetCounter(InterfaceValue counter, unsigned long long kernelCount) {
    counters[counter - firstCounter] = TqCounter(static_cast<unsigned int>(kernelCount));
    wrapped[counter - firstCounter] = kernelCount > 0xFFFFFFFFU;
}

bool Interface::IsWrapped(unsigned int i) const {
    return i >= firstCounter && wrapped[i - firstCounter];
}
