// The configuration program with the plain interface: the same as comfort.cpp and standard.cpp.
#include <TqBaseRef.h>
#include <TqBuffer.h>
#include <TqCallbackChain.h>
#include <TqClassRegistry.h>
#include <TqCounter.h>
#include <TqFile.h>
#include <TqFunctionCb.h>
#include <TqIpAddress.h>
#include <TqSnmpOid.h>
#include <TqSortedStringList.h>
#include <TqTftp.h>
#include <arpa/inet.h>
#include <signal.h>
#include <sys/time.h>
#include <unistd.h>

#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

class Device : public TqBaseObject {
    TQ_DECLARE_CLASS(Device)
public:
    virtual const char* Unit() const { return ""; }
    TqString name;
    TqIpAddress address;
    TqCounter value;
};

class Port : public Device {
    TQ_DECLARE_CLASS(Port)
public:
    const char* Unit() const override { return "Mbit/s"; }
};

class Gauge : public Device {
    TQ_DECLARE_CLASS(Gauge)
public:
    const char* Unit() const override { return "degrees"; }
};

TQ_IMPLEMENT_CLASS(Device, TqBaseObject)
TQ_IMPLEMENT_CLASS(Port, Device)
TQ_IMPLEMENT_CLASS(Gauge, Device)

// The counter's own parser has no failure.
static bool ReadCounter(const char* text, TqCounter& counter) {
    if (!std::isdigit(static_cast<unsigned char>(*text))) return false;
    char* end = nullptr;
    errno = 0;
    const unsigned long long value = std::strtoull(text, &end, 10);
    if (errno != 0 || *end != '\0' || value > 0xFFFFFFFFull) return false;
    counter.count = static_cast<unsigned int>(value);
    return true;
}

// The address's own parser takes what stands behind an address, blanks and signs.
static bool ReadAddress(const char* text, TqIpAddress& address) {
    if (text[std::strspn(text, "0123456789.")] != '\0' || !address.fromString(text)) return false;
    TqString again;
    address.toString(again);
    return std::strcmp(again.data, text) == 0;
}

static TqRef<Device> Made(const char* line) {
    char type[32], name[32], address[32], value[32];
    if (std::sscanf(line, "%31s%31s%31s%31s", type, name, address, value) != 4) return nullptr;
    const TqRef<TqBaseObject> object(TqClassRegistry::GetRegistry()->NewObject(type));
    if (object.object == nullptr || !object.object->IsA(Device::DeviceInitInfo())) return nullptr;
    Device* device = static_cast<Device*>(object.object);
    if (!ReadAddress(address, device->address) || !ReadCounter(value, device->value)) {
        return nullptr;
    }
    device->name = name;
    return object;
}

static Device* DeviceIn(const TqRefList<Device>& devices, unsigned int index) {
    return static_cast<Device*>(static_cast<TqBaseObject*>(devices.slots[index]));
}

// Interrupts the client's receive, so that it sends again; nothing else ends it.
static volatile sig_atomic_t secondsLeft;

extern "C" void Tick(int) {
    if (--secondsLeft <= 0) _exit(1);
}

static void TickEvery(time_t seconds) {
    struct sigaction action = {};
    action.sa_handler = Tick;
    sigaction(SIGALRM, &action, nullptr);
    const itimerval interval = {{seconds, 0}, {seconds, 0}};
    setitimer(ITIMER_REAL, &interval, nullptr);
}

static unsigned int Read(const char* server, const char* name, std::FILE* file) {
    TFTP_OPEN_STRUCT request = {inet_addr(server), name, "octet"};
    const unsigned int opened = TFTP_open(&request);
    if (opened != 0) return opened;
    while (TFTP_eof() == 0) {
        unsigned int length;
        const unsigned char* bytes = TFTP_read(&length);
        if (bytes == nullptr) return length;
        secondsLeft = 30;
        std::fwrite(bytes, 1, length, file);
    }
    return TFTP_close();
}

