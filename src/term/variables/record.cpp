// Both terms in step; the names of quantifiers and functions on the way tell how a record is to be renamed.
#include "term/variables/record.h"

#include <algorithm>
#include <unordered_map>

#include "term/compare.h"
#include "term/variables/binding.h"
#include "term/variables/bound_names.h"

namespace vetro {
namespace {

class record_transfer {
 public:
  // Null where the two are not written alike.
  term_ptr transfer(term_ptr written, term_ptr stored) {
    if (written == stored) {
      return written;
    }
    if (written->type() != stored->type() || written->children().size() != stored->children().size() ||
        (written->scope() == nullptr) != (stored->scope() == nullptr)) {
      return nullptr;
    }
    const node_pair key{written, stored, stored_names_.number()};
    if (const auto found = done_.find(key); found != done_.end()) {
      return found->second;
    }
    const term_ptr result = transfer_node(written, stored);
    done_.emplace(key, result);
    return result;
  }

 private:
  term_ptr transfer_node(term_ptr written, term_ptr stored) {
    const bound_names::mark outside = stored_names_.here();
    if (written->type() == Lambda || written->type() == Quant) {
      bind_entries(written->vars(), stored->vars());
    }
    const term_list indices = written_indices(written, stored);
    bind_entries(indices, binding(stored).indices());
    term_list parts;
    bool alike = true;
    for (std::size_t i = 0; alike && i < written->children().size(); ++i) {
      const term_ptr part = written->children()[i];
      const term_ptr other = stored->children()[i];
      if (part == nullptr || other == nullptr) {
        alike = part == other;
        parts.push_back(nullptr);
      } else {
        parts.push_back(transfer(part, other));
        alike = parts.back() != nullptr;
      }
    }
    const term_ptr result = alike ? with_record(rebuilt(written, parts), stored) : nullptr;
    stored_names_.leave(outside);
    written_names_.resize(outside.count);
    return result;
  }

  // What written calls the indices of stored: by position where it has as many, else by where they stand.
  static term_list written_indices(term_ptr written, term_ptr stored) {
    const binding of_stored(stored);
    const binding of_written(written);
    term_list names;
    for (std::size_t i = 0; i < of_stored.indices().size(); ++i) {
      const bool as_many = of_written.indices().size() == of_stored.indices().size();
      node_set met;
      const term_ptr name =
          as_many ? of_written.indices()[i] : counterpart(of_stored.indices()[i], stored, written, met);
      names.push_back(name == nullptr ? of_stored.indices()[i] : name);
    }
    return names;
  }

  // What stands in written at the first place of the name in stored; null where it has no such place.
  static term_ptr counterpart(term_ptr name, term_ptr stored, term_ptr written, node_set& met) {
    if (stored->bare() == name) {
      return is_var(written) ? written->bare() : nullptr;
    }
    if ((name->name_mask() & ~stored->name_mask()) != 0 || stored->children().size() != written->children().size() ||
        !met.insert(stored)) {
      return nullptr;
    }
    for (std::size_t i = 0; i < stored->children().size(); ++i) {
      const term_ptr a = stored->children()[i];
      const term_ptr b = written->children()[i];
      if (const term_ptr found = a == nullptr || b == nullptr ? nullptr : counterpart(name, a, b, met)) {
        return found;
      }
    }
    return nullptr;
  }

  void bind_entries(term_span written, term_span stored) {
    for (std::size_t i = 0; i < written.size() && i < stored.size(); ++i) {
      if (is_var(written[i]) && is_var(stored[i])) {
        stored_names_.bind(stored[i]);
        written_names_.push_back(written[i]->bare());
      }
    }
  }

  static term_ptr rebuilt(term_ptr t, const term_list& parts) {
    if (std::equal(parts.begin(), parts.end(), t->children().begin())) {
      return t;
    }
    const term_span all(parts);
    term_ptr content = nullptr;
    switch (t->type()) {
      case Apply:
        content = mk_apply(parts[0], parts[1]);
        break;
      case TermList:
        content = mk_term_list(parts);
        break;
      case Lambda:
        content = mk_lambda(all.subspan(2), t->var_types(), parts[0], parts[1]);
        break;
      case Quant:
        content = mk_quant(t->quant(), all.subspan(1), parts[0]);
        break;
      default:
        content = mk_free_var_tag(all.subspan(1), parts[0]);
        break;
    }
    return with_meta(content, t->meta());
  }

  term_ptr with_record(term_ptr written, term_ptr stored) const {
    if (stored->binders().empty() && stored->guarded().empty()) {
      return written;
    }
    const binding own(written);
    const binding other(stored);
    if (own.row() != other.row() || own.row() == nullptr || own.indices().size() == other.indices().size()) {
      return written;
    }
    return with_binding(written, renamed(stored->binders()), renamed(stored->guarded()));
  }

  // In the names of written.
  term_list renamed(const term_list& names) const {
    term_list result;
    for (term_ptr name : names) {
      const int bound = stored_names_.newest(name);
      result.push_back(bound == bound_names::unbound ? name : written_names_[static_cast<std::size_t>(bound)]);
    }
    return result;
  }

  bound_names stored_names_;
  term_list written_names_;  // at the same positions
  std::unordered_map<node_pair, term_ptr, node_pair_hasher> done_;
};

}  // namespace

term_ptr with_record_of(term_ptr written, term_ptr stored) {
  if (written == nullptr || stored == nullptr || term_eqb(written, stored)) {
    return written;
  }
  const term_ptr result = record_transfer().transfer(written, stored);
  return result != nullptr && term_eqb(result, stored) ? result : written;
}

}  // namespace vetro
