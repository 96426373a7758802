// The examples in the headers' comments, line by line as they stand there, each where it means
// something. What a line says of a result is checked below it; a table of results is a comment here
// too. examples.sh finds what has no place here.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <map>
#include <string>

#include "Tq.h"
#include "TqDownload.h"
#include "TqReportSentence.h"
#include "TqStd.h"
#include "TqTftpText.h"

static int failures;
static int reports;

static void Check(bool holds, const char* what, int line) {
    if (holds) return;
    std::printf("line %d: %s\n", line, what);
    ++failures;
}

#define CHECK(condition) Check(condition, #condition, __LINE__)

static void CountReport(const char*, int) {
    ++reports;
}

// From TqDeclareClass.h.
namespace declared {

class Monitor : public TqBaseObject {
    TQ_DECLARE_CLASS(Monitor)  // what follows is private
public:
    Monitor() : interval(0) {}
    Monitor(const char* port, int seconds) : name(port), interval(seconds) {}
    TqString name;
    int interval;
};

TQ_IMPLEMENT_CLASS(Monitor, TqBaseObject)

}  // namespace declared

using declared::Monitor;

class Port : public TqBaseObject {
    TQ_DECLARE_CLASS(Port)
public:
    explicit Port(int portNumber = 0) : number(portNumber), polls(0) {}
    void Poll() { ++polls; }
    int number;
    int polls;
    TqCallbackChain changed;
};

TQ_IMPLEMENT_CLASS(Port, TqBaseObject)

static void Classes() {
    TqRegisterClass<Monitor>();
    TqRegisterClass<Port>();
    const TqClassRegistry* const registry = TqClassRegistry::GetRegistry();
    {
        // clang-format off
        TqRef<Monitor> monitor(
            static_cast<Monitor*>(TqClassRegistry::GetRegistry()->NewObject("Monitor")));
        // clang-format on
        CHECK(monitor->ClassInfo() == Monitor::MonitorInfo);
    }
    TqBaseObject* const object = registry->NewObject("Port");
    const TqRef<TqBaseObject> held(object);
    if (Port* port = TqCast<Port>(object)) port->Poll();
    TqRef<Port> made(TqCast<Port>(registry->NewObject("Port")));
    CHECK(TqCast<Port>(held)->polls == 1 && made && !TqCast<Monitor>(held));
}

static void Handles() {
    {
        TqRef<Monitor> monitor(new Monitor);  // count 1
        Monitor* const object = monitor.Get();
        CHECK(object->refCount == 1);
        TqRef<Monitor> other(monitor);  // count 2
        CHECK(object->refCount == 2);
        monitor = nullptr;  // count 1
        CHECK(object->refCount == 1);
    }
    TqRefList<Port> ports;
    const TqRef<Monitor> monitor = TqMakeRef<Monitor>("eth0", 5);
    ports.Append(TqMakeRef<Port>(7).Get());  // the list keeps a reference of its own
    CHECK(monitor->interval == 5 && ports.First()->refCount == 1);
    for (Port* port : ports) port->Poll();
    CHECK(ports.First()->polls == 1);
}

struct Change {
    void Apply() { isApplied = true; }
    bool isApplied;
};

static void Lists() {
    Change one = {false};
    TqPtrList<Change> changes;
    changes.Append(&one);
    for (Change* change : changes) change->Apply();
    CHECK(one.isApplied);

    TqString added("printed by an example");
    TqSortedStringList names;
    names.Add(&added);
    for (const TqString* name : names) std::puts(name->data);
}

struct Console {
    void Show(TqBaseObject* source) { shown = source; }
    TqBaseObject* shown;
};

static void TellOperator(TqFunctionCb* callback, TqBaseObject* source, TqCallbackData*) {
    static_cast<Console*>(callback->UserData())->Show(source);
}

