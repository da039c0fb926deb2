#include "zyl/fatal_signal_texts.h"

#include <array>
#include <csignal>
#include <cstddef>
#include <span>

namespace zyl {
namespace {

// The texts of each signal's codes, from 1 on (bits/siginfo-consts.h).

constexpr std::array ill_codes{
    "ILL_ILLOPC (illegal opcode)",    "ILL_ILLOPN (illegal operand)",      "ILL_ILLADR (illegal addressing mode)",
    "ILL_ILLTRP (illegal trap)",      "ILL_PRVOPC (privileged opcode)",    "ILL_PRVREG (privileged register)",
    "ILL_COPROC (coprocessor error)", "ILL_BADSTK (internal stack error)",
};

constexpr std::array fpe_codes{
    "FPE_INTDIV (integer divide by zero)",           "FPE_INTOVF (integer overflow)",
    "FPE_FLTDIV (floating-point divide by zero)",    "FPE_FLTOVF (floating-point overflow)",
    "FPE_FLTUND (floating-point underflow)",         "FPE_FLTRES (floating-point inexact result)",
    "FPE_FLTINV (floating-point invalid operation)", "FPE_FLTSUB (subscript out of range)",
};

constexpr std::array segv_codes{
    "SEGV_MAPERR (address not mapped to object)",
    "SEGV_ACCERR (invalid permissions for mapped object)",
};

constexpr std::array bus_codes{
    "BUS_ADRALN (invalid address alignment)",         "BUS_ADRERR (nonexistent physical address)",
    "BUS_OBJERR (object-specific hardware error)",    "BUS_MCEERR_AR (hardware memory error consumed)",
    "BUS_MCEERR_AO (hardware memory error detected)",
};

std::span<const char* const> codes_of(int signal) {
  switch (signal) {
    case SIGILL:
      return ill_codes;
    case SIGFPE:
      return fpe_codes;
    case SIGSEGV:
      return segv_codes;
    case SIGBUS:
      return bus_codes;
    default:
      return {};
  }
}

}  // namespace

const char* fatal_signal_text(int signal) {
  switch (signal) {
    case SIGILL:
      return "SIGILL (illegal)";
    case SIGFPE:
      return "SIGFPE (floating point exception)";
    case SIGSEGV:
      return "SIGSEGV (segmentation fault)";
    case SIGBUS:
      return "SIGBUS (bus error)";
    case SIGABRT:
      return "SIGABRT (abnormal termination)";
    default:
      return "(unknown signal)";
  }
}

const char* fatal_code_text(int signal, int code) {
  const auto codes = codes_of(signal);
  if (code < 1 || static_cast<std::size_t>(code) > codes.size()) {
    return "(unknown code)";
  }
  return codes[static_cast<std::size_t>(code) - 1];
}

}  // namespace zyl
