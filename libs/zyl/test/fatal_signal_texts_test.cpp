#include "zyl/fatal_signal_texts.h"

#include <gtest/gtest.h>

#include <csignal>
#include <initializer_list>
#include <string>
#include <vector>

namespace {

using zyl::fatal_code_text;
using zyl::fatal_signal_text;

struct codes_t {
  int signal;
  std::vector<const char*> texts;  // of the codes from 1 on
};

const codes_t all_codes[] = {
    {SIGILL,
     {"ILL_ILLOPC (illegal opcode)", "ILL_ILLOPN (illegal operand)", "ILL_ILLADR (illegal addressing mode)",
      "ILL_ILLTRP (illegal trap)", "ILL_PRVOPC (privileged opcode)", "ILL_PRVREG (privileged register)",
      "ILL_COPROC (coprocessor error)", "ILL_BADSTK (internal stack error)"}},
    {SIGFPE,
     {"FPE_INTDIV (integer divide by zero)", "FPE_INTOVF (integer overflow)",
      "FPE_FLTDIV (floating-point divide by zero)", "FPE_FLTOVF (floating-point overflow)",
      "FPE_FLTUND (floating-point underflow)", "FPE_FLTRES (floating-point inexact result)",
      "FPE_FLTINV (floating-point invalid operation)", "FPE_FLTSUB (subscript out of range)"}},
    {SIGSEGV, {"SEGV_MAPERR (address not mapped to object)", "SEGV_ACCERR (invalid permissions for mapped object)"}},
    {SIGBUS,
     {"BUS_ADRALN (invalid address alignment)", "BUS_ADRERR (nonexistent physical address)",
      "BUS_OBJERR (object-specific hardware error)", "BUS_MCEERR_AR (hardware memory error consumed)",
      "BUS_MCEERR_AO (hardware memory error detected)"}},
    {SIGABRT, {}},
    {SIGTERM, {}},
};

TEST(FatalSignalTexts, NameTheSignals) {
  EXPECT_STREQ(fatal_signal_text(SIGILL), "SIGILL (illegal)");
  EXPECT_STREQ(fatal_signal_text(SIGFPE), "SIGFPE (floating point exception)");
  EXPECT_STREQ(fatal_signal_text(SIGSEGV), "SIGSEGV (segmentation fault)");
  EXPECT_STREQ(fatal_signal_text(SIGBUS), "SIGBUS (bus error)");
  EXPECT_STREQ(fatal_signal_text(SIGABRT), "SIGABRT (abnormal termination)");
  EXPECT_STREQ(fatal_signal_text(SIGTERM), "(unknown signal)");
}

TEST(FatalSignalTexts, NameTheCodesOfEachSignal) {
  for (const auto& [signal, texts] : all_codes) {
    int code = 0;
    for (const char* text : texts) {
      EXPECT_STREQ(fatal_code_text(signal, ++code), text);
    }
  }
}

TEST(FatalSignalTexts, NameNoOtherCode) {
  for (const auto& [signal, texts] : all_codes) {
    const int behind = static_cast<int>(texts.size()) + 1;
    for (const int code : std::initializer_list<int>{behind, 0, SI_QUEUE, SI_TKILL, SI_KERNEL, -128}) {
      EXPECT_STREQ(fatal_code_text(signal, code), "(unknown code)") << code << " of signal " << signal;
    }
  }
}

// The numbers are those of the kernel.
TEST(FatalSignalTexts, FollowTheKernelsNumbers) {
  EXPECT_STREQ(fatal_code_text(SIGILL, ILL_BADSTK), "ILL_BADSTK (internal stack error)");
  EXPECT_STREQ(fatal_code_text(SIGFPE, FPE_FLTSUB), "FPE_FLTSUB (subscript out of range)");
  EXPECT_STREQ(fatal_code_text(SIGSEGV, SEGV_ACCERR), "SEGV_ACCERR (invalid permissions for mapped object)");
  EXPECT_STREQ(fatal_code_text(SIGBUS, BUS_ADRERR), "BUS_ADRERR (nonexistent physical address)");
}

}  // namespace
