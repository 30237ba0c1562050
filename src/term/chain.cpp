// Chained relations, a < b ≤ c, and quantifiers that stand directly inside another of their kind.
#include <algorithm>

#include "term/report.h"
#include "term/term_split_combine.h"
#include "term/traverse.h"

namespace vetro {
namespace {

// The two lists of a chain; both empty where a PredChain is applied to something else, as a text may do by name.
struct chain_parts {
  term_span preds;
  term_span operands;
};

chain_parts parts_of(term_ptr chain) {
  const term_ptr preds = chain->left()->right();
  const term_ptr operands = chain->right();
  if (preds->type() != TermList || operands->type() != TermList) {
    return {};
  }
  return {preds->elements(), operands->elements()};
}

}  // namespace

bool is_predchain(term_ptr t) {
  if (!is_apply(t) || !is_apply(t->left())) {
    return false;
  }
  const term_ptr head = t->left()->left();
  return head->type() == Pred && head->pred() == PredChain;
}

term_list predchain_split(term_ptr t) {
  if (!is_predchain(t)) {
    return {};
  }
  const auto [preds, operands] = parts_of(t);
  term_list links;
  for (std::size_t i = 0; i < preds.size() && i + 1 < operands.size(); ++i) {
    const term_ptr left = mk_apply(preds[i], operands[i]);
    links.push_back(mk_apply(left, operands[i + 1]));
  }
  return links;
}

term_ptr elim_predchain(term_ptr t) {
  return transform(t, [](term_ptr node, auto& rebuild) {
    constexpr unsigned parts = walk_apply | walk_body | walk_condition | walk_elements | walk_scope | keep_meta;
    const term_ptr rebuilt = map_children(node, parts, rebuild);
    const term_list links = predchain_split(rebuilt);
    return links.empty() ? rebuilt : and_compose(links);
  });
}

term_list long_order_split(term_ptr t) {
  if (t == nullptr) {
    return {};
  }
  term_list links;
  term_ptr rest = t;
  while (true) {
    // The links of a chain but its first, which may be nested itself.
    const term_list chain = predchain_split(rest);
    if (!chain.empty()) {
      links.insert(links.end(), chain.rbegin(), chain.rend() - 1);
      rest = chain.front();
    }
    const std::optional<prop> outer = pred_split(rest);
    if (!outer.has_value() || outer->pred == PredChain) {
      break;
    }
    const term_list inner = predchain_split(outer->left);
    const std::optional<prop> nested = pred_split(outer->left);
    if (!nested.has_value() || (nested->pred == PredChain && inner.empty())) {
      break;
    }
    const term_ptr joint = inner.empty() ? nested->right : inner.back()->right();
    links.push_back(make_binPred_prop(outer->pred, joint, outer->right));
    rest = outer->left;
  }
  links.push_back(rest);
  // What stands in the place of the dots is said by the chain as a whole.
  const bool dotted = t->has(fact_ellipsis) && std::any_of(links.begin(), links.end(), [](term_ptr link) {
                        const std::optional<prop> view = pred_split(link);
                        return view && (is_constant(view->left, Ellipsis) || is_constant(view->right, Ellipsis));
                      });
  return dotted ? term_list{t} : links;
}

// ---- The reader's steps.

term_ptr make_predchain(term_span preds, term_span operands) {
  const term_ptr pred_list = mk_term_list(preds);
  const term_ptr operand_list = mk_term_list(operands);
  return mk_apply(mk_apply(mk_pred(PredChain), pred_list), operand_list);
}

term_ptr atomic_to_pre_chained_prop(term_ptr t) {
  if (t == nullptr) {
    report_error("Error: atomic_to_pre_chained_prop visiting NULL pointer.\n");
    return nullptr;
  }
  if (!is_apply(t) || !is_apply(t->left())) {
    report_error("Error: Error in pre_chained_prop, expecting atomic_chained_prop.\n");
    return nullptr;
  }
  const term_ptr preds[] = {t->left()->left()};
  const term_ptr operands[] = {t->left()->right(), t->right()};
  return make_predchain(preds, operands);
}

term_ptr pre_chained_prop_add(term_ptr chain, term_ptr pred, term_ptr operand) {
  if (chain == nullptr || pred == nullptr || operand == nullptr) {
    report_error("Error: pre_chained_prop_add visiting NULL pointer.\n");
    return chain;
  }
  if (!is_predchain(chain) || chain->left()->right()->type() != TermList || chain->right()->type() != TermList) {
    report_error("Error: Error in pre_chained_prop_add, expecting PredChain(?TermList, ?TermList).\n");
    return chain;
  }
  const auto [preds, operands] = parts_of(chain);
  term_list more_preds(preds.begin(), preds.end());
  term_list more_operands(operands.begin(), operands.end());
  more_preds.push_back(pred);
  more_operands.push_back(operand);
  return with_meta(make_predchain(more_preds, more_operands), chain->meta());
}

// ---- Quantifiers.

// For exactly one x there is exactly one y, and there is exactly one pair x, y: these are different statements.
bool is_Quant_in_Quant(term_ptr t) {
  return t != nullptr && t->type() == Quant && t->body()->type() == Quant && t->quant() == t->body()->quant() &&
         t->quant() != ExistsUnique;
}

term_ptr merge_quant_term(term_ptr t) {
  return transform(t, [](term_ptr node, auto& rebuild) {
    if (!is_Quant_in_Quant(node)) {
      return map_children(node, walk_all, rebuild);
    }
    // The whole tower at once, so that its variables are joined once. What the inner nodes carry is dropped.
    term_list vars(node->vars().begin(), node->vars().end());
    term_ptr inner = node;
    while (is_Quant_in_Quant(inner)) {
      inner = inner->body();
      vars.insert(vars.end(), inner->vars().begin(), inner->vars().end());
    }
    const term_ptr joined = with_meta(mk_quant(node->quant(), vars, inner->body()), node->meta());
    return map_children(joined, walk_all, rebuild);
  });
}

term_list merge_quant_term_list(term_span list) {
  term_list result;
  for (term_ptr t : list) {
    result.push_back(merge_quant_term(t));
  }
  return result;
}

}  // namespace vetro
