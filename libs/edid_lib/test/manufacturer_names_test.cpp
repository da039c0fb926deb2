#include "edid_lib/manufacturer_names.h"

#include <gtest/gtest.h>

#include <utility>

using edid_lib::manufacturer_name;

TEST(ManufacturerNames, KnownMakersGoByTheirNames) {
  const std::pair<const char*, const char*> makers[] = {
      {"AAA", "Avolites"},  {"ACI", "Ancor"},  {"ACR", "Acer"},    {"APP", "Apple"},   {"DEL", "Dell"},
      {"FUS", "Fujitsu"},   {"GSM", "LG"},     {"HEC", "Sharp"},   {"HWP", "HP"},      {"LEN", "Lenovo"},
      {"MEI", "Panasonic"}, {"OVR", "Oculus"}, {"PHL", "Philips"}, {"PIO", "Pioneer"}, {"PLN", "Planar"},
      {"SAM", "Samsung"},   {"SHP", "Sharp"},  {"SNY", "Sony"},    {"TSB", "Toshiba"}, {"VIZ", "Vizio"},
      {"VSC", "ViewSonic"}, {"YMH", "Yamaha"}};
  for (const auto& [id, name] : makers) {
    EXPECT_EQ(manufacturer_name(id), name);
  }
}

TEST(ManufacturerNames, OthersGoByTheirId) {
  EXPECT_EQ(manufacturer_name("XYZ"), "XYZ");
  EXPECT_EQ(manufacturer_name("acr"), "acr");
  EXPECT_EQ(manufacturer_name(""), "");
}
