#ifndef TABLE_H
#define TABLE_H

#include "Poll.h"

/// Prints the interfaces of `poll` with their counters.
void PrintTable(const Poll& poll);

#endif
