#ifndef SECOND_BASE_H
#define SECOND_BASE_H

#include <string>

#include "TqBaseObject.h"
#include "TqCallback.h"

// Classes whose base of the library stands second, so that a pointer to them and one to that base
// are two addresses.

class Named {
public:
    explicit Named(const char* called) : name(called) {}
    virtual ~Named() {}
    std::string name;
};

class NamedObject : public Named, public TqBaseObject {
public:
    explicit NamedObject(const char* called) : Named(called) {}
};

class NamedCallback : public Named, public TqCallback {
public:
    explicit NamedCallback(const char* called) : Named(called), TqCallback(nullptr) {}
    void Invoke(TqBaseObject*, TqCallbackData*) override { ++calls; }
    int calls = 0;
};

#endif
