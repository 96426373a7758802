#ifndef TABLE_H
#define TABLE_H

#include "Configuration.h"
#include "Poll.h"

/// Prints the interfaces of `poll` with their counters, by name.
void PrintTable(const Poll& poll);

/// Prints their addresses, and whether the configuration allows them.
void PrintAddresses(const Poll& poll, const Configuration& configuration);

/// Prints each value with its object identifier.
void PrintOids(const Poll& poll);

#endif
