// Compiled with flags that allow a compiler to suppose that there is nothing but numbers. Prints
// what came out otherwise and fails.

#include <cstdio>
#include <cstring>

#include "TqFloat.h"
#include "TqHooks.h"
#include "TqString.h"

namespace {

int failures = 0;

void Expect(const char* what, bool holds) {
    if (holds) return;
    std::printf("came out otherwise: %s\n", what);
    ++failures;
}

// By its bits: the compiler may not know what these are.
TqFloat FloatOf(unsigned int bits) {
    const volatile unsigned int hidden = bits;
    const unsigned int seen = hidden;
    TqFloat number;
    std::memcpy(&number.value, &seen, sizeof seen);
    return number;
}

bool ShowsAs(const TqFloat& number, const char* text) {
    TqString shown;
    number.ToString(shown);
    return std::strcmp(shown.data, text) == 0;
}

}  // namespace

int main() {
    const TqFloat nan = FloatOf(0x7FC00000), otherNan = FloatOf(0xFFC00001);
    const TqFloat infinity = FloatOf(0x7F800000), minusInfinity = FloatOf(0xFF800000);
    const TqFloat zero = FloatOf(0), minusZero = FloatOf(0x80000000), two = FloatOf(0x40000000);

    Expect("a NaN equals nothing",
           !nan.Equals(&nan) && !nan.Equals(&otherNan) && !nan.Equals(&two) && !two.Equals(&nan));
    Expect("a NaN differs", nan.DoesNotEqual(&nan));
    Expect("0 equals -0", zero.Equals(&minusZero) && minusZero.Equals(&zero));
    Expect("an infinity equals itself", infinity.Equals(&infinity));
    Expect("the infinities differ", !infinity.Equals(&minusInfinity));
    Expect("2 equals 2 and not 0", two.Equals(&two) && !two.Equals(&zero));

    Expect("a NaN shows as 0", ShowsAs(nan, "0.") && ShowsAs(otherNan, "0."));
    Expect("an infinity shows as the end",
           ShowsAs(infinity, "2147483647") && ShowsAs(minusInfinity, "-2147483648"));
    Expect("a NaN compares as 0", nan.Compare(two) == 0 && two.Compare(nan) == 0);
    Expect("infinities of one sign compare as 0", infinity.Compare(infinity) == 0);
    Expect("infinities compare as the end", infinity.Compare(minusInfinity) == 2147483647 &&
                                                zero.Compare(infinity) == -2147483647 - 1);

    TqFloat parsed;
    parsed.FromString("nan");
    Expect("\"nan\" is parsed", !parsed.Equals(&parsed) && ShowsAs(parsed, "0."));
    parsed.FromString("-inf");
    Expect("\"-inf\" is parsed", parsed.Equals(&minusInfinity));
    TqString appended;
    appended.AppendFloat(nan.value, 2);
    Expect("a NaN is appended", std::strcmp(appended.data, "nan") == 0);
    return failures == 0 ? 0 : 1;
}
