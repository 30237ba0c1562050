// One walk serves both rewritings; what holds neither sqrt nor cbrt comes back as it is.
#include "qv_solver_list/algebra/root_view.h"

#include <array>

#include "qv_solver_list/algebra/root_form.h"
#include "qv_solver_list/number_reading.h"
#include "term/node_memo.h"
#include "term/reserved.h"
#include "term/term_split_combine.h"
#include "term/traverse.h"

namespace vetro {
namespace {

struct named_root {
  oper_type oper;
  std::int32_t index;
};
constexpr std::array named_roots = {named_root{Sqrt, 2}, named_root{Cbrt, 3}};

const named_root* named_root_of(term_ptr head) {
  for (const named_root& row : named_roots) {
    if (is_oper(head, row.oper)) {
      return &row;
    }
  }
  return nullptr;
}

bool holds_named_root(term_ptr t) {
  return any_subterm(t, walk_children, [](term_ptr part) { return named_root_of(part) != nullptr; });
}

class indexed_writer {
 public:
  term_ptr write(term_ptr t) {
    if ((t->type() != Apply && t->type() != TermList) || t->scope() != nullptr || !stands_for_its_value(t)) {
      return t;
    }
    if (const term_ptr* known = known_.find(t)) {
      return *known;
    }
    term_ptr result = map_children(t, walk_apply | walk_elements | keep_meta, [this](term_ptr p) { return write(p); });
    if (const named_root* row = result->type() == Apply ? named_root_of(result->left()) : nullptr) {
      result = make_binOp_term(Sqrtn, mk_integer(row->index), result->right());
    }
    return known_.keep(t, result);
  }

 private:
  node_memo<term_ptr> known_;
};

class opaque_writer {
 public:
  term_ptr write(term_ptr t) {
    if (const named_root* row = named_root_of(t)) {
      return reserved_var(reserved_kind::unknown, static_cast<std::uint32_t>(row->index));
    }
    if (t->children().empty()) {
      return t;
    }
    if (const term_ptr* known = known_.find(t)) {
      return *known;
    }
    constexpr unsigned all = walk_children | walk_scope | keep_meta;
    term_ptr result = map_children(t, all, [this](term_ptr part) { return write(part); });
    return known_.keep(t, result);
  }

 private:
  node_memo<term_ptr> known_;
};

std::optional<root_view> with_index(term_ptr index, term_ptr radicand) {
  const auto value = evaluate(index, {});
  const auto n = value ? value->to_int64() : std::nullopt;
  return n && *n >= 1 ? std::optional(root_view{*n, radicand}) : std::nullopt;
}

}  // namespace

std::optional<root_view> indexed_root_of(term_ptr t) {
  if (is_apply(t) && is_oper(t->left(), Sqrtn) && t->right()->type() == TermList) {
    const term_span parts = t->right()->elements();
    return parts.size() == 2 ? with_index(parts[0], parts[1]) : std::nullopt;
  }
  const auto view = composed_term_split(t);
  return view && view->oper == Sqrtn && view->t2 != nullptr ? with_index(view->t1, view->t2) : std::nullopt;
}

std::optional<root_view> root_of(term_ptr t) {
  if (is_apply(t) && t->right()->type() != TermList) {
    if (const named_root* row = named_root_of(t->left())) {
      return root_view{row->index, t->right()};
    }
  }
  return indexed_root_of(t);
}

term_ptr with_indexed_roots(term_ptr t) { return holds_named_root(t) ? indexed_writer().write(t) : t; }

term_ptr with_opaque_roots(term_ptr t) { return holds_named_root(t) ? opaque_writer().write(t) : t; }

}  // namespace vetro
