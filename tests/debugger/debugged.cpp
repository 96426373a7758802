// debugged FOLDER [abort]
//
// Builds values of each kind, sound ones and broken ones, and calls LookHere for a debugger to stop
// there. Before each stop it writes into FOLDER what the debugger is to be asked, asked.1 and so
// on, and what it has to say, expected.1. The last stop is followed by the end, or by abort().

#include <arpa/inet.h>
#include <pthread.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>
#include <vector>

#include "OwnNetwork.h"
#include "Session.h"
#include "Tq.h"
#include "TqCallableCb.h"

// The clock of the TFTP client stands still.
extern "C" int gettimeofday(timeval* now, void*) noexcept {
    now->tv_sec = 1000;
    now->tv_usec = 0;
    return 0;
}

class Port : public TqBaseObject {
    TQ_DECLARE_CLASS(Port)
public:
    int number = 0;
};

namespace fast {

class FastPort : public Port {
    TQ_DECLARE_CLASS(FastPort)
};

TQ_IMPLEMENT_CLASS(FastPort, Port)

}  // namespace fast

TQ_IMPLEMENT_CLASS(Port, TqBaseObject)

void LookHere() {}

void OnLink(TqFunctionCb*, TqBaseObject*, TqCallbackData*) {}

namespace {

Session* session;

// Registered: Port and FastPort and, as ancestors, nobody. A plain callback is no class of the
// registry, and counts for the root.
struct Objects {
    Port ports[2];
    fast::FastPort fastPorts[3];
    TqFunctionCb callback{OnLink, nullptr};
};

void ShowClasses() {
    session->Command("tq classes", {"There is no registry yet."});
    session->Stop();

    TqRegisterClass<fast::FastPort>();
    TqRegisterClass<Port>();
    const Objects objects;
    // The registry, its list, the three descriptors and the callback.
    session->Command("tq classes", {"TqBaseObject: 6", "  Port: 2", "    FastPort: 3"});
    session->Command("output *TqClassRegistry::theRegistry",
                     {"TqClassRegistry of 2 = {class FastPort : Port : TqBaseObject, "
                      "class Port : TqBaseObject}"});
    session->Stop();
}

// The transfer, up to its second block.

int clientDescriptor;
sockaddr_in peerAddress;

std::string AtPort(unsigned int port) {
    return ", server 127.0.0.1 port " + std::to_string(port);
}

std::string Timing(const char* sample) {
    return std::string(", time-out 4000 ms since 1000000, ") + sample +
           " sample, round trip 4000 ms, deviation 0 ms";
}

void ExpectTransfer(const std::string& text) {
    session->Command("tq transfer", {text});
    session->Value("'(anonymous namespace)::transfer'", text);
    session->Stop();
}

// The answer of a server at a port of its own, sent to the client's.
void Answer(const std::string& packet) {
    const int peer = socket(AF_INET, SOCK_DGRAM, 0);
    peerAddress.sin_family = AF_INET;
    peerAddress.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof peerAddress;
    if (bind(peer, reinterpret_cast<const sockaddr*>(&peerAddress), length) != 0) abort();
    getsockname(peer, reinterpret_cast<sockaddr*>(&peerAddress), &length);

    sockaddr_in client = {};
    getsockname(clientDescriptor, reinterpret_cast<sockaddr*>(&client), &length);
    client.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    sendto(peer, packet.data(), packet.size(), 0, reinterpret_cast<const sockaddr*>(&client),
           length);
    unsigned int size;
    TFTP_read(&size);
    close(peer);
}

void Open(const char* name) {
    clientDescriptor = dup(0);
    close(clientDescriptor);
    TFTP_OPEN_STRUCT request = {htonl(INADDR_LOOPBACK), name, "octet"};
    TFTP_open(&request);
}

void ShowTransfer() {
    ExpectTransfer("not begun");
    Open("config/router");
    ExpectTransfer("waiting for block 1 of \"config/router\"" + AtPort(69) + Timing("a"));
    Answer(std::string("\0\3\0\1", 4) + "short");
    const unsigned int port = ntohs(peerAddress.sin_port);
    ExpectTransfer("complete after 1 blocks" + AtPort(port) + Timing("a"));
    TFTP_close();
    ExpectTransfer("closed after 1 blocks" + AtPort(port) + Timing("a"));
    Open("config/nobody");
    Answer(std::string("\0\5\0\1", 4) + "no such \1file");
    ExpectTransfer("closed after 0 blocks" + AtPort(69) + Timing("no") +
                   ", error \"no such \\x01file\"");
    Open("config/router");
    Answer(std::string("\0\3\0\1", 4) + std::string(512, 'x'));
    ExpectTransfer("waiting for block 2" + AtPort(ntohs(peerAddress.sin_port)) + Timing("a"));
}

// What stays in sight until the end: each of these functions calls the next one.

// One thread empties a list, another one a handle, and the destructors of what these let go do the
// same to the other one. The threads wait for each other then.
pthread_barrier_t barrier;

class Last : public TqBaseObject {
public:
    ~Last() override;
    TqBaseRefList* list = nullptr;
    TqBaseRef* handle = nullptr;
};

Last::~Last() {
    pthread_barrier_wait(&barrier);
    if (list != nullptr) list->RemoveAllItems();
    if (handle != nullptr) handle->AssignNewObject(nullptr);
}

struct Quarrel {
    TqRefList<Last> list;
    TqRef<Last> handle;
    long emptiesList;  // the threads, as the kernel has them
    long emptiesHandle;
};

void* EmptyList(void* argument) {
    Quarrel& quarrel = *static_cast<Quarrel*>(argument);
    quarrel.emptiesList = syscall(SYS_gettid);
    quarrel.list.RemoveAllItems();
    return nullptr;
}

void* EmptyHandle(void* argument) {
    Quarrel& quarrel = *static_cast<Quarrel*>(argument);
    quarrel.emptiesHandle = syscall(SYS_gettid);
    quarrel.handle.AssignNewObject(nullptr);
    return nullptr;
}

// The first word is 2 once somebody may wait.
bool IsAwaited(const TqLinuxMutex& mutex) {
    return *reinterpret_cast<const volatile int*>(&mutex) == 2;
}

void Begin(Quarrel& quarrel) {
    quarrel.list.Append(new Last);
    quarrel.list.First()->handle = &quarrel.handle;
    quarrel.handle = new Last;
    static_cast<Last*>(quarrel.handle.object)->list = &quarrel.list;
    pthread_barrier_init(&barrier, nullptr, 2);
    pthread_t thread;
    pthread_create(&thread, nullptr, EmptyList, &quarrel);
    pthread_create(&thread, nullptr, EmptyHandle, &quarrel);
    while (!IsAwaited(quarrel.list.listMutex) || !IsAwaited(quarrel.handle.refMutex)) usleep(1000);
}

std::string HeldBy(int thread, long number) {
    return "held by thread " + std::to_string(thread) + " (LWP " + std::to_string(number) + ")";
}

// In sight of nobody.
std::string LockForgottenPort() {
    Port* port = new Port;
    port->objectMutex.Lock();
    return "objectMutex of Port at " + Address(port) + ": " + HeldBy(1, syscall(SYS_gettid));
}

void ShowLocks(bool endsByAbort) {
    session->In("ShowLocks");
    static Quarrel quarrel;
    Begin(quarrel);
    session->Command("tq locks",
                     {"listMutex of TqRefList<(anonymous namespace)::Last> at " +
                          Address(&quarrel.list) + ": " + HeldBy(2, quarrel.emptiesList),
                      "  thread 3 waits for it",
                      "refMutex of TqRef<(anonymous namespace)::Last> at " +
                          Address(&quarrel.handle) + ": " + HeldBy(3, quarrel.emptiesHandle),
                      "  thread 2 waits for it", LockForgottenPort(),
                      "DEADLOCK: thread 2 waits for thread 3 waits for thread 2"});
    session->Value("quarrel.list.listMutex", HeldBy(2, quarrel.emptiesList));
    session->Value("quarrel.list.objectMutex", "free");
    // Three ports of a list with broken slots, the forgotten one, and one that handles hold.
    session->Lines("Port", "tq classes", {"  Port: 4", "    FastPort: 1"});
    session->Stop();
    if (endsByAbort) abort();
    _exit(0);
}

// Storage that no constructor has seen.
[[maybe_unused]] unsigned char zeros[1024];
unsigned char wild[1024];

void ExpectOfStorage(const char* type, const char* ofZeros, const char* ofWild) {
    session->Value(std::string("*(") + type + "*)zeros", ofZeros);
    session->Value(std::string("*(") + type + "*)wild", ofWild);
}

void ShowBroken(bool endsByAbort) {
    std::memset(wild, 0xAA, sizeof wild);
    session->In("ShowBroken");
    for (const char* type : {"TqString", "TqBuffer", "TqSnmpOid"}) {
        ExpectOfStorage(type, "<not readable>", "<not readable>");
    }
    for (const char* type :
         {"TqBaseObject", "TqBaseList", "TqBasePtrList", "TqBaseRefList", "TqSortedStringList",
          "TqCallbackChain", "TqPtrList<TqNumber>", "TqRefList<Port>", "TqClassInfo",
          "TqClassRegistry", "TqCallback", "TqFunctionCb", "TqCallableCb", "TqFile"}) {
        ExpectOfStorage(type, "<not alive>", "<not alive>");
    }
    ExpectOfStorage("TqRef<Port>", "empty handle", "handle on <not readable>");
    ExpectOfStorage("TqDateTime", "1900-01-00 00:00:00",
                    "-1431653866--1431655765--1431655766 -1431655766:-1431655766:-1431655766");

    [[maybe_unused]] Port* const noPort = reinterpret_cast<Port*>(wild);
    [[maybe_unused]] TqRef<Port>* const farHandle = reinterpret_cast<TqRef<Port>*>(8);
    TqString noText, farText, longText;
    noText.data = nullptr;
    farText.data = reinterpret_cast<char*>(8);
    longText.length = 0xFFFFFFF0;
    for (const char* text : {"noText", "farText", "longText"}) {
        session->Value(text, "<not readable>");
    }
    TqBuffer longBuffer;
    longBuffer.length = longBuffer.capacity = 0xFFFFFFFF;
    session->Value("longBuffer", "<not readable>");
    session->Command("tq items longBuffer", {"<not readable>"});
    TqSnmpOid longOid("1.3");
    longOid.count = 0x7FFFFFFF;
    session->Value("longOid", "<not readable>");

    TqSnmpOid fullOid("1.3");
    fullOid.count = 17;
    session->Value("fullOid", "<not readable>");

    TqPtrList<TqNumber> emptied, noSlots, farSlots, fullSlots;
    fullSlots.count = 16;
    session->Value("fullSlots", "TqPtrList<TqNumber> of 16 (capacity 16) = {<not readable>}");
    emptied.RemoveItem(0u);
    noSlots.count = farSlots.count = 3;
    noSlots.slots = nullptr;
    farSlots.slots = reinterpret_cast<void**>(8);
    session->Value("emptied", "TqPtrList<TqNumber> of 4294967295 (capacity 16) = {<not readable>}");
    session->Value("noSlots", "TqPtrList<TqNumber> of 3 (capacity 16) = {<not readable>}");
    session->Value("farSlots", "TqPtrList<TqNumber> of 3 (capacity 16) = {<not readable>}");

    static unsigned char grave[sizeof(Port)];
    (new (grave) Port)->~Port();
    TqRefList<Port> ports;
    for (int i = 1; i <= 3; ++i) ports.Append(new Port);
    ports.slots[1] = nullptr;
    ports.slots[2] = reinterpret_cast<void*>(8);
    ports.slots[3] = grave;
    session->Value("ports",
                   "TqRefList<Port> of 3 (capacity 16) = {null, <not readable>, "
                   "what is not alive at " +
                       Address(grave) + "}");
    session->Value("*(Port*)grave", "{<TqBaseObject> = <not alive>, static PortInfo = " +
                                        Address(Port::PortInfo) + ", number = 0}");
    TqRef<Port> dead, far;
    dead.object = reinterpret_cast<TqBaseObject*>(grave);
    far.object = reinterpret_cast<TqBaseObject*>(8);
    session->Value("dead", "handle on what is not alive at " + Address(grave));
    session->Value("far", "handle on <not readable>");

    TqClassInfo circle("Circle", nullptr, nullptr), stray("Stray", nullptr, &circle);
    circle.parent = &stray;
    session->Value("circle", "class Circle : Stray : <not readable>");
    TqClassInfo orphan("Orphan", nullptr, reinterpret_cast<TqClassInfo*>(8));
    session->Value("orphan", "<not readable>");
    TqFunctionCb nowhere(
        reinterpret_cast<void (*)(TqFunctionCb*, TqBaseObject*, TqCallbackData*)>(8), nullptr);
    session->Value("nowhere", "TqFunctionCb on 0x8, user data 0x0");
    ShowLocks(endsByAbort);
}

void ShowObjects(bool endsByAbort) {
    session->In("ShowObjects");
    const TqRef<TqBaseObject> plain(new TqBaseObject);
    const TqRef<Port> handle(new fast::FastPort);
    const TqRef<Port> copy(handle);
    const TqRef<Port> nobody;
    const std::string port = "fast::FastPort at " + Address(handle.object);
    session->Value("plain",
                   "handle on TqBaseObject at " + Address(plain.object) + ", 2 references");
    session->Value("handle", "handle on " + port + ", 3 references");
    session->Value("*(TqBaseRef*)&handle", "handle on " + port + ", 3 references");
    session->Value("nobody", "empty handle");
    session->Value("*plain.object", "TqBaseObject, 2 references");
    TqRefList<Port> ports;
    ports.Append(handle.object->self == nullptr ? nullptr : static_cast<Port*>(handle.object));
    ++ports.walkDepth;
    session->Value("ports",
                   "TqRefList<Port> of 1 (capacity 16, 1 walk) = {" + port + ", 3 references}");
    TqBaseRefList untyped;
    untyped.InsertSlot(1, Port::PortInitInfo());
    untyped.InsertSlot(2, plain.object);
    session->Value(
        "untyped",
        "TqBaseRefList of 2 (capacity 16) = {class Port : TqBaseObject, TqBaseObject at " +
            Address(plain.object) + ", 2 references}");

    TqNumber number(7);
    TqBoolean flag("On");
    TqString text("x");
    TqPtrList<TqNumber> numbers;
    numbers.Append(&number);
    session->Value("numbers", "TqPtrList<TqNumber> of 1 (capacity 16) = {7}");
    TqPtrList<TqDataType> values;
    values.Append(&number);
    values.Append(&flag);
    values.Append(&text);
    session->Value("values", "TqPtrList<TqDataType> of 3 (capacity 16) = {7, True, \"x\"}");
    TqPtrList<int> integers;
    int* const integer = new int;
    integers.Append(integer);
    session->Value("integers", "TqPtrList<int> of 1 (capacity 16) = {" + Address(integer) + "}");
    TqBaseList slots;
    slots.InsertSlot(1, &ports);
    slots.InsertSlot(2, reinterpret_cast<void*>(8));
    session->Value("slots",
                   "TqBaseList of 2 (capacity 16) = {TqRefList<Port> of 1 (capacity 16, 1 walk), "
                   "0x8}");
    TqPtrList<TqBaseList> lists;
    lists.Append(&numbers);
    session->Value("lists",
                   "TqPtrList<TqBaseList> of 1 (capacity 16) = {TqPtrList<TqNumber> of 1 "
                   "(capacity 16)}");
    TqString b("b"), a("a");
    TqSortedStringList sorted;
    sorted.Add(&b);
    sorted.Add(&a);
    session->Value("sorted", "TqSortedStringList of 2 (capacity 16) = {\"a\", \"b\"}");
    session->Limited("1", "sorted", "TqSortedStringList of 2 (capacity 16) = {\"a\"...}");

    TqFunctionCb onLink(OnLink, integer), onNothing(nullptr, nullptr);
    TqCallableCb onLambda([] {});
    const std::string onLinkText = "TqFunctionCb on OnLink, user data " + Address(integer);
    session->Value("onLink", onLinkText);
    session->Value("onNothing", "TqFunctionCb on no function, user data 0x0");
    TqCallbackChain chain;
    chain.Append(&onLink);
    chain.Append(&onNothing);
    session->Value("chain", "TqCallbackChain of 2 (capacity 16) = {" + onLinkText +
                                ", TqFunctionCb on no function, user data 0x0}");
    session->Value("*TqCallback::TqCallbackInfo", "class TqCallback : TqBaseObject");
    session->Value("*(TqCallback*)&onLink", "TqCallback, user data " + Address(integer));
    session->Value("onLambda",
                   "TqCallableCb on (anonymous namespace)::ShowObjects(bool)::<lambda()>");

    TqFile unopened, file;
    file.Open("/dev/null", TqFile::readAppend);
    session->Value("unopened", "TqFile \"\", not open");
    session->Value("file", "TqFile \"/dev/null\", readAppend, open");
    TqCallback::TqCallbackInitInfo();
    ShowBroken(endsByAbort);
}

void ShowValues(bool endsByAbort) {
    session->In("ShowValues");
    const TqString name("GigabitEthernet0/1 to the north west"), empty;
    session->Value("name", "\"" + std::string(name.data) + "\"");
    session->Value("empty", "\"\"");
    session->Limited("7", "name", "\"Gigabit\"...");
    std::string digits;
    for (int i = 0; i < 150; ++i) digits += std::to_string(i);
    const TqString longText(digits.c_str());
    session->Value("longText", "\"" + digits.substr(0, 200) + "\"...");
    session->Limited("unlimited", "longText", "\"" + digits + "\"");
    session->Limited("0", "longText", "\"" + digits + "\"");

    const TqNumber number(-42);
    const TqCounter counter(3000000000u);
    const TqBoolean on("On"), off;
    const TqFloat real(-2.5f);
    session->Value("number", "-42");
    session->Value("counter", "3000000000");
    session->Value("on", "True");
    session->Value("off", "False");
    session->Value("real", "-2.5");
    tm time = {};
    time.tm_year = 124;
    time.tm_mon = 1;
    time.tm_mday = 29;
    time.tm_hour = 6;
    time.tm_min = 7;
    time.tm_sec = 8;
    const TqDateTime date(&time);
    session->Value("date", "2024-02-29 06:07:08");
    const TqSnmpOid oid("1.3.6.1.4.1.61999.4294967295"), noOid("");
    session->Value("oid", "1.3.6.1.4.1.61999.4294967295");
    session->Limited("3", "oid", "1.3.6...");
    session->Value("noOid", "empty");
    const TqIpAddress address(TqString("192.0.2.1")), noAddress;
    const TqNetworkMask mask(TqString("255.255.255.0"));
    session->Value("address", "192.0.2.1");
    session->Value("noAddress", "invalid (0.0.0.0)");
    session->Value("mask", "255.255.255.0");
    [[maybe_unused]] const TFTP_TO_STRUCT timeout = {5, 0, 8000, 3512, 975};
    session->Value("timeout",
                   "time-out 8000 ms since 5, no sample, round trip 3512 ms, deviation 975 ms");

    TqBuffer buffer;
    TqString("eth\1").ToBuffer(buffer);
    number.ToBuffer(buffer);
    on.ToBuffer(buffer);
    buffer.AdvanceReadContext(9);
    buffer.Append(reinterpret_cast<const unsigned char*>("00009x"), 6);
    session->Value("buffer", "TqBuffer of 32, read to 9: 00004eth\\x0100003-4200004True00009x");
    session->Limited("6", "buffer", "TqBuffer of 32, read to 9: 00004e...");
    session->Command("tq items buffer", {"      0  4: eth\\x01", "->    9  3: -42",
                                         "     17  4: True", "     26  not complete: 00009x"});
    TqBuffer readBuffer(buffer);
    readBuffer.TruncateAfter(9);
    readBuffer.AdvanceReadContext(9);
    session->Command("tq items readBuffer", {"      0  4: eth\\x01", "->    9  end"});
    session->Command("with print elements 1 -- tq items buffer", {"      0  4: e...", "..."});
    ShowObjects(endsByAbort);
}

}  // namespace

int main(int count, char** arguments) {
    if (count < 2) return 2;
    Session written(arguments[1], LookHere);
    session = &written;
    const bool endsByAbort = count > 2;
    // An emulator writes a core file of the program; the kernel shall not write one of the
    // emulator.
    if (endsByAbort) prctl(PR_SET_DUMPABLE, 0);
    ShowClasses();
    const std::string problem = EnterOwnNetwork();
    if (problem.empty()) {
        ShowTransfer();
    } else {
        std::printf("The transfer is not shown: %s\n", problem.c_str());
    }
    ShowValues(endsByAbort);
}
