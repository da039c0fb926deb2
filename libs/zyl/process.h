#pragma once

#include <sys/types.h>

#include <cstdint>

namespace zyl {

/// Asks a child process to end, by SIGHUP, and waits for it: looks at once and then every 100 ms, for `limit_ms`
/// milliseconds at least. True when it has ended, or is nobody that one could wait for; false if it still runs.
///
/// `process` below -1 means all of that process group, and then the first child that ends tells
/// `process_exception_t` "waitpid returned wrong pid (got %d, expected %d)"; 0 and -1, which mean more than one can
/// want, are refused. Throws `last_process_exception_t` "error signaling process %d to stop" (also when it is refused
/// or there is no such process) or "error waiting on process %d to stop". Sleeps on the caller's thread.
bool stop_process(pid_t process, int32_t limit_ms);

}  // namespace zyl
