// Patterns are parsed once for each text and kept with their spine laid open, so that a term with another head or
// another number of arguments is refused after a few steps down its own spine.
#include "term/pattern_match.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "term/compare.h"
#include "term/report.h"
#include "term/state.h"

namespace vetro {
namespace {

// A pattern with its left spine laid open, and what decides most matches told apart beforehand.
struct compiled_pattern {
  struct argument {
    term_ptr pattern;
    bool any;  // "?"
  };
  term_ptr head;
  bool exact_head;  // a leaf without metadata: it matches itself
  std::vector<argument> arguments;
};

bool carries_nothing(term_ptr t) { return !t->has_meta() || (t->scope() == nullptr && t->binders().empty()); }

std::unique_ptr<compiled_pattern> compile(term_ptr pattern) {
  const spine parts = spine_of(pattern);
  auto compiled = std::make_unique<compiled_pattern>();
  compiled->head = parts.head;
  compiled->exact_head = parts.head->children().empty() && parts.head->type() != Pattern &&
                         parts.head->type() != TermList && !parts.head->has_meta();
  for (term_ptr argument : parts.args) {
    const bool any = argument->type() == Pattern && argument->pattern() == PatternWildCard;
    compiled->arguments.push_back({argument, any});
  }
  return compiled;
}

// The reader is a function and no state of a run; it stays when the state is thrown away.
pattern_reader installed_reader = nullptr;

}  // namespace

struct pattern_cache {
  // A literal has one address for good, so most lookups end at the address; two literals with one text share an entry.
  struct known_literal {
    const char* text = nullptr;
    const compiled_pattern* pattern = nullptr;
  };
  std::vector<known_literal> literals = std::vector<known_literal>(64);
  unsigned shift = 64 - 6;  // leaves as many bits of a hash as number the places
  std::unordered_map<std::string, std::unique_ptr<compiled_pattern>> texts;

  known_literal& slot(const char* literal) {
    const std::uint64_t hash = reinterpret_cast<std::uintptr_t>(literal) * 0x9e3779b97f4a7c15ULL;
    return literals[hash >> shift];
  }
  // Four places for each text, of which most have one literal only: few share a place.
  void keep(known_literal literal) {
    while (literals.size() < 4 * texts.size()) {
      --shift;
      std::vector<known_literal> old(2 * literals.size());
      old.swap(literals);
      for (const known_literal& known : old) {
        if (known.text != nullptr) {
          slot(known.text) = known;
        }
      }
    }
    slot(literal.text) = literal;
  }
};

process_state::process_state() : patterns(std::make_unique<pattern_cache>()) {}

process_state::~process_state() = default;

pattern_reader match_init(pattern_reader reader) { return std::exchange(installed_reader, reader); }

namespace {

// The calls of the factory while it lives are no part of a question: its budget grows by them.
class uncounted_calls {
 public:
  ~uncounted_calls() {
    const std::uint64_t made = state().store.calls() - before_;
    state().pattern_calls += made;
    const std::uint64_t limit = state().store.call_limit();
    state().store.set_call_limit(limit + std::min(made, UINT64_MAX - limit));
  }

