#pragma once

#include <csignal>

namespace zyl {

/// Makes SIGILL, SIGSEGV, SIGBUS and SIGABRT end in `report_fatal_signal`, on the thread that they hit, with all
/// signals blocked. Call it at the very start of `main`. `program_name` is what the report calls the program; the text
/// must live as long as the process, and null is an empty name.
void install_fatal_signal_handler(const char* program_name);

/// What the handler does: adds a report to "/media/log/stacktrace", "/var/log/stacktrace_new" and standard error, each
/// as far as it can be written, and ends the process by `exit(1)`. Takes the four signals too, for the exit handlers.
///
/// The report: one line each for the program, the time, the signal, its code and its address, and the stack. It is
/// written without allocating; what is sent meanwhile to the thread that the handler runs on is held back, and
/// forgotten.
///
/// There is one report and the status is 1, also if an exit handler crashes or hangs, as it may on a lock of what
/// crashed: the process ends there, in the latter case after five seconds. Another thread that crashes meanwhile waits
/// for the end.
[[noreturn]] void report_fatal_signal(int signal, const siginfo_t& info);

}  // namespace zyl
