// One walk that knows which places keep their meaning.
#include "dsl_interpreter/instructions/replacement.h"

#include <algorithm>

#include "lib/application.h"
#include "term/compare.h"
#include "term/term_split_combine.h"
#include "term/traverse.h"
#include "term/variables/binding.h"
#include "term/variables/bound_names.h"
#include "term/variables/entries.h"

namespace vetro {
namespace {

constexpr std::size_t no_argument = application::most_args;

// The argument that says what a notation binds or speaks of.
std::size_t index_argument(int head) {
  const bool first = (BigSum <= head && head <= RightLimInf) || (BigO <= head && head <= RightLittleO) ||
                     has_tendency_index(static_cast<pred_type>(head));
  return first ? 0 : head == ValDeri ? 1 : no_argument;
}

bool depends_on_domains(int head) { return head == Dom || head == Defined || head == SetDesc; }

class replacer {
 public:
  explicit replacer(const replacement& r) : r_(r) {}

  term_ptr walk(term_ptr t) {
    if (t->bare() == r_.from->bare() && term_eqb(t, r_.from)) {
      return r_.to;
    }
    if (t->children().empty() || binds_replaced(t)) {
      return t;
    }
    switch (t->type()) {
      case Apply:
        return walk_application(t);
      case Lambda:
      case Quant: {
        const unsigned condition = r_.in_domains ? walk_condition : 0U;
        return map_children(t, walk_body | condition | keep_meta, [this](term_ptr part) { return walk(part); });
      }
      default:
        return map_children(t, walk_elements | walk_body | keep_meta, [this](term_ptr part) { return walk(part); });
    }
  }

 private:
  bool binds_replaced(term_ptr t) const {
    if (t->type() == Lambda || t->type() == Quant) {
      return contains_variable(entry_names(t), r_.from);
    }
    const binding b(t);
    return b.touches_names() && b.catches(r_.from);
  }

  term_ptr walk_application(term_ptr t) {
    const application app = application_of(t);
    const int head = app.head_number();
    if ((t->has(fact_ellipsis) && app.head != nullptr && app.head->type() == Oper) ||
        (depends_on_domains(head) && !r_.in_domains)) {
      return t;
    }
    const std::size_t index = index_argument(head);
    return index < app.count ? walk_arguments(t, app.count, index)
                             : map_children(t, walk_apply | keep_meta, [this](term_ptr part) { return walk(part); });
  }

  // The arguments but one; t has count of them.
  term_ptr walk_arguments(term_ptr t, std::size_t count, std::size_t left_alone) {
    if (count == 0) {
      return t;
    }
    const term_ptr left = walk_arguments(t->left(), count - 1, left_alone);
    const term_ptr right = count - 1 == left_alone ? t->right() : walk(t->right());
    return reapplied(t, left, right);
  }

  const replacement& r_;
};

}  // namespace

bool is_total(term_ptr t) {
  if (t->has_meta()) {
    return false;
  }
  if (t->type() == Var) {
    return true;
  }
  if (t->type() == Const) {
    return t->constant() == Integer || t->constant() == Decimal || t->constant() == E || t->constant() == Pi;
  }
  const auto view = composed_term_split(t);
  if (!view) {
    return false;
  }
  switch (view->oper) {
    case Neg:
      return view->t2 == nullptr && is_total(view->t1);
    case Plus:
    case Minus:
    case Mult:
      return view->t2 != nullptr && is_total(view->t1) && is_total(view->t2);
    case Power:
      return view->t2 != nullptr && is_constant(view->t2, Integer) && view->t2->integer() >= 1 && is_total(view->t1);
    default:
      return false;
  }
}

term_ptr replace_everywhere(const replacement& r, term_ptr t) { return replacer(r).walk(t); }

}  // namespace vetro
