// JSON as zelhost reads and writes it, through nlohmann-json. Output has ", " and ": " between
// items and doubles to 17 significant digits, so results compare byte for byte.
#pragma once

#include <initializer_list>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

namespace zelhost {

using Json = nlohmann::ordered_json;

// The containers at the JSON pointers in `oneItemPerLine` ("" is the whole value) put each item
// on a line of its own, aligned under the first. A string may hold an unpaired UTF-16 surrogate
// in its three-byte form (text read from UTF-16 can); it is written as a \u escape.
std::string jsonText(const Json& value,
                     std::initializer_list<std::string_view> oneItemPerLine = {});

// One JSON document; an unpaired surrogate escape (jsonText writes them) reads as U+FFFD. Throws
// std::invalid_argument saying where and what is wrong.
Json parseJson(std::string_view text);

}  // namespace zelhost
