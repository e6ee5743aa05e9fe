#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cmath>
#include <cstdlib>
#include <functional>
#include <limits>
#include <map>
#include <optional>

#include <gmock/gmock.h>
#include <sqlite3.h>

#include "TemporaryDirectory.h"
#include "varnel/standalone/SqliteUserDefaults.h"

namespace varnel::standalone {
namespace {

namespace fs = std::filesystem;
using ::testing::AllOf, ::testing::ElementsAre, ::testing::HasSubstr, ::testing::IsEmpty, ::testing::Optional,
    ::testing::Pair, ::testing::Pointee;

/// Runs `work` in a child process whose exit status is what `work` returns.
pid_t spawn(const std::function<int()>& work) {
  const pid_t child = fork();
  if (child == 0) _exit(work());
  return child;
}

int waitFor(pid_t child) {
  int status = -1;
  waitpid(child, &status, 0);
  return status;
}

class SqliteUserDefaultsTest : public ::testing::Test {
 protected:
  std::shared_ptr<SqliteUserDefaults> openStore() {
    auto opened = SqliteUserDefaults::open(path);
    EXPECT_TRUE(opened.ok()) << (opened.ok() ? "" : opened.error().userInfo.dump());
    return opened.ok() ? opened.value() : nullptr;
  }
  /// Runs SQL on the file as another program would.
  void runSql(const std::string& sql) {
    sqlite3* database = nullptr;
    sqlite3_open(path.c_str(), &database);
    EXPECT_EQ(sqlite3_exec(database, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK) << sql;
    sqlite3_close(database);
  }

  testing::TemporaryDirectory directory;
  fs::path path = directory.path / "defaults.sqlite3";
};

TEST_F(SqliteUserDefaultsTest, EveryKindSurvivesReopeningAndWhatCouldNotBeReadBackIsRefused) {
  const DefaultsDictionary everyKind = {
      {"bool", DefaultsValue(true)}, {"integer", DefaultsValue(std::int64_t{-9007199254740993})},
      {"double", DefaultsValue(0.1 + 0.2)}, {"string", DefaultsValue(std::string("Grüße \"quoted\"\n"))},
      {"date", DefaultsValue(Date{1710099320.125})}, {"data", DefaultsValue(DefaultsData{0x00, 0xff, 0x7f})},
      {"array", DefaultsValue(DefaultsArray{DefaultsValue(1), DefaultsValue(), DefaultsValue(DefaultsArray{})})},
      {"dictionary", DefaultsValue(DefaultsDictionary{{"flag", DefaultsValue(false)}, {"when", Date{0.0}}})},
  };
  path = directory.path / "made" / "on" / "demand.sqlite3";
  if (auto store = openStore()) {
    store->setObject("bool", DefaultsValue("overwritten"));
    for (const auto& [key, value] : everyKind) store->setObject(key, value);
    store->setObject("removed", DefaultsValue(1));
    store->removeObjectForKey("removed");
    store->setObject("nan", DefaultsValue(std::nan("")));
    store->setObject("inside", DefaultsValue(DefaultsArray{DefaultsValue(std::numeric_limits<double>::infinity())}));
    store->setObject("latin1", DefaultsValue(std::string("caf\xe9")));
    EXPECT_FALSE(store->synchronize()) << "the refusal is reported, once";
    EXPECT_TRUE(store->synchronize());
  }
  auto reopened = openStore();
  ASSERT_TRUE(reopened);
  EXPECT_EQ(reopened->dictionaryRepresentation(), everyKind);
}

TEST_F(SqliteUserDefaultsTest, ForeignOrDamagedFilesAreRefusedAndLeftUntouched) {
  const auto soundStore = [&] {
    fs::remove(path);
    auto store = openStore();
    for (int i = 0; i < 40; ++i) store->setString("key" + std::to_string(i), std::string(500, 'x'));
  };
  const std::pair<const char*, std::function<void()>> cases[] = {
      {"not a user-defaults store", [&] { directory.write(path.filename(), "settings: not a database\n"); }},
      {"another program", [&] { fs::remove(path); runSql("CREATE TABLE notes (body TEXT)"); }},
      {"schema version 2", [&] { soundStore(); runSql("PRAGMA user_version = 2"); }},
      {"damaged", [&] {
         soundStore();  // then a stretch of its third page overwritten
         directory.write(path.filename(), testing::TemporaryDirectory::read(path).replace(2 * 4096, 600, 600, '\xee'));
       }},
  };
  for (const auto& [reason, prepare] : cases) {
    SCOPED_TRACE(reason);
    prepare();
    const std::string before = testing::TemporaryDirectory::read(path);
    const auto opened = SqliteUserDefaults::open(path);
    ASSERT_FALSE(opened.ok());
    EXPECT_THAT(jsonString(opened.error().userInfo, "message"),
                Pointee(AllOf(HasSubstr(path.string()), HasSubstr(reason))));
    EXPECT_EQ(testing::TemporaryDirectory::read(path), before);
  }
}

TEST_F(SqliteUserDefaultsTest, EverySynchronisedWriteSurvivesTheWriterBeingKilled) {
  ASSERT_TRUE(openStore());
  int reports[2];
  ASSERT_EQ(pipe(reports), 0);
  const pid_t writer = spawn([&] {
    auto store = SqliteUserDefaults::open(path);
    for (int i = 0; store.ok(); ++i) {
      store.value()->setInteger("write" + std::to_string(i), i);
      if (!store.value()->synchronize() || write(reports[1], "\n", 1) != 1) return 4;
    }
    return 3;
  });
  close(reports[1]);
  // One line per synchronised write, in order; the writer dies amid the next.
  long reported = 0;
  for (char line; read(reports[0], &line, 1) == 1;) {
    if (++reported == 40) kill(writer, SIGKILL);
  }
  close(reports[0]);
  const int status = waitFor(writer);
  ASSERT_TRUE(WIFSIGNALED(status)) << "the writer stopped on its own with status " << status;
  auto store = openStore();
  ASSERT_TRUE(store);
  for (int i = 0; i < reported; ++i) EXPECT_EQ(store->objectForKey("write" + std::to_string(i)), DefaultsValue(i)) << i;
}

TEST_F(SqliteUserDefaultsTest, TwoProcessesWritingAtOnceLoseNothing) {
  ASSERT_TRUE(openStore());
  constexpr int kWrites = 100;
  const auto writeAll = [&](const std::string& name) {
    return spawn([&] {
      auto store = SqliteUserDefaults::open(path);
      for (int i = 0; store.ok() && i < kWrites; ++i) {
        store.value()->setInteger(name + std::to_string(i), i);
        store.value()->setString("shared", name);
      }
      return store.ok() && store.value()->synchronize() ? 0 : 4;
    });
  };
  const pid_t left = writeAll("left"), right = writeAll("right");
  EXPECT_EQ(waitFor(left), 0);
  EXPECT_EQ(waitFor(right), 0);
  auto store = openStore();
  ASSERT_TRUE(store);
  EXPECT_EQ(store->dictionaryRepresentation().size(), 2u * kWrites + 1);
  for (int i = 0; i < kWrites; ++i) {
    EXPECT_EQ(store->objectForKey("left" + std::to_string(i)), DefaultsValue(i));
    EXPECT_EQ(store->objectForKey("right" + std::to_string(i)), DefaultsValue(i));
  }
}

TEST_F(SqliteUserDefaultsTest, AValueThatCannotBeReadIsReportedByItsKeyAndCanBeRemoved) {
  openStore()->setBool("kept", true);
  runSql("INSERT INTO defaults (key, value) VALUES ('deep', '" + std::string(100'000, '[') +
         std::string(100'000, ']') + "'), ('foreign', '{\"bool\":1}')");
  auto store = openStore();
  ASSERT_TRUE(store) << "a value that cannot be read leaves the store usable";
  EXPECT_EQ(store->objectForKey("deep"), std::nullopt);
  EXPECT_EQ(store->dictionaryRepresentation(), (DefaultsDictionary{{"kept", DefaultsValue(true)}}));
  EXPECT_THAT(store->contents().unreadable,
              ElementsAre(Pair("deep", "nested deeper than 128 levels"),
                          Pair("foreign", "not a value this store wrote")));
  store->removeObjectForKey("deep");
  store->removeObjectForKey("foreign");
  EXPECT_TRUE(store->synchronize());
  EXPECT_THAT(openStore()->contents().unreadable, IsEmpty());

  // Nothing is written that could not be read back.
  DefaultsValue deep(1);
  for (int level = 0; level < 100; ++level) deep = DefaultsValue(DefaultsArray{deep});
  store->setObject("deep", deep);
  EXPECT_FALSE(store->synchronize());
  EXPECT_THAT(store->writeFailure(), Optional(HasSubstr("too deeply")));
  EXPECT_EQ(store->objectForKey("deep"), std::nullopt);
}

TEST_F(SqliteUserDefaultsTest, AStoreAnotherProcessHoldsIsRefusedWithTheReasonAndALaterWriteIsKeptAndRetried) {
  ASSERT_TRUE(openStore());
  // Opened before the other process takes the store; its writes do not wait for the lock.
  auto opened = SqliteUserDefaults::open(path, std::chrono::milliseconds(0));
  ASSERT_TRUE(opened.ok());
  int locked[2], release[2];
  ASSERT_EQ(pipe(locked), 0);
  ASSERT_EQ(pipe(release), 0);
  const pid_t holder = spawn([&] {
    sqlite3* database = nullptr;
    if (sqlite3_open(path.c_str(), &database) != SQLITE_OK) return 4;
    const bool held = sqlite3_exec(database, "BEGIN EXCLUSIVE; INSERT INTO defaults (key, value) VALUES "
                                             "('fromTheOtherProcess', '1')", nullptr, nullptr, nullptr) == SQLITE_OK;
    char go;
    if (!held || write(locked[1], "\n", 1) != 1 || read(release[0], &go, 1) != 1) return 5;
    const bool committed = sqlite3_exec(database, "COMMIT", nullptr, nullptr, nullptr) == SQLITE_OK;
    sqlite3_close(database);
    return committed ? 0 : 6;
  });
  close(locked[1]);
  close(release[0]);
  char line;
  ASSERT_EQ(read(locked[0], &line, 1), 1) << "the other process could not lock the store";
  {
    const auto refused = SqliteUserDefaults::open(path, std::chrono::milliseconds(100));
    ASSERT_FALSE(refused.ok());
    EXPECT_THAT(jsonString(refused.error().userInfo, kErrorLocalizedDescriptionKey),
                Pointee(path.string() + " is locked by another process"));
    // The writer opened earlier keeps what it could not write.
    auto& store = *opened.value();
    store.setInteger("counter", 7);
    store.removeObjectForKey("fromTheOtherProcess");
    EXPECT_EQ(store.objectForKey("counter"), DefaultsValue(7)) << "reads see the kept write";
    EXPECT_FALSE(store.synchronize()) << "still locked";
    EXPECT_THAT(store.writeFailure(), Optional(HasSubstr("locked by another process")));
    ASSERT_EQ(write(release[1], "\n", 1), 1);
    EXPECT_EQ(waitFor(holder), 0);
    EXPECT_TRUE(store.synchronize()) << "retried once the lock was released";
    EXPECT_EQ(store.writeFailure(), std::nullopt);
    opened.value().reset();
  }
  close(locked[0]);
  close(release[1]);
  auto reopened = openStore();
  ASSERT_TRUE(reopened);
  EXPECT_EQ(reopened->dictionaryRepresentation(), (DefaultsDictionary{{"counter", DefaultsValue(7)}}))
      << "the kept removal came after the other process's write";
}

/// Sets or unsets environment variables for the lifetime of the object.
class Environment {
 public:
  void set(const char* name, const std::optional<std::string>& value) {
    if (!saved_.contains(name)) {
      const char* previous = std::getenv(name);
      saved_.emplace(name, previous ? std::optional<std::string>(previous) : std::nullopt);
    }
    value ? setenv(name, value->c_str(), 1) : unsetenv(name);
  }
  ~Environment() {
    for (const auto& [name, value] : saved_) value ? setenv(name.c_str(), value->c_str(), 1) : unsetenv(name.c_str());
  }

 private:
  std::map<std::string, std::optional<std::string>> saved_;
};

TEST(SqliteUserDefaultsPath, TheToolOptionThenTheEnvironmentThenThePerUserDefault) {
  using Value = std::optional<std::string>;
  struct Row {
    Value option, variable, configurationHome, home;
    Value expected;  // none: no place for the store
  };
  const Row rows[] = {
      {"/opt/given.sqlite3", "/env/defaults.sqlite3", "/xdg", "/home/ada", "/opt/given.sqlite3"},
      {"", "/env/defaults.sqlite3", "/xdg", "/home/ada", "/env/defaults.sqlite3"},
      {{}, "", "/xdg", "/home/ada", "/xdg/varnel/defaults.sqlite3"},
      {{}, {}, "relative/xdg", "/home/ada", "/home/ada/.config/varnel/defaults.sqlite3"},
      {{}, {}, {}, "/home/ada", "/home/ada/.config/varnel/defaults.sqlite3"},
      {{}, {}, "/xdg", {}, "/xdg/varnel/defaults.sqlite3"},
      {{}, {}, {}, {}, {}},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.expected.value_or("no place"));
    Environment environment;
    environment.set(kDefaultsPathEnvironmentVariable, row.variable);
    environment.set("XDG_CONFIG_HOME", row.configurationHome);
    environment.set("HOME", row.home);
    const auto resolved = SqliteUserDefaults::resolvePath(row.option ? std::optional<fs::path>(*row.option)
                                                                     : std::nullopt);
    ASSERT_EQ(resolved.ok(), row.expected.has_value());
    if (row.expected) {
      EXPECT_EQ(resolved.value(), fs::path(*row.expected));
    } else {
      EXPECT_THAT(jsonString(resolved.error().userInfo, "message"),
                  Pointee(HasSubstr(kDefaultsPathEnvironmentVariable)));
    }
  }
}

}  // namespace
}  // namespace varnel::standalone
