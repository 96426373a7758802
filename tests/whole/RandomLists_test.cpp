#include "RandomLists.h"

#include "Reports.h"
#include "TqBasePtrList.h"
#include "TqBaseRefList.h"

namespace {

const unsigned int steps = 1000000;

TEST(RandomLists, OfABaseListEndAsInThePlainModel) {
    RandomLists<TqBaseList>(1).Run(steps);
}

// A pointer list is emptied by both of its own removals too, and its copies are reported.
class RandomPtrLists : public RandomLists<TqPtrList<char>> {
public:
    using RandomLists::RandomLists;

private:
    void Remove(Modelled& its, unsigned int index) override {
        void* const item = its.model.At(index);
        switch (random.Below(3)) {
            case 0:
                its.list->RemoveSlot(index);
                break;
            case 1:
                EXPECT_EQ(its.list->RemoveItem(index), item);
                break;
            case 2:
                EXPECT_EQ(its.list->RemoveItem(item), item);
                index = its.model.Find(item);
                break;
        }
        its.model.Remove(index);
    }
    bool Copy(const Modelled& its) override {
        const bool right = RandomLists::Copy(its);
        return TakeReports() == Reports({"TqBasePtrList"}) && right;
    }
};

TEST(RandomLists, OfAPointerListEndAsInThePlainModel) {
    RandomPtrLists(2).Run(steps);
}

// A reference list counts its items: each of them is in the model with its count.
class RandomRefLists : public RandomLists<TqRefList<Mortal>> {
public:
    explicit RandomRefLists(unsigned int seed) : RandomLists(seed) {
        for (Counted& each : items) {
            each.object = new Mortal(deaths);
            Keep(each);
        }
    }

    // With the lists empty, the references left are the test's own.
    void DropAll() {
        for (Counted& each : items) {
            EXPECT_EQ(each.object->refCount, each.count);
            for (; each.count > 0; --each.count)
                EXPECT_EQ(::Drop(each.object), each.count == 1 ? 1 : 0);
        }
        EXPECT_EQ(deaths, 16);
    }

private:
    struct Counted {
        TqBaseObject* object;
        int count = 0;
    };

    void* AnyItem() override { return items[random.Below(16)].object; }

    Counted& CountOf(void* item) {
        for (Counted& each : items) {
            if (each.object == item) return each;
        }
        ADD_FAILURE() << "not an item";
        return items[0];
    }
    static void Keep(Counted& item) {
        ::Keep(item.object);
        ++item.count;
    }
    void Recount(const ListModel& model, int by) {
        for (void* item : model.items) CountOf(item).count += by;
    }

    void Inserted(void* item) override { ++CountOf(item).count; }
    void Remove(Modelled& its, unsigned int index) override {
        --CountOf(its.model.At(index)).count;
        RandomLists::Remove(its, index);
    }
    // Inserts, and takes a reference from both when they differ. The test makes up for it, so that
    // every slot has its reference again.
    void Replace(Modelled& its, unsigned int index) override {
        Counted& old = CountOf(its.model.At(index));
        Counted& item = CountOf(AnyItem());
        Keep(item);
        its.list->ReplaceSlot(index, item.object);
        its.model.Insert(index, item.object);
        if (&item != &old) {
            --item.count;
            --old.count;
            EXPECT_EQ(item.object->refCount, item.count);
            EXPECT_EQ(old.object->refCount, old.count);
            Keep(item);
            Keep(old);
        }
    }
    void Empty(Modelled& its) override {
        Recount(its.model, -1);
        RandomLists::Empty(its);
    }
    void Renew(Modelled& its) override {
        Recount(its.model, -1);
        RandomLists::Renew(its);
    }
    void Assign(Modelled& its, const Modelled& other) override {
        Recount(its.model, -1);
        RandomLists::Assign(its, other);
        Recount(its.model, 1);
    }
    bool Copy(const Modelled& its) override {
        const TqRefList<Mortal> copy(*its.list);
        Recount(its.model, 1);
        const bool right = Sound() && its.model.IsHeldBy(copy);
        Recount(its.model, -1);
        return right;
    }
    bool Sound() override {
        for (const Counted& each : items) {
            if (each.object->refCount != each.count) return false;
        }
        return deaths == 0 && RandomLists::Sound();
    }

    int deaths = 0;
    Counted items[16];
};

TEST(RandomLists, OfAReferenceListEndAsInThePlainModelCountsIncluded) {
    RandomRefLists lists(3);
    lists.Run(steps);
    lists.DropAll();
}

}  // namespace
