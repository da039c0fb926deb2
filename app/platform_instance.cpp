#include "zyl/log/module_logger.h"
#include "zyl/platform.h"

namespace {

/// The identity of the hardware that this process runs on, read before `main`: without one it does not run.
class platform_instance_t {
 public:
  platform_instance_t() : platform(read()) { zyl::platform_t::install(&platform); }
  ~platform_instance_t() { zyl::platform_t::install(nullptr); }

  platform_instance_t(const platform_instance_t&) = delete;
  platform_instance_t& operator=(const platform_instance_t&) = delete;

 private:
  static zyl::platform_t read() {
    // The logger must be there first: a failure is told before the process ends.
    zyl::module_logger("zyl_platform");
    return zyl::platform_t::from_bus();
  }

  zyl::platform_t platform;
};

const platform_instance_t platform_instance;

}  // namespace
