#ifndef COMPLAINTS_H
#define COMPLAINTS_H

/// Prints what is wrong on standard error, behind "ifagent: ". Bytes quoted from a file may be
/// anything: what is not printable shows as '*'.
void Complain(const char* format, ...) __attribute__((format(printf, 1, 2)));

/// How often that has happened.
unsigned int ComplaintCount();

#endif
