// Callbacks that change the chain they are called from, and the registry of classes, each beside a
// plain list.

#include <algorithm>
#include <vector>

#include "../Fuzz.h"
#include "../Values.h"
#include "TqCallbackChain.h"
#include "TqClassRegistry.h"
#include "TqFunctionCb.h"

namespace Chains {

const unsigned int callbackCount = 5;
const unsigned int mostCalls = 60;
const unsigned int mostItems = 20;

enum Action {
    nothing,
    append,
    insertInFront,
    removeItself,
    removeFirst,
    removeAll,
    invoke,
    actions
};

/// What a callback does when it is called.
struct Deed {
    unsigned int number;
    Action action;
    unsigned int other;
};

/// What is called in which order, in a plain list.
class Model {
public:
    explicit Model(const Deed (&itsDeeds)[callbackCount]) : deeds(itsDeeds) {}

    void Invoke() {
        for (std::size_t i = 0; i < items.size(); ++i) {
            const Deed& deed = deeds[items[i]];
            calls.push_back(deed.number);
            if (calls.size() < mostCalls) Do(deed);
        }
    }

    void Do(const Deed& deed) {
        switch (deed.action) {
            case append:
                if (items.size() < mostItems) items.push_back(deed.other);
                break;
            case insertInFront:
                if (items.size() < mostItems) items.insert(items.begin(), deed.other);
                break;
            case removeItself: {
                const auto found = std::find(items.begin(), items.end(), deed.number);
                if (found != items.end()) items.erase(found);
                break;
            }
            case removeFirst:
                if (!items.empty()) items.erase(items.begin());
                break;
            case removeAll:
                items.clear();
                break;
            case invoke:
                Invoke();
                break;
            default:
                break;
        }
    }

    std::vector<unsigned int> items;
    std::vector<unsigned int> calls;

private:
    const Deed (&deeds)[callbackCount];
};

struct Play;

/// What a callback borrows.
struct Own {
    Play* play;
    Deed deed;
};

struct Play {
    TqCallbackChain chain;
    std::vector<unsigned int> calls;
    TqFunctionCb* callbacks[callbackCount];
    TqBaseObject source;
    TqCallbackData data;

    void Do(const Deed& deed) {
        TqFunctionCb* const other = callbacks[deed.other];
        switch (deed.action) {
            case append:
                if (chain.count < mostItems) chain.Append(other);
                break;
            case insertInFront:
                if (chain.count < mostItems) chain.InsertSlot(1, static_cast<TqCallback*>(other));
                break;
            case removeItself:
                chain.Remove(callbacks[deed.number]);
                break;
            case removeFirst:
                if (chain.count > 0) chain.RemoveItem(1u);
                break;
            case removeAll:
                chain.RemoveAllItems();
                break;
            case invoke:
                chain.Invoke(&source, &data);
                break;
            default:
                break;
        }
    }
};

void Called(TqFunctionCb* callback, TqBaseObject* source, TqCallbackData* data) {
    const Own& own = *static_cast<Own*>(callback->UserData());
    Play& play = *own.play;
    MUST(source == &play.source && data == &play.data && play.chain.walkDepth > 0);
    play.calls.push_back(own.deed.number);
    if (play.calls.size() < mostCalls) play.Do(own.deed);
}

Deed AnyDeed(unsigned int number, Input& input) {
    const Action action = static_cast<Action>(input.Below(actions));
    return {number, action, input.Below(callbackCount)};
}

void FuzzChain(Input& input) {
    Play play;
    Own owns[callbackCount];
    Deed deeds[callbackCount];
    for (unsigned int i = 0; i < callbackCount; ++i) {
        deeds[i] = AnyDeed(i, input);
        owns[i] = {&play, deeds[i]};
        play.callbacks[i] = new TqFunctionCb(Called, &owns[i]);
    }
    Model model(deeds);
    for (int steps = 0; steps < 30 && !input.IsEmpty(); ++steps) {
        const Deed deed = AnyDeed(input.Below(callbackCount), input);
        play.Do(deed);
        model.Do(deed);
        MUST(play.calls == model.calls && play.chain.walkDepth == 0);
        MUST(play.chain.count == model.items.size());
        for (unsigned int i = 1; i <= play.chain.count; ++i) {
            MUST(play.chain.At(i) == play.callbacks[model.items[i - 1]]);
        }
        for (const unsigned int number : play.calls) Tell(number);
        play.calls.clear();
        model.calls.clear();
        MUST(TakeReports() == 0);
    }
    for (TqFunctionCb* callback : play.callbacks) delete callback;
}

TqBaseObject* NewObject() {
    return new TqBaseObject;
}

/// The descriptors of one input and how they are registered.
class Classes {
public:
    explicit Classes(Input& itsInput) : input(itsInput) {
        for (unsigned int i = 0; i < count; ++i) {
            const std::string name = input.Text(3);
            const bool hasFactory = input.Below(2) == 0;
            // The parent is one before it, or none.
            const unsigned int parent = input.Below(i + 1);
            infos[i] = new TqClassInfo(name.c_str(), hasFactory ? NewObject : nullptr,
                                       parent == i ? nullptr : infos[parent]);
            parents[i] = parent;
            TqBaseObject::IncrementRefCount(infos[i], infos[i]->seqNum);
        }
    }

