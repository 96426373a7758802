#include "Report.h"

#include <stdio.h>

#include <algorithm>
#include <memory>
#include <vector>

#include "TqClassInfo.h"

namespace {

// The rows of the table; the interfaces follow.
enum Row : unsigned int { groupRow, headingRow, columnRow };

TqString ValueText(const Interface& interface, unsigned int value) {
    if (value == upValue && !interface.upIsKnown) return TqString("-");
    return TextOf(*interface.values[value]);
}

TqString Cell(const Poll& poll, unsigned int row, unsigned int value) {
    if (row == groupRow) return value == inOctets ? "received" : value == outOctets ? "sent" : "";
    if (row == headingRow) return TqString(valueNames[value].heading);
    if (row == columnRow) return TqString(".") + TextOf(TqCounter(valueNames[value].column)).data;
    return ValueText(*poll.InOrder(row - columnRow), value);
}

// Prints the interfaces with their counters, by name.
void PrintTable(const Poll& poll) {
    unsigned int widths[valueCount] = {};
    for (unsigned int row = 0; row <= columnRow + poll.interfaces.count; ++row) {
        for (unsigned int v = 0; v < valueCount; ++v) {
            widths[v] = std::max(widths[v], Cell(poll, row, v).Length());
        }
    }
    bool hasWrapped = false;
    for (unsigned int row = 0; row <= columnRow + poll.interfaces.count; ++row) {
        const Interface* interface = row > columnRow ? poll.InOrder(row - columnRow) : nullptr;
        TqString line;
        // Two blanks between columns; the mark of the cell before stands in the first of them.
        unsigned int start = 0;
        for (unsigned int v = 0; v < valueCount; ++v) {
            const TqString cell = Cell(poll, row, v);
            const bool isNumber = v == indexValue || v >= firstCounter;
            const unsigned int place = start + (isNumber ? widths[v] - cell.Length() : 0);
            start += widths[v] + 2;
            while (cell.IsNotEmpty() && line.Length() < place) line.AppendChar(' ');
            line += cell.data;
            if (interface == nullptr || !interface->wrapped[v]) continue;
            line += "*";
            hasWrapped = true;
        }
        printf("%s\n", line.data);
    }
    printf("object identifiers: %s, column as above, index of the interface\n",
           interfaceTableEntry);
    if (hasWrapped) {
        printf("* the kernel counts with 64 bits; shown is what a 32-bit counter shows\n");
    }
}

// Prints the interfaces' addresses, and which interfaces are not watched for want of one.
void PrintAddresses(const Poll& poll, const Configuration& configuration) {
    const char format[] = "%-15s  %-15s  %-15s  %-7s  %s\n";
    if (poll.addresses.count > 0) {
        printf("\n");
        printf(format, "address", "mask", "network", "allowed", "interface");
    }
    for (unsigned int i = 1; i <= poll.addresses.count; ++i) {
        const Subnet* subnet = ItemOf(poll.addresses, i);
        TqString address;
        TqString mask("-");
        TqString network;
        subnet->address.toString(address);
        if (subnet->mask.valid != 0) subnet->mask.toString(mask);
        subnet->NetworkOf(subnet->address).toString(network);
        printf(format, address.data, mask.data, network.data,
               TextOf(TqBoolean(configuration.Allows(subnet->address))).data,
               subnet->interfaceName.data);
    }
    TqString names;
    for (unsigned int i = 1; i <= poll.interfaces.count; ++i) {
        const Interface* interface = poll.InOrder(i);
        if (!interface->watched) (names += " ") += interface->name.data;
    }
    if (names.IsNotEmpty()) printf("not watched, for want of an allowed address:%s\n", names.data);
}

// Goes through the columns of the table that managers read, and prints those that there are.
void PrintOids(const Poll& poll) {
    printf("\n");
    for (unsigned int i = 1; i <= poll.interfaces.count; ++i) {
        const Interface& interface = *poll.InOrder(i);
        const TqSnmpOid last = interface.Oid(valueCount - 1);
        TqSnmpOid oid = interface.Oid(indexValue);
        for (; oid.Compare(last) <= 0; oid.IncrementTableRow()) {
            unsigned int v = 0;
            while (v < valueCount && interface.Oid(v).DoesNotEqual(&oid)) ++v;
            if (v == valueCount) continue;
            printf("%-26s  %-14s  %s%s\n", TextOf(oid).data, valueNames[v].name,
                   ValueText(interface, v).data, interface.wrapped[v] ? "*" : "");
        }
    }
}

// Prints the items of `count` values as they lie in the buffer.
void PrintItems(TqBuffer& buffer, unsigned int count) {
    printf("%6u ", buffer.readPosition);
    for (; count > 0; --count) {
        TqBuffer payload;
        payload.FromBuffer(buffer);
        printf(" %05u%s", payload.length, TextOf(payload).data);
    }
    printf("\n");
}

// A counter above this number renders right, but the parser takes its digits for a negative number
// and gives 0: a rule of the counter, not a loss on the way.
const unsigned int largestReadBack = 2147483647;

bool WasTooLarge(const TqDataType& sent, const TqDataType& received) {
    return sent.TypeId() == TqCounter::typeId &&
           static_cast<const TqCounter&>(sent).count > largestReadBack &&
           static_cast<const TqCounter&>(received).count == 0;
}

// Sends whether polling is on, how many interfaces there are, and all their values; receives them
// again and compares. What the rules of the values do not explain is complained of.
void CheckTransfer(const Poll& poll, const TqBoolean& enabled, bool showItems) {
    const TqCounter interfaceCount(poll.interfaces.count);
    std::vector<const TqDataType*> values = {&enabled, &interfaceCount};
    for (unsigned int i = 1; i <= poll.interfaces.count; ++i) {
        const Interface* interface = ItemOf(poll.interfaces, i);
        values.insert(values.end(), interface->values, interface->values + valueCount);
    }
    TqBuffer buffer;
    for (const TqDataType* value : values) value->ToBuffer(buffer);
    if (showItems) {
        TqBuffer items(buffer);
        printf("\nItems, from byte\n");
        PrintItems(items, 2);
        while (items.readPosition < items.length) PrintItems(items, valueCount);
    }

    unsigned int equal = 0;
    unsigned int tooLarge = 0;
    for (const TqDataType* value : values) {
        const std::unique_ptr<TqDataType> received(value->Clone());
        received->FromBuffer(buffer);
        if (received->Equals(value)) {
            ++equal;
        } else if (WasTooLarge(*value, *received)) {
            ++tooLarge;
        } else {
            Complain("sent %s, received %s", TextOf(*value).data, TextOf(*received).data);
        }
    }
    printf("\n%zu values in %u bytes, read back: %u equal", values.size(), buffer.length, equal);
    if (tooLarge > 0) printf(", %u above %u and so read back as 0", tooLarge, largestReadBack);
    printf("\n");
}

}  // namespace

