// Sequences of operations on two lists of a kind, beside plain vectors.

#include <algorithm>
#include <memory>
#include <vector>

#include "../Fuzz.h"
#include "../Values.h"
#include "TqBasePtrList.h"
#include "TqBaseRefList.h"
#include "TqSortedStringList.h"

namespace Lists {

struct Model {
    std::vector<void*> items;  // slot 1 is items[0]
    void* zero = nullptr;      // what stands in entry 0
    unsigned int capacity = 16;

    unsigned int Count() const { return static_cast<unsigned int>(items.size()); }

    void Insert(unsigned int index, void* item) {
        items.insert(items.begin() + static_cast<int>(index - 1), item);
        if (Count() == capacity) capacity = Count() + 16;
    }
    void Remove(unsigned int index) { items.erase(items.begin() + static_cast<int>(index - 1)); }
    unsigned int Find(const void* item) const {
        const auto found = std::find(items.begin(), items.end(), item);
        return found == items.end() ? 0 : static_cast<unsigned int>(found - items.begin()) + 1;
    }
};

bool IsAsModelled(const TqBaseList& list, const Model& model) {
    return list.count == model.Count() && list.capacity == model.capacity &&
           list.slots[0] == model.zero && list.walkDepth == 0 &&
           std::equal(model.items.begin(), model.items.end(), list.slots + 1);
}

template <class List>
struct Modelled {
    List list;
    Model model;
};

unsigned int AnyIndex(const Model& model, Input& input) {
    return input.Below(model.Count()) + 1;
}

// What all kinds of lists do alike. `badIndex` is how often an index that is none is reported.
template <class List>
void Look(Modelled<List>& its, Input& input, unsigned int badIndex) {
    const Model& model = its.model;
    unsigned int walked = 0;
    for (const auto* item : its.list) {
        MUST(its.list.walkDepth == 1 && item == its.list.At(++walked));
    }
    MUST(walked == model.Count());
    MUST(its.list.First() == (walked == 0 ? nullptr : its.list.At(1)));
    MUST(its.list.Last() == (walked == 0 ? nullptr : its.list.At(walked)));
    MUST(TakeReports() == 0);
    MUST(its.list.At(0) == nullptr && its.list.At(walked + 1 + input.Byte()) == nullptr);
    MUST(TakeReports() == 2);
    MUST(its.list.FindSlot(nullptr) == 0);
    its.list.TqBaseList::InsertSlot(1, nullptr);
    its.list.TqBaseList::ReplaceSlot(1, nullptr);
    MUST(TakeReports() == 3);
    if (walked == 0) return;
    // Exchanged with the entry just behind the items, and back.
    const unsigned int index = AnyIndex(model, input);
    its.list.SwapItems(index, walked + 1);
    its.list.SwapItems(walked + 1, index);
    MUST(TakeReports() == 2 * badIndex);
}

template <class List>
void Swap(Modelled<List>& its, Input& input) {
    if (its.model.Count() == 0) return;
    const unsigned int a = AnyIndex(its.model, input);
    const unsigned int b = AnyIndex(its.model, input);
    its.list.SwapItems(a, b);
    std::swap(its.model.items[a - 1], its.model.items[b - 1]);
}

template <class List>
void PreAlloc(Modelled<List>& its, Input& input) {
    const unsigned int entries = input.Below(80);
    its.list.PreAlloc(entries);
    its.model.capacity = std::max(its.model.capacity, entries);
}

// Pointer lists.

char things[16];

void StepPointers(Modelled<TqPtrList<char>>& its, Modelled<TqPtrList<char>>& other, Input& input) {
    Model& model = its.model;
    const unsigned int operation = input.Below(14);
    void* const item = &things[input.Below(16)];
    if (operation < 4 || model.Count() == 0) {
        const unsigned int index = input.Below(model.Count() % 255 + 1) + 1;
        its.list.InsertSlot(index, item);
        return model.Insert(index, item);
    }
    const unsigned int index = AnyIndex(model, input);
    switch (operation) {
        case 4:
            MUST(its.list.RemoveItem(index) == model.items[index - 1]);
            return model.Remove(index);
        case 5: {
            const unsigned int place = model.Find(item);
            MUST(its.list.FindSlot(item) == place);
            MUST(its.list.RemoveItem(item) == (place == 0 ? nullptr : item));
            if (place != 0) model.Remove(place);
            return;
        }
        case 6:
            its.list.ReplaceSlot(index, item);
            model.items[index - 1] = item;
            return;
        case 7:
            return Swap(its, input);
        case 8:
            return PreAlloc(its, input);
        case 9:
            its.list.RemoveAllItems();
            return model.items.clear();
        case 10:
            its.list = other.list;
            model = other.model;
            return;
        case 11: {
            const TqPtrList<char> copy(its.list);
            MUST(IsAsModelled(copy, model) && TakeReports() == 1);
            return;
        }
        case 12:
            // The first item drops out of the numbered slots.
            MUST(its.list.RemoveItem(0u) == model.zero);
            MUST(its.list.RemoveItem(model.Count() + input.Number() % 1000) == nullptr);
            MUST(TakeReports() == 2);
            model.zero = model.items[0];
            return model.Remove(1);
        default:
            Look(its, input, 1);
    }
}

void FuzzPointers(Input& input) {
    Modelled<TqPtrList<char>> pair[2];
    for (int steps = 0; steps < 100 && !input.IsEmpty(); ++steps) {
        const unsigned int which = input.Below(2);
        StepPointers(pair[which], pair[1 - which], input);
        MUST(IsAsModelled(pair[which].list, pair[which].model));
        MUST(TakeReports() == 0);
        Tell(pair[which].model.Count());
    }
}

// Reference lists.

class Counted : public TqBaseObject {
public:
    explicit Counted(bool& itsEnd) : end(itsEnd) {}
    ~Counted() override { end = true; }

private:
    bool& end;
};

// The objects of one input, each with the references that it should have.
class Objects {
public:
    struct Object {
        Counted* object = nullptr;
        int count = 0;
        bool isOwn = false;
        bool hasEnded = false;
    };

