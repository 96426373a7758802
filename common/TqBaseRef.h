#ifndef TQ_BASE_REF_H
#define TQ_BASE_REF_H

#include <type_traits>

#include "TqBaseObject.h"
#include "TqDataType.h"
#include "TqExport.h"
#include "TqHooks.h"
#include "TqLinuxMutex.h"

/// The value that holds an object: taking one adds a reference to it, letting it go drops that
/// reference and may delete the object. Type id 8. Applications use the typed form, `TqRef<T>`:
///
///     TqRef<Monitor> monitor(new Monitor);  // count 1
///     TqRef<Monitor> other(monitor);        // count 2
///     monitor = nullptr;                    // count 1
///
/// Ownership: the handle keeps a reference on `object`. It has no text and no item.
/// Lock: `refMutex` guards `object` and `objectSeqNum` against the handle's own changes; the
/// object's mutex is taken inside it. Reading `object` is not locked.
/// Reports: source "TqBaseRef", except in `Equals`. After a failed lock or check the operation goes
/// on.
///
/// Destructors: an object that is let go is deleted with `refMutex` held. A destructor that changes
/// the very handle meets that mutex, which is reported. It must not have the dying object itself
/// held and let go again, which deletes it once more. And two handles on two threads whose objects
/// each copy the other handle in their destructors wait for each other without an end.
class TQ_API TqBaseRef : public TqDataType {
public:
    /// Takes `obj`, which may be null.
    TqBaseRef(TqBaseObject* obj);

    /// Takes the object of `other` under the mutex of `other`.
    TqBaseRef(const TqBaseRef& other);

    /// Lets the object go.
    ~TqBaseRef() override;

    /// Takes the object of `other`, unlike the copy without the mutex of `other`.
    TqBaseRef& operator=(const TqBaseRef& other);

    TqBaseRef& operator=(TqBaseObject* obj);

    /// Lets the present object go and takes `obj`, which may be null. The new one is counted before
    /// the old one is dropped, so `obj` may be kept alive by the old object alone. The object
    /// already held changes nothing.
    void AssignNewObject(TqBaseObject* obj);

    /// Reports when the held object is dead or foreign (its `self` is not its address), and when
    /// its stamp is not the one it was taken with.
    void GutCheck() const;

    short TypeId() const override;

    /// Not supported: these report and change nothing.
    void ToString(TqString& out) const override;
    void FromString(const char* text) override;
    void ToBuffer(TqBuffer& out) const override;
    void FromBuffer(TqBuffer& in) override;

    /// 1 when both hold the same object (or none), 0 when not: a test of identity, the reverse of
    /// the other types' sign convention, on which applications branch. Another type is reported.
    int Compare(const TqDataType& other) const override;

    /// Whether both hold the same object (or none). Null gives false. Another type is reported as
    /// "./TqBaseRef".
    bool Equals(const TqDataType* other) const override;

    /// Takes the object of `other` as `operator=` does. Another type is reported.
    void Assignment(const TqDataType& other) override;

    /// 1, always.
    virtual int SelfTest();

    TqBaseObject* object;           ///< the object held, or null
    unsigned int objectSeqNum;      ///< its stamp when it was taken; 0 when empty
    mutable TqLinuxMutex refMutex;  ///< guards the two

    static short typeId;  ///< 8, for naming the id without an object
};

/// The typed handle: a `TqBaseRef` that takes a T. `ref->` is `static_cast<T*>(ref.object)->`; like
/// that it is not checked, neither for null nor for the class of an object that came from an
/// untyped handle: `TqCast<T>` does that.
template <class T>
class TQ_API TqRef : public TqBaseRef {
public:
    TqRef(T* obj = nullptr) : TqBaseRef(obj) {}
    TqRef(const TqBaseRef& other) : TqBaseRef(other) {}
    TqRef(const TqRef& other) : TqBaseRef(other) {}
    ~TqRef() override {}

    TqRef& operator=(const TqRef& other);
    TqRef& operator=(const TqBaseRef& other);
    TqRef& operator=(T* obj);

    /// The object, or null. No reference is added.
    T* Get() const;

    /// The object, which must not be null.
    T* operator->() const;
    typename std::add_lvalue_reference<T>::type operator*() const;

    /// Whether the handle holds no object; as a condition, whether it holds one.
    bool IsEmpty() const;
    explicit operator bool() const;

    /// Hands over a new handle on the same object.
    TqDataType* Clone() const override;
};

inline bool TqBaseRef::Equals(const TqDataType* other) const {
    if (other == nullptr) return false;
    if (TypeId() != other->TypeId()) TqCallAssert("./TqBaseRef", __LINE__);
    return static_cast<const TqBaseRef*>(other)->object == object;
}

template <class T>
inline TqRef<T>& TqRef<T>::operator=(const TqRef& other) {
    TqBaseRef::operator=(other);
    return *this;
}

template <class T>
inline TqRef<T>& TqRef<T>::operator=(const TqBaseRef& other) {
    TqBaseRef::operator=(other);
    return *this;
}

template <class T>
inline TqRef<T>& TqRef<T>::operator=(T* obj) {
    TqBaseRef::operator=(obj);
    return *this;
}

template <class T>
inline T* TqRef<T>::Get() const {
    return static_cast<T*>(object);
}

template <class T>
inline T* TqRef<T>::operator->() const {
    return &**this;
}

template <class T>
inline typename std::add_lvalue_reference<T>::type TqRef<T>::operator*() const {
    return static_cast<typename std::add_lvalue_reference<T>::type>(*object);
}

template <class T>
inline bool TqRef<T>::IsEmpty() const {
    return object == nullptr;
}

template <class T>
inline TqRef<T>::operator bool() const {
    return object != nullptr;
}

template <class T>
inline TqDataType* TqRef<T>::Clone() const {
    return new TqRef<T>(static_cast<const TqBaseRef&>(*this));
}

#endif
