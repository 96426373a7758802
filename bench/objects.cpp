// Counts, handles and objects: this library, the standard library, the steps that are stated of
// this library, and the mutexes among them alone.

#include <memory>
#include <vector>

#include "Duty.h"
#include "Floor.h"
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
