#pragma once

// The link to the video engine, all of it: frames, sockets, the registry of bound sockets, messages and status block.
#include "engine_lib/engine_ipc_crc.h"
#include "engine_lib/engine_ipc_manager.h"
#include "engine_lib/engine_ipc_message.h"
#include "engine_lib/engine_ipc_socket.h"
#include "engine_lib/videng_messages.h"
#include "engine_lib/videng_status_block.h"
#include "engine_lib/videng_status_mapping.h"
