#include "Table.h"

#include <algorithm>

namespace {

unsigned int IndexOf(const Interface* interface) {
    return static_cast<unsigned int>(interface->index.value);
}

// Two have the same index when one of them has gone before the kernel was asked for it: that one
// goes behind.
bool IsBefore(const Interface* a, const Interface* b) {
    if (IndexOf(a) != IndexOf(b)) return IndexOf(a) < IndexOf(b);
    return a->upIsKnown && !b->upIsKnown;
}

// `valueCount` for a column that is not served.
unsigned int ValueInColumn(unsigned int column) {
    unsigned int v = 0;
    while (v < valueCount && valueNames[v].column != column) ++v;
    return v;
}

}  // namespace

Table::Table(const Poll& poll) {
    for (unsigned int i = 1; i <= poll.interfaces.count; ++i) {
        rows.push_back(ItemOf(poll.interfaces, i));
    }
    std::sort(rows.begin(), rows.end(), IsBefore);
    const auto isSame = [](const Interface* a, const Interface* b) {
        return IndexOf(a) == IndexOf(b);
    };
    rows.erase(std::unique(rows.begin(), rows.end(), isSame), rows.end());
}

bool Table::Find(const TqSnmpOid& oid, const Interface*& interface, unsigned int& value) const {
    const TqSnmpOid entry(interfaceTableEntry);
    if (!entry.SameTable(oid) || oid.count != entry.count + 2) return false;
    const unsigned int index = oid.values[entry.count + 1];
    const auto row = std::lower_bound(
        rows.begin(), rows.end(), index,
        [](const Interface* each, unsigned int wanted) { return IndexOf(each) < wanted; });
    value = ValueInColumn(oid.values[entry.count]);
    if (row == rows.end() || value == valueCount) return false;
    interface = *row;
    return interface->Oid(value).Equals(&oid);  // SameTable leaves the first number out of account
}

bool Table::Next(TqSnmpOid& oid) const {
    if (rows.empty()) return false;
    const TqSnmpOid last = rows.back()->Oid(valueCount - 1);
    TqSnmpOid cell = rows.front()->Oid(indexValue);
    unsigned int& column = cell.values[cell.count - 2];
    unsigned int& index = cell.values[cell.count - 1];
    for (; cell.Compare(last) <= 0; cell.IncrementTableRow()) {
        if (ValueInColumn(column) == valueCount) continue;
        const auto row = std::upper_bound(rows.begin(), rows.end(), oid,
                                          [&](const TqSnmpOid& asked, const Interface* each) {
                                              index = IndexOf(each);
                                              return asked.Compare(cell) < 0;
                                          });
        if (row == rows.end()) continue;
        index = IndexOf(*row);
        oid = cell;
        return true;
    }
    return false;
}
