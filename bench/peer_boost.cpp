// What boost does.

#include <boost/signals2.hpp>
#include <boost/smart_ptr/intrusive_ptr.hpp>
#include <boost/smart_ptr/intrusive_ref_counter.hpp>
#include <memory>

#include "Duty.h"

namespace {

unsigned int calls;

void Count(void*, void*) {
    ++calls;
    Keep(calls);
}

const RegisterDuty chain("chain", "boost::signals2", [](unsigned int size) -> Work {
    const auto signal = std::make_shared<boost::signals2::signal<void(void*, void*)>>();
    for (unsigned int i = 0; i < size; ++i) signal->connect(Count);
    return [signal](unsigned int times) {
        for (; times > 0; --times) (*signal)(nullptr, nullptr);
    };
});

struct Counted : boost::intrusive_ref_counter<Counted> {};

using Pointer = boost::intrusive_ptr<Counted>;

const RegisterDuty handle("handle", "boost::intrusive_ptr", [](unsigned int size) -> Work {
    const auto pointers = std::make_shared<std::vector<Pointer>>(size);
    for (Pointer& pointer : *pointers) pointer = new Counted;
    return [pointers](unsigned int times) {
        for (; times > 0; --times) {
            for (const Pointer& pointer : *pointers) {
                const Pointer copy(pointer);
                Keep(copy);
            }
        }
    };
});

}  // namespace
