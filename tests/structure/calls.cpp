// The calls of old: what each of them gives, and which of them do not compile, ambiguous ones among
// them. What is added to the headers changes none of these. Nothing is run.
#include <type_traits>
#include <utility>

#include "Tq.h"

namespace {

struct NoCall {};

template <class...>
struct Nothing {
    typedef void Type;
};

// CALL(Name, expression of a and b): Name<A, B>::Result is its type, or NoCall.
#define CALL(NAME, ...)                                                \
    template <class A, class B = int, class = void>                    \
    struct NAME {                                                      \
        typedef NoCall Result;                                         \
    };                                                                 \
    template <class A, class B>                                        \
    struct NAME<A, B, typename Nothing<decltype(__VA_ARGS__)>::Type> { \
        typedef decltype(__VA_ARGS__) Result;                          \
    }

#define a (std::declval<A>())
#define b (std::declval<B>())

#define GIVES(RESULT, ...) \
    static_assert(std::is_same<__VA_ARGS__::Result, RESULT>::value, #__VA_ARGS__)
#define DOES_NOT_COMPILE(...) GIVES(NoCall, __VA_ARGS__)

class Port : public TqBaseObject {};
class FastPort : public Port {};
class Monitor : public TqBaseObject {};

typedef TqPtrList<Port> Pointers;
typedef TqRefList<Port> References;
typedef TqRef<Port> Handle;

// Lists.
CALL(InsertSlot, (a.InsertSlot(1u, b), 0));
CALL(InsertNull, (a.InsertSlot(1u, nullptr), 0));
CALL(FindSlot, a.FindSlot(b));
CALL(RemoveItem, a.RemoveItem(b));
CALL(RemoveZero, a.RemoveItem(0));
CALL(RemoveNull, a.RemoveItem(nullptr));
CALL(Add, a.Add(b));
CALL(AddZero, a.Add(0));

GIVES(int, InsertSlot<Pointers&, Port*>);
GIVES(int, InsertSlot<References&, Port*>);
GIVES(int, InsertSlot<References&, Monitor*>);
GIVES(int, InsertSlot<TqCallbackChain&, TqFunctionCb*>);
GIVES(int, InsertSlot<TqSortedStringList&, TqString*>);
GIVES(int, InsertNull<References&>);
DOES_NOT_COMPILE(InsertSlot<References&, const Port*>);
DOES_NOT_COMPILE(InsertSlot<const References&, Port*>);
GIVES(unsigned int, FindSlot<const References&, Monitor*>);
GIVES(unsigned int, FindSlot<const TqCallbackChain&, TqCallback*>);
GIVES(void*, RemoveItem<Pointers&, int>);
GIVES(void*, RemoveItem<Pointers&, unsigned int>);
GIVES(void*, RemoveItem<Pointers&, Monitor*>);
GIVES(void*, RemoveItem<TqCallbackChain&, TqCallback*>);
GIVES(void*, RemoveNull<Pointers&>);
DOES_NOT_COMPILE(RemoveZero<Pointers&>);
DOES_NOT_COMPILE(RemoveZero<TqCallbackChain&>);
DOES_NOT_COMPILE(RemoveItem<References&, unsigned int>);
GIVES(TqString*, RemoveItem<TqSortedStringList&, int>);
GIVES(TqString*, RemoveItem<TqSortedStringList&, TqString*>);
DOES_NOT_COMPILE(RemoveZero<TqSortedStringList&>);
GIVES(TqString*, Add<TqSortedStringList&, TqString*>);
GIVES(TqString*, AddZero<TqSortedStringList&>);
DOES_NOT_COMPILE(Add<TqSortedStringList&, const char*>);
static_assert(!std::is_convertible<References&, Pointers&>::value, "");
static_assert(std::is_convertible<TqCallbackChain&, TqPtrList<TqCallback>&>::value, "");

// Handles.
CALL(Assigned, a = b);
CALL(AssignedNull, a = nullptr);
CALL(Equal, a == b);
CALL(Differs, a != b);
CALL(Less, a < b);
CALL(Plus, a + b);
CALL(Shifted, a << b);
CALL(ReadBy, a >> b);
CALL(Subscript, a[b]);
CALL(TakenAsFlag, static_cast<void (*)(bool)>(nullptr)(a));
CALL(TakenAsNumber, static_cast<int (*)(int)>(nullptr)(a));
CALL(TakenAsPointer, static_cast<int (*)(void*)>(nullptr)(a));
CALL(TakenAsText, static_cast<int (*)(const char*)>(nullptr)(a));
CALL(TakenAsString, static_cast<int (*)(const TqString&)>(nullptr)(a));
CALL(TakenAsValue, static_cast<int (*)(const TqDataType&)>(nullptr)(a));

GIVES(Handle&, Assigned<Handle&, Port*>);
GIVES(Handle&, Assigned<Handle&, FastPort*>);
GIVES(Handle&, Assigned<Handle&, const TqRef<Monitor>&>);
GIVES(Handle&, Assigned<Handle&, const TqBaseRef&>);
GIVES(Handle&, AssignedNull<Handle&>);
DOES_NOT_COMPILE(Equal<Handle&, Handle&>);
DOES_NOT_COMPILE(Differs<Handle&, Handle&>);
DOES_NOT_COMPILE(Equal<Handle&, Port*>);
DOES_NOT_COMPILE(Less<Handle&, Handle&>);
DOES_NOT_COMPILE(Plus<Handle&, int>);
DOES_NOT_COMPILE(Shifted<Handle&, int>);
DOES_NOT_COMPILE(Subscript<Handle&, int>);
DOES_NOT_COMPILE(TakenAsFlag<Handle&>);
DOES_NOT_COMPILE(TakenAsNumber<Handle&>);
DOES_NOT_COMPILE(TakenAsPointer<Handle&>);
GIVES(int, TakenAsValue<Handle&>);
static_assert(std::is_convertible<Port*, Handle>::value, "");
static_assert(std::is_convertible<FastPort*, Handle>::value, "");
static_assert(std::is_convertible<std::nullptr_t, Handle>::value, "");
static_assert(std::is_convertible<const TqRef<Monitor>&, Handle>::value, "");
static_assert(!std::is_convertible<Handle, Port*>::value, "");
static_assert(!std::is_convertible<Handle, bool>::value, "");

// Values.
CALL(Append, (a.Append(b), 0));
CALL(AppendZero, (a.Append(0), 0));
CALL(TakenFromZero, A(0));

GIVES(bool, Equal<TqNumber&, TqNumber&>);
GIVES(bool, Equal<TqNumber&, int>);
GIVES(bool, Less<TqCounter&, TqCounter&>);
GIVES(bool, Equal<TqNumber&, TqBoolean&>);
GIVES(int, Plus<TqNumber&, int>);
GIVES(int, Shifted<TqNumber&, int>);
GIVES(int, TakenAsNumber<TqCounter&>);
DOES_NOT_COMPILE(TakenAsPointer<TqNumber&>);
GIVES(TqString, Plus<TqString&, const char*>);
DOES_NOT_COMPILE(Plus<TqString&, TqString&>);
DOES_NOT_COMPILE(Plus<const char*, TqString&>);
DOES_NOT_COMPILE(Equal<TqString&, TqString&>);
DOES_NOT_COMPILE(Equal<TqString&, const char*>);
DOES_NOT_COMPILE(Less<TqString&, TqString&>);
DOES_NOT_COMPILE(Equal<TqFloat&, TqFloat&>);
DOES_NOT_COMPILE(Equal<TqSnmpOid&, TqSnmpOid&>);
DOES_NOT_COMPILE(Less<TqSnmpOid&, TqSnmpOid&>);
DOES_NOT_COMPILE(Equal<TqBuffer&, TqBuffer&>);
DOES_NOT_COMPILE(Shifted<TqBuffer&, TqString&>);
DOES_NOT_COMPILE(Shifted<TqBuffer&, const char*>);
DOES_NOT_COMPILE(ReadBy<TqBuffer&, TqNumber&>);
GIVES(unsigned char, Subscript<TqBuffer&, int>);
DOES_NOT_COMPILE(TakenAsText<TqString&>);
GIVES(int, TakenAsString<const char*>);
GIVES(int, TakenAsString<std::nullptr_t>);
DOES_NOT_COMPILE(TakenAsString<TqNumber&>);
DOES_NOT_COMPILE(TakenAsValue<int>);
DOES_NOT_COMPILE(TakenAsValue<const char*>);
DOES_NOT_COMPILE(TakenAsValue<TqIpAddress&>);
GIVES(int, AppendZero<TqSnmpOid&>);
GIVES(int, Append<TqSnmpOid&, const char*>);
GIVES(int, Append<TqSnmpOid&, TqSnmpOid&>);
GIVES(int, Append<TqSnmpOid&, double>);
GIVES(TqBoolean, TakenFromZero<TqBoolean>);
GIVES(TqIpAddress, TakenFromZero<TqIpAddress>);

// Addresses.
GIVES(bool, Equal<TqIpAddress&, TqNetworkMask&>);
GIVES(bool, Equal<TqIpAddress&, int>);
GIVES(bool, Equal<int, TqIpAddress&>);
GIVES(bool, Equal<TqIpAddress&, TqString&>);
GIVES(bool, Less<TqIpAddress&, TqIpAddress&>);
GIVES(TqIpAddress&, Assigned<TqIpAddress&, const TqString&>);
DOES_NOT_COMPILE(Equal<TqIpAddress&, const char*>);
GIVES(unsigned long, Plus<TqIpAddress&, int>);

}  // namespace

int main() {}
