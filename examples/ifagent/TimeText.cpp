#include "TimeText.h"

#include <stdio.h>

TqString TimeText(const TqDateTime& date) {
    char text[96];
    snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d", date.time.tm_year + 1900,
             date.time.tm_mon + 1, date.time.tm_mday, date.time.tm_hour, date.time.tm_min,
             date.time.tm_sec);
    return TqString(text);
}

TqString LibraryTimeText(const TqDateTime& date) {
    TqString own;
    date.ToString(own);
    return TqString("\"") + own.data +
           (date.time.tm_mon == 0 ? "\", without the date, since January is month 0"
                                  : "\", counting months from 0 and years from 1900");
}
