#ifndef TQ_DECLARE_CLASS_H
#define TQ_DECLARE_CLASS_H

#include <cstddef>
#include <type_traits>

/// The class descriptor pattern: what a class needs to have a name at run time, to be asked for its
/// kinship and to be made by name. Written once, here, for the library and its applications:
///
///     // Monitor.h
///     #include "TqBaseObject.h"
///
///     class Monitor : public TqBaseObject {
///         TQ_DECLARE_CLASS(Monitor)  // what follows is private
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
///     #include "TqClassRegistry.h"
///
///     TqRegisterClass<Monitor>();
///
///     // from then on
///     TqRef<Monitor> monitor(
///         static_cast<Monitor*>(TqClassRegistry::GetRegistry()->NewObject("Monitor")));
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
/// Parents may be nested to any depth; each needs a descriptor of its own. X is a plain name: both
/// macros stand in the namespace of the class. X has a default constructor unless it is abstract.
///
/// Ownership: descriptors are never freed by the library.
/// Lock: none. Two threads that ask for a descriptor not yet built may each build one, and one of
/// them is lost: call every `XInitInfo` at start-up on one thread.

class TqBaseObject;
class TqClassInfo;

/// In the class, in any of its sections. What follows it is private.
#define TQ_DECLARE_CLASS(X) TQ_DECLARE_CLASS_MEMBERS(X, override)

/// In the source of a class that can be made by name.
#define TQ_IMPLEMENT_CLASS(X, Parent) \
    TQ_IMPLEMENT_CLASS_MEMBERS(X, (::TqParentInfo<X, Parent>()), ::TqMade(new X()))

/// In the source of a class that cannot.
#define TQ_IMPLEMENT_ABSTRACT_CLASS(X, Parent) \
    TQ_IMPLEMENT_CLASS_MEMBERS(X, (::TqParentInfo<X, Parent>()), nullptr)

// The pattern itself. The root class uses it directly: it overrides nothing and has no parent.
// NewInstance may stay unused where a class is known to one source alone, without a warning.
// TqDescribed and TqDescribedInfo give what has a name of its own in each class under one name.
#define TQ_DECLARE_CLASS_MEMBERS(X, OVERRIDE)                                 \
    static_assert(::TqIsPlainName(#X), "write " #X " without its namespace"); \
                                                                              \
public:                                                                       \
    static ::TqClassInfo* X##Info;                                            \
    static ::TqClassInfo* X##InitInfo();                                      \
    virtual ::TqClassInfo* ClassInfo() const OVERRIDE;                        \
    __attribute__((unused)) ::TqBaseObject* NewInstance() const;              \
                                                                              \
    typedef X TqDescribed;                                                    \
    static ::TqClassInfo* TqDescribedInfo() {                                 \
        return X##InitInfo();                                                 \
    }                                                                         \
                                                                              \
private:                                                                      \
    friend ::TqBaseObject* X##NewFunc();

#define TQ_IMPLEMENT_CLASS_MEMBERS(X, PARENT_INFO, NEW_OBJECT)                           \
    static_assert(::TqIsPlainName(#X), "write " #X " without its namespace, inside it"); \
                                                                                         \
    ::TqClassInfo* X::X##Info = nullptr;                                                 \
                                                                                         \
    ::TqBaseObject* X##NewFunc() {                                                       \
        return NEW_OBJECT;                                                               \
    }                                                                                    \
                                                                                         \
    ::TqBaseObject* X::NewInstance() const {                                             \
        return X##NewFunc();                                                             \
    }                                                                                    \
                                                                                         \
    ::TqClassInfo* X::X##InitInfo() {                                                    \
        ::TqClassInfo*& ownInfo = X##Info;                                               \
        if (ownInfo == nullptr) {                                                        \
            ::TqClassInfo* parentInfo = PARENT_INFO;                                     \
            ownInfo = ::TqDescriptor<::TqClassInfo>::New(#X, X##NewFunc, parentInfo);    \
        }                                                                                \
        return ownInfo;                                                                  \
    }                                                                                    \
                                                                                         \
    ::TqClassInfo* X::ClassInfo() const {                                                \
        return TqDescribedInfo();                                                        \
    }

// What the macros use, so that a mistake is told in one line that names it.

constexpr bool TqIsPlainName(const char* name) {
    return *name == '\0' || (*name != ':' && TqIsPlainName(name + 1));
}

template <class X, class Parent>
inline TqClassInfo* TqParentInfo() {
    static_assert(std::is_base_of<Parent, X>::value,
                  "the class does not derive from the parent that its TQ_IMPLEMENT_CLASS names");
    static_assert(std::is_same<typename Parent::TqDescribed, Parent>::value,
                  "the parent that TQ_IMPLEMENT_CLASS names has no TQ_DECLARE_CLASS of its own");
    return Parent::TqDescribedInfo();
}

// The second is for a class without a base, which TqParentInfo tells.
inline TqBaseObject* TqMade(TqBaseObject* object) {
    return object;
}
inline TqBaseObject* TqMade(void*) {
    return nullptr;
}

template <std::size_t size>
struct TqOfSize {
    typedef void Type;
};

template <class Info, class = void>
struct TqDescriptor {
    static_assert(sizeof(Info*) == 0, "TQ_IMPLEMENT_CLASS needs #include \"TqClassInfo.h\"");
    static Info* New(const char*, TqBaseObject* (*)(), Info*) { return nullptr; }
};

template <class Info>
struct TqDescriptor<Info, typename TqOfSize<sizeof(Info)>::Type> {
    static Info* New(const char* name, TqBaseObject* (*createFunc)(), Info* parent) {
        return new Info(name, createFunc, parent);
    }
};

#endif
