// Sequences of operations on byte buffers, beside a model that keeps the bytes, the capacity and
// the read position.

#include "../Fuzz.h"
#include "../Values.h"

namespace Buffers {

struct Model {
    std::string bytes;
    unsigned int capacity = 64;
    std::size_t position = 0;

    void Append(const std::string& more) {
        bytes += more;
        if (bytes.size() > capacity) capacity = SizeOf(bytes);
    }
    void Insert(const std::string& more, std::size_t place) {
        if (more.empty()) return;
        if (place >= bytes.size()) return Append(more);
        const std::string whole = bytes.substr(0, place) + more + bytes.substr(place);
        *this = Model();
        Append(whole);
    }
    // A copy has no spare room.
    Model Copied() const {
        Model copy(*this);
        if (capacity != 64) copy.capacity = SizeOf(bytes);
        return copy;
    }
    // A block of exactly that size takes itself for none, and leaks: nobody goes there.
    bool WouldBeOdd(std::size_t more) const { return capacity < 64 && bytes.size() + more == 64; }
    std::size_t Left() const { return bytes.size() > position ? bytes.size() - position : 0; }
};

struct Modelled {
    TqBuffer buffer;
    Model model;
};

bool IsAsModelled(const TqBuffer& buffer, const Model& model) {
    return buffer.length == model.bytes.size() && buffer.capacity == model.capacity &&
           buffer.readPosition == model.position &&
           (buffer.data == buffer.internalData) == (model.capacity == 64) &&
           std::memcmp(buffer.data, model.bytes.data(), buffer.length) == 0;
}

bool EndsBeyond(unsigned int position, unsigned int count, std::size_t limit) {
    return static_cast<unsigned long long>(position) + count > limit;
}

void Add(Modelled& its, Input& input) {
    const unsigned int kind = input.Below(4);
    if (kind == 3) {
        its.buffer.Append(nullptr, input.Number());
        its.buffer.Insert(nullptr, input.Number(), input.Number());
        MUST(TakeReports() == 2);
        return;
    }
    const std::string bytes = input.Bytes(140);
    if (its.model.WouldBeOdd(bytes.size())) return;
    if (kind == 0) {
        const unsigned int place = input.Number();
        its.buffer.Insert(BytesOf(bytes), SizeOf(bytes), place);
        its.model.Insert(bytes, place);
    } else {
        its.buffer.Append(BytesOf(bytes), SizeOf(bytes));
        its.model.Append(bytes);
    }
}

void PutAt(Modelled& its, Input& input) {
    const bool isAtEnd = input.Below(4) == 0;
    const unsigned int index = isAtEnd ? its.buffer.length : input.Number();
    const unsigned char byte = static_cast<unsigned char>(input.Byte());
    its.buffer.PutAt(index, byte);
    MUST(TakeReports() == (index >= its.model.bytes.size() ? 1 : 0));
    if (index < its.model.bytes.size()) its.model.bytes[index] = static_cast<char>(byte);
    if (index == its.buffer.length && index < its.buffer.capacity) {
        MUST(its.buffer.data[index] == byte);
    }
}

void Write(Modelled& its, Input& input) {
    const std::string bytes = input.Bytes(100);
    const unsigned int position = input.Number();
    const bool fits = !EndsBeyond(position, SizeOf(bytes), its.model.bytes.size());
    MUST(its.buffer.Write(BytesOf(bytes), SizeOf(bytes), position) == fits);
    const bool isReported = !fits || position + bytes.size() == its.model.bytes.size();
    MUST(TakeReports() == (isReported ? 1 : 0));
    if (fits) its.model.bytes.replace(position, bytes.size(), bytes);
}

void Read(const Modelled& its, Input& input) {
    unsigned char bytes[256];
    const unsigned int count = input.Byte();
    const unsigned int position = input.Number();
    const bool fits = !EndsBeyond(position, count, its.model.bytes.size());
    MUST(its.buffer.Read(bytes, count, position) == fits);
    MUST(TakeReports() == (fits ? 0 : 1));
    if (fits)
        MUST(its.model.bytes.compare(position, count, std::string(bytes, bytes + count)) == 0);

    const unsigned int index = input.Number();
    const bool isThere = index < its.model.bytes.size();
    const unsigned char expected = isThere ? static_cast<unsigned char>(its.model.bytes[index])
                                           : static_cast<unsigned char>(0);
    MUST(its.buffer[index] == expected);
    MUST(TakeReports() == (isThere ? 0 : 1));
}

void Truncate(Modelled& its, Input& input) {
    const unsigned int count = input.Number();
    its.buffer.TruncateAfter(count);
    its.model.position = 0;
    if (count <= its.model.bytes.size()) its.model.bytes.resize(count);
}

void Advance(Modelled& its, Input& input) {
    if (input.Below(8) == 0) {
        // A public field, which programs set.
        its.buffer.readPosition = input.Number() % 256;
        its.model.position = its.buffer.readPosition;
    }
    const unsigned int count = input.Number();
    const bool fits = count <= its.model.Left();
    const unsigned char* const place = its.buffer.AdvanceReadContext(count);
    if (fits) its.model.position += count;
    MUST(place == (fits ? its.buffer.data + its.model.position : nullptr));
    MUST(TakeReports() == (fits ? 0 : 1));
}

void Encode(const Modelled& from, Modelled& to) {
    const std::string item = ItemOf(from.model.bytes);
    if (to.model.WouldBeOdd(item.size())) return;
    from.buffer.ToBuffer(to.buffer);
    to.model.Append(item);
}

void Decode(Modelled& from, Modelled& to) {
    const PlainItem item = ItemAt(from.model.bytes, from.model.position);
    to.buffer.FromBuffer(from.buffer);
    from.model.position = item.behind;
    to.model = Model();
    to.model.Append(item.payload);
    MUST(TakeReports() == (item.isWhole ? 0 : 1));
}

void Copy(const Modelled& its) {
    TqBuffer copy(its.buffer);
    const Model model = its.model.Copied();
    MUST(copy.length == its.model.bytes.size() && Counted(copy) == model.bytes);
    MUST(copy.capacity == model.capacity && copy.readPosition == model.position);
    // One of exactly that size takes itself for one without a block, and leaves that to the caller.
    if (its.model.capacity != 64 && copy.capacity == 64) std::free(copy.data);
    const TqBuffer made(BytesOf(its.model.bytes), SizeOf(its.model.bytes));
    Model fresh;
    fresh.Append(its.model.bytes);
    MUST(IsAsModelled(made, fresh));
}

void Assign(const Modelled& from, Modelled& to) {
    if (from.model.capacity != 64 && from.model.bytes.size() == 64) return;
    to.buffer.Assignment(from.buffer);
    to.model = from.model.Copied();
}

void Compare(const Modelled& one, const Modelled& other) {
    MUST(SignOf(one.buffer.Compare(other.buffer)) ==
         SignOf(one.model.bytes.compare(other.model.bytes)));
    MUST(one.buffer.Equals(&other.buffer) == (one.model.bytes == other.model.bytes));
    MUST(TakeReports() == 0);
    TqString text("x");
    one.buffer.ToString(text);
    std::string expected = "x";
    for (const char c : one.model.bytes) expected += c >= ' ' && c <= '~' ? c : '*';
    MUST(Counted(text) == expected);
    MUST(!one.buffer.Equals(nullptr) && !one.buffer.Equals(&text));
    MUST(one.buffer.Compare(text) == -1);
    MUST(TakeReports() == 3);
}

void Step(Modelled& its, Modelled& other, Input& input) {
    switch (input.Below(12)) {
        case 0:
        case 1:
            return Add(its, input);
        case 2:
            return PutAt(its, input);
        case 3:
            return Write(its, input);
        case 4:
            return Read(its, input);
        case 5:
            return Truncate(its, input);
        case 6:
            return Advance(its, input);
        case 7:
            return Encode(input.Below(4) == 0 ? its : other, its);
        case 8:
            return Decode(its, other);
        case 9:
            Copy(its);
            return Compare(its, other);
        case 10:
            return Assign(other, its);
        default:
            its.buffer.Clear();
            its.model = Model();
    }
}

void Fuzz(Input& input) {
    Modelled pair[2];
    for (int steps = 0; steps < 64 && !input.IsEmpty(); ++steps) {
        const unsigned int which = input.Below(2);
        if (pair[which].model.bytes.size() > 4000) {
            pair[which].buffer.Clear();
            pair[which].model = Model();
        }
        Step(pair[which], pair[1 - which], input);
        MUST(IsAsModelled(pair[0].buffer, pair[0].model));
        MUST(IsAsModelled(pair[1].buffer, pair[1].model));
        MUST(TakeReports() == 0);
        Tell(pair[which].buffer.capacity);
    }
    Tell(pair[0].model.bytes);
    Tell(pair[1].model.bytes);
}

const Target target("buffers", Fuzz);

}  // namespace Buffers
