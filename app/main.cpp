#include "app/vgn_control_main.h"

int main(int argc, char** argv) { return vgn_control::vgn_control_main(argc, argv); }
