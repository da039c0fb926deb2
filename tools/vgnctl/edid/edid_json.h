#pragma once

#include <vector>

#include "edid_lib/edid.h"
#include "edid_lib/tarn_filter_resolution.h"
#include "tools/vgnctl/edid/json_values.h"

namespace vgnctl {

// The JSON values of the commands that take files, as docs/edid-json.md describes them.

/// The list that a visitor reads from `edid`.
std::vector<edid_lib::vid_resolution_t> modes_of(edid_lib::edid_t& edid);

/// The list.
json_t modes_report(edid_lib::edid_t& edid);

/// The list behind `filter`, and what is refused.
json_t usable_report(edid_lib::edid_t& edid, const edid_lib::tarn_filter_resolution_t& filter);

/// What `filtered`, an EDID that a filter has written, has in its blocks.
json_t rewrite_report(edid_lib::edid_t& filtered);

/// What the base block and the CTA extension say.
json_t info_report(const edid_lib::edid_t& edid);

}  // namespace vgnctl