static void Callbacks() {
    Console console = {nullptr};
    int changes = 0;
    TqRef<Port> held = TqMakeRef<Port>();
    {
        TqCallbackChain chain;
        TqCallableCb tell([&](TqBaseObject* source, TqCallbackData*) { console.Show(source); });
        TqCallableCb count([&] { ++changes; });
        TqCallbackGuard telling(chain, tell), counting(chain, count);
        chain.Invoke(held.Get(), nullptr);
        CHECK(console.shown == held.Get() && changes == 1);
    }
    {
        Port* const port = held.Get();
        TqCallbackData change;
        TqFunctionCb tell(TellOperator, &console);
        TqCallbackChain chain;
        console.shown = nullptr;
        chain.Append(&tell);
        chain.Invoke(port, &change);
        chain.Remove(&tell);
        CHECK(console.shown == port && chain.count == 0);
    }
    Port& port = *held;
    {
        TqCallableCb count([&] { ++changes; });
        const TqCallbackGuard counting(port.changed, count);
        port.changed.Invoke(&port, nullptr);
    }
    CHECK(changes == 2 && port.changed.count == 0);
}

static bool Complain(const TqBuffer&) {
    return false;
}

static bool ReadPort(TqBuffer& buffer) {
    TqString name;
    TqCounter octets;
    bool isUp;
    if (!TqRead(buffer, name, octets, isUp)) return Complain(buffer);
    return isUp && octets.count == 42 && std::strcmp(name.data, "eth0") == 0;
}

static const char* complaint;

static void Complain(const char*, const char* stopped) {
    complaint = stopped;
}

static std::string Bytes(const TqBuffer& buffer) {
    return std::string(reinterpret_cast<const char*>(buffer.data), buffer.length);
}

static void Items() {
    {
        TqNumber number;
        TqString string;
        TqBuffer buffer;
        TqNumber(42).ToBuffer(buffer);    // 0000242
        TqString("ok").ToBuffer(buffer);  // 00002ok
        CHECK(Bytes(buffer) == "000024200002ok");
        number.FromBuffer(buffer);  // 42
        string.FromBuffer(buffer);  // ok
        CHECK(number.value == 42 && std::strcmp(string.data, "ok") == 0);
    }
    TqBuffer buffer;
    const TqCounter counter(1234567);
    TqWrite(buffer, "eth0", counter, 42, true);  // 00004eth0 00007 1234567 0000242 00004True
    CHECK(Bytes(buffer) == "00004eth0000071234567000024200004True");
    TqBuffer port;
    TqWrite(port, "eth0", TqCounter(42), true);
    CHECK(ReadPort(port) && !ReadPort(port));

    const char* const word = "15o0";
    int mtu;
    const char* stopped;
    if (!TqParse(word, mtu, &stopped)) Complain(word, stopped);
    CHECK(std::strcmp(complaint, "o0") == 0);
}

// What the README says of its program in shorter words.
static void Shorter() {
    TqBuffer packet;
    TqNumber received;
    TqWrite(packet, 42);
    CHECK(TqRead(packet, received));
    std::puts(TqText(received).data);
    CHECK(received.value == 42);
}

static bool isUp(const Port* port) {
    return port->number == 7;
}

static void Texts() {
    const TqCounter counter(5);
    const TqIpAddress address("192.0.2.1");
    TqPtrList<char> names;
    std::puts(TqText(counter).data);
    names.Append(TqText(address).data);
    CHECK(names.count == 1);

    Port seven(7);
    TqPtrList<Port> list;
    list.Append(&seven);
    std::cout << counter << " on " << address << '\n';
    std::map<TqString, TqRef<Port>> ports;
    const auto found = std::find_if(list.begin(), list.end(), isUp);
    CHECK(*found == &seven && ports.empty());
}

static int Number(const char* text) {
    TqNumber number;
    number.FromString(text);
    return number.value;
}

static bool Flag(const char* text) {
    return TqBoolean(text).state == 1;
}

static std::string Text(float number) {
    TqString text;
    TqFloat(number).ToString(text);
    return text.data;
}

