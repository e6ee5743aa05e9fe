#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <iterator>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sqlite3.h>

#include "varnel/standalone/SqliteUserDefaults.h"

namespace varnel::standalone {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

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

  /// Runs raw SQL on the file, as another program would.
  void runSql(const std::string& sql) {
    sqlite3* database = nullptr;
    ASSERT_EQ(sqlite3_open(path.c_str(), &database), SQLITE_OK);
    char* message = nullptr;
    EXPECT_EQ(sqlite3_exec(database, sql.c_str(), nullptr, nullptr, &message), SQLITE_OK) << (message ? message : "");
    sqlite3_free(message);
    sqlite3_close(database);
  }

  fs::path directory;
  fs::path path;
};

std::string fileBytes(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

void writeFile(const fs::path& file, const std::string& bytes) {
  std::ofstream(file, std::ios::binary) << bytes;
}

std::vector<std::pair<std::string, DefaultsValue>> oneValueOfEveryKind() {
  return {
      {"bool", DefaultsValue(true)},
      {"integer", DefaultsValue(std::int64_t{-9007199254740993})},
      {"double", DefaultsValue(0.1 + 0.2)},
      {"string", DefaultsValue(std::string("Grüße \"quoted\"\n"))},
      {"empty string", DefaultsValue(std::string())},
      {"date", DefaultsValue(Date{1710099320.125})},
      {"data", DefaultsValue(DefaultsData{0x00, 0xff, 0x7f, 0x80})},
      {"array", DefaultsValue(DefaultsArray{DefaultsValue(1), DefaultsValue(), DefaultsValue(false),
                                            DefaultsValue(DefaultsArray{DefaultsValue("nested")})})},
      {"dictionary", DefaultsValue(DefaultsDictionary{{"flag", DefaultsValue(false)},
                                                      {"when", DefaultsValue(Date{0.0})},
                                                      {"inner", DefaultsValue(DefaultsDictionary{})}})},
  };
}

TEST_F(SqliteUserDefaultsTest, EveryKindSurvivesReopeningWithItsKind) {
  {
    auto store = openStore();
    ASSERT_TRUE(store);
    for (const auto& [key, value] : oneValueOfEveryKind()) store->setObject(key, value);
    store->setObject("removed", DefaultsValue(1));
    store->removeObjectForKey("removed");
    store->setObject("bool", DefaultsValue(false));  // overwrites
    EXPECT_TRUE(store->synchronize());
  }
  auto reopened = openStore();
  ASSERT_TRUE(reopened);
  const auto stored = reopened->dictionaryRepresentation();
  EXPECT_EQ(stored.size(), oneValueOfEveryKind().size());
  EXPECT_FALSE(stored.contains("removed"));
  for (const auto& [key, value] : oneValueOfEveryKind()) {
    const auto expected = key == "bool" ? DefaultsValue(false) : value;
    EXPECT_EQ(reopened->objectForKey(key), expected) << key;
  }
}

TEST_F(SqliteUserDefaultsTest, ReadsSeeWhatAnotherConnectionWrote) {
  auto first = openStore();
  auto second = openStore();
  ASSERT_TRUE(first && second);
  first->setBool("com.ENTM.useEVASSwitch", true);
  EXPECT_EQ(second->objectForKey("com.ENTM.useEVASSwitch"), DefaultsValue(true));
  second->removeObjectForKey("com.ENTM.useEVASSwitch");
  EXPECT_FALSE(first->objectForKey("com.ENTM.useEVASSwitch"));
  EXPECT_TRUE(first->dictionaryRepresentation().empty());
}

TEST_F(SqliteUserDefaultsTest, ValuesThatCannotReadBackAreRefusedAndReported) {
  auto store = openStore();
  ASSERT_TRUE(store);
  store->setObject("kept", DefaultsValue(1));
  store->setObject("nan", DefaultsValue(std::nan("")));
  store->setObject("inside", DefaultsValue(DefaultsArray{DefaultsValue(std::numeric_limits<double>::infinity())}));
  store->setObject("latin1", DefaultsValue(std::string("caf\xe9")));
  store->setObject("kept", DefaultsValue(std::string("not refused")));
  EXPECT_FALSE(store->synchronize());
  EXPECT_TRUE(store->synchronize()) << "a refusal is reported once";

  const auto stored = store->dictionaryRepresentation();
  ASSERT_EQ(stored.size(), 1u);
  EXPECT_EQ(stored.at("kept"), DefaultsValue("not refused"));
  EXPECT_TRUE(openStore()) << "the refused values must not have damaged the file";
}

TEST_F(SqliteUserDefaultsTest, AWriteBlockedByAnotherWriterWaitsForSynchronize) {
  auto store = openStore(20ms);
  auto other = openStore();
  ASSERT_TRUE(store && other);
  store->setObject("gone", DefaultsValue(1));

  sqlite3* holder = nullptr;
  ASSERT_EQ(sqlite3_open(path.c_str(), &holder), SQLITE_OK);
  ASSERT_EQ(sqlite3_exec(holder, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr), SQLITE_OK);
  store->setObject("pending", DefaultsValue("value"));
  store->removeObjectForKey("gone");
  // This process sees its own writes; the file does not have them yet.
  EXPECT_EQ(store->objectForKey("pending"), DefaultsValue("value"));
  EXPECT_FALSE(store->objectForKey("gone"));
  EXPECT_EQ(store->dictionaryRepresentation().size(), 1u);
  EXPECT_FALSE(other->objectForKey("pending"));
  EXPECT_FALSE(store->synchronize());

  sqlite3_exec(holder, "ROLLBACK", nullptr, nullptr, nullptr);
  sqlite3_close(holder);
  EXPECT_TRUE(store->synchronize());
  EXPECT_EQ(other->objectForKey("pending"), DefaultsValue("value"));
  EXPECT_FALSE(other->objectForKey("gone"));
}

TEST_F(SqliteUserDefaultsTest, ForeignOrDamagedFilesAreRefusedAndLeftUntouched) {
  // A sound store to damage in several ways.
  const auto makeStore = [&] {
    fs::remove(path);
    auto store = openStore();
    for (int i = 0; i < 40; ++i) store->setString("key" + std::to_string(i), std::string(500, 'x'));
  };
  struct Case {
    const char* name;
    std::function<void()> prepare;
    const char* reason;
  };
  const std::vector<Case> cases = {
      {"plain text", [&] { writeFile(path, "settings: not a database at all\n"); }, "not a user-defaults store"},
      {"random bytes", [&] { writeFile(path, std::string(8192, '\x5a')); }, "not a user-defaults store"},
      {"another program's database",
       [&] {
         fs::remove(path);
         runSql("CREATE TABLE notes (body TEXT); INSERT INTO notes VALUES ('mine')");
       },
       "another program"},
      {"an undecodable value",
       [&] {
         makeStore();
         runSql("UPDATE defaults SET value = '{\"bool\":1}' WHERE key = 'key7'");
       },
       "cannot read, under key \"key7\""},
      {"a value that is not text",
       [&] {
         makeStore();
         runSql("UPDATE defaults SET value = x'00ff' WHERE key = 'key8'");
       },
       "under key \"key8\""},
      {"a newer schema",
       [&] {
         makeStore();
         runSql("PRAGMA user_version = 2");
       },
       "schema version 2"},
      {"a damaged page",
       [&] {
         makeStore();
         std::string bytes = fileBytes(path);
         ASSERT_GT(bytes.size(), 3 * 4096u);
         for (std::size_t i = 2 * 4096; i < 2 * 4096 + 600; ++i) bytes[i] = '\xee';
         writeFile(path, bytes);
       },
       "damaged"},
  };
  for (const auto& testCase : cases) {
    SCOPED_TRACE(testCase.name);
    testCase.prepare();
    const std::string before = fileBytes(path);
    const auto opened = SqliteUserDefaults::open(path);
    ASSERT_FALSE(opened.ok());
    EXPECT_EQ(opened.error().domain, kSqliteUserDefaultsErrorDomain);
    const auto* message = jsonString(opened.error().userInfo, "message");
    ASSERT_TRUE(message);
    EXPECT_NE(message->find(path.string()), std::string::npos) << *message;
    EXPECT_NE(message->find(testCase.reason), std::string::npos) << *message;
    EXPECT_EQ(fileBytes(path), before);
  }
}

TEST_F(SqliteUserDefaultsTest, OpeningCreatesMissingFoldersAndRefusesAFolderAsFile) {
  path = directory / "a" / "b" / "defaults.sqlite3";
  ASSERT_TRUE(openStore());
  EXPECT_TRUE(fs::is_regular_file(path));

  path = directory / "a";
  EXPECT_FALSE(SqliteUserDefaults::open(path).ok());
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
  {
    ScopedEnvironment unset(kDefaultsPathEnvironmentVariable, nullptr);
    EXPECT_EQ(SqliteUserDefaults::defaultPath().value(), fs::path("/tmp/xdg/varnel/defaults.sqlite3"));
    ScopedEnvironment relative("XDG_CONFIG_HOME", "relative/dir");
    EXPECT_EQ(SqliteUserDefaults::defaultPath().value(), fs::path("/home/tester/.config/varnel/defaults.sqlite3"));
    ScopedEnvironment noHome("HOME", nullptr);
    EXPECT_FALSE(SqliteUserDefaults::defaultPath().ok());
  }
}

/// Reads whole lines from a pipe until end of file.
class LineReader {
 public:
  explicit LineReader(int fd) : file_(fdopen(fd, "r")) {}
  ~LineReader() { std::fclose(file_); }
  LineReader(const LineReader&) = delete;
  LineReader& operator=(const LineReader&) = delete;
  std::optional<std::string> next() {
    char line[64];
    if (!std::fgets(line, sizeof line, file_)) return std::nullopt;
    return std::string(line);
  }

 private:
  FILE* file_;
};

TEST_F(SqliteUserDefaultsTest, EverySynchronisedWriteSurvivesTheWriterBeingKilled) {
  ASSERT_TRUE(openStore());
  int reports[2];
  ASSERT_EQ(pipe(reports), 0);
  const pid_t writer = fork();
  ASSERT_GE(writer, 0);
  if (writer == 0) {
    close(reports[0]);
    auto opened = SqliteUserDefaults::open(path);
    if (!opened.ok()) _exit(3);
    for (int i = 0; i < 1000000; ++i) {
      opened.value()->setInteger("write" + std::to_string(i), i);
      if (!opened.value()->synchronize()) _exit(4);
      const std::string line = std::to_string(i) + "\n";
      if (write(reports[1], line.data(), line.size()) != static_cast<ssize_t>(line.size())) _exit(5);
    }
    _exit(0);
  }
  close(reports[1]);
  int reported = -1;
  {
    LineReader reader(reports[0]);
    while (auto line = reader.next()) {
      reported = std::stoi(*line);
      if (reported == 40) kill(writer, SIGKILL);
    }
  }
  int status = 0;
  ASSERT_EQ(waitpid(writer, &status, 0), writer);
  ASSERT_TRUE(WIFSIGNALED(status)) << "the writer stopped on its own with status " << status;
  ASSERT_GE(reported, 40);

  auto store = openStore();
  ASSERT_TRUE(store);
  for (int i = 0; i <= reported; ++i) {
    EXPECT_EQ(store->objectForKey("write" + std::to_string(i)), DefaultsValue(i)) << i;
  }
}

TEST_F(SqliteUserDefaultsTest, TwoProcessesWritingAtOnceLoseNothing) {
  ASSERT_TRUE(openStore());
  constexpr int kWrites = 100;
  std::vector<pid_t> writers;
  for (const char* name : {"left", "right"}) {
    const pid_t writer = fork();
    ASSERT_GE(writer, 0);
    if (writer == 0) {
      auto opened = SqliteUserDefaults::open(path);
      if (!opened.ok()) _exit(3);
      auto& store = *opened.value();
      for (int i = 0; i < kWrites; ++i) {
        store.setInteger(std::string(name) + std::to_string(i), i);
        store.setString("shared", name);
        // Each writer also reads the other's keys while both are busy.
        store.dictionaryRepresentation();
      }
      _exit(store.synchronize() ? 0 : 4);
    }
    writers.push_back(writer);
  }
  for (const pid_t writer : writers) {
    int status = 0;
    ASSERT_EQ(waitpid(writer, &status, 0), writer);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
  }

  auto store = openStore();
  ASSERT_TRUE(store) << "the file must still be a sound store";
  const auto stored = store->dictionaryRepresentation();
  EXPECT_EQ(stored.size(), 2u * kWrites + 1);
  for (int i = 0; i < kWrites; ++i) {
    EXPECT_EQ(store->objectForKey("left" + std::to_string(i)), DefaultsValue(i));
    EXPECT_EQ(store->objectForKey("right" + std::to_string(i)), DefaultsValue(i));
  }
  const auto shared = store->stringForKey("shared");
  EXPECT_TRUE(shared == "left" || shared == "right");
}

}  // namespace
}  // namespace varnel::standalone
