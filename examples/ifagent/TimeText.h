#ifndef TIME_TEXT_H
#define TIME_TEXT_H

#include "TqDateTime.h"

/// A date as people write it: "2024-03-05 06:07:08".
TqString TimeText(const TqDateTime& date);

/// The library's own text of it, and how to read that: "02/05/0124 06:07:08", counting months from
/// 0 and years from 1900.
TqString LibraryTimeText(const TqDateTime& date);

#endif
