#include "tools/vgnctl/status/status_text.h"

#include <gtest/gtest.h>

using nlohmann::json;
using vgnctl::status_json;
using vgnctl::status_table;

TEST(StatusText, TableHasNamesValuesAndUnitsInColumns) {
  EXPECT_EQ(status_table({{"warm", 41.5, "°C"}, {"fan_speed", 3150, "turns a minute"}, {"volts", 3.302, "V"}}),
            "warm       41.5   °C\n"
            "fan_speed  3150   turns a minute\n"
            "volts      3.302  V\n");
}

TEST(StatusText, TableHasQuotationMarksForAnEmptyText) {
  EXPECT_EQ(status_table({{"id", "", ""}, {"pwm", 7, "%"}}), "id   \"\"\npwm  7  %\n");
  EXPECT_EQ(status_json({{"id", "", ""}}), R"({"id":""})");
}

TEST(StatusText, TableTellsWhatIsNotAvailableWithoutItsUnit) {
  EXPECT_EQ(status_table({{"fan", nullptr, "turns a minute"}, {"id", nullptr, ""}, {"pwm", 7, "of 255"}}),
            "fan  not available\n"
            "id   not available\n"
            "pwm  7  of 255\n");
}

TEST(StatusText, TableHasNoBlanksBehindValuesWithoutAUnitHoweverLong) {
  EXPECT_EQ(status_table({{"id", std::string(30, 'x'), ""}, {"info", json::array({1, 22, 333}), ""}, {"pwm", 7, "%"}}),
            "id    " + std::string(30, 'x') + "\ninfo  1 22 333\npwm   7  %\n");
}

TEST(StatusText, TableKeepsATextOnOneLineAndEscapesWhatWouldSteerATerminal) {
  EXPECT_EQ(status_table({{"id", "a\\b\r\x1B[31m\xFF°", ""}}), "id  a\\\\b\\r\\x1b[31m\\xff°\n");
}

TEST(StatusText, JsonIsOneObjectInTheOrderOfTheItems) {
  EXPECT_EQ(status_json({{"warm", 41.5, "°C"},
                         {"fan", 3150, "turns a minute"},
                         {"id", "4\"", ""},
                         {"info", json::array({1, 2, 4294967295U}), ""},
                         {"absent", nullptr, "V"}}),
            R"({"warm":41.5,"fan":3150,"id":"4\"","info":[1,2,4294967295],"absent":null})");
}

TEST(StatusText, JsonReplacesWhatIsNoUtf8) {
  EXPECT_EQ(status_json({{"id", "a\xFFz", ""}}), "{\"id\":\"a\xEF\xBF\xBDz\"}");
}

TEST(StatusText, NothingIsAnEmptyTableAndAnEmptyObject) {
  EXPECT_EQ(status_table({}), "");
  EXPECT_EQ(status_json({}), "{}");
}
