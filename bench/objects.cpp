// Counts, handles and objects: this library, the standard library, the steps that are stated of
// this library, and the mutexes among them alone.

#include <memory>
#include <vector>

#include "Duty.h"
#include "TqBaseRef.h"

namespace {

struct Plain {
    virtual ~Plain() = default;
    int value = 0;
};

using Handles = std::vector<TqRef<TqBaseObject>>;
using Pointers = std::vector<std::shared_ptr<Plain>>;

std::shared_ptr<Handles> MakeHandles(unsigned int size) {
    auto handles = std::make_shared<Handles>();
    handles->reserve(size);
    for (unsigned int i = 0; i < size; ++i) handles->emplace_back(new TqBaseObject);
    return handles;
}

std::shared_ptr<Pointers> MakePointers(unsigned int size) {
    auto pointers = std::make_shared<Pointers>();
    for (unsigned int i = 0; i < size; ++i) pointers->push_back(std::make_shared<Plain>());
    return pointers;
}

// What an object and a handle have to lock.
struct Lockable {
    TqLinuxMutex mutex;
    int count = 1;
};

void CountUnderMutex(Lockable& object, int step) {
    object.mutex.Lock();
    object.count += step;
    object.mutex.Unlock();
}

using Lockables = std::unique_ptr<Lockable[]>;

void CopyAndDropOfMutexes(Lockable& object, Lockable& other) {
    Lockable own;
    other.mutex.Lock();
    own.mutex.Lock();
    CountUnderMutex(object, 1);
    own.mutex.Unlock();
    other.mutex.Unlock();
    own.mutex.Lock();
    CountUnderMutex(object, -1);
    own.mutex.Unlock();
    Keep(own);
}

// The steps of an object and a handle as they are stated, and nothing else: the same checks, locks
// and calls, of which constructors, destructors and the change of a handle are functions.
void Report(bool broken, int line) {
    if (__builtin_expect(broken, 0)) TqCallAssert("objects", line);
}

class StatedObject {
public:
    __attribute__((noinline)) StatedObject() : self(this) {}
    __attribute__((noinline)) virtual ~StatedObject() {
        Report(count != 0, __LINE__);
        Report(self != this, __LINE__);
        stamp = 0;
        self = nullptr;
        Keep(*this);
    }

    static void Count(StatedObject* object, unsigned int stamp) {
        object->Check(stamp);
        Report(object->mutex.Lock() != 0, __LINE__);
        ++object->count;
        Report(object->mutex.Unlock() != 0, __LINE__);
    }

    static void Uncount(StatedObject* object, unsigned int stamp) {
        object->Check(stamp);
        Report(object->mutex.Lock() != 0, __LINE__);
        const bool last = --object->count == 0;
        if (last) object->destroying = true;
        Report(object->mutex.Unlock() != 0, __LINE__);
        if (last) delete object;
    }

    unsigned int stamp = 0;
    StatedObject* self;

private:
    void Check(unsigned int expected) const {
        Report(destroying, __LINE__);
        Report(self != this, __LINE__);
        Report(stamp != expected, __LINE__);
    }

    int count = 0;
    bool destroying = false;
    TqLinuxMutex mutex;
};

class StatedHandle {
public:
    __attribute__((noinline)) explicit StatedHandle(StatedObject* taken) { Take(taken); }
    __attribute__((noinline)) StatedHandle(const StatedHandle& other) {
        Report(other.mutex.Lock() != 0, __LINE__);
        Take(other.object);
        Report(other.mutex.Unlock() != 0, __LINE__);
    }
    __attribute__((noinline)) virtual ~StatedHandle() { Take(nullptr); }

    StatedObject* object = nullptr;

private:
    __attribute__((noinline)) void Take(StatedObject* taken) {
        Report(mutex.Lock() != 0, __LINE__);
        if (object != nullptr) {
            Report(object->self != object, __LINE__);
            Report(object->stamp != stamp, __LINE__);
        }
        if (taken != object) {
            const unsigned int newStamp = taken == nullptr ? 0 : taken->stamp;
            if (taken != nullptr) StatedObject::Count(taken, newStamp);
            if (object != nullptr) StatedObject::Uncount(object, stamp);
            stamp = newStamp;
            object = taken;
        }
        Report(mutex.Unlock() != 0, __LINE__);
    }

