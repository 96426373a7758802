#ifndef JSON_H
#define JSON_H

#include "Agent.h"

/// Prints each poll as one line of JSON, for programs to read.
class Json : public View {
public:
    void BeginPoll(const Poll& poll, const char* path, const Configuration&) override;
    void Invoke(TqBaseObject* source, TqCallbackData* data) override;
    void EndPoll() override;

private:
    bool isFirstChange = true;  ///< of the present poll
};

#endif
