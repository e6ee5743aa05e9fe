// varnel-console and varnel on one settings store: the console's pictures of
// every screen, the guest's renewal included, and routing values set from the
// command line.

#include <QImage>
#include <QProcess>
#include <QTemporaryDir>

#include <filesystem>

#include "ScreenTestSupport.h"
#include "varnel/standalone/SqliteUserDefaults.h"

namespace varnel::testing {
namespace {

struct ProgramRun {
  int status = -1;
  QString output;
};

ProgramRun run(const char* program, const QStringList& arguments) {
  QProcess process;
  process.setProcessChannelMode(QProcess::MergedChannels);
  process.start(QString::fromUtf8(program), arguments);
  if (!process.waitForFinished(300000) || process.exitStatus() != QProcess::NormalExit) return {};
  return {process.exitCode(), QString::fromUtf8(process.readAll())};
}

TEST(VarnelConsole, ScreenshotWritesEveryScreenAsAPicture) {
  QTemporaryDir directory;
  ASSERT_TRUE(directory.isValid());
  const QString store = directory.filePath("defaults.sqlite3");
  const QString pictures = directory.filePath("pictures");
  const ProgramRun console = run(VARNEL_CONSOLE_PATH, {"--defaults", store, "--park", "1", "--screenshot", pictures});
  ASSERT_EQ(console.status, 0) << console.output.toStdString();
  for (const char* name : {"configuration.png", "presets.png", "business-requirements.png", "server-error-routing.png",
                           "renewal-passes.png", "renewal-checkout.png", "renewal-contract.png",
                           "renewal-confirmation.png", "renewal-declined.png"}) {
    SCOPED_TRACE(name);
    const QString file = pictures + "/" + name;
    EXPECT_GT(std::filesystem::file_size(file.toStdString()), 0u);
    const QImage picture(file);
    EXPECT_EQ(picture.size(), QSize(480, 720));
  }
  EXPECT_NE(run(VARNEL_CONSOLE_PATH, {"--park", "3", "--screenshot", pictures}).status, 0);
}

TEST(VarnelConsole, RoutingHeaderIsSetFromTheCommandLineAsJson) {
  QTemporaryDir directory;
  ASSERT_TRUE(directory.isValid());
  const QString store = directory.filePath("defaults.sqlite3");
  const auto settings = [&](QStringList arguments) {
    return run(VARNEL_CLI_PATH, QStringList{"settings", "--defaults", store} + arguments);
  };
  EXPECT_EQ(settings({"set", "ServiceErrorRoutingHeader", R"({"X-Orvane-Internal-Mock-AP":"E500"})", "--type", "json"})
                .status,
            0);
  EXPECT_EQ(settings({"set", "Codes", R"([1, 2.5, "three", null, [true]])", "--type", "json"}).status, 0);
  for (const char* bad : {"{not json", "42", "\"text\"", R"({"a":null})"}) {
    const ProgramRun refused = settings({"set", "Bad", bad, "--type", "json"});
    EXPECT_EQ(refused.status, 2) << bad;
    EXPECT_FALSE(refused.output.isEmpty());
  }

  const auto opened = standalone::SqliteUserDefaults::open(store.toStdString());
  ASSERT_TRUE(opened);
  EXPECT_EQ(opened.value()->objectForKey("ServiceErrorRoutingHeader"),
            DefaultsValue(DefaultsDictionary{{"X-Orvane-Internal-Mock-AP", DefaultsValue("E500")}}));
  EXPECT_EQ(opened.value()->objectForKey("Codes"),
            DefaultsValue(DefaultsArray{DefaultsValue(1), DefaultsValue(2.5), DefaultsValue("three"), DefaultsValue(),
                                        DefaultsValue(DefaultsArray{DefaultsValue(true)})}));
  EXPECT_FALSE(opened.value()->objectForKey("Bad"));
}

}  // namespace
}  // namespace varnel::testing
