#ifndef TQ_CLASS_INFO_H
#define TQ_CLASS_INFO_H

#include "TqBaseObject.h"
#include "TqNumber.h"
#include "TqString.h"

/// The run-time descriptor of a class: its name, a factory that makes an instance, and the
/// descriptor of its parent class. TqDeclareClass.h gives a class one.
///
/// Ownership: a descriptor copies its name and borrows its parent. It enters no registry by itself.
/// Lock: none. A descriptor does not change once it is built.
/// Reports: source "TqClassInfo". Descriptors are not copied; trying to is reported.
class TQ_API TqClassInfo : public TqBaseObject {
public:
    /// Null is allowed for the factory (a class that is not made by name) and for the parent (a
    /// root).
    TqClassInfo(const char* name, TqBaseObject* (*createFunc)(), TqClassInfo* parent);

    /// An empty descriptor, and a report.
    TqClassInfo(const TqClassInfo& other);

    /// A report; nothing changes.
    TqClassInfo& operator=(const TqClassInfo& other);

    /// Clears the factory, the parent and the tallies.
    ~TqClassInfo() override;

    /// Hands over a new object of the class, with no references yet; null without a factory.
    TqBaseObject* NewObject() const;

    /// 0, always. (The registry's and the handle's give 1.)
    virtual int SelfTest();

    /// Whether the class is the registered class of that exact name or derives from it: 1 or 0.
    /// The name is looked up in the registry, so an unregistered one is never matched, not even the
    /// class's own. Null gives 0.
    virtual int IsA(const char* name);

    /// Whether the class is the one of `other` or derives from it, by the identity of the
    /// descriptors: 1 or 0. Null gives 0.
    virtual int IsA(TqClassInfo* other);

    TqString name;                  ///< the class name
    TqBaseObject* (*createFunc)();  ///< the factory, or null
    TqClassInfo* parent;            ///< the parent class, or null for the root
    TqNumber tallyA;                ///< 0; no operation changes it
    TqNumber tallyB;                ///< 0; no operation changes it
};

#endif
