// What destructors clear, read from the storage that the objects leave behind. Prints what is left
// and fails. A program of its own, so that it can be built at every level of optimisation.

#include <cstdio>
#include <cstring>
#include <new>

#include "TqBaseList.h"
#include "TqBaseRef.h"
#include "TqBuffer.h"
#include "TqClassInfo.h"
#include "TqFile.h"
#include "TqFloat.h"

namespace {

int failures = 0;

template <class Field>
__attribute__((noinline)) void ExpectCleared(const char* name, const Field* field) {
    // A field may be a pointer. NOLINTNEXTLINE(bugprone-sizeof-expression)
    unsigned char left[sizeof(Field)];
    std::memcpy(left, static_cast<const void*>(field), sizeof left);
    for (const unsigned char byte : left) {
        if (byte == 0) continue;
        std::printf("%s is not cleared\n", name);
        ++failures;
        return;
    }
}

TqBaseObject* Make() {
    return nullptr;
}

const unsigned char filled[100] = {1};

alignas(16) unsigned char storage[512];

}  // namespace

int main() {
    TqBaseObject* object = new (storage) TqBaseObject;
    object->seqNum = 7;
    object->~TqBaseObject();
    ExpectCleared("self", &object->self);
    ExpectCleared("seqNum", &object->seqNum);

    TqClassInfo parent("Parent", Make, nullptr);
    TqClassInfo* info = new (storage) TqClassInfo("Child", Make, &parent);
    info->tallyA.value = info->tallyB.value = 7;
    info->~TqClassInfo();
    ExpectCleared("createFunc", &info->createFunc);
    ExpectCleared("parent", &info->parent);
    ExpectCleared("tallyA", &info->tallyA.value);
    ExpectCleared("tallyB", &info->tallyB.value);
    ExpectCleared("a descriptor's self", &info->self);

    TqBaseList* list = new (storage) TqBaseList;
    list->~TqBaseList();
    ExpectCleared("slots", &list->slots);
    ExpectCleared("a list's self", &list->self);

    TqFloat* number = new (storage) TqFloat(2.5f);
    number->~TqFloat();
    ExpectCleared("a float's value", &number->value);

    TqFile* file = new (storage) TqFile;
    file->fileState = 7;
    file->~TqFile();
    ExpectCleared("fileState", &file->fileState);

    TqBuffer* buffer = new (storage) TqBuffer(filled, sizeof filled);
    buffer->~TqBuffer();
    ExpectCleared("a buffer's data", &buffer->data);

    TqBaseObject held;
    TqRef<TqBaseObject>* handle = new (storage) TqRef<TqBaseObject>(&held);
    ++held.refCount;
    handle->objectSeqNum = held.seqNum = 7;
    handle->~TqRef<TqBaseObject>();
    --held.refCount;
    ExpectCleared("a handle's object", &handle->object);
    ExpectCleared("a handle's stamp", &handle->objectSeqNum);
    return failures == 0 ? 0 : 1;
}
