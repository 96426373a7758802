#include "TqClassRegistry.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <type_traits>
#include <typeinfo>

#include "LastPage.h"
#include "Objects.h"
#include "Reports.h"
#include "TqBaseRef.h"

namespace {

const TqClassRegistry* const registryAtLoad = TqClassRegistry::theRegistry;

static_assert(std::is_base_of<TqBaseObject, TqClassRegistry>::value, "");
static_assert(std::is_same<decltype(TqClassRegistry::classList), TqRefList<TqClassInfo>>::value,
              "");

int plainsMade;

TqBaseObject* NewPlain() {
    ++plainsMade;
    return new TqBaseObject;
}

void Register(TqClassRegistry& registry, TqClassInfo* info) {
    registry.classList.InsertSlot(registry.classList.count + 1, info);
}

// A descriptor that the registry owns alone.
TqClassInfo* Register(TqClassRegistry& registry, const char* name,
                      TqBaseObject* (*createFunc)() = nullptr) {
    TqClassInfo* info = new TqClassInfo(name, createFunc, nullptr);
    Register(registry, info);
    return info;
}

// A descriptor that counts its end.
class MortalInfo : public TqClassInfo {
public:
    MortalInfo(const char* className, int& deathCount, std::function<void()> inTheEnd = nullptr)
        : TqClassInfo(className, nullptr, nullptr), deaths(deathCount), lastWords(inTheEnd) {}
    ~MortalInfo() override {
        ++deaths;
        if (lastWords) lastWords();
    }

private:
    int& deaths;
    std::function<void()> lastWords;
};

std::string Dumped(const TqClassRegistry& registry) {
    testing::internal::CaptureStdout();
    registry.Dump();
    std::fflush(stdout);
    return testing::internal::GetCapturedStdout();
}

TEST(TqClassRegistry, TheRegistryOfTheProcessIsMadeOnTheFirstCall) {
    EXPECT_EQ(registryAtLoad, nullptr);
    // Tests before this one may have made it, and registered classes.
    TqClassRegistry* kept = TqClassRegistry::theRegistry;
    TqClassRegistry::theRegistry = nullptr;
    const std::unique_ptr<TqClassRegistry> registry(TqClassRegistry::GetRegistry());
    ASSERT_NE(registry, nullptr);
    EXPECT_EQ(TqClassRegistry::theRegistry, registry.get());
    EXPECT_EQ(TqClassRegistry::GetRegistry(), registry.get());
    EXPECT_EQ(registry->classList.count, 0u) << "the library registers nothing";
    TqClassRegistry::theRegistry = kept;
}

TEST(TqClassRegistry, GetRegistryGivesWhatTheStaticMemberHolds) {
    TqClassRegistry* kept = TqClassRegistry::GetRegistry();
    TqClassRegistry other;
    TqClassRegistry::theRegistry = &other;
    EXPECT_EQ(TqClassRegistry::GetRegistry(), &other);
    TqClassRegistry::theRegistry = nullptr;
    const std::unique_ptr<TqClassRegistry> fresh(TqClassRegistry::GetRegistry());
    EXPECT_NE(fresh.get(), kept);
    EXPECT_NE(fresh.get(), nullptr);
    TqClassRegistry::theRegistry = kept;
}

TEST(TqClassRegistry, AFreshOneFindsMakesAndPrintsNothing) {
    TqClassRegistry registry;
    EXPECT_EQ(registry.classList.count, 0u);
    EXPECT_EQ(registry.ClassInfo("TqFile"), nullptr);
    EXPECT_EQ(registry.ClassInfo(nullptr), nullptr);
    EXPECT_EQ(registry.NewObject("TqFile"), nullptr);
    EXPECT_EQ(registry.Find(TqString("TqFile")), nullptr);
    EXPECT_EQ(Dumped(registry), "");
    EXPECT_EQ(registry.refCount, 0);
}

TEST(TqClassRegistry, CopyIsReportedAndEmpty) {
    TqClassRegistry registry;
    Register(registry, "Fan");
    const TqClassRegistry copy(registry);
    EXPECT_EQ(TakeReports(), Reports({"TqClassRegistry"}));
    EXPECT_EQ(copy.classList.count, 0u);
    EXPECT_EQ(registry.classList.count, 1u);
}

TEST(TqClassRegistry, CopyOfARegistryBeingDestroyedIsReportedOnce) {
    TqClassRegistry registry;
    registry.destroying = 1;
    const TqClassRegistry copy(registry);
    EXPECT_EQ(TakeReports(), Reports({"TqClassRegistry"}));
}

TEST(TqClassRegistry, AssigningIsReportedAndChangesNothing) {
    TqClassRegistry registry, other;
    TqClassInfo* info = Register(registry, "Fan");
    Register(other, "Port");
    Register(other, "Lamp");
    EXPECT_EQ(&(registry = other), &registry);
    EXPECT_EQ(TakeReports(), Reports({"TqClassRegistry"}));
    EXPECT_EQ(ItemsOf(registry.classList), Items({info}));
    EXPECT_EQ(other.classList.count, 2u);
    EXPECT_EQ(info->refCount, 1);
}

TEST(TqClassRegistry, DestructorLetsTheDescriptorsGo) {
    int deaths = 0;
    TqRef<TqClassInfo> kept(new MortalInfo("Kept", deaths));
    {
        TqClassRegistry registry;
        Register(registry, new MortalInfo("Fan", deaths));
        Register(registry, static_cast<TqClassInfo*>(kept.object));
        Register(registry, new MortalInfo("Port", deaths));
        EXPECT_EQ(kept.object->refCount, 2);
        EXPECT_EQ(deaths, 0);
    }
    EXPECT_EQ(deaths, 2);
    EXPECT_EQ(kept.object->refCount, 1);
}

TEST(TqClassRegistry, DestructorEmptiesTheListBeforeItGoes) {
    int deaths = 0;
    unsigned int countInTheEnd = 0;
    Grave<TqClassRegistry> registry;
    Register(*registry.Get(), new MortalInfo("Fan", deaths));
    TqBaseList& list = registry->classList;
    Register(*registry.Get(), new MortalInfo("Port", deaths, [&] { countInTheEnd = list.count; }));
    registry.Bury();
    EXPECT_EQ(deaths, 2);
    EXPECT_EQ(countInTheEnd, 2u);
    EXPECT_EQ(registry.Left(&TqClassRegistry::self), nullptr);
    unsigned int left;
    std::memcpy(&left, &list.count, sizeof left);
    EXPECT_EQ(left, 0u);
}

TEST(TqClassRegistry, TheListHoldsAReferenceOnEachDescriptor) {
    TqClassRegistry registry;
    EXPECT_EQ(Register(registry, "Fan")->refCount, 1);
}

TEST(TqClassRegistry, ClassInfoFindsANameWholeAndCaseSensitively) {
    TqClassRegistry registry;
    Register(registry, "Fan");
    TqClassInfo* info = Register(registry, "Port");
    Register(registry, "Lamp");
    EXPECT_EQ(registry.ClassInfo("Port"), info);
    EXPECT_EQ(registry.ClassInfo("port"), nullptr);
    EXPECT_EQ(registry.ClassInfo("Por"), nullptr);
    EXPECT_EQ(registry.ClassInfo("Ports"), nullptr);
    EXPECT_EQ(registry.ClassInfo(""), nullptr);
}

TEST(TqClassRegistry, AClassMayHaveAnEmptyName) {
    TqClassRegistry registry;
    Register(registry, "Port");
    TqClassInfo* info = Register(registry, "");
    EXPECT_EQ(registry.ClassInfo(""), info);
    EXPECT_EQ(registry.Find(TqString("")), info);
}

TEST(TqClassRegistry, ClassInfoFindsTheFirstInSlotOrder) {
    TqClassRegistry registry;
    TqClassInfo* later = Register(registry, "Port");
    TqClassInfo* first = new TqClassInfo("Port", nullptr, nullptr);
    registry.classList.InsertSlot(1, first);
    EXPECT_EQ(registry.ClassInfo("Port"), first);
    EXPECT_EQ(registry.Find(TqString("Port")), first);
    registry.classList.SwapItems(1, 2);
    EXPECT_EQ(registry.ClassInfo("Port"), later);
    EXPECT_EQ(registry.Find(TqString("Port")), later);
}

TEST(TqClassRegistry, ClassInfoFindsTheFirstAndTheLastSlot) {
    TqClassRegistry registry;
    TqClassInfo* first = Register(registry, "Fan");
    Register(registry, "Port");
    TqClassInfo* last = Register(registry, "Lamp");
    EXPECT_EQ(registry.ClassInfo("Fan"), first);
    EXPECT_EQ(registry.ClassInfo("Lamp"), last);
    EXPECT_EQ(registry.Find(TqString("Fan")), first);
    EXPECT_EQ(registry.Find(TqString("Lamp")), last);
}

TEST(TqClassRegistry, ClassInfoComparesTextsAndFindComparesLengthsToo) {
    TqClassRegistry registry;
    TqClassInfo* info = Register(registry, "Port");
    info->name.SetValue("Port", 8);
    EXPECT_EQ(registry.ClassInfo("Port"), info);
    EXPECT_EQ(registry.Find(TqString("Port")), nullptr);
    EXPECT_EQ(registry.Find(TqString("Port", 8)), info);
}

TEST(TqClassRegistry, ClassInfoGoesByTheTextWhateverItsLengthSays) {
    TqClassRegistry registry;
    TqClassInfo* info = Register(registry, "Port");
    for (const unsigned int length : {0u, 3u, 1000u}) {
        info->name.length = length;
        EXPECT_EQ(registry.ClassInfo("Port"), info);
        EXPECT_EQ(registry.ClassInfo("Por"), nullptr);
        EXPECT_EQ(registry.ClassInfo("Ports"), nullptr);
        EXPECT_EQ(registry.ClassInfo(std::string(500, 'x').c_str()), nullptr);
    }
    info->name.length = 4;
}

TEST(TqClassRegistry, ClassInfoReadsNothingBehindTheStorageOfAName) {
    const LastPage page;
    TqClassRegistry registry;
    TqClassInfo* const info = Register(registry, "");
    info->name.data = std::strcpy(page.End() - 4, "eth");
    info->name.capacity = 4;
    EXPECT_EQ(registry.ClassInfo("eth"), info);
    EXPECT_EQ(registry.ClassInfo("ethernet"), nullptr);
    info->name.data = info->name.internalData;
}

TEST(TqClassRegistry, FindFindsANameWholeAndCaseSensitively) {
    TqClassRegistry registry;
    Register(registry, "Fan");
    TqClassInfo* info = Register(registry, "Port");
    EXPECT_EQ(registry.Find(TqString("Port")), info);
    EXPECT_EQ(registry.Find(TqString("Pork")), nullptr);
    EXPECT_EQ(registry.Find(TqString("PORT")), nullptr);
    EXPECT_EQ(registry.Find(TqString("")), nullptr);
}

TEST(TqClassRegistry, FindPassesNamesOfAnotherLengthOverWithoutLookingAtTheirText) {
    TqClassRegistry registry;
    TqClassInfo* info = Register(registry, "Port");
    char* const text = info->name.data;
    info->name.data = nullptr;
    EXPECT_EQ(registry.Find(TqString("Ports")), nullptr);
    EXPECT_EQ(registry.Find(TqString("Por")), nullptr);
    info->name.data = text;
}

TEST(TqClassRegistry, NewObjectMakesAnObjectOfTheClassWithTheName) {
    TqClassRegistry registry;
    Register(registry, "Fan");
    Register(registry, "Port", NewPlain);
    plainsMade = 0;
    const std::unique_ptr<TqBaseObject> object(registry.NewObject("Port"));
    ASSERT_NE(object, nullptr);
    EXPECT_EQ(plainsMade, 1);
    EXPECT_EQ(object->refCount, 0);
    EXPECT_EQ(registry.NewObject("port"), nullptr);
    EXPECT_EQ(registry.NewObject("Fan"), nullptr) << "no factory";
    EXPECT_EQ(registry.NewObject("Lamp"), nullptr) << "not registered";
    EXPECT_EQ(plainsMade, 1);
}

TqClassRegistry* growing;

TqBaseObject* RegisterAnother() {
    EXPECT_EQ(growing->classList.walkDepth, 0u);
    Register(*growing, "Another");
    return new TqBaseObject;
}

TEST(TqClassRegistry, AFactoryMayRegisterFurtherClasses) {
    TqClassRegistry registry;
    growing = &registry;
    Register(registry, "Port", RegisterAnother);
    const std::unique_ptr<TqBaseObject> object(registry.NewObject("Port"));
    EXPECT_NE(object, nullptr);
    EXPECT_NE(registry.ClassInfo("Another"), nullptr);
}

TEST(TqClassRegistry, SelfTestGivesOne) {
    TqClassRegistry registry;
    EXPECT_EQ(registry.SelfTest(), 1);
}

TEST(TqClassRegistry, ItsClassIsTheBaseObjects) {
    const TqClassRegistry registry;
    const TqBaseObject& object = registry;
    EXPECT_EQ(object.ClassInfo(), TqBaseObject::TqBaseObjectInitInfo());
    EXPECT_EQ(registry.ClassInfo(), TqBaseObject::TqBaseObjectInitInfo());
}

TEST(TqClassRegistry, CloneIsABareBaseObject) {
    const TqClassRegistry registry;
    const std::unique_ptr<TqBaseObject> clone(registry.Clone());
    const TqBaseObject& cloned = *clone;
    EXPECT_TRUE(typeid(cloned) == typeid(TqBaseObject));
    EXPECT_EQ(TakeReports(), Reports()) << "not a copy of a registry";
}

TEST(TqClassRegistry, LookupsLeaveTheWalkCounterAsItWas) {
    TqClassRegistry registry;
    Register(registry, "Port", NewPlain);
    for (const unsigned int depth : {0u, 5u}) {
        registry.classList.walkDepth = depth;
        registry.ClassInfo("Port");
        registry.ClassInfo("Fan");
        EXPECT_EQ(registry.classList.walkDepth, depth);
        registry.Find(TqString("Port"));
        registry.Find(TqString("Pork"));
        EXPECT_EQ(registry.classList.walkDepth, depth);
        delete registry.NewObject("Port");
        registry.NewObject("Fan");
        EXPECT_EQ(registry.classList.walkDepth, depth);
        Dumped(registry);
        EXPECT_EQ(registry.classList.walkDepth, depth);
    }
    registry.classList.walkDepth = 0;
    registry.Remove("Port");
    EXPECT_EQ(registry.classList.walkDepth, 0u);
}

// A name to look for that does something each time it is asked for its length, which is in the
// middle of the walk.
class Watching : public TqString {
public:
    Watching(const char* text, std::function<void()> whenAsked)
        : TqString(text), asked(whenAsked) {}
    unsigned int Length() const override {
        asked();
        return length;
    }

private:
    std::function<void()> asked;
};

TEST(TqClassRegistry, LookupsRaiseTheWalkCounterOfTheList) {
    TqClassRegistry registry;
    Register(registry, "Fan");
    Register(registry, "Port");
    std::vector<unsigned int> depths;
    const Watching name("Lamp", [&] { depths.push_back(registry.classList.walkDepth); });
    EXPECT_EQ(registry.Find(name), nullptr);
    EXPECT_EQ(depths, std::vector<unsigned int>({1, 1}));
    EXPECT_EQ(registry.classList.walkDepth, 0u);
}

TEST(TqClassRegistry, LookupsNoteTheCountOnce) {
    TqClassRegistry registry;
    Register(registry, "Fan");
    const Watching name("Port", [&] {
        if (registry.classList.count == 1) Register(registry, "Port");
    });
    EXPECT_EQ(registry.Find(name), nullptr) << "registered during the walk";
    EXPECT_NE(registry.Find(TqString("Port")), nullptr);
}

TEST(TqClassRegistry, LookupsStopAtTheFirstMatch) {
    TqClassRegistry registry;
    Register(registry, "Port");
    Register(registry, "Fan");
    Register(registry, "Lamp");
    int asked = 0;
    const Watching name("Port", [&] { ++asked; });
    EXPECT_NE(registry.Find(name), nullptr);
    EXPECT_EQ(asked, 1);
}

TEST(TqClassRegistry, DumpPrintsALineForEachDescriptorInSlotOrder) {
    TqClassRegistry registry;
    Register(registry, "TqBaseObject");
    Register(registry, "TqFile");
    EXPECT_EQ(Dumped(registry), "Name: TqBaseObject\nName: TqFile\n");
    registry.classList.SwapItems(1, 2);
    EXPECT_EQ(Dumped(registry), "Name: TqFile\nName: TqBaseObject\n");
}

// Standard output that tells of each line as it is printed.
class TqClassRegistryPrinting : public testing::Test {
protected:
    TqClassRegistryPrinting() : kept(stdout) {
        cookie_io_functions_t functions = {};
        functions.write = [](void* test, const char* text, size_t size) {
            TqClassRegistryPrinting* self = static_cast<TqClassRegistryPrinting*>(test);
            self->printed.append(text, size);
            if (self->onPrint) self->onPrint();
            return static_cast<ssize_t>(size);
        };
        std::FILE* stream = fopencookie(this, "w", functions);
        std::setvbuf(stream, nullptr, _IOLBF, BUFSIZ);
        stdout = stream;
    }
    ~TqClassRegistryPrinting() override {
        std::fclose(stdout);
        stdout = kept;
    }

