// Every lock and unlock that the library makes, failing: what is reported, by whom, and that the
// operation goes on. Built with the platform of tests/support/faults only (preset `coverage`).

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "Objects.h"
#include "Reports.h"
#include "TqBaseRef.h"
#include "TqBaseRefList.h"
#include "TqClassRegistry.h"
#include "TqLinuxMutex.h"

namespace {

// One call of a mutex, "list Lock", and who reports it when it fails.
struct Call {
    std::string call;
    std::string reporter;
};

const unsigned int none = 0;
const unsigned int all = 0xFFFFFFFFu;

std::map<const TqLinuxMutex*, std::string> names;
std::vector<std::string> calls;
unsigned int failing;  // which call, from 1

std::string NameOf(const TqLinuxMutex* mutex) {
    const auto name = names.find(mutex);
    return name == names.end() ? "new" : name->second;
}

int Watch(const TqLinuxMutex* mutex, bool isLock, int result) {
    EXPECT_EQ(result, 0) << "a failure that nobody asked for";
    calls.push_back(NameOf(mutex) + (isLock ? " Lock" : " Unlock"));
    return failing == all || failing == calls.size() ? 11 : 0;
}

// Runs what it is given with failures on. The names of the mutexes in it are for this run; one
// without a name was made in it.
void Failing(const std::map<const TqLinuxMutex*, std::string>& mutexes,
             const std::function<void()>& operation) {
    names = mutexes;
    calls.clear();
    TqWatchMutexes(Watch);
    operation();
    TqWatchMutexes(nullptr);
}

// The scenario makes its objects anew, runs its operation in `Failing` and checks the results. It
// is run without a failure, with each call failing alone, and with all of them failing.
void ExpectEachFailureReported(const std::vector<Call>& expected,
                               const std::function<void()>& scenario) {
    std::vector<std::string> expectedCalls;
    Reports everyReport;
    for (const Call& call : expected) {
        expectedCalls.push_back(call.call);
        everyReport.push_back(call.reporter);
    }

    const auto run = [&](unsigned int which, const Reports& reports) {
        SCOPED_TRACE("failing call: " + std::to_string(which));
        failing = which;
        scenario();
        EXPECT_EQ(TakeReports(), reports);
        EXPECT_EQ(calls, expectedCalls);
    };
    run(none, {});
    for (unsigned int i = 1; i <= expected.size(); ++i) run(i, {everyReport[i - 1]});
    run(all, everyReport);
}

using Handle = TqRef<TqBaseObject>;

// Base object.

TEST(Faults, IncrementRefCount) {
    ExpectEachFailureReported(
        {{"object Lock", "TqBaseObject"}, {"object Unlock", "TqBaseObject"}}, [] {
            TqBaseObject object;
            Failing({{&object.objectMutex, "object"}}, [&] { Keep(&object); });
            EXPECT_EQ(object.refCount, 1);
            object.refCount = 0;
        });
}

TEST(Faults, DecrementRefCountToOne) {
    ExpectEachFailureReported(
        {{"object Lock", "TqBaseObject"}, {"object Unlock", "TqBaseObject"}}, [] {
            TqBaseObject object;
            object.refCount = 2;
            Failing({{&object.objectMutex, "object"}}, [&] { EXPECT_EQ(Drop(&object), 0); });
            EXPECT_EQ(object.refCount, 1);
            EXPECT_EQ(object.destroying, 0);
            object.refCount = 0;
        });
}

TEST(Faults, DecrementRefCountToZero) {
    ExpectEachFailureReported(
        {{"object Lock", "TqBaseObject"}, {"object Unlock", "TqBaseObject"}}, [] {
            int deaths = 0;
            TqBaseObject* const object = new Mortal(deaths);
            Keep(object);
            Failing({{&object->objectMutex, "object"}}, [&] { EXPECT_EQ(Drop(object), 1); });
            EXPECT_EQ(deaths, 1);
        });
}

// Handle.

const std::vector<Call> takingAnObject = {{"new Lock", "TqBaseRef"},
                                          {"object Lock", "TqBaseObject"},
                                          {"object Unlock", "TqBaseObject"},
                                          {"new Unlock", "TqBaseRef"}};

TEST(Faults, HandleOnAnObject) {
    ExpectEachFailureReported(takingAnObject, [] {
        TqBaseObject* const object = new TqBaseObject;
        std::unique_ptr<Handle> handle;
        Failing({{&object->objectMutex, "object"}}, [&] { handle.reset(new Handle(object)); });
        EXPECT_EQ(handle->object, object);
        EXPECT_EQ(object->refCount, 1);
    });
}

const std::vector<Call> callsOfACopy = {
    {"source Lock", "TqBaseRef"},      {"new Lock", "TqBaseRef"},   {"object Lock", "TqBaseObject"},
    {"object Unlock", "TqBaseObject"}, {"new Unlock", "TqBaseRef"}, {"source Unlock", "TqBaseRef"}};

TEST(Faults, CopyOfAHandle) {
    ExpectEachFailureReported(callsOfACopy, [] {
        const Handle source(new TqBaseObject);
        std::unique_ptr<Handle> copy;
        Failing({{&source.refMutex, "source"}, {&source.object->objectMutex, "object"}},
                [&] { copy.reset(new Handle(source)); });
        EXPECT_EQ(copy->object, source.object);
        EXPECT_EQ(source.object->refCount, 2);
    });
}

TEST(Faults, CloneOfAHandle) {
    ExpectEachFailureReported(callsOfACopy, [] {
        const Handle source(new TqBaseObject);
        std::unique_ptr<TqDataType> clone;
        Failing({{&source.refMutex, "source"}, {&source.object->objectMutex, "object"}},
                [&] { clone.reset(source.Clone()); });
        EXPECT_TRUE(clone->Equals(&source));
        EXPECT_EQ(source.object->refCount, 2);
    });
}

TEST(Faults, DestructorOfAHandle) {
    ExpectEachFailureReported(
        {{"handle Lock", "TqBaseRef"},
         {"object Lock", "TqBaseObject"},
         {"object Unlock", "TqBaseObject"},
         {"handle Unlock", "TqBaseRef"}},
        [] {
            int deaths = 0;
            std::unique_ptr<Handle> handle(new Handle(new Mortal(deaths)));
            Failing({{&handle->refMutex, "handle"}, {&handle->object->objectMutex, "object"}},
                    [&] { handle.reset(); });
            EXPECT_EQ(deaths, 1);
        });
}

const std::vector<Call> takingAnotherObject = {
    {"handle Lock", "TqBaseRef"}, {"next Lock", "TqBaseObject"},  {"next Unlock", "TqBaseObject"},
    {"old Lock", "TqBaseObject"}, {"old Unlock", "TqBaseObject"}, {"handle Unlock", "TqBaseRef"}};

// Each way to give a handle another object.
void ExpectAnotherObjectTaken(const std::function<void(Handle&, const Handle&)>& assign) {
    ExpectEachFailureReported(takingAnotherObject, [&assign] {
        int deaths = 0;
        Handle handle(new Mortal(deaths));
        const Handle next(new Mortal(deaths));
        Failing({{&handle.refMutex, "handle"},
                 {&next.refMutex, "the handle of next"},
                 {&handle.object->objectMutex, "old"},
                 {&next.object->objectMutex, "next"}},
                [&] { assign(handle, next); });
        EXPECT_EQ(deaths, 1);
        EXPECT_EQ(handle.object, next.object);
        EXPECT_EQ(next.object->refCount, 2);
    });
}

TEST(Faults, AssigningAnObject) {
    ExpectAnotherObjectTaken([](Handle& handle, const Handle& next) { handle = next.object; });
}

TEST(Faults, AssigningAHandleDoesNotLockItsSource) {
    ExpectAnotherObjectTaken([](Handle& handle, const Handle& next) { handle = next; });
    ExpectAnotherObjectTaken([](Handle& handle, const Handle& next) { handle.Assignment(next); });
}

TEST(Faults, AssigningTheObjectAlreadyHeld) {
    ExpectEachFailureReported({{"handle Lock", "TqBaseRef"}, {"handle Unlock", "TqBaseRef"}}, [] {
        Handle handle(new TqBaseObject);
        Failing({{&handle.refMutex, "handle"}}, [&] { handle = handle.object; });
        EXPECT_EQ(handle.object->refCount, 1);
    });
}

// Reference list.

// What the scenarios of the lists work with: a and b, with a reference of the scenario's own.
class Listed {
public:
    Listed() {
        Keep(a);
        Keep(b);
    }
    ~Listed() {
        EXPECT_EQ(deaths, 0);
        list.reset();
        Drop(a);
        Drop(b);
        EXPECT_EQ(deaths, 2);
    }

