// The locks that each operation takes, and what runs while they are held, are those in the table of
// docs/threads.md. Built with the platform of tests/support/faults only (preset `coverage`).

#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <sstream>
#include <string>

#include "Objects.h"
#include "Reports.h"
#include "TqBaseRef.h"
#include "TqBaseRefList.h"
#include "TqCallback.h"
#include "TqClassRegistry.h"
#include "TqLinuxMutex.h"

namespace {

std::map<const TqLinuxMutex*, std::string> names;
std::string nameOfNew;
std::string record;

void Note(const std::string& sign) {
    record += (record.empty() ? "" : " ") + sign;
}

int Watch(const TqLinuxMutex* mutex, bool isLock, int result) {
    const auto name = names.find(mutex);
    Note((isLock ? "+" : "-") + (name == names.end() ? nameOfNew : name->second));
    return result;
}

void NoteReport(const char*, int) {
    Note("!");
}

// Tells of its end.
class Noted : public TqBaseObject {
public:
    explicit Noted(const std::string& ownName) : name(ownName) { names[&objectMutex] = ownName; }
    ~Noted() override { Note("~" + name); }

private:
    const std::string name;
};

class NotedInfo : public TqClassInfo {
public:
    NotedInfo() : TqClassInfo("Port", nullptr, nullptr) { names[&objectMutex] = "a"; }
    ~NotedInfo() override { Note("~a"); }
};

using Handle = TqRef<TqBaseObject>;
using List = TqRefList<TqBaseObject>;

// Records what is done in here. A mutex without a name was made in it.
std::string Recorded(const std::function<void()>& operation, const std::string& newName = "new") {
    nameOfNew = newName;
    record.clear();
    const TqAssertCb before = TqRegisterAssertCb(NoteReport);
    TqWatchMutexes(Watch);
    operation();
    TqWatchMutexes(nullptr);
    TqRegisterAssertCb(before);
    return record.empty() ? "nothing" : record;
}

// A handle, and lists of a, and of a and b; what they hold has no other holder.
struct Held {
    std::unique_ptr<Handle> handle{new Handle(new Noted("object"))};
    std::unique_ptr<Handle> other{new Handle(new Noted("new"))};
    Held() {
        names[&handle->refMutex] = "handle";
        names[&other->refMutex] = "other";
    }
};

struct Listed {
    std::unique_ptr<List> list{new List};
    List other;
    explicit Listed(unsigned int count) {
        names[&list->listMutex] = "list";
        names[&other.listMutex] = "other";
        if (count > 0) list->Append(new Noted("a"));
        if (count > 1) list->Append(new Noted("b"));
    }
};

using Scenario = std::function<std::string()>;

std::map<std::string, Scenario> Scenarios() {
    std::map<std::string, Scenario> all;
    all["`IncrementRefCount(object)`"] = [] {
        Noted object("object");
        const std::string what = Recorded([&] { Keep(&object); });
        object.refCount = 0;
        return what;
    };
    all["`DecrementRefCount(object)`, not the last one"] = [] {
        Noted object("object");
        object.refCount = 2;
        const std::string what = Recorded([&] { Drop(&object); });
        object.refCount = 0;
        return what;
    };
    all["`DecrementRefCount(object)`, the last one"] = [] {
        Noted* const object = new Noted("object");
        Keep(object);
        return Recorded([&] { Drop(object); });
    };
    all["`TqRef(object)`"] = [] {
        Noted* const object = new Noted("object");
        std::unique_ptr<Handle> handle;
        return Recorded([&] { handle.reset(new Handle(object)); }, "handle");
    };
    all["`TqRef(other)`"] = [] {
        Held held;
        names[&held.handle->refMutex] = "other";
        std::unique_ptr<Handle> handle;
        return Recorded([&] { handle.reset(new Handle(*held.handle)); }, "handle");
    };
    all["`TqRef::Clone`"] = [] {
        Held held;
        std::unique_ptr<TqDataType> clone;
        return Recorded([&] { clone.reset(held.handle->Clone()); }, "clone");
    };
    all["`handle = new`"] = [] {
        Handle handle(new Noted("old"));
        names[&handle.refMutex] = "handle";
        Noted* const object = new Noted("new");
        return Recorded([&] { handle = object; });
    };
    all["`handle = other`"] = [] {
        Held held;
        *held.handle = new Noted("old");
        return Recorded([&] { *held.handle = *held.other; });
    };
    all["`handle = object`, which it holds"] = [] {
        Held held;
        return Recorded([&] { *held.handle = held.handle->object; });
    };
    all["`~TqRef`"] = [] {
        Held held;
        return Recorded([&] { held.handle.reset(); });
    };
    all["`~TqRef`, of an object that is stamped anew"] = [] {
        Held held;
        held.handle->object->seqNum = 7;
        return Recorded([&] { held.handle.reset(); });
    };
    all["`Get`, `->`, `Equals`, `Compare` of handles"] = [] {
        Held held;
        return Recorded([&] {
            EXPECT_EQ(held.handle->Get(), held.handle->operator->());
            EXPECT_FALSE(held.handle->Equals(held.other.get()));
            EXPECT_EQ(held.handle->Compare(*held.other), 0);
        });
    };
    all["`TqRefList::InsertSlot`, `Append`"] = [] {
        Listed inserted(0);
        Listed appended(0);
        Noted* const first = new Noted("a");
        const std::string what = Recorded([&] { inserted.list->InsertSlot(1, first); });
        Noted* const second = new Noted("a");
        EXPECT_EQ(Recorded([&] { appended.list->Append(second); }), what);
        return what;
    };
    all["`TqRefList::InsertSlot`, null"] = [] {
        Listed l(0);
        return Recorded([&] { l.list->InsertSlot(1, nullptr); });
    };
    all["`TqRefList::RemoveSlot`, `Remove`"] = [] {
        Listed slot(1);
        const std::string what = Recorded([&] { slot.list->RemoveSlot(1); });
        Listed item(1);
        EXPECT_EQ(Recorded([&] { item.list->Remove(item.list->First()); }), what);
        return what;
    };
    all["`TqRefList::RemoveSlot`, above `count`"] = [] {
        Listed l(0);
        return Recorded([&] { l.list->RemoveSlot(1); });
    };
    all["`TqRefList::RemoveAllItems`"] = [] {
        Listed l(2);
        return Recorded([&] { l.list->RemoveAllItems(); });
    };
    all["`TqRefList::SwapItems`"] = [] {
        Listed l(2);
        return Recorded([&] { l.list->SwapItems(1, 2); });
    };
    all["`TqRefList::SwapItems`, above `count`"] = [] {
        Listed l(1);
        const std::string what = Recorded([&] { l.list->SwapItems(1, 2); });
        l.list->SwapItems(1, 2);
        TakeReports();
        return what;
    };
    all["`TqRefList::ReplaceSlot` of `a` by `b`"] = [] {
        Listed l(1);
        Noted* const b = new Noted("b");
        Keep(b);
        const std::string what = Recorded([&] { l.list->ReplaceSlot(1, b); });
        l.list->count = 0;
        return what;
    };
    all["`TqRefList(other)`"] = [] {
        Listed l(2);
        names[&l.list->listMutex] = "other";
        std::unique_ptr<List> copy;
        return Recorded([&] { copy.reset(new List(*l.list)); }, "list");
    };
    all["`list = other`"] = [] {
        Listed l(1);
        l.other.Append(new Noted("b"));
        return Recorded([&] { *l.list = l.other; });
    };
    all["`~TqRefList`"] = [] {
        Listed l(2);
        return Recorded([&] { l.list.reset(); });
    };
    all["`Find`, `At`, `FindSlot`, range-for of reference lists"] = [] {
        Listed l(2);
        return Recorded([&] {
            for (TqBaseObject* each : *l.list) EXPECT_NE(l.list->Find(each), 0u);
            EXPECT_EQ(l.list->FindSlot(l.list->At(2)), 2u);
        });
    };
    all["`TqRegisterClass`"] = [] {
        TqRefList<TqClassInfo>& list = TqClassRegistry::GetRegistry()->classList;
        TqBaseObject* info = TqCallback::TqCallbackInitInfo();
        EXPECT_EQ(list.FindSlot(info), 0u);
        names[&list.listMutex] = "list";
        names[&info->objectMutex] = "a";
        const std::string what = Recorded([] { TqRegisterClass<TqCallback>(); });
        Keep(info);
        list.RemoveSlot(list.FindSlot(info));
        --info->refCount;
        return what;
    };
    all["`ClassInfo(name)`, `Find`, `NewObject` of the registry"] = [] {
        TqClassRegistry registry;
        registry.classList.Append(new TqClassInfo("Port", TqBaseObjectNewFunc, nullptr));
        const TqString name("Port");
        return Recorded([&] {
            EXPECT_EQ(registry.ClassInfo("Port"), registry.Find(name));
            EXPECT_EQ(registry.NewObject("Port"), nullptr);
        });
    };
    all["`Remove` of the registry"] = [] {
        TqClassRegistry registry;
        names[&registry.classList.listMutex] = "list";
        registry.classList.Append(new NotedInfo);
        return Recorded([&] { registry.Remove("Port"); }, "kept");
    };
    return all;
}

// The rows of the page whose second cell is what an operation does.
std::map<std::string, std::string> Table() {
    std::map<std::string, std::string> rows;
    std::ifstream page(TQ_THREADS_PAGE);
    std::string line;
    bool isInTable = false;
    while (std::getline(page, line)) {
        if (line == "| operation | what it does |") {
            isInTable = std::getline(page, line).good();
            continue;
        }
        if (line.empty()) isInTable = false;
        if (!isInTable) continue;
        const std::size_t middle = line.find(" | ", 2);
        std::string what = line.substr(middle + 3, line.rfind(" |") - middle - 3);
        if (what.front() == '`') what = what.substr(1, what.size() - 2);
        rows[line.substr(2, middle - 2)] = what;
    }
    return rows;
}

TEST(LockOrder, EachOperationDoesWhatTheTableSays) {
    if (!std::ifstream(TQ_THREADS_PAGE)) GTEST_SKIP() << "the documentation is not here";
    std::map<std::string, Scenario> scenarios = Scenarios();
    for (const auto& row : Table()) {
        SCOPED_TRACE(row.first);
        ASSERT_EQ(scenarios.count(row.first), 1u) << "nothing tries it";
        names.clear();
        EXPECT_EQ(scenarios[row.first](), row.second);
        scenarios.erase(row.first);
    }
    for (const auto& left : scenarios) ADD_FAILURE() << "not in the table: " << left.first;
}

// No more than the text below the table says, whatever the rows are.
TEST(LockOrder, NothingIsTakenOrRunWhileTheMutexOfAnObjectIsHeld) {
    const std::set<std::string> outer = {"handle", "other", "clone", "kept", "list"};
    for (const auto& scenario : Scenarios()) {
        names.clear();
        std::string held;
        std::istringstream signs(scenario.second());
        for (std::string sign; signs >> sign;) {
            const std::string name = sign.substr(1);
            EXPECT_TRUE(held.empty() || sign == "-" + held) << scenario.first << ": " << sign;
            if (outer.count(name) == 0) held = sign[0] == '+' ? name : "";
        }
    }
}

}  // namespace
