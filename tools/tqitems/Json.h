#ifndef JSON_H
#define JSON_H

#include <string>

#include "Items.h"

/// The items as a JSON object: "items", each with "offset", "length", "hex", and "text" where all
/// of it is ASCII; "type", "value" and "differs" where types are known; "corrupt" with "offset" and
/// "problem" where the buffer is.
std::string ToJson(const Decoded& decoded);

/// The buffer that such an object says, or an array of such items: for each item the bytes of its
/// "hex", else those of its "text", else its "value" as one of "type". Throws NotEncoded when that
/// is not what the text is.
std::string EncodeJson(const std::string& text);

#endif
