#pragma once

namespace vgnctl {

// What the process exits with. A command runs as the callback of its CLI11 subcommand and just returns when all is
// well; otherwise it throws, and `main` tells the text and picks the status:
//
//   any exception        "vgnctl: " and its text, `exit_failed`
//   CLI::ParseError      the same with a hint at --help, `exit_bad_usage`
//   CLI::RuntimeError    nothing: the command has told what went wrong; the status that it carries

inline constexpr int exit_done = 0;
/// It could not be done.
inline constexpr int exit_failed = 1;
/// The command line makes no sense.
inline constexpr int exit_bad_usage = 2;

}  // namespace vgnctl
