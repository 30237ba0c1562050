// The one node of every formula, and the factory that builds it.
//
// A term is immutable and lives in the store of the process until the process ends (or a test resets the store). The
// store is unique: building the same node twice (content, binders, scope, soft type) gives the same address. Nobody
// owns a term; a copy is a pointer. A null pointer stands for a formula that is not there.
//
// Three identities:
//   whole   a == b
//   exact   a->bare() == b->bare()      ignores binders, scope and soft types everywhere (term_eqb_pure)
//   alpha   term_eqb(a, b)              up to bound names, looks at binders and scopes
#pragma once

#include <cassert>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "term/kinds.h"

namespace vetro {

class term;
using term_ptr = const term*;
using term_list = std::vector<term_ptr>;  // the empty list is the null list
using term_span = std::span<const term_ptr>;

enum class lambda_type_kind : std::uint8_t { LambdaTypeBase = 0, LambdaTypeFunc = 1 };
using enum lambda_type_kind;

enum class lambda_base_type : std::uint8_t {
  LambdaInteger = 0,
  LambdaPosInteger,
  LambdaNegInteger,
  LambdaNonPosInteger,
  LambdaNonNegInteger,
  LambdaRational,
  LambdaPosRational,
  LambdaNegRational,
  LambdaNonPosRational,
  LambdaNonNegRational,
  LambdaReal,
  LambdaPosReal,
  LambdaNegReal,
  LambdaNonPosReal,
  LambdaNonNegReal,
  LambdaComplex
};
using enum lambda_base_type;

// The type of a lambda parameter. Interned like terms: equal types have equal addresses.
struct lambda_type {
  lambda_type_kind kind;
  lambda_base_type base;           // for LambdaTypeBase
  const lambda_type* param_type;   // for LambdaTypeFunc
  const lambda_type* return_type;  // for LambdaTypeFunc
};
using lambda_type_ptr = const lambda_type*;
using lambda_var_type_list = std::vector<lambda_type_ptr>;

enum class stype : std::uint8_t {
  ST_Set = 0,
  ST_Func = 1,
  ST_Num = 2,
  ST_Matrix = 3,
  ST_Prop = 4,
  ST_Tuple = 5,
  ST_Seq = 6,
  ST_Unknown = 7
};
using enum stype;

// Carried along with a term and never looked at. Nothing in this program assigns one.
struct soft_type {
  stype type;
  const soft_type* first;   // element, parameter or key type
  const soft_type* second;  // return type
  int rows;
  int cols;
  std::string_view key;
};

// What stands on a node beside its content. Absent on most nodes.
struct term_meta {
  term_list binders = {};    // variables that the node binds by its meaning
  term_ptr scope = nullptr;  // side condition written behind the term
  const soft_type* soft = nullptr;
  term_list guarded = {};  // variables that the node speaks of without telling what it binds; see variables/binding.h
  bool empty() const { return binders.empty() && scope == nullptr && soft == nullptr && guarded.empty(); }
};

// Facts of a node that are known when it is built. Each may say "maybe" too often, never "no" wrongly.
enum term_fact : std::uint16_t {
  fact_binding = 1,      // a Lambda, a Quant or an operator that binds variables somewhere inside
  fact_meta = 2,         // binders, scope or soft type somewhere inside
  fact_scope = 4,        // a scope somewhere inside
  fact_pattern = 8,      // a Pattern leaf somewhere inside
  fact_lambda = 16,      // a Lambda somewhere inside
  fact_empty_list = 32,  // a TermList without elements somewhere inside
  fact_ellipsis = 64,    // the constant Ellipsis somewhere inside
  fact_whole = 128,      // something somewhere inside that may make the term one whole; see whole_parts.h
  fact_guard = 256,      // an operator or relation somewhere inside that speaks of variables without binding them
  fact_landau = 512,     // a Landau operator somewhere inside
  fact_context = 1024,   // a leaf somewhere inside that is read by what stands around it; see lib/semantic_term.h
};

class term {
 public:
  term_type type() const { return static_cast<term_type>(Var + kind_); }

  // Content by variant. Reading another variant's content is a broken invariant.
  std::string_view name() const;     // Var
  const_type constant() const;       // Const
  std::int32_t integer() const;      // Const of kind Integer (0 for the other kinds)
  std::string_view decimal() const;  // Const of kind Decimal
  oper_type oper() const;
  pred_type pred() const;
  connect_type connect() const;
  pattern_type pattern() const;
  quant_type quant() const;
  term_ptr left() const;                          // Apply
  term_ptr right() const;                         // Apply
  term_span vars() const;                         // Lambda, Quant, FreeVarTag
  const lambda_var_type_list& var_types() const;  // Lambda; a type missing at the end means RealSet
  term_ptr condition() const;                     // Lambda; null when there is none
  term_ptr body() const;                          // Lambda, Quant, FreeVarTag
  term_span elements() const;                     // TermList

