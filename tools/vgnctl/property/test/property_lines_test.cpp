#include "tools/vgnctl/property/property_lines.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tools/vgnctl/test/tool.h"

using vgnctl::json_line;
using vgnctl::text_line;

namespace {

using namespace std::string_literals;

}  // namespace

TEST(PropertyTextLine, IsPathAndValue) {
  EXPECT_EQ(text_line("/sys/name", "a = b"), "/sys/name=a = b");
  EXPECT_EQ(text_line("/sys/name", ""), "/sys/name=");
  EXPECT_EQ(text_line("/sys/gr\xC3\xBC\xC3\x9F", "\xE2\x82\xAC \xF0\x9F\x98\x80"),
            "/sys/gr\xC3\xBC\xC3\x9F=\xE2\x82\xAC \xF0\x9F\x98\x80");
}

TEST(PropertyTextLine, WritesControlCharactersAndBackslashAsEscapes) {
  EXPECT_EQ(text_line("/a", "1\n2\r3\t4\\5"), "/a=1\\n2\\r3\\t4\\\\5");
  EXPECT_EQ(text_line("/a\n/b=c", "\n"), "/a\\n/b\\x3dc=\\n");
  EXPECT_EQ(text_line("/a", "\0\x1B[31m\x7F"s), "/a=\\x00\\x1b[31m\\x7f");
  EXPECT_EQ(text_line("/a",
                      "\xC2\x9B"
                      "31m \xC2\xA0"),
            "/a=\\xc2\\x9b31m \xC2\xA0");
}

TEST(PropertyTextLine, WritesBytesThatAreNoUtf8AsEscapes) {
  EXPECT_EQ(text_line("/\xFF", "gr\xFC\xDF \xC3"), "/\\xff=gr\\xfc\\xdf \\xc3");
}

TEST(PropertyTextLine, BashTurnsEachByteBack) {
  std::string script;
  std::string values;
  for (int byte = 1; byte < 256; ++byte) {
    const std::string value = "<" + std::string(1, static_cast<char>(byte)) + ">";
    const std::string line = text_line("/a", value);
    EXPECT_EQ(line.find('\n'), std::string::npos);
    script += "read -r line <<'END'\n" + line + "\nEND\nprintf %b \"${line#*=}\"\n";
    values += value;
  }
  EXPECT_EQ(vgnctl::shell(script).out, values);
}

TEST(PropertyJsonLine, IsAnObjectOfPathAndValue) {
  EXPECT_EQ(json_line("/sys/name", "a = b"), R"({"path":"/sys/name","value":"a = b"})");
  EXPECT_EQ(json_line("/sys/name", ""), R"({"path":"/sys/name","value":""})");
  EXPECT_EQ(json_line("/\xC3\xBC", "\"\\\n"), "{\"path\":\"/\xC3\xBC\",\"value\":\"\\\"\\\\\\n\"}");
}

TEST(PropertyJsonLine, AnyUtf8ComesBackFromAParser) {
  const std::string value = "\0\x01\n\x7F \xC2\x9B \xE2\x80\xA8 \xF0\x9F\x98\x80"s;
  const auto line = json_line("/a", value);
  EXPECT_EQ(line.find('\n'), std::string::npos);
  EXPECT_EQ(nlohmann::json::parse(line), (nlohmann::json{{"path", "/a"}, {"value", value}}));
}

TEST(PropertyJsonLine, BytesThatAreNoUtf8AreReplacedAndTheWholeTextComesInHexToo) {
  EXPECT_EQ(json_line("/a", "gr\xFC\x00!"s),
            "{\"path\":\"/a\",\"value\":\"gr\xEF\xBF\xBD\\u0000!\",\"value_hex\":\"6772fc0021\"}");
  EXPECT_EQ(json_line("/\xC3", "1"), "{\"path\":\"/\xEF\xBF\xBD\",\"path_hex\":\"2fc3\",\"value\":\"1\"}");
}

TEST(PropertyJsonLine, EveryPairOfBytesGivesALineThatAParserTakes) {
  for (int first = 0; first < 256; ++first) {
    for (int second = 0; second < 256; ++second) {
      const std::string value{static_cast<char>(first), static_cast<char>(second)};
      const auto parsed = nlohmann::json::parse(json_line("/a", value), nullptr, false);
      ASSERT_FALSE(parsed.is_discarded()) << first << ' ' << second;
      ASSERT_EQ(parsed.contains("value_hex"), parsed["value"] != value) << first << ' ' << second;
    }
  }
}
