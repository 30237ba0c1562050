// The term store: one arena of nodes and one table that makes every node unique.
//
// A node is one block, its children inline. Metadata, parameter types and texts stand beside it, shared where equal.
// Hashes are made of content only, never of addresses, so that a run is the same on every machine.
#include "term/ast.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cstring>
#include <limits>
#include <new>
#include <unordered_set>

#include "number/budget.h"
#include "number/hash_mix.h"
#include "platform/memory_end.h"
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

// Bump allocation in words of eight bytes; everything is released at once. A place in it has a number of 32 bits: the
// chunk, counted from 1, and the word in that chunk. So it holds 32 GB, which is memory exhausted like any other.
class arena {
 public:
  using number = std::uint32_t;  // 0 for no place

  void* take(std::size_t bytes) {
    const std::size_t words = (bytes + word - 1) / word;
    if (words > limit_ - used_) {
      add_chunk(std::max(chunk_bytes / word, words));
    }
    std::byte* start = chunks_.back().get() + used_ * word;
    used_ += words;
    return start;
  }
  // Of a place in the newest chunk.
  number number_of(const void* place) const {
    const auto offset = static_cast<std::size_t>(static_cast<const std::byte*>(place) - chunks_.back().get());
    return static_cast<number>(chunks_.size() << word_bits | offset / word);
  }
  const void* at(number n) const { return chunks_[(n >> word_bits) - 1].get() + (n & ((1U << word_bits) - 1)) * word; }
  std::size_t total() const { return total_; }

 private:
  static constexpr std::size_t word = 8;
  static constexpr unsigned word_bits = 15;
  static_assert(chunk_bytes / word == 1U << word_bits);

  void add_chunk(std::size_t words) {
    if (chunks_.size() + 1 >= 1U << (32U - word_bits)) {
      out_of_memory();
    }
    chunks_.push_back(std::make_unique_for_overwrite<std::byte[]>(words * word));
    limit_ = words;
    used_ = 0;
    total_ += words * word;
  }

  std::vector<std::unique_ptr<std::byte[]>> chunks_;
  std::size_t used_ = 0;
  std::size_t limit_ = 0;
  std::size_t total_ = 0;
};

bool are_bare(term_span parts) {
  for (term_ptr part : parts) {
    if (part != nullptr && part->has(fact_meta)) {
      return false;
    }
  }
  return true;
}

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
  const term_meta* own = own_meta();
  return own == nullptr ? none : *own;
}

std::uint64_t name_bit(std::string_view name) { return 1ULL << (hash_text(name) >> 58U); }

// ---- The store.

struct term_store::impl {
  // Half of the hash stands beside the node, so that probing and growing touch no other node.
  struct place {
    std::uint32_t hash = 0;
    arena::number node = 0;
  };
  static constexpr std::size_t leaf_count = Pattern;

  arena memory;
  std::vector<place> table = std::vector<place>(2048);
  std::size_t used = 0;
  std::uint32_t serial = 0;
  std::array<term_ptr, leaf_count> leaves{};  // by the number of their kind
  std::unordered_set<std::string_view> texts;
  std::vector<std::unique_ptr<term_meta>> metas;
  std::vector<std::unique_ptr<lambda_type>> lambda_types;
  std::vector<std::unique_ptr<lambda_var_type_list>> type_lists;

  const term* at(const place& taken) const { return static_cast<const term*>(memory.at(taken.node)); }
  static std::uint32_t short_hash(std::uint64_t hash) { return static_cast<std::uint32_t>(hash >> 32U); }

  // The node with that hash for which is_it(node) holds; null when there is none.
  template <class P>
  term_ptr find(std::uint64_t hash, P&& is_it) const {
    const std::size_t last = table.size() - 1;
    const std::uint32_t sought = short_hash(hash);
    for (std::size_t slot = sought & last; table[slot].node != 0; slot = (slot + 1) & last) {
      if (table[slot].hash == sought) {
        if (const term* node = at(table[slot]); node->hash() == hash && is_it(*node)) {
          return node;
        }
      }
    }
    return nullptr;
  }

  // Room for one more; two thirds of the table are taken at most.
  void make_room() {
    if (3 * (used + 1) <= 2 * table.size()) {
      return;
    }
    std::vector<place> wider(table.size() * 2);
    for (const place& taken : table) {
      if (taken.node != 0) {
        wider[free_slot(wider, taken.hash)] = taken;
      }
    }
    table.swap(wider);
  }

