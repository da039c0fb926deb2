#pragma once

namespace vgn_control {

/// The whole program: takes the fatal signals, sets the logs up, reads the command line, builds the coordinator and
/// runs Qt's main loop. Returns the exit code. Ends the process on a bad command line and on "--help".
///
/// On the main thread, once a process, with an installed platform. What `argv` points to must live as long as the
/// process: a crash report names the program by `argv[0]`. An exception of the coordinator comes out, with syslog
/// closed and all that was built destroyed.
int vgn_control_main(int argc, char** argv);

}  // namespace vgn_control