    // One that lives. Nobody may have a reference yet.
    Object& Living(unsigned int number) {
        Object& its = all[number];
        if (its.count == 0 && its.object == nullptr) its.object = new Counted(its.hasEnded);
        return its;
    }
    Object& Of(const void* item) {
        for (Object& its : all) {
            if (its.object != nullptr && static_cast<TqBaseObject*>(its.object) == item) return its;
        }
        Broken(__FILE__, __LINE__, "it is the object of somebody");
    }
    void Count(const Model& model, int by) {
        for (const void* item : model.items) Of(item).count += by;
    }
    void Own(Object& its, bool isOwn) {
        if (its.isOwn == isOwn) return;
        its.isOwn = isOwn;
        its.count += isOwn ? 1 : -1;
        if (isOwn) return TqBaseObject::IncrementRefCount(its.object, its.object->seqNum);
        const bool isLast = its.count == 0;
        MUST(TqBaseObject::DecrementRefCount(its.object, its.object->seqNum) == (isLast ? 1 : 0));
    }
    // Each has the references that it should have, and has ended if there are none.
    void Check() {
        for (Object& its : all) {
            if (its.object == nullptr) continue;
            if (its.hasEnded) {
                MUST(its.count == 0);
                its = Object();
            } else {
                MUST(its.object->refCount == its.count);
                // Made, and then not taken.
                if (its.count == 0) {
                    delete its.object;
                    its = Object();
                }
            }
        }
    }

