#pragma once

namespace lnx {

/// Hears that a descriptor has something to read.
class sk_notifier_handler_t {
 public:
  virtual ~sk_notifier_handler_t() = default;

  /// Called on the thread of the event loop, again and again while `fd` stays readable.
  virtual void on_ready(int fd) = 0;

 protected:
  sk_notifier_handler_t() = default;
  sk_notifier_handler_t(const sk_notifier_handler_t&) = default;
  sk_notifier_handler_t& operator=(const sk_notifier_handler_t&) = default;
  sk_notifier_handler_t(sk_notifier_handler_t&&) = default;
  sk_notifier_handler_t& operator=(sk_notifier_handler_t&&) = default;
};

}  // namespace lnx
