// The term store: one arena of nodes and one table that makes every node unique.
//
// A node is one block, its children inline. Metadata, parameter types and texts stand beside it, shared where equal.
// Hashes are made of content only, never of addresses, so that a run is the same on every machine.
#include "term/ast.h"

#include <algorithm>
#include <cassert>
#include <cstring>
#include <limits>
#include <new>
#include <unordered_set>

#include "number/budget.h"
#include "number/hash_mix.h"
#include "term/state.h"
#include "term/variables/binding_table.h"

namespace vetro {
namespace {

constexpr std::size_t chunk_bytes = 256 * 1024;
constexpr std::uint32_t saturated = std::numeric_limits<std::uint32_t>::max();

std::uint64_t hash_text(std::string_view text) {
  std::uint64_t hash = 0xcbf29ce484222325ULL;
  for (const char c : text) {
    hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001b3ULL;
  }
  return mix(hash, text.size());
}

std::uint32_t saturating_add(std::uint32_t a, std::uint32_t b) { return a > saturated - b ? saturated : a + b; }

// Bump allocation; everything is released at once.
class arena {
 public:
  void* take(std::size_t bytes, std::size_t alignment) {
    std::size_t start = (used_ + alignment - 1) & ~(alignment - 1);
    if (chunks_.empty() || start + bytes > limit_) {
      const std::size_t size = std::max(chunk_bytes, bytes);
      chunks_.push_back(std::make_unique_for_overwrite<std::byte[]>(size));
      limit_ = size;
      total_ += size;
      start = 0;
    }
    used_ = start + bytes;
    return chunks_.back().get() + start;
  }
  std::size_t total() const { return total_; }

 private:
  std::vector<std::unique_ptr<std::byte[]>> chunks_;
  std::size_t used_ = 0;
  std::size_t limit_ = 0;
  std::size_t total_ = 0;
};

bool is_bare(term_ptr t) { return t == nullptr || t->bare() == t; }

bool same_meta(const term_meta* a, const term_meta* b) {
  if (a == b) {
    return true;
  }
  return a != nullptr && b != nullptr && a->scope == b->scope && a->soft == b->soft && a->binders == b->binders &&
         a->guarded == b->guarded;
}

}  // namespace

// ---- Reading a node.

const term_meta& term::meta() const {
  static const term_meta none;
  return meta_ == nullptr ? none : *meta_;
}

std::uint64_t name_bit(std::string_view name) { return 1ULL << (hash_text(name) >> 58U); }

// ---- The store.

struct term_store::impl {
  // The hash stands beside the node, so that probing and growing touch no other node.
  struct place {
    std::uint64_t hash = 0;
    const term* node = nullptr;
  };
  arena memory;
  std::vector<place> table = std::vector<place>(4096);
  std::size_t used = 0;
  std::uint32_t serial = 0;
  std::unordered_set<std::string_view> texts;
  std::vector<std::unique_ptr<term_meta>> metas;
  std::vector<std::unique_ptr<lambda_type>> lambda_types;
  std::vector<std::unique_ptr<lambda_var_type_list>> type_lists;

  void grow() {
    std::vector<place> wider(table.size() * 2);
    for (const place& taken : table) {
      if (taken.node != nullptr) {
        wider[free_slot(wider, taken.hash)] = taken;
      }
    }
    table.swap(wider);
  }

  static std::size_t free_slot(const std::vector<place>& in, std::uint64_t hash) {
    std::size_t slot = hash & (in.size() - 1);
    while (in[slot].node != nullptr) {
      slot = (slot + 1) & (in.size() - 1);
    }
    return slot;
  }

  void put(term* node, std::uint64_t hash) {
    table[free_slot(table, hash)] = {hash, node};
    ++used;
  }