    std::map<const TqLinuxMutex*, std::string> Names() const {
        return {{&list->listMutex, "list"},
                {&other.listMutex, "other"},
                {&a->objectMutex, "a"},
                {&b->objectMutex, "b"}};
    }

    void ExpectCounts(int ofA, int ofB) const {
        EXPECT_EQ(a->refCount - 1, ofA);
        EXPECT_EQ(b->refCount - 1, ofB);
    }

    int deaths = 0;
    TqBaseObject* const a = new Mortal(deaths);
    TqBaseObject* const b = new Mortal(deaths);
    std::unique_ptr<TqBaseRefList> list{new TqBaseRefList};
    TqBaseRefList other;
};

TEST(Faults, InsertSlot) {
    ExpectEachFailureReported({{"list Lock", "TqBaseRefList"},
                               {"a Lock", "TqBaseObject"},
                               {"a Unlock", "TqBaseObject"},
                               {"list Unlock", "TqBaseRefList"}},
                              [] {
                                  Listed l;
                                  Failing(l.Names(), [&] { l.list->InsertSlot(1, l.a); });
                                  EXPECT_EQ(ItemsOf(*l.list), Items({l.a}));
                                  l.ExpectCounts(1, 0);
                              });
}

TEST(Faults, RemoveSlot) {
    ExpectEachFailureReported({{"list Lock", "TqBaseRefList"},
                               {"a Lock", "TqBaseObject"},
                               {"a Unlock", "TqBaseObject"},
                               {"list Unlock", "TqBaseRefList"}},
                              [] {
                                  Listed l;
                                  l.list->InsertSlot(1, l.a);
                                  l.list->InsertSlot(2, l.b);
                                  Failing(l.Names(), [&] { l.list->RemoveSlot(1); });
                                  EXPECT_EQ(ItemsOf(*l.list), Items({l.b}));
                                  l.ExpectCounts(0, 1);
                              });
}

const std::vector<Call> lettingBothGo = {
    {"list Lock", "TqBaseRefList"}, {"a Lock", "TqBaseObject"},   {"a Unlock", "TqBaseObject"},
    {"b Lock", "TqBaseObject"},     {"b Unlock", "TqBaseObject"}, {"list Unlock", "TqBaseRefList"}};

TEST(Faults, RemoveAllItems) {
    ExpectEachFailureReported(lettingBothGo, [] {
        Listed l;
        l.list->InsertSlot(1, l.a);
        l.list->InsertSlot(2, l.b);
        Failing(l.Names(), [&] { l.list->RemoveAllItems(); });
        EXPECT_EQ(l.list->count, 0u);
        l.ExpectCounts(0, 0);
    });
}

TEST(Faults, DestructorOfAList) {
    ExpectEachFailureReported(lettingBothGo, [] {
        Listed l;
        l.list->InsertSlot(1, l.a);
        l.list->InsertSlot(2, l.b);
        Failing(l.Names(), [&] { l.list.reset(); });
        l.ExpectCounts(0, 0);
    });
}

TEST(Faults, SwapItems) {
    ExpectEachFailureReported({{"list Lock", "TqBaseRefList"}, {"list Unlock", "TqBaseRefList"}},
                              [] {
                                  Listed l;
                                  l.list->InsertSlot(1, l.a);
                                  l.list->InsertSlot(2, l.b);
                                  Failing(l.Names(), [&] { l.list->SwapItems(1, 2); });
                                  EXPECT_EQ(ItemsOf(*l.list), Items({l.b, l.a}));
                                  l.ExpectCounts(1, 1);
                              });
}

TEST(Faults, ReplaceSlot) {
    ExpectEachFailureReported(lettingBothGo, [] {
        Listed l;
        l.list->InsertSlot(1, l.a);
        Keep(l.b);
        Failing(l.Names(), [&] { l.list->ReplaceSlot(1, l.b); });
        EXPECT_EQ(ItemsOf(*l.list), Items({l.b, l.a}));
        l.ExpectCounts(0, 0);
        l.list->count = 0;
    });
}

TEST(Faults, ReplaceSlotWithTheSameItem) {
    ExpectEachFailureReported({{"list Lock", "TqBaseRefList"}, {"list Unlock", "TqBaseRefList"}},
                              [] {
                                  Listed l;
                                  l.list->InsertSlot(1, l.a);
                                  Failing(l.Names(), [&] { l.list->ReplaceSlot(1, l.a); });
                                  EXPECT_EQ(ItemsOf(*l.list), Items({l.a, l.a}));
                                  l.ExpectCounts(1, 0);
                                  l.list->count = 1;
                              });
}

TEST(Faults, CopyOfAListUnlocksTheOtherFirst) {
    ExpectEachFailureReported({{"new Lock", "TqBaseRefList"},
                               {"list Lock", "TqBaseRefList"},
                               {"a Lock", "TqBaseObject"},
                               {"a Unlock", "TqBaseObject"},
                               {"b Lock", "TqBaseObject"},
                               {"b Unlock", "TqBaseObject"},
                               {"list Unlock", "TqBaseRefList"},
                               {"new Unlock", "TqBaseRefList"}},
                              [] {
                                  Listed l;
                                  l.list->InsertSlot(1, l.a);
                                  l.list->InsertSlot(2, l.b);
                                  std::unique_ptr<TqBaseRefList> copy;
                                  Failing(l.Names(),
                                          [&] { copy.reset(new TqBaseRefList(*l.list)); });
                                  EXPECT_EQ(ItemsOf(*copy), Items({l.a, l.b}));
                                  l.ExpectCounts(2, 2);
                              });
}

TEST(Faults, AssigningAListUnlocksItselfFirst) {
    ExpectEachFailureReported({{"list Lock", "TqBaseRefList"},
                               {"other Lock", "TqBaseRefList"},
                               {"b Lock", "TqBaseObject"},
                               {"b Unlock", "TqBaseObject"},
                               {"a Lock", "TqBaseObject"},
                               {"a Unlock", "TqBaseObject"},
                               {"list Unlock", "TqBaseRefList"},
                               {"other Unlock", "TqBaseRefList"}},
                              [] {
                                  Listed l;
                                  l.list->InsertSlot(1, l.a);
                                  l.other.InsertSlot(1, l.b);
                                  Failing(l.Names(), [&] { *l.list = l.other; });
                                  EXPECT_EQ(ItemsOf(*l.list), Items({l.b}));
                                  l.ExpectCounts(0, 2);
                                  l.other.RemoveAllItems();
                              });
}

// Registry: what it does with its list and with the handle that keeps the removed descriptor.

TEST(Faults, RemoveFromTheRegistry) {
    ExpectEachFailureReported(
        {{"new Lock", "TqBaseRef"},
         {"info Lock", "TqBaseObject"},
         {"info Unlock", "TqBaseObject"},
         {"new Unlock", "TqBaseRef"},
         {"list Lock", "TqBaseRefList"},
         {"info Lock", "TqBaseObject"},
         {"info Unlock", "TqBaseObject"},
         {"list Unlock", "TqBaseRefList"},
         {"new Lock", "TqBaseRef"},
         {"info Lock", "TqBaseObject"},
         {"info Unlock", "TqBaseObject"},
         {"new Unlock", "TqBaseRef"}},
        [] {
            TqClassRegistry registry;
            TqClassInfo* info = new TqClassInfo("Port", nullptr, nullptr);
            registry.classList.InsertSlot(1, info);
            Failing({{&registry.classList.listMutex, "list"}, {&info->objectMutex, "info"}},
                    [&] { registry.Remove("Port"); });
            EXPECT_EQ(registry.classList.count, 0u);
        });
}

TEST(Faults, LookupsLockNothing) {
    ExpectEachFailureReported({}, [] {
        TqClassRegistry registry;
        TqClassInfo* info = new TqClassInfo("Port", TqBaseObjectNewFunc, nullptr);
        registry.classList.InsertSlot(1, info);
        Failing({}, [&] {
            EXPECT_EQ(registry.ClassInfo("Port"), info);
            EXPECT_EQ(registry.Find(TqString("Port")), info);
            EXPECT_EQ(registry.NewObject("Port"), nullptr);
            EXPECT_EQ(registry.classList.FindSlot(static_cast<TqBaseObject*>(info)), 1u);
        });
    });
}

// A mutex that is broken for good: everything that touches it says so and works all the same.

const TqLinuxMutex* broken;

int FailWhereBroken(const TqLinuxMutex* mutex, bool, int result) {
    return mutex == broken ? 22 : result;
}

TEST(Faults, AListWithABrokenMutexReportsAndWorks) {
    int deaths = 0;
    {
        TqBaseRefList list;
        broken = &list.listMutex;
        TqWatchMutexes(FailWhereBroken);
        for (unsigned int i = 1; i <= 3; ++i) list.InsertSlot(i, new Mortal(deaths));
        EXPECT_EQ(TakeReports(), Reports(6, "TqBaseRefList"));
        list.RemoveSlot(2);
        EXPECT_EQ(deaths, 1);
        list.SwapItems(1, 2);
        EXPECT_EQ(TakeReports(), Reports(4, "TqBaseRefList"));
    }
    TqWatchMutexes(nullptr);
    EXPECT_EQ(deaths, 3);
    EXPECT_EQ(TakeReports(), Reports(2, "TqBaseRefList"));
}

TEST(Faults, AnObjectWithABrokenMutexIsCountedAndDeleted) {
    int deaths = 0;
    TqBaseObject* const object = new Mortal(deaths);
    broken = &object->objectMutex;
    TqWatchMutexes(FailWhereBroken);
    {
        const Handle handle(object);
        const Handle copy(handle);
        EXPECT_EQ(object->refCount, 2);
        EXPECT_EQ(TakeReports(), Reports(4, "TqBaseObject"));
    }
    TqWatchMutexes(nullptr);
    EXPECT_EQ(deaths, 1);
    EXPECT_EQ(TakeReports(), Reports(4, "TqBaseObject"));
}

}  // namespace
