#ifndef TQ_REPORT_SENTENCE_H
#define TQ_REPORT_SENTENCE_H

#include "TqExport.h"

/// What a report of the library says, in words: the operation, its argument, and what becomes of
/// the call where that is not the whole truth.
///
///     TqBuffer::Append: `bytes` is null; nothing is appended
///
/// `file` and `line` are what the assertion hook gets. Null for a report that is none of the
/// library's, an application's own for one. The words are those of the library with which this one
/// was built: only there do the lines agree.
TQ_API const char* TqReportSentence(const char* file, int line);

#endif
