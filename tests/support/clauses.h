// Clause problems that tests and benchmarks try the clause core with.
#pragma once

#include <algorithm>
#include <cstdlib>
#include <random>
#include <vector>

namespace vetro {

using clause_list = std::vector<std::vector<int>>;

// Clauses over variables 1 to `variables`, each with `shortest` to `longest` literals of different variables.
inline clause_list random_clauses(std::mt19937& random, int variables, int count, int shortest, int longest) {
  clause_list clauses;
  while (static_cast<int>(clauses.size()) < count) {
    std::vector<int> clause;
    const int size = shortest + static_cast<int>(random() % static_cast<unsigned>(longest - shortest + 1));
    while (static_cast<int>(clause.size()) < size) {
      const int v = static_cast<int>(random() % static_cast<unsigned>(variables)) + 1;
      if (std::none_of(clause.begin(), clause.end(), [&](int l) { return std::abs(l) == v; })) {
        clause.push_back(random() % 2 == 0 ? v : -v);
      }
    }
    clauses.push_back(clause);
  }
  return clauses;
}

// n + 1 pigeons in n holes.
inline clause_list pigeonhole(int holes) {
  clause_list clauses;
  const auto in = [&](int pigeon, int hole) { return pigeon * holes + hole + 1; };
  for (int pigeon = 0; pigeon <= holes; ++pigeon) {
    std::vector<int> somewhere;
    for (int hole = 0; hole < holes; ++hole) {
      somewhere.push_back(in(pigeon, hole));
    }
    clauses.push_back(somewhere);
  }
  for (int hole = 0; hole < holes; ++hole) {
    for (int a = 0; a <= holes; ++a) {
      for (int b = a + 1; b <= holes; ++b) {
        clauses.push_back({-in(a, hole), -in(b, hole)});
      }
    }
  }
  return clauses;
}

}  // namespace vetro
