#ifndef TQ_CLASS_REGISTRY_H
#define TQ_CLASS_REGISTRY_H

#include <type_traits>

#include "TqBaseObject.h"
#include "TqBaseRefList.h"
#include "TqClassInfo.h"
#include "TqString.h"

/// The process-wide table of class descriptors: finds the descriptor with a name and makes objects
/// by class name. The library registers nothing itself; an application inserts the descriptors of
/// its classes at start-up:
///
///     TqRegisterClass<Monitor>();
///
/// Ownership: `classList` keeps a reference on each descriptor. The registry itself lives until the
/// process ends.
/// Lock: none for `GetRegistry` (call it first on one thread), for the lookups and for `Dump`;
/// inserting and removing take the list's mutex, which the lookups do not. A lookup also writes:
/// `IsA(name)` and each function here that takes a name raises `walkDepth` of the list and lowers
/// it again, a plain number. What that means for threads:
///
/// - Register every class before the threads start, and remove none while they run. Or put lookups,
///   registrations and removals under one lock of the application's own.
/// - Lookups that overlap without such a lock find what they should as long as nobody registers or
///   removes; but `walkDepth` may come out wrong, and a list that goes or is assigned to with one
///   that is not 0 reports. A registry that lives as long as its process never does.
/// Reports: source "TqClassRegistry". A null name is not checked anywhere.
///
/// Names are compared whole and case-sensitively. The first match in slot order counts.
class TQ_API TqClassRegistry : public TqBaseObject {
public:
    TqClassRegistry();

    /// An empty registry, and a report.
    TqClassRegistry(const TqClassRegistry& other);

    /// A report; nothing changes.
    TqClassRegistry& operator=(const TqClassRegistry& other);

    /// Lets every descriptor go.
    ~TqClassRegistry() override;

    /// The registry of the process, made on the first call. Never null.
    static TqClassRegistry* GetRegistry();

    using TqBaseObject::ClassInfo;

    /// The descriptor with that name, or null.
    TqClassInfo* ClassInfo(const char* name) const;

    /// Hands over a new object of the class with that name, with no references yet; null when there
    /// is no such class or it has no factory.
    TqBaseObject* NewObject(const char* name) const;

    /// The descriptor with that name, or null. Names of another length are passed over without
    /// looking at their text.
    TqClassInfo* Find(const TqString& name) const;

    /// Prints "Name: " and the name of each descriptor to standard output, a line each.
    void Dump() const;

    /// Takes the class with that name out and drops the registry's reference; a descriptor that
    /// nobody else keeps is deleted, and its class must not be asked for `ClassInfo` again. An
    /// unknown name makes three reports ("TqBaseList", "./TqRefList", "TqBaseRefList") and removes
    /// nothing.
    void Remove(const char* name);

    /// 1, always.
    virtual int SelfTest();

    TqRefList<TqClassInfo> classList;  ///< the descriptors, slots 1 to `count`

    static TqClassRegistry* theRegistry;  ///< the one of the process; null until asked for
};

/// Enters a class that has the macros of TqDeclareClass.h into the registry of the process, behind
/// those that are in it; one that is in it already stays where it is.
template <class X>
inline void TqRegisterClass() {
    static_assert(std::is_same<typename X::TqDescribed, X>::value,
                  "the class that TqRegisterClass names has no TQ_DECLARE_CLASS of its own");
    TqRefList<TqClassInfo>& list = TqClassRegistry::GetRegistry()->classList;
    TqBaseObject* info = X::TqDescribedInfo();
    if (list.FindSlot(info) == 0) list.InsertSlot(list.count + 1, info);
}

#endif
