// Strings: this library and the standard library.

#include <cstdlib>
#include <cstring>
#include <string>

#include "Duty.h"
#include "TqString.h"

namespace {

template <class String>
Work Make(unsigned int size) {
    return [text = Letters(size)](unsigned int times) {
        for (; times > 0; --times) {
            const String string(Opaque(text.c_str()));
            Keep(string);
        }
    };
}

template <class String>
Work Copy(unsigned int size) {
    return [text = String(Letters(size).c_str())](unsigned int times) {
        for (; times > 0; --times) {
            const String copy(*Opaque(&text));
            Keep(copy);
        }
    };
}

template <class String>
Work Assign(unsigned int size) {
    return [text = Letters(size)](unsigned int times) {
        String string;
        for (; times > 0; --times) {
            string = Opaque(text.c_str());
            Keep(string);
        }
    };
}

// The storage of a string: an area of 33 bytes inside, cleared, and a block for what is longer,
// which grows to multiples of 16. Its constructors and its destructor are functions.
class Stated {
public:
    __attribute__((noinline)) explicit Stated(const char* text) {
        Reserve(std::strlen(text));
        std::memcpy(data, text, length + 1);
    }
    // As many characters as are counted: the text up to its first NUL, and NULs.
    __attribute__((noinline)) Stated(const Stated& other) {
        Reserve(other.length);
        std::memcpy(data, other.data, length + 1);
        const std::size_t used = std::strlen(data);
        if (used < length) std::memset(data + used, 0, length - used);
    }
    __attribute__((noinline)) virtual ~Stated() {
        if (data != inside) std::free(data);
    }

    void Append(char c) {
        if (length + 1 >= capacity) Grow();
        data[length++] = c;
        data[length] = '\0';
    }

private:
    void Reserve(std::size_t count) {
        std::memset(inside, 0, sizeof inside);
        data = inside;
        capacity = 32;
        length = static_cast<unsigned int>(count);
        if (count > 31) {
            data = static_cast<char*>(std::malloc(count + 1));
            capacity = length + 1;
        }
    }

    __attribute__((noinline)) void Grow() {
        capacity = (length + 17) / 16 * 16;
        if (data != inside) {
            data = static_cast<char*>(std::realloc(data, capacity));
            return;
        }
        data = static_cast<char*>(std::malloc(capacity));
        std::memcpy(data, inside, sizeof inside);
    }

    char* data;
    unsigned int length;
    unsigned int capacity;
    char inside[33];
};

const RegisterDuty makeOwn("text", ownName, Make<TqString>);
const RegisterDuty makeStd("text", "std::string", Make<std::string>);
const RegisterDuty makeStated("text", floorName, Make<Stated>);
const RegisterDuty copyOwn("text_copy", ownName, Copy<TqString>);
const RegisterDuty copyStd("text_copy", "std::string", Copy<std::string>);
const RegisterDuty copyStated("text_copy", floorName, Copy<Stated>);
const RegisterDuty assignOwn("text_assign", ownName, Assign<TqString>);
const RegisterDuty assignStd("text_assign", "std::string", Assign<std::string>);

const RegisterDuty appendOwn("append_char", ownName, [](unsigned int size) -> Work {
    return [size](unsigned int times) {
        for (; times > 0; --times) {
            TqString string;
            for (unsigned int i = 0; i < size; ++i) {
                string.AppendChar('x');
                Keep(string);
            }
        }
    };
});

const RegisterDuty appendStated("append_char", floorName, [](unsigned int size) -> Work {
    return [size](unsigned int times) {
        for (; times > 0; --times) {
            Stated string("");
            for (unsigned int i = 0; i < size; ++i) {
                string.Append('x');
                Keep(string);
            }
        }
    };
});

const RegisterDuty appendStd("append_char", "std::string", [](unsigned int size) -> Work {
    return [size](unsigned int times) {
        for (; times > 0; --times) {
            std::string string;
            for (unsigned int i = 0; i < size; ++i) {
                string.push_back('x');
                Keep(string);
            }
        }
    };
});

}  // namespace