static bool Fetch(const char* server, const char* name, const char* path) {
    std::FILE* file = std::fopen(path, "w");
    if (file == nullptr) return false;
    secondsLeft = 30;
    TickEvery(1);
    const unsigned int result = Read(server, name, file);
    TickEvery(0);
    if (std::fclose(file) == 0 && result == 0) return true;
    std::printf("%s: error 0x%x\n", name, result);
    return false;
}

static void Load(const char* path, TqRefList<Device>& devices) {
    TqFile file;
    if (!file.Open(path, TqFile::read)) return;
    while (const char* line = file.NextLine()) {
        if (*line == '#') continue;
        const TqRef<Device> device = Made(line);
        if (device.object != nullptr) {
            devices.InsertSlot(devices.count + 1, device.object);
        } else {
            std::printf("refused: %s", line);
        }
    }
    file.Close();
}

static void ShowNames(const TqRefList<Device>& devices) {
    TqSortedStringList names;
    for (unsigned int i = 1; i <= devices.count; ++i) names.Add(&DeviceIn(devices, i)->name);
    std::puts("by name:");
    for (unsigned int i = 1; i <= names.count; ++i) {
        std::printf("  %s\n", static_cast<TqString*>(names.slots[i])->data);
    }
}

static void Transfer(const TqRefList<Device>& devices) {
    TqBuffer buffer;
    TqCounter(devices.count).ToBuffer(buffer);
    for (unsigned int i = 1; i <= devices.count; ++i) {
        const Device* device = DeviceIn(devices, i);
        device->name.ToBuffer(buffer);
        device->value.ToBuffer(buffer);
    }
    TqCounter count, value;
    count.FromBuffer(buffer);
    std::printf("read back: %u\n", count.count);
    TqString name;
    while (buffer.readPosition < buffer.length) {
        name.FromBuffer(buffer);
        value.FromBuffer(buffer);
        std::printf("  %s %u\n", name.data, value.count);
    }
}

static void ShowRows(const TqRefList<Device>& devices) {
    TqSnmpOid row("1.3.6.1.2.1.2.2.1.5.0");
    std::puts("by identifier:");
    for (unsigned int i = 1; i <= devices.count; ++i) {
        const Device* device = DeviceIn(devices, i);
        TqString identifier, value, address;
        row.Increment();
        row.ToString(identifier);
        device->value.ToString(value);
        device->address.toString(address);
        std::printf("  %s = %s %s at %s\n", identifier.data, value.data, device->Unit(),
                    address.data);
    }
}

static void Tell(TqFunctionCb*, TqBaseObject* source, TqCallbackData*) {
    const Device* device = static_cast<Device*>(source);
    TqString value;
    device->value.ToString(value);
    std::printf("%s is now %s\n", device->name.data, value.data);
}

static void Count(TqFunctionCb* callback, TqBaseObject*, TqCallbackData*) {
    ++*static_cast<unsigned int*>(callback->UserData());
}

static void Change(const TqRefList<Device>& devices) {
    unsigned int changes = 0;
    TqCallbackChain changed;
    TqFunctionCb tell(Tell, nullptr), count(Count, &changes);
    changed.InsertSlot(changed.count + 1, static_cast<TqCallback*>(&tell));
    changed.InsertSlot(changed.count + 1, static_cast<TqCallback*>(&count));
    for (unsigned int i = 1; i <= devices.count; ++i) {
        Device* device = DeviceIn(devices, i);
        ++device->value.count;
        changed.Invoke(device, nullptr);
    }
    changed.RemoveItem(static_cast<TqCallback*>(&count));
    changed.RemoveItem(static_cast<TqCallback*>(&tell));
    std::printf("%u changes\n", changes);
}

// The file; or its name at a server, the server, and the file to put it into.
int main(int count, char** arguments) {
    if (count > 3 && !Fetch(arguments[2], arguments[1], arguments[3])) return 1;
    TqRegisterClass<Port>();
    TqRegisterClass<Gauge>();
    TqRefList<Device> devices;
    Load(arguments[count > 3 ? 3 : 1], devices);
    ShowNames(devices);
    Transfer(devices);
    ShowRows(devices);
    Change(devices);
}
