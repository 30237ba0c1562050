// One suggestion for each kind of fault, from what the gap and the library hold.
#include "dsl_interpreter/advice.h"

#include <algorithm>
#include <unordered_set>

#include "diagnostics/nearest.h"
#include "qv_solver_list/solver_list.h"
#include "qv_solver_list/solver_registry.h"
#include "qv_solver_list/solver_shapes.h"
#include "term/compare.h"
#include "term/node_memo.h"
#include "term/print/pretty.h"
#include "term/relation.h"
#include "term/state.h"
#include "term/term_split_combine.h"
#include "term/traverse.h"

namespace vetro {
namespace {

// ---- Questions that the run does not ask.

// Nothing is collected, and the counters are put back, so that the run goes on as if nobody had asked.
class aside {
 public:
  aside()
      : collector_(std::exchange(collecting_diagnostics, nullptr)),
        fresh_(state().fresh_counter),
        placeholder_(state().placeholder_counter),
        binder_copy_(state().binder_copy_counter) {}
  ~aside() {
    collecting_diagnostics = collector_;
    state().fresh_counter = fresh_;
    state().placeholder_counter = placeholder_;
    state().binder_copy_counter = binder_copy_;
  }
  aside(const aside&) = delete;
  aside& operator=(const aside&) = delete;