  static std::size_t free_slot(const std::vector<place>& in, std::uint32_t hash) {
    std::size_t slot = hash & (in.size() - 1);
    while (in[slot].node != 0) {
      slot = (slot + 1) & (in.size() - 1);
    }
    return slot;
  }

  void put(const term* node, std::uint64_t hash) {
    table[free_slot(table, short_hash(hash))] = {short_hash(hash), memory.number_of(node)};
    ++used;
  }

  const term_meta* store_meta(const term_meta& meta) {
    metas.push_back(std::make_unique<term_meta>(meta));
    return metas.back().get();
  }
};

term_store::term_store() : impl_(std::make_unique<impl>()) {}

term_store::~term_store() = default;

std::size_t term_store::bytes() const { return impl_->memory.total() + impl_->table.capacity() * sizeof(impl::place); }

std::string_view term_store::text(std::string_view text) {
  const auto found = impl_->texts.find(text);
  if (found != impl_->texts.end()) {
    return *found;
  }
  char* copy = static_cast<char*>(impl_->memory.take(text.size() + 1));
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

constexpr std::uint64_t hash_of_kind(int type, std::int16_t code, std::int32_t integer) {
  return mix(static_cast<std::uint64_t>(type) << 32U | static_cast<std::uint16_t>(code),
             static_cast<std::uint32_t>(integer));
}

std::uint64_t hash_of(const term_store::content& c, const term_meta* meta) {
  std::uint64_t hash = hash_of_kind(c.type, c.code, c.integer);
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
  if (kind == I) {
    return fact_context;
  }
  return is_infinity(kind) ? fact_whole : 0;
}

unsigned operator_facts(oper_type oper) {
  return (may_make_whole(oper) ? fact_whole : 0) | (oper == Tuple || oper == Log ? fact_context : 0);
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
      return facts_of_head(c.code) | operator_facts(static_cast<oper_type>(c.code));
    case Pred:
      return facts_of_head(c.code) | (c.code == IdentEq ? fact_context : 0);
    case TermList:
      return c.children.empty() && c.more.empty() ? fact_empty_list : 0;
    default:
      return 0;
  }
}

}  // namespace

// The node with that content, if there is one.
term_ptr term_store::find(const content& c, const term_meta* meta, std::uint64_t hash) const {
  const child_reader children{c};
  return impl_->find(hash, [&](const term& node) {
    if (node.type() != c.type || node.code_ != c.code || node.child_count_ != children.count() ||
        !same_meta(node.own_meta(), meta) || (c.type == Lambda && node.types() != c.types) ||
        (node.has_text() ? node.text() != c.text : node.integer_ != c.integer)) {
      return false;
    }
    for (std::size_t i = 0; i < children.count(); ++i) {
      if (node.child_array()[i] != children[i]) {
        return false;
      }
    }
    return true;
  });
}

void term_store::count_call() {
  if (++calls_ > call_limit_) {
    ++ended_budgets;
    throw std::bad_alloc();
  }
}

term_ptr term_store::intern(const content& c, const term_meta* meta) {
  count_call();
  if (meta != nullptr && meta->empty()) {
    meta = nullptr;
  }
  const std::uint64_t hash = hash_of(c, meta);
  term_ptr known = find(c, meta, hash);
  return known != nullptr ? known : build(c, meta, hash);
}

term_ptr term_store::leaf(term_type type, std::int16_t code) {
  term_ptr& known = impl_->leaves[static_cast<std::size_t>(code)];
  if (known == nullptr) {
    return known = intern({.type = type, .code = code}, nullptr);
  }
  count_call();
  return known;
}

// Most calls are of this kind.
term_ptr term_store::apply(term_ptr function, term_ptr argument) {
  count_call();
  const std::uint64_t hash = mix(mix(hash_of_kind(Apply, 0, 0), function->hash_), argument->hash_);
  term_ptr known = impl_->find(hash, [&](const term& node) {
    return node.kind_ == Apply - Var && node.child_array()[0] == function && node.child_array()[1] == argument &&
           !node.has_meta();
  });
  if (known != nullptr) {
    return known;
  }
  const term_ptr parts[] = {function, argument};
  return build({.type = Apply, .children = parts}, nullptr, hash);
}

