// varnel-chaos: a seeded chaos soak of the renewal road. It runs renewals as
// `varnel renew` child processes against a varnel-mock-commerce child on
// 127.0.0.1, each with a random fault of the server (or none) and, for a
// share of them, a SIGKILL at a random instant followed by the next run;
// then it compares the server's charges order by order with what the guest
// was told and prints one table (or, with --json, one object).

#include <signal.h>
#include <stdlib.h>

#include <iostream>

#include "ChaosOptions.h"
#include "FiguresTable.h"
#include "Soak.h"

int main(int argc, char** argv) {
  using namespace varnel::chaos;
  int status = 0;
  const auto options = parseChaosOptions(argc, argv, status);
  if (!options) return status;
  ::signal(SIGPIPE, SIG_IGN);
  std::cerr << "varnel-chaos: seed " << options->seed << " (replay with --seed " << options->seed << ")\n";

  std::filesystem::path work = options->workDirectory;
  const bool temporary = work.empty();
  if (temporary) {
    std::string pattern = (std::filesystem::temp_directory_path() / "varnel-chaos-XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr) {
      std::cerr << "varnel-chaos: cannot make a scratch directory\n";
      return 2;
    }
    work = pattern;
  } else {
    std::error_code error;
    std::filesystem::create_directories(work, error);
  }

  Figures figures;
  std::vector<std::string> problems;
  const bool ran = Soak(*options, work).run(figures, problems);
  for (const auto& problem : problems) std::cerr << "varnel-chaos: " << problem << '\n';
  if (options->json) std::cout << figuresJson(figures).dump() << '\n';
  else printFiguresTable(std::cout, figures);

  const bool clean = ran && figures.clean() && !figures.incomplete;
  if (temporary && clean) {
    std::error_code error;
    std::filesystem::remove_all(work, error);
  } else if (temporary) {
    std::cerr << "varnel-chaos: scratch files kept in " << work.string() << '\n';
  }
  if (!ran) return 2;
  return clean ? 0 : 1;
}
