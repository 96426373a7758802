// Sequences of operations on handles, beside a plain count of who holds what.

#include <memory>

#include "../Fuzz.h"
#include "TqMakeRef.h"
#include "TqNumber.h"
#include "TqString.h"

namespace Handles {

const int none = -1;
const int handleCount = 4;
const int objectCount = 5;

class Mortal : public TqBaseObject {
public:
    explicit Mortal(bool& itsEnd) : end(itsEnd) {}
    ~Mortal() override { end = true; }

private:
    bool& end;
};

struct Object {
    Mortal* object = nullptr;
    int count = 0;
    bool hasEnded = false;
};

class Play {
public:
    explicit Play(Input& itsInput) : input(itsInput) {
        for (int i = 0; i < handleCount; ++i) handles[i].reset(new TqRef<Mortal>);
    }

    void Run() {
        for (int steps = 0; steps < 100 && !input.IsEmpty(); ++steps) {
            Step();
            Check();
            MUST(TakeReports() == 0);
        }
        for (int i = 0; i < handleCount; ++i) {
            Let(i);
            handles[i].reset();
            Check();
        }
        for (int i = 0; i < objectCount; ++i) {
            for (; own[i] > 0; --own[i]) Drop(objects[i]);
        }
        Check();
    }

private:
    void Let(int handle) {
        if (held[handle] != none) --objects[held[handle]].count;
        held[handle] = none;
    }
    void Take(int handle, int object) {
        if (object != none) ++objects[object].count;
        Let(handle);
        held[handle] = object;
    }

    int AnyHandle() { return static_cast<int>(input.Below(handleCount)); }

    // The number of an object that lives.
    int AnyObject() {
        const unsigned int number = input.Below(objectCount);
        Object& its = objects[number];
        if (its.object == nullptr) {
            its.object = new Mortal(its.hasEnded);
            its.object->seqNum = input.Byte() % 3;
        }
        return static_cast<int>(number);
    }

    static void Drop(Object& its) {
        --its.count;
        const int isLast = its.count == 0 ? 1 : 0;
        MUST(TqBaseObject::DecrementRefCount(its.object, its.object->seqNum) == isLast);
    }

    void Count() {
        Object& its = objects[AnyObject()];
        if (its.count > 0 && input.Below(2) == 0) {
            // A stamp of somebody else's is reported, and counts.
            TqBaseObject::IncrementRefCount(its.object, its.object->seqNum + 1);
            MUST(TakeReports() == 1);
            MUST(its.object->refCount == its.count + 1);
            MUST(TqBaseObject::DecrementRefCount(its.object, its.object->seqNum) == 0);
            return;
        }
        if (its.count < 3) {
            TqBaseObject::IncrementRefCount(its.object, its.object->seqNum);
            ++its.count;
            ++own[&its - objects];
        } else if (own[&its - objects] > 0) {
            --own[&its - objects];
            Drop(its);
        }
        TqBaseObject::IncrementRefCount(nullptr, 0);
        MUST(TqBaseObject::DecrementRefCount(nullptr, 0) == 0);
    }

    void Copy(int handle) {
        const TqRef<Mortal> copy(*handles[handle]);
        const std::unique_ptr<TqDataType> clone(handles[handle]->Clone());
        const int more = held[handle] == none ? 0 : objects[held[handle]].count + 2;
        MUST(copy.object == handles[handle]->object);
        MUST(more == 0 || copy.object->refCount == more);
        MUST(clone->Equals(&copy) && clone->TypeId() == 8);
    }

    void Compare(int one, int other) {
        const int same = held[one] == held[other] ? 1 : 0;
        MUST(handles[one]->Compare(*handles[other]) == same);
        MUST(handles[one]->Equals(handles[other].get()) == (same == 1));
        MUST(handles[one]->DoesNotEqual(nullptr));
        MUST(handles[one]->IsEmpty() == (held[one] == none));
        handles[one]->GutCheck();
        MUST(TakeReports() == 0);
        TqString text("kept");
        handles[one]->ToString(text);
        handles[one]->FromString("x");
        MUST(TakeReports() == 2 && text.length == 4);
    }

    void Renew(int handle, int other) {
        if (handle == other) return;
        Take(handle, held[other]);
        handles[handle].reset(new TqRef<Mortal>(*handles[other]));
    }

    void Step() {
        const int handle = AnyHandle();
        const int other = AnyHandle();
        switch (input.Below(9)) {
            case 0:
            case 1: {
                const int object = AnyObject();
                *handles[handle] = objects[object].object;
                return Take(handle, object);
            }
            case 2:
                handles[handle]->AssignNewObject(nullptr);
                return Let(handle);
            case 3:
                *handles[handle] = *handles[other];
                return Take(handle, held[other]);
            case 4:
                handles[handle]->Assignment(*handles[other]);
                return Take(handle, held[other]);
            case 5:
                return Count();
            case 6:
                return Copy(handle);
            case 7:
                return Compare(handle, other);
            default:
                Renew(handle, other);
        }
    }

    void Check() {
        for (int i = 0; i < handleCount; ++i) {
            if (handles[i] == nullptr) continue;
            TqBaseObject* const expected = held[i] == none ? nullptr : objects[held[i]].object;
            MUST(handles[i]->object == expected);
            MUST(handles[i]->objectSeqNum == (expected == nullptr ? 0 : expected->seqNum));
        }
        for (Object& its : objects) {
            if (its.object == nullptr) continue;
            if (!its.hasEnded) {
                MUST(its.object->refCount == its.count && its.object->self == its.object);
                if (its.count == 0) delete its.object;
            }
            MUST(its.hasEnded == (its.count == 0));
            if (its.hasEnded) its = Object();
        }
        Tell(static_cast<unsigned int>(held[0] + 1));
    }

    Input& input;
    Object objects[objectCount];
    int own[objectCount] = {0, 0, 0, 0, 0};  // references without a handle
    std::unique_ptr<TqRef<Mortal>> handles[handleCount];
    int held[handleCount] = {none, none, none, none};
};

void Fuzz(Input& input) {
    Play(input).Run();
}

const Target target("handles", Fuzz);

}  // namespace Handles
