#pragma once

namespace zyl {

/// A signal as the report of a crash names it. Allocates nothing.
const char* fatal_signal_text(int signal);

/// What a signal's `si_code` says, as the report of a crash names it. Allocates nothing.
const char* fatal_code_text(int signal, int code);

}  // namespace zyl