static int Compared(float one, float other) {
    return TqFloat(one).Compare(TqFloat(other));
}

static bool Date(int month, const char* text) {
    tm time = tm();
    time.tm_mon = month - 1;
    time.tm_mday = 5;
    time.tm_year = 124;
    time.tm_hour = 6;
    time.tm_min = 7;
    time.tm_sec = 8;
    return std::strcmp(TqText(TqDateTime(&time)).data, text) == 0;
}

static void Tables() {
    // "-42" -42;  "12abc" 12;  " 5" 0;  "0x1F" 0;  "4294967296" 0;  "-Yes" 1;  "Off" 0
    CHECK(Number("-42") == -42 && Number("12abc") == 12 && Number(" 5") == 0);
    CHECK(Number("0x1F") == 0 && Number("4294967296") == 0);
    CHECK(Number("-Yes") == 1 && Number("Off") == 0);
    // "2" true;  "-1" false;  "open" true;  "On" true;  "no" false
    CHECK(Flag("2") && !Flag("-1") && Flag("open") && Flag("On") && !Flag("no"));
    // 3.75f "3.";  -0.5f "0.";  -12.5f "-12.";  12345678.0f "12345678";  1e10f "2147483647"
    CHECK(Text(3.75f) == "3." && Text(-0.5f) == "0." && Text(-12.5f) == "-12.");
    CHECK(Text(12345678.0f) == "12345678" && Text(1e10f) == "2147483647");
    // 5.0f against 2.0f: 3;  1.5f against 1.0f: 0;  -3.0f against 1.0f: -4
    CHECK(Compared(5.0f, 2.0f) == 3 && Compared(1.5f, 1.0f) == 0 && Compared(-3.0f, 1.0f) == -4);
    // 5 March 2024 06:07:08 "02/05/0124 06:07:08";  5 January 2024 06:07:08 "06:07:08"
    CHECK(Date(3, "02/05/0124 06:07:08") && Date(1, "06:07:08"));
    // StringICompare("abc", "ABD") == -1;  StringICompare("ab", "AB") == 0;
    CHECK(TqString::StringICompare("abc", "ABD") == -1);
    CHECK(TqString::StringICompare("ab", "AB") == 0);
}

static bool Address(const char* text, unsigned int number) {
    const TqIpAddress address(text);
    return address.valid == 1 && address.address == number;
}

static bool NoAddress(const char* text) {
    return TqIpAddress(text).valid == 0;
}

static bool Mask(unsigned int number) {
    return TqNetworkMask(number).valid == 1;
}

static void Addresses() {
    // "10.0.0.1", " 10. 0. 0.+1", "10.0.0.1xyz" 10.0.0.1;  "1.2.3.4.5" 1.2.3.4
    CHECK(Address("10.0.0.1", 0x0A000001) && Address(" 10. 0. 0.+1", 0x0A000001));
    CHECK(Address("10.0.0.1xyz", 0x0A000001) && Address("1.2.3.4.5", 0x01020304));
    // "256.1.1.1", "1.2.3", "1.2.3.-4", "1 .2.3.4", "" no address
    CHECK(NoAddress("256.1.1.1") && NoAddress("1.2.3") && NoAddress("1.2.3.-4"));
    CHECK(NoAddress("1 .2.3.4") && NoAddress(""));
    // 0, 0x80000000, 0xFFFFFF00, 0xFFFFFFFE, 0x7FFFFFFF masks;  0xFFFFFFFF, 1, 0xFF00FF00 none
    CHECK(Mask(0) && Mask(0x80000000) && Mask(0xFFFFFF00) && Mask(0xFFFFFFFE) && Mask(0x7FFFFFFF));
    CHECK(!Mask(0xFFFFFFFF) && !Mask(1) && !Mask(0xFF00FF00));
}

