#pragma once

#include <utility>

namespace zyl {

/// How an object of a C library is counted: specialise it with static `ref(T*)` and `unref(T*)`.
template <typename T>
struct intrusive_traits_t;

/// Shares an object that counts its own references, such as those of libudev. Copying takes a reference, destruction
/// gives it back. Not safer between threads than the object's own count.
template <typename T>
class intrusive_ptr {
 public:
  intrusive_ptr() = default;

  /// Takes over the caller's reference, as the library's `_new` functions hand it out. Null is an empty pointer.
  explicit intrusive_ptr(T* adopted) : object(adopted) {}

  intrusive_ptr(const intrusive_ptr& other) : object(other.object) {
    if (object != nullptr) {
      intrusive_traits_t<T>::ref(object);
    }
  }

  intrusive_ptr(intrusive_ptr&& other) noexcept : object(std::exchange(other.object, nullptr)) {}

  ~intrusive_ptr() {
    if (object != nullptr) {
      intrusive_traits_t<T>::unref(object);
    }
  }

  intrusive_ptr& operator=(intrusive_ptr other) noexcept {
    std::swap(object, other.object);
    return *this;
  }

  T* get() const { return object; }
  explicit operator bool() const { return object != nullptr; }

 private:
  T* object = nullptr;
};

}  // namespace zyl
