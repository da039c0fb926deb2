#pragma once

#include <unistd.h>

#include <string>

namespace control_lib {

/// Where a log line comes from, ahead of its text: "  [thread]: [source:line] ", with the kernel's id of the thread.
inline std::string source_tag(const std::string& source, int line) {
  return "  [" + std::to_string(gettid()) + "]: [" + source + ":" + std::to_string(line) + "] ";
}

}  // namespace control_lib
