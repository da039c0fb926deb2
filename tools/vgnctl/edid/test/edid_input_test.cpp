#include "tools/vgnctl/edid/edid_input.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <stdexcept>

#include "test_support/edid_builder.h"
#include "tools/vgnctl/edid/hex_text.h"
#include "tools/vgnctl/test/tool.h"

using testing::HasSubstr;
using testing::StartsWith;
using testing::ThrowsMessage;
using vgnctl::edid_in;
using vgnctl::hex_lines;
using vgnctl::hex_text;

namespace {

using bytes_t = std::vector<uint8_t>;

bytes_t tv() { return test_support::edid_builder_t().cta(1, {test_support::data_block(2, {0x90, 0x04})}).build(); }

std::string as_text(const bytes_t& bytes) { return {bytes.begin(), bytes.end()}; }

bytes_t as_bytes(std::string_view text) { return {text.begin(), text.end()}; }

std::string upper(std::string text) {
  for (char& one : text) {
    one = one >= 'a' && one <= 'f' ? static_cast<char>(one - 'a' + 'A') : one;
  }
  return text;
}

}  // namespace

TEST(EdidInput, RawBytesAreTakenAsTheyAre) {
  EXPECT_EQ(edid_in(as_text(tv())), tv());
  EXPECT_EQ(edid_in(""), bytes_t{});
  EXPECT_EQ(edid_in("no EDID"), as_bytes("no EDID"));
}

TEST(EdidInput, HexTextOfAWholeBlockIsReadInAnyLayout) {
  const bytes_t bytes = tv();
  EXPECT_EQ(edid_in(hex_text(bytes)), bytes);
  EXPECT_EQ(edid_in(upper(hex_text(bytes))), bytes);
  EXPECT_EQ(edid_in(hex_lines(bytes)), bytes);
  EXPECT_EQ(edid_in("\r\n\t " + hex_lines(bytes) + "\v\f"), bytes);
  const bytes_t base(bytes.begin(), bytes.begin() + 128);
  EXPECT_EQ(edid_in(hex_text(base)), base);
}

TEST(EdidInput, HexTextOfLessThanABlockIsRaw) {
  const std::string digits(255, '0');
  EXPECT_EQ(edid_in(digits), as_bytes(digits));
  EXPECT_EQ(edid_in(digits + '0'), bytes_t(128, 0));
  EXPECT_EQ(edid_in(digits + "00"), bytes_t(128, 0));
}

TEST(EdidInput, HexTextWithAnythingElseInItIsRaw) {
  for (const char* other : {"0x", ",", "-", "\xC2\xA0"}) {
    const std::string text = hex_text(tv()) + other;
    EXPECT_EQ(edid_in(text), as_bytes(text)) << other;
  }
  const std::string text = hex_text(tv()) + '\0';
  EXPECT_EQ(edid_in(text), as_bytes(text));
}

TEST(EdidInput, BlockOfTheDecoderIsFoundInWhatItPrints) {
  const std::string rest = "\n----------------\n\nBlock 0, Base EDID:\n  EDID Structure Version & Revision: 1.3\n";
  EXPECT_EQ(edid_in("edid-decode (hex):\n\n" + hex_lines(tv()) + rest), tv());
  EXPECT_EQ(edid_in("A TV says:\nedid-decode (hex):\r\n\r\n" + hex_text(tv()) + rest), tv());
  EXPECT_EQ(edid_in("edid-decode (hex): 00 ff"), (bytes_t{0x00, 0xFF}));
}

TEST(EdidInput, BlockOfTheDecoderEndsAtTheFirstOtherLine) {
  EXPECT_EQ(edid_in("edid-decode (hex):\n00 ff\n\nff\nadded later\nff\n"), (bytes_t{0x00, 0xFF, 0xFF}));
  EXPECT_EQ(edid_in("edid-decode (hex):\n00 ff\nff 00 f\nfa\n"), (bytes_t{0x00, 0xFF, 0xFF, 0x00, 0xFF}));
}

TEST(EdidInput, FirstBlockOfTheDecoderCounts) {
  const std::string blocks = "edid-decode (hex):\n00\n---\nedid-decode (hex):\nff\n";
  EXPECT_EQ(edid_in(blocks), bytes_t{0x00});
}

TEST(EdidInput, HeadingWithoutDigitsIsNoBlock) {
  EXPECT_EQ(edid_in("edid-decode (hex):"), as_bytes("edid-decode (hex):"));
  EXPECT_EQ(edid_in("edid-decode (hex): is what to look for\n00\n"),
            as_bytes("edid-decode (hex): is what to look for\n00\n"));
  EXPECT_EQ(edid_in("edid-decode (hex):\nnone\nedid-decode (hex):\nff\n"), bytes_t{0xFF});
}

TEST(EdidInput, FileIsReadWhole) {
  const bytes_t bytes(10'000, 0xA5);
  vgnctl::write_file("/tmp/edid", bytes);
  EXPECT_EQ(vgnctl::read_file("/tmp/edid"), as_text(bytes));
  vgnctl::write_file("/tmp/edid", {0x01});
  EXPECT_EQ(vgnctl::read_file("/tmp/edid"), "\x01");
}

TEST(EdidInput, FileThatCannotBeReadIsNamed) {
  EXPECT_THAT([] { vgnctl::read_file("/tmp/none"); },
              ThrowsMessage<std::runtime_error>(StartsWith("/tmp/none: No such file")));
  EXPECT_THAT([] { vgnctl::read_file("/tmp"); }, ThrowsMessage<std::runtime_error>(StartsWith("/tmp: Is a directory")));
  EXPECT_THAT([] { vgnctl::read_file("/dev/zero"); }, ThrowsMessage<std::runtime_error>(HasSubstr("too large")));
}

TEST(EdidInput, FileThatCannotBeWrittenIsNamed) {
  EXPECT_THAT([] { vgnctl::write_file("/tmp/none/edid", {0x01}); },
              ThrowsMessage<std::runtime_error>(StartsWith("/tmp/none/edid: No such file")));
  EXPECT_THAT([] { vgnctl::write_file("/dev/full", bytes_t(128, 0)); },
              ThrowsMessage<std::runtime_error>(StartsWith("/dev/full: No space")));
}
