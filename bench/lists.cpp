// Lists, chains, and what is found in lists: this library and the standard library.

#include <cstdlib>
#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "Duty.h"
#include "Floor.h"
#include "TqBaseList.h"
#include "TqCallbackChain.h"
#include "TqClassRegistry.h"
#include "TqFunctionCb.h"
#include "TqSortedStringList.h"

namespace {

int item;

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
            StatedList list;
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
            StatedList list;
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
    const auto list = std::make_shared<StatedList>();
    for (unsigned int i = 0; i < size; ++i) list->Insert(1, &item);
    return [size, list](unsigned int times) {
        StatedList& own = *list;
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
