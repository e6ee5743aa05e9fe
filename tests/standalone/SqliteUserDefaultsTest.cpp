#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <iterator>
#include <limits>
#include <string>

#include <gtest/gtest.h>
#include <sqlite3.h>

#include "varnel/standalone/SqliteUserDefaults.h"

namespace varnel::standalone {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

std::string fileBytes(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

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
  void SetUp() override {
    std::string pattern = (fs::temp_directory_path() / "varnel-defaults-XXXXXX").string();
    ASSERT_NE(mkdtemp(pattern.data()), nullptr);
    directory = pattern;
    path = directory / "defaults.sqlite3";
  }
  void TearDown() override { fs::remove_all(directory); }

  std::shared_ptr<SqliteUserDefaults> openStore(std::chrono::milliseconds busyTimeout = 10s) {
    auto opened = SqliteUserDefaults::open(path, busyTimeout);
    EXPECT_TRUE(opened.ok()) << (opened.ok() ? "" : opened.error().userInfo.dump());
    return opened.ok() ? opened.value() : nullptr;
  }

  /// Runs SQL on the file as another program would; returns SQLite's answer.
  int runSql(const std::string& sql) {
    sqlite3* database = nullptr;
    sqlite3_open(path.c_str(), &database);
    const int result = sqlite3_exec(database, sql.c_str(), nullptr, nullptr, nullptr);
    sqlite3_close(database);
    return result;
  }

  fs::path directory;
  fs::path path;
};

TEST_F(SqliteUserDefaultsTest, EveryKindSurvivesReopeningWithItsKind) {
  const DefaultsDictionary everyKind = {
      {"bool", DefaultsValue(true)},
      {"integer", DefaultsValue(std::int64_t{-9007199254740993})},
      {"double", DefaultsValue(0.1 + 0.2)},
      {"string", DefaultsValue(std::string("Grüße \"quoted\"\n"))},
      {"date", DefaultsValue(Date{1710099320.125})},
      {"data", DefaultsValue(DefaultsData{0x00, 0xff, 0x7f})},
      {"array", DefaultsValue(DefaultsArray{DefaultsValue(1), DefaultsValue(), DefaultsValue(DefaultsArray{})})},
      {"dictionary", DefaultsValue(DefaultsDictionary{{"flag", DefaultsValue(false)}, {"when", Date{0.0}}})},
  };
  path = directory / "made" / "on" / "demand.sqlite3";
  {
    auto store = openStore();
    ASSERT_TRUE(store);
    store->setObject("removed", DefaultsValue(1));
    store->setObject("bool", DefaultsValue("overwritten"));
    for (const auto& [key, value] : everyKind) store->setObject(key, value);
    store->removeObjectForKey("removed");
    EXPECT_TRUE(store->synchronize());
  }
  auto reopened = openStore();
  ASSERT_TRUE(reopened);
  EXPECT_EQ(reopened->dictionaryRepresentation(), everyKind);
  EXPECT_EQ(reopened->objectForKey("integer"), everyKind.at("integer"));
  EXPECT_EQ(reopened->objectForKey("removed"), std::nullopt);
}

TEST_F(SqliteUserDefaultsTest, ValuesThatCannotReadBackAreRefusedAndReported) {
  auto store = openStore();
  ASSERT_TRUE(store);
  store->setObject("nan", DefaultsValue(std::nan("")));
  store->setObject("inside", DefaultsValue(DefaultsArray{DefaultsValue(std::numeric_limits<double>::infinity())}));
  store->setObject("latin1", DefaultsValue(std::string("caf\xe9")));
  store->setObject("kept", DefaultsValue(1));
  EXPECT_FALSE(store->synchronize());
  EXPECT_TRUE(store->synchronize()) << "a refusal is reported once";
  EXPECT_EQ(store->dictionaryRepresentation(), (DefaultsDictionary{{"kept", DefaultsValue(1)}}));
  EXPECT_TRUE(openStore()) << "the refused values must not have damaged the file";
}

TEST_F(SqliteUserDefaultsTest, AWriteBlockedByAnotherWriterWaitsForSynchronize) {
  auto store = openStore(20ms);
  auto other = openStore();
  ASSERT_TRUE(store && other);
  store->setObject("gone", DefaultsValue(1));

  sqlite3* holder = nullptr;
  sqlite3_open(path.c_str(), &holder);
  ASSERT_EQ(sqlite3_exec(holder, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr), SQLITE_OK);
  store->setObject("pending", DefaultsValue("value"));
  store->removeObjectForKey("gone");
  // This process sees its own writes; the file does not have them yet.
  EXPECT_EQ(store->dictionaryRepresentation(), (DefaultsDictionary{{"pending", DefaultsValue("value")}}));
  EXPECT_FALSE(store->objectForKey("gone"));
  EXPECT_FALSE(other->objectForKey("pending"));
  EXPECT_FALSE(store->synchronize());

  sqlite3_close_v2(holder);  // rolls the holder's transaction back
  EXPECT_TRUE(store->synchronize());
  EXPECT_EQ(other->dictionaryRepresentation(), (DefaultsDictionary{{"pending", DefaultsValue("value")}}));
}

TEST_F(SqliteUserDefaultsTest, ForeignOrDamagedFilesAreRefusedAndLeftUntouched) {
  const auto soundStore = [&] {
    fs::remove(path);
    auto store = openStore();
    for (int i = 0; i < 40; ++i) store->setString("key" + std::to_string(i), std::string(500, 'x'));
  };
  const std::vector<std::pair<const char*, std::function<void()>>> cases = {
      {"not a user-defaults store", [&] { std::ofstream(path) << "settings: not a database\n"; }},
      {"another program", [&] {
         fs::remove(path);
         runSql("CREATE TABLE notes (body TEXT)");
       }},
      {"cannot read, under key \"key7\"",
       [&] {
         soundStore();
         runSql("UPDATE defaults SET value = '{\"bool\":1}' WHERE key = 'key7'");
       }},
      {"schema version 2", [&] {
         soundStore();
         runSql("PRAGMA user_version = 2");
       }},
      {"damaged",
       [&] {
         soundStore();
         std::string bytes = fileBytes(path);
         std::fill_n(bytes.begin() + 2 * 4096, 600, '\xee');
         std::ofstream(path, std::ios::binary) << bytes;
       }},
  };
  for (const auto& [reason, prepare] : cases) {
    SCOPED_TRACE(reason);
    prepare();
    const std::string before = fileBytes(path);
    const auto opened = SqliteUserDefaults::open(path);
    ASSERT_FALSE(opened.ok());
    const auto* message = jsonString(opened.error().userInfo, "message");
    ASSERT_TRUE(message);
    EXPECT_NE(message->find(path.string()), std::string::npos) << *message;
    EXPECT_NE(message->find(reason), std::string::npos) << *message;
    EXPECT_EQ(fileBytes(path), before);
  }
}

/// Sets an environment variable for one scope, restoring the old value.
class ScopedEnvironment {
 public:
  ScopedEnvironment(const char* name, const char* value) : name_(name) {
    if (const char* old = std::getenv(name)) old_ = old;
    value ? setenv(name, value, 1) : unsetenv(name);
  }
  ~ScopedEnvironment() { old_ ? setenv(name_, old_->c_str(), 1) : unsetenv(name_); }

