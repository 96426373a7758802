// What the leak sanitizer says of objects that live until the process ends, and of lost ones. No
// suppression is needed: descriptors and the registry are reachable to the end.

#include "Sanitizers.h"

#ifdef TQ_ADDRESS_SANITIZED

#include <gtest/gtest.h>

#include <cstdlib>

#include "Objects.h"
#include "TqBaseRef.h"
#include "TqCallback.h"
#include "TqClassRegistry.h"

namespace {

// Ends the process as a program does that has lost some of these.
template <class Make>
void LoseSomeAndExit(Make make) {
    for (int i = 0; i < 20; ++i) make();
    std::exit(0);
}

bool ExitedWithAnError(int status) {
    return testing::ExitedWithCode(0)(status) == false;
}

TEST(Leaks, DescriptorsAndTheRegistryAreNone) {
    EXPECT_EXIT(
        {
            TqCallback::TqCallbackInitInfo();
            TqRefList<TqClassInfo>& list = TqClassRegistry::GetRegistry()->classList;
            for (unsigned int i = 1; i <= 20; ++i)
                list.InsertSlot(i, new TqClassInfo("Port", nullptr, nullptr));
            std::exit(0);
        },
        testing::ExitedWithCode(0), "");
}

TEST(Leaks, ALostObjectIsFound) {
    EXPECT_EXIT(LoseSomeAndExit([] { new TqBaseObject; }), ExitedWithAnError,
                "LeakSanitizer: detected memory leaks");
}

TEST(Leaks, AnObjectWithAReferenceTooManyIsFound) {
    EXPECT_EXIT(LoseSomeAndExit([] {
                    const TqRef<TqBaseObject> handle(new TqBaseObject);
                    Keep(handle.object);
                }),
                ExitedWithAnError, "LeakSanitizer: detected memory leaks");
}

TEST(Leaks, ALostDescriptorIsFound) {
    EXPECT_EXIT(LoseSomeAndExit([] { new TqClassInfo("Port", nullptr, nullptr); }),
                ExitedWithAnError, "LeakSanitizer: detected memory leaks");
}

TEST(Leaks, ALostListIsFound) {
    EXPECT_EXIT(LoseSomeAndExit([] { new TqBaseList; }), ExitedWithAnError,
                "LeakSanitizer: detected memory leaks");
}

}  // namespace

#endif
