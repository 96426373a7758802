#ifndef TQ_DECLARE_CLASS_H
#define TQ_DECLARE_CLASS_H

/// The class descriptor pattern: what a class needs to have a name at run time, to be asked for its
/// kinship and to be made by name. Written once, here, for the library and its applications:
///
///     // Monitor.h
///     #include "TqBaseObject.h"
///
///     class Monitor : public TqBaseObject {
///         TQ_DECLARE_CLASS(Monitor)
///     public:
///         ...
///     };
///
///     // Monitor.cpp
///     #include "TqClassInfo.h"
///
///     TQ_IMPLEMENT_CLASS(Monitor, TqBaseObject)
///
///     // at start-up
///     TqClassRegistry* registry = TqClassRegistry::GetRegistry();
///     registry->classList.InsertSlot(registry->classList.count + 1, Monitor::MonitorInitInfo());
///
///     // from then on
///     TqRef<Monitor> monitor(static_cast<Monitor*>(registry->NewObject("Monitor")));
///
/// A class X gets five members:
///
/// - `X::XInfo`, its descriptor, null until first needed;
/// - `X::XInitInfo()`, which builds the descriptor, and first its parent's, on the first call, and
///   returns it;
/// - `ClassInfo() const`, the virtual that returns it for an object, building it on the first call;
/// - `XNewFunc()`, the factory, a free function: `new X()`, or null for an abstract class;
/// - `X::NewInstance() const`, the same as a member.
///
/// Parents may be nested to any depth; each needs a descriptor of its own. X and its parent are
/// plain names in scope, not qualified ones, and X has a default constructor unless it is abstract.
///
/// Ownership: descriptors are never freed by the library.
/// Lock: none. Two threads that ask for a descriptor not yet built may each build one, and one of
/// them is lost: call every `XInitInfo` at start-up on one thread.

/// In the class; what follows is private again.
#define TQ_DECLARE_CLASS(X) TQ_DECLARE_CLASS_MEMBERS(X, override)

/// In the source of a class that can be made by name.
#define TQ_IMPLEMENT_CLASS(X, Parent) \
    TQ_IMPLEMENT_CLASS_MEMBERS(X, Parent::Parent##InitInfo(), new X())

/// In the source of a class that cannot.
#define TQ_IMPLEMENT_ABSTRACT_CLASS(X, Parent) \
    TQ_IMPLEMENT_CLASS_MEMBERS(X, Parent::Parent##InitInfo(), nullptr)

// The pattern itself. The root class uses it directly: it overrides nothing and has no parent.
// NewInstance may stay unused where a class is known to one source alone, without a warning.
#define TQ_DECLARE_CLASS_MEMBERS(X, OVERRIDE)                    \
public:                                                          \
    static ::TqClassInfo* X##Info;                               \
    static ::TqClassInfo* X##InitInfo();                         \
    virtual ::TqClassInfo* ClassInfo() const OVERRIDE;           \
    __attribute__((unused)) ::TqBaseObject* NewInstance() const; \
                                                                 \
private:                                                         \
    friend ::TqBaseObject* X##NewFunc();

#define TQ_IMPLEMENT_CLASS_MEMBERS(X, PARENT_INFO, NEW_OBJECT)       \
    ::TqClassInfo* X::X##Info = nullptr;                             \
                                                                     \
    ::TqBaseObject* X##NewFunc() {                                   \
        return NEW_OBJECT;                                           \
    }                                                                \
                                                                     \
    ::TqBaseObject* X::NewInstance() const {                         \
        return X##NewFunc();                                         \
    }                                                                \
                                                                     \
    ::TqClassInfo* X::X##InitInfo() {                                \
        if (X##Info == nullptr) {                                    \
            ::TqClassInfo* parentInfo = PARENT_INFO;                 \
            X##Info = new ::TqClassInfo(#X, X##NewFunc, parentInfo); \
        }                                                            \
        return X##Info;                                              \
    }                                                                \
                                                                     \
    ::TqClassInfo* X::ClassInfo() const {                            \
        if (X##Info == nullptr) X##InitInfo();                       \
        return X##Info;                                              \
    }

#endif
