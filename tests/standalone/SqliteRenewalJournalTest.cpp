// The renewal journal in a real SQLite file: one renewal per pass across
// connections, an entry left by a process that died is handed back to be
// finished (and a claim that never reached the checkout is dropped), a
// confirmation is handed back until its guest has been told, and no security
// code reaches the file.

#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "standalone/TemporaryDirectory.h"
#include "varnel/standalone/SqliteRenewalJournal.h"

namespace varnel::testing {
namespace {

using Kind = RenewalJournal::Claim::Kind;
using State = RenewalJournalEntry::State;

RenewalJournalEntry checkoutOf(RenewalJournalEntry entry) {
  entry.orderId = "ORD700001";
  entry.cardReference = "CARD-REF-0001";
  entry.amount = "709.00";
  entry.idempotencyKey = "key-1";
  entry.checkoutBody = Json{{"payments", Json::array({Json{{"paymentReference", Json{{"id", "CARD-REF-0001"}}}}})}};
  return entry;
}

class SqliteRenewalJournalTest : public ::testing::Test {
 protected:
  std::shared_ptr<standalone::SqliteRenewalJournal> open() {
    auto journal = standalone::SqliteRenewalJournal::open(directory.path / "defaults.sqlite3");
    EXPECT_TRUE(journal.ok());
    return journal.value();
  }
  TemporaryDirectory directory;
};

TEST_F(SqliteRenewalJournalTest, APassIsClaimedOnceAcrossConnectionsUntilItsRenewalEnds) {
  auto first = open();
  auto second = open();
  const auto claimed = first->claim("guest", "AP-1");
  ASSERT_EQ(claimed.kind, Kind::fresh);
  EXPECT_EQ(second->claim("guest", "AP-1").kind, Kind::busy);
  EXPECT_EQ(second->claim("guest", "AP-2").kind, Kind::fresh) << "another pass is free";

  ASSERT_FALSE(first->recordCheckout(checkoutOf(claimed.entry)));
  EXPECT_EQ(second->claim("guest", "AP-1").kind, Kind::busy);
  first->release(claimed.entry.id);  // its answer was lost: it stays to be finished
  const auto again = second->claim("guest", "AP-1");
  ASSERT_EQ(again.kind, Kind::unfinished);
  EXPECT_EQ(again.entry.idempotencyKey, "key-1");
  EXPECT_EQ(second->unfinished("guest").size(), 1u);

  ASSERT_FALSE(second->finish(again.entry.id, State::confirmed, "KX700001"));
  second->release(again.entry.id);
  // Confirmed but not yet told: the next claim tells it instead of renewing.
  ASSERT_EQ(first->unfinished("guest").size(), 1u);
  const auto untold = first->claim("guest", "AP-1");
  ASSERT_EQ(untold.kind, Kind::unfinished);
  EXPECT_TRUE(untold.entry.confirmedUntold());
  EXPECT_EQ(untold.entry.confirmationNumber, "KX700001");
  first->markTold(untold.entry.id);
  EXPECT_TRUE(second->unfinished("guest").empty());
  EXPECT_TRUE(second->entries("guest").front().told);
  EXPECT_EQ(first->claim("guest", "AP-1").kind, Kind::fresh);
}

TEST_F(SqliteRenewalJournalTest, WhatADeadProcessLeftIsTakenOverAndNoSecurityCodeIsStored) {
  // A child claims two passes, records one checkout and dies without a word.
  const pid_t child = fork();
  ASSERT_NE(child, -1);
  if (child == 0) {
    auto journal = open();
    auto paid = journal->claim("guest", "AP-1");
    auto body = checkoutOf(paid.entry);
    body.checkoutBody["payments"][0]["paymentReference"]["cvv2"] = "code-737";
    journal->recordCheckout(body);
    journal->claim("guest", "AP-2");
    _exit(0);
  }
  int status = 0;
  waitpid(child, &status, 0);

  auto journal = open();
  const auto pending = journal->claim("guest", "AP-1");
  EXPECT_EQ(pending.kind, Kind::unfinished);
  const auto dropped = journal->claim("guest", "AP-2");
  EXPECT_EQ(dropped.kind, Kind::fresh);
  EXPECT_TRUE(dropped.replacedInterrupted);
  EXPECT_EQ(journal->entries("guest").size(), 2u);
  for (const char* file : {"defaults.sqlite3", "defaults.sqlite3-wal"}) {
    // Keys and times are stored as text too, so the code is one no key or time can spell.
    const std::string stored = TemporaryDirectory::read(directory.path / file);
    EXPECT_EQ(stored.find("code-737"), std::string::npos) << file;
    EXPECT_EQ(stored.find("cvv2"), std::string::npos) << file;
  }
}

}  // namespace
}  // namespace varnel::testing
