// From goals and assumptions to the language of the SMT kernel.
//
// Sums, differences, negations and products of numbers keep their meaning; an absolute value becomes a name with a
// constraint; everything else becomes an application or a name, so that the kernel can still reason by congruence.
#pragma once

#include <cstdint>
#include <optional>
#include <unordered_map>
#include <vector>

#include "qv_solver_list/logic/smt_values.h"
#include "smt_solver/src/smt_lang.h"
#include "term/ast.h"
#include "term/node_memo.h"
#include "term/term_numbers.h"
#include "term/term_split_combine.h"

namespace vetro {

class smt_translation {
 public:
  // What the propositions speak of must have been taken into the kinds before the first translation.
  smt_translation(smt_language& language, value_kinds& kinds) : language_(language), kinds_(kinds) {}

  // What a proof of the proposition needs: smt_none where a part has no translation.
  smt_prop target(term_ptr t) { return proposition(t, false); }
  // What may be assumed instead of the proposition: parts without translation are left out where that says less.
  smt_prop assumption(term_ptr t) { return proposition(t, true); }
  // For each absolute value, newest first: the name is the inner term or its negation, and not negative.
  std::vector<smt_prop> constraints();
  // Something had no translation, and that was told.
  bool complained() const { return complained_; }

 private:
  enum class mode : std::uint8_t { abstracting, plain };  // plain: an absolute value has no translation

  struct translated {
    smt_term term = smt_none;
    std::optional<std::int64_t> number = std::nullopt;  // the exact value, where it is an integer calculation
  };
  struct abstraction {
    smt_term name;
    smt_term inner;
  };

  smt_prop proposition(term_ptr t, bool may_weaken);
  smt_prop new_proposition(term_ptr t, bool may_weaken);
  smt_prop link(term_ptr t, bool may_weaken);
  smt_prop connection(connect_type connect, term_span args, bool may_weaken);
  smt_prop relation(term_ptr t, term_ptr head, term_span args);
  smt_prop equation(term_ptr left, term_ptr right, mode m);
  smt_prop opaque_proposition(term_ptr t);
  smt_prop is_true(smt_term t);
  smt_prop refuse(term_ptr t);

  translated term(term_ptr t, mode m);
  translated new_term(term_ptr t, mode m);
  translated application(term_ptr t, mode m);
  translated calculation(const composed_term& view, mode m);
  translated ordinary(term_ptr t, mode m);
  translated list(term_ptr t, mode m);
  smt_term absolute(term_ptr inner);
  smt_term constant(term_ptr t);
  smt_term closed(term_ptr t);
  smt_term opaque(term_ptr t);
  bool is_number(term_ptr t) { return kinds_.of(t) != value_kind::other; }
  bool is_real(term_ptr t);

  smt_language& language_;
  value_kinds& kinds_;
  term_numbers opaque_numbers_;
  term_numbers absolute_numbers_;
  std::unordered_map<std::int32_t, std::size_t> absolute_of_;  // by number of the inner term
  std::vector<abstraction> abstractions_;
  std::int32_t next_abs_id_ = 0;
  bool complained_ = false;
  node_memo<translated> known_;      // by mode
  node_memo<smt_prop> known_props_;  // strict, weakening
};

}  // namespace vetro
