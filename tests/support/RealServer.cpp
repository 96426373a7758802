#include "RealServer.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <unistd.h>

#include <stdexcept>
#include <vector>

#include "Files.h"
#include "TftpHost.h"
#include "TftpScript.h"

namespace {

const char* const paths[] = {"/usr/sbin/in.tftpd", "/usr/sbin/dnsmasq"};

[[noreturn]] void Execute(std::vector<std::string> words) {
    std::vector<char*> arguments;
    for (std::string& word : words) arguments.push_back(&word[0]);
    arguments.push_back(nullptr);
    const int quiet = open("/dev/null", O_RDWR);
    dup2(quiet, 1);
    dup2(quiet, 2);
    execv(arguments[0], arguments.data());
    _exit(127);
}

// It is handed its socket, as inetd does: by itself it looks up addresses in a way that finds none
// where there is nothing but loopback.
[[noreturn]] void ExecuteTftpdHpa(const UdpSocket& socket, const std::string& directory) {
    dup2(socket.Descriptor(), 0);
    Execute({paths[RealServer::tftpdHpa], "--secure", "--user", "root", directory});
}

[[noreturn]] void ExecuteDnsmasq(const std::string& host, const std::string& directory) {
    Execute({paths[RealServer::dnsmasq], "--keep-in-foreground", "--conf-file=/dev/null",
             "--port=0", "--enable-tftp", "--tftp-root=" + directory, "--listen-address=" + host,
             "--bind-interfaces", "--user=root", "--group=", "--pid-file=", "--no-hosts",
             "--no-resolv", "--log-facility=-"});
}

std::string HostText() {
    const std::string text = ToText(RequestPort());
    return text.substr(0, text.find(':'));
}

// Asks for what is not there until there is an answer.
bool IsAnswering() {
    const UdpSocket probe({Host(254), 0});
    for (int i = 0; i < 400; ++i) {
        probe.Send(RequestPort(), Request("is-anybody-there", "octet"));
        Octets answer;
        Endpoint sender;
        if (probe.Receive(answer, sender, 50)) return true;
    }
    return false;
}

}  // namespace

std::string RealServer::Problem(Program program) {
    if (access(paths[program], X_OK) != 0) return paths[program] + std::string(" is not installed");
    if (program == tftpdHpa && ReadFile("/proc/self/setgroups").substr(0, 4) == "deny") {
        return "in.tftpd sets its groups, which takes root, not only a user namespace";
    }
    return std::string();
}

RealServer::RealServer(Program program, const std::string& directory) {
    if (program == dnsmasq) {
        child.reset(new Child([&] { ExecuteDnsmasq(HostText(), directory); }));
    } else {
        const UdpSocket socket(RequestPort());
        // For the first datagram too it must learn which address it came to.
        const int on = 1;
        EXPECT_EQ(setsockopt(socket.Descriptor(), IPPROTO_IP, IP_PKTINFO, &on, sizeof on), 0);
        child.reset(new Child([&] { ExecuteTftpdHpa(socket, directory); }));
    }
    if (!IsAnswering()) throw std::runtime_error(paths[program] + std::string(" does not answer"));
}