    ~Classes() {
        registry.classList.RemoveAllItems();
        for (TqClassInfo* info : infos) {
            MUST(TqBaseObject::DecrementRefCount(info, info->seqNum) == 1);
        }
    }

    void Step() {
        const unsigned int which = input.Below(count);
        switch (input.Below(5)) {
            case 0:
            case 1:
                if (items.size() < mostItems) Insert(which);
                break;
            case 2:
                Remove(AnyName());
                break;
            case 3:
                Look(AnyName(), which);
                break;
            default:
                Dump();
        }
        MUST(TakeReports() == 0 && registry.classList.count == items.size());
        MUST(registry.classList.walkDepth == 0);
        Tell(registry.classList.count);
    }

private:
    static const unsigned int count = 5;

    std::string AnyName() {
        const unsigned int which = input.Below(count + 1);
        return which == count ? input.Text(3) : std::string(infos[which]->name.data);
    }

    void Insert(unsigned int which) {
        const unsigned int place = input.Below(static_cast<unsigned int>(items.size()) + 1);
        registry.classList.InsertSlot(place + 1, static_cast<TqBaseObject*>(infos[which]));
        items.insert(items.begin() + static_cast<int>(place), infos[which]);
    }

    TqClassInfo* Find(const std::string& name) const {
        for (TqClassInfo* info : items) {
            if (name == info->name.data) return info;
        }
        return nullptr;
    }

    void Remove(const std::string& name) {
        TqClassInfo* const info = Find(name);
        registry.Remove(name.c_str());
        MUST(TakeReports() == (info == nullptr ? 3 : 0));
        if (info != nullptr) items.erase(std::find(items.begin(), items.end(), info));
    }

    // Whether it stands among the ancestors of the other, or is it.
    bool IsAncestor(const TqClassInfo* info, unsigned int of) const {
        if (infos[of] == info) return true;
        return parents[of] != of && IsAncestor(info, parents[of]);
    }

    void Look(const std::string& name, unsigned int which) {
        TqClassInfo* const info = Find(name);
        MUST(registry.ClassInfo(name.c_str()) == info);
        MUST(registry.Find(TqString(name.c_str())) == info);
        TqBaseObject* const object = registry.NewObject(name.c_str());
        const bool isMade = info != nullptr && info->createFunc != nullptr;
        MUST((object != nullptr) == isMade);
        delete object;
        const int isA = info != nullptr && IsAncestor(info, which) ? 1 : 0;
        MUST(infos[which]->IsA(name.c_str()) == isA);
        MUST(infos[which]->IsA(info) == isA);
        Tell(static_cast<unsigned int>(isA));
    }

    void Dump() {
        std::string expected;
        for (const TqClassInfo* info : items) {
            expected += "Name: " + std::string(info->name.data) + "\n";
        }
        const Printed printed;
        registry.Dump();
        MUST(Printed::Take() == expected);
    }

    Input& input;
    TqClassRegistry& registry = *TqClassRegistry::GetRegistry();
    TqClassInfo* infos[count];
    unsigned int parents[count];
    std::vector<TqClassInfo*> items;
};

void FuzzRegistry(Input& input) {
    Classes classes(input);
    for (int steps = 0; steps < 60 && !input.IsEmpty(); ++steps) classes.Step();
}

void Fuzz(Input& input) {
    if (input.Below(2) == 0) {
        FuzzChain(input);
    } else {
        FuzzRegistry(input);
    }
}

const Target target("chains", Fuzz);

}  // namespace Chains