 private:
  std::uint64_t before_ = state().store.calls();
};

// The pattern of a text; null, with a report and nothing kept, when the text does not parse.
const compiled_pattern* pattern_of_text(const char* text) {
  // The reader may itself match patterns, so nothing of the table is held across its call.
  const auto found = state().patterns->texts.find(text);
  if (found != state().patterns->texts.end()) {
    return found->second.get();
  }
  const uncounted_calls uncounted;
  term_ptr parsed = installed_reader == nullptr ? nullptr : installed_reader(text);
  if (parsed == nullptr) {
    report_error("Error: parsing pattern error\n");
    return nullptr;
  }
  return state().patterns->texts.try_emplace(text, compile(parsed)).first->second.get();
}

const compiled_pattern* pattern_of_literal(const char* literal) {
  const pattern_cache::known_literal& known = state().patterns->slot(literal);
  if (known.text == literal) {
    return known.pattern;
  }
  const compiled_pattern* pattern = pattern_of_text(literal);
  if (pattern != nullptr) {
    state().patterns->keep({literal, pattern});
  }
  return pattern;
}

// term_eqb with a leaf of the pattern: a scope and binders of t count. Between leaves that have neither it is identity.
bool matches_leaf(term_ptr t, term_ptr leaf) {
  if (t == leaf) {
    return true;
  }
  return carries_nothing(leaf) ? t->bare() == leaf->bare() && carries_nothing(t) : term_eqb(t, leaf);
}

int capture(term_ptr t, term_ptr* slots) {
  *slots = t;
  return 1;
}

// Captures t where its type is the one asked for.
int capture_type(term_ptr t, term_type type, term_ptr* slots) { return t->type() == type ? capture(t, slots) : -1; }

int match_pattern_leaf(term_ptr t, pattern_type pattern, term_ptr* slots) {
  switch (pattern) {
    case PatternWildCard:
      return capture(t, slots);
    case PatternVar:
      return capture_type(t, Var, slots);
    case PatternConst:
      return capture_type(t, Const, slots);
    case PatternOper:
      return capture_type(t, Oper, slots);
    case PatternPred:
      return capture_type(t, Pred, slots);
    case PatternConnect:
      return capture_type(t, Connect, slots);
    case PatternTermList:
      return capture_type(t, TermList, slots);
    case PatternFuncApply: {
      const spine parts = spine_of(t);
      slots[0] = parts.head;
      slots[1] = mk_term_list(parts.args);
      return 2;
    }
    case PatternIgnore:
      return 0;
  }
  report_error("Error: match_term visiting unknown pattern type %d\n", static_cast<int>(pattern));
  return -1;
}

// Matches one part behind those that already made captures; gives the new total, or -1.
int match_next(int captures, term_ptr t, term_ptr pattern, term_ptr* slots) {
  if (captures < 0) {
    return -1;
  }
  const int more = match_term(t, pattern, slots + captures);
  return more < 0 ? -1 : captures + more;
}

int match_lambda(term_ptr t, term_ptr pattern, term_ptr* slots) {
  if (t->type() != Lambda || !lambda_var_type_list_eqb(t->var_types(), pattern->var_types()) ||
      (t->condition() == nullptr) != (pattern->condition() == nullptr)) {
    return -1;
  }
  int captures = match_term_list(t->vars(), pattern->vars(), slots);
  if (pattern->condition() != nullptr) {
    captures = match_next(captures, t->condition(), pattern->condition(), slots);
  }
  return match_next(captures, t->body(), pattern->body(), slots);
}

int match_quant(term_ptr t, term_ptr pattern, term_ptr* slots) {
  if (t->type() != Quant || t->quant() != pattern->quant()) {
    return -1;
  }
  return match_next(match_term_list(t->vars(), pattern->vars(), slots), t->body(), pattern->body(), slots);
}

int match_argument(int captures, term_ptr t, const compiled_pattern::argument& argument, term_ptr* slots) {
  if (argument.any) {
    slots[captures] = t;
    return captures + 1;
  }
  return match_next(captures, t, argument.pattern, slots);
}

// The arguments of a spine that has at least those of the pattern, in order; they lie on it from the inside out.
int match_arguments(int captures, term_ptr t, const compiled_pattern& pattern, term_ptr* slots) {
  const std::size_t count = pattern.arguments.size();
  constexpr std::size_t few = 8;
  std::array<term_ptr, few> near;
  term_list far;
  term_ptr* arguments = near.data();
  if (count > few) {
    far.resize(count);
    arguments = far.data();
  }
  for (std::size_t i = count; i-- > 0; t = t->left()) {
    arguments[i] = t->right();
  }
  for (std::size_t i = 0; captures >= 0 && i < count; ++i) {
    captures = match_argument(captures, arguments[i], pattern.arguments[i], slots);
  }
  return captures;
}

// The spine of the pattern against the spine of t: first the head, which decides most often, then the arguments. What
// the head captures comes first, as in a walk of the tree.
int match_compiled(term_ptr t, const compiled_pattern& pattern, term_ptr* slots) {
  term_ptr head = t;
  for (std::size_t i = pattern.arguments.size(); i > 0; --i) {
    if (head->type() != Apply) {
      return -1;
    }
    head = head->left();
  }
  if (pattern.exact_head && head == pattern.head) {
    return match_arguments(0, t, pattern, slots);
  }
  const int captures = match_term(head, pattern.head, slots);
  return captures < 0 ? -1 : match_arguments(captures, t, pattern, slots);
}

int match_against(term_ptr t, const compiled_pattern* pattern, term_ptr* slots) {
  if (pattern == nullptr) {
    return -1;
  }
  if (t == nullptr) {
    report_error("Error: match_term visiting NULL pointer\n");
    return -1;
  }
  return match_compiled(t, *pattern, slots);
}

}  // namespace

int match_slots(term_ptr t, const char* pattern, term_ptr* slots) {
  return match_against(t, pattern_of_text(pattern), slots);
}

int match_literal(term_ptr t, const char* literal, term_ptr* slots) {
  return match_against(t, pattern_of_literal(literal), slots);
}

int match_term(term_ptr t, term_ptr pattern, term_ptr* slots) {
  if (t == nullptr || pattern == nullptr) {
    report_error("Error: match_term visiting NULL pointer\n");
    return -1;
  }
  switch (pattern->type()) {
    case Var:
    case Const:
    case Oper:
    case Pred:
    case Connect:
      return matches_leaf(t, pattern) ? 0 : -1;
    case Apply: {
      if (t->type() != Apply) {
        return -1;
      }
      const int captures = match_term(t->left(), pattern->left(), slots);
      return match_next(captures, t->right(), pattern->right(), slots);
    }
    case Lambda:
      return match_lambda(t, pattern, slots);
    case Quant:
      return match_quant(t, pattern, slots);
    case TermList:
      return t->type() == TermList ? match_term_list(t->elements(), pattern->elements(), slots) : -1;
    case Pattern:
      return match_pattern_leaf(t, pattern->pattern(), slots);
    default:
      report_error("Error: match_term visiting unknown term type\n");
      return -1;
  }
}

int match_term_list(term_span list, term_span patterns, term_ptr* slots) {
  if (list.size() != patterns.size()) {
    return -1;
  }
  int captures = 0;
  for (std::size_t i = 0; captures >= 0 && i < list.size(); ++i) {
    captures = match_next(captures, list[i], patterns[i], slots);
  }
  return captures;
}

}  // namespace vetro
