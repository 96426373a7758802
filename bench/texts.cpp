// Strings: this library and the standard library.

#include <cstdlib>
#include <cstring>
#include <string>

#include "Duty.h"
#include "Floor.h"
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

const RegisterDuty makeOwn("text", ownName, Make<TqString>);
const RegisterDuty makeStd("text", "std::string", Make<std::string>);
const RegisterDuty makeStated("text", floorName, Make<StatedString>);
const RegisterDuty copyOwn("text_copy", ownName, Copy<TqString>);
const RegisterDuty copyStd("text_copy", "std::string", Copy<std::string>);
const RegisterDuty copyStated("text_copy", floorName, Copy<StatedString>);
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
            StatedString string("");
            for (unsigned int i = 0; i < size; ++i) {
                string.AppendChar('x');
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