 private:
  const char* name_;
  std::optional<std::string> old_;
};

TEST(SqliteUserDefaultsPath, ExplicitThenEnvironmentThenConfigurationFolder) {
  ScopedEnvironment chosen(kDefaultsPathEnvironmentVariable, "/tmp/chosen.sqlite3");
  ScopedEnvironment configuration("XDG_CONFIG_HOME", "/tmp/xdg");
  ScopedEnvironment home("HOME", "/home/tester");
  EXPECT_EQ(SqliteUserDefaults::resolvePath(fs::path("/x/y.sqlite3")).value(), fs::path("/x/y.sqlite3"));
  EXPECT_EQ(SqliteUserDefaults::resolvePath(std::nullopt).value(), fs::path("/tmp/chosen.sqlite3"));

  ScopedEnvironment unset(kDefaultsPathEnvironmentVariable, nullptr);
  EXPECT_EQ(SqliteUserDefaults::defaultPath().value(), fs::path("/tmp/xdg/varnel/defaults.sqlite3"));
  ScopedEnvironment relative("XDG_CONFIG_HOME", "relative/dir");
  EXPECT_EQ(SqliteUserDefaults::defaultPath().value(), fs::path("/home/tester/.config/varnel/defaults.sqlite3"));
  ScopedEnvironment noHome("HOME", nullptr);
  EXPECT_FALSE(SqliteUserDefaults::defaultPath().ok());
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
  for (int i = 0; i < reported; ++i) {
    EXPECT_EQ(store->objectForKey("write" + std::to_string(i)), DefaultsValue(i)) << i;
  }
}

TEST_F(SqliteUserDefaultsTest, TwoProcessesWritingAtOnceLoseNothing) {
  ASSERT_TRUE(openStore());
  constexpr int kWrites = 100;
  const auto writeAll = [&](const std::string& name) {
    return spawn([&] {
      auto store = SqliteUserDefaults::open(path);
      if (!store.ok()) return 3;
      for (int i = 0; i < kWrites; ++i) {
        store.value()->setInteger(name + std::to_string(i), i);
        store.value()->setString("shared", name);
      }
      return store.value()->synchronize() ? 0 : 4;
    });
  };
  const pid_t left = writeAll("left"), right = writeAll("right");
  EXPECT_EQ(waitFor(left), 0);
  EXPECT_EQ(waitFor(right), 0);

  auto store = openStore();
  ASSERT_TRUE(store) << "the file must still be a sound store";
  EXPECT_EQ(store->dictionaryRepresentation().size(), 2u * kWrites + 1);
  for (int i = 0; i < kWrites; ++i) {
    EXPECT_EQ(store->objectForKey("left" + std::to_string(i)), DefaultsValue(i));
    EXPECT_EQ(store->objectForKey("right" + std::to_string(i)), DefaultsValue(i));
  }
  const auto shared = store->stringForKey("shared");
  EXPECT_TRUE(shared == "left" || shared == "right");
}

}  // namespace
}  // namespace varnel::standalone
