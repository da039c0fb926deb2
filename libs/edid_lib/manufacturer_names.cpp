#include "edid_lib/manufacturer_names.h"

#include <algorithm>
#include <iterator>

namespace edid_lib {
namespace {

struct manufacturer_t {
  std::string_view id;
  std::string_view name;
};

constexpr manufacturer_t manufacturers[] = {
    {"AAA", "Avolites"},  {"ACI", "Ancor"},  {"ACR", "Acer"},    {"APP", "Apple"},   {"DEL", "Dell"},
    {"FUS", "Fujitsu"},   {"GSM", "LG"},     {"HEC", "Sharp"},   {"HWP", "HP"},      {"LEN", "Lenovo"},
    {"MEI", "Panasonic"}, {"OVR", "Oculus"}, {"PHL", "Philips"}, {"PIO", "Pioneer"}, {"PLN", "Planar"},
    {"SAM", "Samsung"},   {"SHP", "Sharp"},  {"SNY", "Sony"},    {"TSB", "Toshiba"}, {"VIZ", "Vizio"},
    {"VSC", "ViewSonic"}, {"YMH", "Yamaha"},
};

}  // namespace

std::string_view manufacturer_name(std::string_view id) {
  const auto* const found = std::find_if(std::begin(manufacturers), std::end(manufacturers),
                                         [id](const manufacturer_t& one) { return one.id == id; });
  return found != std::end(manufacturers) ? found->name : id;
}

}  // namespace edid_lib
