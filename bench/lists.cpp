// Lists, chains, and what is found in lists: this library and the standard library.

#include <cstdlib>
#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "Duty.h"
#include "TqBaseList.h"
#include "TqCallbackChain.h"
#include "TqClassRegistry.h"
#include "TqFunctionCb.h"
#include "TqHooks.h"
#include "TqSortedStringList.h"

namespace {

int item;

// An array that grows by 16 entries, holds no null, and whose items move on their own.
class Stated {
public:
    Stated() : capacity(16), count(0), slots(static_cast<void**>(std::malloc(Size()))) {}
    Stated(const Stated&) = delete;
    Stated& operator=(const Stated&) = delete;
    ~Stated() { std::free(slots); }

    void Insert(unsigned int index, void* inserted) {
        if (inserted == nullptr) {
            TqCallAssert("lists", __LINE__);
            return;
        }
        if (__builtin_expect(count + 1 == capacity, 0)) Grow();
        ++count;
        if (count > index) {
            std::memmove(slots + index + 1, slots + index, (count - index) * sizeof(void*));
        }
        slots[index] = inserted;
    }

    void Remove(unsigned int index) {
        if (index != count) {
            std::memmove(slots + index, slots + index + 1, (count - index) * sizeof(void*));
        }
        --count;
    }

private:
    std::size_t Size() const { return (std::size_t(capacity) + 1) * sizeof(void*); }

    __attribute__((noinline)) void Grow() {
        capacity += 16;
        slots = static_cast<void**>(std::realloc(slots, Size()));
    }

public:
    unsigned int capacity;
    unsigned int count;
    void** slots;
};

const RegisterDuty appendOwn("list_append", ownName, [](unsigned int size) -> Work {
    return [size](unsigned int times) {
        int* const appended = Opaque(&item);
        for (; times > 0; --times) {
            TqBaseList list;
            for (unsigned int i = 0; i < size; ++i) list.InsertSlot(list.count + 1, appended);
            Keep(list);
        }
    };
});

const RegisterDuty appendStated("list_append", floorName, [](unsigned int size) -> Work {
    return [size](unsigned int times) {
        int* const appended = Opaque(&item);
        for (; times > 0; --times) {
            Stated list;
            for (unsigned int i = 0; i < size; ++i) list.Insert(list.count + 1, appended);
            Keep(list);
        }
    };
});

const RegisterDuty appendStd("list_append", "std::vector", [](unsigned int size) -> Work {
    return [size](unsigned int times) {
        int* const appended = Opaque(&item);
        for (; times > 0; --times) {
            std::vector<void*> list;
            for (unsigned int i = 0; i < size; ++i) list.push_back(appended);
            Keep(list);
        }
    };
});

const RegisterDuty frontOwn("list_front", ownName, [](unsigned int size) -> Work {
    return [size](unsigned int times) {
        for (; times > 0; --times) {
            TqBaseList list;
            for (unsigned int i = 0; i < size; ++i) list.InsertSlot(1, &item);
            Keep(list);
        }
    };
});

const RegisterDuty frontStated("list_front", floorName, [](unsigned int size) -> Work {
    return [size](unsigned int times) {
        for (; times > 0; --times) {
            Stated list;
            for (unsigned int i = 0; i < size; ++i) list.Insert(1, &item);
            Keep(list);
        }
    };
});

const RegisterDuty frontStd("list_front", "std::vector", [](unsigned int size) -> Work {
    return [size](unsigned int times) {
        for (; times > 0; --times) {
            std::vector<void*> list;
            for (unsigned int i = 0; i < size; ++i) list.insert(list.begin(), &item);
            Keep(list);
        }
    };
});

const RegisterDuty removeOwn("list_remove", ownName, [](unsigned int size) -> Work {
    const auto list = std::make_shared<TqBaseList>();
    for (unsigned int i = 0; i < size; ++i) list->InsertSlot(1, &item);
    return [size, list](unsigned int times) {
        TqBaseList& own = *list;
        for (; times > 0; --times) {
            own.count = size;
            for (unsigned int i = 0; i < size; ++i) own.RemoveSlot(1);
            Keep(own);
        }
    };
});

const RegisterDuty removeStated("list_remove", floorName, [](unsigned int size) -> Work {
    const auto list = std::make_shared<Stated>();
    for (unsigned int i = 0; i < size; ++i) list->Insert(1, &item);
    return [size, list](unsigned int times) {
        Stated& own = *list;
        for (; times > 0; --times) {
            own.count = size;
            for (unsigned int i = 0; i < size; ++i) own.Remove(1);
            Keep(own);
        }
    };
});

const RegisterDuty removeStd("list_remove", "std::vector", [](unsigned int size) -> Work {
    return [size, list = std::make_shared<std::vector<void*>>()](unsigned int times) {
        for (; times > 0; --times) {
            list->resize(size);
            for (unsigned int i = 0; i < size; ++i) list->erase(list->begin());
            Keep(*list);
        }
    };
});

unsigned int calls;

void Count(TqFunctionCb*, TqBaseObject*, TqCallbackData*) {
    ++calls;
    Keep(calls);
}

struct Chain {
    explicit Chain(unsigned int size) : callbacks(size, TqFunctionCb(Count, nullptr)) {
        for (TqFunctionCb& callback : callbacks) {
            chain.InsertSlot(chain.count + 1, static_cast<TqCallback*>(&callback));
        }
    }
    std::vector<TqFunctionCb> callbacks;
    TqCallbackChain chain;
};

const RegisterDuty chainOwn("chain", ownName, [](unsigned int size) -> Work {
    return [chain = std::make_shared<Chain>(size)](unsigned int times) {
        for (; times > 0; --times) chain->chain.Invoke(nullptr, nullptr);
    };
});

}  // namespace

