#pragma once

namespace vgn_control {

/// The whole program: takes the fatal signals, sets the logs up, reads the command line, builds the coordinator and
/// runs Qt's main loop. Returns the exit code. Ends the process on a bad command line and on "--help". Expects an
/// installed platform.
int vgn_control_main(int argc, char** argv);

}  // namespace vgn_control
