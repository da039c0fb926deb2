#pragma once

#include <cstdint>
#include <memory>

#include "app/led.h"

namespace vgn_control {

class VgnControl;

/// The LED of a model of the device, by the model's id, as a child of the coordinator; it hears those of the
/// coordinator's signals that it shows. The caller owns it and destroys it before the coordinator's QObject base goes.
/// Model 105 also gets the `XK21Monitor` of the process, which is never destroyed and may hear any coordinator.
std::unique_ptr<LED> makeModelLed(uint32_t model, VgnControl& control);

}  // namespace vgn_control