  // Of an Apply, in one step: the number of the leaf at the end of its left spine (an Oper, Pred or Connect without
  // metadata; -1 for any other head), and how many arguments stand behind it (255 for more). Of any other node: -1, 0.
  int head() const { return head_; }
  unsigned argument_count() const { return arguments_; }
  // The i-th of that many arguments.
  term_ptr argument(unsigned i) const;

  // Children of any variant in storage order: Apply left, right; Lambda condition (may be null), body, vars; Quant
  // body, vars; TermList elements; FreeVarTag body, vars. Metadata is not among them.
  term_span children() const { return {child_array(), child_count_}; }

  // Metadata.
  bool has_meta() const { return own_meta() != nullptr; }
  const term_meta& meta() const;  // an empty record when there is none
  const term_list& binders() const { return meta().binders; }
  const term_list& guarded() const { return meta().guarded; }
  term_ptr scope() const { return has_meta() ? own_meta()->scope : nullptr; }

  // The same term with all metadata removed at every node; this itself when there is none.
  term_ptr bare() const { return has(fact_meta) ? dressing_of().bare : this; }

  std::uint64_t hash() const { return hash_; }  // of the whole node: content and metadata
  // Equal for terms that term_eqb holds equal under some environment; what is recorded of binders does not count.
  std::uint32_t blind_hash() const { return blind_; }
  std::uint32_t size() const { return size_; }  // nodes as a tree, metadata included; saturates at 2^32 - 1
  std::uint32_t depth() const { return depth_; }
  bool has(term_fact fact) const { return (facts_ & fact) != 0; }
  std::uint64_t name_mask() const { return mask_; }  // bits of all variable names inside, bound ones and metadata too
  std::uint32_t serial() const { return serial_; }   // counts nodes; for tables only, never for the order of output

 private:
  friend class term_store;

  // What stands in front of a node with metadata at itself or inside; of no other node there is one.
  struct dressing {
    const term_meta* meta;
    term_ptr bare;
  };

  std::uint64_t hash_;
  std::uint64_t mask_;
  std::uint32_t blind_;
  std::uint32_t size_;
  std::uint32_t depth_;
  std::uint32_t serial_;
  std::uint32_t child_count_;
  std::int32_t integer_;  // of an integer its value, of a variable or a decimal the length of the text
  std::int16_t code_;
  std::int16_t head_;
  std::uint16_t facts_;
  std::uint8_t kind_;  // the type, counted from Var
  std::uint8_t arguments_;
  // In the same block follow the children, then the parameter types of a Lambda or the text of a variable or a decimal.

