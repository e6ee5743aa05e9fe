#include "varnel/standalone/StandaloneHost.h"

#include <iostream>

#include "varnel/host/Registry.h"
#include "varnel/standalone/GuestFileEntitlementsParser.h"
#include "varnel/standalone/SpdlogPrintSink.h"
#include "varnel/standalone/StringTableLocalization.h"
#include "varnel/standalone/TerminalBanner.h"

namespace varnel::standalone {

std::shared_ptr<RunLoopMainQueue> installStandaloneHost(const StandaloneHostOptions& options) {
  using host::Registry;
  Registry::set<KTVCPrintSink>(std::make_shared<SpdlogPrintSink>(options.verbose));
  Registry::set<KTVRLocalization>(std::make_shared<StringTableLocalization>());
  Registry::set<KTVRNotificationBannerFactory>(
      std::make_shared<TerminalBannerFactory>(options.bannerStream ? *options.bannerStream : std::cout));
  Registry::set<ENTMTicketsAndAPsParsing>(std::make_shared<GuestFileEntitlementsParser>());
  auto mainQueue = std::make_shared<RunLoopMainQueue>();
  Registry::set<MainQueue>(mainQueue);
  return mainQueue;
}

}  // namespace varnel::standalone