void Report::BeginPoll(const Poll& poll, const char* path, const Configuration& configuration) {
    if (pollCount > 0) printf("\n");
    ++pollCount;
    printf("poll %u of %s at %s UTC\n", pollCount, path, TimeText(poll.time).data);
    printf("that time as the library writes it: %s\n\n", LibraryTimeText(poll.time).data);
    PrintTable(poll);
    PrintAddresses(poll, configuration);
    if (showOids) PrintOids(poll);
    CheckTransfer(poll, configuration.poll, showItems);
}

void Report::Invoke(TqBaseObject* source, TqCallbackData* data) {
    const ValueChange& change = *static_cast<ValueChange*>(data);
    const TqDataType& before = *change.before->values[change.value];
    const TqDataType& after = *change.after->values[change.value];
    printf("%s: %s %s (%s) %s -> %s", source->ClassInfo()->name.data, change.after->name.data,
           valueNames[change.value].name, TextOf(change.after->Oid(change.value)).data,
           TextOf(before).data, TextOf(after).data);
    // `Compare` of counters is their difference modulo 2^32, and so right when the counter has
    // started again at 0.
    const unsigned int growth = static_cast<unsigned int>(after.Compare(before));
    if (after.TypeId() == TqCounter::typeId) printf(" (+%u)", growth);
    printf("\n");
}

void Report::Finish(unsigned int changeCount) {
    if (pollCount > 1) printf("\n%u changes in %u polls\n", changeCount, pollCount);
}
