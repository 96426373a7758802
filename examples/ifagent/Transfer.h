#ifndef TRANSFER_H
#define TRANSFER_H

#include "Poll.h"

/// Sends `poll` through a buffer, receives it into fresh values, compares, and prints how many
/// values are equal. What the rules of the values do not explain is complained of. With `showItems`
/// it prints the bytes as well.
void CheckTransfer(const Poll& poll, bool showItems);

#endif