  void derive(unsigned own_facts);
  void derive_from_meta(const term_meta& meta);
  void absorb(const term& part);
  const term_ptr* child_array() const { return reinterpret_cast<const term_ptr*>(this + 1); }
  bool has_text() const { return type() == Var || (type() == Const && code_ == Decimal); }
  std::string_view text() const {
    return {reinterpret_cast<const char*>(this + 1), static_cast<std::uint32_t>(integer_)};
  }
  const lambda_var_type_list* const& types() const {
    return *reinterpret_cast<const lambda_var_type_list* const*>(child_array() + child_count_);
  }
  const dressing& dressing_of() const { return reinterpret_cast<const dressing*>(this)[-1]; }
  const term_meta* own_meta() const { return has(fact_meta) ? dressing_of().meta : nullptr; }
};
static_assert(sizeof(term) == 48);

// ---- Reading a node.

inline std::string_view term::name() const {
  assert(type() == Var);
  return text();
}

inline const_type term::constant() const {
  assert(type() == Const);
  return static_cast<const_type>(code_);
}

inline std::int32_t term::integer() const {
  assert(type() == Const);
  return code_ == Integer ? integer_ : 0;
}

inline std::string_view term::decimal() const {
  assert(type() == Const && code_ == Decimal);
  return text();
}

inline oper_type term::oper() const {
  assert(type() == Oper);
  return static_cast<oper_type>(code_);
}

inline pred_type term::pred() const {
  assert(type() == Pred);
  return static_cast<pred_type>(code_);
}

inline connect_type term::connect() const {
  assert(type() == Connect);
  return static_cast<connect_type>(code_);
}

inline pattern_type term::pattern() const {
  assert(type() == Pattern);
  return static_cast<pattern_type>(code_);
}

inline quant_type term::quant() const {
  assert(type() == Quant);
  return static_cast<quant_type>(code_);
}

inline term_ptr term::left() const {
  assert(type() == Apply);
  return child_array()[0];
}

inline term_ptr term::argument(unsigned i) const {
  assert(i < arguments_ && arguments_ < 255);
  term_ptr node = this;
  for (unsigned last = arguments_ - 1U; last > i; --last) {
    node = node->left();
  }
  return node->right();
}

inline term_ptr term::right() const {
  assert(type() == Apply);
  return child_array()[1];
}

inline term_span term::vars() const {
  assert(type() == Lambda || type() == Quant || type() == FreeVarTag);
  return children().subspan(type() == Lambda ? 2 : 1);
}

inline const lambda_var_type_list& term::var_types() const {
  assert(type() == Lambda);
  return *types();
}

inline term_ptr term::condition() const {
  assert(type() == Lambda);
  return child_array()[0];
}

inline term_ptr term::body() const {
  assert(type() == Lambda || type() == Quant || type() == FreeVarTag);
  return child_array()[type() == Lambda ? 1 : 0];
}

inline term_span term::elements() const {
  assert(type() == TermList);
  return children();
}

// The mask bit of a variable name. A name whose bit is not in name_mask() does not occur in the term.
std::uint64_t name_bit(std::string_view name);

// ---- Factory. Each gives the unique node. A null child gives null, except for the condition of a Lambda.

term_ptr mk_var(std::string_view name);
term_ptr mk_const(const_type kind);  // any kind but Integer and Decimal
term_ptr mk_integer(std::int32_t value);
term_ptr mk_decimal(std::string_view digits);
term_ptr mk_oper(oper_type oper);
term_ptr mk_pred(pred_type pred);
term_ptr mk_connect(connect_type connect);
term_ptr mk_pattern(pattern_type pattern);
term_ptr mk_apply(term_ptr function, term_ptr argument);
term_ptr mk_apply_all(term_ptr head, term_span arguments);  // one Apply for each argument
term_ptr mk_lambda(term_span vars, const lambda_var_type_list& types, term_ptr condition, term_ptr body);
term_ptr mk_quant(quant_type quant, term_span vars, term_ptr body);
term_ptr mk_term_list(term_span elements);
term_ptr mk_free_var_tag(term_span vars, term_ptr body);

// The same content with other metadata; null gives null.
term_ptr with_meta(term_ptr t, const term_meta& meta);
term_ptr with_binders(term_ptr t, const term_list& binders);
term_ptr with_binding(term_ptr t, const term_list& binders, const term_list& guarded);
term_ptr with_scope(term_ptr t, term_ptr scope);
term_ptr without_meta(term_ptr t);  // at this node only; bare() removes it everywhere

lambda_type_ptr make_lambda_base_type(lambda_base_type base);
lambda_type_ptr make_lambda_func_type(lambda_type_ptr param, lambda_type_ptr ret);
lambda_type_ptr make_lambda_real_type();
std::string_view lambda_base_type_name(lambda_base_type base);
// Accepts the printed names only, no further spellings. *ok may be null; an unknown name gives LambdaReal.
lambda_base_type lambda_base_type_from_name(std::string_view name, bool* ok);
bool lambda_var_type_list_eqb(const lambda_var_type_list& a, const lambda_var_type_list& b);

// The leaf of a word, or null when the word is an ordinary variable. Case counts.
term_ptr name_dispatch(std::string_view word);

// Text that lives as long as the store.
std::string_view intern_text(std::string_view text);

// ---- Short forms for code that builds and tests heads.

inline bool is_var(term_ptr t) { return t != nullptr && t->type() == Var; }
inline bool is_apply(term_ptr t) { return t != nullptr && t->type() == Apply; }
bool is_oper(term_ptr t, oper_type oper);  // the leaf itself, without scope or binders
bool is_pred(term_ptr t, pred_type pred);
bool is_connect(term_ptr t, connect_type connect);
bool is_constant(term_ptr t, const_type kind);
bool is_integer(term_ptr t, std::int32_t value);

// Head and arguments of the left spine. For a term that is no Apply: the term and no arguments.
struct spine {
  term_ptr head;
  term_list args;
};
spine spine_of(term_ptr t);

// ---- The store.

class term_store {
 public:
  term_store();
  ~term_store();
  term_store(const term_store&) = delete;
  term_store& operator=(const term_store&) = delete;

  struct content {
    term_type type;
    std::int16_t code = 0;
    std::int32_t integer = 0;
    std::string_view text = {};
    const lambda_var_type_list* types = nullptr;
    term_span children = {};
    term_span more = {};  // further children behind the first span
  };
  term_ptr intern(const content& c, const term_meta* meta);
  term_ptr leaf(term_type type, std::int16_t code);  // of an operator, a constant that is no number ...
  term_ptr apply(term_ptr function, term_ptr argument);
  term_ptr rebuilt(term_ptr t, const term_meta* meta);  // same content, other metadata
  std::string_view text(std::string_view text);
  lambda_type_ptr lambda(lambda_type type);
  const lambda_var_type_list* types(const lambda_var_type_list& list);

  // Calls of the factory since the start, hits included, so that the count does not depend on what ran before.
  std::uint64_t calls() const { return calls_; }
  // The call beyond this count throws std::bad_alloc: the budget of a solver ends like memory does.
  std::uint64_t call_limit() const { return call_limit_; }
  void set_call_limit(std::uint64_t limit) { call_limit_ = limit; }
  std::size_t bytes() const;

 private:
  term_ptr find(const content& c, const term_meta* meta, std::uint64_t hash) const;
  term_ptr build(const content& c, const term_meta* meta, std::uint64_t hash);
  term_ptr stripped(const content& c);  // the bare twin of a node that is being built
  void count_call();

  struct impl;
  std::unique_ptr<impl> impl_;
  std::uint64_t calls_ = 0;
  std::uint64_t call_limit_ = UINT64_MAX;
};

}  // namespace vetro
