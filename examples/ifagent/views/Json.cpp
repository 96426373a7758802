#include "Json.h"

#include <stdio.h>

#include "TqClassInfo.h"

namespace {

// A name consists of printable characters: two of them have to be escaped.
TqString Quoted(const char* text) {
    TqString quoted("\"");
    for (; *text != '\0'; ++text) {
        if (*text == '"' || *text == '\\') quoted.AppendChar('\\');
        quoted.AppendChar(*text);
    }
    quoted.AppendChar('"');
    return quoted;
}

TqString ValueOf(const Interface& interface, unsigned int value) {
    if (value == nameValue) return Quoted(interface.name.data);
    if (value == upValue) return Quoted(interface.StateText());
    return TextOf(*interface.values[value]);
}

void PrintInterface(const Interface& interface) {
    for (unsigned int v = 0; v < valueCount; ++v) {
        printf("%s\"%s\":%s", v == 0 ? "{" : ",", valueNames[v].name, ValueOf(interface, v).data);
    }
    printf(",\"watched\":%s}", interface.watched ? "true" : "false");
}

void PrintAddress(const Subnet& subnet) {
    TqString address;
    TqString mask;
    subnet.address.toString(address);
    if (subnet.mask.valid != 0) subnet.mask.toString(mask);
    printf("{\"interface\":%s,\"address\":\"%s\",\"mask\":\"%s\"}",
           Quoted(subnet.interfaceName.data).data, address.data, mask.data);
}

}  // namespace

void Json::BeginPoll(const Poll& poll, const char*, const Configuration&) {
    printf("{\"time\":\"%sZ\",\"interfaces\":[", TimeText(poll.time).data);
    for (unsigned int i = 1; i <= poll.interfaces.count; ++i) {
        if (i > 1) printf(",");
        PrintInterface(*poll.InOrder(i));
    }
    printf("],\"addresses\":[");
    for (unsigned int i = 1; i <= poll.addresses.count; ++i) {
        if (i > 1) printf(",");
        PrintAddress(*ItemOf(poll.addresses, i));
    }
    printf("],\"changes\":[");
    isFirstChange = true;
}

void Json::Invoke(TqBaseObject* source, TqCallbackData* data) {
    const ValueChange& change = *static_cast<ValueChange*>(data);
    printf(
        "%s{\"monitor\":\"%s\",\"interface\":%s,\"value\":\"%s\",\"oid\":\"%s\","
        "\"before\":%s,\"after\":%s}",
        isFirstChange ? "" : ",", source->ClassInfo()->name.data,
        Quoted(change.after->name.data).data, valueNames[change.value].name,
        TextOf(change.after->Oid(change.value)).data, ValueOf(*change.before, change.value).data,
        ValueOf(*change.after, change.value).data);
    isFirstChange = false;
}

void Json::EndPoll() {
    printf("]}\n");
}
