#include "Floor.h"

#include <algorithm>
#include <iterator>

StatedString::StatedString(const char* text) {
    Reserve(std::strlen(text));
    std::memcpy(data, text, length + 1);
}

// As many characters as are counted: the text up to its first NUL, and NULs.
StatedString::StatedString(const StatedString& other) {
    Reserve(other.length);
    std::memcpy(data, other.data, length + 1);
    const std::size_t used = std::strlen(data);
    if (used < length) std::memset(data + used, 0, length - used);
}

StatedString::~StatedString() {
    if (data != inside) std::free(data);
}

void StatedString::Reserve(std::size_t count) {
    std::memset(inside, 0, sizeof inside);
    data = inside;
    capacity = 32;
    length = static_cast<unsigned int>(count);
    if (count > 31) {
        data = static_cast<char*>(Found(std::malloc(count + 1)));
        capacity = length + 1;
    }
}

// All that was used is NULs again.
void StatedString::Empty() {
    std::memset(data, 0, length);
    length = 0;
}

void StatedString::AppendNumber(unsigned int value) {
    char digits[12];
    char* begin = std::end(digits);
    for (; value >= 10; value /= 10) *--begin = static_cast<char>('0' + value % 10);
    *--begin = static_cast<char>('0' + value);
    const unsigned int count = static_cast<unsigned int>(std::end(digits) - begin);
    while (length + count >= capacity) Grow();
    std::memcpy(data + length, begin, count);
    length += count;
    data[length] = '\0';
}

void StatedString::Grow() {
    capacity = (length + 17) / 16 * 16;
    if (data != inside) {
        data = static_cast<char*>(Found(std::realloc(data, capacity)));
        return;
    }
    data = static_cast<char*>(Found(std::malloc(capacity)));
    std::memcpy(data, inside, sizeof inside);
}

StatedNumber::~StatedNumber() = default;

unsigned int StatedNumber::Value() const {
    return value;
}

void StatedNumber::ToString(StatedString& out) const {
    out.Empty();
    out.AppendNumber(Value());
}

void StatedNumber::FromString(const char* text) {
    const bool isNegative = *text == '-';
    if (isNegative || *text == '+') ++text;
    value = 0;
    for (; *text >= '0' && *text <= '9'; ++text) {
        value = value * 10 + static_cast<unsigned int>(*text - '0');
    }
    if (isNegative) value = 0 - value;
}

StatedObject::StatedObject() : self(this) {}

StatedObject::~StatedObject() {
    ReportIf(count != 0, __LINE__);
    ReportIf(self != this, __LINE__);
    stamp = 0;
    self = nullptr;
    asm volatile("" : : "r"(this) : "memory");
}

StatedHandle::StatedHandle(StatedObject* taken) {
    Take(taken);
}

StatedHandle::StatedHandle(const StatedHandle& other) {
    ReportIf(other.mutex.Lock() != 0, __LINE__);
    Take(other.object);
    ReportIf(other.mutex.Unlock() != 0, __LINE__);
}

StatedHandle::~StatedHandle() {
    Take(nullptr);
}

__attribute__((noinline)) void StatedHandle::Take(StatedObject* taken) {
    ReportIf(mutex.Lock() != 0, __LINE__);
    if (object != nullptr) {
        ReportIf(object->self != object, __LINE__);
        ReportIf(object->stamp != stamp, __LINE__);
    }
    if (taken != object) {
        const unsigned int newStamp = taken == nullptr ? 0 : taken->stamp;
        StatedObject::Count(taken, newStamp);
        StatedObject::Uncount(object, stamp);
        stamp = newStamp;
        object = taken;
    }
    ReportIf(mutex.Unlock() != 0, __LINE__);
}

StatedList::StatedList()
    : capacity(16), count(0), slots(static_cast<void**>(Found(std::malloc(Size())))), walkDepth(0) {
    slots[0] = nullptr;
}

StatedList::~StatedList() {
    ReportIf(walkDepth != 0, __LINE__);
    std::free(slots);
    slots = nullptr;
    asm volatile("" : : "r"(this) : "memory");
}

__attribute__((noinline)) void StatedList::Grow() {
    capacity += 16;
    slots = static_cast<void**>(Found(std::realloc(slots, Size())));
}

void StatedCallback::Invoke(void* source, void* data) {
    if (function != nullptr) function(this, source, data);
}

void StatedChain::Invoke(void* source, void* data) {
    struct Walk {
        explicit Walk(unsigned int& walks) : depth(walks) { ++depth; }
        ~Walk() { --depth; }
        unsigned int& depth;
    };
    const Walk walk(walkDepth);
    for (std::size_t i = 0; i < callbacks.size(); ++i) callbacks[i]->Invoke(source, data);
}

StatedIdentifier::~StatedIdentifier() = default;

short StatedIdentifier::typeId = 12;

short StatedIdentifier::TypeId() const {
    return typeId;
}

int StatedIdentifier::Compare(const StatedIdentifier& other) const {
    ReportIf(other.TypeId() != TypeId(), __LINE__);
    const std::size_t size = std::min(values.size(), other.values.size());
    for (std::size_t i = 0; i < size; ++i) {
        if (values[i] != other.values[i]) return values[i] < other.values[i] ? -1 : 1;
    }
    return values.size() < other.values.size() ? -1 : values.size() > size;
}

char StatedFile::line[1024];

StatedFile::~StatedFile() {
    std::fclose(stream);
}

char* StatedFile::Next() {
    if (stream == nullptr) return nullptr;
    char* read = std::fgets(line, sizeof line, stream);
    if (read == nullptr) atEnd = true;
    return read;
}
