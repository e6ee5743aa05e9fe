#include "varnel/checkout/RenewalFlow.h"

#include "RenewalFlowImpl.h"

namespace varnel {

std::shared_ptr<RenewalFlow> RenewalFlow::create(std::weak_ptr<RenewalFlowDelegate> delegate,
                                                 std::shared_ptr<RenewalJournal> journal) {
  std::shared_ptr<RenewalFlow> flow(new RenewalFlow());
  if (!journal) journal = host::Registry::get<RenewalJournal>();
  if (!journal) journal = std::make_shared<InMemoryRenewalJournal>();
  flow->impl_ = std::make_shared<Impl>(std::move(delegate), std::move(journal));
  return flow;
}

RenewalFlow::~RenewalFlow() {
  // Nothing is told once the flow is gone; a claim that never reached the
  // checkout is given back, a pending one stays for the next run.
  impl_->abandon();
}

void RenewalFlow::start(RenewalRequest request) { impl_->start(std::move(request)); }
void RenewalFlow::cancel() { impl_->cancel(); }
bool RenewalFlow::isRunning() const { return impl_->running(); }

std::vector<RenewalJournalEntry> RenewalFlow::unfinishedRenewals() const {
  const std::optional<std::string> guest = Impl::signedInGuest();
  return guest ? impl_->journal()->unfinished(*guest) : std::vector<RenewalJournalEntry>{};
}

}  // namespace varnel