    Object all[10];
};

using RefLists = Modelled<TqRefList<Counted>>;

void StepReferences(RefLists& its, RefLists& other, Objects& objects, Input& input) {
    Model& model = its.model;
    const unsigned int operation = input.Below(14);
    Objects::Object& object = objects.Living(input.Below(10));
    TqBaseObject* const item = object.object;
    if (operation < 4 || model.Count() == 0) {
        const unsigned int index = input.Below(model.Count() % 255 + 1) + 1;
        its.list.InsertSlot(index, item);
        ++object.count;
        return model.Insert(index, item);
    }
    const unsigned int index = AnyIndex(model, input);
    switch (operation) {
        case 4:
            --objects.Of(model.items[index - 1]).count;
            its.list.RemoveSlot(index);
            return model.Remove(index);
        case 5: {
            const unsigned int place = model.Find(item);
            if (place != 0) --object.count;
            MUST(its.list.Remove(object.object) == (place != 0));
            if (place != 0) model.Remove(place);
            return;
        }
        case 6: {
            // Items that differ lose a reference each, and a slot is gained that has none.
            TqBaseObject* const old = objects.Of(model.items[index - 1]).object;
            TqBaseObject::IncrementRefCount(item, item->seqNum);
            if (old != item) {
                TqBaseObject::IncrementRefCount(item, item->seqNum);
                TqBaseObject::IncrementRefCount(old, old->seqNum);
            }
            its.list.ReplaceSlot(index, item);
            model.Insert(index, item);
            ++object.count;
            return;
        }
        case 7:
            return Swap(its, input);
        case 8:
            return PreAlloc(its, input);
        case 9:
            objects.Count(model, -1);
            its.list.RemoveAllItems();
            return model.items.clear();
        case 10:
            objects.Count(other.model, 1);
            objects.Count(model, -1);
            its.list = other.list;
            model = other.model;
            return;
        case 11: {
            const TqRefList<Counted> copy(its.list);
            MUST(IsAsModelled(copy, model));
            return;
        }
        case 12:
            its.list.RemoveSlot(0);
            its.list.RemoveSlot(model.Count() + 1 + input.Number() % 1000);
            MUST(TakeReports() == 2);
            return objects.Own(object, !object.isOwn);
        default:
            Look(its, input, 2);
    }
}

void FuzzReferences(Input& input) {
    Objects objects;
    {
        RefLists pair[2];
        for (int steps = 0; steps < 100 && !input.IsEmpty(); ++steps) {
            const unsigned int which = input.Below(2);
            StepReferences(pair[which], pair[1 - which], objects, input);
            objects.Check();
            MUST(IsAsModelled(pair[which].list, pair[which].model));
            MUST(TakeReports() == 0);
            Tell(pair[which].model.Count());
        }
        objects.Count(pair[0].model, -1);
        objects.Count(pair[1].model, -1);
    }
    objects.Check();
    for (Objects::Object& object : objects.all) {
        if (object.object != nullptr) objects.Own(object, false);
    }
    objects.Check();
}

// Sorted strings.

unsigned int SortedPlace(const Model& model, const TqString* string) {
    unsigned int index = 1;
    for (const void* item : model.items) {
        const std::string text = static_cast<const TqString*>(item)->data;
        if (text.compare(string->data) > 0) break;
        ++index;
    }
    return index;
}

void FuzzStrings(Input& input) {
    std::vector<std::unique_ptr<TqString>> strings;
    for (int i = 0; i < 8; ++i) strings.emplace_back(new TqString(input.Text(6).c_str()));
    Modelled<TqSortedStringList> its;
    for (int steps = 0; steps < 100 && !input.IsEmpty(); ++steps) {
        const unsigned int operation = input.Below(8);
        TqString* const string = strings[input.Below(8)].get();
        const unsigned int place = its.model.Find(string);
        if (operation < 4) {
            its.model.Insert(SortedPlace(its.model, string), string);
            MUST(its.list.Add(string) == string);
        } else if (operation == 4) {
            MUST(its.list.RemoveItem(string) == (place == 0 ? nullptr : string));
            if (place != 0) its.model.Remove(place);
        } else if (operation == 5 && its.model.Count() > 0) {
            const unsigned int index = AnyIndex(its.model, input);
            MUST(its.list.RemoveItem(index) == its.model.items[index - 1]);
            its.model.Remove(index);
        } else if (operation == 6) {
            const TqSortedStringList copy(its.list);
            MUST(IsAsModelled(copy, its.model) && TakeReports() == 1);
            MUST(its.list.RemoveItem(its.model.Count() + 1) == nullptr && TakeReports() == 1);
        } else {
            Look(its, input, 1);
        }
        MUST(IsAsModelled(its.list, its.model));
        MUST(TakeReports() == 0);
        Tell(its.model.Count());
    }
    for (const TqString* string : its.list) Tell(string->data);
}

void Fuzz(Input& input) {
    void (*const kinds[])(Input&) = {FuzzPointers, FuzzReferences, FuzzStrings};
    kinds[input.Below(3)](input);
}

const Target target("lists", Fuzz);

}  // namespace Lists
