// Terms of the language as nodes of the closure and as linear forms over nodes.
//
// A name, an application or an opaque product is a node; a linear term inside an application is one by its form, so
// that x + 1 and 1 + x are the same node; a number is one by its value. Each is made once, in the order of the terms.
#pragma once

#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "number/linear_form.h"
#include "smt_solver/src/combination.h"
#include "smt_solver/src/smt_lang.h"

namespace vetro::smt {

class purifier {
 public:
  purifier(const smt_language& language, combination& theories, budget& work)
      : language_(language), theories_(theories), work_(work) {}

  // Terms are asked for after this, and only those given here or below them.
  void prepare(std::span<const smt_term> roots);

  node node_of(smt_term t);
  // no_node for what has none so far.
  node known_node(smt_term t) const { return at(t) < node_of_term_.size() ? node_of_term_[at(t)] : no_node; }
  linear_form form_of(smt_term t);
  node number(const exact& value);
  // Not built by addition, negation or multiplication with a number, and no number.
  bool is_plain(smt_term t) const;

  // The node takes part in the arithmetic as a variable.
  void share(node n);
  // Linear terms and numbers that are nodes get their meaning.
  void connect();

 private:
  static std::size_t at(std::int32_t i) { return static_cast<std::size_t>(i); }
  node application(node function, node argument);
  node list_node(smt_term t);
  node linear_node(linear_form form);
  std::optional<std::int64_t> constant_value(const smt_term_row& row) const;

  const smt_language& language_;
  combination& theories_;
  budget& work_;
  std::vector<node> node_of_term_;
  std::vector<std::pair<node, node>> applications_;  // function and argument
  std::vector<node> application_nodes_;
  std::vector<std::pair<exact, node>> numbers_;
  std::vector<std::pair<linear_form, node>> linear_nodes_;
  hash_index application_index_, number_index_, linear_index_;
  node list_function_ = no_node;
};

}  // namespace vetro::smt
