// What std::format makes of the library's values. Prints what is wrong and fails.
#include <cstdio>
#include <string>

#include "TqStd.h"

namespace {

int failures = 0;

void Expect(const char* expected, const std::string& formatted) {
    if (formatted == expected) return;
    std::printf("'%s' and not '%s'\n", formatted.c_str(), expected);
    ++failures;
}

}  // namespace

int main() {
    Expect("eth0 on 10.0.0.1", std::format("{} on {}", TqString("eth0"), TqIpAddress(0x0A000001)));
    Expect("4000000000", std::format("{}", TqCounter(4000000000u)));
    Expect("True", std::format("{}", TqBoolean(1)));
    Expect("[   -7]", std::format("[{:>5}]", TqNumber(-7)));
    Expect("1.3.6.1", std::format("{}", TqSnmpOid("1.3.6.1")));
    return failures != 0;
}
