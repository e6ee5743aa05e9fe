#include "varnel/host/Registry.h"

#include <mutex>
#include <unordered_map>

namespace varnel::host {
namespace {

struct Slots {
  std::mutex mutex;
  std::unordered_map<std::type_index, std::shared_ptr<void>> implementations;
};

Slots& slots() {
  static Slots instance;
  return instance;
}

}  // namespace

std::shared_ptr<void> Registry::getErased(std::type_index type) {
  auto& s = slots();
  std::lock_guard lock(s.mutex);
  auto it = s.implementations.find(type);
  return it == s.implementations.end() ? nullptr : it->second;
}

std::shared_ptr<void> Registry::setErased(std::type_index type, std::shared_ptr<void> implementation) {
  auto& s = slots();
  std::lock_guard lock(s.mutex);
  auto& slot = s.implementations[type];
  std::swap(slot, implementation);
  return implementation;
}

void Registry::clear() {
  auto& s = slots();
  std::unordered_map<std::type_index, std::shared_ptr<void>> released;
  {
    std::lock_guard lock(s.mutex);
    released.swap(s.implementations);
  }
}

}  // namespace varnel::host
