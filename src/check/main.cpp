// vetro-check: many proofs, what failed, where and why.
#include <csignal>
#include <cstdio>
#include <new>

#include "check/check_run.h"
#include "check/outcome.h"
#include "parser/parser_api.h"
#include "qv_solver_list/solver_registry.h"
#include "term/pattern_match.h"

int main(int argc, char** argv) {
  // A worker that is gone, and a reader that is, show as failed writes.
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
  vetro::match_init(vetro::read_pattern);
  vetro::install_solvers(vetro::solver_registry());
  try {
    const vetro::read_options read = vetro::parse_check_options(argc, argv);
    return read.options.has_value() ? vetro::run_check(*read.options) : read.status;
  } catch (const std::bad_alloc&) {
    std::fputs("vetro-check: out of memory\n", stderr);
    return vetro::exit_limit;
  }
}
