#include "Table.h"

#include <stdio.h>
#include <string.h>

namespace {

const unsigned int indexColumn = 1;
const unsigned int upColumn = 2;
const unsigned int firstCounterColumn = 3;
const unsigned int columnCount = firstCounterColumn + interfaceCounterCount;
const char* const headings[firstCounterColumn] = {"interface", "index", "up"};

// Marks a number that is not all that the kernel has counted.
const char wrapMark = '*';

InterfaceCounter CounterOf(unsigned int column) {
    return static_cast<InterfaceCounter>(column - firstCounterColumn);
}

const char* Heading(unsigned int column) {
    if (column < firstCounterColumn) return headings[column];
    return interfaceCounterNames[CounterOf(column)].heading;
}

const char* Group(unsigned int column) {
    if (column == firstCounterColumn + inOctets) return "received";
    if (column == firstCounterColumn + outOctets) return "sent";
    return "";
}

void CellText(const Interface& interface, unsigned int column, TqString& out) {
    interface.Value(column).ToString(out);
    if (column == upColumn && !interface.upIsKnown) out = "-";
}

bool IsWrapped(const Interface& interface, unsigned int column) {
    return column >= firstCounterColumn && interface.wrapped[CounterOf(column)];
}

bool IsNumeric(unsigned int column) {
    return column == indexColumn || column >= firstCounterColumn;
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
    void Widen(unsigned int column, const TqString& text);
    void AppendCell(TqString& line, unsigned int column, const TqString& text) const;

    unsigned int widths[columnCount];
};

TableLayout::TableLayout(const Poll& poll) {
    for (unsigned int column = 0; column < columnCount; ++column) {
        widths[column] = 0;
        Widen(column, TqString(Group(column)));
        Widen(column, TqString(Heading(column)));
        for (unsigned int i = 1; i <= poll.interfaces.count; ++i) {
            TqString text;
            CellText(*ItemOf(poll.interfaces, i), column, text);
            Widen(column, text);
        }
    }
}

void TableLayout::Widen(unsigned int column, const TqString& text) {
    if (text.Length() > widths[column]) widths[column] = text.Length();
}

// Two blanks between columns; the mark of the cell before stands in the first of them.
void TableLayout::AppendCell(TqString& line, unsigned int column, const TqString& text) const {
    unsigned int start = 0;
    for (unsigned int before = 0; before < column; ++before) start += widths[before] + 2;
    if (IsNumeric(column)) start += widths[column] - text.Length();
    Pad(line, start - line.Length());
    line += text.data;
}

void TableLayout::PrintGroups() const {
    TqString line;
    for (unsigned int column = 0; column < columnCount; ++column) {
        if (*Group(column) != '\0') AppendCell(line, column, TqString(Group(column)));
    }
    printf("%s\n", line.data);
}

void TableLayout::PrintHeadings() const {
    TqString line;
    for (unsigned int column = 0; column < columnCount; ++column) {
        AppendCell(line, column, TqString(Heading(column)));
    }
    printf("%s\n", line.data);
}

void TableLayout::PrintRow(const Interface& interface) const {
    TqString line;
    for (unsigned int column = 0; column < columnCount; ++column) {
        TqString text;
        CellText(interface, column, text);
        AppendCell(line, column, text);
        if (IsWrapped(interface, column)) line.AppendChar(wrapMark);
    }
    printf("%s\n", line.data);
}

bool HasWrapped(const Poll& poll) {
    for (unsigned int i = 1; i <= poll.interfaces.count; ++i) {
        for (const bool wrapped : ItemOf(poll.interfaces, i)->wrapped) {
            if (wrapped) return true;
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
