#ifndef REPORT_H
#define REPORT_H

#include "Agent.h"

/// Prints for people all there is to show.
class Report : public View {
public:
    void BeginPoll(const Poll& poll, const char* path, const Configuration&) override;
    void Invoke(TqBaseObject* source, TqCallbackData* data) override;
    void Finish(unsigned int changeCount) override;

    bool showItems = false;  ///< the bytes that are sent
    bool showOids = false;   ///< each value with its object identifier

private:
    unsigned int pollCount = 0;
};

#endif
