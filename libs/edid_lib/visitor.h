#pragma once

namespace edid_lib {

class edid_t;
class edid_base_t;
class est_timings_block_t;
class std_timings_block_t;
class det_timings_block_t;
class base_descriptor_block_t;
class monitor_name_base_block_t;
class monitor_serial_base_block_t;
class ascii_string_base_block_t;
class cta_extension_t;
class cta_data_block_t;
class cta_video_data_block_t;
class cta_audio_data_block_t;
class cta_hdmi_vsdb_t;
class cta_hdmi_forum_vsdb_t;
class cta_colorimetry_exdb_t;
class cta_video_capability_exdb_t;
class cta_ycc_420_video_exdb_t;
class cta_ycc_420_capability_exdb_t;

/// Walks over an EDID. Each block calls the one visit of its class, every visit does nothing unless overridden, and
/// `forward` tells the pass. Vendor and extended blocks without a visit of their own come as `cta_data_block_t`.
///
/// A walk never shows null, but a visit bears it: it does nothing then. What is visited belongs to the EDID and lives
/// as long as that is not changed.
class visitor_t {
 public:
  virtual ~visitor_t() = default;

  virtual void visit(edid_t* /*edid*/, bool /*forward*/) {}
  virtual void visit(edid_base_t* /*base*/, bool /*forward*/) {}
  virtual void visit(est_timings_block_t* /*block*/, bool /*forward*/) {}
  virtual void visit(std_timings_block_t* /*block*/, bool /*forward*/) {}
  virtual void visit(det_timings_block_t* /*block*/, bool /*forward*/) {}
  virtual void visit(base_descriptor_block_t* /*block*/, bool /*forward*/) {}
  virtual void visit(monitor_name_base_block_t* /*block*/, bool /*forward*/) {}
  virtual void visit(monitor_serial_base_block_t* /*block*/, bool /*forward*/) {}
  virtual void visit(ascii_string_base_block_t* /*block*/, bool /*forward*/) {}
  virtual void visit(cta_extension_t* /*extension*/, bool /*forward*/) {}
  virtual void visit(cta_data_block_t* /*block*/, bool /*forward*/) {}
  virtual void visit(cta_video_data_block_t* /*block*/, bool /*forward*/) {}
  virtual void visit(cta_audio_data_block_t* /*block*/, bool /*forward*/) {}
  virtual void visit(cta_hdmi_vsdb_t* /*block*/, bool /*forward*/) {}
  virtual void visit(cta_hdmi_forum_vsdb_t* /*block*/, bool /*forward*/) {}
  virtual void visit(cta_colorimetry_exdb_t* /*block*/, bool /*forward*/) {}
  virtual void visit(cta_video_capability_exdb_t* /*block*/, bool /*forward*/) {}
  virtual void visit(cta_ycc_420_video_exdb_t* /*block*/, bool /*forward*/) {}
  virtual void visit(cta_ycc_420_capability_exdb_t* /*block*/, bool /*forward*/) {}

  /// What the visitor is for; here the walk alone.
  virtual void read(edid_t* edid) { apply(edid); }
  virtual void write(edid_t* edid) { apply(edid); }

  /// Shows every block of `edid` to this visitor twice, on a forward and on a backward pass. Nothing without an EDID.
  virtual void apply(edid_t* edid);
};

}  // namespace edid_lib
