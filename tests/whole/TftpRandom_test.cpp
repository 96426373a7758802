// Random conversations: any datagram from anybody in any order, against a second statement of the
// rules that predicts, step by step, what the client does.

#include <cerrno>
#include <random>
#include <vector>

#include "Scale.h"
#include "TftpScript.h"
#include "TftpTest.h"

namespace {

class Conversation {
public:
    explicit Conversation(unsigned int seed) : random(seed) {}

    std::vector<Step> Write() {
        steps = {Opens("f", "octet"), Arrives(RequestPort(), request)};
        for (int reads = 0; !isClosed && reads < 8; ++reads) Read();
        if (!isClosed) steps.push_back(Closes(0));
        steps.push_back(Closes(0x704));
        return steps;
    }

private:
    unsigned int Below(unsigned int end) { return static_cast<unsigned int>(random() % end); }
    bool OneIn(unsigned int cases) { return Below(cases) == 0; }

    // The events of one read, ending with one that makes it return.
    void Read() {
        expected.clear();
        left = timeout;
        hasReturned = false;
        while (!hasReturned) {
            if (OneIn(6)) {
                Silence();
            } else {
                Datagram();
            }
        }
        steps.insert(steps.end(), expected.begin(), expected.end());
    }

    // A whole time-out, the end of it in the receive, and a signal that gets that moving.
    void Silence() {
        steps.push_back(Passes(left));
        steps.push_back(Interrupts());
        timeout = std::min(2 * timeout, 60000u);
        left = timeout;
        if (last == 0) {
            expected.push_back(Arrives(RequestPort(), request));
        } else {
            expected.push_back(Arrives(server, Acknowledgement(last)));
        }
    }

    void Datagram() {
        if (OneIn(3)) {
            const unsigned int pause = 1 + Below(left);
            if (pause < left) {
                steps.push_back(Passes(pause));
                left -= pause;
            }
        }
        const Endpoint sender = Sender();
        const Octets datagram = Content();
        steps.push_back(Sends(sender, datagram));
        if (sender.host != Host(1)) return;
        if (last != 0 && sender != server) return expected.push_back(Arrives(sender, InvalidTid()));
        Judge(sender, datagram);
    }

    void Judge(const Endpoint& sender, const Octets& datagram) {
        if (datagram.size() < 4) return Violation(sender);
        const unsigned int opcode = NumberAt(datagram, 0);
        const unsigned int number = NumberAt(datagram, 2);
        if (opcode == 5) return Fail(0x810 + number);
        if (opcode != 3 || datagram.size() > 516) return Violation(sender);
        if (number == last) {
            left = timeout;
            return expected.push_back(Arrives(server, Acknowledgement(last)));
        }
        if (number != last + 1) return Violation(sender);
        if (last == 0) server = sender;
        ++last;
        hasReturned = true;
        expected.insert(expected.begin(), Reads(datagram.substr(4)));
        expected.push_back(Arrives(server, Acknowledgement(last)));
        expected.push_back(EndOfFile(datagram.size() < 516 ? 1 : 0));
    }

    void Violation(const Endpoint& sender) {
        Fail(0x814);
        expected.push_back(Arrives(sender, IllegalOperation()));
    }

    void Fail(unsigned int code) {
        hasReturned = isClosed = true;
        expected.insert(expected.begin(), Fails(code));
        expected.push_back(EndOfFile(1));
    }

    static unsigned int NumberAt(const Octets& datagram, std::size_t position) {
        return static_cast<unsigned char>(datagram[position]) * 256u +
               static_cast<unsigned char>(datagram[position + 1]);
    }

    Endpoint Sender() {
        const Endpoint some[] = {{Host(1), 2000}, {Host(1), 3000}, RequestPort(), {Host(2), 2000}};
        if (last != 0 && !OneIn(3)) return server;
        return some[Below(4)];
    }

    // Mostly what a server could send, now and then anything.
    Octets Content() {
        switch (Below(12)) {
            case 0:
                return Noise(Below(8));
            case 1:
                return Noise(Below(600));
            case 2:
                return Acknowledgement(last + Below(2));
            case 3:
                return OneIn(4) ? Error(Below(9), "text") : Data(last, "again");
            case 4:
                return OneIn(4) ? Data(Below(65536), "far") : Data(last, "again");
            case 5:
                return OneIn(4) ? Data(last + 1, Noise(513 + Below(3))) : Data(last, "again");
            case 6:
            case 7:
                return Data(last, Noise(Below(513)));
            case 8:
                return Data(last + 1, Noise(Below(513)));
            default:
                return Data(last + 1, Noise(512));
        }
    }

    Octets Noise(std::size_t length) {
        Octets noise(length, '\0');
        for (char& c : noise) c = static_cast<char>(random());
        if (length > 1 && OneIn(2)) {
            noise[0] = 0;
            noise[1] = static_cast<char>(3 + 2 * Below(2));
        }
        return noise;
    }

    std::mt19937 random;
    const Octets request = Request("f", "octet");
    std::vector<Step> steps;
    std::vector<Step> expected;
    Endpoint server = RequestPort();
    unsigned int last = 0;
    unsigned int timeout = 4000;
    unsigned int left = 0;
    bool hasReturned = false;
    bool isClosed = false;
};

using TqTftpRandom = TftpTest;

TEST_F(TqTftpRandom, ConversationsGoAsTheRulesSay) {
    const unsigned int conversations = IsOnDevice() ? 500 : 5000;
    for (unsigned int seed = 1; seed <= conversations && !HasFailure(); ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Play(Conversation(seed).Write());
    }
}

}  // namespace
