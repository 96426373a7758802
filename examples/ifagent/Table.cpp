#include "Table.h"

#include <stdio.h>
#include <string.h>

namespace {

// Marks a number that is not all that the kernel has counted.
const char wrapMark = '*';

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
            CellText(*ItemOf(poll.interfaces, i), value, text);
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

void TableLayout::PrintRow(const Interface& interface) const {
    TqString line;
    for (unsigned int value = 0; value < interfaceValueCount; ++value) {
        TqString text;
        CellText(interface, value, text);
        AppendCell(line, value, text);
        if (interface.IsWrapped(value)) line.AppendChar(wrapMark);
    }
    printf("%s\n", line.data);
}

bool HasWrapped(const Poll& poll) {
    for (unsigned int i = 1; i <= poll.interfaces.count; ++i) {
        for (unsigned int value = 0; value < interfaceValueCount; ++value) {
            if (ItemOf(poll.interfaces, i)->IsWrapped(value)) return true;
        }
    }
    return false;
}

}  // namespace

void PrintTable(const Poll& poll) {
    const TableLayout layout(poll);
    layout.PrintGroups();
    layout.PrintHeadings();
    for (unsigned int i = 1; i <= poll.interfaces.count; ++i) {
        layout.PrintRow(*ItemOf(poll.interfaces, i));
    }
    if (HasWrapped(poll)) {
        printf("%c the kernel counts with 64 bits; shown is what a 32-bit counter shows\n",
               wrapMark);
    }
}
