#include "app/block_check.h"

#include <sstream>
#include <string>

namespace vgn_control {

bool isControlBlocked(const char* value) {
  // The default is a file name, and yet nobody opens it: the word itself is the answer. A blank value keeps it.
  std::string word = "/etc/primary_feature_toggle.conf";
  if (value != nullptr) {
    std::istringstream(value) >> word;
  }
  return word == "1";
}

}  // namespace vgn_control
