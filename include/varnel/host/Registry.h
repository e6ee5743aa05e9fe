#pragma once
// The process-wide host registry. The host (or the stand-alone host, or a test)
// fills it at start-up with its implementation of each host interface; the
// module asks it for them. Any slot may be empty, and the module then takes its
// "if there is none" branch. Safe to use from several threads.
//
//   host::Registry::set<KTVRLocalization>(std::make_shared<MyLocalization>());
//   if (auto localization = host::Registry::get<KTVRLocalization>()) { ... }

#include <memory>
#include <typeindex>

namespace varnel::host {

class Registry {
 public:
  template <typename Interface>
  static std::shared_ptr<Interface> get() {
    return std::static_pointer_cast<Interface>(getErased(typeid(Interface)));
  }

  /// Installs `implementation` (or clears the slot with nullptr); returns the previous one.
  template <typename Interface>
  static std::shared_ptr<Interface> set(std::shared_ptr<Interface> implementation) {
    return std::static_pointer_cast<Interface>(setErased(typeid(Interface), std::move(implementation)));
  }

  /// Empties every slot.
  static void clear();

 private:
  static std::shared_ptr<void> getErased(std::type_index type);
  static std::shared_ptr<void> setErased(std::type_index type, std::shared_ptr<void> implementation);
};

}  // namespace varnel::host
