// The canonical set-builder, and the variables that binding operators bind with no syntax for it: the index of a sum,
// the variable of a limit, what follows d in an integral.
//
// One walk finds the binders of all nodes. What an enclosing integral or equation needs from below (the arguments of
// diff, the variables of Landau terms) is collected on the way, so that no subterm is searched again for each level
// above it.
#include <algorithm>
#include <array>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "lib/application.h"
#include "lib/semantic_term.h"
#include "lib/walk_memo.h"
#include "number/limits.h"
#include "term/compare.h"
#include "term/free_variable.h"
#include "term/report.h"
#include "term/traverse.h"
#include "term/walk_tools.h"

namespace vetro {
namespace {

// ---- The canonical set-builder.

class setdesc_normalizer {
 public:
  explicit setdesc_normalizer(term_ptr root) : memo_(root) {}

  term_ptr normalize(term_ptr t) {
    if (term_ptr known = memo_.find(t); known != nullptr) {
      return known;
    }
    const auto part = [this](term_ptr below) { return normalize(below); };
    constexpr unsigned parts =
        walk_body | walk_lambda_vars | walk_quant_vars | walk_tag_vars | walk_elements | walk_scope | keep_meta;
    return memo_.keep(t, t->type() == Apply ? normalize_spine(t) : map_children(t, parts, part));
  }

 private:
  // A whole left spine at once: the partial application inside SetDesc(x, p, q) is no set-builder of its own.
  term_ptr normalize_spine(term_ptr t) {
    term_list nodes;
    term_ptr head = t;
    for (; head->type() == Apply; head = head->left()) {
      nodes.push_back(head);
    }
    term_ptr result = normalize(head);
    if (nodes.size() >= 2 && is_oper(result, SetDesc)) {
      return set_builder(t, result, nodes);
    }
    for (auto node = nodes.rbegin(); node != nodes.rend(); ++node) {
      result = with_normal_scope(reapplied(*node, result, normalize((*node)->right())));
    }
    return result;
  }

  term_ptr set_builder(term_ptr t, term_ptr head, const term_list& nodes) {
    term_list args;
    for (auto node = nodes.rbegin(); node != nodes.rend(); ++node) {
      args.push_back(normalize((*node)->right()));
    }
    if (args.size() == 2 && args[1]->type() == TermList) {
      term_ptr inner = with_normal_scope(reapplied(t->left(), head, args[0]));
      return with_normal_scope(reapplied(t, inner, args[1]));
    }
    term_ptr conditions = mk_term_list(term_span(args).subspan(1));
    term_ptr canonical = with_binders(mk_apply(mk_apply(head, args[0]), conditions), t->binders());
    return t->scope() == nullptr ? canonical : with_scope(canonical, normalize(t->scope()));
  }

  term_ptr with_normal_scope(term_ptr t) { return t->scope() == nullptr ? t : with_scope(t, normalize(t->scope())); }

