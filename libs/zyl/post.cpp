#include "zyl/post.h"

#include <memory>
#include <utility>

#include "zyl/deferred_call.h"

namespace zyl {
namespace {

class posted_call_t : public deferred_call_t {
 public:
  explicit posted_call_t(std::function<void()> wanted) : call(std::move(wanted)) {}
  void operator()() override { call(); }

 private:
  std::function<void()> call;
};

}  // namespace

void post(event_base* base, std::function<void()> call) {
  std::make_unique<posted_call_t>(std::move(call)).release()->post(base);
}

void drop_posts(event_base* base) { loop_owned_t::drop_all(base); }

}  // namespace zyl
