#pragma once

namespace control_lib {

/// Base of an object that is to be freed later, when its owner has the time: put it on a `rubbish_list_t`.
class rubbish_t {
 public:
  rubbish_t() = default;
  virtual ~rubbish_t() = 0;

  rubbish_t(const rubbish_t&) = delete;
  rubbish_t& operator=(const rubbish_t&) = delete;
  rubbish_t(rubbish_t&&) = delete;
  rubbish_t& operator=(rubbish_t&&) = delete;

 private:
  friend class rubbish_list_t;

  /// The item behind this one on its list, the last one's is itself; null on no list.
  rubbish_t* link = nullptr;
};

/// The rubbish of one owner, linked through the items: putting one there allocates nothing and cannot fail. One thread.
class rubbish_list_t {
 public:
  rubbish_list_t() = default;
  /// Runs the list down.
  ~rubbish_list_t();

  rubbish_list_t(const rubbish_list_t&) = delete;
  rubbish_list_t& operator=(const rubbish_list_t&) = delete;
  rubbish_list_t(rubbish_list_t&&) = delete;
  rubbish_list_t& operator=(rubbish_list_t&&) = delete;

  /// Takes an item that was made by `new`; it is this list's from then on. False, and nothing happens, if it is on a
  /// list already.
  bool put(rubbish_t* item);

  /// Frees what is on the list, the latest item first, also what that puts there.
  void run_down();

  bool empty() const { return head == nullptr; }

 private:
  rubbish_t* head = nullptr;
};

}  // namespace control_lib
