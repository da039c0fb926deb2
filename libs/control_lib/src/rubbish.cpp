#include "control_lib/src/rubbish.h"

#include <memory>

namespace control_lib {

rubbish_t::~rubbish_t() = default;

rubbish_list_t::~rubbish_list_t() { run_down(); }

bool rubbish_list_t::put(rubbish_t* item) {
  if (item->link != nullptr) {
    return false;
  }
  item->link = head != nullptr ? head : item;
  head = item;
  return true;
}

void rubbish_list_t::run_down() {
  while (head != nullptr) {
    const std::unique_ptr<rubbish_t> freed(head);
    head = freed->link != freed.get() ? freed->link : nullptr;
  }
}

}  // namespace control_lib