// A callback that calls a function where there is one, and a walk that is counted, reads the number
// of callbacks before every step, and may be left with an exception.
class StatedCallback {
public:
    explicit StatedCallback(void (*called)(StatedCallback*, void*, void*)) : function(called) {}
    virtual ~StatedCallback() = default;
    __attribute__((noinline)) virtual void Invoke(void* source, void* data) {
        if (function != nullptr) function(this, source, data);
    }

private:
    void (*function)(StatedCallback*, void*, void*);
};

namespace {

class StatedChain {
public:
    __attribute__((noinline)) void Invoke(void* source, void* data) {
        struct Walk {
            explicit Walk(unsigned int& walks) : depth(walks) { ++depth; }
            ~Walk() { --depth; }
            unsigned int& depth;
        };
        const Walk walk(walkDepth);
        for (std::size_t i = 0; i < callbacks.size(); ++i) callbacks[i]->Invoke(source, data);
    }

    std::vector<StatedCallback*> callbacks;

private:
    unsigned int walkDepth = 0;
};

void CountStated(StatedCallback*, void*, void*) {
    ++calls;
    Keep(calls);
}

const RegisterDuty chainStated("chain", floorName, [](unsigned int size) -> Work {
    const auto callbacks =
        std::make_shared<std::vector<StatedCallback>>(size, StatedCallback(CountStated));
    StatedChain chain;
    for (StatedCallback& callback : *callbacks) chain.callbacks.push_back(&callback);
    return [callbacks, chain](unsigned int times) mutable {
        for (; times > 0; --times) chain.Invoke(nullptr, nullptr);
    };
});

void CountStd(void*, void*) {
    ++calls;
    Keep(calls);
}

const RegisterDuty chainStd("chain", "std::function", [](unsigned int size) -> Work {
    const std::vector<std::function<void(void*, void*)>> chain(size, CountStd);
    return [chain](unsigned int times) {
        for (; times > 0; --times) {
            for (const auto& callback : *Opaque(&chain)) callback(nullptr, nullptr);
        }
    };
});

TqBaseObject* NoObject() {
    return nullptr;
}

const RegisterDuty lookupOwn("lookup", ownName, [](unsigned int size) -> Work {
    const std::vector<std::string> names = ClassNames(size);
    const auto registry = std::make_shared<TqClassRegistry>();
    for (const std::string& name : names) {
        registry->classList.InsertSlot(registry->classList.count + 1,
                                       new TqClassInfo(name.c_str(), NoObject, nullptr));
    }
    return [registry, last = names.back()](unsigned int times) {
        for (; times > 0; --times) {
            const TqClassInfo* info = registry->ClassInfo(last.c_str());
            Keep(info);
        }
    };
});

struct Description {
    std::string name;
    TqBaseObject* (*createFunc)();
};

const RegisterDuty lookupStd("lookup", "a loop of strcmp", [](unsigned int size) -> Work {
    std::vector<std::shared_ptr<Description>> classes;
    for (const std::string& name : ClassNames(size)) {
        classes.push_back(std::make_shared<Description>(Description{name, NoObject}));
    }
    return [classes, last = ClassNames(size).back()](unsigned int times) {
        for (; times > 0; --times) {
            const Description* found = nullptr;
            const char* wanted = Opaque(last.c_str());
            for (const auto& description : classes) {
                if (std::strcmp(description->name.c_str(), wanted) == 0) {
                    found = description.get();
                    break;
                }
            }
            Keep(found);
        }
    };
});

std::shared_ptr<std::vector<TqString>> RandomStrings(unsigned int size) {
    auto strings = std::make_shared<std::vector<TqString>>();
    strings->reserve(size);
    for (const std::string& text : RandomTexts(size)) strings->emplace_back(text.c_str());
    return strings;
}

const RegisterDuty sortedOwn("sorted", ownName, [](unsigned int size) -> Work {
    return [strings = RandomStrings(size)](unsigned int times) {
        for (; times > 0; --times) {
            TqSortedStringList list;
            for (TqString& string : *strings) list.Add(&string);
            Keep(list);
        }
    };
});

// The walk as it reads in the description of the list: each text by strcmp, from the first.
const RegisterDuty sortedPlain("sorted", "a loop of strcmp", [](unsigned int size) -> Work {
    return [strings = RandomStrings(size)](unsigned int times) {
        for (; times > 0; --times) {
            std::vector<TqString*> list;
            for (TqString& string : *strings) {
                std::size_t place = 0;
                while (place < list.size() && std::strcmp(list[place]->data, string.data) <= 0) {
                    ++place;
                }
                list.insert(list.begin() + static_cast<std::ptrdiff_t>(place), &string);
            }
            Keep(list);
        }
    };
});

}  // namespace
