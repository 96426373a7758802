#ifndef TABLE_H
#define TABLE_H

#include <vector>

#include "Interface.h"

/// The interface table as managers walk it: one column after the other, each by ascending index.
/// Borrows the interfaces.
class Table {
public:
    Table() {}
    explicit Table(const Poll& poll);

    /// Whether there is a cell of that identifier: then whose, and which of its values.
    bool Find(const TqSnmpOid& oid, const Interface*& interface, unsigned int& value) const;

    /// Moves `oid`, whatever it is, on to the first cell behind it. False when there is none.
    bool Next(TqSnmpOid& oid) const;

private:
    std::vector<const Interface*> rows;  ///< by index, each of which is there once
};

#endif
