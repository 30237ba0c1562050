// The canonical set-builder, and the record of what each notation binds and guards: the index of a sum, the variable of
// a limit, what follows d in an integral. One walk writes the record on all nodes, since it depends on what is bound
// around them.
#include <algorithm>
#include <array>
#include <utility>

#include "lib/application.h"
#include "lib/semantic_term.h"
#include "number/limits.h"
#include "term/compare.h"
#include "term/report.h"
#include "term/traverse.h"
#include "term/variables/binding.h"
#include "term/variables/bound_names.h"
#include "term/variables/entries.h"

namespace vetro {
namespace {

// ---- The canonical set-builder.

class setdesc_normalizer {
 public:
  explicit setdesc_normalizer(term_ptr root) : known_(root) {}

  term_ptr normalize(term_ptr t) {
    if (!t->has(fact_binding)) {  // no set-builder below
      return t;
    }
    const auto part = [this](term_ptr below) { return normalize(below); };
    constexpr unsigned parts =
        walk_body | walk_lambda_vars | walk_quant_vars | walk_tag_vars | walk_elements | walk_scope | keep_meta;
    return known_.get(t, [&] { return t->type() == Apply ? normalize_spine(t) : map_children(t, parts, part); });
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

  walk_memo<term_ptr> known_;
};

// ---- Binders.

// The names bound around the node that a walk is at.
class names_around : public outer_names {
 public:
  explicit names_around(term_span global_var) { enter(global_var); }

  bool contains(term_ptr var) const override { return bound_.contains(var); }
  bool contains_none_of(term_ptr t) const override { return (bound_.mask() & t->name_mask()) == 0; }

  bound_names::mark enter(term_span vars) {
    const bound_names::mark before = bound_.here();
    for (term_ptr var : vars) {
      if (!bound_.contains(var)) {
        bound_.bind(var);
      }
    }
    return before;
  }
  void leave(const bound_names::mark& before) { bound_.leave(before); }
  std::uint64_t number_for(term_ptr t) const { return bound_.number_for(t); }

 private:
  bound_names bound_;
};

class binder_catcher {
 public:
  binder_catcher(term_ptr root, term_span global_var) : around_(global_var), known_(root) {}

  // Null, reported, when the budget did not suffice.
  term_ptr prepare(term_ptr t) {
    term_ptr result = visit(t);
    if (recorded_ <= limits::collected_binders) {
      return result;
    }
    report_error("Error: nested notations speak of too many variables\n");
    return nullptr;
  }

 private:
  term_ptr visit(term_ptr t) {
    if (!speaks_of_names(t)) {
      return t;
    }
    const auto visited = [&] {
      const term_ptr result = visit_content(t);
      return result->scope() == nullptr ? result : with_scope(result, visit(result->scope()));
    };
    return known_.get(t, visited, around_.number_for(t));
  }

  // Only what binds or guards gets a record.
  static bool speaks_of_names(term_ptr t) { return t->has(fact_binding) || t->has(fact_guard) || t->has(fact_landau); }

  term_ptr visit_content(term_ptr t) {
    const auto part = [this](term_ptr below) { return visit(below); };
    switch (t->type()) {
      case Apply:
        return visit_apply(t);
      case Lambda:
      case Quant:
        return visit_binding(t);
      case TermList:
        return map_children(t, walk_elements | keep_meta, part);
      case FreeVarTag:
        return map_children(t, walk_tag_vars | walk_body | keep_meta, part);
      default:
        return t;
    }
  }

  term_ptr visit_apply(term_ptr t) {
    const binding_row* row = binding_row_of(t);
    if (row == nullptr) {
      term_ptr left = visit(t->left());
      term_ptr right = visit(t->right());
      return reapplied(t, left, right);
    }
    // What speaks of names does so for its parts, too: an index part that stands inside may ask what is bound around.
    term_ptr node = visit_arguments(t, *row);
    if (!node->binders().empty() || !node->guarded().empty()) {
      return node;
    }
    index_reading found = read_binding(node, around_, names_);
    recorded_ += found.guarded.size() + found.indices.size();
    return recorded_ <= limits::collected_binders ? with_binding(node, found.indices, found.guarded) : node;
  }

  // The part that names the indices comes first, then what lies inside, under them.
  term_ptr visit_arguments(term_ptr t, const binding_row& row) {
    term_list arguments;
    for (unsigned i = 0; i < row.arity; ++i) {
      arguments.push_back(t->argument(i));
    }
    const unsigned naming = naming_argument(row);
    if (naming < row.arity) {
      arguments[naming] = visit(arguments[naming]);
    }
    const term_list names = names_for_the_inside(t, row, naming < row.arity ? arguments[naming] : nullptr);
    for (unsigned i = 0; i < row.arity; ++i) {
      if (i == naming) {
        continue;
      }
      if (row.regions[i] == region::outside) {
        arguments[i] = visit(arguments[i]);
        continue;
      }
      const bound_names::mark outside = around_.enter(names);
      arguments[i] = visit(arguments[i]);
      around_.leave(outside);
    }
    const term_ptr content = map_arguments(t, row.arity, [&](term_ptr, unsigned i) { return arguments[i]; });
    return content == t ? t : with_meta(content, t->meta());
  }

  static unsigned naming_argument(const binding_row& row) {
    for (unsigned i = 0; i < row.arity; ++i) {
      if (row.regions[i] == region::index || (row.kind == binding_kind::set_element && i == 0)) {
        return i;
      }
    }
    return row.arity;
  }

  term_list names_for_the_inside(term_ptr t, const binding_row& row, term_ptr naming) {
    switch (row.kind) {
      case binding_kind::index_part:
        return read_index_part(naming, around_, is_in_front_of_point(row), names_).indices;
      case binding_kind::set_element:
        return names_.beside_heads(naming);
      case binding_kind::differentials:
        return read_binding(t, around_, names_).indices;
      default:
        return {};
    }
  }

  // A Lambda or a Quant: its entries' names are bound from outside for what it stands over.
  term_ptr visit_binding(term_ptr t) {
    const auto part = [this](term_ptr below) { return visit(below); };
    term_ptr with_vars = map_children(t, walk_lambda_vars | walk_quant_vars | keep_meta, part);
    ordered_terms inner;
    for (term_ptr entry : with_vars->vars()) {
      for_each_side(entry, entry_of(entry), [&](term_ptr side, bool) {
        for (term_ptr name : names_.all(side)) {
          inner.add(name);
        }
      });
    }
    const bound_names::mark outside = around_.enter(inner.list());
    term_ptr result = map_children(with_vars, walk_condition | walk_body | keep_meta, part);
    around_.leave(outside);
    return result;
  }

  names_around around_;
  name_memo names_;
  std::uint64_t recorded_ = 0;
  walk_memo<term_ptr> known_;
};

}  // namespace

term_ptr normalize_setdesc_for_catch_binder(term_ptr t) {
  return t == nullptr ? nullptr : setdesc_normalizer(t).normalize(t);
}

term_ptr catch_binder_term(term_ptr t, term_span global_var) {
  return t == nullptr ? nullptr : binder_catcher(t, global_var).prepare(t);
}

}  // namespace vetro
