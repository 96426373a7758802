#include "Notifier.h"

#include <errno.h>
#include <spawn.h>
#include <string.h>
#include <sys/wait.h>
#include <unistd.h>

#include <vector>

namespace {

const char linkDown[] = ".1.3.6.1.6.3.1.1.5.3";
const char linkUp[] = ".1.3.6.1.6.3.1.1.5.4";
const char counterChanged[] = ".1.3.6.1.4.1.61999.0.1";

// Runs a program to its end. False when it could not be started or did not succeed.
bool Run(const std::vector<TqString>& words) {
    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (const TqString& word : words) arguments.push_back(word.data);
    arguments.push_back(nullptr);
    pid_t child = 0;
    const int error =
        posix_spawnp(&child, arguments[0], nullptr, nullptr, arguments.data(), environ);
    if (error != 0) return Complain("%s: %s", arguments[0], strerror(error));
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    return status == 0;
}

// The identifier of a value, its type's letter and its text, as they stand on the command line.
void AddBinding(std::vector<TqString>& words, const Interface& interface, unsigned int value) {
    words.push_back(TqString(".") + TextOf(interface.Oid(value)).data);
    words.push_back(value == nameValue ? "s" : value >= firstCounter ? "c" : "i");
    if (value == upValue) {
        words.push_back(TqString(interface.OperStatus()));
    } else {
        words.push_back(TextOf(*interface.values[value]));
    }
}

}  // namespace

void Notifier::Invoke(TqBaseObject*, TqCallbackData* data) {
    const ValueChange& change = *static_cast<ValueChange*>(data);
    const Interface& interface = *change.after;
    std::vector<TqString> words = {"snmptrap", "-v2c", "-m", "", "-c", configuration.community};
    if (configuration.inform) {
        for (const char* word : {"-Ci", "-t", "1", "-r", "2"}) words.push_back(word);
    }
    words.push_back(configuration.manager);
    words.push_back("");  // the time for which this machine has been up
    const char* linkChanged = int(interface.up) != 0 ? linkUp : linkDown;
    words.push_back(change.value == upValue ? linkChanged : counterChanged);
    AddBinding(words, interface, indexValue);
    AddBinding(words, interface, nameValue);
    AddBinding(words, interface, change.value);
    if (!Run(words)) Complain("%s was not notified", configuration.manager.data);
}
