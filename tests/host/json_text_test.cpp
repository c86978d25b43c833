#include "json_text.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "near_names.h"

namespace {

using zelhost::Json;

TEST(JsonTextTest, WritesTheContractsLayout) {
  const struct {
    Json value;
    std::initializer_list<std::string_view> oneItemPerLine;
    const char* text;
  } cases[] = {
      {Json{{"a", 1}, {"b", {true, nullptr}}}, {}, R"({"a": 1, "b": [true, null]})"},
      {Json{{"z", 1}, {"a", 2}}, {}, R"({"z": 1, "a": 2})"},
      {Json(0.1), {}, "0.10000000000000001"},
      {Json(2.5), {}, "2.5"},
      {Json(1e23), {}, "9.9999999999999992e+22"},
      {Json(-3), {}, "-3"},
      {Json(18446744073709551615ULL), {}, "18446744073709551615"},
      {Json("a\"b\\c\n\x01\t"), {}, R"("a\"b\\c\n\u0001\t")"},
      {Json("caf\xC3\xA9"), {}, "\"caf\xC3\xA9\""},
      {Json("a\xFF"), {}, "\"a\xEF\xBF\xBD\""},
      {Json("\xED\xA0\xBD|\xED\xB8\x80"), {}, R"("\ud83d|\ude00")"},
      {Json("\xED\xA0"), {}, "\"\xEF\xBF\xBD\xEF\xBF\xBD\""},
      {Json::array(), {""}, "[]"},
      {Json{1, 2}, {""}, "[1,\n 2]"},
      {Json{{"runs", {1, 2}}, {"more", {3, 4}}},
       {"", "/runs"},
       "{\"runs\": [1,\n          2],\n \"more\": [3, 4]}"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(zelhost::jsonText(c.value, c.oneItemPerLine), c.text) << c.value.dump();
  }
}

TEST(JsonTextTest, ReadsWhatItWritesAndUnpairedSurrogates) {
  const struct {
    const char* text;
    Json value;
  } cases[] = {
      {R"({"a": [1, 2.5, "x"], "b": null})", Json{{"a", {1, 2.5, "x"}}, {"b", nullptr}}},
      {R"("\ud83d\ude00")", Json("\xF0\x9F\x98\x80")},
      {R"("\ud83d")", Json("\xEF\xBF\xBD")},
      {R"("\ude00x\ud83d")", Json("\xEF\xBF\xBDx\xEF\xBF\xBD")},
      {R"("\ud83d\u0041")", Json("\xEF\xBF\xBD"
                                 "A")},
      {R"("\\ud83d")", Json("\\ud83d")},
      {R"("\"\u00e9")", Json("\"\xC3\xA9")},
  };
  for (const auto& c : cases) EXPECT_EQ(zelhost::parseJson(c.text), c.value) << c.text;
  const char* written = "{\"runs\": [{\"text\": \"\\ud83d\"},\n          {\"text\": \"\\u0001\"}]}";
  EXPECT_EQ(zelhost::jsonText(zelhost::parseJson(written), {"", "/runs"}),
            "{\"runs\": [{\"text\": \"\xEF\xBF\xBD\"},\n          {\"text\": \"\\u0001\"}]}");
}

TEST(JsonTextTest, MalformedTextSaysWhere) {
  for (const char* text : {"{", "1 2", "{\"a\" 1}", "\"\\ud83d", "", "[1,]"}) {
    try {
      zelhost::parseJson(text);
      ADD_FAILURE() << text << " was read";
    } catch (const std::invalid_argument& error) {
      EXPECT_TRUE(std::string_view(error.what()).starts_with("malformed JSON: ")) << error.what();
      EXPECT_NE(std::string_view(error.what()).find("column"), std::string_view::npos)
          << error.what();
    }
  }
}

TEST(NearNamesTest, EditDistanceIgnoresCase) {
  const struct {
    const char* a;
    const char* b;
    std::size_t distance;
  } cases[] = {
      {"kitten", "sitting", 3}, {"", "abc", 3},  {"abc", "", 3},         {"ABC", "abc", 0},
      {"flaw", "lawn", 2},      {"ab", "ba", 2}, {"StrZL", "StrZEL", 1},
  };
  for (const auto& c : cases)
    EXPECT_EQ(zelhost::editDistance(c.a, c.b), c.distance) << c.a << " " << c.b;
}

TEST(NearNamesTest, SuggestsContainingAndCloseNamesClosestFirst) {
  const std::vector<std::string> known = {"_yDecodeStringZEL",  "_yDecodeMemoryZEL",
                                          "UnicodeStringZEL",   "EncodingToURLZEL",
                                          "DecodingFromURLZEL", "StrZEL",
                                          "ScientificStrZEL",   "EncodingToURLZEL"};
  const struct {
    const char* wanted;
    std::vector<std::string> names;
  } cases[] = {
      {"yDecodeStringZEL", {"_yDecodeStringZEL"}},
      {"url", {"EncodingToURLZEL", "DecodingFromURLZEL"}},
      {"strzl", {"StrZEL"}},
      {"str", {"StrZEL", "ScientificStrZEL", "UnicodeStringZEL", "_yDecodeStringZEL"}},
      {"zz", {}},
      {"QuiteUnrelatedZEL", {}},
      {"ZEL",
       {"StrZEL", "EncodingToURLZEL", "ScientificStrZEL", "UnicodeStringZEL", "_yDecodeMemoryZEL"}},
  };
  for (const auto& c : cases) EXPECT_EQ(zelhost::nearNames(c.wanted, known), c.names) << c.wanted;
}

}  // namespace
