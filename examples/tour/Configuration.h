#ifndef CONFIGURATION_H
#define CONFIGURATION_H

#include "Port.h"

/// Appends a port for each line of the file, "class name speed". Lines that are none, and classes
/// that are not registered, are told on standard output.
void Load(const char* path, TqRefList<Port>& ports);

#endif
