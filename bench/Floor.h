#ifndef FLOOR_H
#define FLOOR_H

// What is stated of this library's storage, checks, locks and calls, and nothing else: the least
// that a duty takes. A shared library as that one is, so that a call takes the same way to it; what
// that one compiles into programs stands here too.

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "TqHooks.h"
#include "TqLinuxMutex.h"

inline void ReportIf(bool broken, int line) {
    if (__builtin_expect(broken, 0)) TqCallAssert("Floor", line);
}

/// Where memory ends, so does the process.
inline void* Found(void* block) {
    if (__builtin_expect(block == nullptr, 0)) std::abort();
    return block;
}

/// The storage of a string: an area of 33 bytes inside, cleared, and a block for what is longer,
/// which grows to multiples of 16.
class StatedString {
public:
    explicit StatedString(const char* text);
    StatedString(const StatedString& other);
    StatedString& operator=(const StatedString&) = delete;
    virtual ~StatedString();

    virtual void Empty();
    void AppendNumber(unsigned int value);
    void AppendChar(char c) {
        if (__builtin_expect(length + 1 >= capacity, 0)) Grow();
        data[length++] = c;
        data[length] = '\0';
    }

private:
    void Reserve(std::size_t count);
    void Grow();

    char* data;
    unsigned int length;
    unsigned int capacity;
    char inside[33];
};

/// Asks itself for its value, which an application's class may override.
class StatedNumber {
public:
    explicit StatedNumber(unsigned int number) : value(number) {}
    virtual ~StatedNumber();
    virtual unsigned int Value() const;
    virtual void ToString(StatedString& out) const;
    /// A sign, and digits up to what is none.
    virtual void FromString(const char* text);

    unsigned int value;
};

/// A count under a mutex, with the checks of a holder.
class StatedObject {
public:
    StatedObject();
    StatedObject(const StatedObject&) = delete;
    StatedObject& operator=(const StatedObject&) = delete;
    virtual ~StatedObject();

    static void Count(StatedObject* object, unsigned int stamp) {
        if (object == nullptr) return;
        object->Check(stamp);
        ReportIf(object->mutex.Lock() != 0, __LINE__);
        ++object->count;
        ReportIf(object->mutex.Unlock() != 0, __LINE__);
    }

    static void Uncount(StatedObject* object, unsigned int stamp) {
        if (object == nullptr) return;
        object->Check(stamp);
        ReportIf(object->mutex.Lock() != 0, __LINE__);
        const bool last = --object->count == 0;
        if (last) object->destroying = true;
        ReportIf(object->mutex.Unlock() != 0, __LINE__);
        if (last) delete object;
    }

    unsigned int stamp = 0;
    StatedObject* self;

private:
    void Check(unsigned int expected) const {
        ReportIf(destroying, __LINE__);
        ReportIf(self != this, __LINE__);
        ReportIf(stamp != expected, __LINE__);
    }

    int count = 0;
    bool destroying = false;
    TqLinuxMutex mutex;
};

class StatedHandle {
public:
    explicit StatedHandle(StatedObject* taken);
    StatedHandle(const StatedHandle& other);
    StatedHandle& operator=(const StatedHandle&) = delete;
    virtual ~StatedHandle();

    StatedObject* object = nullptr;

private:
    void Take(StatedObject* taken);

    unsigned int stamp = 0;
    mutable TqLinuxMutex mutex;
};

/// An object with an array that grows by 16 entries, has a null before the items and none among
/// them, and whose items move on their own. Lists that derive from it override what changes it.
class StatedList : public StatedObject {
public:
    StatedList();
    ~StatedList() override;

    virtual void Insert(unsigned int index, void* inserted) {
        if (__builtin_expect(inserted == nullptr, 0)) {
            ReportIf(true, __LINE__);
            return;
        }
        if (__builtin_expect(count + 1 == capacity, 0)) Grow();
        ++count;
        if (count > index) {
            std::memmove(slots + index + 1, slots + index, (count - index) * sizeof(void*));
        }
        slots[index] = inserted;
    }

    virtual void Remove(unsigned int index) {
        if (index != count) {
            std::memmove(slots + index, slots + index + 1, (count - index) * sizeof(void*));
        }
        --count;
    }

    unsigned int capacity;
    unsigned int count;
    void** slots;
    unsigned int walkDepth;

private:
    std::size_t Size() const { return (std::size_t(capacity) + 1) * sizeof(void*); }
    void Grow();
};

/// An object that calls a function where there is one.
class StatedCallback : public StatedObject {
public:
    explicit StatedCallback(void (*called)(StatedCallback*, void*, void*)) : function(called) {}
    StatedCallback(const StatedCallback& other) : function(other.function) {}
    virtual void Invoke(void* source, void* data);

private:
    void (*function)(StatedCallback*, void*, void*);
};

/// A walk that is counted, reads the number of callbacks before every step, and may be left with an
/// exception.
class StatedChain {
public:
    void Invoke(void* source, void* data);

    std::vector<StatedCallback*> callbacks;

private:
    unsigned int walkDepth = 0;
};

/// Both are asked for their type, which an application's class may override; then the numbers are
/// compared one by one.
class StatedIdentifier {
public:
    explicit StatedIdentifier(const std::vector<unsigned int>& numbers) : values(numbers) {}
    virtual ~StatedIdentifier();
    virtual short TypeId() const;

    int Compare(const StatedIdentifier& other) const;

private:
    std::vector<unsigned int> values;
    static short typeId;
};

/// A virtual operation that reads into a buffer of the class, and tells of the end.
class StatedFile {
public:
    explicit StatedFile(std::FILE* opened) : stream(opened) {}
    StatedFile(const StatedFile&) = delete;
    StatedFile& operator=(const StatedFile&) = delete;
    virtual ~StatedFile();

    virtual char* Next();

    std::FILE* stream;

private:
    static char line[1024];
    bool atEnd = false;
};

#endif
