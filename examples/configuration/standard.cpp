// The configuration program with the standard library: the same as plain.cpp and comfort.cpp.
#include <cstdint>
#include <fstream>
#include <functional>
#include <iostream>
#include <limits>
#include <map>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <vector>

class Device {
public:
    virtual ~Device() {}
    virtual const char* Unit() const = 0;
    std::string name;
    std::uint32_t address = 0;
    std::uint32_t value = 0;
};

class Port : public Device {
public:
    const char* Unit() const override { return "Mbit/s"; }
};

class Gauge : public Device {
public:
    const char* Unit() const override { return "degrees"; }
};

typedef std::vector<std::shared_ptr<Device>> Devices;

static const std::map<std::string, std::function<std::shared_ptr<Device>()>> classes = {
    {"Port", [] { return std::make_shared<Port>(); }},
    {"Gauge", [] { return std::make_shared<Gauge>(); }},
};

static bool ReadNumber(const std::string& text, std::uint32_t limit, std::uint32_t& number) {
    if (text.empty() || text.size() > 10) return false;
    if (text.find_first_not_of("0123456789") != std::string::npos) return false;
    const unsigned long long value = std::stoull(text);
    number = static_cast<std::uint32_t>(value);
    return value <= limit;
}

static bool ReadAddress(const std::string& text, std::uint32_t& address) {
    std::istringstream fields(text + '.');
    std::string field;
    int count = 0;
    for (std::uint32_t byte = 0; std::getline(fields, field, '.'); ++count) {
        if (!ReadNumber(field, 255, byte)) return false;
        if (field.size() > 1 && field[0] == '0') return false;
        address = address << 8 | byte;
    }
    return count == 4;
}

static std::string AddressText(std::uint32_t address) {
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8) {
        text += std::to_string(address >> shift & 255) + (shift > 0 ? "." : "");
    }
    return text;
}

static std::string IdentifierText(const std::vector<std::uint32_t>& identifier) {
    std::string text;
    for (const std::uint32_t number : identifier) {
        text += (text.empty() ? "" : ".") + std::to_string(number);
    }
    return text;
}

static std::shared_ptr<Device> Made(const std::string& line) {
    std::istringstream words(line);
    std::string type, name, address, value;
    if (!(words >> type >> name >> address >> value)) return nullptr;
    const auto found = classes.find(type);
    if (found == classes.end()) return nullptr;
    std::shared_ptr<Device> device = found->second();
    const std::uint32_t largest = std::numeric_limits<std::uint32_t>::max();
    if (!ReadAddress(address, device->address) || !ReadNumber(value, largest, device->value)) {
        return nullptr;
    }
    device->name = name;
    return device;
}

static void Load(const char* path, Devices& devices) {
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);) {
        if (line[0] == '#') continue;
        if (const std::shared_ptr<Device> device = Made(line)) {
            devices.push_back(device);
        } else {
            std::cout << "refused: " << line << '\n';
        }
    }
}

static void ShowNames(const Devices& devices) {
    std::multiset<std::string> names;
    for (const auto& device : devices) names.insert(device->name);
    std::cout << "by name:\n";
    for (const std::string& name : names) std::cout << "  " << name << '\n';
}

static void Transfer(const Devices& devices) {
    std::stringstream buffer;
    buffer << devices.size() << ' ';
    for (const auto& device : devices) buffer << device->name << ' ' << device->value << ' ';
    std::uint32_t count = 0, value = 0;
    if (buffer >> count) std::cout << "read back: " << count << '\n';
    std::string name;
    while (buffer >> name >> value) std::cout << "  " << name << ' ' << value << '\n';
}

static void ShowRows(const Devices& devices) {
    std::vector<std::uint32_t> row = {1, 3, 6, 1, 2, 1, 2, 2, 1, 5, 0};
    std::cout << "by identifier:\n";
    for (const auto& device : devices) {
        ++row.back();
        std::cout << "  " << IdentifierText(row) << " = " << device->value << ' ' << device->Unit()
                  << " at " << AddressText(device->address) << '\n';
    }
}

static void Change(const Devices& devices) {
    unsigned int changes = 0;
    std::vector<std::function<void(const Device&)>> changed;
    changed.push_back([](const Device& device) {
        std::cout << device.name << " is now " << device.value << '\n';
    });
    changed.push_back([&](const Device&) { ++changes; });
    for (const auto& device : devices) {
        ++device->value;
        for (const auto& callback : changed) callback(*device);
    }
    std::cout << changes << " changes\n";
}

int main(int, char** arguments) {
    Devices devices;
    Load(arguments[1], devices);
    ShowNames(devices);
    Transfer(devices);
    ShowRows(devices);
    Change(devices);
}
