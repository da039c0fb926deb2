#include "zyl/assert.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>

namespace zyl {

void assertion_failed(const char* condition, const char* file, unsigned line, const char* function) noexcept {
  std::fprintf(stderr, "%s: %s:%u: %s: Assertion `%s' failed.\n", program_invocation_short_name, file, line, function,
               condition);
  std::abort();
}

}  // namespace zyl
