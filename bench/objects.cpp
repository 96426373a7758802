// Counts, handles, lists and lookups, beside the standard library doing the same.

#include <benchmark/benchmark.h>

#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "TqBaseList.h"
#include "TqBaseRef.h"
#include "TqBaseRefList.h"
#include "TqClassRegistry.h"

namespace {

void MakeAndDropTq(benchmark::State& state) {
    for (auto _ : state) {
        TqRef<TqBaseObject> held(new TqBaseObject);
        benchmark::DoNotOptimize(held.object);
    }
}
BENCHMARK(MakeAndDropTq);

struct Guarded {
    virtual ~Guarded() = default;
    std::mutex mutex;
};

void MakeAndDropShared(benchmark::State& state) {
    for (auto _ : state) {
        std::shared_ptr<Guarded> held(new Guarded);
        benchmark::DoNotOptimize(held.get());
    }
}
BENCHMARK(MakeAndDropShared);

void CountTq(benchmark::State& state) {
    TqBaseObject object;
    TqBaseObject::IncrementRefCount(&object, 0);
    for (auto _ : state) {
        TqBaseObject::IncrementRefCount(&object, 0);
        TqBaseObject::DecrementRefCount(&object, 0);
    }
    object.refCount = 0;
}
BENCHMARK(CountTq);

// The same work: a number under a mutex, up and down.
void CountMutex(benchmark::State& state) {
    std::mutex mutex;
    int count = 1;
    for (auto _ : state) {
        mutex.lock();
        ++count;
        mutex.unlock();
        mutex.lock();
        benchmark::DoNotOptimize(--count);
        mutex.unlock();
    }
}
BENCHMARK(CountMutex);

void InsertTq(benchmark::State& state) {
    int item = 0;
    for (auto _ : state) {
        TqBaseList list;
        for (int i = 0; i < state.range(0); ++i) list.InsertSlot(list.count + 1, &item);
        benchmark::DoNotOptimize(list.slots);
    }
}
BENCHMARK(InsertTq)->Arg(15)->Arg(1000);

void InsertVector(benchmark::State& state) {
    int item = 0;
    for (auto _ : state) {
        std::vector<void*> list;
        list.reserve(16);
        for (int i = 0; i < state.range(0); ++i) list.push_back(&item);
        benchmark::DoNotOptimize(list.data());
    }
}
BENCHMARK(InsertVector)->Arg(15)->Arg(1000);

TqBaseObject* NoObject() {
    return nullptr;
}

std::string ClassName(int i) {
    return "Monitor" + std::to_string(i);
}

void LookupTq(benchmark::State& state) {
    TqClassRegistry registry;
    const int classes = static_cast<int>(state.range(0));
    for (int i = 0; i < classes; ++i) {
        registry.classList.InsertSlot(registry.classList.count + 1,
                                      new TqClassInfo(ClassName(i).c_str(), NoObject, nullptr));
    }
    const std::string name = ClassName(classes / 2);
    for (auto _ : state) benchmark::DoNotOptimize(registry.ClassInfo(name.c_str()));
}
BENCHMARK(LookupTq)->Arg(20)->Arg(200);

void LookupMap(benchmark::State& state) {
    std::map<std::string, int> registry;
    const int classes = static_cast<int>(state.range(0));
    for (int i = 0; i < classes; ++i) registry[ClassName(i)] = i;
    const std::string name = ClassName(classes / 2);
    for (auto _ : state) benchmark::DoNotOptimize(registry.find(std::string(name.c_str())));
}
BENCHMARK(LookupMap)->Arg(20)->Arg(200);

}  // namespace
