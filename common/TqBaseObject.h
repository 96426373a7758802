#ifndef TQ_BASE_OBJECT_H
#define TQ_BASE_OBJECT_H

#include "TqDeclareClass.h"
#include "TqExport.h"
#include "TqHooks.h"
#include "TqLinuxMutex.h"

class TqBaseObject;
class TqClassInfo;

/// The root of every class that has identity: lists, callbacks, descriptors, the registry, files,
/// and the classes of the applications. It carries a reference count guarded by a mutex of the
/// object's own, a self pointer by which handles and lists recognise a dead or foreign object, and
/// the run-time class.
///
/// Ownership: who wants to keep a shared object keeps a reference: a handle (`TqBaseRef`) or a
/// reference list (`TqBaseRefList`) does it. The object starts with none; the call that drops the
/// last one deletes it through its virtual destructor. Objects that are never counted (on the
/// stack, in a pointer list) are never deleted by this.
/// Lock: `objectMutex` guards `refCount` alone, inside the count operations. It is the last one
/// taken, nothing else is locked while it is held, and it is released before the object is deleted.
/// Reports: source "TqBaseObject". Every report is followed by the action all the same.
class TQ_API TqBaseObject {
public:
    TqBaseObject();

    /// A new object with no references; nothing is taken from `other`. Reports when `other` is
    /// being destroyed.
    TqBaseObject(const TqBaseObject& other);

    /// Does nothing: count, stamp, mutex and self pointer stay.
    TqBaseObject& operator=(const TqBaseObject& other);

    /// Reports when references remain, and when `self` is not this object. Clears `seqNum` and
    /// `self`.
    virtual ~TqBaseObject();

    /// Hands over a new object made with the copy constructor. A class that does not override it
    /// yields a bare `TqBaseObject`.
    virtual TqBaseObject* Clone() const;

    // TqBaseObjectInfo, TqBaseObjectInitInfo(), ClassInfo() and NewInstance().
    TQ_DECLARE_CLASS_MEMBERS(TqBaseObject, )

public:
    /// Whether the object's class is the one of `info` or derives from it: 1 or 0. Null is
    /// reported and gives 0.
    int IsA(TqClassInfo* info) const;

    /// The same for a registered class of that exact name. A name that is not in the registry is
    /// never matched. Null is reported and gives 0.
    int IsA(const char* name) const;

    /// Adds one reference to `obj`. `seq` is the stamp that the caller holds for it. Null does
    /// nothing. Reports an object that is being destroyed, one whose `self` is not `obj`, one whose
    /// `seqNum` is not `seq`, and a failing lock or unlock; and counts all the same.
    static void IncrementRefCount(TqBaseObject* obj, unsigned int seq);

    /// Drops one reference of `obj` and deletes it when that was the last: returns 1 then, else 0.
    /// Null does nothing. Reports as `IncrementRefCount`. A count that goes below 0 is not trapped
    /// here; the destructor reports it.
    static int DecrementRefCount(TqBaseObject* obj, unsigned int seq);

    int refCount TQ_GUARDED_BY(objectMutex);  ///< references held
    unsigned int seqNum;       ///< identity stamp, copied by those who hold the object
    TqBaseObject* self;        ///< this object's address while it lives, then null
    TqLinuxMutex objectMutex;  ///< guards `refCount`
    unsigned char destroying;  ///< 1 from the moment the count has reached 0

    /// Kept for the applications that stamp their objects; the library neither reads nor sets it.
    static unsigned int nextSeqNum;
};

/// The factory of `TqBaseObject`: null, a bare base object is never made by name.
TQ_API TqBaseObject* TqBaseObjectNewFunc();

#if !defined(TQ_BASE_OBJECT_BODY) && defined(TQ_COMPILED_IN) && defined(TQ_LINUX_MUTEX_INLINE)
#define TQ_BASE_OBJECT_BODY TQ_COMPILED_IN
#endif
#ifdef TQ_BASE_OBJECT_BODY
// NOLINTBEGIN(misc-definitions-in-headers): only the source of the class defines them

// The checks are unlocked reads, and no failure keeps the count from changing.

TQ_BASE_OBJECT_BODY TQ_READS_ANY_OBJECT void TqBaseObject::IncrementRefCount(TqBaseObject* obj,
                                                                             unsigned int seq) {
    if (obj == nullptr) return;
    if (obj->destroying != 0) TqCallAssert("TqBaseObject", __LINE__);
    if (obj->self != obj) TqCallAssert("TqBaseObject", __LINE__);
    if (obj->seqNum != seq) TqCallAssert("TqBaseObject", __LINE__);
    if (obj->objectMutex.Lock() != 0) TqCallAssert("TqBaseObject", __LINE__);
    ++obj->refCount;
    if (obj->objectMutex.Unlock() != 0) TqCallAssert("TqBaseObject", __LINE__);
}

TQ_BASE_OBJECT_BODY TQ_READS_ANY_OBJECT int TqBaseObject::DecrementRefCount(TqBaseObject* obj,
                                                                            unsigned int seq) {
    if (obj == nullptr) return 0;
    if (obj->destroying != 0) TqCallAssert("TqBaseObject", __LINE__);
    if (obj->self != obj) TqCallAssert("TqBaseObject", __LINE__);
    if (obj->seqNum != seq) TqCallAssert("TqBaseObject", __LINE__);
    if (obj->objectMutex.Lock() != 0) TqCallAssert("TqBaseObject", __LINE__);
    // Only exactly 0 deletes. A count that was below it already came from one drop too many, and to
    // delete then would be to delete twice.
    const bool last = --obj->refCount == 0;
    if (last) obj->destroying = 1;
    if (obj->objectMutex.Unlock() != 0) TqCallAssert("TqBaseObject", __LINE__);
    // Only after the unlock: the mutex goes with the object.
    if (last) delete obj;
    return last ? 1 : 0;
}

// NOLINTEND(misc-definitions-in-headers)
#endif

#endif