 private:
  diagnostics* collector_;
  int fresh_;
  int placeholder_;
  int binder_copy_;
};

// ---- Formulas that are like one another.

using subterm_set = std::unordered_set<term_ptr>;
constexpr std::size_t compared_nodes = 2'000;

void collect_nodes(term_ptr t, subterm_set& nodes) {
  if (t == nullptr || nodes.size() >= compared_nodes || !nodes.insert(t->bare()).second) {
    return;
  }
  for (term_ptr child : t->children()) {
    collect_nodes(child, nodes);
  }
}

// Of a hundred distinct subterms of both, how many they have in common. A formula that holds the other one whole is
// built from it rather than like it.
std::size_t likeness(const subterm_set& a, term_ptr whole, term_ptr t) {
  subterm_set b;
  collect_nodes(t, b);
  if (b.contains(whole->bare())) {
    return 0;
  }
  const auto common = std::count_if(b.begin(), b.end(), [&](term_ptr node) { return a.contains(node); });
  return a.empty() || b.empty() ? 0 : 200 * static_cast<std::size_t>(common) / (a.size() + b.size());
}

// "hypothesis 3 is the formula that ...", or the one that is nearest to it, but for one that is known already.
std::string hypothesis_like(const proof_gap_full& gap, term_ptr t, const char* what, term_ptr known = nullptr) {
  if (t == nullptr) {
    return {};
  }
  const auto equal = std::find_if(gap.assum.begin(), gap.assum.end(), [t](term_ptr h) { return term_eqb(h, t); });
  if (equal != gap.assum.end()) {
    return "hypothesis " + std::to_string(equal - gap.assum.begin() + 1) + " is " + what;
  }
  subterm_set nodes;
  collect_nodes(t, nodes);
  constexpr std::size_t similar = 40;
  std::size_t best = similar;
  std::size_t number = 0;
  for (std::size_t i = 0; i < gap.assum.size(); ++i) {
    const std::size_t score = gap.assum[i] == known ? 0 : likeness(nodes, t, gap.assum[i]);
    if (score > best) {
      best = score;
      number = i + 1;
    }
  }
  return number == 0 ? std::string()
                     : "the nearest is hypothesis " + std::to_string(number) + ": " + pretty(gap.assum[number - 1]);
}

std::string hypothesis_range(const proof_gap_full& gap) {
  switch (gap.assu_num()) {
    case 0:
      return "there are no hypotheses";
    case 1:
      return "there is only hypothesis 1";
    default:
      return "there are hypotheses 1 to " + std::to_string(gap.assu_num());
  }
}

// ---- Theorems.

std::string theorem_title(const theorem& t) { return "theorem " + std::to_string(t.id) + " (" + t.name + ")"; }

const thm_lib* library_of(const thm_lib* lib, std::string_view alias) {
  if (lib == nullptr || thm_lib_alias_is_main(alias)) {
    return lib;
  }
  const auto found = std::find_if(lib->external_libs.begin(), lib->external_libs.end(),
                                  [&](const external_thm_lib& external) { return external.alias == alias; });
  return found == lib->external_libs.end() ? nullptr : &found->lib;
}

std::string theorem_advice(const dsl_execute_data& data, const dsl_term& ref) {
  const thm_lib* lib = library_of(data.thmlib, ref.lib_alias);
  if (lib == nullptr) {
    std::vector<std::string_view> aliases;
    for (const external_thm_lib& external : data.thmlib->external_libs) {
      aliases.push_back(external.alias);
    }
    return did_you_mean(nearest_word(ref.lib_alias, aliases));
  }
  std::vector<std::string_view> names;
  for (const auto& [id, known] : lib->table) {
    if (ref.t != nullptr && term_eqb(known.content(), ref.t)) {
      return theorem_title(known) + " has this formula";
    }
    names.push_back(known.name);
  }
  const std::string_view name = ref.name.empty() ? std::string_view() : nearest_word(ref.name, names);
  const auto& ids = theorems_by_name(*lib);
  const auto named = ids.find(name);
  return name.empty() || named == ids.end() ? std::string()
                                            : "did you mean " + theorem_title(lib->table.at(named->second)) + "?";
}

// ---- Names.

std::string binder_advice(term_ptr quantified) {
  if (quantified == nullptr || quantified->type() != Quant) {
    return {};
  }
  std::string text;
  for (term_ptr var : quantified->vars()) {
    text += (text.empty() ? "the quantifier binds " : ", ") + pretty(var);
  }
  return text;
}

std::string fresh_advice(const proof_gap_full& gap, term_ptr used) {
  const auto taken = [&](std::string_view name) {
    const auto holds = [&](term_ptr t) {
      return t != nullptr && any_subterm(t, walk_children | walk_scope,
                                         [&](term_ptr part) { return part->type() == Var && part->name() == name; });
    };
    return holds(gap.goal) || std::any_of(gap.assum.begin(), gap.assum.end(), holds);
  };
  for (int i = 1; used != nullptr && used->type() == Var; ++i) {
    const std::string name = std::string(used->name()) + std::to_string(i);
    if (!taken(name)) {
      return "'" + name + "' is free";
    }
  }
  return {};
}

// Names are compared without the word that all of them end with.
std::string solver_advice(std::string_view name) {
  constexpr std::string_view ending = "Solver";
  const auto stem = [&](std::string_view whole) {
    return whole.size() > ending.size() && whole.ends_with(ending) ? whole.substr(0, whole.size() - ending.size())
                                                                   : whole;
  };
  std::vector<std::string_view> stems;
  for (const solver_row& row : solver_registry()) {
    if (!row.name.empty()) {
      stems.push_back(stem(row.name));
    }
  }
  const std::string_view nearest = nearest_word(stem(name), stems);
  const auto row = std::find_if(solver_registry().begin(), solver_registry().end(), [&](const solver_row& r) {
    return !nearest.empty() && !r.name.empty() && stem(r.name) == nearest;
  });
  return row == solver_registry().end() ? std::string() : did_you_mean(row->name);
}

// ---- Shapes.

// The instruction that takes apart a formula of this shape.
std::string shape_advice(const proof_gap_full& gap, term_ptr t) {
  if (t == nullptr) {
    return {};
  }
  const bool goal = t == gap.goal;
  if (t->type() == Quant) {
    const bool universal = t->quant() == Forall;
    const std::string what = universal ? "this is universal: " : "this is existential: ";
    return what + (universal ? (goal ? "get_forall fixes its variables" : "get_prop puts values for its variables")
                             : (goal ? "exists gives witnesses" : "get_exists names what there is"));
  }
  const auto view = composed_prop_split(t);
  switch (view ? view->connect : Iff) {
    case And:
      return goal ? "this is a conjunction: assert its parts, and autosolve puts them together"
                  : "this is a conjunction: destruct_and takes it apart";
    case Or:
      return goal ? "this is a disjunction: or_intro chooses a side"
                  : "this is a disjunction: case_analysis splits by it";
    case Impl:
      return goal ? "this is an implication: get_condition takes off its premises"
                  : "this is an implication: use_condition discharges its premises";
    default:
      return {};
  }
}

std::string parts_advice(term_ptr conjunction) {
  std::string text;
  for (term_ptr part : split_connect(conjunction, And)) {
    text += (text.empty() ? "the parts are " : ", ") + pretty(part);
  }
  return text;
}

// autosolve that names no hypothesis uses none.
std::string unproved_advice(const dsl_execute_data& data) {
  const auto* inst = std::get_if<dsl_auto_solve>(&data.inst->content);
  return inst != nullptr && !inst->all_assum && inst->hlist.empty() && data.cur_gap->assu_num() > 0
             ? "no hypothesis is used here; 'autosolve all_hypothesis' uses all of them"
             : std::string();
}

std::string suggestion_for(const dsl_execute_data& data, const fault& about) {
  const proof_gap_full& gap = *data.cur_gap;
  switch (about.code) {
    case diagnostic_code::no_such_hypothesis: {
      const std::string like =
          about.reference == nullptr ? "" : hypothesis_like(gap, about.reference->t, "this formula");
      return hypothesis_range(gap) + (like.empty() ? "" : "; " + like);
    }
    case diagnostic_code::formula_mismatch:
      return about.reference != nullptr && about.reference->type == dsl_hypo
                 ? hypothesis_like(gap, about.reference->t, "the formula that is written here")
                 : std::string();
    case diagnostic_code::number_not_next:
    case diagnostic_code::number_taken:
      return "the next free number is " + std::to_string(gap.assu_num() + 1);
    case diagnostic_code::premise_mismatch:
    case diagnostic_code::side_condition:
    case diagnostic_code::rule_premise:
      return hypothesis_like(gap, about.needed, "the formula that is needed", about.given);
    case diagnostic_code::conclusion_mismatch:
      return hypothesis_like(gap, gap.goal, "the goal");
    case diagnostic_code::no_such_theorem:
      return about.reference == nullptr ? std::string() : theorem_advice(data, *about.reference);
    case diagnostic_code::bad_binder:
      return binder_advice(about.needed);
    case diagnostic_code::not_fresh:
      return fresh_advice(gap, about.given);
    case diagnostic_code::rule_unusable:
      return about.given != nullptr && about.given->type() == Quant ? shape_advice(gap, about.given) : std::string();
    case diagnostic_code::wrong_shape:
      return shape_advice(gap, about.given);
    case diagnostic_code::wrong_count:
      return about.given == nullptr ? std::string() : parts_advice(about.given);
    case diagnostic_code::not_proved:
      return unproved_advice(data);
    case diagnostic_code::no_such_solver:
      return solver_advice(instruction_as<dsl_auto_solve>(data).solver_name);
    default:
      return {};
  }
}

// ---- Denominators.

using term_set = std::unordered_set<term_ptr, alpha_hasher, alpha_equal>;

bool is_number_but_zero(term_ptr t) {
  return (is_constant(t, Integer) && t->integer() != 0) || is_constant(t, Decimal) || is_constant(t, Pi) ||
         is_constant(t, E);
}

bool is_negative_number(term_ptr t) {
  const auto view = composed_term_split(t);
  return (view && view->oper == Neg && view->t2 == nullptr && is_number_but_zero(view->t1)) ||
         (is_constant(t, Integer) && t->integer() < 0);
}

void collect_denominators(term_ptr t, node_set& seen, term_set& found) {
  if (t == nullptr || !seen.insert(t)) {
    return;
  }
  if (const auto view = composed_term_split(t); view && view->t2 != nullptr) {
    if ((view->oper == Div || view->oper == Frac) && !is_number_but_zero(view->t2)) {
      found.insert(view->t2);
    } else if (view->oper == Power && is_negative_number(view->t2) && !is_number_but_zero(view->t1)) {
      found.insert(view->t1);
    }
  }
  for (term_ptr child : t->children()) {
    collect_denominators(child, seen, found);
  }
}

term_set denominators_of(term_ptr t) {
  node_set seen;
  term_set found;
  collect_denominators(t, seen, found);
  return found;
}

term_list not_in(const term_set& a, const term_set& b) {
  term_list list;
  std::copy_if(a.begin(), a.end(), std::back_inserter(list), [&](term_ptr t) { return !b.contains(t); });
  return list;
}

// Those of one side only, in the order of their texts.
term_list on_one_side(term_ptr left, term_ptr right) {
  const term_set of_left = denominators_of(left);
  const term_set of_right = right == nullptr ? term_set() : denominators_of(right);
  term_list list = not_in(of_left, of_right);
  const term_list others = not_in(of_right, of_left);
  list.insert(list.end(), others.begin(), others.end());
  std::sort(list.begin(), list.end(), [](term_ptr a, term_ptr b) { return pretty(a) < pretty(b); });
  return list;
}

bool known_to_be_non_zero(const dsl_execute_data& data, term_ptr denominator) {
  return is_seen_to_hold(data, make_binPred_prop(Neq, denominator, mk_integer(0)));
}

void warn_of_each(const dsl_execute_data& data, const fault& about, const term_list& denominators) {
  for (term_ptr denominator : denominators) {
    if (!known_to_be_non_zero(data, denominator)) {
      fault warning = about;
      warning.code = diagnostic_code::denominator;
      warning.needed = make_binPred_prop(Neq, denominator, mk_integer(0));
      warning.given = nullptr;
      note_fault(
          data, warning,
          "the calculation cancels the denominator " + pretty(denominator) + ", which is not known to be non-zero");
    }
  }
}

// The solvers that compare expressions as rational ones and ask for no domain.
bool calculates(std::string_view title) {
  constexpr solver_id ids[] = {solver_id::context_poly_rat, solver_id::func_apply, solver_id::deriv,
                               solver_id::eval_bar,         solver_id::rootfrac,   solver_id::numeric_calc,
                               solver_id::root_power,       solver_id::poly_rat,   solver_id::interval,
                               solver_id::squeeze,          solver_id::sgn,        solver_id::smt_lra};
  return std::any_of(std::begin(ids), std::end(ids), [&](solver_id id) { return solver_title(id) == title; });
}

// Whether the comparison follows from the hypotheses without such denominators.
bool follows_without(const dsl_execute_data& data, term_ptr piece, const term_set& own) {
  const aside question;
  solve_data sdata = dsl_data_to_solve_data_all(data);
  term_list others(sdata.assum.begin(), sdata.assum.end());
  std::erase_if(others, [&](term_ptr h) { return !not_in(denominators_of(h), own).empty(); });
  sdata.assum = std::move(others);
  return call_decision_solver(find_solver(solver_id::context_poly_rat), piece, sdata);
}

// What the hypotheses that the piece was compared with divide by, and it does not.
term_list of_hypotheses(const dsl_execute_data& data, term_ptr piece) {
  const term_set own = denominators_of(piece);
  if (follows_without(data, piece, own)) {
    return {};
  }
  term_list list;
  for (term_ptr hypothesis : data.cur_gap->assum) {
    for (term_ptr denominator : not_in(denominators_of(hypothesis), own)) {
      if (!term_list_contains(list, denominator)) {
        list.push_back(denominator);
      }
    }
  }
  return list;
}

// Texts of the error log that say little to who does not know the program, and what is said in their place.
constexpr std::pair<std::string_view, std::string_view> plainer[] = {
    {"get_prop target formula mismatch", "the formula written here is not the instance"},
    {"failed to record admitted proposition", "the asserted formula does not parse"},
    {"mismatch goal in rewrite dsl", "the formula written here is not the goal"},
    {"mismatch hypothesis in rewrite dsl", "the formula written here is not that hypothesis"},
    {"quant var don't have", "the quantifier does not bind"},
    {"duplicate substitution for quant var", "there is more than one value for"},
    {"goal is not long enough to match all conditions", "the goal has no further premise"},
    {"Target hypothesis is not long enough to match all conditions", "the hypothesis has no further premise"},
    {"invalid term for get_prop instantiation", "only a universal formula takes values"},
    {"hypothesis's conclusion does not match current goal", "no conclusion of this hypothesis is the goal"},
};

// The first line without what leads to the lines behind it, and without the name of a function in front.
std::string first_line(std::string_view text) {
  std::string_view line = text.substr(0, text.find('\n'));
  const std::size_t last = line.find_last_not_of(" :,.");
  line = line.substr(0, last == std::string_view::npos ? 0 : last + 1);
  if (line.starts_with("Error: ") || line.starts_with("execute_")) {
    line.remove_prefix(std::min(line.find(": ") + 2, line.size()));
  }
  for (const auto& [written, said] : plainer) {
    if (line.starts_with(written)) {
      const bool name_follows = line.substr(written.size()).starts_with(" '");
      return std::string(said) + std::string(name_follows ? line.substr(written.size()) : std::string_view());
    }
  }
  return std::string(line);
}

int failed_attempt(const diagnostics& d, diagnostic_code code) {
  return code == diagnostic_code::not_proved && !d.attempts.empty() ? static_cast<int>(d.attempts.size()) - 1 : -1;
}

}  // namespace

diagnostic described_fault(const dsl_execute_data& data, const fault& about, const std::string& text) {
  diagnostic d{.code = about.code,
               .level = row_of(about.code).level,
               .message = first_line(text),
               .place = {},
               .step = data.current_step_id,
               .needed = about.needed,
               .given = about.given,
               .suggestion = suggestion_for(data, about),
               .attempt = failed_attempt(*collecting_diagnostics, about.code)};
  if (about.code == diagnostic_code::no_such_solver) {
    d.message = "there is no solver '" + instruction_as<dsl_auto_solve>(data).solver_name + "'";
  }
  const text_span place = about.place.column != 0 ? about.place : data.inst->place;
  d.place = {source_file::script, data.inst->number, place.column, place.length};
  return d;
}

bool is_seen_to_hold(const dsl_execute_data& data, term_ptr premise) {
  const aside question;
  const solve_data sdata = dsl_data_to_solve_data_all(data);
  return std::any_of(sdata.assum.begin(), sdata.assum.end(), [&](term_ptr h) { return term_eqb(h, premise); }) ||
         solver_filter({premise}, sdata).empty();
}

bool assumptions_contradict(const dsl_execute_data& data, const proof_gap_full& gap) {
  const aside question;
  solve_data sdata = dsl_data_to_solve_data_all(data);
  sdata.assum = gap.assum;
  const term_ptr absurd = mk_const(False);
  for (const solver_id id : {solver_id::sat, solver_id::interval, solver_id::smt_lra}) {
    if (call_decision_solver(find_solver(id), absurd, sdata)) {
      return true;
    }
  }
  return false;
}

void warn_of_denominators(const dsl_execute_data& data, const fault& about, term_ptr left, term_ptr right) {
  if (collecting_diagnostics != nullptr) {
    warn_of_each(data, about, on_one_side(left, right));
  }
}

void warn_of_denominators(const dsl_execute_data& data, const fault& about) {
  if (collecting_diagnostics == nullptr || collecting_diagnostics->attempts.empty()) {
    return;
  }
  // A copy: notes may be taken of further searches.
  const std::vector<closed_piece> closed = collecting_diagnostics->attempts.back().closed;
  for (const closed_piece& c : closed) {
    const auto comparison = atomic_prop_split(c.piece);
    if (!comparison || comparison->t2 == nullptr || !is_order_relation(comparison->pred) || !calculates(c.solver)) {
      continue;
    }
    warn_of_each(data, about, on_one_side(comparison->t1, comparison->t2));
    if (c.solver == solver_title(solver_id::context_poly_rat)) {
      warn_of_each(data, about, of_hypotheses(data, c.piece));
    }
  }
}

}  // namespace vetro
