// The ports as a table of object identifiers, walked as a network manager does.
#include <cstdio>

#include "Configuration.h"

static const char* const table = "1.3.6.1.4.1.61999.1.2";

struct Cell {
    TqSnmpOid oid;
    TqString text;
};

// Column by column, in each the rows: the identifiers are in ascending order.
static Cell CellAt(const TqRefList<Port>& ports, unsigned int column, unsigned int row) {
    Cell cell = {TqSnmpOid(table), TqString()};
    cell.oid.Append(column);
    cell.oid.Append(row);
    const Port* const port = ports.At(row);
    cell.text = column == 1 ? port->name : TqText(port->speed);
    return cell;
}

// What get-next answers: the first cell behind `oid`, or false behind the last one.
static bool Next(const TqRefList<Port>& ports, TqSnmpOid& oid, TqString& text) {
    for (unsigned int column = 1; column <= 2; ++column) {
        for (unsigned int row = 1; row <= ports.count; ++row) {
            const Cell cell = CellAt(ports, column, row);
            if (cell.oid.Compare(oid) <= 0) continue;
            oid = cell.oid;
            text = cell.text;
            return true;
        }
    }
    return false;
}

int main(int, char** arguments) {
    RegisterPorts();
    TqRefList<Port> ports;
    Load(arguments[1], ports);

    const TqSnmpOid root(table);
    TqSnmpOid oid(root);
    TqString text;
    while (Next(ports, oid, text) && root.SameTable(oid)) {
        std::printf("%s = %s\n", TqText(oid).data, text.data);
    }
}