    unsigned int stamp = 0;
    mutable TqLinuxMutex mutex;
};

using StatedHandles = std::vector<StatedHandle>;

std::shared_ptr<StatedHandles> MakeStatedHandles(unsigned int size) {
    auto handles = std::make_shared<StatedHandles>();
    handles->reserve(size);
    for (unsigned int i = 0; i < size; ++i) handles->emplace_back(new StatedObject);
    return handles;
}

const RegisterDuty countOwn("count", ownName, [](unsigned int size) -> Work {
    return [handles = MakeHandles(size)](unsigned int times) {
        for (; times > 0; --times) {
            for (const TqBaseRef& handle : *handles) {
                TqBaseObject::IncrementRefCount(handle.object, 0);
                TqBaseObject::DecrementRefCount(handle.object, 0);
            }
        }
    };
});

void CopyAndDrop(const Pointers& pointers, unsigned int times) {
    for (; times > 0; --times) {
        for (const std::shared_ptr<Plain>& pointer : pointers) {
            const std::shared_ptr<Plain> copy(pointer);
            Keep(copy);
        }
    }
}

Work PrepareSharedCopies(unsigned int size) {
    return [pointers = MakePointers(size)](unsigned int times) { CopyAndDrop(*pointers, times); };
}

const RegisterDuty countStd("count", "std::shared_ptr", PrepareSharedCopies);

const RegisterDuty countStated("count", floorName, [](unsigned int size) -> Work {
    return [handles = MakeStatedHandles(size)](unsigned int times) {
        for (; times > 0; --times) {
            for (const StatedHandle& handle : *handles) {
                StatedObject::Count(handle.object, 0);
                StatedObject::Uncount(handle.object, 0);
            }
        }
    };
});

const RegisterDuty countMutexes("count", "the mutexes alone", [](unsigned int size) -> Work {
    return [objects = std::make_shared<Lockables>(new Lockable[size]), size](unsigned int times) {
        for (; times > 0; --times) {
            for (unsigned int i = 0; i < size; ++i) {
                CountUnderMutex((*objects)[i], 1);
                CountUnderMutex((*objects)[i], -1);
            }
        }
    };
});

const RegisterDuty handleOwn("handle", ownName, [](unsigned int size) -> Work {
    return [handles = MakeHandles(size)](unsigned int times) {
        for (; times > 0; --times) {
            for (const TqRef<TqBaseObject>& handle : *handles) {
                const TqRef<TqBaseObject> copy(handle);
                Keep(copy);
            }
        }
    };
});

const RegisterDuty handleStd("handle", "std::shared_ptr", PrepareSharedCopies);

const RegisterDuty handleStated("handle", floorName, [](unsigned int size) -> Work {
    return [handles = MakeStatedHandles(size)](unsigned int times) {
        for (; times > 0; --times) {
            for (const StatedHandle& handle : *handles) {
                const StatedHandle copy(handle);
                Keep(copy);
            }
        }
    };
});

const RegisterDuty handleMutexes("handle", "the mutexes alone", [](unsigned int size) -> Work {
    return [objects = std::make_shared<Lockables>(new Lockable[size]),
            handles = std::make_shared<Lockables>(new Lockable[size]), size](unsigned int times) {
        for (; times > 0; --times) {
            for (unsigned int i = 0; i < size; ++i) {
                CopyAndDropOfMutexes((*objects)[i], (*handles)[i]);
            }
        }
    };
});

// All alive at once, made and dropped in order.
const RegisterDuty objectOwn("object", ownName, [](unsigned int size) -> Work {
    if (size == 1) {
        return [](unsigned int times) {
            for (; times > 0; --times) {
                const TqRef<TqBaseObject> held(new TqBaseObject);
                Keep(held);
            }
        };
    }
    return [size](unsigned int times) {
        for (; times > 0; --times) Keep(MakeHandles(size));
    };
});

const RegisterDuty objectStd("object", "std::make_shared", [](unsigned int size) -> Work {
    if (size == 1) {
        return [](unsigned int times) {
            for (; times > 0; --times) Keep(std::make_shared<Plain>());
        };
    }
    return [size](unsigned int times) {
        for (; times > 0; --times) Keep(MakePointers(size));
    };
});

const RegisterDuty objectStated("object", floorName, [](unsigned int size) -> Work {
    if (size == 1) {
        return [](unsigned int times) {
            for (; times > 0; --times) {
                const StatedHandle held(new StatedObject);
                Keep(held);
            }
        };
    }
    return [size](unsigned int times) {
        for (; times > 0; --times) Keep(MakeStatedHandles(size));
    };
});

}  // namespace
