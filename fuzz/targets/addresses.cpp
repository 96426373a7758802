// Sequences of operations on an address and a mask, beside a number and a flag for each.

#include "../Fuzz.h"
#include "../Values.h"
#include "TqNetworkMask.h"

namespace Addresses {

struct Model {
    unsigned int number = 0;
    bool isValid = false;
    bool isMask = false;

    bool Takes(unsigned int other) {
        if (isMask && !IsMask(other)) return false;
        number = other;
        isValid = true;
        return true;
    }
};

bool IsAsModelled(const TqIpAddress& address, const Model& model) {
    return address.address == model.number && address.valid == (model.isValid ? 1 : 0) &&
           address.getIpAddress() == model.number;
}

// A number that may be a mask.
unsigned int AnyNumber(Input& input) {
    if (input.Below(2) == 0) return input.Number();
    return 0xFFFFFFFFu << input.Below(32);
}

// A text that may be an address.
std::string AnyText(Input& input) {
    switch (input.Below(3)) {
        case 0:
            return input.Text(24);
        case 1: {
            const std::string address = DottedText(AnyNumber(input));
            return address + input.Text(2);
        }
        default: {
            // Of fields that may be too large.
            std::string fields = std::to_string(input.Byte() * 2);
            for (int i = 0; i < 3; ++i) fields += "." + std::to_string(input.Byte() * 2);
            return fields;
        }
    }
}

void TakeText(TqIpAddress& address, Model& model, Input& input) {
    const std::string text = AnyText(input);
    unsigned int number = 0;
    const bool isTaken = AddressOf(text.c_str(), number) && model.Takes(number);
    const char* const pointer = text.c_str();
    if (input.Below(2) == 0) {
        MUST(address.fromString(pointer) == isTaken);
    } else {
        address = TqString(pointer);
    }
}

void Make(Input& input) {
    const unsigned int number = AnyNumber(input);
    MUST(TqNetworkMask::isValidMask(number) == IsMask(number));
    const TqNetworkMask mask(number);
    MUST(mask.address == number && (mask.valid == 1) == IsMask(number));
    const std::string text = AnyText(input);
    unsigned int read = 0;
    const bool isAddress = AddressOf(text.c_str(), read);
    const TqString string(text.c_str());
    const TqIpAddress made(string);
    MUST(made.valid == (isAddress ? 1 : 0) && made.address == (isAddress ? read : 0));
    const bool isMask = isAddress && IsMask(read);
    const TqNetworkMask madeMask(string);
    MUST(madeMask.valid == (isMask ? 1 : 0) && madeMask.address == (isMask ? read : 0));
    MUST(TqNetworkMask::isValidMask(string) == isMask);
}

void Look(const TqIpAddress& one, const Model& model, const TqIpAddress& other,
          const Model& otherModel) {
    TqString text("before");
    one.toString(text);
    const std::string expected = model.isValid ? DottedText(model.number) : "0.0.0.0";
    MUST(Counted(text) == expected);
    const bool areEqual = model.isValid == otherModel.isValid && model.number == otherModel.number;
    MUST((one == other) == areEqual && (one != other) == !areEqual);
    const unsigned long number = otherModel.number;
    MUST((one == number) == (model.isValid && model.number == otherModel.number));
    Tell(expected);
}

void Fuzz(Input& input) {
    TqIpAddress address;
    TqNetworkMask mask;
    TqIpAddress* const both[] = {&address, &mask};
    Model models[2];
    models[1].isMask = true;
    for (int steps = 0; steps < 64 && !input.IsEmpty(); ++steps) {
        const unsigned int which = input.Below(2);
        TqIpAddress& its = *both[which];
        Model& model = models[which];
        switch (input.Below(6)) {
            case 0: {
                const unsigned int number = AnyNumber(input);
                MUST(its.fromUInt32(number) == model.Takes(number));
                break;
            }
            case 1:
                TakeText(its, model, input);
                break;
            case 2:
                its.LogicalAND(*both[1 - which]);
                model.number &= models[1 - which].number;
                break;
            case 3: {
                const unsigned int number = AnyNumber(input);
                its.LogicalAND(static_cast<unsigned long>(number));
                model.number &= number;
                break;
            }
            case 4:
                Make(input);
                its = *both[1 - which];
                model.number = models[1 - which].number;
                model.isValid = models[1 - which].isValid;
                break;
            default:
                Look(its, model, *both[1 - which], models[1 - which]);
        }
        MUST(IsAsModelled(its, model));
        MUST(TakeReports() == 0);
    }
    Tell(address.address);
    Tell(mask.address);
}

const Target target("addresses", Fuzz);

}  // namespace Addresses
