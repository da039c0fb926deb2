#include "sim/testbed.h"

#include <umockdev.h>

#if defined(__SANITIZE_THREAD__)
// GLib locks by futex calls of its own, which the thread sanitizer cannot see: whatever these two libraries hand from
// thread to thread would be reported.
extern "C" __attribute__((visibility("default"))) const char* __tsan_default_suppressions() {
  return "called_from_lib:libglib-2.0.so\ncalled_from_lib:libgobject-2.0.so\ncalled_from_lib:libgio-2.0.so\n"
         "called_from_lib:libumockdev.so\n";
}
#endif

namespace sim {
namespace {

std::string taken(gchar* text) {
  std::string copy(text);
  g_free(text);
  return copy;
}

}  // namespace

testbed_t::testbed_t() : bed(umockdev_testbed_new()), root_folder(taken(umockdev_testbed_get_root_dir(bed))) {}

testbed_t::~testbed_t() { g_object_unref(bed); }

std::map<std::string, std::string> testbed_t::environment() const {
  return {{"LD_PRELOAD", "libumockdev-preload.so.0"}, {"UMOCKDEV_DIR", root_folder}};
}

}  // namespace sim
