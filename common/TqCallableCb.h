#ifndef TQ_CALLABLE_CB_H
#define TQ_CALLABLE_CB_H

#include <functional>
#include <type_traits>
#include <utility>

#include "TqCallback.h"

/// The callback that calls whatever can be called, such as a lambda with captures. It is called
/// with the source and the data, or with nothing when it takes nothing:
///
///     TqCallableCb tell([&](TqBaseObject* source, TqCallbackData*) { console.Show(source); });
///     TqCallableCb count([&] { ++changes; });
///     TqCallbackGuard telling(chain, tell), counting(chain, count);
///
/// Ownership: the callback owns the callable; who made the callback owns that, as any other one:
/// on the stack, in a member, or with references. `userData` is null.
/// Lock: none. Reports: none of its own.
class TQ_API TqCallableCb : public TqCallback {
public:
    template <class Callable, class = typename std::enable_if<!std::is_base_of<
                                  TqCallableCb, typename std::decay<Callable>::type>::value>::type>
    explicit TqCallableCb(Callable&& callable)
        : TqCallback(nullptr), function(Taking(std::forward<Callable>(callable), 0)) {}

    /// A new object with no references and a copy of the callable.
    TqCallableCb(const TqCallableCb& other) : TqCallback(other), function(other.function) {}
    TqCallableCb& operator=(const TqCallableCb&) = delete;

    /// Hands over a new `TqCallableCb` made with the copy constructor.
    TqBaseObject* Clone() const override { return new TqCallableCb(*this); }

    /// Calls the callable. An empty `std::function` is not called.
    void Invoke(TqBaseObject* source, TqCallbackData* data) override {
        if (function) function(source, data);
    }

private:
    typedef std::function<void(TqBaseObject*, TqCallbackData*)> Function;

    // The last parameter ranks them: what takes both is called with both.
    template <class Callable>
    static auto Taking(Callable&& callable, int)
        -> decltype(callable(std::declval<TqBaseObject*>(), std::declval<TqCallbackData*>()),
                    Function()) {
        return Function(std::forward<Callable>(callable));
    }

    template <class Callable>
    static auto Taking(Callable&& callable, long) -> decltype(callable(), Function()) {
        typename std::decay<Callable>::type kept(std::forward<Callable>(callable));
        return [kept](TqBaseObject*, TqCallbackData*) mutable { kept(); };
    }

    template <class Callable>
    static Function Taking(Callable&&, ...) {
        static_assert(sizeof(Callable) == 0,
                      "what TqCallableCb calls takes (TqBaseObject*, TqCallbackData*) or nothing");
        return Function();
    }

    Function function;
};

#endif