  walk_memo memo_;
};

// ---- Binders.

enum class binder_source : unsigned char {
  first_argument,   // its free variables
  second_argument,  // its free variables
  integrand,        // what stands behind diff and pdiff in the last argument
  set_conditions,   // the free variables of the element that the conditions speak of
  landau_terms,     // the free variables of the first arguments of all Landau terms inside
};

struct binding_operator {
  int head;
  std::size_t arity;
  binder_source source;
};

constexpr binding_operator binding_table[] = {
    {BigSum, 2, binder_source::first_argument},
    {BigSumSup, 3, binder_source::first_argument},
    {BigProd, 2, binder_source::first_argument},
    {BigProdSup, 3, binder_source::first_argument},
    {BigUnion, 2, binder_source::first_argument},
    {BigUnionSup, 3, binder_source::first_argument},
    {BigInter, 2, binder_source::first_argument},
    {BigInterSup, 3, binder_source::first_argument},
    {IndefInt, 1, binder_source::integrand},
    {DefInt, 3, binder_source::integrand},
    {ScalarCurveInt, 2, binder_source::integrand},
    {VectorCurveInt, 2, binder_source::integrand},
    {ScalarSurfaceInt, 2, binder_source::integrand},
    {VectorSurfaceInt, 2, binder_source::integrand},
    {VolumeInt, 2, binder_source::integrand},
    {SeqLim, 3, binder_source::first_argument},
    {LeftSeqLim, 3, binder_source::first_argument},
    {RightSeqLim, 3, binder_source::first_argument},
    {SeqLimSup, 3, binder_source::first_argument},
    {LeftSeqLimSup, 3, binder_source::first_argument},
    {RightSeqLimSup, 3, binder_source::first_argument},
    {SeqLimInf, 3, binder_source::first_argument},
    {LeftSeqLimInf, 3, binder_source::first_argument},
    {RightSeqLimInf, 3, binder_source::first_argument},
    {Lim, 3, binder_source::first_argument},
    {LeftLim, 3, binder_source::first_argument},
    {RightLim, 3, binder_source::first_argument},
    {LimSup, 3, binder_source::first_argument},
    {LeftLimSup, 3, binder_source::first_argument},
    {RightLimSup, 3, binder_source::first_argument},
    {LimInf, 3, binder_source::first_argument},
    {LeftLimInf, 3, binder_source::first_argument},
    {RightLimInf, 3, binder_source::first_argument},
    {SeqTendsTo, 4, binder_source::first_argument},
    {LeftSeqTendsTo, 4, binder_source::first_argument},
    {RightSeqTendsTo, 4, binder_source::first_argument},
    {TendsTo, 4, binder_source::first_argument},
    {LeftTendsTo, 4, binder_source::first_argument},
    {RightTendsTo, 4, binder_source::first_argument},
    {AsymEquiv, 4, binder_source::first_argument},
    {LeftAsymEquiv, 4, binder_source::first_argument},
    {RightAsymEquiv, 4, binder_source::first_argument},
    {ValDeri, 3, binder_source::second_argument},
    {SetDesc, 2, binder_source::set_conditions},
    {Eq, 2, binder_source::landau_terms},
};

constexpr auto binding_row_of_head = [] {
  std::array<signed char, Defined + 1> rows{};
  rows.fill(-1);
  signed char next = 0;
  for (const binding_operator& row : binding_table) {
    rows[static_cast<std::size_t>(row.head)] = next++;
  }
  return rows;
}();

const binding_operator* binding_operator_of(const application& app) {
  const int head = app.head_number();
  if (head < 0 || head > Defined || binding_row_of_head[static_cast<std::size_t>(head)] < 0) {
    return nullptr;
  }
  const binding_operator& row = binding_table[binding_row_of_head[static_cast<std::size_t>(head)]];
  return row.arity == app.count ? &row : nullptr;
}

// The variables bound around the node that a walk is at, entered and left like a stack.
class outer_variables {
 public:
  struct mark {
    std::size_t count;
    std::uint32_t level;
  };

  explicit outer_variables(term_span global_var) { enter(global_var); }

  mark enter(term_span vars) {
    const mark before{bound_.size(), level_};
    for (term_ptr var : vars) {
      if (!bound_.contains(var)) {
        bound_.bind(var);
        level_ = ++last_level_;
      }
    }
    return before;
  }
  void leave(const mark& before) {
    bound_.release(before.count);
    level_ = before.level;
  }
  bool contains(term_ptr var) const { return bound_.contains(var); }
  // Equal numbers mean the same set of variables.
  std::uint32_t level() const { return level_; }

 private:
  bound_names bound_;
  std::uint32_t level_ = 0;
  std::uint32_t last_level_ = 0;
};

// Terms collected on the way up, in text order. A node sees those from its own mark on.
class collected_terms {
 public:
  std::size_t mark() const { return items_.size(); }
  void add(term_ptr t) { items_.push_back(t); }
  void forget_from(std::size_t from) { items_.resize(from); }
  // What stands from first to middle goes behind the rest.
  void move_to_end(std::size_t first, std::size_t middle) {
    std::rotate(items_.begin() + static_cast<std::ptrdiff_t>(first),
                items_.begin() + static_cast<std::ptrdiff_t>(middle), items_.end());
  }
  // The terms from a mark on, each once: a repetition would bind nothing that its first occurrence does not bind.
  term_span distinct_from(std::size_t from) {
    if (items_.size() - from > 1) {
      std::unordered_set<term_ptr> seen;
      std::size_t kept = from;
      for (std::size_t i = from; i < items_.size(); ++i) {
        if (seen.insert(items_[i]).second) {
          items_[kept++] = items_[i];
        }
      }
      items_.resize(kept);
    }
    return term_span(items_).subspan(from);
  }

 private:
  term_list items_;
};

class binder_catcher {
 public:
  binder_catcher(term_ptr root, term_span global_var)
      : outer_(global_var), remember_(root->size() >= worth_remembering) {}

  // Null, reported, when the budget did not suffice.
  term_ptr prepare(term_ptr t) {
    term_ptr result = visit(t);
    if (collected_work_ <= limits::collected_binders) {
      return result;
    }
    report_error("Error: too many variables are bound by nested integrals or equations\n");
    return nullptr;
  }

 private:
  term_ptr visit(term_ptr t) {
    if (t->children().empty() && t->scope() == nullptr) {
      return t;
    }
    if (const seen_node* known = find_seen(t); known != nullptr) {
      return replay(*known);
    }
    const marks start = marks_now();
    term_ptr result = visit_content(t, start);
    if (result->scope() != nullptr) {
      const marks before_scope = marks_now();
      result = with_scope(result, visit(result->scope()));
      forget_from(before_scope);
    }
    return remember(t, result, start);
  }

