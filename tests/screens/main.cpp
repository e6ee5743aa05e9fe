// The screen tests run inside one QApplication on the offscreen platform.
// Listing the tests (as test discovery does) needs no application.

#include <QApplication>

#include <cstring>
#include <memory>

#include <gmock/gmock.h>

int main(int argc, char** argv) {
  bool listing = false;
  for (int i = 1; i < argc; ++i) listing = listing || std::strcmp(argv[i], "--gtest_list_tests") == 0;
  ::testing::InitGoogleMock(&argc, argv);
  std::unique_ptr<QApplication> application;
  if (!listing) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    application = std::make_unique<QApplication>(argc, argv);
  }
  return RUN_ALL_TESTS();
}
