// tqfetch: fetches a file from a TFTP server. Its man page is tqfetch.1.

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <exception>
#include <string>

#include "Message.h"
#include "Netascii.h"
#include "Options.h"
#include "Outcome.h"
#include "Patience.h"
#include "Progress.h"
#include "TargetFile.h"
#include "TqDownload.h"

namespace {

Farewell FarewellOf(const Options& options, const Outcome& outcome) {
    const std::string text = options.server + ": " + options.file + ": " + outcome.sentence;
    return {"tqfetch: " + Shown(text) + "\n", outcome.status};
}

// What is opened must not take the place of a standard descriptor that the parent closed: messages
// would end up in the file.
void OccupyStandardDescriptors() {
    int descriptor;
    do {
        descriptor = open("/dev/null", O_RDONLY);
    } while (descriptor >= 0 && descriptor <= STDERR_FILENO);
    if (descriptor >= 0) close(descriptor);
}

// The client prints to standard output what select does; it must neither mix with the file nor
// trouble anybody.
void SilenceStandardOutput() {
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    if (nowhere < 0) return;
    dup2(nowhere, STDOUT_FILENO);
    close(nowhere);
}

Outcome OutcomeFor(const TqDownload& download) {
    return OutcomeOf(download.result, download.words.data, download.patience);
}

// A server that says nothing is left in the way that a deadline takes.
void LeaveSilence(const Options& options, const Outcome& outcome) {
    GiveUp(FarewellOf(options, outcome));
}

void ShowProgress(void* progress, unsigned long long bytes, unsigned int silence) {
    Progress& shown = *static_cast<Progress*>(progress);
    if (silence == 0) {
        shown.Update(bytes);
    } else {
        shown.ShowWaiting();
    }
}

// Fetches from the server that is known by now. Returns how it ended.
Outcome Transfer(const Options& options, TqDownload& download, TargetFile& target) {
    const bool isText = options.mode == "netascii";
    NetasciiDecoder decoder;
    download.ToFunction([&](const unsigned char* bytes, unsigned int count) {
        if (isText) {
            const std::string text = decoder.Decode(bytes, count);
            target.Write(text.data(), text.size());
        } else {
            target.Write(bytes, count);
        }
        return true;
    });
    if (download.result == TqDownload::silent) LeaveSilence(options, OutcomeFor(download));
    if (download.result != TqDownload::complete) return OutcomeFor(download);
    const std::string rest = decoder.End();
    target.Write(rest.data(), rest.size());
    return OutcomeFor(download);
}

Outcome Fetch(const Options& options) {
    TqDownload download(options.server.c_str(), options.file.c_str());
    download.mode = options.mode.c_str();
    download.patience = options.timeout;
    const unsigned int found = download.FindServer();
    if (found == TqDownload::silent) LeaveSilence(options, {exitUnknownHost, download.words.data});
    if (found != TqDownload::complete) return OutcomeFor(download);

    TargetFile target(options.output);
    // Nothing is shown to those who pipe, nor on a terminal that takes the file itself.
    Progress progress(!options.isQuiet && !target.IsTerminal() && isatty(STDOUT_FILENO) != 0 &&
                      isatty(STDERR_FILENO) != 0);
    SilenceStandardOutput();
    download.watch = ShowProgress;
    download.watchUser = &progress;
    Outcome outcome = Transfer(options, download, target);
    progress.End();
    if (outcome.status == exitComplete) target.Complete();
    return outcome;
}

int Finish(const Farewell& last) {
    std::fputs(last.text.c_str(), stderr);
    return last.status;
}

}  // namespace

int main(int argc, char** argv) {
    OccupyStandardDescriptors();
    const Options options = ParseArguments(argc, argv);
    HandleSignals();
    const Farewell late = FarewellOf(options, OutcomeOf(TqDownload::late, "", options.deadline));
    try {
        if (options.deadline != 0) StartDeadline(options.deadline, late);
        const Outcome outcome = Fetch(options);
        if (outcome.status == exitComplete) return exitComplete;
        return Finish(FarewellOf(options, outcome));
    } catch (const std::exception& problem) {
        return Finish({"tqfetch: " + Shown(problem.what()) + "\n", exitLocalFailure});
    }
}