static std::string Oid(const char* text) {
    const TqSnmpOid oid(text);
    std::string numbers;
    for (unsigned int i = 0; i < oid.count; ++i) {
        numbers += (i > 0 ? "," : "") + std::to_string(oid.values[i]);
    }
    return numbers;
}

static void Identifiers() {
    // "1.3.6" 1,3,6;  ".1.3" 0,1,3 reported;  "1..3" 1,0,3;  "1.3." 1,3,0;  "1.a.3" 1,0,0,3
    // reported
    reports = 0;
    CHECK(Oid("1.3.6") == "1,3,6" && Oid("1..3") == "1,0,3" && Oid("1.3.") == "1,3,0");
    CHECK(reports == 0);
    CHECK(Oid(".1.3") == "0,1,3" && reports == 1);
    CHECK(Oid("1.a.3") == "1,0,0,3" && reports > 1);
    // "1.3.6.1" with "1.3.6.1.5" or "9.3.6.1.5": true;  with "1.3.6": false
    const TqSnmpOid table("1.3.6.1");
    CHECK(table.SameTable(TqSnmpOid("1.3.6.1.5")) && table.SameTable(TqSnmpOid("9.3.6.1.5")));
    CHECK(!table.SameTable(TqSnmpOid("1.3.6")));
}

// From TqDataType.h: a value type of an application's own, as far as the example goes.
class Celsius : public TqNumber {
public:
    short TypeId() const override;
    static short typeId;
};

short Celsius::typeId = 0;
short Celsius::TypeId() const {
    TqDataType::NextId(&typeId);
    return typeId;
}

static bool Says(const TqString& text, const char* expected) {
    return std::strcmp(text.data, expected) == 0;
}

static int lineOfReport;

static void NoteLine(const char*, int line) {
    lineOfReport = line;
}

static void Sentences() {
    // TqTftpText(0x811)                     // the server has no such file (error 1)
    CHECK(Says(TqTftpText(0x811), "the server has no such file (error 1)"));
    // TqTftpText(0x811, "Not here")         // the server has no such file (error 1: Not here)
    CHECK(Says(TqTftpText(0x811, "Not here"), "the server has no such file (error 1: Not here)"));
    // TqTftpText(TqDownload::silent)        // no new block in time
    CHECK(Says(TqTftpText(TqDownload::silent), "no new block in time"));
    // TqTftpText(TqDownload::late, "", 60)  // not complete after 60 seconds
    CHECK(Says(TqTftpText(TqDownload::late, "", 60), "not complete after 60 seconds"));

    const TqAssertCb before = TqRegisterAssertCb(NoteLine);
    TqBuffer().Append(nullptr, 1);
    TqRegisterAssertCb(before);
    // TqBuffer::Append: `bytes` is null; nothing is appended
    CHECK(Says(TqReportSentence("TqBuffer", lineOfReport),
               "TqBuffer::Append: `bytes` is null; nothing is appended"));
}

static unsigned int lines;

static void Use(const char*) {
    ++lines;
}

static void Files() {
    TqFile file;
    if (file.Open("/proc/net/dev", TqFile::read)) {
        while (char* line = file.NextLine()) Use(line);
        file.Close();
    }
    CHECK(lines > 2);
}

// Called only where there is a network: the address is one of examples.
static void Download() {
    TqDownload download("192.0.2.1", "config/router");
    download.deadline = 60;
    TqBuffer content;
    if (download.ToBuffer(content) != TqDownload::complete) {
        TqString reason;
        download.AppendText(reason);
        std::fprintf(stderr, "config/router: %s\n", reason.data);
    }
}

int main(int count, char**) {
    TqRegisterAssertCb(CountReport);
    Classes();
    Handles();
    Lists();
    Callbacks();
    Items();
    Shorter();
    Texts();
    Tables();
    Addresses();
    Identifiers();
    CHECK(Celsius().TypeId() >= 12);
    Sentences();
    Files();
    if (count > 1) Download();
    return failures == 0 ? 0 : 1;
}