  struct marks {
    std::size_t differentials;
    std::size_t landau;
  };
  marks marks_now() const { return {differentials_.mark(), landau_.mark()}; }
  void forget_from(const marks& m) {
    differentials_.forget_from(m.differentials);
    landau_.forget_from(m.landau);
  }

  term_ptr visit_content(term_ptr t, const marks& start) {
    const auto part = [this](term_ptr below) { return visit(below); };
    switch (t->type()) {
      case Apply:
        return visit_apply(t, start);
      case Lambda:
      case Quant:
        return visit_binding(t, start);
      case TermList:
        return map_children(t, walk_elements | keep_meta, part);
      case FreeVarTag: {
        term_ptr with_vars = map_children(t, walk_tag_vars | keep_meta, part);
        return visit_body(with_vars, start);
      }
      default:
        return t;
    }
  }

  term_ptr visit_apply(term_ptr t, const marks& start) {
    term_ptr left = visit(t->left());
    const std::size_t right_start = differentials_.mark();
    term_ptr right = visit(t->right());
    term_ptr node = reapplied(t, left, right);
    const application app = application_of(node);
    if (const binding_operator* row = binding_operator_of(app); row != nullptr) {
      node = bind(node, binders_of(*row, app, start, right_start));
    }
    const int head = app.head_number();
    if (app.count == 1 && (head == D || head == PD)) {
      differentials_.forget_from(start.differentials);
      differentials_.add(right);
    } else if (app.count == 3 && head >= BigO && head <= RightLittleO) {
      landau_.add(app.args[0]);
    }
    return node;
  }

  // A Lambda or a Quant: its entries' free variables are bound from outside for what it stands over.
  term_ptr visit_binding(term_ptr t, const marks& start) {
    const auto part = [this](term_ptr below) { return visit(below); };
    term_ptr with_vars = map_children(t, walk_lambda_vars | walk_quant_vars | keep_meta, part);
    const term_list inner = free_variables_.of_list(with_vars->vars());
    const outer_variables::mark outside = outer_.enter(inner);
    term_ptr result = visit_body(with_vars, start);
    outer_.leave(outside);
    return result;
  }

  // Condition and body. An integral does not look into the entries; Landau terms in them come after the body's.
  term_ptr visit_body(term_ptr t, const marks& start) {
    const std::size_t entries_end = landau_.mark();
    differentials_.forget_from(start.differentials);
    const auto part = [this](term_ptr below) { return visit(below); };
    term_ptr result = map_children(t, walk_condition | walk_body | keep_meta, part);
    landau_.move_to_end(start.landau, entries_end);
    return result;
  }

  // A binder that is found again is not listed again, so that a prepared node comes back as it is.
  static term_ptr bind(term_ptr node, term_list&& found) {
    if (found.empty()) {
      return node;
    }
    ordered_terms listed;
    for (term_ptr binder : found) {
      listed.add(binder->bare());
    }
    for (term_ptr binder : node->binders()) {
      if (!listed.contains(binder->bare())) {
        found.push_back(binder);
      }
    }
    return with_binders(node, found);
  }

  term_list binders_of(const binding_operator& row, const application& app, const marks& start,
                       std::size_t right_start) {
    switch (row.source) {
      case binder_source::first_argument:
        return get_binders(app.args[0]);
      case binder_source::second_argument:
        return get_binders(app.args[1]);
      case binder_source::integrand:
        return integral_binders(right_start);
      case binder_source::set_conditions:
        return set_builder_binders(app.args[0], app.args[1]);
      case binder_source::landau_terms:
        return landau_binders(start.landau);
    }
    return {};
  }

  // The free variables of b that are not bound from outside; all of them when that leaves none.
  term_list get_binders(term_ptr b) {
    term_list free = free_variables_.of(b);
    term_list found;
    std::copy_if(free.begin(), free.end(), std::back_inserter(found), [&](term_ptr v) { return !outer_.contains(v); });
    return found.empty() ? free : found;
  }

  term_list set_builder_binders(term_ptr element, term_ptr conditions) {
    if (conditions->type() != TermList) {
      return {};
    }
    const term_list candidates = get_binders(element);
    if (candidates.empty()) {
      return {};
    }
    ordered_terms constrained;
    for (term_ptr condition : conditions->elements()) {
      add_constrained(constrained, candidates, condition);
    }
    term_list result;
    std::copy_if(candidates.begin(), candidates.end(), std::back_inserter(result),
                 [&](term_ptr v) { return constrained.contains(v); });
    return result;
  }

