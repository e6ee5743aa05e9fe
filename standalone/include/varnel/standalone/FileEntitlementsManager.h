#pragma once
// The stand-alone entitlements manager: one guest, served from a guest data
// file (format in GuestDataFile.h).
//
// - The last successful read of the file is the persisted store: kuid(),
//   userProfile(), persistedEntitlementsOfType(), affiliations() and
//   theaterTickets() answer from it at once. Before any successful read the
//   store is empty (persistedEntitlementsOfType() answers none).
// - A download (beginUpdateEntitlementsOfFilterType, retrieveAffiliationsFromUserInfo)
//   is answered later on the manager's own worker thread: the file is read
//   again, the store replaced, and every listener registered at that moment is
//   called. A file that cannot be read or parsed answers
//   entitlementsManagerFetchFailed with the Error and leaves the store as it was.
// - The file holds one guest's entitlements, so every filter and persisted
//   type answers all of them.
// - Listeners are held weakly. A listener removed before an answer is
//   delivered is not called; callbacks are made without any lock held, so a
//   listener may remove itself or start another download from its callback.
// - Thread-safe. Destruction drops downloads not yet started and waits for the
//   one being answered; the worker thread is joined. (Should the last owner
//   let go of the manager from inside one of its own callbacks, the worker
//   cannot join itself: it is let finish that answer on its own, touching only
//   state it shares ownership of.)

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "varnel/host/ENTMEntitlementsManager.h"
#include "varnel/standalone/GuestDataFile.h"
#include "varnel/platform/Error.h"
#include "varnel/platform/Json.h"
#include "varnel/platform/Result.h"

namespace varnel::standalone {

class FileEntitlementsManager final : public ENTMEntitlementsManager {
 public:
  /// A manager over `file` with an empty store; nothing is read yet.
  explicit FileEntitlementsManager(std::filesystem::path file);
  ~FileEntitlementsManager() override;

  FileEntitlementsManager(const FileEntitlementsManager&) = delete;
  FileEntitlementsManager& operator=(const FileEntitlementsManager&) = delete;

  /// A manager whose store is already filled from `file`, or the Error of reading it.
  static Result<std::shared_ptr<FileEntitlementsManager>> open(std::filesystem::path file);

  /// Reads the file into the store now, on the calling thread. On failure the
  /// store keeps what it had and the Error is returned.
  std::optional<Error> load();

  const std::filesystem::path& file() const { return file_; }
  /// The guest's affiliations from the store; none when the file has none.
  std::optional<std::vector<ENTMAffiliation>> affiliations() const;
  /// The raw JSON of the guest's theater tickets from the store.
  std::vector<Json> theaterTickets() const;
  /// The whole guest data as last read (the sign-in, cards and household the
  /// commerce side needs); empty before the first successful load.
  std::optional<GuestData> guestData() const;
  /// The context given to configureWithParkResortContext, if any.
  std::shared_ptr<KTVCParkResortContext> parkResortContext() const;

  // ENTMEntitlementsManager
  void configureWithParkResortContext(std::shared_ptr<KTVCParkResortContext> context) override;
  std::optional<std::string> kuid() const override;
  std::optional<ENTMUserProfile> userProfile() const override;
  void registerEntitlementListener(std::weak_ptr<ENTMEntitlementsListener> listener) override;
  void removeEntitlementListener(const ENTMEntitlementsListener* listener) override;
  void beginUpdateEntitlementsOfFilterType(ENTMEntitlementFilterType filter,
                                           const std::optional<Json>& userInfo) override;
  void retrieveAffiliationsFromUserInfo(const std::optional<Json>& userInfo) override;
  std::optional<ENTMAnyList> persistedEntitlementsOfType(ENTMEntitlementType type) const override;

 private:
  struct State;

  /// Queues an answer for the worker thread, starting it on first use.
  void enqueue(std::function<void(State&)> answer);

  const std::filesystem::path file_;
  const std::shared_ptr<State> state_;
  std::thread worker_;
};

}  // namespace varnel::standalone
