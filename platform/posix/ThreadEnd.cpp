#include "../ThreadEnd.h"

#include <utility>
#include <vector>

namespace qv::platform {

namespace {

struct Endings {
  ~Endings() {
    for (; !all.empty(); all.pop_back()) all.back().first(all.back().second);
  }
  std::vector<std::pair<void (*)(void*), void*>> all;
};

}  // namespace

void AtThreadEnd(void (*end)(void*), void* what) {
  thread_local Endings endings;
  endings.all.emplace_back(end, what);
}

}  // namespace qv::platform
