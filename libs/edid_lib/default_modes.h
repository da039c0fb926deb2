#pragma once

#include <string_view>

namespace edid_lib {

/// The default modes: the limits of what the outputs show, what they show best, and what every display shows.
inline constexpr std::string_view max_output_resolution = "3840x2160@60";
inline constexpr std::string_view min_output_resolution = "640x480@59.94";
inline constexpr std::string_view default_resolution = "1920x1080@60";
inline constexpr std::string_view resolution_of_every_display = "640x480@60";

/// Where lists of modes and ready-made EDIDs are kept on the appliance. Nothing opens them.
inline constexpr std::string_view supported_resolutions_file = "supported_resolutions.json";
inline constexpr std::string_view unsupported_resolutions_file = "unsupported_resolutions.json";
inline constexpr std::string_view media_edid_folder = "/media/media/EDIDs/";
inline constexpr std::string_view system_edid_folder = "/usr/zyl/EDIDs/";
inline constexpr std::string_view edid_file_4k60 = "4k60.zedid";

}  // namespace edid_lib