  const term_meta* store_meta(const term_meta& meta) {
    metas.push_back(std::make_unique<term_meta>(meta));
    return metas.back().get();
  }
};

term_store::term_store() : impl_(std::make_unique<impl>()) {}

term_store::~term_store() = default;

std::size_t term_store::bytes() const { return impl_->memory.total() + impl_->table.size() * sizeof(impl::place); }

std::string_view term_store::text(std::string_view text) {
  const auto found = impl_->texts.find(text);
  if (found != impl_->texts.end()) {
    return *found;
  }
  char* copy = static_cast<char*>(impl_->memory.take(text.size() + 1, 1));
  std::copy(text.begin(), text.end(), copy);
  copy[text.size()] = '\0';
  return *impl_->texts.emplace(copy, text.size()).first;
}

lambda_type_ptr term_store::lambda(lambda_type type) {
  for (const auto& known : impl_->lambda_types) {
    if (known->kind == type.kind && known->base == type.base && known->param_type == type.param_type &&
        known->return_type == type.return_type) {
      return known.get();
    }
  }
  impl_->lambda_types.push_back(std::make_unique<lambda_type>(type));
  return impl_->lambda_types.back().get();
}

const lambda_var_type_list* term_store::types(const lambda_var_type_list& list) {
  for (const auto& known : impl_->type_lists) {
    if (*known == list) {
      return known.get();
    }
  }
  impl_->type_lists.push_back(std::make_unique<lambda_var_type_list>(list));
  return impl_->type_lists.back().get();
}

namespace {

// The parts of a node that is being built, in storage order.
struct child_reader {
  const term_store::content& c;
  std::size_t count() const { return c.children.size() + c.more.size(); }
  term_ptr operator[](std::size_t i) const {
    return i < c.children.size() ? c.children[i] : c.more[i - c.children.size()];
  }
};

std::uint64_t hash_of(const term_store::content& c, const term_meta* meta) {
  std::uint64_t hash = mix(static_cast<std::uint64_t>(c.type) << 32U | static_cast<std::uint16_t>(c.code),
                           static_cast<std::uint32_t>(c.integer));
  if (!c.text.empty()) {
    hash = mix(hash, hash_text(c.text));
  }
  const child_reader children{c};
  for (std::size_t i = 0; i < children.count(); ++i) {
    hash = mix(hash, children[i] == nullptr ? 7 : children[i]->hash());
  }
  if (meta != nullptr) {
    for (term_ptr binder : meta->binders) {
      hash = mix(hash, binder->hash() + 1);
    }
    for (term_ptr name : meta->guarded) {
      hash = mix(hash, name->hash() + 3);
    }
    hash = meta->scope == nullptr ? hash : mix(hash, meta->scope->hash() + 2);
  }
  return hash;
}

// Operators that stand for several values, for families and sizes, or for more than the values of their operands.
bool may_make_whole(oper_type oper) {
  switch (oper) {
    case PosNeg:
    case PlusMinus:
    case Cardinal:
    case D:
    case PD:
    case IndefInt:
      return true;
    default:
      return is_landau(oper);
  }
}

unsigned constant_facts(const_type kind) {
  if (kind == Ellipsis) {
    return fact_ellipsis | fact_whole;
  }
  return is_infinity(kind) ? fact_whole : 0;
}

unsigned own_facts(const term_store::content& c) {
  switch (c.type) {
    case Lambda:
      return fact_binding | fact_lambda;
    case Quant:
      return fact_binding;
    case Pattern:
      return fact_pattern;
    case Const:
      return constant_facts(static_cast<const_type>(c.code));
    case Oper:
      return facts_of_head(c.code) | (may_make_whole(static_cast<oper_type>(c.code)) ? fact_whole : 0);
    case Pred:
      return facts_of_head(c.code);
    case TermList:
      return c.children.empty() && c.more.empty() ? fact_empty_list : 0;
    default:
      return 0;
  }
}

}  // namespace

// The node with that content, if there is one.
term_ptr term_store::find(const content& c, const term_meta* meta, std::uint64_t hash) const {
  const std::vector<impl::place>& table = impl_->table;
  const child_reader children{c};
  for (std::size_t slot = hash & (table.size() - 1); table[slot].node != nullptr;
       slot = (slot + 1) & (table.size() - 1)) {
    if (table[slot].hash != hash) {
      continue;
    }
    const term& node = *table[slot].node;
    if (node.type_ != c.type || node.code_ != c.code || node.integer_ != c.integer ||
        node.child_count_ != children.count() || node.text_ != c.text || node.types_ != c.types ||
        !same_meta(node.meta_, meta)) {
      continue;
    }
    bool same = true;
    for (std::size_t i = 0; i < children.count() && same; ++i) {
      same = node.child_array()[i] == children[i];
    }
    if (same) {
      return &node;
    }
  }
  return nullptr;
}

term_ptr term_store::intern(const content& c, const term_meta* meta) {
  if (++calls_ > call_limit_) {
    ++ended_budgets;
    throw std::bad_alloc();
  }
  if (meta != nullptr && meta->empty()) {
    meta = nullptr;
  }
  const std::uint64_t hash = hash_of(c, meta);
  if (term_ptr known = find(c, meta, hash); known != nullptr) {
    return known;
  }
  // Whatever can run out of memory comes before the node is in the table, so that a solver which is stopped by it
  // leaves no half-built node behind.
  const bool bare = meta == nullptr && std::all_of(c.children.begin(), c.children.end(), is_bare) &&
                    std::all_of(c.more.begin(), c.more.end(), is_bare);
  term_ptr bare_twin = bare ? nullptr : stripped(c);
  const std::string_view stored_text = c.text.empty() ? std::string_view("") : text(c.text);
  const term_meta* stored_meta = meta == nullptr ? nullptr : impl_->store_meta(*meta);
  if ((impl_->used + 1) * 2 > impl_->table.size()) {
    impl_->grow();
  }
  const child_reader children{c};
  const std::size_t count = children.count();
  term* node = static_cast<term*>(impl_->memory.take(sizeof(term) + count * sizeof(term_ptr), alignof(term)));
  new (node) term;
  auto* places = reinterpret_cast<term_ptr*>(node + 1);
  for (std::size_t i = 0; i < count; ++i) {
    places[i] = children[i];
  }
  impl_->put(node, hash);

  node->type_ = c.type;
  node->code_ = c.code;
  node->integer_ = c.integer;
  node->child_count_ = static_cast<std::uint32_t>(count);
  node->serial_ = impl_->serial++;
  node->hash_ = hash;
  node->text_ = stored_text;
  node->types_ = c.types;
  node->meta_ = stored_meta;
  node->mask_ = c.type == Var ? name_bit(c.text) : 0;
  node->derive(own_facts(c));
  node->bare_ = bare ? node : bare_twin;
  return node;
}

// What follows from the parts of a node.
void term::derive(unsigned own_facts) {
  facts_ = static_cast<std::uint16_t>(own_facts);
  size_ = 1;
  depth_ = 0;
  blind_ = mix(static_cast<std::uint64_t>(type_) << 32U | static_cast<std::uint16_t>(code_),
               static_cast<std::uint32_t>(integer_));
  if (type_ == Const && !text_.empty()) {
    blind_ = mix(blind_, hash_text(text_));
  }
  for (term_ptr child : children()) {
    if (child != nullptr) {
      absorb(*child);
      blind_ = mix(blind_, child->blind_);
    }
  }
  if (meta_ != nullptr) {
    derive_from_meta();
  }
  head_ = -1;
  arguments_ = 0;
  if (type_ == Apply) {
    const term& function = *left();
    const bool plain_leaf =
        !function.has_meta() && (function.type_ == Oper || function.type_ == Pred || function.type_ == Connect);
    head_ = plain_leaf ? function.code_ : function.head_;
    arguments_ = static_cast<std::uint8_t>(std::min(function.arguments_ + 1, 255));
  }
}

void term::derive_from_meta() {
  facts_ |= fact_meta;
  for (term_ptr binder : meta_->binders) {
    absorb(*binder);
    facts_ |= fact_binding;
  }
  for (term_ptr name : meta_->guarded) {
    absorb(*name);
    facts_ |= fact_guard;
  }
  if (meta_->scope != nullptr) {
    absorb(*meta_->scope);
    facts_ |= fact_scope;
    blind_ = mix(blind_, meta_->scope->blind_);
  }
}

void term::absorb(const term& part) {
  facts_ |= part.facts_;
  size_ = saturating_add(size_, part.size_);
  depth_ = std::max(depth_, saturating_add(part.depth_, 1));
  mask_ |= part.mask_;
}

term_ptr term_store::stripped(const content& c) {
  term_list plain;
  plain.reserve(c.children.size() + c.more.size());
  for (term_span part : {c.children, c.more}) {
    for (term_ptr child : part) {
      plain.push_back(child == nullptr ? nullptr : child->bare_);
    }
  }
  content without_metadata = c;
  without_metadata.children = plain;
  without_metadata.more = {};
  --calls_;  // the bare twin is part of the call that needs it
  return intern(without_metadata, nullptr);
}

term_ptr term_store::rebuilt(term_ptr t, const term_meta* meta) {
  return intern({.type = t->type_,
                 .code = t->code_,
                 .integer = t->integer_,
                 .text = t->text_,
                 .types = t->types_,
                 .children = t->children(),
                 .more = {}},
                meta);
}

// ---- Factory.

namespace {

bool any_null(term_span list) {
  return std::any_of(list.begin(), list.end(), [](term_ptr t) { return t == nullptr; });
}

term_ptr leaf(term_type type, int code) {
  return state().store.intern({.type = type, .code = static_cast<std::int16_t>(code)}, nullptr);
}

}  // namespace

term_ptr mk_var(std::string_view name) { return state().store.intern({.type = Var, .text = name}, nullptr); }

term_ptr mk_const(const_type kind) { return leaf(Const, kind); }

term_ptr mk_integer(std::int32_t value) {
  return state().store.intern({.type = Const, .code = Integer, .integer = value}, nullptr);
}

term_ptr mk_decimal(std::string_view digits) {
  return state().store.intern({.type = Const, .code = Decimal, .text = digits}, nullptr);
}

term_ptr mk_oper(oper_type oper) { return leaf(Oper, oper); }

term_ptr mk_pred(pred_type pred) { return leaf(Pred, pred); }

term_ptr mk_connect(connect_type connect) { return leaf(Connect, connect); }

term_ptr mk_pattern(pattern_type pattern) { return leaf(Pattern, pattern); }

term_ptr mk_apply(term_ptr function, term_ptr argument) {
  if (function == nullptr || argument == nullptr) {
    return nullptr;
  }
  const term_ptr parts[] = {function, argument};
  return state().store.intern({.type = Apply, .children = parts}, nullptr);
}

term_ptr mk_apply_all(term_ptr head, term_span arguments) {
  for (term_ptr argument : arguments) {
    head = mk_apply(head, argument);
  }
  return head;
}

term_ptr mk_lambda(term_span vars, const lambda_var_type_list& types, term_ptr condition, term_ptr body) {
  if (body == nullptr || any_null(vars)) {
    return nullptr;
  }
  const term_ptr parts[] = {condition, body};
  term_store& store = state().store;
  return store.intern({.type = Lambda, .types = store.types(types), .children = parts, .more = vars}, nullptr);
}

term_ptr mk_quant(quant_type quant, term_span vars, term_ptr body) {
  if (body == nullptr || any_null(vars)) {
    return nullptr;
  }
  const term_ptr parts[] = {body};
  return state().store.intern(
      {.type = Quant, .code = static_cast<std::int16_t>(quant), .children = parts, .more = vars}, nullptr);
}

term_ptr mk_term_list(term_span elements) {
  return any_null(elements) ? nullptr : state().store.intern({.type = TermList, .children = elements}, nullptr);
}

term_ptr mk_free_var_tag(term_span vars, term_ptr body) {
  if (body == nullptr || any_null(vars)) {
    return nullptr;
  }
  const term_ptr parts[] = {body};
  return state().store.intern({.type = FreeVarTag, .children = parts, .more = vars}, nullptr);
}

term_ptr with_meta(term_ptr t, const term_meta& meta) {
  return t == nullptr || same_meta(&t->meta(), &meta) ? t : state().store.rebuilt(t, &meta);
}

term_ptr with_binders(term_ptr t, const term_list& binders) {
  if (t == nullptr || t->binders() == binders) {
    return t;
  }
  term_meta meta = t->meta();
  meta.binders = binders;
  return state().store.rebuilt(t, &meta);
}

term_ptr with_binding(term_ptr t, const term_list& binders, const term_list& guarded) {
  if (t == nullptr || (t->binders() == binders && t->guarded() == guarded)) {
    return t;
  }
  term_meta meta = t->meta();
  meta.binders = binders;
  meta.guarded = guarded;
  return state().store.rebuilt(t, &meta);
}

term_ptr with_scope(term_ptr t, term_ptr scope) {
  if (t == nullptr || t->scope() == scope) {
    return t;
  }
  term_meta meta = t->meta();
  meta.scope = scope;
  return state().store.rebuilt(t, &meta);
}

term_ptr without_meta(term_ptr t) { return t == nullptr || !t->has_meta() ? t : state().store.rebuilt(t, nullptr); }

std::string_view intern_text(std::string_view text) { return state().store.text(text); }

// ---- Lambda types. Their external names are those of the number sets, in the same order.

lambda_type_ptr make_lambda_base_type(lambda_base_type base) {
  return state().store.lambda({LambdaTypeBase, base, nullptr, nullptr});
}

lambda_type_ptr make_lambda_func_type(lambda_type_ptr param, lambda_type_ptr ret) {
  return state().store.lambda({LambdaTypeFunc, LambdaReal, param, ret});
}

lambda_type_ptr make_lambda_real_type() { return make_lambda_base_type(LambdaReal); }

std::string_view lambda_base_type_name(lambda_base_type base) {
  return const_type_internal(IntegerSet + static_cast<int>(base));
}

lambda_base_type lambda_base_type_from_name(std::string_view name, bool* ok) {
  for (int base = 0; base <= static_cast<int>(LambdaComplex); ++base) {
    if (lambda_base_type_name(static_cast<lambda_base_type>(base)) == name) {
      if (ok != nullptr) {
        *ok = true;
      }
      return static_cast<lambda_base_type>(base);
    }
  }
  if (ok != nullptr) {
    *ok = false;
  }
  return LambdaReal;
}

bool lambda_var_type_list_eqb(const lambda_var_type_list& a, const lambda_var_type_list& b) { return a == b; }

// ---- Heads.

term_ptr name_dispatch(std::string_view word) {
  const int number = name_number(word);
  if (number < 0) {
    return nullptr;
  }
  if (number <= Ellipsis) {
    return mk_const(static_cast<const_type>(number));
  }
  if (number <= RadiusOfConvergence) {
    return mk_oper(static_cast<oper_type>(number));
  }
  return number <= Defined ? mk_pred(static_cast<pred_type>(number)) : mk_connect(static_cast<connect_type>(number));
}

namespace {

// A leaf that carries a scope or binders is another thing than the plain leaf.
bool is_leaf(term_ptr t, term_type type) { return t != nullptr && t->type() == type && !t->has_meta(); }

}  // namespace

bool is_oper(term_ptr t, oper_type oper) { return is_leaf(t, Oper) && t->oper() == oper; }

bool is_pred(term_ptr t, pred_type pred) { return is_leaf(t, Pred) && t->pred() == pred; }

bool is_connect(term_ptr t, connect_type connect) { return is_leaf(t, Connect) && t->connect() == connect; }

bool is_constant(term_ptr t, const_type kind) { return is_leaf(t, Const) && t->constant() == kind; }

bool is_integer(term_ptr t, std::int32_t value) { return is_constant(t, Integer) && t->integer() == value; }

spine spine_of(term_ptr t) {
  spine result{t, {}};
  while (is_apply(result.head)) {
    result.args.push_back(result.head->right());
    result.head = result.head->left();
  }
  std::reverse(result.args.begin(), result.args.end());
  return result;
}

}  // namespace vetro
