#pragma once

// The transport to the video engine, all of it: frames, sockets, and the registry of bound sockets.
#include "engine_lib/engine_ipc_crc.h"
#include "engine_lib/engine_ipc_manager.h"
#include "engine_lib/engine_ipc_message.h"
#include "engine_lib/engine_ipc_socket.h"
