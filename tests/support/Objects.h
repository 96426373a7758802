#ifndef OBJECTS_H
#define OBJECTS_H

#include <cstring>
#include <functional>
#include <new>
#include <utility>
#include <vector>

#include "TqBaseList.h"
#include "TqBaseObject.h"
#include "TqClassInfo.h"
#include "TqClassRegistry.h"

// Objects for the tests of everything that counts and lists them.

/// An object that counts its end, and may do something on that occasion.
///
///     int deaths = 0;
///     TqRef<Mortal> handle(new Mortal(deaths));
///     handle = nullptr;
///     EXPECT_EQ(deaths, 1);
class Mortal : public TqBaseObject {
public:
    explicit Mortal(int& deathCount, std::function<void()> inTheEnd = nullptr)
        : deaths(deathCount), lastWords(std::move(inTheEnd)) {}

    ~Mortal() override {
        ++deaths;
        if (lastWords) lastWords();
    }

private:
    int& deaths;
    std::function<void()> lastWords;
};

/// One more reference, and one fewer, with the stamp that the object has.
inline void Keep(TqBaseObject* object) {
    TqBaseObject::IncrementRefCount(object, object->seqNum);
}
inline int Drop(TqBaseObject* object) {
    return TqBaseObject::DecrementRefCount(object, object->seqNum);
}

using Items = std::vector<void*>;

/// What stands in the slots 1 to `count`.
inline Items ItemsOf(const TqBaseList& list) {
    return Items(list.slots + 1, list.slots + 1 + list.count);
}

/// Enters a descriptor into the registry of the process for as long as this lives. The descriptor
/// outlives it.
class Registered {
public:
    explicit Registered(TqClassInfo* entered) : info(entered) {
        Keep(info);
        list.InsertSlot(list.count + 1, info);
    }
    ~Registered() {
        list.RemoveSlot(list.FindSlot(info));
        --info->refCount;
    }

    Registered(const Registered&) = delete;
    Registered& operator=(const Registered&) = delete;

private:
    TqBaseObject* info;
    TqRefList<TqClassInfo>& list = TqClassRegistry::GetRegistry()->classList;
};

/// Room for one T that outlives the T in it: a test reads what a destructor left behind.
///
///     Grave<TqBaseObject> grave;
///     grave.Bury();
///     EXPECT_EQ(grave.Left(&TqBaseObject::self), nullptr);
template <class T>
class Grave {
public:
    template <class... Arguments>
    explicit Grave(Arguments&&... arguments) {
        std::memset(storage, 0xA5, sizeof storage);
        object = new (storage) T(std::forward<Arguments>(arguments)...);
    }

    T* operator->() { return object; }
    T* Get() { return object; }

    /// Destroys the object.
    void Bury() { object->~T(); }

    /// What the storage of a field holds now.
    template <class Base, class Field>
    Field Left(Field Base::*field) const {
        const void* address = &(object->*field);
        Field left;
        // A field may be a pointer. NOLINTNEXTLINE(bugprone-sizeof-expression)
        std::memcpy(static_cast<void*>(&left), address, sizeof left);
        return left;
    }

private:
    alignas(T) unsigned char storage[sizeof(T)];
    T* object;
};

#endif
