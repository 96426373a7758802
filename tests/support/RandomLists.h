#ifndef RANDOM_LISTS_H
#define RANDOM_LISTS_H

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "Objects.h"
#include "Random.h"
#include "TqBaseList.h"

/// What a list holds, kept the plain way.
class ListModel {
public:
    unsigned int Count() const { return static_cast<unsigned int>(items.size()); }
    void*& At(unsigned int index) { return items[index - 1]; }

    void Insert(unsigned int index, void* item) {
        items.insert(items.begin() + static_cast<int>(index - 1), item);
        if (Count() == capacity) capacity = Count() + 16;
    }
    void Remove(unsigned int index) { items.erase(items.begin() + static_cast<int>(index - 1)); }
    void PreAlloc(unsigned int entries) { capacity = std::max(capacity, entries); }

    unsigned int Find(void* item) const {
        const auto found = std::find(items.begin(), items.end(), item);
        return found == items.end() ? 0 : static_cast<unsigned int>(found - items.begin()) + 1;
    }

    bool IsHeldBy(const TqBaseList& list) const {
        return list.count == Count() && list.capacity == capacity && list.slots[0] == nullptr &&
               list.walkDepth == 0 &&
               (items.empty() ||
                std::memcmp(list.slots + 1, items.data(), items.size() * sizeof(void*)) == 0);
    }

    Items items;  // slot 1 is items[0]
    unsigned int capacity = 16;
};

/// Random operations on two lists of a kind, each compared with its model after every step,
/// capacity included. A kind of list overrides what it does in its own way.
///
///     RandomLists<TqBaseList>(1).Run(1000000);
template <class List>
class RandomLists {
public:
    explicit RandomLists(unsigned int seed) : random(seed) {}
    virtual ~RandomLists() {}

    void Run(unsigned int steps) {
        for (unsigned int step = 0; step < steps; ++step) {
            const char* const operation = Step();
            ASSERT_TRUE(Sound() && copiesRight && foundRight)
                << "after step " << step << ", " << operation;
        }
        for (Modelled& each : lists) Empty(each);
    }

protected:
    struct Modelled {
        std::unique_ptr<List> list{new List};
        ListModel model;
    };

    // Items are pointers to anything, and a pointer may stand in several slots.
    virtual void* AnyItem() { return &things[random.Below(24)]; }

    virtual void Insert(Modelled& its) {
        const unsigned int index = random.Below(its.model.Count() + 1) + 1;
        void* const item = AnyItem();
        its.list->InsertSlot(index, item);
        its.model.Insert(index, item);
        Inserted(item);
    }
    virtual void Inserted(void*) {}
    virtual void Remove(Modelled& its, unsigned int index) {
        its.list->RemoveSlot(index);
        its.model.Remove(index);
    }
    virtual void Replace(Modelled& its, unsigned int index) {
        void* const item = AnyItem();
        its.list->ReplaceSlot(index, item);
        its.model.At(index) = item;
    }
    virtual void Swap(Modelled& its, unsigned int first, unsigned int second) {
        its.list->SwapItems(first, second);
        std::swap(its.model.At(first), its.model.At(second));
    }
    virtual void Empty(Modelled& its) {
        its.list->RemoveAllItems();
        its.model.items.clear();
    }
    virtual void Renew(Modelled& its) {
        its.list.reset(new List);
        its.model = ListModel();
    }
    virtual void Assign(Modelled& its, const Modelled& other) {
        *its.list = *other.list;
        its.model = other.model;
    }
    virtual bool Copy(const Modelled& its) {
        const List copy(*its.list);
        return its.model.IsHeldBy(copy);
    }
    virtual bool Sound() {
        return lists[0].model.IsHeldBy(*lists[0].list) && lists[1].model.IsHeldBy(*lists[1].list);
    }

    Random random;
    Modelled lists[2];

private:
    // One operation on one of the lists; its name. Lists stay around a few dozen items.
    const char* Step() {
        Modelled& its = lists[random.Below(2)];
        const unsigned int count = its.model.Count();
        const unsigned int chance = random.Below(1000);
        if (count == 0 || (chance < 450 && count < 80)) return Insert(its), "insert";
        if (chance < 750) return Remove(its, AnyIndex(its)), "remove";
        if (chance < 830) return Replace(its, AnyIndex(its)), "replace";
        if (chance < 910) return Swap(its, AnyIndex(its), AnyIndex(its)), "swap";
        if (chance < 950) return foundRight &= Search(its), "search";
        if (chance < 970) return copiesRight &= Copy(its), "copy";
        // One way only: reference lists lock this one, then the other.
        if (chance < 980) return Assign(lists[0], lists[1]), "assign";
        if (chance < 990) return PreAlloc(its), "preallocate";
        if (chance < 995) return Empty(its), "empty";
        return Renew(its), "renew";
    }

    unsigned int AnyIndex(const Modelled& its) { return random.Below(its.model.Count()) + 1; }

    bool Search(const Modelled& its) {
        void* const item = AnyItem();
        return its.list->FindSlot(item) == its.model.Find(item);
    }
    void PreAlloc(Modelled& its) {
        const unsigned int entries = random.Below(60);
        its.list->PreAlloc(entries);
        its.model.PreAlloc(entries);
    }

    char things[24];
    bool copiesRight = true;
    bool foundRight = true;
};

#endif
