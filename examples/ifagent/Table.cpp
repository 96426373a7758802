#include "Table.h"

#include <stdio.h>
#include <string.h>

namespace {

// Marks a number that is not all that the kernel has counted.
const char wrapMark[] = "*";

const char* Group(unsigned int value) {
    if (value == inOctets) return "received";
    if (value == outOctets) return "sent";
    return "";
}

const char* Heading(unsigned int value) {
    return interfaceValueNames[value].heading;
}

void CellText(const Interface& interface, unsigned int value, TqString& out) {
    interface.Value(value).ToString(out);
    if (value == upValue && !interface.upIsKnown) out = "-";
}

bool IsNumeric(unsigned int value) {
    return value == indexValue || value >= firstCounter;
}

void Pad(TqString& line, unsigned int count) {
    for (; count > 0; --count) line.AppendChar(' ');
}

class TableLayout {
public:
    explicit TableLayout(const Poll& poll);
    void PrintGroups() const;
    void PrintHeadings() const;
    void PrintOidColumns() const;
    void PrintRow(const Interface& interface) const;

private:
    void Widen(unsigned int value, const TqString& text);
    void AppendCell(TqString& line, unsigned int value, const TqString& text) const;

    unsigned int widths[interfaceValueCount];
};

TableLayout::TableLayout(const Poll& poll) {
    for (unsigned int value = 0; value < interfaceValueCount; ++value) {
        widths[value] = 0;
        Widen(value, TqString(Group(value)));
        Widen(value, TqString(Heading(value)));
        for (unsigned int i = 1; i <= poll.interfaces.count; ++i) {
            TqString text;
            CellText(*poll.InOrder(i), value, text);
            Widen(value, text);
        }
    }
}

void TableLayout::Widen(unsigned int value, const TqString& text) {
    if (text.Length() > widths[value]) widths[value] = text.Length();
}

// Two blanks between columns; the mark of the cell before stands in the first of them.
void TableLayout::AppendCell(TqString& line, unsigned int value, const TqString& text) const {
    unsigned int start = 0;
    for (unsigned int before = 0; before < value; ++before) start += widths[before] + 2;
    if (IsNumeric(value)) start += widths[value] - text.Length();
    Pad(line, start - line.Length());
    line += text.data;
}

void TableLayout::PrintGroups() const {
    TqString line;
    for (unsigned int value = 0; value < interfaceValueCount; ++value) {
        if (*Group(value) != '\0') AppendCell(line, value, TqString(Group(value)));
    }
    printf("%s\n", line.data);
}

void TableLayout::PrintHeadings() const {
    TqString line;
    for (unsigned int value = 0; value < interfaceValueCount; ++value) {
        AppendCell(line, value, TqString(Heading(value)));
    }
    printf("%s\n", line.data);
}

// The columns' places in the table that managers read.
void TableLayout::PrintOidColumns() const {
    TqString line;
    for (unsigned int value = 0; value < interfaceValueCount; ++value) {
        TqString column(".");
        column.AppendCounter(interfaceValueNames[value].column);
        AppendCell(line, value, column);
    }
    printf("%s\n", line.data);
}

void TableLayout::PrintRow(const Interface& interface) const {
    TqString line;
    for (unsigned int value = 0; value < interfaceValueCount; ++value) {
        TqString text;
        CellText(interface, value, text);
        AppendCell(line, value, text);
        if (interface.IsWrapped(value)) line += wrapMark;
    }
    printf("%s\n", line.data);
}

bool HasWrapped(const Poll& poll) {
    for (unsigned int i = 1; i <= poll.interfaces.count; ++i) {
        for (unsigned int value = 0; value < interfaceValueCount; ++value) {
            if (poll.InOrder(i)->IsWrapped(value)) return true;
        }
    }
    return false;
}

// The value in a column of the table that managers read; `interfaceValueCount` when we have none.
unsigned int ValueInColumn(unsigned int column) {
    unsigned int value = 0;
    while (value < interfaceValueCount && interfaceValueNames[value].column != column) ++value;
    return value;
}

// Goes through the columns of that table, and prints those that there are.
void PrintOidsOf(const Interface& interface) {
    const TqSnmpOid last = interface.Oid(interfaceValueCount - 1);
    TqSnmpOid oid(interfaceTableEntry);
    oid.Append(1);
    oid.Append(interface.index.value);
    for (; oid.Compare(last) <= 0; oid.IncrementTableRow()) {
        const unsigned int value = ValueInColumn(oid.values[oid.count - 2]);
        if (value == interfaceValueCount) continue;
        TqString oidText;
        TqString text;
        oid.ToString(oidText);
        CellText(interface, value, text);
        printf("%-26s  %-14s  %s%s\n", oidText.data, interfaceValueNames[value].name, text.data,
               interface.IsWrapped(value) ? wrapMark : "");
    }
}

}  // namespace

void PrintTable(const Poll& poll) {
    const TableLayout layout(poll);
    layout.PrintGroups();
    layout.PrintHeadings();
    layout.PrintOidColumns();
    for (unsigned int i = 1; i <= poll.interfaces.count; ++i) {
        layout.PrintRow(*poll.InOrder(i));
    }
    printf("object identifiers: %s, column as above, index of the interface\n",
           interfaceTableEntry);
    if (HasWrapped(poll)) {
        printf("%s the kernel counts with 64 bits; shown is what a 32-bit counter shows\n",
               wrapMark);
    }
}

void PrintAddresses(const Poll& poll, const Configuration& configuration) {
    const char* format = "%-15s  %-15s  %-15s  %-7s  %s\n";
    if (poll.addresses.count > 0) {
        printf("\n");
        printf(format, "address", "mask", "network", "allowed", "interface");
    }
    for (unsigned int i = 1; i <= poll.addresses.count; ++i) {
        const Subnet* subnet = ItemOf(poll.addresses, i);
        TqString address;
        TqString mask("-");
        TqString network;
        TqString allowed;
        subnet->address.toString(address);
        if (subnet->mask.valid != 0) subnet->mask.toString(mask);
        subnet->Network().toString(network);
        TqBoolean(configuration.Allows(subnet->address)).ToString(allowed);
        printf(format, address.data, mask.data, network.data, allowed.data,
               subnet->interfaceName.data);
    }
}

void PrintOids(const Poll& poll) {
    printf("\n");
    for (unsigned int i = 1; i <= poll.interfaces.count; ++i) PrintOidsOf(*poll.InOrder(i));
}