    std::string printed;
    std::function<void()> onPrint;

private:
    std::FILE* kept;
};

TEST_F(TqClassRegistryPrinting, DumpReadsTheCountAnewBeforeEachStep) {
    TqClassRegistry registry;
    Register(registry, "Fan");
    onPrint = [&] {
        if (registry.classList.count < 3) Register(registry, "Late");
    };
    registry.Dump();
    EXPECT_EQ(printed, "Name: Fan\nName: Late\nName: Late\n");
}

TEST_F(TqClassRegistryPrinting, DumpStopsWhereTheListEndsByThen) {
    TqClassRegistry registry;
    Register(registry, "Fan");
    Register(registry, "Port");
    onPrint = [&] {
        if (registry.classList.count == 2) registry.classList.RemoveSlot(2);
    };
    registry.Dump();
    EXPECT_EQ(printed, "Name: Fan\n");
}

TEST_F(TqClassRegistryPrinting, DumpRaisesTheWalkCounterOfTheList) {
    TqClassRegistry registry;
    Register(registry, "Fan");
    unsigned int depth = 0;
    onPrint = [&] { depth = registry.classList.walkDepth; };
    registry.Dump();
    EXPECT_EQ(depth, 1u);
    EXPECT_EQ(registry.classList.walkDepth, 0u);
}

TEST(TqClassRegistry, RemoveTakesTheDescriptorOutAndDeletesIt) {
    int deaths = 0;
    TqClassRegistry registry;
    TqClassInfo* fan = Register(registry, "Fan");
    Register(registry, new MortalInfo("Port", deaths));
    TqClassInfo* lamp = Register(registry, "Lamp");
    registry.Remove("Port");
    EXPECT_EQ(deaths, 1);
    EXPECT_EQ(ItemsOf(registry.classList), Items({fan, lamp}));
    EXPECT_EQ(registry.ClassInfo("Port"), nullptr);
}

TEST(TqClassRegistry, RemoveKeepsADescriptorThatOthersHold) {
    int deaths = 0;
    TqClassRegistry registry;
    TqRef<TqClassInfo> kept(new MortalInfo("Port", deaths));
    Register(registry, static_cast<TqClassInfo*>(kept.object));
    EXPECT_EQ(kept.object->refCount, 2);
    registry.Remove("Port");
    EXPECT_EQ(registry.classList.count, 0u);
    EXPECT_EQ(kept.object->refCount, 1);
    EXPECT_EQ(deaths, 0);
}

TEST(TqClassRegistry, RemoveTakesTheFirstOfTwoNamesakes) {
    TqClassRegistry registry;
    Register(registry, "Port");
    TqClassInfo* second = Register(registry, "Port");
    registry.Remove("Port");
    EXPECT_EQ(ItemsOf(registry.classList), Items({second}));
}

TEST(TqClassRegistry, RemoveDeletesTheDescriptorOnlyWhenItIsNoLongerInTheList) {
    int deaths = 0;
    unsigned int countInTheEnd = 99;
    TqClassRegistry registry;
    Register(registry,
             new MortalInfo("Port", deaths, [&] { countInTheEnd = registry.classList.count; }));
    registry.Remove("Port");
    EXPECT_EQ(deaths, 1);
    EXPECT_EQ(countInTheEnd, 0u);
}

TEST(TqClassRegistry, RemoveOfAnUnknownNameMakesThreeReportsAndRemovesNothing) {
    TqClassRegistry registry;
    TqClassInfo* fan = Register(registry, "Fan");
    TqClassInfo* port = Register(registry, "Port");
    registry.Remove("Lamp");
    EXPECT_EQ(TakeReports(), Reports({"TqBaseList", "./TqRefList", "TqBaseRefList"}));
    EXPECT_EQ(ItemsOf(registry.classList), Items({fan, port}));
    EXPECT_EQ(fan->refCount, 1);
    EXPECT_EQ(port->refCount, 1);
}

TEST(TqClassRegistry, RemoveFromAnEmptyRegistryMakesTheSameReports) {
    TqClassRegistry registry;
    registry.Remove("Lamp");
    EXPECT_EQ(TakeReports(), Reports({"TqBaseList", "./TqRefList", "TqBaseRefList"}));
    EXPECT_EQ(registry.classList.count, 0u);
}

TEST(TqClassRegistry, AnythingRemovedCanBeRegisteredAgain) {
    TqClassRegistry registry;
    TqRef<TqClassInfo> info(new TqClassInfo("Port", nullptr, nullptr));
    for (int i = 0; i < 3; ++i) {
        Register(registry, static_cast<TqClassInfo*>(info.object));
        EXPECT_EQ(registry.ClassInfo("Port"), info.object);
        registry.Remove("Port");
        EXPECT_EQ(registry.ClassInfo("Port"), nullptr);
    }
    EXPECT_EQ(info.object->refCount, 1);
}

TEST(TqClassRegistry, TenThousandClassesAreAllFound) {
    const int classes = 10000;
    TqClassRegistry registry;
    std::vector<TqClassInfo*> infos;
    for (int i = 0; i < classes; ++i)
        infos.push_back(Register(registry, ("Class" + std::to_string(i)).c_str(), NewPlain));
    ASSERT_EQ(registry.classList.count, 10000u);

    // Every ninth of them, the first and the last included: each lookup walks half the list.
    int wrong = 0;
    for (int i = 0; i < classes; i += 9) {
        const std::string name = "Class" + std::to_string(i);
        wrong += registry.ClassInfo(name.c_str()) != infos[static_cast<unsigned int>(i)];
        wrong += registry.classList.walkDepth != 0;
        wrong += registry.Find(TqString(name.c_str())) != infos[static_cast<unsigned int>(i)];
        wrong += registry.classList.walkDepth != 0;
        const std::unique_ptr<TqBaseObject> object(registry.NewObject(name.c_str()));
        wrong += object == nullptr || registry.classList.walkDepth != 0;
    }
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(registry.ClassInfo("Class10000"), nullptr);
    EXPECT_EQ(registry.Find(TqString("Class-1")), nullptr);
    EXPECT_EQ(registry.NewObject("class0"), nullptr);
    EXPECT_EQ(registry.classList.walkDepth, 0u);
}

}  // namespace
