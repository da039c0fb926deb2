#include "zyl/files.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "zyl/exceptions.h"

namespace fs = std::filesystem;

namespace {

constexpr const char* path = "/tmp/files_test";

void put(const std::string& text) { std::ofstream(path, std::ios::binary) << text; }

std::string failure_of(const std::string& file) {
  try {
    zyl::read_whole_file(file);
    return "";
  } catch (const zyl::exception_t& error) {
    return error.what();
  }
}

}  // namespace

TEST(Exists, IsTrueForWhateverIsThere) {
  put("");
  fs::create_symlink(path, "/tmp/files_test_link");
  for (const char* there : {path, "/tmp", "/dev/null", "/tmp/files_test_link"}) {
    EXPECT_TRUE(zyl::exists(there)) << there;
  }
}

TEST(Exists, IsFalseForNothingAndForALinkToNothing) {
  fs::create_symlink("/tmp/nothing", "/tmp/files_test_dangling");
  for (const char* missing : {"/tmp/nothing", "/tmp/files_test_dangling", "", "/dev/null/x"}) {
    EXPECT_FALSE(zyl::exists(missing)) << missing;
  }
}

TEST(ReadFile, GivesAllBytes) {
  for (const std::size_t size : {0U, 1U, 65535U, 65536U, 65537U, 200'000U}) {
    const std::string text = std::string("\0\n\xff", 3) + std::string(size, 'x');
    put(text);
    std::string result = "before";
    EXPECT_TRUE(zyl::read_file(path, result, 1'000'000)) << size;
    EXPECT_EQ(result, text) << size;
  }
}

TEST(ReadFile, RefusesAFileOfTheLimitOrMore) {
  put("12345");
  std::string result = "before";
  EXPECT_FALSE(zyl::read_file(path, result, 4));
  EXPECT_FALSE(zyl::read_file(path, result, 5));
  EXPECT_EQ(result, "before");
  EXPECT_TRUE(zyl::read_file(path, result, 6));
  EXPECT_EQ(result, "12345");
}

TEST(ReadFile, ReadsFilesOfTheKernelUpToTheLimit) {
  std::string result;
  EXPECT_TRUE(zyl::read_file("/proc/version", result, 65536));
  EXPECT_EQ(result.substr(0, 5), "Linux");
  EXPECT_FALSE(zyl::read_file("/proc/version", result, 5));
  EXPECT_FALSE(zyl::read_file("/dev/zero", result, 100'000));
}

TEST(ReadFile, RefusesWhatIsNotThereOrNoStreamOfBytes) {
  ASSERT_EQ(mkfifo("/tmp/files_test_fifo", 0600), 0);
  std::fstream both_ends("/tmp/files_test_fifo");
  std::string result = "before";
  for (const char* refused : {"/tmp/nothing", "/tmp", "/tmp/files_test_fifo"}) {
    EXPECT_FALSE(zyl::read_file(refused, result, 65536)) << refused;
  }
  EXPECT_EQ(result, "before");
}

TEST(ReadWholeFile, GivesAllBytes) {
  for (const std::size_t size : {0U, 1U, 65533U, 65534U, 200'000U}) {
    const std::string text = std::string("\0\n\xff", 3) + std::string(size, 'x');
    put(text);
    EXPECT_EQ(zyl::read_whole_file(path), text) << size;
  }
  put("");
  EXPECT_EQ(zyl::read_whole_file(path), "");
}

TEST(ReadWholeFile, TellsThatAFileDoesNotOpen) {
  EXPECT_EQ(failure_of("/tmp/nothing"), "Couldn't open the specified file: /tmp/nothing because std::ios::failbit");
}

TEST(ReadWholeFile, TellsThatAFileDoesNotRead) {
  EXPECT_EQ(failure_of("/tmp"), "Couldn't open the specified file: /tmp because std::ios::badbit");
}
