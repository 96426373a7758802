// The configuration program with the typed interface: the same as plain.cpp and standard.cpp.
#include <Tq.h>
#include <TqDownload.h>

#include <cstdio>

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

static TqRef<Device> Made(const char* line) {
    char type[32], name[32], address[32], value[32];
    if (std::sscanf(line, "%31s%31s%31s%31s", type, name, address, value) != 4) return nullptr;
    TqRef<Device> device(TqCast<Device>(TqClassRegistry::GetRegistry()->NewObject(type)));
    if (!device || !TqParse(address, device->address) || !TqParse(value, device->value)) {
        return nullptr;
    }
    device->name = name;
    return device;
}

static bool Fetch(const char* server, const char* name, const char* path) {
    TqDownload download(server, name);
    if (download.ToFile(path) == TqDownload::complete) return true;
    TqString reason;
    download.AppendText(reason);
    std::printf("%s: %s\n", name, reason.data);
    return false;
}

static void Load(const char* path, TqRefList<Device>& devices) {
    TqFile file;
    if (!file.Open(path, TqFile::read)) return;
    while (const char* line = file.NextLine()) {
        if (*line == '#') continue;
        if (const TqRef<Device> device = Made(line)) {
            devices.Append(device.Get());
        } else {
            std::printf("refused: %s", line);
        }
    }
    file.Close();
}

static void ShowNames(const TqRefList<Device>& devices) {
    TqSortedStringList names;
    for (Device* device : devices) names.Add(&device->name);
    std::puts("by name:");
    for (const TqString* name : names) std::printf("  %s\n", name->data);
}

static void Transfer(const TqRefList<Device>& devices) {
    TqBuffer buffer;
    TqWrite(buffer, devices.count);
    for (const Device* device : devices) TqWrite(buffer, device->name, device->value);
    unsigned int count = 0, value = 0;
    if (TqRead(buffer, count)) std::printf("read back: %u\n", count);
    TqString name;
    while (TqRead(buffer, name, value)) std::printf("  %s %u\n", name.data, value);
}

static void ShowRows(const TqRefList<Device>& devices) {
    TqSnmpOid row("1.3.6.1.2.1.2.2.1.5.0");
    std::puts("by identifier:");
    for (const Device* device : devices) {
        row.Increment();
        std::printf("  %s = %s %s at %s\n", TqText(row).data, TqText(device->value).data,
                    device->Unit(), TqText(device->address).data);
    }
}

static void Change(const TqRefList<Device>& devices) {
    unsigned int changes = 0;
    TqCallbackChain changed;
    TqCallableCb tell([&](TqBaseObject* source, TqCallbackData*) {
        const Device* device = TqCast<Device>(source);
        std::printf("%s is now %s\n", device->name.data, TqText(device->value).data);
    });
    TqCallableCb count([&] { ++changes; });
    const TqCallbackGuard telling(changed, tell), counting(changed, count);
    for (Device* device : devices) {
        ++device->value.count;
        changed.Invoke(device, nullptr);
    }
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
