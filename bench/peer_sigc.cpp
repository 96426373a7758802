// What sigc++ does.

#include <sigc++/sigc++.h>

#include <memory>

#include "Duty.h"

namespace {

unsigned int calls;

void Count(void*, void*) {
    ++calls;
    Keep(calls);
}

const RegisterDuty chain("chain", "sigc++", [](unsigned int size) -> Work {
    const auto signal = std::make_shared<sigc::signal<void, void*, void*>>();
    for (unsigned int i = 0; i < size; ++i) signal->connect(sigc::ptr_fun(Count));
    return [signal](unsigned int times) {
        for (; times > 0; --times) signal->emit(nullptr, nullptr);
    };
});

}  // namespace