  // Adds the candidates that are binders of the condition. A few candidates are looked for in a long condition one by
  // one: in a tower of set-builders its list of variables may grow from level to level. One that is not bound from
  // outside is a binder wherever it is free.
  void add_constrained(ordered_terms& constrained, const term_list& candidates, term_ptr condition) {
    constexpr std::size_t few = 8;
    constexpr std::uint32_t long_condition = 4096;
    if (candidates.size() > few || condition->size() < long_condition || condition->has(fact_empty_list) ||
        std::any_of(candidates.begin(), candidates.end(), [&](term_ptr v) { return outer_.contains(v); })) {
      for (term_ptr var : get_binders(condition)) {
        constrained.add(var);
      }
      return;
    }
    for (term_ptr var : candidates) {
      if (!constrained.contains(var) && free_variables_.has(condition, var)) {
        constrained.add(var);
      }
    }
  }

  term_list integral_binders(std::size_t from) {
    if (!affords(differentials_.mark() - from)) {
      return {};
    }
    const term_span found = differentials_.distinct_from(from);
    return {found.begin(), found.end()};
  }

  // A tower of integrals, or of equations with Landau terms, lists at each level what all levels inside bind.
  bool affords(std::size_t collected) {
    collected_work_ += collected;
    return collected_work_ <= limits::collected_binders;
  }

  term_list landau_binders(std::size_t from) {
    if (!affords(landau_.mark() - from)) {
      return {};
    }
    ordered_terms result;
    for (term_ptr variable_part : landau_.distinct_from(from)) {
      for (term_ptr var : get_binders(variable_part)) {
        result.add(var);
      }
    }
    return result.list();
  }

  // ---- Shared subterms of large terms are visited once for each set of outer variables.

  struct seen_node {
    term_ptr result;
    term_list differentials;
    term_list landau;
  };
  struct key {
    term_ptr node;
    std::uint32_t level;
    bool operator==(const key&) const = default;
  };
  struct key_hash {
    std::size_t operator()(const key& k) const {
      return std::hash<term_ptr>()(k.node) * 31 + std::size_t{k.level} * 0x9e3779b97f4a7c15ULL;
    }
  };

  const seen_node* find_seen(term_ptr t) const {
    if (!remember_) {
      return nullptr;
    }
    const auto found = seen_.find({t, outer_.level()});
    return found == seen_.end() ? nullptr : &found->second;
  }

  term_ptr replay(const seen_node& known) {
    for (term_ptr t : known.differentials) {
      differentials_.add(t);
    }
    for (term_ptr t : known.landau) {
      landau_.add(t);
    }
    return known.result;
  }

  term_ptr remember(term_ptr t, term_ptr result, const marks& start) {
    // An empty list inside makes the search for free variables print a line each time; long lists would cost more
    // than the visit that they save.
    constexpr std::size_t most_collected = 8;
    if (!remember_ || t->has(fact_empty_list) || differentials_.mark() - start.differentials > most_collected ||
        landau_.mark() - start.landau > most_collected) {
      return result;
    }
    const term_span differentials = differentials_.distinct_from(start.differentials);
    const term_span landau = landau_.distinct_from(start.landau);
    seen_.emplace(key{t, outer_.level()},
                  seen_node{result, {differentials.begin(), differentials.end()}, {landau.begin(), landau.end()}});
    return result;
  }

  outer_variables outer_;
  free_variable_memo free_variables_;
  collected_terms differentials_;
  collected_terms landau_;
  std::uint64_t collected_work_ = 0;
  bool remember_;
  std::unordered_map<key, seen_node, key_hash> seen_;
};

class binder_deduplicator {
 public:
  explicit binder_deduplicator(term_ptr root) : memo_(root) {}

  term_ptr visit(term_ptr t) {
    if (!t->has(fact_meta)) {
      return t;
    }
    if (term_ptr known = memo_.find(t); known != nullptr) {
      return known;
    }
    constexpr unsigned parts = walk_apply | walk_lambda_vars | walk_quant_vars | walk_tag_vars | walk_body |
                               walk_elements | walk_scope | keep_meta;
    term_ptr result = map_children(t, parts, [this](term_ptr below) { return visit(below); });
    if (result->binders().size() > 1) {
      term_list binders = result->binders();
      term_list_dedup(binders);
      result = with_binders(result, binders);
    }
    return memo_.keep(t, result);
  }

 private:
  walk_memo memo_;
};

}  // namespace

term_ptr normalize_setdesc_for_catch_binder(term_ptr t) {
  return t == nullptr ? nullptr : setdesc_normalizer(t).normalize(t);
}

term_ptr catch_binder_term(term_ptr t, term_span global_var) {
  return t == nullptr ? nullptr : binder_catcher(t, global_var).prepare(t);
}

term_ptr term_dedup_binders(term_ptr t) { return t == nullptr ? nullptr : binder_deduplicator(t).visit(t); }

}  // namespace vetro
