#include "TqReportSentence.h"

#include <cstring>

#include "internal/TqReportTable.h"

namespace {

bool IsSame(const char* a, const char* b) {
    return std::strcmp(a, b) == 0;
}

const TqReportSite* SiteOf(const char* file, int line) {
    for (const TqReportSite& site : tqReportSites) {
        if (site.line == line && IsSame(site.file, file)) return &site;
    }
    return nullptr;
}

}  // namespace

const char* TqReportSentence(const char* file, int line) {
    const TqReportSite* site = file == nullptr ? nullptr : SiteOf(file, line);
    if (site == nullptr) return nullptr;
    for (const TqReportRow& row : tqReportTable) {
        if (IsSame(row.file, site->file) && IsSame(row.function, site->function) &&
            IsSame(row.condition, site->condition)) {
            return row.sentence;
        }
    }
    return nullptr;
}
