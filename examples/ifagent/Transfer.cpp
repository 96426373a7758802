#include "Transfer.h"

#include <stdio.h>

#include "Complaints.h"
#include "TqBuffer.h"

namespace {

// Prints one item as it lies in the buffer.
void PrintItem(TqBuffer& buffer) {
    TqBuffer payload;
    payload.FromBuffer(buffer);
    TqString text;
    payload.ToString(text);
    printf(" %05u%s", payload.length, text.data);
}

// How the values that were received compare with those that were sent.
struct Tally {
    unsigned int equal;
    unsigned int tooLarge;
    unsigned int different;
};

// A counter above this number renders right, but the parser takes its digits for a negative number
// and gives 0: a rule of the counter, not a loss on the way.
const unsigned int largestReadBack = 2147483647;

bool WasTooLarge(const TqDataType& sent, const TqDataType& received) {
    return sent.TypeId() == TqCounter::typeId &&
           static_cast<const TqCounter&>(sent).count > largestReadBack &&
           static_cast<const TqCounter&>(received).count == 0;
}

void PrintDifference(const char* name, const TqDataType& sent, const TqDataType& received) {
    TqString sentText;
    TqString receivedText;
    sent.ToString(sentText);
    received.ToString(receivedText);
    Complain("%s: sent %s, received %s", name, sentText.data, receivedText.data);
}

void Compare(const char* name, const TqDataType& sent, const TqDataType& received, Tally& tally) {
    if (sent.Equals(&received)) {
        ++tally.equal;
    } else if (WasTooLarge(sent, received)) {
        ++tally.tooLarge;
    } else {
        ++tally.different;
        PrintDifference(name, sent, received);
    }
}

// The items as `Poll::Send` writes them, an interface to a line.
void PrintItems(TqBuffer buffer) {
    printf("\nItems, from byte\n%6u ", 0U);
    PrintItem(buffer);
    PrintItem(buffer);
    while (buffer.readPosition < buffer.length) {
        printf("\n%6u ", buffer.readPosition);
        for (unsigned int v = 0; v < interfaceValueCount; ++v) PrintItem(buffer);
    }
    printf("\n");
}

// Compares each value that was sent with the one that was received.
void Compare(const Poll& sent, const Poll& received, unsigned int byteCount) {
    Tally tally = {};
    Compare("poll", sent.enabled, received.enabled, tally);
    Compare("count", TqCounter(sent.interfaces.count), TqCounter(received.interfaces.count), tally);
    for (unsigned int i = 1; i <= received.interfaces.count; ++i) {
        const Interface* one = ItemOf(sent.interfaces, i);
        const Interface* other = ItemOf(received.interfaces, i);
        for (unsigned int v = 0; v < interfaceValueCount; ++v) {
            Compare(one->name.data, one->Value(v), other->Value(v), tally);
        }
    }

    printf("\n%u values in %u bytes, read back: %u equal",
           tally.equal + tally.tooLarge + tally.different, byteCount, tally.equal);
    if (tally.tooLarge > 0) {
        printf(", %u above %u and so read back as 0", tally.tooLarge, largestReadBack);
    }
    if (tally.different > 0) printf(", %u DIFFERENT", tally.different);
    printf("\n");
}

}  // namespace

void CheckTransfer(const Poll& poll, bool showItems) {
    TqBuffer buffer;
    poll.Send(buffer);
    if (showItems) PrintItems(buffer);

    Poll received;
    received.Receive(buffer);
    Compare(poll, received, buffer.length);
}
