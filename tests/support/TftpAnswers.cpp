#include "TftpAnswers.h"

#include <memory>

#include "TftpHost.h"
#include "TftpServer.h"

std::string HostName(unsigned int number) {
    const std::string text = ToText(RequestPort(number));
    return text.substr(0, text.find(':'));
}

Child ServeFolder(const std::string& folder, unsigned int host) {
    TftpServer::Settings settings;
    settings.directory = folder;
    settings.resendAfter = 0;
    auto server = std::make_shared<TftpServer>(UdpSocket(RequestPort(host)), settings);
    return Child([server] {
        while (true) server->Serve(1000);
    });
}

Child Answer(const Answers& answer) {
    auto socket = std::make_shared<UdpSocket>(RequestPort());
    return Child([socket, answer] {
        Octets datagram;
        Endpoint client;
        while (true) {
            if (socket->Receive(datagram, client, 1000)) answer(*socket, client, datagram);
        }
    });
}

unsigned int BlockAskedFor(const Octets& datagram) {
    if (datagram[1] == 1) return 1;
    return static_cast<unsigned char>(datagram[2]) * 256u +
           static_cast<unsigned char>(datagram[3]) + 1;
}

Child AnswerWithBlocks(unsigned int count) {
    return Answer([count](const UdpSocket& socket, const Endpoint& client, const Octets& datagram) {
        const unsigned int block = BlockAskedFor(datagram);
        if (block <= count) socket.Send(client, Data(block, Octets(512, 'x')));
    });
}
