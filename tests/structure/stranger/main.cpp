// A program that knows the library from its installed package only.
#include <TqNumber.h>
#include <TqString.h>

#include <cstdio>

int main() {
    TqNumber number;
    number.FromString("42");
    TqString text;
    number.ToString(text);
    std::puts(text.data);
    return 0;
}
