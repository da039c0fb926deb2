#pragma once

#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>
#include <fstream>
#include <string>

namespace test_support {

/// Makes the C library write and read a decimal comma for as long as it lives. Brings its own locale, since a small
/// installation has none that does.
class comma_locale_t {
 public:
  comma_locale_t() {
    const std::string folder = ::testing::TempDir();
    std::ofstream(folder + "comma.charmap") << "CHARMAP\n<U002C> \\x2c COMMA\nEND CHARMAP\n";
    std::ofstream(folder + "comma.definition")
        << "LC_NUMERIC\ndecimal_point \"<U002C>\"\nthousands_sep \"\"\ngrouping -1\nEND LC_NUMERIC\n";
    // The status says no more than that the other categories are missing; whether it worked, setlocale tells.
    [[maybe_unused]] const int status = std::system(("localedef -c --quiet -f " + folder + "comma.charmap -i " +
                                                     folder + "comma.definition " + folder + "comma 2>/dev/null")
                                                        .c_str());
    setenv("LOCPATH", folder.c_str(), 1);
    EXPECT_NE(std::setlocale(LC_NUMERIC, "comma"), nullptr);
    EXPECT_EQ(std::strtof("0,5", nullptr), 0.5F);
  }

  ~comma_locale_t() {
    std::setlocale(LC_NUMERIC, "C");
    unsetenv("LOCPATH");
  }

  comma_locale_t(const comma_locale_t&) = delete;
  comma_locale_t& operator=(const comma_locale_t&) = delete;
};

}  // namespace test_support
