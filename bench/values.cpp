// Numbers, items, identifiers and addresses: this library, and what a program of the standard and
// the C library does instead.

#include <arpa/inet.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "Duty.h"
#include "Floor.h"
#include "TqBuffer.h"
#include "TqHooks.h"
#include "TqIpAddress.h"
#include "TqNumber.h"
#include "TqSnmpOid.h"
#include "TqString.h"

namespace {

template <class String, class Number>
Work NumberToText(unsigned int size) {
    return [size](unsigned int times) {
        String text("");
        for (; times > 0; --times) {
            Number number(firstNumber);
            for (unsigned int i = 0; i < size; ++i) {
                ++number.value;
                Opaque(&number)->ToString(text);
                Keep(text);
            }
        }
    };
}

const RegisterDuty numberOutOwn("number_out", ownName, NumberToText<TqString, TqNumber>);
const RegisterDuty numberOutStated("number_out", floorName,
                                   NumberToText<StatedString, StatedNumber>);

const RegisterDuty numberOutStd("number_out", "snprintf", [](unsigned int size) -> Work {
    return [size](unsigned int times) {
        char text[16];
        for (; times > 0; --times) {
            int number = firstNumber;
            for (unsigned int i = 0; i < size; ++i) {
                ++number;
                std::snprintf(text, sizeof text, "%d", number);
                Keep(text);
            }
        }
    };
});

const char numberText[] = "1234567";

template <class Number>
Work NumberFromText(unsigned int size) {
    return [size](unsigned int times) {
        Number number(0);
        for (; times > 0; --times) {
            for (unsigned int i = 0; i < size; ++i) {
                number.FromString(Opaque(numberText));
                Keep(number);
            }
        }
    };
}

const RegisterDuty numberInOwn("number_in", ownName, NumberFromText<TqNumber>);
const RegisterDuty numberInStated("number_in", floorName, NumberFromText<StatedNumber>);

const RegisterDuty numberInStd("number_in", "strtol", [](unsigned int size) -> Work {
    return [size](unsigned int times) {
        for (; times > 0; --times) {
            for (unsigned int i = 0; i < size; ++i) {
                const long number = std::strtol(Opaque(numberText), nullptr, 10);
                Keep(number);
            }
        }
    };
});

// A message of pairs of a number and a text of 20 characters, written and read back.
const RegisterDuty itemOwn("item", ownName, [](unsigned int size) -> Work {
    return [size](unsigned int times) {
        TqNumber number(firstNumber);
        TqString text(Letters(20).c_str());
        TqBuffer buffer;
        for (; times > 0; --times) {
            buffer.TruncateAfter(0);
            for (unsigned int i = 0; i < size; ++i) {
                number.ToBuffer(buffer);
                text.ToBuffer(buffer);
            }
            for (unsigned int i = 0; i < size; ++i) {
                number.FromBuffer(buffer);
                text.FromBuffer(buffer);
                Keep(number);
                Keep(text);
            }
        }
    };
});

std::size_t PrintPair(char* to, std::size_t room, int number, const char* text) {
    char digits[16];
    const int length = std::snprintf(digits, sizeof digits, "%d", number);
    return static_cast<std::size_t>(std::snprintf(to, room, "%05d%s%05u%s", length, digits,
                                                  static_cast<unsigned int>(std::strlen(text)),
                                                  text));
}

unsigned int LengthAt(const char* from) {
    char digits[6] = {0};
    std::memcpy(digits, from, 5);
    return static_cast<unsigned int>(std::atoi(digits));
}

const RegisterDuty itemStd("item", "snprintf + atoi", [](unsigned int size) -> Work {
    return [size](unsigned int times) {
        const std::string text = Letters(20);
        std::vector<char> message(size * 48 + 1);
        int number = firstNumber;
        char read[32];
        for (; times > 0; --times) {
            char* to = message.data();
            for (unsigned int i = 0; i < size; ++i) to += PrintPair(to, 48, number, text.c_str());
            const char* from = message.data();
            for (unsigned int i = 0; i < size; ++i) {
                number = std::atoi(from + 5);
                from += 5 + LengthAt(from);
                const unsigned int length = LengthAt(from);
                std::memcpy(read, from + 5, length);
                read[length] = '\0';
                from += 5 + length;
                Keep(number);
                Keep(read);
            }
        }
    };
});

const RegisterDuty oidInOwn("oid_in", ownName, [](unsigned int size) -> Work {
    return [text = IdentifierText(size)](unsigned int times) {
        for (; times > 0; --times) {
            const TqSnmpOid oid(Opaque(text.c_str()));
            Keep(oid);
        }
    };
});

const RegisterDuty oidInStd("oid_in", "strtoul + std::vector", [](unsigned int size) -> Work {
    return [text = IdentifierText(size)](unsigned int times) {
        for (; times > 0; --times) {
            std::vector<unsigned int> numbers;
            const char* from = Opaque(text.c_str());
            while (*from != '\0') {
                char* end;
                numbers.push_back(static_cast<unsigned int>(std::strtoul(from, &end, 10)));
                from = *end == '.' ? end + 1 : end;
            }
            Keep(numbers);
        }
    };
});

const RegisterDuty oidCompareOwn("oid_compare", ownName, [](unsigned int size) -> Work {
    const std::string text = IdentifierText(size);
    TqSnmpOid other(text.c_str());
    other.Increment();
    return [a = TqSnmpOid(text.c_str()), b = other](unsigned int times) {
        for (; times > 0; --times) {
            const int order = a.Compare(b);
            Keep(order);
        }
    };
});

const RegisterDuty oidCompareStated("oid_compare", floorName, [](unsigned int size) -> Work {
    const std::vector<unsigned long> numbers = Numbers(size);
    std::vector<unsigned int> values(numbers.begin(), numbers.end());
    const StatedIdentifier first(values);
    ++values.back();
    return [first, other = StatedIdentifier(values)](unsigned int times) {
        for (; times > 0; --times) {
            const int order = Opaque(&first)->Compare(*Opaque(&other));
            Keep(order);
        }
    };
});

int CompareStd(const std::vector<unsigned int>& a, const std::vector<unsigned int>& b) {
    const auto difference = std::mismatch(a.begin(), a.end(), b.begin(), b.end());
    if (difference.second == b.end()) return difference.first != a.end();
    if (difference.first == a.end()) return -1;
    return *difference.first < *difference.second ? -1 : 1;
}

const RegisterDuty oidCompareStd("oid_compare", "std::mismatch", [](unsigned int size) -> Work {
    const std::vector<unsigned long> numbers = Numbers(size);
    const std::vector<unsigned int> first(numbers.begin(), numbers.end());
    std::vector<unsigned int> other = first;
    ++other.back();
    return [first, other](unsigned int times) {
        for (; times > 0; --times) {
            const int order = CompareStd(*Opaque(&first), *Opaque(&other));
            Keep(order);
        }
    };
});

const RegisterDuty oidOutOwn("oid_out", ownName, [](unsigned int size) -> Work {
    return [oid = TqSnmpOid(IdentifierText(size).c_str())](unsigned int times) {
        TqString text;
        for (; times > 0; --times) {
            oid.ToString(text);
            Keep(text);
        }
    };
});

const RegisterDuty oidOutStd("oid_out", "std::to_string", [](unsigned int size) -> Work {
    return [numbers = Numbers(size)](unsigned int times) {
        std::string text;
        for (; times > 0; --times) {
            text.clear();
            for (const unsigned long number : numbers) {
                if (!text.empty()) text += '.';
                text += std::to_string(static_cast<unsigned int>(number));
            }
            Keep(text);
        }
    };
});

const unsigned int firstAddress = 0xC0A80A01;

const RegisterDuty addressOwn("address", ownName, [](unsigned int size) -> Work {
    return [size](unsigned int times) {
        TqString text;
        for (; times > 0; --times) {
            TqIpAddress address(firstAddress);
            for (unsigned int i = 0; i < size; ++i) {
                ++address.address;
                address.toString(text);
                Keep(text);
            }
        }
    };
});

const RegisterDuty addressStd("address", "inet_ntop", [](unsigned int size) -> Work {
    return [size](unsigned int times) {
        char text[INET_ADDRSTRLEN];
        for (; times > 0; --times) {
            unsigned int number = firstAddress;
            for (unsigned int i = 0; i < size; ++i) {
                ++number;
                const in_addr address = {htonl(number)};
                inet_ntop(AF_INET, &address, text, sizeof text);
                Keep(text);
            }
        }
    };
});

}  // namespace
