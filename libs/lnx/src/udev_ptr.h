#pragma once

#include <libudev.h>

#include "zyl/intrusive_ptr.h"

namespace zyl {

template <>
struct intrusive_traits_t<udev> {
  static void ref(udev* object) { udev_ref(object); }
  static void unref(udev* object) { udev_unref(object); }
};

template <>
struct intrusive_traits_t<udev_monitor> {
  static void ref(udev_monitor* object) { udev_monitor_ref(object); }
  static void unref(udev_monitor* object) { udev_monitor_unref(object); }
};

template <>
struct intrusive_traits_t<udev_enumerate> {
  static void ref(udev_enumerate* object) { udev_enumerate_ref(object); }
  static void unref(udev_enumerate* object) { udev_enumerate_unref(object); }
};

template <>
struct intrusive_traits_t<udev_device> {
  static void ref(udev_device* object) { udev_device_ref(object); }
  static void unref(udev_device* object) { udev_device_unref(object); }
};

}  // namespace zyl
