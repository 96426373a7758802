// The configuration program with the standard library: the same as plain.cpp and comfort.cpp.
#include <arpa/inet.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

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

// One packet and what answers it, a few times. The answer's length, 0 when there is none.
static std::size_t Ask(int socket, const std::string& packet, sockaddr_in& server, char* answer) {
    for (int attempts = 0; attempts < 8; ++attempts) {
        socklen_t length = sizeof server;
        sockaddr* const address = reinterpret_cast<sockaddr*>(&server);
        sendto(socket, packet.data(), packet.size(), 0, address, length);
        const ssize_t count = recvfrom(socket, answer, 516, 0, address, &length);
        if (count >= 4) return static_cast<std::size_t>(count);
    }
    return 0;
}

static bool Read(int socket, sockaddr_in& server, const std::string& name, std::ostream& file) {
    std::string packet = std::string("\0\1", 2) + name + '\0' + "octet" + '\0';
    char answer[516];
    for (std::uint16_t block = 1;; ++block) {
        const char number[] = {static_cast<char>(block >> 8), static_cast<char>(block)};
        std::size_t length;
        do {
            length = Ask(socket, packet, server, answer);
            if (length == 0 || answer[1] != 3) return false;
        } while (answer[2] != number[0] || answer[3] != number[1]);
        file.write(answer + 4, static_cast<std::streamsize>(length - 4));
        packet = std::string("\0\4", 2) + std::string(number, 2);
        if (length < 516) {
            sendto(socket, packet.data(), 4, 0, reinterpret_cast<sockaddr*>(&server),
                   sizeof server);
            return true;
        }
    }
}

static bool Fetch(const char* host, const char* name, const char* path) {
    sockaddr_in server = sockaddr_in();
    server.sin_family = AF_INET;
    server.sin_port = htons(69);
    server.sin_addr.s_addr = inet_addr(host);
    const timeval patience = {4, 0};
    const int socket = ::socket(AF_INET, SOCK_DGRAM, 0);
    setsockopt(socket, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
    std::ofstream file(path);
    const bool isComplete = Read(socket, server, name, file) && file.flush();
    close(socket);
    if (!isComplete) std::cout << name << ": not fetched\n";
    return isComplete;
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

// The file; or its name at a server, the server, and the file to put it into.
int main(int count, char** arguments) {
    if (count > 3 && !Fetch(arguments[2], arguments[1], arguments[3])) return 1;
    Devices devices;
    Load(arguments[count > 3 ? 3 : 1], devices);
    ShowNames(devices);
    Transfer(devices);
    ShowRows(devices);
    Change(devices);
}
