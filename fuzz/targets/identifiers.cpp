// Sequences of operations on object identifiers, beside plain vectors.

#include <algorithm>
#include <memory>
#include <vector>

#include "../Fuzz.h"
#include "../Values.h"
#include "TqSnmpOid.h"

namespace Identifiers {

using Numbers = std::vector<unsigned int>;

struct Model {
    Numbers numbers;
    unsigned int capacity = 16;

    unsigned int Count() const { return static_cast<unsigned int>(numbers.size()); }
    void MakeRoom(unsigned int needed) {
        if (needed > capacity) capacity *= (needed + capacity - 1) / capacity;
    }
    void Append(const Numbers& more) {
        MakeRoom(Count() + static_cast<unsigned int>(more.size()));
        numbers.insert(numbers.end(), more.begin(), more.end());
    }
    void AppendSingly(const Numbers& more) {
        for (const unsigned int number : more) Append({number});
    }
};

struct Modelled {
    TqSnmpOid oid{""};
    Model model;
};

bool IsAsModelled(const TqSnmpOid& oid, const Model& model) {
    return oid.count == model.Count() && oid.capacity == model.capacity &&
           (oid.values == oid.internalValues) == (model.capacity == 16) &&
           std::equal(model.numbers.begin(), model.numbers.end(), oid.values);
}

Numbers SomeNumbers(Input& input, unsigned int most) {
    Numbers numbers(input.Below(most + 1));
    for (unsigned int& number : numbers) number = input.Number();
    return numbers;
}

std::string DottedUnsigned(const Numbers& numbers) {
    std::string text;
    for (const unsigned int number : numbers) {
        text += (text.empty() ? "" : ".") + std::to_string(number);
    }
    return text;
}

// Numbers that do not fit into an int come out negative.
std::string DottedSigned(const Numbers& numbers) {
    std::string text;
    for (const unsigned int number : numbers) {
        text += (text.empty() ? "" : ".") + NumberText(static_cast<int>(number));
    }
    return text;
}

void Append(Modelled& its, const Modelled& other, Input& input) {
    switch (input.Below(5)) {
        case 0: {
            const Numbers numbers = SomeNumbers(input, 20);
            its.oid.Append(DottedUnsigned(numbers).c_str());
            return its.model.Append(numbers);
        }
        case 1:
            its.oid.Append(other.oid);
            return its.model.Append(other.model.numbers);
        case 2:
            its.oid.Append(its.oid);
            return its.model.Append(Numbers(its.model.numbers));
        default: {
            const unsigned int number = input.Number();
            its.oid.Append(static_cast<unsigned long>(number));
            its.model.Append({number});
        }
    }
}

void Set(Modelled& its, Input& input) {
    const Numbers numbers = SomeNumbers(input, 24);
    unsigned int room = 0;
    switch (input.Below(4)) {
        case 0: {
            const std::vector<unsigned long> longs(numbers.begin(), numbers.end());
            its.oid.SetValues(longs.data(), static_cast<unsigned int>(longs.size()));
            its.model = Model();
            return its.model.AppendSingly(numbers);
        }
        case 1:
            its.oid.Reset();
            MUST(std::count(its.oid.internalValues, its.oid.internalValues + 16, 0) == 16);
            its.model = Model();
            return;
        case 2:
            room = its.model.Count() + input.Byte();
            its.oid.CheckAllocSize(room);
            its.model.MakeRoom(room);
            return;
        default:
            its.oid.FromString(DottedUnsigned(numbers).c_str());
            its.model.numbers.clear();
            its.model.AppendSingly(numbers);
    }
}

void Step(Modelled& its, Input& input) {
    Numbers& numbers = its.model.numbers;
    if (input.Below(2) == 0) {
        its.oid.Increment();
        if (!numbers.empty()) ++numbers.back();
    } else {
        its.oid.IncrementTableRow();
        if (numbers.size() >= 2) ++numbers[numbers.size() - 2];
    }
}

void Assign(Modelled& its, const Modelled& other) {
    its.oid = other.oid;
    its.model.MakeRoom(other.model.Count());
    its.model.numbers = other.model.numbers;
}

void Copy(const Modelled& its) {
    const TqSnmpOid copy(its.oid);
    Model model;
    model.numbers = its.model.numbers;
    model.capacity = std::max(16u, (model.Count() + 15) / 16 * 16);
    MUST(IsAsModelled(copy, model));
    const std::unique_ptr<TqDataType> clone(its.oid.Clone());
    MUST(clone->Equals(&its.oid) && clone->Compare(its.oid) == 0);
    const std::unique_ptr<TqString> text(its.oid.Convert());
    MUST(Counted(*text) == DottedSigned(its.model.numbers));
    TqBuffer buffer;
    its.oid.ToBuffer(buffer);
    MUST(buffer.length == 0);
}

bool BeginsWith(const Numbers& numbers, const Numbers& beginning) {
    return numbers.size() >= beginning.size() &&
           std::equal(beginning.begin(), beginning.end(), numbers.begin());
}

void Compare(const Modelled& one, const Modelled& other) {
    const Numbers& left = one.model.numbers;
    const Numbers& right = other.model.numbers;
    const int order = left < right ? -1 : left == right ? 0 : 1;
    MUST(one.oid.Compare(other.oid) == order);
    MUST(one.oid.Equals(&other.oid) == (order == 0));
    MUST(one.oid.DoesNotEqual(&other.oid) == (order != 0));
    const bool isSameTable =
        right.size() >= left.size() &&
        (left.size() < 2 || std::equal(left.begin() + 1, left.end(), right.begin() + 1));
    MUST(one.oid.SameTable(other.oid) == isSameTable);
    MUST(one.oid.IsDorvane() == BeginsWith(left, {1, 3, 6, 1, 4, 1, 61999}));
    MUST(one.oid.IsMalvick() == BeginsWith(left, {1, 3, 6, 1, 4, 1, 61999, 1}));
}

void Fuzz(Input& input) {
    Modelled pair[2];
    for (int steps = 0; steps < 64 && !input.IsEmpty(); ++steps) {
        const unsigned int which = input.Below(2);
        Modelled& its = pair[which];
        const Modelled& other = pair[1 - which];
        if (its.model.Count() > 500) {
            its.oid.Reset();
            its.model = Model();
        }
        switch (input.Below(6)) {
            case 0:
            case 1:
                Append(its, other, input);
                break;
            case 2:
                Set(its, input);
                break;
            case 3:
                Step(its, input);
                break;
            case 4:
                Assign(its, other);
                break;
            default:
                Copy(its);
                Compare(its, other);
        }
        MUST(IsAsModelled(its.oid, its.model));
        MUST(TakeReports() == 0);
        Tell(its.oid.capacity);
    }
    Tell(DottedSigned(pair[0].model.numbers));
}

const Target target("identifiers", Fuzz);

}  // namespace Identifiers