term_ptr term_store::build(const content& c, const term_meta* meta, std::uint64_t hash) {
  // Whatever can run out of memory comes before the node is in the table, so that a solver which is stopped by it
  // leaves no half-built node behind.
  const bool bare = meta == nullptr && are_bare(c.children) && are_bare(c.more);
  term_ptr bare_twin = bare ? nullptr : stripped(c);
  const term_meta* stored_meta = meta == nullptr ? nullptr : impl_->store_meta(*meta);
  impl_->make_room();
  const std::size_t count = c.children.size() + c.more.size();
  const bool is_text = c.type == Var || (c.type == Const && c.code == Decimal);
  if (count > saturated || c.text.size() > std::numeric_limits<std::int32_t>::max()) {
    out_of_memory();
  }
  const std::size_t in_front = bare ? 0 : sizeof(term::dressing);
  const std::size_t behind =
      count * sizeof(term_ptr) + (is_text ? c.text.size() + 1 : 0) + (c.type == Lambda ? sizeof c.types : 0);
  std::byte* block = static_cast<std::byte*>(impl_->memory.take(in_front + sizeof(term) + behind));
  term* node = new (block + in_front) term;
  if (!bare) {
    new (block) term::dressing{stored_meta, bare_twin};
  }
  auto* places = reinterpret_cast<term_ptr*>(node + 1);
  std::copy(c.more.begin(), c.more.end(), std::copy(c.children.begin(), c.children.end(), places));
  if (c.type == Lambda) {
    new (places + count) const lambda_var_type_list*(c.types);
  } else if (is_text) {
    char* text = reinterpret_cast<char*>(places);
    *std::copy(c.text.begin(), c.text.end(), text) = '\0';
  }
  impl_->put(node, hash);

  node->kind_ = static_cast<std::uint8_t>(c.type - Var);
  node->code_ = c.code;
  node->integer_ = is_text ? static_cast<std::int32_t>(c.text.size()) : c.integer;
  node->child_count_ = static_cast<std::uint32_t>(count);
  node->serial_ = impl_->serial++;
  node->hash_ = hash;
  node->mask_ = c.type == Var ? name_bit(c.text) : 0;
  node->derive(own_facts(c));
  if (stored_meta != nullptr) {
    node->derive_from_meta(*stored_meta);
  }
  return node;
}

// What follows from the parts of a node.
void term::derive(unsigned own_facts) {
  facts_ = static_cast<std::uint16_t>(own_facts);
  size_ = 1;
  depth_ = 0;
  std::uint64_t blind = hash_of_kind(type(), code_, has_text() ? 0 : integer_);
  if (type() == Const && code_ == Decimal) {
    blind = mix(blind, hash_text(text()));
  }
  for (term_ptr child : children()) {
    if (child != nullptr) {
      absorb(*child);
      blind = mix(blind, child->blind_);
    }
  }
  blind_ = static_cast<std::uint32_t>(blind >> 32U);
  head_ = -1;
  arguments_ = 0;
  if (type() == Apply) {
    const term& function = *left();
    const bool plain_leaf =
        !function.has_meta() && (function.type() == Oper || function.type() == Pred || function.type() == Connect);
    head_ = plain_leaf ? function.code_ : function.head_;
    arguments_ = static_cast<std::uint8_t>(std::min(function.arguments_ + 1, 255));
  }
}

void term::derive_from_meta(const term_meta& meta) {
  facts_ |= fact_meta;
  for (term_ptr binder : meta.binders) {
    absorb(*binder);
    facts_ |= fact_binding;
  }
  for (term_ptr name : meta.guarded) {
    absorb(*name);
    facts_ |= fact_guard;
  }
  if (meta.scope != nullptr) {
    absorb(*meta.scope);
    facts_ |= fact_scope;
    blind_ = static_cast<std::uint32_t>(mix(blind_, meta.scope->blind_) >> 32U);
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
      plain.push_back(child == nullptr ? nullptr : child->bare());
    }
  }
  content without_metadata = c;
  without_metadata.children = plain;
  without_metadata.more = {};
  --calls_;  // the bare twin is part of the call that needs it
  return intern(without_metadata, nullptr);
}

term_ptr term_store::rebuilt(term_ptr t, const term_meta* meta) {
  return intern({.type = t->type(),
                 .code = t->code_,
                 .integer = t->has_text() ? 0 : t->integer_,
                 .text = t->has_text() ? t->text() : std::string_view(),
                 .types = t->type() == Lambda ? t->types() : nullptr,
                 .children = t->children(),
                 .more = {}},
                meta);
}

// ---- Factory.

namespace {

bool any_null(term_span list) {
  return std::any_of(list.begin(), list.end(), [](term_ptr t) { return t == nullptr; });
}

term_ptr leaf(term_type type, int code) { return state().store.leaf(type, static_cast<std::int16_t>(code)); }

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
  return state().store.apply(function, argument);
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
