#ifndef TQ_APPENDING_H
#define TQ_APPENDING_H

// Several characters appended to a string in one go. They belong to the string, whose source
// defines the first.

#include "../TqString.h"

/// Makes room for `count` more characters, sized as appending them one by one does, and returns
/// where they go.
char* TqPlaceFor(TqString& string, unsigned int count);

/// Counts the characters that were put there.
inline void TqCountAppended(TqString& string, unsigned int count) {
    string.length += count;
    string.data[string.length] = '\0';
}

#endif
