#pragma once
// Shared by the answer-parser suites (which include only this header): a
// signed-in guest, the sample answers, and tables of damaged answers. Each
// row changes one path of a sample answer and names the record field it
// should leave and the log lines it should give.

#include <gmock/gmock.h>

#include <fstream>

#include "support/Fakes.h"
#include "varnel/host/Registry.h"
#include "varnel/platform/Json.h"
#include "varnel/standalone/StaticAuthenticationService.h"

namespace varnel::testing {

/// As a replacement: the member is removed.
inline const Json kRemoved(Json::value_t::discarded);

struct DamagedPath {
  std::string answerPath;  // JSON pointer into the answer ("" is the whole answer)
  Json replacement;
  std::string recordPath;  // JSON pointer into the record's toJson()
  Json expected;
  std::vector<std::string> logged = {};  // "<function> <message>", in order
};

class ParserFixture : public HostFixture {
 protected:
  /// Installs an authentication service with `kuid` signed in (nobody when none).
  static void signIn(std::optional<std::string> kuid) {
    host::Registry::set<KTVRAuthenticationService>(
        std::make_shared<standalone::StaticAuthenticationService>(std::move(kuid)));
  }

  static Json sample(const std::string& name) {
    return Json::parse(std::ifstream(std::string(VARNEL_TEST_RESOURCE_DIR) + "/samples/" + name), nullptr, false);
  }

  /// Runs every row on the sample `base`; every log line must come from `file`.
  template <typename Parse>
  void expectDamage(const std::string& base, const std::string& file, Parse parse,
                    const std::vector<DamagedPath>& rows) {
    for (const DamagedPath& row : rows) {
      SCOPED_TRACE(row.answerPath + " = " + row.replacement.dump());
      Json answer = sample(base);
      const Json::json_pointer path(row.answerPath);
      answer[path] = row.replacement;
      if (row.replacement.is_discarded()) answer.at(path.parent_pointer()).erase(path.back());
      log->clear();
      EXPECT_EQ(parse(answer).toJson().at(Json::json_pointer(row.recordPath)), row.expected);
      std::vector<std::string> lines;
      for (const auto& line : log->lines()) {
        EXPECT_EQ(line.site.file, file);
        lines.push_back(line.site.function + " " + line.message);
      }
      EXPECT_THAT(lines, ::testing::ElementsAreArray(row.logged));
    }
  }
};

}  // namespace varnel::testing
